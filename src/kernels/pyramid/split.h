// Rows of pixels as floats: the pixels of even and those of odd index.
#pragma once

#include <cstddef>

#include "lumcv/types.h"

namespace lum::kernels {

/// Pixels 0, 2, 4, ... of `pixels` pixels to `even` and the others to `odd`. Lum8u, Lum16u, Lum32f; one or three
/// channels.
template <class T, int channels>
void splitPixelsScalar(const T* src, std::ptrdiff_t pixels, float* even, float* odd);
template <class T, int channels>
void splitPixels(const T* src, std::ptrdiff_t pixels, float* even, float* odd);

} // namespace lum::kernels
