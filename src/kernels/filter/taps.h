// A kernel of one stage, along rows or down columns.
#pragma once

#include <cstdint>
#include <type_traits>

#include "lumcv/types.h"

namespace lum::kernels {

/// Coefficients, and the reciprocal of their divisor: 1 for kernels of floats, which have none.
template <class K> struct Taps {
    const K* coefficients;
    int count;
    float scale;
};

/// The coefficients times the scale; kernels of floats have none.
template <class K> auto scaledWeight(Taps<K> taps) {
    return [taps](int k) {
        if constexpr (std::is_floating_point_v<K>)
            return taps.coefficients[k];
        else
            return static_cast<float>(taps.coefficients[k]) * taps.scale;
    };
}

/// Lum16s and Lum16u.
template <class K> std::int64_t sumOfMagnitudes(const K* kernel, int taps) {
    std::int64_t sum = 0;
    for (int k = 0; k < taps; ++k) sum += kernel[k] < 0 ? -kernel[k] : kernel[k];
    return sum;
}

} // namespace lum::kernels
