// Runs and sizes of the cross derivative over a region.
#pragma once

#include "filter/fixed_filter.h"

namespace lum {

inline constexpr FixedFilterSize sobelCrossSize32f{64, 12, 248, rowPipeline32fC1, columnPipeline32f};

LumStatus sobelCross8u(const Lum8u* src, int srcStep, Lum16s* dst, int dstStep, LumSize roiSize,
                       LumMaskSize maskSize, LumBorderType border, Lum8u borderValue, Lum8u* buffer);
LumStatus sobelCross32f(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize,
                        LumMaskSize maskSize, LumBorderType border, Lum32f borderValue, Lum8u* buffer);

} // namespace lum
