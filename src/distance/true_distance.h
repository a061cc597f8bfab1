// The exact Euclidean distance transform.
#pragma once

#include "lumcv.h"

namespace lum {

LumStatus trueDistanceTransform(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize,
                                Lum8u* buffer);
LumStatus trueDistanceTransformGetBufferSize(LumSize roiSize, Lum32s* size);

} // namespace lum
