// Chamfer distance transforms and the standard lengths of their steps.
#pragma once

#include "lumcv.h"

namespace lum {

/// The members of one kernel size, 3 or 5, and one element of the distances: Lum8u, Lum16u, Lum32f. Lengths of steps
/// are Lum32s for integer distances and Lum32f for floats.
template <int kernelSize, class T, class Length> struct ChamferDistance {
    static LumStatus transform(const Lum8u* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                               const Length* metrics);
    static LumStatus inPlace(T* srcDst, int srcDstStep, LumSize roiSize, const Length* metrics);
};

template <class Length> LumStatus getDistanceTransformMask(Lum32s kernelSize, Lum32s norm, Length* metrics);
LumStatus getDistanceTransformMaskOfType(Lum32s maskType, Lum32f* metrics);

} // namespace lum
