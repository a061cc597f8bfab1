#include "filter/color_gradient.h"

#include "frame/check.h"
#include "frame/image.h"
#include "frame/instances.h"
#include "kernels/filter/color_gradient.h"

namespace lum {

template <class T>
LumStatus gradientColorToGray(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                              LumSpatialNorm norm) {
    if (auto s = firstFailure(
            checkNotNull(src, dst), checkSize(roiSize), checkStep(rowBytes<T>(roiSize.width, 3), srcStep),
            checkStep(rowBytes<T>(roiSize.width), dstStep), checkStepAlignment<T>(srcStep, dstStep),
            errorIf(norm < lumSpatialNormInf || norm > lumSpatialNormL2, lumStatusBadArgument)))
        return s;
    const Image<const T> source(src, srcStep);
    const Image<T> result(dst, dstStep);
    if (norm == lumSpatialNormInf)
        kernels::largestOfThree(source, result, roiSize);
    else if (norm == lumSpatialNormL1)
        kernels::meanOfThree(source, result, roiSize);
    else
        kernels::rootOfSquares(source, result, roiSize);
    return lumStatusOk;
}

LUM_INSTANCES(gradientColorToGray, (Lum8u), (Lum16u), (Lum32f));

} // namespace lum
