// The passes of float distances in vectors.
#pragma once

#include "kernels/distance/chamfer.h"

namespace lum::kernels {

void chamferFloats(Image<const Lum8u> src, Image<float> dst, LumSize size,
                   const ChamferMetric<float>& metric);

} // namespace lum::kernels
