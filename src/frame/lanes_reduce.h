// What crosses the elements of a block: bits of masks, sums, the order of elements.
#pragma once

#include "frame/lanes_convert.h"

namespace lum {

// ---- masks as bits

/// The sign bit of each element, that of element 0 lowest; at most 64 elements.
template <class T, int N> LUM_LANE auto signBits(Block<T, N> a) {
    using Bits = std::conditional_t<(N > 32), std::uint64_t, std::uint32_t>;
    static_assert(N <= 64);
    if constexpr (!isOneVector<T, N>) {
        return static_cast<Bits>(static_cast<Bits>(signBits(a.low)) | static_cast<Bits>(signBits(a.high))
                                                                          << (N / 2));
    } else {
        const auto x = rawInteger(a.v);
        constexpr std::uint32_t used = N >= 32 ? ~0U : (1U << (N & 31)) - 1;
        if constexpr (sizeof(x) == 64) {
            if constexpr (sizeof(T) == 1)
                return static_cast<Bits>(_mm512_movepi8_mask(x));
            else if constexpr (sizeof(T) == 2)
                return static_cast<Bits>(_mm512_movepi16_mask(x));
            else if constexpr (sizeof(T) == 4)
                return static_cast<Bits>(_mm512_movepi32_mask(x));
            else
                return static_cast<Bits>(_mm512_movepi64_mask(x));
        } else if constexpr (sizeof(x) == 32) {
            if constexpr (sizeof(T) == 1)
                return static_cast<Bits>(_mm256_movemask_epi8(x));
            else if constexpr (sizeof(T) == 2) {
                const __m128i bytes =
                    _mm_packs_epi16(_mm256_castsi256_si128(x), _mm256_extracti128_si256(x, 1));
                return static_cast<Bits>(_mm_movemask_epi8(bytes));
            } else if constexpr (sizeof(T) == 4)
                return static_cast<Bits>(_mm256_movemask_ps(_mm256_castsi256_ps(x)));
            else
                return static_cast<Bits>(_mm256_movemask_pd(_mm256_castsi256_pd(x)));
        } else {
            if constexpr (sizeof(T) == 1)
                return static_cast<Bits>(static_cast<std::uint32_t>(_mm_movemask_epi8(x)) & used);
            else if constexpr (sizeof(T) == 2)
                return static_cast<Bits>(
                    static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(x, x))) & used);
            else if constexpr (sizeof(T) == 4)
                return static_cast<Bits>(static_cast<std::uint32_t>(_mm_movemask_ps(_mm_castsi128_ps(x))) &
                                         used);
            else
                return static_cast<Bits>(_mm_movemask_pd(_mm_castsi128_pd(x)));
        }
    }
}

/// Whether any element of a mask is set.
template <class T, int N> LUM_LANE bool any(Block<T, N> mask) {
    if constexpr (!isOneVector<T, N>)
        return any(mask.low | mask.high);
    else if constexpr (sizeof(mask.v) == 64)
        return _mm512_test_epi64_mask(rawInteger(mask.v), rawInteger(mask.v)) != 0;
    else
        return signBits(bitsAs<std::int8_t>(mask)) != 0;
}

// ---- sums

/// Sums of groups of eight bytes.
template <int N> LUM_LANE Block<std::uint64_t, N / 8> byteSums(Block<std::uint8_t, N> a) {
    using R = std::uint64_t;
    if constexpr (!isOneVector<std::uint8_t, N>)
        return {byteSums(a.low), byteSums(a.high)};
    else if constexpr (Block<std::uint8_t, N>::registerBytes == 16)
        return blockOf<R, N / 8>(_mm_sad_epu8(rawInteger(a.v), _mm_setzero_si128()));
    else if constexpr (Block<std::uint8_t, N>::registerBytes == 32)
        return blockOf<R, N / 8>(_mm256_sad_epu8(rawInteger(a.v), _mm256_setzero_si256()));
    else
        return blockOf<R, N / 8>(_mm512_sad_epu8(rawInteger(a.v), _mm512_setzero_si512()));
}

/// The one element of a block of integers.
template <class T> LUM_LANE T onlyElement(Block<T, 1> a) {
    T element;
    std::memcpy(&element, &a.v, sizeof(T));
    return element;
}

/// The wrapping sum of all elements of an integer block.
template <class T, int N> LUM_LANE T sumOf(Block<T, N> a) {
    static_assert(std::is_integral_v<T>, "sums of floats are the order of their additions");
    if constexpr (N == 1) {
        return onlyElement(a);
    } else {
        return sumOf(lowHalf(a) + highHalf(a));
    }
}

// ---- the order of elements

/// Bytes picked within each unit of 16 bytes: element i is a(i - i % 16 + indices(i) % 16), or 0 where the index's
/// highest bit is set.
template <int N>
LUM_LANE Block<std::uint8_t, N> shuffleUnits(Block<std::uint8_t, N> a, Block<std::uint8_t, N> indices) {
    using T = std::uint8_t;
    if constexpr (!isOneVector<T, N>)
        return {shuffleUnits(a.low, indices.low), shuffleUnits(a.high, indices.high)};
    else if constexpr (Block<T, N>::registerBytes == 16)
        return blockOf<T, N>(_mm_shuffle_epi8(rawInteger(a.v), rawInteger(indices.v)));
    else if constexpr (Block<T, N>::registerBytes == 32)
        return blockOf<T, N>(_mm256_shuffle_epi8(rawInteger(a.v), rawInteger(indices.v)));
    else
        return blockOf<T, N>(_mm512_shuffle_epi8(rawInteger(a.v), rawInteger(indices.v)));
}

/// 16 bytes in every unit of 16.
template <int N> LUM_LANE Block<std::uint8_t, N> repeatUnit(Block<std::uint8_t, 16> unit) {
    if constexpr (N == 16)
        return unit;
    else {
        const auto half = repeatUnit<N / 2>(unit);
        return join(half, half);
    }
}

namespace lanes_detail {

template <class T, class V> LUM_LANE V unpackLow(V a, V b) {
    if constexpr (sizeof(V) == 16)
        return sizeof(T) == 1   ? _mm_unpacklo_epi8(a, b)
               : sizeof(T) == 2 ? _mm_unpacklo_epi16(a, b)
               : sizeof(T) == 4 ? _mm_unpacklo_epi32(a, b)
                                : _mm_unpacklo_epi64(a, b);
    else if constexpr (sizeof(V) == 32)
        return sizeof(T) == 1   ? _mm256_unpacklo_epi8(a, b)
               : sizeof(T) == 2 ? _mm256_unpacklo_epi16(a, b)
               : sizeof(T) == 4 ? _mm256_unpacklo_epi32(a, b)
                                : _mm256_unpacklo_epi64(a, b);
    else
        return sizeof(T) == 1   ? _mm512_unpacklo_epi8(a, b)
               : sizeof(T) == 2 ? _mm512_unpacklo_epi16(a, b)
               : sizeof(T) == 4 ? _mm512_unpacklo_epi32(a, b)
                                : _mm512_unpacklo_epi64(a, b);
}
template <class T, class V> LUM_LANE V unpackHigh(V a, V b) {
    if constexpr (sizeof(V) == 16)
        return sizeof(T) == 1   ? _mm_unpackhi_epi8(a, b)
               : sizeof(T) == 2 ? _mm_unpackhi_epi16(a, b)
               : sizeof(T) == 4 ? _mm_unpackhi_epi32(a, b)
                                : _mm_unpackhi_epi64(a, b);
    else if constexpr (sizeof(V) == 32)
        return sizeof(T) == 1   ? _mm256_unpackhi_epi8(a, b)
               : sizeof(T) == 2 ? _mm256_unpackhi_epi16(a, b)
               : sizeof(T) == 4 ? _mm256_unpackhi_epi32(a, b)
                                : _mm256_unpackhi_epi64(a, b);
    else
        return sizeof(T) == 1   ? _mm512_unpackhi_epi8(a, b)
               : sizeof(T) == 2 ? _mm512_unpackhi_epi16(a, b)
               : sizeof(T) == 4 ? _mm512_unpackhi_epi32(a, b)
                                : _mm512_unpackhi_epi64(a, b);
}

} // namespace lanes_detail

/// a(0), b(0), a(1), b(1), ...
template <class T, int N> LUM_LANE Block<T, 2 * N> interleave(Block<T, N> a, Block<T, N> b) {
    if constexpr (!isOneVector<T, N>) {
        return {interleave(a.low, b.low), interleave(a.high, b.high)};
    } else if constexpr (Block<T, N>::bytes < 16) {
        return blockOf<T, 2 * N>(lanes_detail::unpackLow<T>(rawInteger(a.v), rawInteger(b.v)));
    } else if constexpr (Block<T, N>::bytes == 16) {
        return join(blockOf<T, N>(lanes_detail::unpackLow<T>(rawInteger(a.v), rawInteger(b.v))),
                    blockOf<T, N>(lanes_detail::unpackHigh<T>(rawInteger(a.v), rawInteger(b.v))));
    } else {
        return join(interleave(lowHalf(a), lowHalf(b)), interleave(highHalf(a), highHalf(b)));
    }
}

/// Stores a(0), b(0), c(0), a(1), b(1), c(1), ... of elements of 8 bytes, 3 x N of them, to any address.
template <class T, int N>
LUM_LANE void storeInterleaved(Block<T, N> a, Block<T, N> b, Block<T, N> c, void* place) {
    static_assert(std::is_integral_v<T> && sizeof(T) == 8 && N >= 2);
    auto* bytes = static_cast<unsigned char*>(place);
    if constexpr (N > 2) {
        storeInterleaved(lowHalf(a), lowHalf(b), lowHalf(c), bytes);
        storeInterleaved(highHalf(a), highHalf(b), highHalf(c), bytes + 3 * N / 2 * sizeof(T));
    } else {
        const __m128i x = rawInteger(a.v);
        const __m128i y = rawInteger(b.v);
        const __m128i z = rawInteger(c.v);
        const __m128d crossed = _mm_shuffle_pd(_mm_castsi128_pd(z), _mm_castsi128_pd(x), 2);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), _mm_unpacklo_epi64(x, y));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes + 16), _mm_castpd_si128(crossed));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes + 32), _mm_unpackhi_epi64(y, z));
    }
}

/// What was made within each unit of 16 bytes, from its low and from its high half.
template <class T, int N> struct UnitHalves {
    Block<T, N> low;
    Block<T, N> high;
};

/// interleave() within each unit of 16 bytes, which takes one instruction per vector. What is computed from both halves
/// element by element is put in order by joinUnits().
template <class T, int N> LUM_LANE UnitHalves<T, N> interleaveUnits(Block<T, N> a, Block<T, N> b) {
    if constexpr (!isOneVector<T, N>) {
        const auto low = interleaveUnits(a.low, b.low);
        const auto high = interleaveUnits(a.high, b.high);
        return {{low.low, high.low}, {low.high, high.high}};
    } else {
        constexpr int bytes = Block<T, N>::bytes;
        static_assert(sizeof(T) <= 4 && bytes >= 16);
        const auto x = rawInteger(a.v);
        const auto y = rawInteger(b.v);
        return {blockOf<T, N>(lanes_detail::unpackLow<T>(x, y)),
                blockOf<T, N>(lanes_detail::unpackHigh<T>(x, y))};
    }
}
template <class T, int N> LUM_LANE Block<T, 2 * N> joinUnits(Block<T, N> low, Block<T, N> high) {
    if constexpr (!isOneVector<T, N>) {
        return {joinUnits(low.low, high.low), joinUnits(low.high, high.high)};
    } else {
        const auto x = rawInteger(low.v);
        const auto y = rawInteger(high.v);
        if constexpr (sizeof(x) == 16)
            return join(low, high);
        else if constexpr (sizeof(x) == 32)
            return join(blockOf<T, N>(_mm256_permute2x128_si256(x, y, 0x20)),
                        blockOf<T, N>(_mm256_permute2x128_si256(x, y, 0x31)));
        else
            return join(
                blockOf<T, N>(_mm512_permutex2var_epi64(x, _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11), y)),
                blockOf<T, N>(
                    _mm512_permutex2var_epi64(x, _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15), y)));
    }
}

/// The same as elements of half the size, by one instruction per vector of the result: clamped to the range of their type,
/// but for unsigned ones of 16 bits, in whose range they lie already.
template <class U, class T, int N> LUM_LANE Block<U, 2 * N> narrowUnits(Block<T, N> low, Block<T, N> high) {
    static_assert(std::is_signed_v<T> && 2 * sizeof(U) == sizeof(T) && sizeof(T) <= 4);
    if constexpr (!isOneVector<T, N>)
        return {narrowUnits<U>(low.low, high.low), narrowUnits<U>(low.high, high.high)};
    else if constexpr (Block<T, N>::bytes == 16 && sizeof(U) == 2)
        return narrowInRange<U>(join(low, high));
    else
        return blockOf<U, 2 * N>(lanes_detail::packedUnits<U>(rawInteger(low.v), rawInteger(high.v)));
}

namespace lanes_detail {

/// The 32-bit elements first, first + 2, first + 4, ... of two vectors.
template <int first> LUM_LANE __m512i everySecond(__m512i low, __m512i high) {
    const __m512i two = _mm512_set1_epi32(2);
    const __m512i order = _mm512_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    const __m512i indices = _mm512_add_epi32(_mm512_mullo_epi32(order, two), _mm512_set1_epi32(first));
    return _mm512_permutex2var_epi32(low, indices, high);
}
template <int first> LUM_LANE __m256i everySecond(__m256i low, __m256i high) {
    const __m256 units =
        _mm256_shuffle_ps(_mm256_castsi256_ps(low), _mm256_castsi256_ps(high), first == 0 ? 0x88 : 0xDD);
    return _mm256_permute4x64_epi64(_mm256_castps_si256(units), 0xD8);
}

} // namespace lanes_detail

/// The elements of even number, and those of odd number.
template <class T, int N> LUM_LANE Block<T, N / 2> evenElements(Block<T, N> a) {
    using Wide = UnsignedOf<2 * sizeof(T)>;
    static_assert(sizeof(T) <= 4 && N * sizeof(T) >= 16);
    if constexpr (sizeof(T) == 4) {
        if constexpr (N * sizeof(T) == 16) {
            return blockOf<T, N / 2>(_mm_shuffle_epi32(rawInteger(a.v), 0x88));
        } else if constexpr (N * sizeof(T) == 32) {
            const auto low = lowHalf(a);
            const auto high = highHalf(a);
            return blockOf<T, N / 2>(_mm_shuffle_ps(_mm_castsi128_ps(rawInteger(low.v)),
                                                    _mm_castsi128_ps(rawInteger(high.v)), 0x88));
        } else if constexpr (vectorBytes > 16 && N * sizeof(T) == 2 * vectorBytes) {
            return blockOf<T, N / 2>(lanes_detail::everySecond<0>(rawInteger(a.low.v), rawInteger(a.high.v)));
        } else {
            return join(evenElements(lowHalf(a)), evenElements(highHalf(a)));
        }
    } else {
        return bitsAs<T>(narrowWrapped<UnsignedOf<sizeof(T)>>(bitsAs<Wide>(a)));
    }
}
template <class T, int N> LUM_LANE Block<T, N / 2> oddElements(Block<T, N> a) {
    using Wide = UnsignedOf<2 * sizeof(T)>;
    static_assert(sizeof(T) <= 4 && N * sizeof(T) >= 16);
    if constexpr (sizeof(T) == 4) {
        if constexpr (N * sizeof(T) == 16) {
            return blockOf<T, N / 2>(_mm_shuffle_epi32(rawInteger(a.v), 0xDD));
        } else if constexpr (N * sizeof(T) == 32) {
            const auto low = lowHalf(a);
            const auto high = highHalf(a);
            return blockOf<T, N / 2>(_mm_shuffle_ps(_mm_castsi128_ps(rawInteger(low.v)),
                                                    _mm_castsi128_ps(rawInteger(high.v)), 0xDD));
        } else if constexpr (vectorBytes > 16 && N * sizeof(T) == 2 * vectorBytes) {
            return blockOf<T, N / 2>(lanes_detail::everySecond<1>(rawInteger(a.low.v), rawInteger(a.high.v)));
        } else {
            return join(oddElements(lowHalf(a)), oddElements(highHalf(a)));
        }
    } else {
        return bitsAs<T>(
            narrowWrapped<UnsignedOf<sizeof(T)>>(bitsAs<Wide>(a) >> static_cast<int>(8 * sizeof(T))));
    }
}

// ---- running sums

namespace lanes_detail {

/// Elements moved up by k within a block of at most 16 bytes, with zeros from below.
template <int k, class T, int N> LUM_LANE Block<T, N> movedUp(Block<T, N> a) {
    return blockOf<T, N>(_mm_slli_si128(rawInteger(a.v), k * static_cast<int>(sizeof(T))));
}

} // namespace lanes_detail

/// Every element of the block with the value of the last one.
template <class T, int N> LUM_LANE Block<T, N> lastElementEverywhere(Block<T, N> a) {
    static_assert(std::is_integral_v<T> && sizeof(T) == 4);
    if constexpr (!isOneVector<T, N>) {
        const auto half = lastElementEverywhere(a.high);
        return {half, half};
    } else if constexpr (Block<T, N>::registerBytes == 16) {
        return blockOf<T, N>(_mm_shuffle_epi32(rawInteger(a.v), 0xFF));
    } else if constexpr (Block<T, N>::registerBytes == 32) {
        return blockOf<T, N>(_mm256_permutevar8x32_epi32(rawInteger(a.v), _mm256_set1_epi32(7)));
    } else {
        return blockOf<T, N>(_mm512_permutexvar_epi32(_mm512_set1_epi32(15), rawInteger(a.v)));
    }
}

/// a(0), a(0) + a(1), a(0) + a(1) + a(2), ... of wrapping 32-bit integers.
template <class T, int N> LUM_LANE Block<T, N> runningSums(Block<T, N> a) {
    static_assert(std::is_integral_v<T> && sizeof(T) == 4 && N >= 4);
    if constexpr (N == 4) {
        a = a + lanes_detail::movedUp<1>(a);
        return a + lanes_detail::movedUp<2>(a);
    } else if constexpr (!isOneVector<T, N>) {
        const auto low = runningSums(a.low);
        return {low, runningSums(a.high) + lastElementEverywhere(low)};
    } else if constexpr (N == 8) {
        __m256i x = rawInteger(a.v);
        x = _mm256_add_epi32(x, _mm256_slli_si256(x, 4));
        x = _mm256_add_epi32(x, _mm256_slli_si256(x, 8));
        const __m256i carry = _mm256_permute2x128_si256(_mm256_shuffle_epi32(x, 0xFF), x, 0x08);
        return blockOf<T, N>(_mm256_add_epi32(x, carry));
    } else {
        __m512i x = rawInteger(a.v);
        x = _mm512_add_epi32(x, _mm512_bslli_epi128(x, 4));
        x = _mm512_add_epi32(x, _mm512_bslli_epi128(x, 8));
        const __m512i last = _mm512_shuffle_epi32(x, static_cast<_MM_PERM_ENUM>(0xFF));
        const __m512i one = _mm512_maskz_shuffle_i64x2(0xFC, last, last, 0x90);
        const __m512i two = _mm512_maskz_shuffle_i64x2(0xF0, last, last, 0x40);
        const __m512i three = _mm512_maskz_shuffle_i64x2(0xC0, last, last, 0x00);
        return blockOf<T, N>(_mm512_add_epi32(_mm512_add_epi32(x, one), _mm512_add_epi32(two, three)));
    }
}

} // namespace lum
