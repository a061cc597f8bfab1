// The column stage in pairs of 16-bit products, for kernels whose sums in single precision are exact.
#pragma once

#include "kernels/filter/column_pipeline_float.h"

namespace lum::kernels {

/// The results of weightedColumns(), for a scale that is a power of two and a kernel of which every partial sum of products
/// stays at 2^24 or below: integers of which single precision rounds none. Lum16s to Lum8s, Lum8u and Lum16s; Lum16u.
template <class S, class R>
void pairedColumns(const S* const* srcRows, Image<R> dst, LumSize size, RowRounding rounded, Taps<S> taps);

} // namespace lum::kernels
