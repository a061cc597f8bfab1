// The weighted sum of rows with a symmetric kernel: both directions of the smoothing. Down the columns the rows are
// neighbours; along a row they are the same row, seen from one pixel further each.
#pragma once

#include <cstddef>

#include "lumcv/types.h"

namespace lum::kernels {

/// dst[i] = sum over j = 0 .. radius - 1 of (rows[j][i] + rows[2 * radius - j][i]) * weights[j], in that order, and
/// rows[radius][i] * weights[radius] last. Each operation rounds to float. Lum8u and Lum16u are rounded to nearest,
/// ties to even, and saturated; Lum32f is the sum. The rows and dst do not overlap.
template <class T>
void weightedRowsScalar(const float* const* rows, const float* weights, int radius, std::ptrdiff_t count,
                        T* dst);
template <class T>
void weightedRows(const float* const* rows, const float* weights, int radius, std::ptrdiff_t count, T* dst);

} // namespace lum::kernels
