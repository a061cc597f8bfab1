// Checks that families of features share.
#pragma once

#include "filter/border.h"
#include "frame/check.h"

namespace lum {

/// The derivative filters by number.
inline constexpr int sobelFilter = 2;
inline constexpr int scharrFilter = 5;
inline constexpr int centralFilter = 8;

/// Replicate and constant with any flags, or the four flags alone.
constexpr LumStatus checkBorderWithoutMirror(LumBorderType border) {
    const LumBorderType kind = border & borderKindBits;
    const bool accepted =
        border >= 0 && border <= 255 &&
        (border == lumBorderInMemory || kind == lumBorderReplicate || kind == lumBorderConstant);
    return errorIf(!accepted, lumStatusBorderError);
}

/// The masks of a filter; a number that is no filter has none.
constexpr LumStatus checkFilter(int filterKind, LumMaskSize mask) {
    if (filterKind != sobelFilter && filterKind != scharrFilter && filterKind != centralFilter)
        return lumStatusAlgorithmError;
    const bool accepted = mask == lumMask3x3 || (filterKind == sobelFilter && mask == lumMask5x5);
    return errorIf(!accepted, lumStatusMaskSizeError);
}

} // namespace lum
