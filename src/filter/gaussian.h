// Runs of the Gaussian filter.
#pragma once

#include "lumcv/border.h"
#include "lumcv/gaussian.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// On a core object. T is Lum8u, Lum16u, Lum16s or Lum32f, with one or three channels.
template <class T, int channels>
LumStatus gaussianL(const T* src, intptr_t srcStep, T* dst, intptr_t dstStep, LumSizeL roiSize,
                    LumBorderType border, const T* borderValue, const LumFilterGaussianSpecL* spec,
                    Lum8u* buffer);

/// On a front object.
template <class T, int channels>
LumStatus gaussian(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize, LumBorderType border,
                   const T* borderValue, const LumFilterGaussianSpec* spec, Lum8u* buffer);

/// On a front object and with its border; a value for one channel, a pointer for three.
template <class T>
LumStatus gaussianBorder(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize, T borderValue,
                         const LumFilterGaussianSpec* spec, Lum8u* buffer);
template <class T>
LumStatus gaussianBorderC3(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                           const T* borderValue, const LumFilterGaussianSpec* spec, Lum8u* buffer);

} // namespace lum
