// The low-pass filter: the mean of three by three or five by five pixels.
#pragma once

#include <cstddef>
#include <cstdint>

#include "lumcv/types.h"

namespace lum::kernels {

/// A row of bytes where it is, and half a kernel of pixels before and after it.
struct RowOfBytes {
    const Lum8u* pixels;
    Lum8u before[2];
    Lum8u after[2];
};

/// A row of results from as many rows as there are taps. With S the sum of the taps: three taps ((S + 5) x 7280) >> 16,
/// five taps (S x 2622) >> 16, which both give a flat row back. dst is none of the rows.
template <int taps> void lowpassScalar(const RowOfBytes* rows, Lum8u* dst, std::ptrdiff_t count);
template <int taps> void lowpass(const RowOfBytes* rows, Lum8u* dst, std::ptrdiff_t count);

/// How many bytes after the rows of a call those of a later call lie, which it asks for on the way; 0 to ask for none.
struct BytesAhead {
    std::uintptr_t src;
    std::uintptr_t dst;
};

/// Two rows of results, one below the other, from one row more than there are taps.
template <int taps>
void lowpassTwoRows(const RowOfBytes* rows, Lum8u* first, Lum8u* second, std::ptrdiff_t count,
                    BytesAhead ahead);

/// The sums along one extended row of floats, which may be `out` itself; in order of the taps.
template <int taps> void lowpassAlongScalar(const float* extended, float* out, std::ptrdiff_t count);
template <int taps> void lowpassAlong(const float* extended, float* out, std::ptrdiff_t count);

/// The sums down the columns, in order of the taps, times 1/9 or 1/25 in single precision. The errors of both
/// constants (2^-27 and 2^-25.4 of their value) are small enough that a sum 9 v or 25 v which is exact gives v
/// exactly.
template <int taps> void lowpassDownScalar(const float* const* rows, float* dst, std::ptrdiff_t count);
template <int taps> void lowpassDown(const float* const* rows, float* dst, std::ptrdiff_t count);

} // namespace lum::kernels
