#include "kernels/filter/column_pipeline_pairs.h"

#include "frame/instances.h"
#include "kernels/filter/column_rest.h"
#include "kernels/filter/pair_sums.h"

namespace lum::kernels {

template <class S, class R>
void pairedColumns(const S* const* srcRows, Image<R> dst, LumSize size, RowRounding rounded, Taps<S> taps) {
    const Uniform<Lum32s> start(startOfSums<S>(taps.coefficients, taps.count));
    const Uniform<float> scale(taps.scale);
    const auto pair = pairOf<Lum32s>(taps.coefficients, taps.count);
    withWeights<Lum32s>(taps.count, pairsOf, pair, [&](const auto& weights) LUM_INLINED {
        for (int y = 0; y < size.height; ++y) {
            const DownRows<S> source{srcRows + y};
            R* result = dst.row(y);
            // a vector of words per iteration, at least 8 results
            const int tail = forBlocks<Lum16s, 8>(0, rounded.count, [&]<int n>(int i) LUM_INLINED {
                const auto sums = scaled(interleavedSums<n>(source, weights, i, start), scale);
                store(toElements<R, Rounding::nearestEven, Range::of32Bits>(sums), result + i);
            });
            // tail: scalar, one result at a time
            weightedElements<Rounding::nearestEven>(source, taps, result, tail, rounded.count);
            weightedRest(source, taps, result, rounded, size.width);
        }
    });
}

LUM_INSTANCES(pairedColumns, (Lum16s, Lum8s), (Lum16s, Lum8u), (Lum16s, Lum16s), (Lum16u, Lum16u));

} // namespace lum::kernels
