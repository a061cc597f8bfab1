// Straight lines in a binary image: the size query, and the search in the whole plane of lines or in a window of it.
#pragma once

#include "lumcv/hough.h"

namespace lum {

LumStatus houghLineGetSize(LumSize roiSize, LumPoint32f delta, int maxLineCount, Lum32s* size);

LumStatus houghLine(const Lum8u* src, int srcStep, LumSize roiSize, LumPoint32f delta, int threshold,
                    LumPoint32f* lines, int maxLineCount, int* lineCount, Lum8u* buffer);

LumStatus houghLineRegion(const Lum8u* src, int srcStep, LumSize roiSize, LumPoint32f* lines,
                          LumPoint32f dstRange[2], int maxLineCount, int* lineCount, LumPoint32f delta,
                          int threshold, Lum8u* buffer);

} // namespace lum
