// The rule that fixes the size of one level of a pyramid from its neighbour's, for any rate.
#pragma once

#include <cstdint>

#include "frame/check.h"
#include "lumcv/pyramid.h"

namespace lum {

/// Above 1 and up to 10; a NaN is neither.
constexpr LumStatus checkRate(Lum32f rate) {
    return errorIf(!(rate > 1 && rate <= 10), lumStatusBadArgument);
}

/// The lengths along one axis that a level may have above a level of some length.
struct LengthRange {
    std::int64_t least;
    std::int64_t most;

    constexpr bool contains(std::int64_t length) const { return length >= least && length <= most; }
};

/// Lengths that exceed 32 bits end at their largest value.
LengthRange lengthsAbove(std::int64_t length, Lum32f rate);
std::int64_t lengthBelow(std::int64_t length, Lum32f rate);

constexpr bool isSameSize(LumSize a, LumSize b) { return a.width == b.width && a.height == b.height; }

/// The size of the level below, with the rate above.
LumSize sizeBelow(LumSize size, Lum32f rate);
/// Whether a level of the size `upper` may lie above one of the size `lower`.
bool fitsAbove(LumSize upper, LumSize lower, Lum32f rate);
/// Levels from a size down to 1 x 1, which is not counted when it is the size itself.
int levelsBelow(LumSize size, Lum32f rate);

/// Pointer-wide sizes may pass 32 bits, in which no level could be recorded.
constexpr LumStatus checkSizeIn32Bits(LumSizeL size) {
    return errorIf(static_cast<Lum32s>(size.width) != size.width ||
                       static_cast<Lum32s>(size.height) != size.height,
                   lumStatusSizeError);
}
constexpr LumSize in32Bits(LumSizeL size) {
    return {static_cast<Lum32s>(size.width), static_cast<Lum32s>(size.height)};
}

LumStatus getPyramidDownROI(LumSize srcRoi, LumSize* dstRoi, Lum32f rate);
LumStatus getPyramidDownROIL(LumSizeL srcRoi, LumSizeL* dstRoi, Lum32f rate);
LumStatus getPyramidUpROI(LumSize srcRoi, LumSize* dstRoiMin, LumSize* dstRoiMax, Lum32f rate);
LumStatus getPyramidUpROIL(LumSizeL srcRoi, LumSizeL* dstRoiMin, LumSizeL* dstRoiMax, Lum32f rate);

} // namespace lum
