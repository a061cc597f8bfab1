// Products of 32-bit elements in 64 bits.
#pragma once

#include "frame/lanes.h"

namespace lum {

/// a(0) x b(0), a(2) x b(2), ... of unsigned elements, whole.
template <int N>
LUM_LANE Block<std::uint64_t, N / 2> evenProducts(Block<std::uint32_t, N> a, Block<std::uint32_t, N> b) {
    using R = std::uint64_t;
    if constexpr (!isOneVector<std::uint32_t, N>)
        return {evenProducts(a.low, b.low), evenProducts(a.high, b.high)};
    else if constexpr (Block<std::uint32_t, N>::registerBytes == 16)
        return blockOf<R, N / 2>(_mm_mul_epu32(rawInteger(a.v), rawInteger(b.v)));
    else if constexpr (Block<std::uint32_t, N>::registerBytes == 32)
        return blockOf<R, N / 2>(_mm256_mul_epu32(rawInteger(a.v), rawInteger(b.v)));
    else
        return blockOf<R, N / 2>(_mm512_mul_epu32(rawInteger(a.v), rawInteger(b.v)));
}

} // namespace lum
