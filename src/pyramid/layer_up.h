// Runs of the layer-up operator: a level from its smaller neighbour.
#pragma once

#include "pyramid/layer_up_state.h"

namespace lum {

/// T is Lum8u, Lum16u or Lum32f, with one or three channels.
template <class T, int channels>
LumStatus pyramidLayerUp(const T* src, int srcStep, LumSize srcRoi, T* dst, int dstStep, LumSize dstRoi,
                         LumPyramidLayerUpState* state);
LumStatus pyramidLayerUpL(const Lum32f* src, intptr_t srcStep, LumSizeL srcRoi, Lum32f* dst, intptr_t dstStep,
                          LumSizeL dstRoi, LumPyramidLayerUpState* state);

} // namespace lum
