// Distances by the eikonal equation.
#pragma once

#include "lumcv.h"

namespace lum {

LumStatus fastMarching(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize,
                       Lum32f radius, Lum8u* buffer);
LumStatus fastMarchingGetBufferSize(LumSize roiSize, Lum32s* size);

} // namespace lum
