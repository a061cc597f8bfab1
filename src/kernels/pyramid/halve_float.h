// Five symmetric taps along a row, at every second pixel, in floats.
#pragma once

#include <cstddef>

#include "lumcv/types.h"

namespace lum::kernels {

/// Pixel i of dst = (src[2i - 2] + src[2i + 2]) * weights[0] + (src[2i - 1] + src[2i + 1]) * weights[1] + src[2i] *
/// weights[2], in that order, each operation rounded; src[2i - 2] .. src[2i + 2] are all in memory. At least one result.
/// Lum8u, Lum16u, Lum32f; one or three channels.
template <class T, int channels>
void halveFiveScalar(const T* src, const float* weights, std::ptrdiff_t pixels, float* dst);
template <class T, int channels>
void halveFive(const T* src, const float* weights, std::ptrdiff_t pixels, float* dst);

} // namespace lum::kernels
