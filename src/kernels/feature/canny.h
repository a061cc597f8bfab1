// Rows of the edge detector: magnitudes and directions of gradients, the suppression of what is no ridge of
// magnitude, and the following of edges.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "kernels/feature/derivative.h"

namespace lum::kernels {

/// Where the neighbours along a gradient lie.
enum Direction : Lum8u {
    directionHorizontal = 1, ///< left and right
    directionRising = 2,     ///< above to the right and below to the left: dx and dy of different signs
    directionVertical = 3,   ///< above and below
    directionFalling = 4     ///< above to the left and below to the right: dx and dy of the same sign
};

/// How a magnitude is formed of a gradient, and when it counts.
enum class Magnitude {
    sumKeepingEqual, ///< |dx| + |dy|, unless it lies below the lower threshold
    sum,             ///< |dx| + |dy| above the lower threshold; of 16s saturated to 16 bits
    squares,         ///< dx * dx + dy * dy above the lower threshold; of 16s as an unsigned 32-bit integer
    root             ///< the root of dx * dx + dy * dy, which is an integer rounded to single precision
};

/// The type of magnitudes of gradients D.
template <class D, Magnitude magnitude>
using MagnitudeElement =
    std::conditional_t<std::is_same_v<D, Lum32f> || magnitude == Magnitude::root, Lum32f,
                       std::conditional_t<magnitude == Magnitude::squares, std::uint32_t, Lum16u>>;

/// Magnitudes and directions of a row of gradients; a magnitude that does not count is 0, and its direction means
/// nothing. Lum16s: sum, squares. Lum32f: sumKeepingEqual, sum, squares.
template <Magnitude magnitude, class D>
void magnitudeRowScalar(const D* dx, const D* dy, std::ptrdiff_t count, MagnitudeElement<D, magnitude> low,
                        MagnitudeElement<D, magnitude>* magnitudes, Lum8u* directions);
template <Magnitude magnitude, class D>
void magnitudeRow(const D* dx, const D* dy, std::ptrdiff_t count, MagnitudeElement<D, magnitude> low,
                  MagnitudeElement<D, magnitude>* magnitudes, Lum8u* directions);

/// The same from the column stage of bytes, whose rows begin with the first tap of the first pixel; dx is right minus
/// left, dy below minus above. sum, root; sobel3, sobel5, scharr3.
template <Derivative kind, Magnitude magnitude>
void gradientMagnitudeRowScalar(const Lum16s* smooth, const Lum16s* difference, std::ptrdiff_t count,
                                MagnitudeElement<Lum16s, magnitude> low,
                                MagnitudeElement<Lum16s, magnitude>* magnitudes, Lum8u* directions);
template <Derivative kind, Magnitude magnitude>
void gradientMagnitudeRow(const Lum16s* smooth, const Lum16s* difference, std::ptrdiff_t count,
                          MagnitudeElement<Lum16s, magnitude> low,
                          MagnitudeElement<Lum16s, magnitude>* magnitudes, Lum8u* directions);

/// The same with directions from the angle of the gradient in double precision, for narrow regions; one pixel at a
/// time.
template <Derivative kind, Magnitude magnitude>
void gradientMagnitudeRowByAngle(const Lum16s* smooth, const Lum16s* difference, std::ptrdiff_t count,
                                 MagnitudeElement<Lum16s, magnitude> low,
                                 MagnitudeElement<Lum16s, magnitude>* magnitudes, Lum8u* directions);

/// The bytes of the map of edges. A ridge is an edge as soon as another edge touches it.
inline constexpr Lum8u mapNothing = 0;
inline constexpr Lum8u mapRidge = 0x80;
inline constexpr Lum8u mapEdge = 0xFF;

/// Three rows of magnitudes. Each has a cell of 0 before its first element and after its last.
template <class M> struct MagnitudeRows {
    const M* previous;
    const M* current;
    const M* next;
};

/// Writes a row of the map: ridges, whose magnitude is above that of the earlier neighbour along the gradient and, of
/// horizontal and vertical gradients, not below that of the later one, of others above that too. Those above `high` are
/// edges. Lum16u, uint32_t, Lum32f.
template <class M>
void suppressRowScalar(const MagnitudeRows<M>& rows, const Lum8u* directions, std::ptrdiff_t count, M high,
                       Lum8u* mapRow);
template <class M>
void suppressRow(const MagnitudeRows<M>& rows, const Lum8u* directions, std::ptrdiff_t count, M high,
                 Lum8u* mapRow);

/// Turns ridges of a row that touch an edge into edges, and appends their positions, counted from that of the row's first
/// element, at `top`. Returns the new top. Of a ridge that touches only what this call turns it is open whether it
/// turns: following the edges turns it in any case. The map has a margin of mapNothing on all sides.
std::uint32_t* joinRowScalar(Lum8u* mapRow, std::ptrdiff_t mapWidth, std::ptrdiff_t count,
                             std::uint32_t firstPosition, std::uint32_t* top);
std::uint32_t* joinRow(Lum8u* mapRow, std::ptrdiff_t mapWidth, std::ptrdiff_t count,
                       std::uint32_t firstPosition, std::uint32_t* top);

/// Turns every ridge that is reached over ridges from the positions of the stack, `bottom` to below `top`, into an edge.
/// The map has a margin of mapNothing on all sides, and 4 bytes after its end may be read.
void followEdges(Lum8u* map, std::ptrdiff_t mapWidth, const std::uint32_t* bottom, std::uint32_t* top);

/// 255 for edges and 0 for anything else.
void edgeRowScalar(const Lum8u* mapRow, std::ptrdiff_t count, Lum8u* dst);
void edgeRow(const Lum8u* mapRow, std::ptrdiff_t count, Lum8u* dst);

} // namespace lum::kernels
