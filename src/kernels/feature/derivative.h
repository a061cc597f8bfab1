// First derivatives as separable masks: a column stage that smooths and differences down the rows, and what the
// second stage makes of its two results along a row. Bytes become 16-bit integers, exactly; floats stay floats.
#pragma once

#include <cstddef>
#include <type_traits>

#include "frame/lanes.h"

namespace lum::kernels {

/// The masks: Sobel {1, 2, 1} by {-1, 0, 1} and {1, 4, 6, 4, 1} by {-1, -2, 0, 2, 1}, Scharr {3, 10, 3} by {-1, 0, 1},
/// and the pair of central differences {-1, 0, 1} without smoothing.
enum class Derivative { sobel3, sobel5, scharr3, central3 };

constexpr int reachOf(Derivative kind) { return kind == Derivative::sobel5 ? 2 : 1; }
inline constexpr int largestDerivativeTaps = 5;

/// What the column stage makes of Lum8u or Lum32f.
template <class T> using StageElement = std::conditional_t<std::is_same_v<T, Lum8u>, Lum16s, Lum32f>;

/// A factor times a number or a block.
template <int factor, class V> LUM_LANE V times(V value) {
    if constexpr (std::is_arithmetic_v<V>)
        return value * V{factor};
    else
        return value * broadcast<V::count>(typename V::Element{factor});
}

/// The smoothing of the values under the taps, symmetric pairs first.
template <Derivative kind> LUM_LANE auto smoothed(auto tap) {
    if constexpr (kind == Derivative::sobel3)
        return (tap(0) + tap(2)) + (tap(1) + tap(1));
    else if constexpr (kind == Derivative::scharr3)
        return times<3>(tap(0) + tap(2)) + times<10>(tap(1));
    else if constexpr (kind == Derivative::sobel5)
        return ((tap(0) + tap(4)) + times<4>(tap(1) + tap(3))) + times<6>(tap(2));
    else
        return tap(1);
}

/// The difference of the values under the taps: later minus earlier.
template <Derivative kind> LUM_LANE auto differenced(auto tap) {
    if constexpr (kind == Derivative::sobel5)
        return (tap(4) - tap(0)) + times<2>(tap(3) - tap(1));
    else
        return tap(2) - tap(0);
}

/// The same, earlier minus later.
template <Derivative kind> LUM_LANE auto differencedBackward(auto tap) {
    constexpr int last = 2 * reachOf(kind);
    return differenced<kind>([&](int i) { return tap(last - i); });
}

/// `count` columns of 2 * reach + 1 rows, smoothed and differenced (below minus above). The results are none of the
/// rows. Lum8u, Lum32f.
template <Derivative kind, class T>
void derivativeDownScalar(const T* const* rows, std::ptrdiff_t count, StageElement<T>* smooth,
                          StageElement<T>* difference);
template <Derivative kind, class T>
void derivativeDown(const T* const* rows, std::ptrdiff_t count, StageElement<T>* smooth,
                    StageElement<T>* difference);

} // namespace lum::kernels
