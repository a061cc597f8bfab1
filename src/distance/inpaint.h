// Inpainting: sizes, the analysis of a mask, and the repair of a picture.
#pragma once

#include "lumcv.h"

namespace lum {

LumStatus inpaintGetSize(const Lum8u* mask, int maskStep, LumSize roiSize, Lum32f radius, Lum32s method,
                         Lum32s channels, Lum32s* stateSize, Lum32s* bufferSize);

template <int channels>
LumStatus inpaintInit(LumInpaintState** state, const Lum32f* distances, int distancesStep, const Lum8u* mask,
                      int maskStep, LumSize roiSize, Lum32f radius, Lum32s method, Lum8u* stateBuffer,
                      Lum8u* initBuffer);

template <int channels>
LumStatus inpaint(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumSize roiSize,
                  LumInpaintState* state, Lum8u* buffer);

} // namespace lum
