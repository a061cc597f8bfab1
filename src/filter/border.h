// What lies outside a region, side by side: in memory, the nearest edge pixel, the reflection about the edge
// pixel, or a constant. Rows use it along x, and with row indices in the place of pixels along y.
#pragma once

#include <climits>

#include "frame/check.h"
#include "lumcv/border.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

constexpr LumBorderType borderKindBits = 0x0F;

/// The kinds of the linear filters.
constexpr bool isLinearKind(LumBorderType border) {
    const LumBorderType kind = border & borderKindBits;
    return kind == lumBorderReplicate || kind == lumBorderMirror || kind == lumBorderConstant;
}

/// A word of at most eight bits: one of the kinds with any flags, or the four flags alone.
constexpr LumStatus linearBorder(LumBorderType border) {
    const bool accepted =
        border >= 0 && border <= 255 && (border == lumBorderInMemory || isLinearKind(border));
    return errorIf(!accepted, lumStatusBorderError);
}

/// A constant border reads its value, one element a channel.
constexpr LumStatus borderValueMissing(LumBorderType border, const auto* borderValue) {
    return errorIf((border & borderKindBits) == lumBorderConstant && borderValue == nullptr,
                   lumStatusNullPointer);
}

/// The border of one axis: what lies before its first element and after its last.
struct AxisBorder {
    LumBorderType kind;
    bool memoryBefore;
    bool memoryAfter;
};

constexpr AxisBorder horizontalBorder(LumBorderType border) {
    return {border & borderKindBits, (border & lumBorderInMemoryLeft) != 0,
            (border & lumBorderInMemoryRight) != 0};
}

constexpr AxisBorder verticalBorder(LumBorderType border) {
    return {border & borderKindBits, (border & lumBorderInMemoryTop) != 0,
            (border & lumBorderInMemoryBottom) != 0};
}

/// The index of elements that hold the constant of the border.
inline constexpr int outsideConstant = INT_MIN;

/// The element of an axis of `length` elements at index i, which may lie outside: i itself inside and on
/// a side in memory, the index of an inner element, or outsideConstant. A reflection that reaches the far end of
/// the axis turns back there, whatever that side's own rule; an axis of one element has nothing to reflect and
/// repeats it.
constexpr int borderIndex(int i, int length, AxisBorder border) {
    if (i >= 0 && i < length) return i;
    if (i < 0 ? border.memoryBefore : border.memoryAfter) return i;
    if (border.kind == lumBorderConstant) return outsideConstant;
    if (border.kind != lumBorderMirror || length == 1) return i < 0 ? 0 : length - 1;
    const int period = 2 * (length - 1);
    const int distance = (i < 0 ? -i : i) % period;
    return distance < length ? distance : period - distance;
}

} // namespace lum
