// The row stage in pairs of 16-bit products, whose sums are exact.
#pragma once

#include "kernels/filter/taps.h"

namespace lum::kernels {

/// dst[i] = (the sum over k of coefficients[k] x src[i + k x spacing], exact in 32 bits) x scale, in single precision; `src`
/// is the first element of the first result's window. Signed results, Lum8u and Lum16s to Lum16s, are rounded to nearest
/// even, those of Lum16u truncated; kernels have the type of the results. The sum of magnitudes times the largest magnitude
/// of an element stays below 2^31, and the count is a multiple of 8.
template <class S, class R> void pairRowScalar(const S* src, int spacing, R* dst, int count, Taps<R> taps);
template <class S, class R> void pairRow(const S* src, int spacing, R* dst, int count, Taps<R> taps);

} // namespace lum::kernels
