// Size and building of the object of a Haar stage.
#pragma once

#include "lumcv/haar.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

LumStatus haarClassifierGetSize(LumDataType dataType, LumSize roiSize, const Lum32s* num, int length,
                                Lum32s* size);

enum class HaarRectangles { upright, tilted };

/// Lum32f, Lum32s.
template <class Value, HaarRectangles rectangles>
LumStatus haarClassifierInit(LumHaarClassifier* spec, const LumRect* rects, const Value* weights,
                             const Value* thresholds, const Value* val1, const Value* val2, const Lum32s* num,
                             int length);

} // namespace lum
