// The upwind update of one pixel from its neighbours in two directions, for gradients of length 1.
#pragma once

#include <algorithm>
#include <cmath>

namespace lum::kernels {

/// The distance that the nearest pixel's chain starts from where nothing is known.
inline constexpr float unknownDistance = 999999.0F;
/// What pixels outside hold where one inside is next to them.
inline constexpr float contourDistance = -1e-10F;

/// Outside the mask nothing, the contour, or a distance.
struct OutsideUpdate {
    enum Kind { none, contour, distance } kind;
    float value;
};

/// The rules for a mask with a band of distances outside, or without.
template <bool hasBand> struct Eikonal {
    /// Values outside count as 0.
    static float fromInside(float value) { return hasBand && !(value > 0) ? 0 : value; }

    static float inside(float a, float b) {
        a = fromInside(a);
        b = fromInside(b);
        const float difference = a - b;
        if (std::fabs(difference) < 1) return (a + b + std::sqrt(2 - difference * difference)) * 0.5F;
        return std::min(a, b) + 1;
    }
    /// At the beginning of a pass, where one neighbour is missing.
    static float insideFromOne(float a) { return fromInside(a) + 1; }

    static OutsideUpdate outside(float a, float b) {
        if (a > 0 || b > 0) return {OutsideUpdate::contour, contourDistance};
        if (a == 0 && b == 0) return {OutsideUpdate::none, 0};
        if (a == 0 || b == 0) return {OutsideUpdate::distance, std::min(a, b) - 1};
        const float difference = a - b;
        if (std::fabs(difference) < 1)
            return {OutsideUpdate::distance, (a + b - std::sqrt(2 - difference * difference)) * 0.5F};
        return {OutsideUpdate::distance, std::max(a, b) - 1};
    }
    static OutsideUpdate outsideFromOne(float a) {
        if (a > 0) return {OutsideUpdate::contour, contourDistance};
        if (a == 0) return {OutsideUpdate::none, 0};
        return {OutsideUpdate::distance, a - 1};
    }
};

} // namespace lum::kernels
