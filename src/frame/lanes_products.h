// Products of integers that keep what a plain product would lose: whole, their high halves, or added in pairs.
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

/// The high 16 bits of each product; signed or unsigned as the elements are.
template <class T, int N> LUM_LANE Block<T, N> multiplyHigh(Block<T, N> a, Block<T, N> b) {
    static_assert(std::is_integral_v<T> && sizeof(T) == 2);
    if constexpr (!isOneVector<T, N>) {
        return {multiplyHigh(a.low, b.low), multiplyHigh(a.high, b.high)};
    } else {
        const auto x = rawInteger(a.v);
        const auto y = rawInteger(b.v);
        constexpr bool isSigned = std::is_signed_v<T>;
        if constexpr (Block<T, N>::registerBytes == 16)
            return blockOf<T, N>(isSigned ? _mm_mulhi_epi16(x, y) : _mm_mulhi_epu16(x, y));
        else if constexpr (Block<T, N>::registerBytes == 32)
            return blockOf<T, N>(isSigned ? _mm256_mulhi_epi16(x, y) : _mm256_mulhi_epu16(x, y));
        else
            return blockOf<T, N>(isSigned ? _mm512_mulhi_epi16(x, y) : _mm512_mulhi_epu16(x, y));
    }
}

/// a(2i) x b(2i) + a(2i + 1) x b(2i + 1), exact in 32 bits but for four times -32768.
template <int N>
LUM_LANE Block<std::int32_t, N / 2> multiplyAddPairs(Block<std::int16_t, N> a, Block<std::int16_t, N> b) {
    using R = std::int32_t;
    if constexpr (!isOneVector<std::int16_t, N>)
        return {multiplyAddPairs(a.low, b.low), multiplyAddPairs(a.high, b.high)};
    else if constexpr (Block<std::int16_t, N>::registerBytes == 16)
        return blockOf<R, N / 2>(_mm_madd_epi16(rawInteger(a.v), rawInteger(b.v)));
    else if constexpr (Block<std::int16_t, N>::registerBytes == 32)
        return blockOf<R, N / 2>(_mm256_madd_epi16(rawInteger(a.v), rawInteger(b.v)));
    else
        return blockOf<R, N / 2>(_mm512_madd_epi16(rawInteger(a.v), rawInteger(b.v)));
}

/// The same of bytes and signed bytes, saturated to 16 bits.
template <int N>
LUM_LANE Block<std::int16_t, N / 2> multiplyAddPairs(Block<std::uint8_t, N> a, Block<std::int8_t, N> b) {
    using R = std::int16_t;
    if constexpr (!isOneVector<std::uint8_t, N>)
        return {multiplyAddPairs(a.low, b.low), multiplyAddPairs(a.high, b.high)};
    else if constexpr (Block<std::uint8_t, N>::registerBytes == 16)
        return blockOf<R, N / 2>(_mm_maddubs_epi16(rawInteger(a.v), rawInteger(b.v)));
    else if constexpr (Block<std::uint8_t, N>::registerBytes == 32)
        return blockOf<R, N / 2>(_mm256_maddubs_epi16(rawInteger(a.v), rawInteger(b.v)));
    else
        return blockOf<R, N / 2>(_mm512_maddubs_epi16(rawInteger(a.v), rawInteger(b.v)));
}

} // namespace lum
