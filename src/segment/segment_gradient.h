// Regions grown by the differences between neighbouring pixels, and boundaries between finished regions.
#pragma once

#include "lumcv/segment_gradient.h"

namespace lum {

/// One channel and three.
LumStatus segmentGradientBufferSize(LumSize roiSize, Lum32s* size);

template <int channels>
LumStatus segmentGradient(const Lum8u* src, int srcStep, Lum8u* markers, int markersStep, LumSize roiSize,
                          LumSpatialNorm norm, Lum32s flags, Lum8u* buffer);

/// Lum8u, Lum16u.
template <class T>
LumStatus boundSegments(T* srcDst, int srcDstStep, LumSize roiSize, T borderValue, LumSpatialNorm norm);

} // namespace lum
