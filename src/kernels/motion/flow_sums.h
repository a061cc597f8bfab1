// The sums over a tracking window, in double precision. Columns that lie flowColumns apart share a sum, which takes the
// window row by row; those sums are added in pairs at the end.
#pragma once

#include <cstddef>

#include "frame/image.h"
#include "kernels/motion/subpix.h"
#include "lumcv/types.h"

namespace lum::kernels {

/// Columns that have a sum of their own.
inline constexpr int flowColumns = 8;

/// Windows of one size, at multiples of 16 bytes. Their rows lie one after the other, have a column more than the window at
/// least, and are filled up with zeros.
struct FlowWindows {
    const Lum64f* values; ///< of the first picture
    const Lum64f* dx;     ///< their derivatives
    const Lum64f* dy;
    const Lum32f*
        moved; ///< pixels of the second picture: a column and a row more than the window, not interpolated
    int pitch; ///< elements of a row, a multiple of flowColumns
    int width;
    int height;
};

/// Elements of a row, and of the pixels of the second picture, of which one after the last row is read.
constexpr std::ptrdiff_t flowPitch(std::ptrdiff_t width) {
    return (width + flowColumns) / flowColumns * flowColumns;
}
constexpr std::ptrdiff_t flowElements(std::ptrdiff_t pitch, std::ptrdiff_t height) {
    return pitch * (height + 1) + flowColumns;
}

struct GradientSums {
    double xx, xy, yy;
};
/// dx dx, dx dy, dy dy.
GradientSums gradientSumsScalar(const FlowWindows& windows);
GradientSums gradientSums(const FlowWindows& windows);

struct MismatchSums {
    double x, y;
};
/// dx (values - moved), dy (values - moved), with the moved pixels interpolated by the weights.
MismatchSums mismatchSumsScalar(const FlowWindows& windows, const FloatQuad& weights);
MismatchSums mismatchSums(const FlowWindows& windows, const FloatQuad& weights);

/// (values - moved)^2 without the last row and the last column.
double squaredErrorScalar(const FlowWindows& windows, const FloatQuad& weights);
double squaredError(const FlowWindows& windows, const FloatQuad& weights);

/// Pixels as floats, in rows of `pitch` elements that are filled up with zeros, and flowColumns zeros after the last row:
/// Lum8u, Lum16u, Lum32f.
template <class T> void copyAsFloatsScalar(Image<const T> src, LumSize size, Lum32f* dst, int pitch);
template <class T> void copyAsFloats(Image<const T> src, LumSize size, Lum32f* dst, int pitch);

} // namespace lum::kernels
