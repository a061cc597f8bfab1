#include "kernels/filter/row_pipeline_float.h"

namespace lum::kernels {
namespace {

template <Rounding rounding, class S, class R>
void weightedRowOfLength(TapsOfRow<S> taps, R* dst, int count, Weights weights) {
    switch (weights.count) {
    case 3:
        return weightedResults<3, rounding>(taps, weights, dst, 0, count);
    case 5:
        return weightedResults<5, rounding>(taps, weights, dst, 0, count);
    default:
        return weightedResults<0, rounding>(taps, weights, dst, 0, count);
    }
}

} // namespace

template <class S, class R>
void weightedRowScalar(const S* src, int spacing, R* dst, int count, Weights weights, Rounding rounding) {
    const TapsOfRow<S> taps{src, spacing};
    if (rounding == Rounding::nearestEven)
        weightedElements<Rounding::nearestEven>(taps, weights, dst, 0, count);
    else
        weightedElements<Rounding::truncated>(taps, weights, dst, 0, count);
}

template <class S, class R>
void weightedRow(const S* src, int spacing, R* dst, int count, Weights weights, Rounding rounding) {
    const TapsOfRow<S> taps{src, spacing};
    if (rounding == Rounding::nearestEven)
        weightedRowOfLength<Rounding::nearestEven>(taps, dst, count, weights);
    else
        weightedRowOfLength<Rounding::truncated>(taps, dst, count, weights);
}

template decltype(weightedRowScalar<Lum8u, Lum16s>) weightedRowScalar<Lum8u, Lum16s>;
template decltype(weightedRowScalar<Lum16s, Lum16s>) weightedRowScalar<Lum16s, Lum16s>;
template decltype(weightedRowScalar<Lum16u, Lum16u>) weightedRowScalar<Lum16u, Lum16u>;
template decltype(weightedRowScalar<Lum32f, Lum32f>) weightedRowScalar<Lum32f, Lum32f>;
template decltype(weightedRow<Lum8u, Lum16s>) weightedRow<Lum8u, Lum16s>;
template decltype(weightedRow<Lum16s, Lum16s>) weightedRow<Lum16s, Lum16s>;
template decltype(weightedRow<Lum16u, Lum16u>) weightedRow<Lum16u, Lum16u>;
template decltype(weightedRow<Lum32f, Lum32f>) weightedRow<Lum32f, Lum32f>;

} // namespace lum::kernels
