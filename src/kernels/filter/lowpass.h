// The low-pass filter: the mean of three by three or five by five pixels. `rows` are extended by half a kernel
// at each end.
#pragma once

#include <cstddef>

#include "lumcv/types.h"

namespace lum::kernels {

/// A row of results from as many extended rows of bytes as there are taps. With S the sum of the taps: three
/// taps ((S + 5) x 7280) >> 16, five taps (S x 2622) >> 16, which both give a flat row back. dst is none of the
/// rows.
template <int taps> void lowpassScalar(const Lum8u* const* rows, Lum8u* dst, std::ptrdiff_t count);
template <int taps> void lowpass(const Lum8u* const* rows, Lum8u* dst, std::ptrdiff_t count);

/// The sums along one extended row of floats, which may be `out` itself; in order of the taps.
template <int taps> void lowpassAlongScalar(const float* extended, float* out, std::ptrdiff_t count);
template <int taps> void lowpassAlong(const float* extended, float* out, std::ptrdiff_t count);

/// The sums down the columns, in order of the taps, times 1/9 or 1/25 in single precision. The errors of both
/// constants (2^-27 and 2^-25.4 of their value) are small enough that a sum 9 v or 25 v which is exact gives v
/// exactly.
template <int taps> void lowpassDownScalar(const float* const* rows, float* dst, std::ptrdiff_t count);
template <int taps> void lowpassDown(const float* const* rows, float* dst, std::ptrdiff_t count);

} // namespace lum::kernels
