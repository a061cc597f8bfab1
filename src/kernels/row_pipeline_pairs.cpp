#include "kernels/row_pipeline_pairs.h"

namespace lum::kernels {
namespace {

/// Pairs of neighbouring elements are pairs of neighbouring taps where a row has one channel: a vector of elements
/// multiplied as it stands gives the sums of the even results, the vector one element further those of the odd.
struct Neighbours {
    template <int taps, class S> static Sums sums(const S* src, int, PairWeights weights) {
        const int count = taps == 0 ? weights.count : taps;
        Sums evenAndOdd{_mm_setzero_si128(), _mm_setzero_si128()};
#pragma GCC unroll 2
        for (int j = 0; j < count / 2; ++j) {
            add(evenAndOdd, _mm_madd_epi16(wordsAt(src + 2 * j), weights.pair(j)),
                _mm_madd_epi16(wordsAt(src + 2 * j + 1), weights.pair(j)));
        }
        // The last of an odd number of taps: both sums from one vector, so that nothing is read behind the window.
        if (count % 2 != 0) {
            const __m128i words = wordsAt(src + count - 1);
            add(evenAndOdd, _mm_madd_epi16(words, weights.pair(count / 2)),
                _mm_madd_epi16(words, weights.pair(count / 2 + 1)));
        }
        return evenAndOdd;
    }

    static void add(Sums& sums, __m128i even, __m128i odd) {
        sums = {_mm_add_epi32(sums.low, even), _mm_add_epi32(sums.high, odd)};
    }

    static __m128i inOrder(__m128i evenAndOdd) {
        return _mm_unpacklo_epi16(evenAndOdd, _mm_unpackhi_epi64(evenAndOdd, evenAndOdd));
    }
};

/// Pairs of taps are interleaved where several channels lie between them.
struct Interleaved {
    template <int taps, class S> static Sums sums(const S* src, int spacing, PairWeights weights) {
        const int count = taps == 0 ? weights.count : taps;
        Sums sums{_mm_setzero_si128(), _mm_setzero_si128()};
#pragma GCC unroll 2
        for (int j = 0; j < count / 2; ++j) {
            add(sums, wordsAt(src), wordsAt(src + spacing), weights.pair(j));
            src += 2 * spacing;
        }
        if (count % 2 != 0) add(sums, wordsAt(src), _mm_setzero_si128(), weights.pair(count / 2));
        return sums;
    }

    static void add(Sums& sums, __m128i first, __m128i second, __m128i pair) {
        sums.low = _mm_add_epi32(sums.low, _mm_madd_epi16(_mm_unpacklo_epi16(first, second), pair));
        sums.high = _mm_add_epi32(sums.high, _mm_madd_epi16(_mm_unpackhi_epi16(first, second), pair));
    }

    static __m128i inOrder(__m128i words) { return words; }
};

/// A scale of 1 changes no sum that fits a word, and saturation takes the others: the integers are packed directly.
enum class Scaling { none, multiplied };

template <class Pairing, int taps, Scaling scaling, class S>
void pairedResults(const S* src, int spacing, Lum16s* dst, int count, PairWeights weights, float scale) {
    const __m128 factor = _mm_set1_ps(scale);
    // 8 results a turn
    for (int i = 0; i < count; i += 8) {
        const Sums sums = Pairing::template sums<taps>(src + i, spacing, weights);
        __m128i words;
        if constexpr (scaling == Scaling::none) {
            words = _mm_packs_epi32(sums.low, sums.high);
        } else {
            const Singles exact = singlesOf(sums);
            words = saturatedWords<Rounding::nearestEven, Clamp::none>(
                {_mm_mul_ps(exact.low, factor), _mm_mul_ps(exact.high, factor)});
        }
        storeVector<Access::unaligned>(dst + i, Pairing::inOrder(words));
    }
}

template <class Pairing, Scaling scaling, class S>
void pairedResultsOfLength(const S* src, int spacing, Lum16s* dst, int count, PairWeights weights,
                           float scale) {
    switch (weights.count) {
    case 3:
        return pairedResults<Pairing, 3, scaling>(src, spacing, dst, count, weights, scale);
    case 5:
        return pairedResults<Pairing, 5, scaling>(src, spacing, dst, count, weights, scale);
    default:
        return pairedResults<Pairing, 0, scaling>(src, spacing, dst, count, weights, scale);
    }
}

template <class Pairing, class S>
void pairedResultsScaled(const S* src, int spacing, Lum16s* dst, int count, PairWeights weights,
                         float scale) {
    if (scale == 1.0F)
        pairedResultsOfLength<Pairing, Scaling::none>(src, spacing, dst, count, weights, scale);
    else
        pairedResultsOfLength<Pairing, Scaling::multiplied>(src, spacing, dst, count, weights, scale);
}

} // namespace

void spreadPairs(const Lum16s* kernel, int count, Lum16s* lanes) {
    const auto spread = [&lanes](Lum16s first, Lum16s second) {
        const __m128i pair = _mm_unpacklo_epi16(_mm_set1_epi16(first), _mm_set1_epi16(second));
        _mm_store_si128(reinterpret_cast<__m128i*>(lanes), pair);
        lanes += 8;
    };
    for (int k = 0; k + 1 < count; k += 2) spread(kernel[k], kernel[k + 1]);
    if (count % 2 != 0) {
        spread(kernel[count - 1], 0);
        spread(0, kernel[count - 1]);
    }
}

template <class S>
void pairRowScalar(const S* src, int spacing, Lum16s* dst, int count, PairWeights weights, float scale) {
    for (int i = 0; i < count; ++i) {
        int sum = 0;
        for (int k = 0; k < weights.count; ++k)
            sum += weights.lanes[8 * (k / 2) + k % 2] * src[i + static_cast<std::ptrdiff_t>(k) * spacing];
        dst[i] = nearestEven<Lum16s>(static_cast<float>(sum) * scale);
    }
}

template <class S>
void pairRow(const S* src, int spacing, Lum16s* dst, int count, PairWeights weights, float scale) {
    if (spacing == 1)
        pairedResultsScaled<Neighbours>(src, spacing, dst, count, weights, scale);
    else
        pairedResultsScaled<Interleaved>(src, spacing, dst, count, weights, scale);
}

template decltype(pairRowScalar<Lum8u>) pairRowScalar<Lum8u>;
template decltype(pairRowScalar<Lum16s>) pairRowScalar<Lum16s>;
template decltype(pairRow<Lum8u>) pairRow<Lum8u>;
template decltype(pairRow<Lum16s>) pairRow<Lum16s>;

} // namespace lum::kernels
