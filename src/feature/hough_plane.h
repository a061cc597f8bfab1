// The plane of lines: how many steps of rho and theta it has.
#pragma once

#include <cstdint>

#include "frame/check.h"
#include "frame/convert.h"
#include "lumcv/hough.h"

namespace lum {

/// The largest angle, and the number that counts angles: five decimals in single precision, also where it is used as a
/// double.
inline constexpr float houghPi = 3.14159F;

struct HoughPlane {
    Lum32s rhoCount;
    Lum32s thetaCount;

    /// Steps above 0.
    HoughPlane(LumSize roiSize, LumPoint32f delta)
        : rhoCount(truncatedTo32s(static_cast<double>(
              static_cast<float>(2 * (std::int64_t{roiSize.width} + roiSize.height) + 1) / delta.x))),
          thetaCount(static_cast<Lum32s>(static_cast<unsigned>(truncatedTo32s(static_cast<double>(houghPi) /
                                                                              static_cast<double>(delta.y))) +
                                         1)) {}

    Lum32s halfRho() const { return (rhoCount - 1) / 2; }
};

/// NaN is no step.
inline LumStatus checkHoughSteps(LumPoint32f delta) {
    return errorIf(!(delta.x > 0) || !(delta.y > 0), lumStatusBadArgument);
}

} // namespace lum
