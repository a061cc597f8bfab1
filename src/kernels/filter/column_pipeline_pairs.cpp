#include "kernels/filter/column_pipeline_pairs.h"

namespace lum::kernels {
namespace {

template <Rounding rest, int length, class S, class R>
void pairedRows(const S* const* srcRows, Image<R> dst, LumSize size, int rounded, const PairWeights& pairs,
                const ScaledAtUse<S>& weights) {
    for (int y = 0; y < size.height; ++y) {
        const TapsOfColumn<S> taps{srcRows + y};
        R* result = dst.row(y);
        const int tail = pairedEights<Interleaved, length, Rounding::nearestEven, Scaling::multiplied, S>(
            taps, pairs, weights.scale, result, 0, rounded);
        // tail, one result at a time
        weightedElements<Rounding::nearestEven>(taps, weights, result, tail, rounded);
        weightedElements<rest>(taps, weights, result, rounded, size.width);
    }
}

template <Rounding rest, class S, class R>
void pairedRowsOfLength(const S* const* srcRows, Image<R> dst, LumSize size, int rounded,
                        const PairWeights& pairs, const ScaledAtUse<S>& weights) {
    if (pairs.count == 5)
        pairedRows<rest, 5>(srcRows, dst, size, rounded, pairs, weights);
    else
        pairedRows<rest, 0>(srcRows, dst, size, rounded, pairs, weights);
}

} // namespace

template <class S, class R>
void pairedColumns(const S* const* srcRows, Image<R> dst, LumSize size, int rounded, Rounding rest,
                   const S* kernel, int kernelSize, float scale) {
    alignas(16) Lum16s lanes[8 * pairVectors(longestPairedColumn)];
    spreadPairs(kernel, kernelSize, lanes);
    const PairWeights pairs{lanes, kernelSize};
    const ScaledAtUse<S> weights{kernel, kernelSize, scale};
    if (rest == Rounding::nearestEven)
        pairedRowsOfLength<Rounding::nearestEven>(srcRows, dst, size, rounded, pairs, weights);
    else
        pairedRowsOfLength<Rounding::truncated>(srcRows, dst, size, rounded, pairs, weights);
}

template decltype(pairedColumns<Lum16s, Lum8s>) pairedColumns<Lum16s, Lum8s>;
template decltype(pairedColumns<Lum16s, Lum8u>) pairedColumns<Lum16s, Lum8u>;
template decltype(pairedColumns<Lum16s, Lum16s>) pairedColumns<Lum16s, Lum16s>;
template decltype(pairedColumns<Lum16u, Lum16u>) pairedColumns<Lum16u, Lum16u>;

} // namespace lum::kernels
