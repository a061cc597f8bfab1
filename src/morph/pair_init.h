// Sizes and initialisers of the objects of compound operators: a mask and its point reflection.
#pragma once

#include "lumcv/morph_object.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Objects of two mask records. Lum8u, Lum16u, Lum16s or Lum32f, with 1, 3 or 4 channels.
template <class T, int channels> struct AdvancedMorphology {
    static LumStatus getSize(LumSize roiSize, LumSize maskSize, Lum32s* specSize, Lum32s* bufferSize);
    static LumStatus init(LumSize roiSize, const Lum8u* mask, LumSize maskSize, LumMorphPairState* spec,
                          Lum8u* buffer);
};

/// Objects of two bit states.
struct AdvancedBitMorphology {
    static LumStatus getSize(LumSize roiSize, LumSize maskSize, Lum32s* specSize, Lum32s* bufferSize);
    static LumStatus init(LumSize roiSize, const Lum8u* mask, LumSize maskSize, LumMorphPairState* spec,
                          Lum8u* buffer);
};

/// Objects of two long states.
LumStatus morphGetSpecSizeL(LumSizeL roiSize, LumSizeL maskSize, LumDataType type, int numChannels,
                            Lum32s* specSize);
LumStatus morphGetBufferSizeL(LumSizeL roiSize, LumSizeL maskSize, LumDataType type, int numChannels,
                              Lum32s* bufferSize);
LumStatus morphInitL(LumSizeL roiSize, const Lum8u* mask, LumSizeL maskSize, LumDataType type,
                     int numChannels, LumMorphPairState* spec);

LumStatus morphSetMode(int mode, LumMorphPairState* spec);

} // namespace lum
