// Opening, closing, top-hat, black-hat and gradient of images of 8-bit, 16-bit and float elements.
#pragma once

#include <cstdint>

#include "lumcv/morph_compound.h"
#include "lumcv/morph_compound_long.h"
#include "morph/compound_plan.h"

namespace lum {

/// The members of one operator and element type with one channel: Lum8u, Lum16u, Lum16s, Lum32f.
template <CompoundOp op, class T> struct SingleChannelCompound {
    static LumStatus border(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                            LumBorderType border, T borderValue, const LumMorphPairState* spec,
                            Lum8u* buffer);
    static LumStatus borderLong(const T* src, std::intptr_t srcStep, T* dst, std::intptr_t dstStep,
                                LumSizeL roiSize, LumBorderType border, const T* borderValue,
                                const LumMorphPairState* spec, Lum8u* buffer);
};

/// The members with three and four channels: Lum8u, Lum32f.
template <CompoundOp op, class T, int channels> struct ColourCompound {
    static LumStatus border(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                            LumBorderType border, const T* borderValue, const LumMorphPairState* spec,
                            Lum8u* buffer);
    static LumStatus borderLong(const T* src, std::intptr_t srcStep, T* dst, std::intptr_t dstStep,
                                LumSizeL roiSize, LumBorderType border, const T* borderValue,
                                const LumMorphPairState* spec, Lum8u* buffer);
};

} // namespace lum
