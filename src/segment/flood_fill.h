// Filling of the connected region around a seed pixel, by three rules of membership.
#pragma once

#include "lumcv/flood_fill.h"

namespace lum {

LumStatus floodFillBufferSize(LumSize roiSize, Lum32s* size);
LumStatus floodFillGradBufferSize(LumSize roiSize, Lum32s* size);

// Members by the number of neighbours that touch a pixel, 4 or 8, and the element type: Lum8u, Lum16u, Lum32f.

/// One channel also with Lum32s.
template <int neighbours, class T>
LumStatus floodFill(T* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed, T newVal,
                    LumFillRegion* region, Lum8u* buffer);
template <int neighbours, class T>
LumStatus floodFillC3(T* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed, const T* newVal,
                      LumFillRegion* region, Lum8u* buffer);

template <int neighbours, class T>
LumStatus floodFillRange(T* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed, T newVal, T minDelta,
                         T maxDelta, LumFillRegion* region, Lum8u* buffer);
template <int neighbours, class T>
LumStatus floodFillRangeC3(T* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed, const T* newVal,
                           const T* minDelta, const T* maxDelta, LumFillRegion* region, Lum8u* buffer);

template <int neighbours, class T>
LumStatus floodFillGrad(T* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed, T newVal, T minDelta,
                        T maxDelta, LumFillRegion* region, Lum8u* buffer);
template <int neighbours, class T>
LumStatus floodFillGradC3(T* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed, const T* newVal,
                          const T* minDelta, const T* maxDelta, LumFillRegion* region, Lum8u* buffer);

} // namespace lum
