// Sums of floats as the elements of a result.
#pragma once

#include <limits>
#include <type_traits>

#include "frame/convert.h"
#include "frame/lanes_convert.h"
#include "lumcv/types.h"

namespace lum::kernels {

/// Lum8u and Lum16u: to nearest, ties to even, saturated by value; Lum32f as it is. A NaN is the largest integer, since
/// no comparison with it holds.
template <class T> inline T rounded(float sum) {
    if constexpr (std::is_floating_point_v<T>) {
        return sum;
    } else {
        constexpr float highest = std::numeric_limits<T>::max();
        return nearestEven<T>(sum < highest ? sum : highest);
    }
}

template <class T, int N> LUM_LANE Block<T, N> rounded(Block<float, N> sums) {
    if constexpr (std::is_floating_point_v<T>)
        return sums;
    else // below the range the conversion may give the lowest integer, which saturates as well
        return narrowSaturated<T>(nearestEven(min(sums, broadcast<N>(float{std::numeric_limits<T>::max()}))));
}

/// Stores N results, of which sum<n>(i) gives those of a vector from i on.
template <class T, int N, class Sum> LUM_LANE void storeRounded(Sum sum, T* dst) {
    if constexpr (std::is_floating_point_v<T>)
        forVectors<float, N>([&]<int n>(int i)
                                 LUM_INLINED { store(sum.template operator()<n>(i), dst + i); });
    else
        store(rounded<T>(fromVectors<float, N>(sum)), dst);
}

} // namespace lum::kernels
