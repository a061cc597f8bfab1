// Applying a Haar stage to the pixels of a mask, on one integral image.
#pragma once

#include "lumcv/haar.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

LumStatus applyHaarClassifier(const Lum32f* src, int srcStep, const Lum32f* norm, int normStep, Lum8u* mask,
                              int maskStep, LumSize roiSize, Lum32s* positive, Lum32f threshold,
                              LumHaarClassifier* spec);

LumStatus applyHaarClassifierToIntegers(const Lum32s* src, int srcStep, const Lum32f* norm, int normStep,
                                        Lum8u* mask, int maskStep, LumSize roiSize, Lum32s* positive,
                                        Lum32f threshold, LumHaarClassifier* spec);

LumStatus applyHaarClassifierScaled(const Lum32s* src, int srcStep, const Lum32s* norm, int normStep,
                                    Lum8u* mask, int maskStep, LumSize roiSize, Lum32s* positive,
                                    Lum32s threshold, LumHaarClassifier* spec, int scaleFactor);

/// The left shift of the sums that a scale factor at or below 0 is.
constexpr unsigned haarShift(int scaleFactor) { return 0U - static_cast<unsigned>(scaleFactor); }

} // namespace lum
