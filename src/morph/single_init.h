// Sizes and initialisers of the objects of erosion and dilation.
#pragma once

#include <cstdint>

#include "lumcv/morph_object.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Lum8u, Lum16u, Lum16s or Lum32f, with 1, 3 or 4 channels.
template <class T, int channels>
LumStatus morphologyBorderGetSize(LumSize roiSize, LumSize maskSize, Lum32s* specSize, Lum32s* bufferSize);
LumStatus morphologyBorderInit(LumSize roiSize, const Lum8u* mask, LumSize maskSize, LumMorphMaskRecord* spec,
                               Lum8u* buffer);

LumStatus bitMorphologyBorderGetSize(LumSize roiSize, LumSize maskSize, Lum32s* specSize, Lum32s* bufferSize);
LumStatus bitMorphologyBorderInit(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                  LumMorphBitState* spec, Lum8u* buffer);

LumStatus erodeGetSpecSizeL(LumSizeL roiSize, LumSizeL maskSize, Lum32s* specSize);
LumStatus erodeGetBufferSizeL(LumSizeL roiSize, LumSizeL maskSize, LumDataType type, int numChannels,
                              Lum32s* bufferSize);
LumStatus erodeInitL(LumSizeL roiSize, const Lum8u* mask, LumSizeL maskSize, LumMorphLongState* spec);

LumStatus dilateGetSpecSizeL(LumSizeL roiSize, LumSizeL maskSize, Lum32s* specSize);
LumStatus dilateGetBufferSizeL(LumSizeL roiSize, LumSizeL maskSize, LumDataType type, int numChannels,
                               Lum32s* bufferSize);
LumStatus dilateInitL(LumSizeL roiSize, const Lum8u* mask, LumSizeL maskSize, LumMorphLongState* spec);

/// What erodeInitL() builds; nothing is tested.
void buildLongState(LumMorphLongState* state, const Lum8u* mask, LumSizeL maskSize, std::intptr_t roiWidth);

} // namespace lum
