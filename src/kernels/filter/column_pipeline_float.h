// The column stage in single precision.
#pragma once

#include "frame/image.h"
#include "kernels/filter/pipeline_weights.h"

namespace lum::kernels {

/// dst(i, y) = the sum over k, in its order, of (kernel[k] x scale) x srcRows[y + k][i]. The first `rounded`
/// results of a row are rounded to nearest even, the others as `rest` says. The width of `size` counts
/// elements. Lum16s to Lum8s, Lum8u and Lum16s; Lum16u; Lum32f.
template <class S, class R, class K>
void weightedColumnsScalar(const S* const* srcRows, Image<R> dst, LumSize size, int rounded, Rounding rest,
                           const K* kernel, int kernelSize, float scale);
template <class S, class R, class K>
void weightedColumns(const S* const* srcRows, Image<R> dst, LumSize size, int rounded, Rounding rest,
                     const K* kernel, int kernelSize, float scale);

} // namespace lum::kernels
