// The column stage in single precision.
#pragma once

#include "frame/convert_lanes.h"
#include "frame/image.h"
#include "kernels/filter/taps.h"

namespace lum::kernels {

/// Of a row of results, the first `count` are rounded to nearest even and the others as `rest` says.
struct RowRounding {
    int count;
    Rounding rest;
};

/// dst(i, y) = the sum over k, in its order, of (coefficients[k] x scale) x srcRows[y + k][i]. The width of `size` counts
/// elements. Lum16s to Lum8s, Lum8u and Lum16s; Lum16u; Lum32f; kernels have the type of the source.
template <class S, class R>
void weightedColumnsScalar(const S* const* srcRows, Image<R> dst, LumSize size, RowRounding rounded,
                           Taps<S> taps);
template <class S, class R>
void weightedColumns(const S* const* srcRows, Image<R> dst, LumSize size, RowRounding rounded, Taps<S> taps);

} // namespace lum::kernels
