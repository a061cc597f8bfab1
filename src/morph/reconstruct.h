// Morphological reconstruction of a marker image under (dilation) or over (erosion) a mask image.
#pragma once

#include "kernels/morph/operation.h"
#include "lumcv/morph_reconstruct.h"

namespace lum {

LumStatus reconstructBufferSize(LumSize roiSize, LumDataType dataType, int numChannels, Lum32s* bufferSize);

/// Lum8u, Lum16u, Lum32f, Lum64f.
template <kernels::MorphOp op, class T> struct Reconstruct {
    static LumStatus run(const T* src, int srcStep, T* srcDst, int srcDstStep, LumSize roiSize, Lum8u* buffer,
                         LumSpatialNorm connectivity);
};

} // namespace lum
