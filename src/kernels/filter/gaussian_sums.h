// What the Gaussian stages share: the weighted sums of floats that a block adds up, the same along rows and down columns,
// and the choice of a row stage.
#pragma once

#include "frame/lanes_aligned.h"
#include "kernels/filter/gaussian.h"

namespace lum::kernels {

/// Where the elements lie: rows of a ring begin on vectors, taps along a row do not.
enum class Rows { aligned, anywhere };

template <Rows rows, int n> LUM_LANE Block<float, n> loadFrom(const float* place) {
    if constexpr (rows == Rows::aligned)
        return loadAligned<n>(place);
    else
        return load<n>(place);
}

/// The weighted sums of the N elements at equal distance before and after, as the first pair.
template <Rows rows, int N = 16>
LUM_LANE Block<float, N> firstPair(const float* before, const float* after, const Uniform<float>& weight) {
    return fromVectors<float, N>([&]<int n>(int i) LUM_INLINED {
        return (loadFrom<rows, n>(before + i) + loadFrom<rows, n>(after + i)) * weight;
    });
}

/// The sums with a further pair added.
template <Rows rows, int N>
LUM_LANE Block<float, N> withPair(Block<float, N> sums, const float* before, const float* after,
                                  const Uniform<float>& weight) {
    return mapVectors(sums, [&]<int n>(Block<float, n> sum, int i) LUM_INLINED {
        return sum + (loadFrom<rows, n>(before + i) + loadFrom<rows, n>(after + i)) * weight;
    });
}

/// The sums with the weighted elements in the middle of the pairs added.
template <Rows rows, int N>
LUM_LANE Block<float, N> withMiddle(Block<float, N> sums, const float* middle, const Uniform<float>& weight) {
    return mapVectors(sums, [&]<int n>(Block<float, n> sum, int i)
                                LUM_INLINED { return sum + loadFrom<rows, n>(middle + i) * weight; });
}

/// The row stage for a radius: 3, 5 and 7 taps have one of their own.
template <class S, class Stages> GaussianRow<S>* rowOfRadius(int radius) {
    switch (radius) {
    case 1:
        return Stages::template ofRadius<1>;
    case 2:
        return Stages::template ofRadius<2>;
    case 3:
        return Stages::template ofRadius<3>;
    default:
        return Stages::ofAnyRadius;
    }
}

} // namespace lum::kernels
