// Dilation and erosion of bit images.
#pragma once

#include <cstdint>

#include "kernels/morph/bit_image.h"
#include "kernels/morph/operation.h"
#include "lumcv/morph.h"

namespace lum {

template <kernels::MorphOp op> struct BitMorphology {
    static LumStatus border(const Lum8u* src, int srcStep, int srcBitOffset, Lum8u* dst, int dstStep,
                            int dstBitOffset, LumSize roiSize, LumBorderType border, Lum8u borderValue,
                            const LumMorphBitState* spec, Lum8u* buffer);
    static LumStatus borderLong(const Lum8u* src, std::intptr_t srcStep, std::intptr_t srcBitOffset,
                                Lum8u* dst, std::intptr_t dstStep, std::intptr_t dstBitOffset,
                                LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                const LumMorphLongState* spec, Lum8u* buffer);
};

/// A run without its checks. `border` is a kind with the flags 0x10 to 0x80. The work area is never more than what is
/// queried for this region or any larger one.
template <kernels::MorphOp op>
void runBitMorphology(kernels::BitImage<const Lum8u> src, kernels::BitImage<Lum8u> dst, LumSizeL roiSize,
                      LumBorderType border, bool borderValue, const LumMorphBitState& mask, Lum8u* buffer);

} // namespace lum
