// Grey-weighted dilation and erosion.
#pragma once

#include "kernels/morph/operation.h"
#include "lumcv/morph.h"

namespace lum {

/// Lum8u, Lum32f.
template <kernels::MorphOp op, class T>
LumStatus grayMorphology(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                         LumBorderType border, const LumMorphGrayState* spec);

} // namespace lum
