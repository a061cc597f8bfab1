// The sums over a tracking window, in double precision. Each of eight columns has a sum of its own, which takes the
// window row by row; the eight are added in pairs at the end.
#pragma once

#include <cstddef>

#include "lumcv/types.h"

namespace lum::kernels {

/// Windows of one size, whose rows lie one after the other and are filled up with zeros to a multiple of eight.
struct FlowWindows {
    const Lum64f* values; ///< of the first picture
    const Lum64f* dx;     ///< their derivatives
    const Lum64f* dy;
    const Lum32f* moved; ///< of the second picture
    int pitch;           ///< elements of a row
    int width;
    int height;
};

inline constexpr int flowColumns = 8;

struct GradientSums {
    double xx, xy, yy;
};
/// dx dx, dx dy, dy dy.
GradientSums gradientSumsScalar(const FlowWindows& windows);
GradientSums gradientSums(const FlowWindows& windows);

struct MismatchSums {
    double x, y;
};
/// dx (values - moved), dy (values - moved).
MismatchSums mismatchSumsScalar(const FlowWindows& windows);
MismatchSums mismatchSums(const FlowWindows& windows);

/// (values - moved)^2 without the last row and the last column.
double squaredErrorScalar(const FlowWindows& windows);
double squaredError(const FlowWindows& windows);

} // namespace lum::kernels
