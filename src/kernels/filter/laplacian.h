// The Laplacian. Three taps: the kernel 2 0 2 / 0 -8 0 / 2 0 2. Five taps: the smoothing kernel {1, 4, 6, 4, 1}
// along one axis with the second difference {1, 0, -2, 0, 1} along the other, both ways, added. `rows` are
// extended by half a kernel at each end.
#pragma once

#include <cstddef>

#include "lumcv/types.h"

namespace lum::kernels {

/// A row of results from as many extended rows of bytes as there are taps. All sums fit the result: none
/// exceeds 56 x 255. dst is none of the rows.
template <int taps> void laplacianScalar(const Lum8u* const* rows, Lum16s* dst, std::ptrdiff_t count);
template <int taps> void laplacian(const Lum8u* const* rows, Lum16s* dst, std::ptrdiff_t count);

/// Two rows from one extended row, which may be `first` itself. Three taps: the sum of the two neighbours, and
/// the pixel itself. Five taps: the smoothed row and its second difference.
template <int taps>
void laplacianAlongScalar(const float* extended, float* first, float* second, std::ptrdiff_t count);
template <int taps>
void laplacianAlong(const float* extended, float* first, float* second, std::ptrdiff_t count);

/// The results from as many first rows as there are taps, and after them as many second rows.
template <int taps> void laplacianDownScalar(const float* const* rows, float* dst, std::ptrdiff_t count);
template <int taps> void laplacianDown(const float* const* rows, float* dst, std::ptrdiff_t count);

} // namespace lum::kernels
