#include "kernels/filter/row_pipeline_float.h"

#include "frame/instances.h"
#include "kernels/filter/weighted_results.h"

namespace lum::kernels {

template <class S, class R>
void weightedRowScalar(const S* src, int spacing, R* dst, int count, Taps<Lum32f> weights,
                       Rounding rounding) {
    const AlongRow<S> source{src, spacing};
    if (rounding == Rounding::nearestEven)
        weightedElements<Rounding::nearestEven>(source, weights, dst, 0, count);
    else
        weightedElements<Rounding::truncated>(source, weights, dst, 0, count);
}

template <class S, class R>
void weightedRow(const S* src, int spacing, R* dst, int count, Taps<Lum32f> weights, Rounding rounding) {
    // Beside a border there are few.
    if (count < 8) return weightedRowScalar(src, spacing, dst, count, weights, rounding);
    const AlongRow<S> source{src, spacing};
    withWeights<float>(weights.count, scaledWeight(weights), [&](const auto& spread) {
        if (rounding == Rounding::nearestEven)
            weightedResults<Rounding::nearestEven>(source, weights, spread, dst, 0, count);
        else
            weightedResults<Rounding::truncated>(source, weights, spread, dst, 0, count);
    });
}

LUM_INSTANCES(weightedRowScalar, (Lum8u, Lum16s), (Lum16s, Lum16s), (Lum16u, Lum16u), (Lum32f, Lum32f));
LUM_INSTANCES(weightedRow, (Lum8u, Lum16s), (Lum16s, Lum16s), (Lum16u, Lum16u), (Lum32f, Lum32f));

} // namespace lum::kernels
