// Where a patch lies between the pixels of its source, and the weights that follow.
#pragma once

#include <cstdint>

#include "kernels/motion/subpix.h"
#include "lumcv/types.h"

namespace lum {

/// The fraction of a position above the next lower integer. One just below an integer may round to 1.
float fractionOf(float position);

/// The weights of single precision.
kernels::FloatQuad floatWeights(float fx, float fy);

/// Fraction in 14 bits, rounded to nearest; below 0 where the fraction is.
int fixedFraction(float fraction);
/// Weights of 14 bits, of which the largest gives up what the four sum to beyond 1.
kernels::FixedQuad fixedWeights(int ax, int ay, kernels::FixedScale scale);

/// One direction of a patch around a point.
struct PatchSpan {
    /// Source position of the patch's first pixel, which may lie outside; an integer that holds every sum of a position and a
    /// length.
    std::int64_t start;
    /// What the position has beyond `start`.
    float fraction;
    /// Pixels of the patch that lie between two of the source; none where last is below first.
    Lum32s first;
    Lum32s last;
};
PatchSpan placedPatch(Lum32s sourceLength, Lum32s patchLength, float centre);

} // namespace lum
