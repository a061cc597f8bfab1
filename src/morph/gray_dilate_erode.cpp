#include "morph/gray_dilate_erode.h"

#include "frame/check.h"
#include "kernels/morph/weighted.h"
#include "morph/objects.h"

namespace lum {

using kernels::MorphOp;

template <MorphOp op, class T>
LumStatus grayMorphology(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                         LumBorderType border, const LumMorphGrayState* spec) {
    if (auto s = firstFailure(checkNotNull(src, dst, spec), checkSize(roiSize),
                              checkStep(rowBytes<T>(roiSize.width), srcStep, dstStep),
                              checkStepAlignment<T>(srcStep, dstStep),
                              errorIf(border != lumBorderReplicate, lumStatusBadArgument)))
        return s;
    if (auto s =
            errorIf(roiSize.width > spec->roiWidth || roiSize.height > spec->roiHeight, lumStatusSizeError))
        return s;
    kernels::strongestWeighted<op, T>({src, srcStep}, {dst, dstStep}, roiSize.width, roiSize.height,
                                      {spec->cells, spec->width, spec->height, spec->anchorX, spec->anchorY});
    return lumStatusOk;
}

template LumStatus grayMorphology<MorphOp::dilate>(const Lum8u*, int, Lum8u*, int, LumSize, LumBorderType,
                                                   const LumMorphGrayState*);
template LumStatus grayMorphology<MorphOp::dilate>(const Lum32f*, int, Lum32f*, int, LumSize, LumBorderType,
                                                   const LumMorphGrayState*);
template LumStatus grayMorphology<MorphOp::erode>(const Lum8u*, int, Lum8u*, int, LumSize, LumBorderType,
                                                  const LumMorphGrayState*);
template LumStatus grayMorphology<MorphOp::erode>(const Lum32f*, int, Lum32f*, int, LumSize, LumBorderType,
                                                  const LumMorphGrayState*);

} // namespace lum
