// Running sums of frames: plain, of squares, of products and exponentially weighted, with and without a mask.
#pragma once

#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Lum8u, Lum16u; add over Lum32f has a masked form only.
template <class T> LumStatus add(const T* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumSize roiSize);
/// Lum8u, Lum16u, Lum32f; as are all below.
template <class T>
LumStatus addMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                    int srcDstStep, LumSize roiSize);

template <class T>
LumStatus addSquare(const T* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumSize roiSize);
template <class T>
LumStatus addSquareMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                          int srcDstStep, LumSize roiSize);

template <class T>
LumStatus addProduct(const T* src1, int src1Step, const T* src2, int src2Step, Lum32f* srcDst, int srcDstStep,
                     LumSize roiSize);
template <class T>
LumStatus addProductMasked(const T* src1, int src1Step, const T* src2, int src2Step, const Lum8u* mask,
                           int maskStep, Lum32f* srcDst, int srcDstStep, LumSize roiSize);

template <class T>
LumStatus addWeighted(const T* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumSize roiSize,
                      Lum32f alpha);
template <class T>
LumStatus addWeightedMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                            int srcDstStep, LumSize roiSize, Lum32f alpha);

/// The one member with a destination of its own.
LumStatus addWeightedOutOfPlace(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                Lum32f* dst, int dstStep, LumSize roiSize, Lum32f alpha);

} // namespace lum
