// The cross derivative: the kernel {1, 0, -1} or {1, 2, 0, -2, -1} along the rows and down the columns. `rows`
// are extended by half a kernel at each end; three or five taps.
#pragma once

#include <cstddef>

#include "lumcv/types.h"

namespace lum::kernels {

/// A row of results from as many extended rows of bytes as there are taps. Exact. dst is none of the rows.
template <int taps> void sobelCrossScalar(const Lum8u* const* rows, Lum16s* dst, std::ptrdiff_t count);
template <int taps> void sobelCross(const Lum8u* const* rows, Lum16s* dst, std::ptrdiff_t count);

/// The derivative along one extended row of floats, which may be `out` itself.
template <int taps> void sobelCrossAlongScalar(const float* extended, float* out, std::ptrdiff_t count);
template <int taps> void sobelCrossAlong(const float* extended, float* out, std::ptrdiff_t count);

/// The derivative down the columns.
template <int taps> void sobelCrossDownScalar(const float* const* rows, float* dst, std::ptrdiff_t count);
template <int taps> void sobelCrossDown(const float* const* rows, float* dst, std::ptrdiff_t count);

} // namespace lum::kernels
