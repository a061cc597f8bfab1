// Correction of lens distortion: pictures, and maps of coordinates.
#pragma once

#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

LumStatus undistortGetSize(LumSize roiSize, Lum32s* size);

/// Lum8u, Lum16u, Lum32f with 1 or 3 channels.
template <class T, int channels>
LumStatus undistortRadial(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize, Lum32f fx,
                          Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1, Lum32f k2, Lum8u* buffer);

LumStatus createMapCameraUndistort(Lum32f* xMap, int xStep, Lum32f* yMap, int yStep, LumSize roiSize,
                                   Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1, Lum32f k2,
                                   Lum32f p1, Lum32f p2, Lum8u* buffer);

} // namespace lum
