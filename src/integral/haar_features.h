// The features of a built Haar stage: their window, and the tilting of some of them.
#pragma once

#include "lumcv/haar.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

LumStatus getHaarClassifierSize(const LumHaarClassifier* spec, LumSize* size);

/// Lum32f, Lum32s: the same for both, as the features' corners do not depend on their weights.
template <class Value> LumStatus tiltHaarFeatures(const Lum8u* mask, Lum32s flag, LumHaarClassifier* spec);

} // namespace lum
