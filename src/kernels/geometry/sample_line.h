// The pixels along a straight line, in a row.
#pragma once

#include "frame/image.h"

namespace lum::kernels {

/// Both ends lie in src; dst takes a pixel for each step of the longer side and one more. Lum8u, Lum16u,
/// Lum32f with 1 or 3 channels.
template <class T, int channels>
void sampleLine(Image<const T> src, T* dst, LumPoint point1, LumPoint point2);

} // namespace lum::kernels
