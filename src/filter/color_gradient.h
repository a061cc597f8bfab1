// Gradients of three channels reduced to one.
#pragma once

#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Lum8u, Lum16u, Lum32f.
template <class T>
LumStatus gradientColorToGray(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                              LumSpatialNorm norm);

} // namespace lum
