// Local extremes of a score image, as a list.
#pragma once

#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

LumStatus peaksBufferSize(int width, Lum32s* size);

/// Lum32f, Lum32s.
template <class T>
LumStatus findPeaks(const T* src, int srcStep, LumSize roiSize, T threshold, LumPoint* peaks,
                    int maxPeakCount, int* peakCount, LumSpatialNorm norm, int border, Lum8u* buffer);

} // namespace lum
