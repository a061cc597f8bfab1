#include "kernels/filter/column_pipeline_float.h"

namespace lum::kernels {
namespace {

/// Weights that a call keeps on its stack, each in four lanes: a kibibyte of them.
constexpr int tableLength = 64;

template <Rounding rest, int length, class S, class R, class W>
void weightedRows(const S* const* srcRows, Image<R> dst, LumSize size, int rounded, const W& weights) {
    for (int y = 0; y < size.height; ++y) {
        const TapsOfColumn<S> taps{srcRows + y};
        weightedResults<length, Rounding::nearestEven>(taps, weights, dst.row(y), 0, rounded);
        weightedElements<rest>(taps, weights, dst.row(y), rounded, size.width);
    }
}

template <Rounding rest, class S, class R, class K>
void weightedRowsOfLength(const S* const* srcRows, Image<R> dst, LumSize size, int rounded, const K* kernel,
                          int kernelSize, float scale) {
    if (kernelSize > tableLength)
        return weightedRows<rest, 0>(srcRows, dst, size, rounded, ScaledAtUse<K>{kernel, kernelSize, scale});
    alignas(16) float lanes[4 * tableLength];
    spreadWeights(kernel, kernelSize, scale, lanes);
    const Weights weights{lanes, kernelSize};
    switch (kernelSize) {
    case 3:
        return weightedRows<rest, 3>(srcRows, dst, size, rounded, weights);
    case 5:
        return weightedRows<rest, 5>(srcRows, dst, size, rounded, weights);
    default:
        return weightedRows<rest, 0>(srcRows, dst, size, rounded, weights);
    }
}

} // namespace

template <class S, class R, class K>
void weightedColumnsScalar(const S* const* srcRows, Image<R> dst, LumSize size, int rounded, Rounding rest,
                           const K* kernel, int kernelSize, float scale) {
    const ScaledAtUse<K> weights{kernel, kernelSize, scale};
    for (int y = 0; y < size.height; ++y) {
        const TapsOfColumn<S> taps{srcRows + y};
        weightedElements<Rounding::nearestEven>(taps, weights, dst.row(y), 0, rounded);
        if (rest == Rounding::nearestEven)
            weightedElements<Rounding::nearestEven>(taps, weights, dst.row(y), rounded, size.width);
        else
            weightedElements<Rounding::truncated>(taps, weights, dst.row(y), rounded, size.width);
    }
}

template <class S, class R, class K>
void weightedColumns(const S* const* srcRows, Image<R> dst, LumSize size, int rounded, Rounding rest,
                     const K* kernel, int kernelSize, float scale) {
    if (rest == Rounding::nearestEven)
        weightedRowsOfLength<Rounding::nearestEven>(srcRows, dst, size, rounded, kernel, kernelSize, scale);
    else
        weightedRowsOfLength<Rounding::truncated>(srcRows, dst, size, rounded, kernel, kernelSize, scale);
}

template decltype(weightedColumnsScalar<Lum16s, Lum8s, Lum16s>) weightedColumnsScalar<Lum16s, Lum8s, Lum16s>;
template decltype(weightedColumnsScalar<Lum16s, Lum8u, Lum16s>) weightedColumnsScalar<Lum16s, Lum8u, Lum16s>;
template decltype(weightedColumnsScalar<Lum16s, Lum16s, Lum16s>)
    weightedColumnsScalar<Lum16s, Lum16s, Lum16s>;
template decltype(weightedColumnsScalar<Lum16u, Lum16u, Lum16u>)
    weightedColumnsScalar<Lum16u, Lum16u, Lum16u>;
template decltype(weightedColumnsScalar<Lum32f, Lum32f, Lum32f>)
    weightedColumnsScalar<Lum32f, Lum32f, Lum32f>;
template decltype(weightedColumns<Lum16s, Lum8s, Lum16s>) weightedColumns<Lum16s, Lum8s, Lum16s>;
template decltype(weightedColumns<Lum16s, Lum8u, Lum16s>) weightedColumns<Lum16s, Lum8u, Lum16s>;
template decltype(weightedColumns<Lum16s, Lum16s, Lum16s>) weightedColumns<Lum16s, Lum16s, Lum16s>;
template decltype(weightedColumns<Lum16u, Lum16u, Lum16u>) weightedColumns<Lum16u, Lum16u, Lum16u>;
template decltype(weightedColumns<Lum32f, Lum32f, Lum32f>) weightedColumns<Lum32f, Lum32f, Lum32f>;

} // namespace lum::kernels
