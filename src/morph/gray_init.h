// Size and initialiser of masks of weights.
#pragma once

#include "lumcv/morph_object.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Cells are words of 4 bytes, whatever they hold.
LumStatus morphGrayGetSize(LumSize roiSize, const void* mask, LumSize maskSize, Lum32s* specSize);
LumStatus morphGrayInit(LumMorphGrayState* spec, LumSize roiSize, const void* mask, LumSize maskSize,
                        LumPoint anchor);

} // namespace lum
