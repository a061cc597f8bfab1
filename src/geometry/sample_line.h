// The pixels along a straight line.
#pragma once

#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Lum8u, Lum16u, Lum32f with 1 or 3 channels.
template <class T, int channels>
LumStatus sampleLine(const T* src, int srcStep, LumSize roiSize, T* dst, LumPoint point1, LumPoint point2);

} // namespace lum
