// What a block of the Gaussian stages adds up, the same along rows and down columns: sixteen weighted sums.
#pragma once

#include "frame/lanes_aligned.h"

namespace lum::kernels {

/// Where the elements lie: rows of a ring begin on vectors, taps along a row do not.
enum class Rows { aligned, anywhere };

template <Rows rows, int n> LUM_LANE Block<float, n> loadFrom(const float* place) {
    if constexpr (rows == Rows::aligned)
        return loadAligned<n>(place);
    else
        return load<n>(place);
}

/// The weighted sums of the elements at equal distance before and after, as the first pair.
template <Rows rows>
LUM_LANE Float16 firstPair(const float* before, const float* after, const Uniform<float>& weight) {
    return fromVectors<float, 16>([&]<int n>(int i) LUM_INLINED {
        return (loadFrom<rows, n>(before + i) + loadFrom<rows, n>(after + i)) * weight;
    });
}

/// The sums with a further pair added.
template <Rows rows>
LUM_LANE Float16 withPair(Float16 sums, const float* before, const float* after,
                          const Uniform<float>& weight) {
    return mapVectors(sums, [&]<int n>(Block<float, n> sum, int i) LUM_INLINED {
        return sum + (loadFrom<rows, n>(before + i) + loadFrom<rows, n>(after + i)) * weight;
    });
}

/// The sums with the weighted elements in the middle of the pairs added.
template <Rows rows>
LUM_LANE Float16 withMiddle(Float16 sums, const float* middle, const Uniform<float>& weight) {
    return mapVectors(sums, [&]<int n>(Block<float, n> sum, int i)
                                LUM_INLINED { return sum + loadFrom<rows, n>(middle + i) * weight; });
}

} // namespace lum::kernels
