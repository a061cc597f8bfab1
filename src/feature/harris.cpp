#include "feature/harris.h"

#include "feature/covariance_rows.h"
#include "feature/feature_checks.h"
#include "feature/line_rows.h"
#include "feature/work_size.h"
#include "frame/convert.h"
#include "frame/instances.h"

namespace lum {
namespace {

using kernels::Derivative;

template <class T> const DerivativeStages<T>& stagesOfFilter(int filterKind, LumMaskSize mask) {
    if (filterKind == scharrFilter) return stagesOf<Derivative::scharr3, T>;
    if (filterKind == centralFilter) return stagesOf<Derivative::central3, T>;
    return mask == lumMask3x3 ? stagesOf<Derivative::sobel3, T> : stagesOf<Derivative::sobel5, T>;
}

const LineStages& lineStagesOfFilter(int filterKind, LumMaskSize mask) {
    if (filterKind == scharrFilter) return lineStagesOf<Derivative::scharr3>;
    if (filterKind == centralFilter) return lineStagesOf<Derivative::central3>;
    return mask == lumMask3x3 ? lineStagesOf<Derivative::sobel3> : lineStagesOf<Derivative::sobel5>;
}

constexpr LumStatus checkNotNegative(auto... steps) {
    return errorIf(((steps < 0) || ...), lumStatusStepError);
}

template <class T> double harrisBytes(LumSize size, LumMaskSize mask, int avgWindow) {
    return workBytes(size.width, avgWindow, [&](Arena& arena) {
        CovarianceRows<T>({nullptr, 0}, size, {lumBorderConstant, T{0}}, stagesOfFilter<T>(sobelFilter, mask),
                          {avgWindow}, {}, arena);
    });
}

double lineBytes(LumSize size, LumMaskSize mask, int avgWindow) {
    return workBytes(size.width, avgWindow, [&](Arena& arena) {
        LineRows({nullptr, 0}, size, {lumBorderConstant, 0}, lineStagesOfFilter(sobelFilter, mask),
                 {avgWindow}, arena);
    });
}

LumStatus checkSizeQuery(LumSize roiSize, LumMaskSize filterMask, int avgWindow, LumDataType type,
                         int numChannels, const Lum32s* bufferSize) {
    return firstFailure(checkNotNull(bufferSize), checkSize(roiSize),
                        errorIf(filterMask != lumMask3x3 && filterMask != lumMask5x5, lumStatusMaskSizeError),
                        errorIf(type != lumType8u && type != lumType32f, lumStatusDataTypeError),
                        errorIf(numChannels != 1, lumStatusCountError), checkCount(avgWindow));
}

} // namespace

LumStatus harrisBufferSize(LumSize roiSize, LumMaskSize filterMask, int avgWindow, LumDataType type,
                           int numChannels, Lum32s* bufferSize) {
    if (auto s = checkSizeQuery(roiSize, filterMask, avgWindow, type, numChannels, bufferSize)) return s;
    if (type == lumType8u)
        *bufferSize = reportedBytes(std::max(harrisBytes<Lum8u>(roiSize, filterMask, avgWindow),
                                             lineBytes(roiSize, filterMask, avgWindow)));
    else
        *bufferSize = reportedBytes(harrisBytes<Lum32f>(roiSize, filterMask, avgWindow));
    return lumStatusOk;
}

template <class T>
LumStatus harris(const T* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize, int filterKind,
                 LumMaskSize filterMask, int avgWindow, Lum32f k, Lum32f scale, LumBorderType border,
                 T borderValue, Lum8u* buffer) {
    // of bytes neither step is tested
    constexpr bool testsAlignment = std::is_same_v<T, Lum32f>;
    const bool inPlace = static_cast<const void*>(src) == static_cast<const void*>(dst);
    if (auto s = firstFailure(
            checkNotNull(src, dst, buffer), checkSize(roiSize),
            testsAlignment ? checkStepAlignment<Lum32f>(srcStep, dstStep) : LumStatus{lumStatusOk},
            checkFilter(filterKind, filterMask), linearBorder(border), checkCount(avgWindow),
            checkNotNegative(srcStep, dstStep), errorIf(inPlace, lumStatusInPlaceNotSupported)))
        return s;
    const double side = avgWindow;
    const float windowScale = nearestFloat(side * side * (side * side) * scale);
    const Image<Lum32f> result(dst, dstStep);
    Arena arena(buffer);
    CovarianceRows<T> rows({src, srcStep}, roiSize, {border, borderValue},
                           stagesOfFilter<T>(filterKind, filterMask), {avgWindow}, {}, arena);
    rows.run([&](const kernels::WindowRows& window, int y) {
        kernels::harrisRow(window, roiSize.width, k, windowScale, result.row(y));
    });
    return lumStatusOk;
}

LumStatus lineSuppressionBufferSize(LumSize roiSize, LumMaskSize filterMask, int avgWindow, LumDataType type,
                                    int numChannels, Lum32s* bufferSize) {
    return harrisBufferSize(roiSize, filterMask, avgWindow, type, numChannels, bufferSize);
}

LumStatus lineSuppression(const Lum8u* src, int srcStep, const Lum8u* feature, int featureStep, Lum8u* dst,
                          int dstStep, LumSize roiSize, int filter, LumMaskSize maskSize, int avgWindow,
                          Lum8u threshold, LumBorderType border, Lum8u borderValue, Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(src, feature, dst, buffer), checkSize(roiSize),
                              checkFilter(filter, maskSize), checkBorderWithoutMirror(border),
                              checkCount(avgWindow), checkNotNegative(srcStep, featureStep, dstStep),
                              errorIf(dst == feature, lumStatusInPlaceNotSupported)))
        return s;
    const Image<const Lum8u> given(feature, featureStep);
    const Image<Lum8u> result(dst, dstStep);
    Arena arena(buffer);
    LineRows rows({src, srcStep}, roiSize, {border, borderValue}, lineStagesOfFilter(filter, maskSize),
                  {avgWindow}, arena);
    rows.run([&](const kernels::CovarianceSums& sums, int y) {
        kernels::suppressLinesRow(sums, roiSize.width, avgWindow, threshold, given.row(y), result.row(y));
    });
    return lumStatusOk;
}

LUM_INSTANCES(harris, (Lum8u), (Lum32f));

} // namespace lum
