// The time of each pixel's last motion, updated in place.
#pragma once

#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Lum8u, Lum16u, Lum32f.
template <class T>
LumStatus updateMotionHistory(const T* silhouette, int silhouetteStep, Lum32f* mhi, int mhiStep,
                              LumSize roiSize, Lum32f timestamp, Lum32f duration);

} // namespace lum
