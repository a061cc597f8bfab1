// Dilation and erosion of images of 8-bit, 16-bit and float elements.
#pragma once

#include <cstdint>

#include "frame/image.h"
#include "kernels/morph/operation.h"
#include "lumcv/morph.h"

namespace lum {

/// The members of one operation and element type with one channel: Lum8u, Lum16u, Lum16s, Lum32f.
template <kernels::MorphOp op, class T> struct SingleChannelMorphology {
    static LumStatus border(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                            LumBorderType border, T borderValue, const LumMorphMaskRecord* spec,
                            Lum8u* buffer);
    static LumStatus borderLong(const T* src, std::intptr_t srcStep, T* dst, std::intptr_t dstStep,
                                LumSizeL roiSize, LumBorderType border, const T* borderValue,
                                const LumMorphLongState* spec, Lum8u* buffer);
};

/// The members with three and four channels: Lum8u, Lum32f.
template <kernels::MorphOp op, class T, int channels> struct ColourMorphology {
    static LumStatus border(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                            LumBorderType border, const T* borderValue, const LumMorphMaskRecord* spec,
                            Lum8u* buffer);
    static LumStatus borderLong(const T* src, std::intptr_t srcStep, T* dst, std::intptr_t dstStep,
                                LumSizeL roiSize, LumBorderType border, const T* borderValue,
                                const LumMorphLongState* spec, Lum8u* buffer);
};

/// A run without its checks. `border` is a kind with the flags 0x10 to 0x80; borderValue has an element a channel and is
/// read for lumBorderConstant only. The work area is never more than what is queried for this region or any larger one.
template <kernels::MorphOp op, class T>
void runMorphology(Image<const T> src, Image<T> dst, LumSizeL roiSize, int channels, LumBorderType border,
                   const T* borderValue, const LumMorphMaskRecord& mask, Lum8u* buffer);

} // namespace lum
