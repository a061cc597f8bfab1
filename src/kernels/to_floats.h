// Rows of elements as rows of floats.
#pragma once

#include <cstddef>

#include "lumcv/types.h"

namespace lum::kernels {

/// out[i] = src[i] as a float, which is exact; Lum8u, Lum16u, Lum16s, Lum32f.
template <class T> void toFloatsScalar(const T* src, std::ptrdiff_t count, float* out);
template <class T> void toFloats(const T* src, std::ptrdiff_t count, float* out);

} // namespace lum::kernels
