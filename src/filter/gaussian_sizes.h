// What the objects and the work memory of the Gaussian filter take, in bytes. All in wrapping 32-bit arithmetic.
#pragma once

#include "lumcv/border.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// A core object alone, in both generations.
LumStatus gaussianGetSpecSizeL(Lum32s kernelSize, LumDataType dataType, Lum32s numChannels, Lum32s* specSize,
                               Lum32s* initBufferSize);
LumStatus gaussianGetSpecSize(Lum32s kernelSize, LumDataType dataType, Lum32s numChannels, Lum32s* specSize,
                              Lum32s* initBufferSize);

LumStatus gaussianGetBufferSizeL(LumSizeL roiSize, Lum32s kernelSize, LumDataType dataType,
                                 LumBorderType border, Lum32s numChannels, Lum32s* bufferSize);

/// The front object with its core object, and work memory for its runs.
LumStatus gaussianGetBufferSize(LumSize roiSize, Lum32s kernelSize, LumDataType dataType, Lum32s numChannels,
                                Lum32s* specSize, Lum32s* bufferSize);

} // namespace lum
