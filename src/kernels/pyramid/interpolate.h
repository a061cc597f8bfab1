// Linear interpolation between neighbouring pixels of a row, and between two rows.
#pragma once

#include <cstddef>

#include "lumcv/types.h"

namespace lum::kernels {

/// A place between two pixels of a row.
struct PixelPlace {
    Lum32s first;    ///< the pixel before it, or the pixel that is taken as it is
    Lum32s second;   ///< the pixel after it
    float fraction;  ///< how far it is from the first to the second
    Lum32s isCopied; ///< whether the first pixel is taken as it is
};

/// Of each place the pixel (1 - fraction) * src[first] + fraction * src[second], or src[first], with each operation
/// rounded to float. Lum8u, Lum16u, Lum32f; one or three channels.
template <class T, int channels>
void interpolatePixels(const T* src, const PixelPlace* places, std::ptrdiff_t count, float* dst);

/// Pixel 2 * i of dst = src[i], pixel 2 * i + 1 = 0.5 * src[i] + 0.5 * src[i + 1], which are the pixels at places of
/// fraction 0 and a half; the pixel after the last one of src is read too. Lum8u, Lum16u, Lum32f; one or three channels.
template <class T, int channels>
void interpolateHalvesScalar(const T* src, std::ptrdiff_t pixels, float* dst);
template <class T, int channels> void interpolateHalves(const T* src, std::ptrdiff_t pixels, float* dst);

/// dst[i] = (1 - fraction) * first[i] + fraction * second[i], with each operation rounded to float. Lum8u and Lum16u
/// are rounded to nearest, ties to even, and saturated.
template <class T>
void blendRowsScalar(const float* first, const float* second, float fraction, std::ptrdiff_t count, T* dst);
template <class T>
void blendRows(const float* first, const float* second, float fraction, std::ptrdiff_t count, T* dst);

/// dst[i] = src[i], rounded to nearest, ties to even, and saturated in Lum8u and Lum16u.
template <class T> void storeRowScalar(const float* src, std::ptrdiff_t count, T* dst);
template <class T> void storeRow(const float* src, std::ptrdiff_t count, T* dst);

} // namespace lum::kernels
