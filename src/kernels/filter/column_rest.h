// The tail of a row of a column stage: scalar, since its results may round in another way.
#pragma once

#include "kernels/filter/column_pipeline_float.h"
#include "kernels/filter/weighted_results.h"

namespace lum::kernels {

/// The results from rounded.count on.
template <class S, class R>
void weightedRest(DownRows<S> source, Taps<S> taps, R* dst, RowRounding rounded, int width) {
    if (rounded.rest == Rounding::nearestEven)
        weightedElements<Rounding::nearestEven>(source, taps, dst, rounded.count, width);
    else
        weightedElements<Rounding::truncated>(source, taps, dst, rounded.count, width);
}

} // namespace lum::kernels
