// Running sums of frames: plain, of squares, of products and exponentially weighted, with and without a mask.
#pragma once

#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// The members of one source type: Lum8u, Lum16u, Lum32f; of the last, add is no export.
template <class T> struct Accumulators {
    static LumStatus add(const T* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumSize roiSize);
    static LumStatus addMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                               int srcDstStep, LumSize roiSize);

    static LumStatus addSquare(const T* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumSize roiSize);
    static LumStatus addSquareMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep,
                                     Lum32f* srcDst, int srcDstStep, LumSize roiSize);

    static LumStatus addProduct(const T* src1, int src1Step, const T* src2, int src2Step, Lum32f* srcDst,
                                int srcDstStep, LumSize roiSize);
    static LumStatus addProductMasked(const T* src1, int src1Step, const T* src2, int src2Step,
                                      const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep,
                                      LumSize roiSize);

    static LumStatus addWeighted(const T* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumSize roiSize,
                                 Lum32f alpha);
    static LumStatus addWeightedMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep,
                                       Lum32f* srcDst, int srcDstStep, LumSize roiSize, Lum32f alpha);
};

/// The one member with a destination of its own.
LumStatus addWeightedOutOfPlace(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                Lum32f* dst, int dstStep, LumSize roiSize, Lum32f alpha);

} // namespace lum
