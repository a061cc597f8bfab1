#include "pyramid/level_sizes.h"

#include <algorithm>
#include <limits>

#include "frame/convert.h"

namespace lum {
namespace {

constexpr std::int64_t longest = std::numeric_limits<Lum32s>::max();

/// Toward zero, and at most the largest length.
std::int64_t truncatedLength(float length) { return truncatedTo32s(static_cast<double>(length)); }

/// A size with each side at a limit of the lengths above it.
LumSize sizeAbove(LumSize size, Lum32f rate, std::int64_t LengthRange::*limit) {
    return {static_cast<Lum32s>(lengthsAbove(size.width, rate).*limit),
            static_cast<Lum32s>(lengthsAbove(size.height, rate).*limit)};
}

} // namespace

LengthRange lengthsAbove(std::int64_t length, Lum32f rate) {
    const auto least = length == 1
                           ? std::int64_t{1}
                           : std::max(truncatedLength(static_cast<float>(length - 1) * rate) + 1, length + 1);
    const auto most = std::max(truncatedLength(static_cast<float>(length) * rate), length + 1);
    return {std::min(least, longest), std::min(most, longest)};
}

std::int64_t lengthBelow(std::int64_t length, Lum32f rate) {
    std::int64_t below = std::max(truncatedLength(static_cast<float>(length) / rate + 0.5F), std::int64_t{1});
    for (;;) {
        const LengthRange above = lengthsAbove(below, rate);
        if (length < above.least)
            --below;
        else if (length > above.most)
            ++below;
        else
            return below;
    }
}

LumSize sizeBelow(LumSize size, Lum32f rate) {
    return {static_cast<Lum32s>(lengthBelow(size.width, rate)),
            static_cast<Lum32s>(lengthBelow(size.height, rate))};
}

bool fitsAbove(LumSize upper, LumSize lower, Lum32f rate) {
    return lengthsAbove(lower.width, rate).contains(upper.width) &&
           lengthsAbove(lower.height, rate).contains(upper.height);
}

int levelsBelow(LumSize size, Lum32f rate) {
    int levels = 0;
    for (; size.width > 1 || size.height > 1; ++levels) size = sizeBelow(size, rate);
    return levels;
}

LumStatus getPyramidDownROI(LumSize srcRoi, LumSize* dstRoi, Lum32f rate) {
    if (auto s = firstFailure(checkNotNull(dstRoi), checkSize(srcRoi), checkRate(rate))) return s;
    *dstRoi = sizeBelow(srcRoi, rate);
    return lumStatusOk;
}

LumStatus getPyramidDownROIL(LumSizeL srcRoi, LumSizeL* dstRoi, Lum32f rate) {
    if (auto s =
            firstFailure(checkNotNull(dstRoi), checkSize(srcRoi), checkSizeIn32Bits(srcRoi), checkRate(rate)))
        return s;
    const LumSize below = sizeBelow(in32Bits(srcRoi), rate);
    *dstRoi = {below.width, below.height};
    return lumStatusOk;
}

LumStatus getPyramidUpROI(LumSize srcRoi, LumSize* dstRoiMin, LumSize* dstRoiMax, Lum32f rate) {
    if (auto s = firstFailure(checkNotNull(dstRoiMin, dstRoiMax), checkSize(srcRoi), checkRate(rate)))
        return s;
    *dstRoiMin = sizeAbove(srcRoi, rate, &LengthRange::least);
    *dstRoiMax = sizeAbove(srcRoi, rate, &LengthRange::most);
    return lumStatusOk;
}

LumStatus getPyramidUpROIL(LumSizeL srcRoi, LumSizeL* dstRoiMin, LumSizeL* dstRoiMax, Lum32f rate) {
    if (auto s = firstFailure(checkNotNull(dstRoiMin, dstRoiMax), checkSize(srcRoi),
                              checkSizeIn32Bits(srcRoi), checkRate(rate)))
        return s;
    LumSize least;
    LumSize most;
    const LumStatus status = getPyramidUpROI(in32Bits(srcRoi), &least, &most, rate);
    *dstRoiMin = {least.width, least.height};
    *dstRoiMax = {most.width, most.height};
    return status;
}

} // namespace lum
