// What integral images sum of a pixel, and how an exact sum enters a result.
#pragma once

#include <type_traits>

#include "frame/lanes_running.h"

namespace lum::kernels {

/// The pixel or its square.
template <SumOf of> int summand(Lum8u pixel) { return of == SumOf::bytes ? pixel : pixel * pixel; }

/// Sums below 2 to the 31 as elements of a result: floats round once, doubles are exact.
template <class Out, int N> LUM_LANE Block<Out, N> converted(Block<Lum32s, N> sums) {
    if constexpr (std::is_same_v<Out, Lum32s>)
        return sums;
    else if constexpr (std::is_same_v<Out, Lum32f>)
        return toFloat(sums);
    else
        return toDouble(sums);
}

} // namespace lum::kernels
