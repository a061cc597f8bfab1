// The Harris measure of corners, and the suppression of features that lie along lines.
#pragma once

#include "lumcv/border.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

LumStatus harrisBufferSize(LumSize roiSize, LumMaskSize filterMask, int avgWindow, LumDataType type,
                           int numChannels, Lum32s* bufferSize);
/// Lum8u, Lum32f.
template <class T>
LumStatus harris(const T* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize, int filterKind,
                 LumMaskSize filterMask, int avgWindow, Lum32f k, Lum32f scale, LumBorderType border,
                 T borderValue, Lum8u* buffer);

LumStatus lineSuppressionBufferSize(LumSize roiSize, LumMaskSize filterMask, int avgWindow, LumDataType type,
                                    int numChannels, Lum32s* bufferSize);
LumStatus lineSuppression(const Lum8u* src, int srcStep, const Lum8u* feature, int featureStep, Lum8u* dst,
                          int dstStep, LumSize roiSize, int filter, LumMaskSize maskSize, int avgWindow,
                          Lum8u threshold, LumBorderType border, Lum8u borderValue, Lum8u* buffer);

} // namespace lum
