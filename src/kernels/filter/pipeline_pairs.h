// Sums of 16-bit products in pairs, exact in 32 bits, along a row or down a column.
#pragma once

#include "kernels/filter/pipeline_weights.h"

namespace lum::kernels {

/// The coefficients two by two, each pair in four lanes, on a multiple of 16 bytes. The last of an odd number
/// appears twice: before a zero, and after one.
struct PairWeights {
    const Lum16s* lanes;
    int count;

    Lum16s one(int k) const { return lanes[8 * (k / 2) + k % 2]; }
    __m128i pair(int j) const { return _mm_load_si128(reinterpret_cast<const __m128i*>(lanes + 8 * j)); }
};

constexpr int pairVectors(int count) { return count / 2 + 2 * (count % 2); }

/// Unsigned coefficients are at most 32767.
template <class K> void spreadPairs(const K* kernel, int count, Lum16s* lanes) {
    const auto spread = [&lanes](K first, K second) {
        const __m128i pair = _mm_unpacklo_epi16(_mm_set1_epi16(static_cast<Lum16s>(first)),
                                                _mm_set1_epi16(static_cast<Lum16s>(second)));
        _mm_store_si128(reinterpret_cast<__m128i*>(lanes), pair);
        lanes += 8;
    };
    for (int k = 0; k + 1 < count; k += 2) spread(kernel[k], kernel[k + 1]);
    if (count % 2 != 0) {
        spread(kernel[count - 1], 0);
        spread(0, kernel[count - 1]);
    }
}

/// Eight elements as signed words, for the products. Unsigned words are moved down by half their range, which
/// the sums make good at their start.
inline __m128i factorsAt(const Lum8u* place) { return wordsAt(place); }
inline __m128i factorsAt(const Lum16s* place) { return wordsAt(place); }
inline __m128i factorsAt(const Lum16u* place) {
    return _mm_xor_si128(wordsAt(place), _mm_set1_epi16(-32768));
}

template <class S> __m128i sumsAtStart(const PairWeights& weights) {
    int start = 0;
    if constexpr (std::is_same_v<S, Lum16u>)
        for (int k = 0; k < weights.count; ++k) start += 32768 * weights.one(k);
    return _mm_set1_epi32(start);
}

/// Pairs of neighbouring elements are pairs of neighbouring taps in a row of one channel: a vector of elements
/// multiplied as it is gives the sums of the even results, the vector one element further those of the odd.
struct Neighbours {
    template <int length, class S>
    static Sums sums(const TapsOfRow<S>& taps, int i, const PairWeights& weights, __m128i start) {
        const int count = length == 0 ? weights.count : length;
        const S* src = taps.first + i;
        Sums evenAndOdd{start, start};
#pragma GCC unroll 2
        for (int j = 0; j < count / 2; ++j)
            add(evenAndOdd, _mm_madd_epi16(factorsAt(src + 2 * j), weights.pair(j)),
                _mm_madd_epi16(factorsAt(src + 2 * j + 1), weights.pair(j)));
        // The last of an odd number of taps: both sums from one vector, so that nothing is read after the
        // window.
        if (count % 2 != 0) {
            const __m128i words = factorsAt(src + count - 1);
            add(evenAndOdd, _mm_madd_epi16(words, weights.pair(count / 2)),
                _mm_madd_epi16(words, weights.pair(count / 2 + 1)));
        }
        return {_mm_unpacklo_epi32(evenAndOdd.low, evenAndOdd.high),
                _mm_unpackhi_epi32(evenAndOdd.low, evenAndOdd.high)};
    }

    static void add(Sums& sums, __m128i even, __m128i odd) {
        sums = {_mm_add_epi32(sums.low, even), _mm_add_epi32(sums.high, odd)};
    }
};

/// Pairs of taps are interleaved where they do not lie side by side.
struct Interleaved {
    template <int length, class Taps>
    static Sums sums(const Taps& taps, int i, const PairWeights& weights, __m128i start) {
        const int count = length == 0 ? weights.count : length;
        Sums sums{start, start};
#pragma GCC unroll 2
        for (int j = 0; j < count / 2; ++j)
            add(sums, factorsAt(taps.at(2 * j) + i), factorsAt(taps.at(2 * j + 1) + i), weights.pair(j));
        if (count % 2 != 0)
            add(sums, factorsAt(taps.at(count - 1) + i), _mm_setzero_si128(), weights.pair(count / 2));
        return sums;
    }

    static void add(Sums& sums, __m128i first, __m128i second, __m128i pair) {
        sums.low = _mm_add_epi32(sums.low, _mm_madd_epi16(_mm_unpacklo_epi16(first, second), pair));
        sums.high = _mm_add_epi32(sums.high, _mm_madd_epi16(_mm_unpackhi_epi16(first, second), pair));
    }
};

/// A scale of 1 changes no sum that fits a word, and saturation takes the others: signed words are packed
/// directly.
enum class Scaling { none, multiplied };

/// Whole groups of eight results from `from` on; returns where they end.
template <class Pairing, int length, Rounding rounding, Scaling scaling, class S, class R, class Taps>
inline int pairedEights(const Taps& taps, const PairWeights& weights, float scale, R* dst, int from, int to) {
    const __m128 factor = _mm_set1_ps(scale);
    const __m128i start = sumsAtStart<S>(weights);
    int i = from;
    // 8 results per iteration
    for (; i <= to - 8; i += 8) {
        const Sums sums = Pairing::template sums<length>(taps, i, weights, start);
        if constexpr (scaling == Scaling::none) {
            storeVector<Access::unaligned>(dst + i, _mm_packs_epi32(sums.low, sums.high));
        } else {
            const Floats exact = floatsOf(sums);
            storeEight<rounding, Clamp::none>(
                dst + i, {_mm_mul_ps(exact.low, factor), _mm_mul_ps(exact.high, factor)});
        }
    }
    return i;
}

} // namespace lum::kernels
