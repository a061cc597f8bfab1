// Runs and sizes of the low-pass filter over a region.
#pragma once

#include "filter/fixed_filter.h"

namespace lum {

/// Also that of the cross derivative of bytes: the two queries are one.
inline constexpr FixedFilterSize lowpassSize8u{32, 12, 248, rowPipeline8u16sC1, columnPipeline16sC1};
inline constexpr FixedFilterSize lowpassSize32f{64, 12, 184, rowPipeline32fC1, columnPipeline32f};

LumStatus lowpass8u(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumSize roiSize,
                    LumMaskSize maskSize, LumBorderType border, Lum8u borderValue, Lum8u* buffer);
LumStatus lowpass32f(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize,
                     LumMaskSize maskSize, LumBorderType border, Lum32f borderValue, Lum8u* buffer);

} // namespace lum
