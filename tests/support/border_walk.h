// The border rule the long way: what lies outside a region is found step by step.
#pragma once

#include <climits>
#include <cstdlib>
#include <vector>

#include "support/guarded_image.h"

namespace support {

/// The element of an axis at i, or INT_MAX for the constant; walked step by step.
inline int borderWalk(int i, int length, int kind, bool before, bool after) {
    if ((i < 0 && before) || (i >= length && after) || (i >= 0 && i < length)) return i;
    if (kind == lumBorderConstant) return INT_MAX;
    const int edge = i < 0 ? 0 : length - 1;
    if (kind == lumBorderReplicate || length == 1) return edge;
    int place = edge;
    int direction = i < 0 ? 1 : -1;
    for (int steps = std::abs(i - edge); steps > 0; --steps) {
        place += direction;
        if (place == 0 || place == length - 1) direction = -direction;
    }
    return place;
}

/// What must exist in memory around a region: on the sides with a flag as far as a filter reaches, and nothing else.
inline Margins marginsInMemory(LumBorderType border, int reach) {
    Margins margins;
    if (border & lumBorderInMemoryTop) margins.top = reach;
    if (border & lumBorderInMemoryBottom) margins.bottom = reach;
    if (border & lumBorderInMemoryLeft) margins.left = reach;
    if (border & lumBorderInMemoryRight) margins.right = reach;
    return margins;
}

constexpr int borderKinds[] = {lumBorderReplicate, lumBorderMirror, lumBorderConstant};

inline std::vector<LumBorderType> everyBorder() {
    std::vector<LumBorderType> all{lumBorderInMemory};
    for (LumBorderType kind : borderKinds)
        for (int flags = 0; flags < 16; ++flags) all.push_back(kind | flags << 4);
    return all;
}

} // namespace support
