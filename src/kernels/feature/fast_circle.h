// The circles of the segment test: the pixels around a centre, in order, beginning below it.
#pragma once

#include "lumcv/types.h"

namespace lum::kernels {

inline constexpr int longestPerimeter = 52;

/// Pixels of the circle of a radius; 0 where there is none.
constexpr int perimeterOf(int radius) {
    switch (radius) {
    case 1:
        return 8;
    case 2:
        return 12;
    case 3:
        return 16;
    case 5:
        return 28;
    case 7:
        return 40;
    case 9:
        return 52;
    default:
        return 0;
    }
}

/// The distances of the circle's pixels from the centre; the radius has a circle.
const LumPoint* circleOf(int radius);

} // namespace lum::kernels
