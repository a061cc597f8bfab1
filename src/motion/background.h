// The background of a video as a mixture of colour modes at each pixel, in a block of the caller's.
#pragma once

#include "lumcv/background.h"

namespace lum {

LumStatus backgroundSize(LumSize roiSize, Lum32s maxMixtures, Lum32s* size);
LumStatus backgroundInit(LumSize roiSize, Lum32s maxMixtures, const LumFGMMParams* params,
                         LumFGMMState* state);
LumStatus backgroundForeground(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumSize roiSize,
                               LumFGMMState* state, const LumFGMMParams* params, Lum64f learningRate);
LumStatus backgroundPicture(Lum8u* dst, int dstStep, LumSize roiSize, LumFGMMState* state);

} // namespace lum
