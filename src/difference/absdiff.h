// Absolute differences of two images, and of an image and a constant.
#pragma once

#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Bytes a pixel that the choice of stores counts; 0 where a member has one kind of store only. The
/// difference to a constant in 16u counts three images, though it streams two.
template <class T> inline constexpr int absDiffStreamedBytes = 0;
template <> inline constexpr int absDiffStreamedBytes<Lum16u> = 6;
template <> inline constexpr int absDiffStreamedBytes<Lum32f> = 12;

template <class T> inline constexpr int absDiffCStreamedBytes = 0;
template <> inline constexpr int absDiffCStreamedBytes<Lum16u> = 6;
template <> inline constexpr int absDiffCStreamedBytes<Lum32f> = 8;

/// Lum8u, Lum16u, Lum32f.
template <class T>
LumStatus absDiff(const T* src1, int src1Step, const T* src2, int src2Step, T* dst, int dstStep,
                  LumSize roiSize);

LumStatus absDiffC3(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, Lum8u* dst, int dstStep,
                    LumSize roiSize);

/// The constant's type: integer members take a Lum32s and clamp it.
template <class T> struct AbsDiffConstant { using Type = Lum32s; };
template <> struct AbsDiffConstant<Lum32f> { using Type = Lum32f; };

/// Lum8u, Lum16u, Lum32f.
template <class T>
LumStatus absDiffC(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                   typename AbsDiffConstant<T>::Type value);

} // namespace lum
