// Applying a Haar stage with upright and tilted classifiers, on two integral images.
#pragma once

#include "lumcv/haar.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Lum32f, Lum32s: the elements of the integral images.
template <class Element>
LumStatus applyMixedHaarClassifier(const Element* src, int srcStep, const Element* tilt, int tiltStep,
                                   const Lum32f* norm, int normStep, Lum8u* mask, int maskStep,
                                   LumSize roiSize, Lum32s* positive, Lum32f threshold,
                                   const LumHaarClassifier* spec);

LumStatus applyMixedHaarClassifierScaled(const Lum32s* src, int srcStep, const Lum32s* tilt, int tiltStep,
                                         const Lum32s* norm, int normStep, Lum8u* mask, int maskStep,
                                         LumSize roiSize, Lum32s* positive, Lum32s threshold,
                                         const LumHaarClassifier* spec, int scaleFactor);

} // namespace lum
