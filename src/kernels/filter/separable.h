// The two stages of a separable filter, one row a call. All sums are single-precision sums in order of the
// taps, and `scale`, the reciprocal of the divisor, is applied once to each. Kernels are Lum16s with a scale,
// or Lum32f, whose scale is 1 and left out.
#pragma once

#include <cstddef>

#include "kernels/filter/taps.h"

namespace lum::kernels {

/// out[x] = scale * sum over i of coefficients[i] * extended[x + i * channels]. out may be extended itself.
template <class K>
void separableRowScalar(const float* extended, Taps<K> taps, int channels, float* out, std::ptrdiff_t count);
template <class K>
void separableRow(const float* extended, Taps<K> taps, int channels, float* out, std::ptrdiff_t count);

/// Whether all sums of a row of T are whole numbers of at most 2^24, which are exact in single precision, so
/// that integers give the same sums.
template <class T> bool rowSumsAreExact(Taps<Lum16s> taps);

/// The row stage of such a kernel. Lum8u, Lum16s. The extended row may lie in the memory of `out`, with its
/// end where count + (taps.count - 1) * channels floats would end.
template <class T>
void separableRowExact(const T* extended, Taps<Lum16s> taps, int channels, float* out, std::ptrdiff_t count);

/// dst[x] = scale * sum over k of coefficients[k] * rows[k][x]; for integers, clamped and truncated toward
/// zero. Kernels of 16s: Lum8u, Lum16s; of 32f: Lum16u, Lum32f.
template <class K, class D>
void separableColumnScalar(const float* const* rows, Taps<K> taps, D* dst, std::ptrdiff_t count);
template <class K, class D>
void separableColumn(const float* const* rows, Taps<K> taps, D* dst, std::ptrdiff_t count);

/// Rows of floats that are needed some rows later.
struct SeparableRowsAhead {
    const float* src;
    const float* dst;
};

/// The column stage of floats, which asks for rows ahead on the way.
void separableColumnAhead(const float* const* rows, Taps<Lum32f> taps, float* dst, std::ptrdiff_t count,
                          const SeparableRowsAhead& ahead);

} // namespace lum::kernels
