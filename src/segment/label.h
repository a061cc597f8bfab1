// Labels for connected regions, and the marking of small ones.
#pragma once

#include "lumcv/label.h"

namespace lum {

LumStatus labelMarkersBufferSize(LumSize roiSize, Lum32s* size);

/// Lum8u, Lum16u.
template <class T>
LumStatus labelMarkers(T* srcDst, int srcDstStep, LumSize roiSize, Lum32s minLabel, Lum32s maxLabel,
                       LumSpatialNorm norm, Lum32s* numberOfLabels, Lum8u* buffer);
LumStatus labelMarkersTo32s(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, LumSize roiSize,
                            Lum32s minLabel, Lum32s maxLabel, LumSpatialNorm norm, Lum32s* numberOfLabels,
                            Lum8u* buffer);

LumStatus markSpecklesBufferSize(LumSize roiSize, LumDataType dataType, int channels, Lum32s* size);

/// Lum8u, Lum16u, Lum16s, Lum32f.
template <class T>
LumStatus markSpeckles(T* srcDst, int srcDstStep, LumSize roiSize, T speckleValue, Lum32s maxSpeckleSize,
                       T maxDifference, LumNormKind norm, Lum8u* buffer);

} // namespace lum
