// Weighted sums in single precision of the elements of a row or of a column, in order of the coefficients, as elements. The
// products and additions of one result and of a block of them are the same.
#pragma once

#include "kernels/filter/tap_weights.h"

namespace lum::kernels {

/// Results first .. end - 1, one at a time.
template <Rounding rounding, class R, class Source, class K>
void weightedElements(Source source, Taps<K> taps, R* dst, int first, int end) {
    for (int i = first; i < end; ++i)
        dst[i] = toElement<R, rounding>(weightedSum(source, taps.count, scaledWeight(taps), i));
}

/// Results first .. end - 1, with the weights of the taps.
template <Rounding rounding, class R, class Source, class K, class Weights>
LUM_LANE void weightedResults(Source source, Taps<K> taps, const Weights& weights, R* dst, int first,
                              int end) {
    // two vectors of floats per iteration, at least 8 results
    const int tail = forBlocks<Lum16s, 8>(first, end, [&]<int n>(int i) LUM_INLINED {
        store(toElements<R, rounding>(weightedSums<n>(source, weights, i)), dst + i);
    });
    // tail: scalar, one result at a time
    weightedElements<rounding>(source, taps, dst, tail, end);
}

} // namespace lum::kernels
