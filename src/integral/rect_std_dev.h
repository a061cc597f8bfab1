// Standard deviation of a rectangle placed at every pixel, read from integral images.
#pragma once

#include "kernels/integral/rect_std_dev.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

using kernels::Shape;

template <Shape shape>
LumStatus rectStdDevScaled(const Lum32s* src, int srcStep, const Lum32s* sqr, int sqrStep, Lum32s* dst,
                           int dstStep, LumSize roiSize, LumRect rect, int scaleFactor);

/// Lum32s, Lum32f.
template <Shape shape, class Sum>
LumStatus rectStdDev(const Sum* src, int srcStep, const Lum64f* sqr, int sqrStep, Lum32f* dst, int dstStep,
                     LumSize roiSize, LumRect rect);

} // namespace lum
