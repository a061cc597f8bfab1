// The Canny edge detector, from caller-made derivatives and from an image of bytes.
#pragma once

#include <cstdint>

#include "kernels/feature/canny.h"
#include "lumcv/border.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// One function where both sizes are a pair of 32-bit integers.
LumStatus cannyBufferSize(LumSize roiSize, Lum32s* bufferSize);
LumStatus cannyBufferSizeL(LumSizeL roiSize, Lum32s* bufferSize);

/// Lum16s, Lum32f.
template <class T>
LumStatus canny(const T* dx, int dxStep, const T* dy, int dyStep, Lum8u* dst, int dstStep, LumSize roiSize,
                Lum32f lowThreshold, Lum32f highThreshold, Lum8u* buffer);
template <class T>
LumStatus cannyOfNorm(const T* dx, std::intptr_t dxStep, const T* dy, std::intptr_t dyStep, Lum8u* dst,
                      std::intptr_t dstStep, LumSizeL roiSize, Lum32f lowThreshold, Lum32f highThreshold,
                      LumNormKind norm, Lum8u* buffer);

LumStatus cannyBorderBufferSize(LumSize roiSize, int filterKind, LumMaskSize mask, LumDataType type,
                                Lum32s* bufferSize);
LumStatus cannyBorder(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumSize roiSize, int filterKind,
                      LumMaskSize mask, LumBorderType border, Lum8u borderValue, Lum32f lowThreshold,
                      Lum32f highThreshold, LumNormKind norm, Lum8u* buffer);

} // namespace lum
