// The analysed mask of an inpainting: what its blocks hold, and how large they are.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kernels/distance/inpaint.h"
#include "lumcv.h"

struct LumInpaintState {
    /// 0 where the working region is known, 255 elsewhere; the second image is the one that a run works on.
    Lum8u* workMask;
    Lum8u* bandMask;
    Lum16s* imageGradient;
    Lum16s* distanceGradient;
    Lum32f* distanceCopy;
    /// Distances as doubles whose low bits are the pixel's place in the working region.
    std::uint64_t* order;
    lum::kernels::InpaintNeighbour* neighbourTable;
    LumMorphMaskRecord* specDisc;
    LumMorphMaskRecord* specCross;
    Lum32s imageWidth;
    Lum32s imageHeight;
    Lum32s workWidth;
    Lum32s workHeight;
    Lum32s channels;
    Lum32s method;
    Lum32s pixelCount;
    /// The working region.
    Lum32s x;
    Lum32s y;
    Lum32s width;
    Lum32s height;
    Lum32f radius;
    Lum32s neighbourCount;
    /// Bytes between rows.
    Lum32s maskStride;
    Lum32s distanceStride;
    Lum32s imageGradientStride;
    Lum32s distanceGradientStride;
};

static_assert(sizeof(void*) != 4 ||
              (sizeof(LumInpaintState) == 104 && offsetof(LumInpaintState, imageWidth) == 36 &&
               offsetof(LumInpaintState, pixelCount) == 60 && offsetof(LumInpaintState, radius) == 80 &&
               offsetof(LumInpaintState, distanceGradientStride) == 100));
static_assert(sizeof(void*) != 4 || sizeof(lum::kernels::InpaintNeighbour) == 28);

namespace lum {

/// The pixels of a mask that are not 0, and the rectangle that holds them.
struct InpaintHole {
    std::int64_t count;
    LumRect box;
};
InpaintHole holeOf(Image<const Lum8u> mask, LumSize size);

/// The rectangle grown by a number of pixels on each side, within the picture.
LumRect grown(LumRect box, int pixels, LumSize size);

/// The largest whole distance of a radius.
int reachOf(Lum32f radius);
/// Whether a radius is one of those that are accepted.
bool isInpaintRadius(Lum32f radius);
/// Whether the table of neighbours of a radius can be counted in 31 bits.
bool isTableRadius(Lum32f radius);

/// Sizes of what a working region needs.
struct InpaintSizes {
    Lum32s specDisc;
    Lum32s bufferDisc;
    Lum32s specCross;
    Lum32s bufferCross;
    std::uint32_t state;
    std::uint32_t buffer;
};
LumStatus sizesOf(LumSize workSize, std::int64_t holePixels, Lum32f radius, Lum32s method, Lum32s channels,
                  InpaintSizes& sizes);

/// The state of a mask without a pixel.
constexpr std::uint32_t emptyStateBytes = (sizeof(LumInpaintState) + 63) & ~std::size_t{63};

/// Places the state and its blocks, whose sizes it holds.
LumInpaintState* placeInpaintState(Lum8u* stateBuffer, const LumInpaintState& values, std::int64_t holePixels,
                                   const InpaintSizes& sizes);

} // namespace lum
