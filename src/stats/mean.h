// Mean and standard deviation of a region: of all pixels, of those that a mask selects, of one channel of
// three.
#pragma once

#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Lum8u, Lum16u, Lum32f; as are all.
template <class T>
LumStatus meanMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumSize roiSize,
                     Lum64f* mean);
template <class T>
LumStatus meanOfChannelMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumSize roiSize,
                              Lum32s coi, Lum64f* mean);

template <class T>
LumStatus meanStdDev(const T* src, int srcStep, LumSize roiSize, Lum64f* mean, Lum64f* stdDev);
template <class T>
LumStatus meanStdDevMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumSize roiSize,
                           Lum64f* mean, Lum64f* stdDev);
template <class T>
LumStatus meanStdDevOfChannel(const T* src, int srcStep, LumSize roiSize, Lum32s coi, Lum64f* mean,
                              Lum64f* stdDev);
template <class T>
LumStatus meanStdDevOfChannelMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep,
                                    LumSize roiSize, Lum32s coi, Lum64f* mean, Lum64f* stdDev);

} // namespace lum
