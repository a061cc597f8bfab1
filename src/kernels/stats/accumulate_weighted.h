// Rows of the weighted sum of two images of floats, with a destination of its own.
#pragma once

#include "frame/image.h"

namespace lum::kernels {

/// dst = src2 + ((src1 - src2) x alpha)
void weightedSumScalar(Image<const Lum32f> src1, Image<const Lum32f> src2, Image<Lum32f> dst, LumSize size,
                       Lum32f alpha);
void weightedSum(Image<const Lum32f> src1, Image<const Lum32f> src2, Image<Lum32f> dst, LumSize size,
                 Lum32f alpha);

} // namespace lum::kernels
