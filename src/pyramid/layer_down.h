// Runs of the layer-down operator: a level from its larger neighbour.
#pragma once

#include "pyramid/layer_down_state.h"

namespace lum {

/// T is Lum8u, Lum16u or Lum32f, with one or three channels.
template <class T, int channels>
LumStatus pyramidLayerDown(const T* src, int srcStep, LumSize srcRoi, T* dst, int dstStep, LumSize dstRoi,
                           LumPyramidLayerDownState* state);
LumStatus pyramidLayerDownL(const Lum32f* src, intptr_t srcStep, LumSizeL srcRoi, Lum32f* dst,
                            intptr_t dstStep, LumSizeL dstRoi, LumPyramidLayerDownState* state);

} // namespace lum
