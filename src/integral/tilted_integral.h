// Integral images of rectangles turned by 45 degrees.
#pragma once

#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Lum32s, Lum32f.
template <class Sum>
LumStatus tiltedIntegral(const Lum8u* src, int srcStep, Sum* dst, int dstStep, LumSize roiSize, Sum value);

/// <Lum32s, Lum32s>, <Lum32s, Lum64f>, <Lum32f, Lum64f>.
template <class Sum, class Square>
LumStatus tiltedSqrIntegral(const Lum8u* src, int srcStep, Sum* dst, int dstStep, Square* sqr, int sqrStep,
                            LumSize roiSize, Sum value, Square sqrValue);

} // namespace lum
