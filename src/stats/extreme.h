// The smallest and the largest value of a region, and where they lie.
#pragma once

#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

// Each for Lum8u, Lum16u, Lum32f. Every output may be null.

template <class T>
LumStatus minMaxIndx(const T* src, int srcStep, LumSize roiSize, Lum32f* minVal, Lum32f* maxVal,
                     LumPoint* minIndex, LumPoint* maxIndex);

template <class T>
LumStatus minMaxIndxMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumSize roiSize,
                           Lum32f* minVal, Lum32f* maxVal, LumPoint* minIndex, LumPoint* maxIndex);

template <class T>
LumStatus minMaxIndxOfChannel(const T* src, int srcStep, LumSize roiSize, int coi, Lum32f* minVal,
                              Lum32f* maxVal, LumPoint* minIndex, LumPoint* maxIndex);

template <class T>
LumStatus minMaxIndxMaskedOfChannel(const T* src, int srcStep, const Lum8u* mask, int maskStep,
                                    LumSize roiSize, int coi, Lum32f* minVal, Lum32f* maxVal,
                                    LumPoint* minIndex, LumPoint* maxIndex);

} // namespace lum
