// Points followed from one picture to the next on image pyramids.
#pragma once

#include "lumcv/optical_flow.h"

namespace lum {

/// Lum8u, Lum16u, Lum32f.
template <class T>
LumStatus opticalFlow(const LumPyramid* pyramid1, const LumPyramid* pyramid2, const LumPoint32f* prevPoints,
                      LumPoint32f* nextPoints, Lum8s* status, Lum32f* error, int numPoints, int winSize,
                      int maxLevel, int maxIterations, Lum32f threshold, LumOpticalFlowState* state);

} // namespace lum
