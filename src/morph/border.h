// The border word of morphology.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/check.h"
#include "kernels/morph/extended_image.h"
#include "lumcv/border.h"
#include "lumcv/types.h"

namespace lum {

constexpr LumBorderType largestMorphBorder = 4095;

constexpr LumBorderType morphBorderKind(LumBorderType border) { return border & 0x0F; }

/// The flags of the first stage as those of the only one.
constexpr LumBorderType withStagesFolded(LumBorderType border) {
    return ((border & 0xF00) >> 4) | (border & 0x0FF);
}

constexpr bool isMorphKind(LumBorderType kind) {
    return kind == lumBorderReplicate || kind == lumBorderMirror || kind == lumBorderDefaultValue ||
           kind == lumBorderConstant;
}
/// Bit images have no reflection.
constexpr bool isBitMorphKind(LumBorderType kind) { return isMorphKind(kind) && kind != lumBorderMirror; }

/// One of the accepted kinds with any flags, or the flags of all four sides alone.
constexpr LumStatus checkMorphBorder(LumBorderType given, LumBorderType folded, bool isKnownKind) {
    return errorIf(given < 0 || given > largestMorphBorder || (folded != lumBorderInMemory && !isKnownKind),
                   lumStatusBorderError);
}

constexpr LumStatus constantMissing(LumBorderType border, const void* value) {
    return errorIf(morphBorderKind(border) == lumBorderConstant && value == nullptr, lumStatusNullPointer);
}

/// The largest sizes and steps are refused in the members with pointer-wide ones, the sizes with a status of the member's.
constexpr LumStatus checkBelowLimit(LumSizeL roiSize, LumStatus overflow, auto... steps) {
    constexpr std::intptr_t limit = 0x7FFFFFFF;
    return firstFailure(errorIf(roiSize.width >= limit || roiSize.height >= limit, overflow),
                        errorIf(((steps >= limit) || ...), lumStatusStepError));
}

/// The sides in memory, as far as a mask reaches.
constexpr kernels::ReadableMargins readableMargins(LumBorderType border, std::ptrdiff_t up,
                                                   std::ptrdiff_t down, std::ptrdiff_t left,
                                                   std::ptrdiff_t right) {
    return {.top = (border & lumBorderInMemoryTop) != 0 ? up : 0,
            .bottom = (border & lumBorderInMemoryBottom) != 0 ? down : 0,
            .left = (border & lumBorderInMemoryLeft) != 0 ? left : 0,
            .right = (border & lumBorderInMemoryRight) != 0 ? right : 0};
}

} // namespace lum
