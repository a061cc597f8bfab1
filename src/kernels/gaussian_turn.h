// A turn of the Gaussian stages, the same along rows and down columns: the weighted sums of sixteen elements.
#pragma once

#include "frame/vector.h"

namespace lum::kernels {

/// A register for each of the four vectors of a turn leaves four for operands and the weight.
struct GaussianTurn {
    __m128 sums[4];
};

enum class Pair { first, further };

/// Adds, or as the first pair sets, the weighted sums of the elements at equal distance before and behind.
template <Pair pair, Access access>
inline void addPair(GaussianTurn& turn, const float* before, const float* behind, __m128 weight) {
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
        const __m128 both =
            _mm_add_ps(loadFloats<access>(before + 4 * i), loadFloats<access>(behind + 4 * i));
        const __m128 product = _mm_mul_ps(both, weight);
        turn.sums[i] = pair == Pair::first ? product : _mm_add_ps(turn.sums[i], product);
    }
}

/// Adds the weighted elements in the middle of the pairs.
template <Access access> inline void addMiddle(GaussianTurn& turn, const float* middle, __m128 weight) {
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i)
        turn.sums[i] = _mm_add_ps(turn.sums[i], _mm_mul_ps(loadFloats<access>(middle + 4 * i), weight));
}

} // namespace lum::kernels
