// Twice the pixels along an axis, as the float form has them, of 8-bit pixels in integers: exact until the one rounding
// at the end.
#pragma once

#include <cstddef>

#include "lumcv/types.h"

namespace lum::kernels {

/// even[i] = 6 * row[i] + above[i] + below[i] and odd[i] = 4 * (row[i] + below[i]).
void doubleColumn8uScalar(const Lum8u* above, const Lum8u* row, const Lum8u* below, std::ptrdiff_t count,
                          Lum16u* even, Lum16u* odd);
void doubleColumn8u(const Lum8u* above, const Lum8u* row, const Lum8u* below, std::ptrdiff_t count,
                    Lum16u* even, Lum16u* odd);

/// The same along the row, divided by 64 and rounded to nearest, ties to even: 2 * pixels pixels of dst, from the pixel
/// before src to the one after its last. The elements of src are at most 8 * 255. One or three channels.
template <int channels> void doubleRow8uScalar(const Lum16u* src, std::ptrdiff_t pixels, Lum8u* dst);
template <int channels> void doubleRow8u(const Lum16u* src, std::ptrdiff_t pixels, Lum8u* dst);

} // namespace lum::kernels
