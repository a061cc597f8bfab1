// Runs and sizes of the Laplacian over a region.
#pragma once

#include "filter/fixed_filter.h"

namespace lum {

inline constexpr FixedFilterSize laplacianSize8u{64, 24, 336, rowPipeline8u16sC1, columnPipeline16sC1};
inline constexpr FixedFilterSize laplacianSize32f{128, 24, 336, rowPipeline32fC1, columnPipeline32f};

LumStatus laplacian8u(const Lum8u* src, int srcStep, Lum16s* dst, int dstStep, LumSize roiSize,
                      LumMaskSize maskSize, LumBorderType border, Lum8u borderValue, Lum8u* buffer);
LumStatus laplacian32f(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize,
                       LumMaskSize maskSize, LumBorderType border, Lum32f borderValue, Lum8u* buffer);

} // namespace lum
