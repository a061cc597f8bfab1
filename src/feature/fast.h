// Corners by the segment test: the search in a tile, and the list of what it has found.
#pragma once

#include "feature/fast_spec.h"

namespace lum {

LumStatus fastNGetBufferSize(const LumFastNSpec* spec, LumSize dstRoiSize, Lum32s* size);

LumStatus fastN(const Lum8u* src, int srcStep, Lum8u* corners, int cornersStep, Lum8u* scores, int scoresStep,
                Lum32s* cornerCount, LumPoint srcRoiOffset, LumSize dstRoiSize, const LumFastNSpec* spec,
                Lum8u* buffer);

LumStatus fastN2DToVec(const Lum8u* corners, int cornersStep, const Lum8u* scores, int scoresStep,
                       LumFastNCorner* list, LumSize dstRoiSize, int maxCount, Lum32s* cornerCount,
                       const LumFastNSpec* spec);

} // namespace lum
