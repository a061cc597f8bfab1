// The directory of a pyramid.
#pragma once

#include "lumcv/pyramid.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

LumStatus pyramidGetSize(Lum32s* pyramidSize, Lum32s* bufferSize, int level, LumSize roiSize, Lum32f rate);
LumStatus pyramidGetSizeL(Lum32s* pyramidSize, Lum32s* bufferSize, int level, LumSizeL roiSize, Lum32f rate);

LumStatus pyramidInit(LumPyramid** pyramid, int level, LumSize roiSize, Lum32f rate, Lum8u* memory,
                      Lum8u* buffer);
LumStatus pyramidInitL(LumPyramid** pyramid, int level, LumSizeL roiSize, Lum32f rate, Lum8u* memory,
                       Lum8u* buffer);

} // namespace lum
