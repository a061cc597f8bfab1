// Twice the pixels along an axis: between and around the pixels of the smaller level with the kernel 1 4 6 4 1, of which
// a result of even index meets the taps 1 6 1 and one of odd index the taps 4 4. In floats, in the order of the formulas,
// each operation rounded.
#pragma once

#include <cstddef>

#include "lumcv/types.h"

namespace lum::kernels {

/// Pixel 2 * i of dst = (6 * src[i] + src[i - 1] + src[i + 1]) * 0.125, pixel 2 * i + 1 = (src[i] + src[i + 1]) * 4 *
/// 0.125, from the pixel before src to the one after its last. Lum16u and Lum32f; one or three channels.
template <class T, int channels> void doubleRowScalar(const T* src, std::ptrdiff_t pixels, float* dst);
template <class T, int channels> void doubleRow(const T* src, std::ptrdiff_t pixels, float* dst);

/// The pair of results of a pixel at an end of the row: its only neighbour counts on both sides.
template <class T> void doubleEndPixel(const T* pixel, const T* neighbour, int channels, float* dst);

/// The row above, the row itself and the row below it, in the larger level's columns.
struct DoubledRows {
    const float* above;
    const float* row;
    const float* below;
};

/// dst[i] = (6 * row[i] + above[i] + below[i]) * 0.125. Where the rows above and below are one, dst[i] = (6 * row[i] +
/// 2 * below[i]) * 0.125. Lum16u is rounded to nearest, ties to even, and saturated. The vector form asks for a row of
/// results that is made later, `ahead`: it is written long before it would come by itself.
template <class T> void doubleEvenRowScalar(const DoubledRows& rows, std::ptrdiff_t count, T* dst);
template <class T> void doubleEvenRow(const DoubledRows& rows, std::ptrdiff_t count, T* dst, const T* ahead);

/// dst[i] = (row[i] + below[i]) * 4 * 0.125, converted in the same way.
template <class T> void doubleOddRowScalar(const DoubledRows& rows, std::ptrdiff_t count, T* dst);
template <class T> void doubleOddRow(const DoubledRows& rows, std::ptrdiff_t count, T* dst, const T* ahead);

} // namespace lum::kernels
