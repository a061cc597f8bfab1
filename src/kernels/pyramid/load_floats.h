// Elements of even and of odd index, apart, as blocks of floats.
#pragma once

#include <limits>
#include <type_traits>

#include "frame/convert_lanes.h"

namespace lum::kernels {

/// The elements of even and of odd index of 2 * N elements: floats, or the halves of integers of twice the size.
template <int N, class T> LUM_LANE auto evenHalves(Block<T, 2 * N> a) {
    if constexpr (std::is_floating_point_v<T>) {
        return evenElements(a);
    } else {
        using Wide = SignedOf<2 * sizeof(T)>;
        return bitsAs<Wide>(a) & broadcast<N>(Wide{std::numeric_limits<T>::max()});
    }
}
template <int N, class T> LUM_LANE auto oddHalves(Block<T, 2 * N> a) {
    if constexpr (std::is_floating_point_v<T>) {
        return oddElements(a);
    } else {
        constexpr int bits = 8 * sizeof(T);
        return bitsAs<SignedOf<2 * sizeof(T)>>(bitsAs<UnsignedOf<2 * sizeof(T)>>(a) >> bits);
    }
}

template <class T, int N> LUM_LANE Block<float, N> asFloats(Block<T, N> a) {
    if constexpr (std::is_floating_point_v<T>)
        return a;
    else
        return toFloat(a);
}

/// Those elements as floats.
template <int N, class T> LUM_LANE Block<float, N> evenFloats(Block<T, 2 * N> a) {
    return asFloats(evenHalves<N>(a));
}
template <int N, class T> LUM_LANE Block<float, N> oddFloats(Block<T, 2 * N> a) {
    return asFloats(oddHalves<N>(a));
}

/// The sums of those elements of two blocks as floats. Sums of integers are exact either way.
template <int N, class T> LUM_LANE Block<float, N> evenSums(Block<T, 2 * N> a, Block<T, 2 * N> b) {
    if constexpr (std::is_floating_point_v<T>)
        return evenElements(a + b);
    else
        return toFloat(evenHalves<N>(a) + evenHalves<N>(b));
}
template <int N, class T> LUM_LANE Block<float, N> oddSums(Block<T, 2 * N> a, Block<T, 2 * N> b) {
    if constexpr (std::is_floating_point_v<T>)
        return oddElements(a + b);
    else
        return toFloat(oddHalves<N>(a) + oddHalves<N>(b));
}

} // namespace lum::kernels
