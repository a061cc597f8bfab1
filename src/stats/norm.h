// Norms of an image, of the difference of two images, and of the difference relative to the second image, over the
// pixels that a mask selects.
#pragma once

#include "kernels/stats/norm.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// The members of one norm and element type; Lum8u, Lum16u, Lum32f.
template <kernels::NormKind kind, class T> struct MaskedNorm {
    static LumStatus image(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumSize roiSize,
                           Lum64f* value);
    static LumStatus imageChannel(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumSize roiSize,
                                  int coi, Lum64f* value);

    static LumStatus difference(const T* src1, int src1Step, const T* src2, int src2Step, const Lum8u* mask,
                                int maskStep, LumSize roiSize, Lum64f* value);
    static LumStatus differenceChannel(const T* src1, int src1Step, const T* src2, int src2Step,
                                       const Lum8u* mask, int maskStep, LumSize roiSize, int coi,
                                       Lum64f* value);

    static LumStatus relative(const T* src1, int src1Step, const T* src2, int src2Step, const Lum8u* mask,
                              int maskStep, LumSize roiSize, Lum64f* value);
    static LumStatus relativeChannel(const T* src1, int src1Step, const T* src2, int src2Step,
                                     const Lum8u* mask, int maskStep, LumSize roiSize, int coi,
                                     Lum64f* value);
};

template <class T> using NormInf = MaskedNorm<kernels::NormKind::inf, T>;
template <class T> using NormL1 = MaskedNorm<kernels::NormKind::l1, T>;
template <class T> using NormL2 = MaskedNorm<kernels::NormKind::l2, T>;

} // namespace lum
