// Integral images: sums of all pixels above and to the left, and sums of their squares.
#pragma once

#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Lum32s, Lum32f.
template <class Sum>
LumStatus integral(const Lum8u* src, int srcStep, Sum* dst, int dstStep, LumSize roiSize, Sum value);

LumStatus integralOfFloats(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize);

/// <Lum32s, Lum32s>, <Lum32s, Lum64f>, <Lum32f, Lum64f>.
template <class Sum, class Square>
LumStatus sqrIntegral(const Lum8u* src, int srcStep, Sum* dst, int dstStep, Square* sqr, int sqrStep,
                      LumSize roiSize, Sum value, Square sqrValue);

} // namespace lum
