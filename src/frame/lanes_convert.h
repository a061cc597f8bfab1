// Conversions between blocks of other element sizes, in element order.
#pragma once

#include "frame/lanes.h"

namespace lum {

// ---- to wider integers

template <class U, class T, int N> LUM_LANE Block<U, N> widen(Block<T, N> a);

namespace lanes_detail {

/// Twice the element size, of a block that is one vector, to one vector.
template <class U, class T, int N> LUM_LANE Block<U, N> widenOnce(Block<T, N> a) {
    constexpr bool isSigned = std::is_signed_v<T>;
    constexpr int bytes = N * static_cast<int>(sizeof(U));
    const auto x = rawInteger(a.v);
    if constexpr (vectorBytes == 16) {
        // The low half; the sign fills the upper half of each element.
        const __m128i upper = isSigned ? (sizeof(T) == 1   ? _mm_cmpgt_epi8(_mm_setzero_si128(), x)
                                          : sizeof(T) == 2 ? _mm_srai_epi16(x, 15)
                                                           : _mm_srai_epi32(x, 31))
                                       : _mm_setzero_si128();
        return blockOf<U, N>(sizeof(T) == 1   ? _mm_unpacklo_epi8(x, upper)
                             : sizeof(T) == 2 ? _mm_unpacklo_epi16(x, upper)
                                              : _mm_unpacklo_epi32(x, upper));
    } else if constexpr (bytes <= 16) {
        if constexpr (isSigned)
            return blockOf<U, N>(sizeof(T) == 1   ? _mm_cvtepi8_epi16(x)
                                 : sizeof(T) == 2 ? _mm_cvtepi16_epi32(x)
                                                  : _mm_cvtepi32_epi64(x));
        else
            return blockOf<U, N>(sizeof(T) == 1   ? _mm_cvtepu8_epi16(x)
                                 : sizeof(T) == 2 ? _mm_cvtepu16_epi32(x)
                                                  : _mm_cvtepu32_epi64(x));
    } else if constexpr (bytes == 32) {
        if constexpr (isSigned)
            return blockOf<U, N>(sizeof(T) == 1   ? _mm256_cvtepi8_epi16(x)
                                 : sizeof(T) == 2 ? _mm256_cvtepi16_epi32(x)
                                                  : _mm256_cvtepi32_epi64(x));
        else
            return blockOf<U, N>(sizeof(T) == 1   ? _mm256_cvtepu8_epi16(x)
                                 : sizeof(T) == 2 ? _mm256_cvtepu16_epi32(x)
                                                  : _mm256_cvtepu32_epi64(x));
    } else {
        if constexpr (isSigned)
            return blockOf<U, N>(sizeof(T) == 1   ? _mm512_cvtepi8_epi16(x)
                                 : sizeof(T) == 2 ? _mm512_cvtepi16_epi32(x)
                                                  : _mm512_cvtepi32_epi64(x));
        else
            return blockOf<U, N>(sizeof(T) == 1   ? _mm512_cvtepu8_epi16(x)
                                 : sizeof(T) == 2 ? _mm512_cvtepu16_epi32(x)
                                                  : _mm512_cvtepu32_epi64(x));
    }
}

/// Four of 16 bytes, from the given one on, as 32-bit integers; a shuffle spreads them in one step.
template <class U, int first> LUM_LANE Block<U, 4> widenFour(Block<std::uint8_t, 16> a) {
    constexpr int none = static_cast<int>(0x80808000);
    return blockOf<U, 4>(
        _mm_shuffle_epi8(rawInteger(a.v), _mm_setr_epi32(none | first, none | (first + 1), none | (first + 2),
                                                         none | (first + 3))));
}

/// The upper half of a 16-byte vector, widened.
template <class U, class T, int N> LUM_LANE Block<U, N / 2> widenHigh(Block<T, N> a) {
    constexpr bool isSigned = std::is_signed_v<T>;
    const __m128i x = rawInteger(a.v);
    const __m128i upper = isSigned ? (sizeof(T) == 1   ? _mm_cmpgt_epi8(_mm_setzero_si128(), x)
                                      : sizeof(T) == 2 ? _mm_srai_epi16(x, 15)
                                                       : _mm_srai_epi32(x, 31))
                                   : _mm_setzero_si128();
    return blockOf<U, N / 2>(sizeof(T) == 1   ? _mm_unpackhi_epi8(x, upper)
                             : sizeof(T) == 2 ? _mm_unpackhi_epi16(x, upper)
                                              : _mm_unpackhi_epi32(x, upper));
}

} // namespace lanes_detail

/// Elements as a wider integer type of the same value: Lum8u to Lum16u, Lum16s or Lum32s, Lum16s to Lum32s, ...
template <class U, class T, int N> LUM_LANE Block<U, N> widen(Block<T, N> a) {
    static_assert(std::is_integral_v<T> && std::is_integral_v<U> && sizeof(U) >= sizeof(T));
    if constexpr (sizeof(U) == sizeof(T)) {
        return bitsAs<U>(a);
    } else if constexpr (vectorBytes == 16 && std::is_same_v<T, std::uint8_t> && sizeof(U) == 4 && N == 16) {
        using namespace lanes_detail;
        return {{widenFour<U, 0>(a), widenFour<U, 4>(a)}, {widenFour<U, 8>(a), widenFour<U, 12>(a)}};
    } else if constexpr (sizeof(U) > 2 * sizeof(T)) {
        using Between =
            std::conditional_t<std::is_signed_v<T>, SignedOf<2 * sizeof(T)>, UnsignedOf<2 * sizeof(T)>>;
        return widen<U>(widen<Between>(a));
    } else if constexpr (isOneVector<U, N>) {
        return lanes_detail::widenOnce<U>(a);
    } else if constexpr (vectorBytes == 16 && isOneVector<T, N>) {
        return {lanes_detail::widenOnce<U>(lowHalf(a)), lanes_detail::widenHigh<U>(a)};
    } else {
        return {widen<U>(lowHalf(a)), widen<U>(highHalf(a))};
    }
}

// ---- to narrower integers

namespace lanes_detail {

/// Two vectors of 16-bit (32-bit) signed elements packed into one of 8-bit (16-bit) elements: within each unit of 16
/// bytes those of `low`, then those of `high`.
template <class U, class V> LUM_LANE V packedUnits(V low, V high) {
    constexpr bool toByte = sizeof(U) == 1;
    constexpr bool isSigned = std::is_signed_v<U>;
    if constexpr (sizeof(V) == 16) {
        if constexpr (toByte)
            return isSigned ? _mm_packs_epi16(low, high) : _mm_packus_epi16(low, high);
        else if constexpr (isSigned)
            return _mm_packs_epi32(low, high);
        else if constexpr (vectorBytes == 16) {
            // There is no such packing: negative elements become 0, then all move to the signed range.
            const __m128i middle = _mm_set1_epi32(32768);
            const __m128i a = _mm_sub_epi32(_mm_andnot_si128(_mm_srai_epi32(low, 31), low), middle);
            const __m128i b = _mm_sub_epi32(_mm_andnot_si128(_mm_srai_epi32(high, 31), high), middle);
            return _mm_xor_si128(_mm_packs_epi32(a, b), _mm_set1_epi16(-32768));
        } else
            return _mm_packus_epi32(low, high);
    } else if constexpr (sizeof(V) == 32) {
        return toByte ? (isSigned ? _mm256_packs_epi16(low, high) : _mm256_packus_epi16(low, high))
                      : (isSigned ? _mm256_packs_epi32(low, high) : _mm256_packus_epi32(low, high));
    } else {
        return toByte ? (isSigned ? _mm512_packs_epi16(low, high) : _mm512_packus_epi16(low, high))
                      : (isSigned ? _mm512_packs_epi32(low, high) : _mm512_packus_epi32(low, high));
    }
}

/// The same in order: all of `low`, then all of `high`.
template <class U, class V> LUM_LANE V packed(V low, V high) {
    const V units = packedUnits<U>(low, high);
    if constexpr (sizeof(V) == 16)
        return units;
    else if constexpr (sizeof(V) == 32)
        return _mm256_permute4x64_epi64(units, 0xD8);
    else
        return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), units);
}

} // namespace lanes_detail

/// Signed elements clamped to the range of a type of half (or a quarter) their size.
template <class U, class T, int N> LUM_LANE Block<U, N> narrowSaturated(Block<T, N> a) {
    static_assert(std::is_signed_v<T> && std::is_integral_v<T> && sizeof(T) <= 4);
    if constexpr (sizeof(U) * 4 == sizeof(T)) {
        return narrowSaturated<U>(narrowSaturated<std::int16_t>(a));
    } else if constexpr (isOneVector<T, N>) {
        if constexpr (Block<T, N>::registerBytes == 16) {
            const __m128i x = rawInteger(a.v);
            return blockOf<U, N>(lanes_detail::packed<U>(x, x));
        } else {
            const auto low = lowHalf(a);
            const auto high = highHalf(a);
            return blockOf<U, N>(lanes_detail::packed<U>(rawInteger(low.v), rawInteger(high.v)));
        }
    } else if constexpr (isOneVector<U, N>) {
        return blockOf<U, N>(lanes_detail::packed<U>(rawInteger(a.low.v), rawInteger(a.high.v)));
    } else {
        return {narrowSaturated<U>(a.low), narrowSaturated<U>(a.high)};
    }
}

/// 32-bit elements that lie in the range of a 16-bit type.
template <class U, class T, int N> LUM_LANE Block<U, N> narrowInRange(Block<T, N> a) {
    static_assert(std::is_same_v<T, std::int32_t> && sizeof(U) == 2);
    if constexpr (std::is_same_v<U, std::uint16_t> && vectorBytes == 16) {
        const auto words = narrowSaturated<std::int16_t>(a - broadcast<N>(T{32768}));
        return bitsAs<U>(words ^ broadcast<N>(static_cast<std::int16_t>(-32768)));
    } else {
        return narrowSaturated<U>(a);
    }
}

/// The low half of the bits of each element.
template <class U, class T, int N> LUM_LANE Block<U, N> narrowWrapped(Block<T, N> a) {
    static_assert(std::is_integral_v<T> && 2 * sizeof(U) == sizeof(T) && sizeof(T) <= 4);
    using S = SignedOf<sizeof(T)>;
    if constexpr (sizeof(T) == 2) {
        const auto low = bitsAs<S>(a) & broadcast<N>(S{0xFF});
        return bitsAs<U>(narrowSaturated<std::uint8_t>(low));
    } else {
        // With the sign of the lower half the packing of signed elements changes nothing.
        return bitsAs<U>(narrowSaturated<std::int16_t>((bitsAs<S>(a) << 16) >> 16));
    }
}

// ---- floats and integers

/// Integers of at most 16 bits are exact; those of 32 bits round to nearest.
template <class T, int N> LUM_LANE Block<float, N> toFloat(Block<T, N> a) {
    if constexpr (sizeof(T) < 4) {
        return toFloat(widen<std::int32_t>(a));
    } else {
        static_assert(std::is_same_v<T, std::int32_t>);
        if constexpr (!isOneVector<T, N>)
            return {toFloat(a.low), toFloat(a.high)};
        else if constexpr (Block<T, N>::registerBytes == 16)
            return {_mm_cvtepi32_ps(rawInteger(a.v))};
        else if constexpr (Block<T, N>::registerBytes == 32)
            return {_mm256_cvtepi32_ps(rawInteger(a.v))};
        else
            return {_mm512_cvtepi32_ps(rawInteger(a.v))};
    }
}

/// Rounded to nearest, ties to even (by the caller's rounding mode). What 32 bits cannot hold gives the lowest of them.
template <int N> LUM_LANE Block<std::int32_t, N> nearestEven(Block<float, N> a) {
    if constexpr (!isOneVector<float, N>)
        return {nearestEven(a.low), nearestEven(a.high)};
    else if constexpr (Block<float, N>::registerBytes == 16)
        return blockOf<std::int32_t, N>(_mm_cvtps_epi32(a.v));
    else if constexpr (Block<float, N>::registerBytes == 32)
        return blockOf<std::int32_t, N>(_mm256_cvtps_epi32(a.v));
    else
        return blockOf<std::int32_t, N>(_mm512_cvtps_epi32(a.v));
}

/// Truncated toward zero. What 32 bits cannot hold gives the lowest of them.
template <int N> LUM_LANE Block<std::int32_t, N> truncated(Block<float, N> a) {
    if constexpr (!isOneVector<float, N>)
        return {truncated(a.low), truncated(a.high)};
    else if constexpr (Block<float, N>::registerBytes == 16)
        return blockOf<std::int32_t, N>(_mm_cvttps_epi32(a.v));
    else if constexpr (Block<float, N>::registerBytes == 32)
        return blockOf<std::int32_t, N>(_mm256_cvttps_epi32(a.v));
    else
        return blockOf<std::int32_t, N>(_mm512_cvttps_epi32(a.v));
}

// ---- doubles

/// Floats or 32-bit integers, four or more, as doubles: exact.
template <class T, int N> LUM_LANE Block<double, N> toDouble(Block<T, N> a) {
    constexpr bool isFloat = std::is_same_v<T, float>;
    static_assert((isFloat || std::is_same_v<T, std::int32_t>)&&N >= 4);
    if constexpr (vectorBytes == 16 && N == 4) {
        const __m128i x = rawInteger(a.v);
        const __m128i upper = _mm_unpackhi_epi64(x, x);
        if constexpr (isFloat)
            return {blockOf<double, 2>(_mm_cvtps_pd(a.v)),
                    blockOf<double, 2>(_mm_cvtps_pd(_mm_castsi128_ps(upper)))};
        else
            return {blockOf<double, 2>(_mm_cvtepi32_pd(x)), blockOf<double, 2>(_mm_cvtepi32_pd(upper))};
    } else if constexpr (!isOneVector<double, N>) {
        return {toDouble(lowHalf(a)), toDouble(highHalf(a))};
    } else if constexpr (Block<double, N>::bytes == 32) {
        if constexpr (isFloat)
            return {_mm256_cvtps_pd(a.v)};
        else
            return {_mm256_cvtepi32_pd(rawInteger(a.v))};
    } else {
        if constexpr (isFloat)
            return {_mm512_cvtps_pd(a.v)};
        else
            return {_mm512_cvtepi32_pd(rawInteger(a.v))};
    }
}

/// Doubles, four or more, rounded to floats.
template <int N> LUM_LANE Block<float, N> toFloat(Block<double, N> a) {
    static_assert(N >= 4);
    if constexpr (vectorBytes == 16 && N == 4)
        return {_mm_movelh_ps(_mm_cvtpd_ps(a.low.v), _mm_cvtpd_ps(a.high.v))};
    else if constexpr (!isOneVector<double, N>)
        return join(toFloat(a.low), toFloat(a.high));
    else if constexpr (Block<double, N>::bytes == 32)
        return {_mm256_cvtpd_ps(a.v)};
    else
        return {_mm512_cvtpd_ps(a.v)};
}

} // namespace lum
