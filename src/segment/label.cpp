#include "segment/label.h"

#include <cstdint>
#include <limits>

#include "frame/arena.h"
#include "frame/check.h"
#include "frame/instances.h"
#include "kernels/segment/label_runs.h"
#include "kernels/segment/speckles.h"
#include "segment/flood_fill.h"

namespace lum {
namespace {

LumStatus checkLabels(Lum32s minLabel, Lum32s maxLabel, Lum32s top, LumSpatialNorm norm) {
    return firstFailure(errorIf(minLabel < 1, lumStatusBadArgument),
                        errorIf(maxLabel >= top, lumStatusBadArgument),
                        errorIf(minLabel > maxLabel, lumStatusBadArgument),
                        errorIf(norm != lumSpatialNormInf && norm != lumSpatialNormL1, lumStatusBadArgument));
}

template <class Src, class Dst>
void label(Image<const Src> src, Image<Dst> dst, LumSize size, kernels::Labels labels, LumSpatialNorm norm,
           Lum32s* numberOfLabels, Lum8u* buffer) {
    const auto connected = norm == lumSpatialNormInf ? kernels::Connected::eight : kernels::Connected::four;
    *numberOfLabels = static_cast<Lum32s>(kernels::labelRuns(src, dst, size, connected, labels, buffer));
}

} // namespace

LumStatus labelMarkersBufferSize(LumSize roiSize, Lum32s* size) { return floodFillBufferSize(roiSize, size); }

template <class T>
LumStatus labelMarkers(T* srcDst, int srcDstStep, LumSize roiSize, Lum32s minLabel, Lum32s maxLabel,
                       LumSpatialNorm norm, Lum32s* numberOfLabels, Lum8u* buffer) {
    if (auto s =
            firstFailure(checkNotNull(srcDst, buffer, numberOfLabels), checkSize(roiSize),
                         checkStep(rowBytes<T>(roiSize.width), srcDstStep), checkStepAlignment<T>(srcDstStep),
                         checkLabels(minLabel, maxLabel, std::numeric_limits<T>::max(), norm)))
        return s;
    const Image<T> image(srcDst, srcDstStep);
    label<T, T>(image, image, roiSize, {minLabel, maxLabel}, norm, numberOfLabels, buffer);
    return lumStatusOk;
}

LumStatus labelMarkersTo32s(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, LumSize roiSize,
                            Lum32s minLabel, Lum32s maxLabel, LumSpatialNorm norm, Lum32s* numberOfLabels,
                            Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(src, dst, buffer, numberOfLabels), checkSize(roiSize),
                              checkStep(rowBytes<Lum8u>(roiSize.width), srcStep),
                              checkStep(rowBytes<Lum32s>(roiSize.width), dstStep),
                              checkStepAlignment<Lum32s>(dstStep),
                              checkLabels(minLabel, maxLabel, std::numeric_limits<Lum32s>::max(), norm)))
        return s;
    label<Lum8u, Lum32s>({src, srcStep}, {dst, dstStep}, roiSize, {minLabel, maxLabel}, norm, numberOfLabels,
                         buffer);
    return lumStatusOk;
}

LumStatus markSpecklesBufferSize(LumSize roiSize, LumDataType dataType, int channels, Lum32s* size) {
    const bool known =
        dataType == lumType8u || dataType == lumType16u || dataType == lumType16s || dataType == lumType32f;
    if (auto s = firstFailure(checkNotNull(size), checkSize(roiSize), errorIf(!known, lumStatusDataTypeError),
                              errorIf(channels != 1, lumStatusCountError)))
        return s;
    const auto pixels =
        static_cast<std::uint32_t>(roiSize.width) * static_cast<std::uint32_t>(roiSize.height);
    *size = static_cast<Lum32s>(12 * pixels + pixels + 64);
    return lumStatusOk;
}

template <class T>
LumStatus markSpeckles(T* srcDst, int srcDstStep, LumSize roiSize, T speckleValue, Lum32s maxSpeckleSize,
                       T maxDifference, LumNormKind norm, Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(srcDst, buffer), checkSize(roiSize),
                              errorIf(norm != lumNormInf, lumStatusNormError)))
        return s;
    const kernels::SpeckleRule<T> rule{speckleValue, maxDifference, maxSpeckleSize};
    kernels::writeOverSpeckles<T>({srcDst, srcDstStep}, roiSize, rule, alignedUp(buffer, 64));
    return lumStatusOk;
}

LUM_INSTANCES(labelMarkers, (Lum8u), (Lum16u));

LUM_INSTANCES(markSpeckles, (Lum8u), (Lum16u), (Lum16s), (Lum32f));

} // namespace lum
