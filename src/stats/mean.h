// Mean and standard deviation of a region: of all pixels, of those that a mask selects, of one channel of
// three.
#pragma once

#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// The members of one element type: Lum8u, Lum16u, Lum32f.
template <class T> struct Means {
    static LumStatus meanMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumSize roiSize,
                                Lum64f* mean);
    static LumStatus meanOfChannelMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep,
                                         LumSize roiSize, Lum32s coi, Lum64f* mean);

    static LumStatus meanStdDev(const T* src, int srcStep, LumSize roiSize, Lum64f* mean, Lum64f* stdDev);
    static LumStatus meanStdDevMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep,
                                      LumSize roiSize, Lum64f* mean, Lum64f* stdDev);
    static LumStatus meanStdDevOfChannel(const T* src, int srcStep, LumSize roiSize, Lum32s coi, Lum64f* mean,
                                         Lum64f* stdDev);
    static LumStatus meanStdDevOfChannelMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep,
                                               LumSize roiSize, Lum32s coi, Lum64f* mean, Lum64f* stdDev);
};

} // namespace lum
