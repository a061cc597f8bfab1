// Absolute differences of two images, and of an image and a constant.
#pragma once

#include "lumcv.h"

namespace lum {

/// Lum8u, Lum16u, Lum32f.
template <class T>
LumStatus absDiff(const T* src1, int src1Step, const T* src2, int src2Step, T* dst, int dstStep,
                  LumSize roiSize);

LumStatus absDiffThreeChannels(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, Lum8u* dst,
                               int dstStep, LumSize roiSize);

/// The constant's type: integer members take a Lum32s and clamp it.
template <class T> struct AbsDiffConstant { using Type = Lum32s; };
template <> struct AbsDiffConstant<Lum32f> { using Type = Lum32f; };

/// Lum8u, Lum16u, Lum32f.
template <class T>
LumStatus absDiffC(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                   typename AbsDiffConstant<T>::Type value);

} // namespace lum
