#include "kernels/filter/row_pipeline_pairs.h"

#include "frame/instances.h"
#include "kernels/filter/pair_sums.h"

namespace lum::kernels {
namespace {

template <class R>
constexpr Rounding roundingOf = std::is_signed_v<R> ? Rounding::nearestEven : Rounding::truncated;

/// store(sums, i) for each block of 8 results or more; sums are those of one channel or of several.
template <class S, class R, class Store>
void forPairSums(const S* src, int spacing, int count, Taps<R> taps, Store storeSums) {
    const AlongRow<S> source{src, spacing};
    const Uniform<Lum32s> start(startOfSums<S>(taps.coefficients, taps.count));
    const auto pair = pairOf<Lum32s>(taps.coefficients, taps.count);
    if (spacing == 1)
        withWeights<Lum32s>(taps.count, pairsOfNeighbours, pair, [&](const auto& weights) {
            return forBlocks<Lum16s, 8>(0, count, [&]<int n>(int i) LUM_INLINED {
                storeSums(neighbourSums<n>(src + i, weights, start), i);
            });
        });
    else
        withWeights<Lum32s>(taps.count, pairsOf, pair, [&](const auto& weights) {
            return forBlocks<Lum16s, 8>(0, count, [&]<int n>(int i) LUM_INLINED {
                storeSums(interleavedSums<n>(source, weights, i, start), i);
            });
        });
}

} // namespace

template <class S, class R> void pairRowScalar(const S* src, int spacing, R* dst, int count, Taps<R> taps) {
    const AlongRow<S> source{src, spacing};
    for (int i = 0; i < count; ++i) {
        int sum = 0;
        for (int k = 0; k < taps.count; ++k) sum += taps.coefficients[k] * source.at(k)[i];
        dst[i] = toElement<R, roundingOf<R>>(static_cast<float>(sum) * taps.scale);
    }
}

template <class S, class R> void pairRow(const S* src, int spacing, R* dst, int count, Taps<R> taps) {
    if constexpr (std::is_signed_v<R>) {
        // A scale of 1 changes no sum that fits a word, and saturation takes the others.
        if (taps.scale == 1.0F)
            return forPairSums(src, spacing, count, taps,
                               [&](auto sums, int i) LUM_INLINED { store(saturatedWords(sums), dst + i); });
    }
    const Uniform<float> scale(taps.scale);
    forPairSums(src, spacing, count, taps, [&](auto sums, int i) LUM_INLINED {
        store(toElements<R, roundingOf<R>, Range::of32Bits>(scaled(sums, scale)), dst + i);
    });
}

LUM_INSTANCES(pairRowScalar, (Lum8u, Lum16s), (Lum16s, Lum16s), (Lum16u, Lum16u));
LUM_INSTANCES(pairRow, (Lum8u, Lum16s), (Lum16s, Lum16s), (Lum16u, Lum16u));

} // namespace lum::kernels
