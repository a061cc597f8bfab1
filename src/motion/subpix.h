// Patches of an image at fractional positions: inside the source, or around a point and cut at the source's edges.
#pragma once

#include "frame/image.h"
#include "lumcv/status.h"
#include "lumcv/types.h"
#include "motion/subpix_placement.h"

namespace lum {

/// 8u and 16u of 16u and 8u; 32f of 8u, 16u and 32f.
template <class Source, class Result>
LumStatus copySubpix(const Source* src, int srcStep, Result* dst, int dstStep, LumSize roiSize, Lum32f dx,
                     Lum32f dy);
LumStatus copySubpixScaled(const Lum8u* src, int srcStep, Lum16u* dst, int dstStep, LumSize roiSize,
                           Lum32f dx, Lum32f dy, Lum32s scaleFactor);

template <class Source, class Result>
LumStatus copySubpixIntersect(const Source* src, int srcStep, LumSize srcRoiSize, Result* dst, int dstStep,
                              LumSize dstRoiSize, LumPoint32f point, LumPoint* pMin, LumPoint* pMax);
LumStatus copySubpixIntersectScaled(const Lum8u* src, int srcStep, LumSize srcRoiSize, Lum16u* dst,
                                    int dstStep, LumSize dstRoiSize, LumPoint32f point, LumPoint* pMin,
                                    LumPoint* pMax, Lum32s scaleFactor);

/// A patch that has been placed, without any test: 32f of 8u, 16u and 32f.
template <class Source>
void drawPlacedPatch(Image<const Source> src, LumSize srcSize, Image<Lum32f> dst, LumSize dstSize,
                     const PatchSpan& x, const PatchSpan& y);

} // namespace lum
