// Eigenvalues and eigenvectors of the covariance of gradients.
#pragma once

#include "lumcv/border.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Of the measures of elements T: Lum8u, Lum32f.
template <class T>
LumStatus eigenBufferSize(LumSize roiSize, int apertureSize, int blockSize, Lum32s* bufferSize);

template <class T>
LumStatus minEigenVal(const T* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize, int kernelKind,
                      int apertureSize, int blockSize, Lum8u* buffer);
template <class T>
LumStatus minEigenValBorder(const T* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize,
                            int kernelKind, int apertureSize, int blockSize, LumBorderType border,
                            T borderValue, Lum8u* buffer);
template <class T>
LumStatus eigenValsVecs(const T* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize, int kernelKind,
                        int apertureSize, int blockSize, Lum8u* buffer);
template <class T>
LumStatus eigenValsVecsBorder(const T* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize,
                              int kernelKind, int apertureSize, int blockSize, LumBorderType border,
                              T borderValue, Lum8u* buffer);

} // namespace lum
