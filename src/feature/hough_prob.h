// Segments of lines in a binary image, by votes of pixels drawn at random.
#pragma once

#include "lumcv/hough.h"

namespace lum {

LumStatus houghProbLineGetSize(LumSize roiSize, LumPoint32f delta, Lum32s* specSize, Lum32s* bufferSize);

LumStatus houghProbLineInit(LumSize roiSize, LumPoint32f delta, LumHint hint, LumHoughProbSpec* spec);

LumStatus houghProbLine(const Lum8u* src, int srcStep, LumSize roiSize, int threshold, int lineLength,
                        int lineGap, Lum32s* lines, int maxLineCount, int* lineCount, Lum8u* buffer,
                        const LumHoughProbSpec* spec);

} // namespace lum
