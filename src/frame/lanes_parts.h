// Parts of blocks, for expressions that are computed one vector after the other, and sums over many blocks.
#pragma once

#include <cstddef>

#include "frame/lanes_reduce.h"

namespace lum {

/// Elements first .. first + n - 1; `first` is a multiple of n that the compiler knows.
template <int n, class T, int N> LUM_LANE Block<T, n> part(Block<T, N> a, int first) {
    if constexpr (n == N)
        return a;
    else if (first < N / 2)
        return part<n>(lowHalf(a), first);
    else
        return part<n>(highHalf(a), first - N / 2);
}

/// Calls work(i) for i = 0, n, 2 n, ... below N; the compiler knows each i.
template <int n, int N, class Work> LUM_LANE void forParts(Work work) {
    [&]<int... part>(std::integer_sequence<int, part...>) LUM_INLINED { (work(part * n), ...); }
    (std::make_integer_sequence<int, N / n>());
}

/// The block with other elements in its first places.
template <class T, int N, int M> LUM_LANE Block<T, N> replaceFirst(Block<T, N> a, Block<T, M> first) {
    if constexpr (M == N)
        return first;
    else
        return join(replaceFirst(lowHalf(a), first), highHalf(a));
}

/// Elements first .. first + n - 1 of a mask of bytes as a mask of the elements T. Short vectors unpack the bytes with
/// themselves, which takes neither a constant nor a register of zeros; from 16 bytes to four elements a shuffle is shorter.
template <class T, int n, int N> LUM_LANE MaskOf<T, n> widenMask(Block<std::int8_t, N> mask, int first = 0) {
    if constexpr (vectorBytes > 16 || sizeof(T) == 1) {
        return widen<SignedOf<sizeof(T)>>(part<n>(mask, first));
    } else if constexpr (N > 16) {
        return first < N / 2 ? widenMask<T, n>(mask.low, first) : widenMask<T, n>(mask.high, first - N / 2);
    } else if constexpr (n * sizeof(T) > 16) {
        return {widenMask<T, n / 2>(mask, first), widenMask<T, n / 2>(mask, first + n / 2)};
    } else if constexpr (sizeof(T) == 4 && n == 4 && N == 16) {
        const int indices = 0x01010101 * first;
        return blockOf<std::int32_t, n>(
            _mm_shuffle_epi8(rawInteger(mask.v), _mm_setr_epi32(indices, indices + 0x01010101,
                                                                indices + 0x02020202, indices + 0x03030303)));
    } else {
        static_assert(sizeof(T) <= 4);
        const __m128i x = rawInteger(mask.v);
        const __m128i words = first < 8 ? _mm_unpacklo_epi8(x, x) : _mm_unpackhi_epi8(x, x);
        if constexpr (sizeof(T) == 2)
            return part<n>(blockOf<std::int16_t, 8>(words), first % 8);
        else
            return blockOf<std::int32_t, n>(first % 8 < 4 ? _mm_unpacklo_epi16(words, words)
                                                          : _mm_unpackhi_epi16(words, words));
    }
}

/// Bytes where those of a mask are not 0, and 0 elsewhere. Where comparisons give a bit an element, the bits choose.
template <int N>
LUM_LANE Block<std::uint8_t, N> whereSet(Block<std::uint8_t, N> mask, Block<std::uint8_t, N> bytes) {
    if constexpr (!isOneVector<std::uint8_t, N>) {
        return {whereSet(mask.low, bytes.low), whereSet(mask.high, bytes.high)};
    } else if constexpr (N == 64) {
        const auto m = rawInteger(mask.v);
        return blockOf<std::uint8_t, N>(
            _mm512_maskz_mov_epi8(_mm512_test_epi8_mask(m, m), rawInteger(bytes.v)));
    } else {
        return andNot(bitsAs<std::uint8_t>(mask == zeros<std::uint8_t, N>()), bytes);
    }
}

/// Elements first .. first + n - 1 as floats: of integers of at most 16 bits, or of floats themselves.
template <int n, class T, int N> LUM_LANE Block<float, n> toFloatPart(Block<T, N> a, int first) {
    using namespace lanes_detail;
    if constexpr (std::is_same_v<T, float>) {
        return part<n>(a, first);
    } else if constexpr (vectorBytes == 16 && std::is_same_v<T, std::uint8_t> && n == 4 && N == 16) {
        return toFloat(first == 0   ? widenFour<std::int32_t, 0>(a)
                       : first == 4 ? widenFour<std::int32_t, 4>(a)
                       : first == 8 ? widenFour<std::int32_t, 8>(a)
                                    : widenFour<std::int32_t, 12>(a));
    } else if constexpr (vectorBytes == 16 && sizeof(T) == 2 && n == 4 && N > 8) {
        return toFloatPart<n>(part<8>(a, first - first % 8), first % 8);
    } else if constexpr (vectorBytes == 16 && sizeof(T) == 2 && n == 4 && N == 8) {
        return toFloat(first == 0 ? widenOnce<std::int32_t>(lowHalf(a)) : widenHigh<std::int32_t>(a));
    } else {
        return toFloat(part<n>(a, first));
    }
}

/// N elements as units of 16 bytes, each of which lies `distance` elements after the one before.
template <int N, class T> LUM_LANE auto loadUnits(T* place, std::ptrdiff_t distance) {
    constexpr int ofUnit = 16 / static_cast<int>(sizeof(T));
    if constexpr (N <= ofUnit)
        return load<N>(place);
    else
        return join(loadUnits<N / 2>(place, distance),
                    loadUnits<N / 2>(place + N / 2 / ofUnit * distance, distance));
}

/// As many elements as one vector of the target holds: for what accumulates over any number of blocks in an order that
/// does not matter.
template <class T> using OneVector = Block<T, vectorBytes / static_cast<int>(sizeof(T))>;

/// The same value, which the compiler takes for another: it would gather the terms of several sums to add them as a tree,
/// and run out of registers.
template <class T, int N> LUM_LANE Block<T, N> inOrder(Block<T, N> a) {
    asm("" : "+x"(a.v));
    return a;
}

/// The sum of the elements of any number of blocks, of any size, in wrapping integers, kept in a vector of so many bytes:
/// where all blocks have 16 bytes, 16 are enough.
template <class T, int bytes = vectorBytes> class BlockSum {
    static constexpr int count = bytes / static_cast<int>(sizeof(T));

  public:
    template <int N> LUM_LANE void add(Block<T, N> a) {
        static_assert(std::is_integral_v<T>, "sums of floats are the order of their additions");
        if constexpr (N > count)
            add(lowHalf(a) + highHalf(a));
        else
            sums_ = inOrder(sums_ + replaceFirst(zeros<T, count>(), a));
    }
    /// The sums of another one, of the same or of narrower elements.
    template <class U, int otherBytes> LUM_LANE void add(const BlockSum<U, otherBytes>& other) {
        add(widen<T>(other.sums_));
    }
    LUM_LANE T total() const { return sumOf(sums_); }

  private:
    template <class U, int otherBytes> friend class BlockSum;
    Block<T, count> sums_ = zeros<T, count>();
};

} // namespace lum
