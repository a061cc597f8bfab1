// The row stage in single precision.
#pragma once

#include "frame/convert_lanes.h"
#include "kernels/filter/taps.h"

namespace lum::kernels {

/// dst[i] = the sum over k, in its order, of weights[k] x src[i + k x spacing]; `src` is the first element of the first
/// result's window. Lum16s and Lum8u to Lum16s, Lum16u, Lum32f.
template <class S, class R>
void weightedRowScalar(const S* src, int spacing, R* dst, int count, Taps<Lum32f> weights, Rounding rounding);
template <class S, class R>
void weightedRow(const S* src, int spacing, R* dst, int count, Taps<Lum32f> weights, Rounding rounding);

} // namespace lum::kernels
