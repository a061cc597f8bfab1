// Repair of the pixels of a region from known pixels around them, in a given order.
#pragma once

#include <cstdint>

#include "frame/image.h"
#include "lumcv.h"

namespace lum::kernels {

/// What weighs a known pixel.
enum class InpaintMethod {
    front,    // the gradient of the distances from the hole's edge
    isophote, // the direction of the picture's level lines
};

/// The masks of a region: what is known, and what is not.
inline constexpr Lum8u inpaintKnown = 0;
inline constexpr Lum8u inpaintUnknown = 255;

/// A place in the disc around a pixel. Offsets are in bytes.
struct InpaintNeighbour {
    /// From the neighbour to the centre.
    Lum32s towardX, towardY;
    float weight;
    std::intptr_t inMask, inDistances, inGradient, inImage;
};

/// What a repair works on; all images begin at the region's first pixel.
struct InpaintRegion {
    LumSize size;
    /// The picture, repaired in place.
    Image<Lum8u> image;
    Image<Lum8u> mask;
    Image<const float> distances;
    /// Pairs of the derivatives along x and y for each pixel and channel.
    Image<Lum16s> imageGradient;
    /// Pairs of the derivatives of the distances, times 4096; front only.
    Image<Lum16s> distanceGradient;
    /// The disc of the table, and the reach of its square.
    const InpaintNeighbour* neighbours;
    int neighbourCount;
    int reach;
};

/// The weight of a neighbour that only its distance decides.
float inpaintWeight(InpaintMethod method, int dx, int dy);

/// One entry of the order of repair: its integer value orders by distance, then by place.
constexpr int inpaintPlaceBits = 28;
std::uint64_t inpaintEntry(float distance, std::uint64_t place);

/// Gradients of the picture at the pixels that are marked, as if all pixels were known.
template <InpaintMethod method, int channels>
void inpaintGradients(const InpaintRegion& region, Image<const Lum8u> marked);
/// The same at the pixels along the edge of the hole, where the differences that cross it are left out.
template <InpaintMethod method, int channels>
void inpaintGradientsAtHole(const InpaintRegion& region, Image<const Lum8u> marked);
/// Gradients of the distances at the unknown pixels.
void inpaintDistanceGradients(const InpaintRegion& region);

/// Repairs the pixels of the order, one after the other; each is known from then on.
template <InpaintMethod method, int channels>
void inpaintPixels(const InpaintRegion& region, const std::uint64_t* order, std::intptr_t count);

} // namespace lum::kernels
