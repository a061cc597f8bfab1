// The passes of integer distances in vectors.
#pragma once

#include "kernels/distance/chamfer.h"

namespace lum::kernels {

/// Both passes; Lum8u and Lum16u.
template <class T>
void chamferIntegers(Image<const Lum8u> src, Image<T> dst, LumSize size, const ChamferMetric<T>& metric);

} // namespace lum::kernels
