// The kernel 1 4 6 4 1 in both directions, at every second pixel of every second row, in integers: 8-bit pixels stay
// exact until the one rounding at the end.
#pragma once

#include <cstddef>

#include "lumcv/types.h"

namespace lum::kernels {

/// Pixel i of dst = the sums 1 4 6 4 1 of the pixels 2 * i - 2 .. 2 * i + 2 of src, which are all in memory. At
/// least one result; one or three channels.
template <int channels> void halveRowScalar(const Lum8u* src, std::ptrdiff_t pixels, Lum16u* dst);
template <int channels> void halveRow(const Lum8u* src, std::ptrdiff_t pixels, Lum16u* dst);

/// dst[i] = (rows[0][i] + 4 * rows[1][i] + 6 * rows[2][i] + 4 * rows[3][i] + rows[4][i]) / 256, rounded to nearest,
/// ties to even. The elements of the rows are at most 16 * 255.
void halveColumnScalar(const Lum16u* const* rows, std::ptrdiff_t count, Lum8u* dst);
void halveColumn(const Lum16u* const* rows, std::ptrdiff_t count, Lum8u* dst);

} // namespace lum::kernels
