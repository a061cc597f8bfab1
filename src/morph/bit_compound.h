// Opening, closing, top-hat, black-hat and gradient of bit images.
#pragma once

#include <cstdint>

#include "lumcv/morph_compound.h"
#include "lumcv/morph_compound_long.h"
#include "morph/compound_plan.h"

namespace lum {

template <CompoundOp op> struct BitCompound {
    static LumStatus border(const Lum8u* src, int srcStep, int srcBitOffset, Lum8u* dst, int dstStep,
                            int dstBitOffset, LumSize roiSize, LumBorderType border, Lum8u borderValue,
                            const LumMorphPairState* spec, Lum8u* buffer);
    static LumStatus borderLong(const Lum8u* src, std::intptr_t srcStep, std::intptr_t srcBitOffset,
                                Lum8u* dst, std::intptr_t dstStep, std::intptr_t dstBitOffset,
                                LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                const LumMorphPairState* spec, Lum8u* buffer);
};

} // namespace lum
