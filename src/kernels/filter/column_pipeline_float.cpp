#include "kernels/filter/column_pipeline_float.h"

#include "frame/instances.h"
#include "kernels/filter/column_rest.h"

namespace lum::kernels {

template <class S, class R>
void weightedColumnsScalar(const S* const* srcRows, Image<R> dst, LumSize size, RowRounding rounded,
                           Taps<S> taps) {
    for (int y = 0; y < size.height; ++y) {
        const DownRows<S> source{srcRows + y};
        weightedElements<Rounding::nearestEven>(source, taps, dst.row(y), 0, rounded.count);
        weightedRest(source, taps, dst.row(y), rounded, size.width);
    }
}

template <class S, class R>
void weightedColumns(const S* const* srcRows, Image<R> dst, LumSize size, RowRounding rounded, Taps<S> taps) {
    withWeights<float>(taps.count, scaledWeight(taps), [&](const auto& weights) {
        for (int y = 0; y < size.height; ++y) {
            const DownRows<S> source{srcRows + y};
            weightedResults<Rounding::nearestEven>(source, taps, weights, dst.row(y), 0, rounded.count);
            weightedRest(source, taps, dst.row(y), rounded, size.width);
        }
    });
}

LUM_INSTANCES(weightedColumnsScalar, (Lum16s, Lum8s), (Lum16s, Lum8u), (Lum16s, Lum16s), (Lum16u, Lum16u),
              (Lum32f, Lum32f));
LUM_INSTANCES(weightedColumns, (Lum16s, Lum8s), (Lum16s, Lum8u), (Lum16s, Lum16s), (Lum16u, Lum16u),
              (Lum32f, Lum32f));

} // namespace lum::kernels
