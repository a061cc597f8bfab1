// What a block of the Gaussian stages adds up, the same along rows and down columns: sixteen weighted sums.
#pragma once

#include "frame/lanes.h"

namespace lum::kernels {

/// The weighted sums of the elements at equal distance before and after, as the first pair.
LUM_LANE Float16 firstPair(const float* before, const float* after, const Uniform<float>& weight) {
    return fromVectors<float, 16>(
        [&]<int n>(int i) LUM_INLINED { return (load<n>(before + i) + load<n>(after + i)) * weight; });
}

/// The sums with a further pair added.
LUM_LANE Float16 withPair(Float16 sums, const float* before, const float* after,
                          const Uniform<float>& weight) {
    return mapVectors(sums, [&]<int n>(Block<float, n> sum, int i) LUM_INLINED {
        return sum + (load<n>(before + i) + load<n>(after + i)) * weight;
    });
}

/// The sums with the weighted elements in the middle of the pairs added.
LUM_LANE Float16 withMiddle(Float16 sums, const float* middle, const Uniform<float>& weight) {
    return mapVectors(sums, [&]<int n>(Block<float, n> sum, int i)
                                LUM_INLINED { return sum + load<n>(middle + i) * weight; });
}

} // namespace lum::kernels
