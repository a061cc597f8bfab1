#include "motion/subpix_placement.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "frame/convert.h"

namespace lum {

using kernels::FixedQuad;
using kernels::FixedScale;
using kernels::FloatQuad;

float fractionOf(float position) {
    // From 2^23 on a float has no fraction.
    const bool whole = !(std::fabs(position) < 8388608.0F);
    const float difference = position - (whole ? position : static_cast<float>(truncatedIndex(position)));
    return difference < 0 ? 1 + difference : difference;
}

FloatQuad floatWeights(float fx, float fy) {
    return {(1 - fx) * (1 - fy), fx * (1 - fy), (1 - fx) * fy, fx * fy};
}

int fixedFraction(float fraction) { return static_cast<Lum16s>(truncatedIndex(fraction * 16384 + 0.5F)); }

FixedQuad fixedWeights(int ax, int ay, FixedScale scale) {
    const int bx = 16384 - ax;
    const int by = 16384 - ay;
    // A whole unit and not half of one is added, so that the four sum to 1 to 4 more than 16384. The largest gives that up.
    const auto product = [](int a, int b) { return (a * b + 16384) >> 14; };
    FixedQuad w{product(bx, by), product(ax, by), product(bx, ay), product(ax, ay), scale};
    const int difference = 16384 - (w.w00 + w.w01 + w.w10 + w.w11);
    if (w.w00 >= std::max({w.w01, w.w10, w.w11}))
        w.w00 += difference;
    else if (w.w10 >= std::max({w.w00, w.w01, w.w11}))
        w.w10 += difference;
    else if (w.w01 >= std::max({w.w00, w.w10, w.w11}))
        w.w01 += difference;
    else
        w.w11 += difference;
    return w;
}

PatchSpan placedPatch(Lum32s sourceLength, Lum32s patchLength, float centre) {
    const auto length = static_cast<float>(patchLength);
    const float corner = centre - static_cast<float>(patchLength - 1) * 0.5F;
    const float sum = length + corner;
    PatchSpan span{};
    if (std::fabs(sum) < 2147483648.0F) {
        span.start = std::int64_t{truncatedIndex(sum)} - patchLength;
        // Nearly every start has 32 bits, which 32-bit processors convert by one instruction.
        const auto start = static_cast<Lum32s>(span.start);
        span.fraction =
            corner - (start == span.start ? static_cast<float>(start) : static_cast<float>(span.start));
    } else {
        // No index holds the position: it lies outside of every source, at the far side or, not a number too, the near.
        span.start = sum > 0 ? std::numeric_limits<Lum32s>::max() : -std::int64_t{patchLength};
    }

    const std::int64_t excess = span.start + patchLength - 1 - (std::int64_t{sourceLength} - 2);
    span.first = static_cast<Lum32s>(std::clamp<std::int64_t>(-span.start, 0, patchLength));
    span.last = patchLength - 1 - static_cast<Lum32s>(std::clamp<std::int64_t>(excess, 0, patchLength));
    if (span.start >= sourceLength) span.first = 0;
    if (span.start >= sourceLength || span.start <= -std::int64_t{patchLength}) span.last = -1;
    return span;
}

} // namespace lum
