// What a block of the Gaussian stages adds up, the same along rows and down columns: sixteen weighted sums.
#pragma once

#include "frame/vector.h"

namespace lum::kernels {

/// A register for each of the four vectors of a block leaves four for operands and the weight.
struct GaussianSums {
    __m128 vectors[4];
};

enum class Pair { first, further };

/// Adds, or as the first pair sets, the weighted sums of the elements at equal distance before and after.
template <Pair pair, Access access>
inline void addPair(GaussianSums& sums, const float* before, const float* after, __m128 weight) {
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
        const __m128 both = _mm_add_ps(loadFloats<access>(before + 4 * i), loadFloats<access>(after + 4 * i));
        const __m128 product = _mm_mul_ps(both, weight);
        sums.vectors[i] = pair == Pair::first ? product : _mm_add_ps(sums.vectors[i], product);
    }
}

/// Adds the weighted elements in the middle of the pairs.
template <Access access> inline void addMiddle(GaussianSums& sums, const float* middle, __m128 weight) {
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i)
        sums.vectors[i] = _mm_add_ps(sums.vectors[i], _mm_mul_ps(loadFloats<access>(middle + 4 * i), weight));
}

} // namespace lum::kernels
