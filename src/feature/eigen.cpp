#include "feature/eigen.h"

#include "feature/covariance_rows.h"
#include "feature/work_size.h"
#include "filter/lowpass.h"
#include "frame/instances.h"

namespace lum {
namespace {

using kernels::Derivative;

constexpr int sobelKind = 0;
constexpr int scharrKind = 1;
constexpr int secondSobelKind = 2;
constexpr LumBorderType firstStageFlags = 0xF00;
constexpr LumBorderType largestEigenBorder = 4095;

constexpr bool isSide(int size) { return size == 3 || size == 5; }

constexpr bool isEigenKind(LumBorderType kind) {
    return kind == lumBorderReplicate || kind == lumBorderMirror || kind == lumBorderDefaultValue ||
           kind == lumBorderConstant;
}

constexpr LumStatus checkEigenBorder(LumBorderType border) {
    const bool accepted =
        border >= 0 && border <= largestEigenBorder &&
        (isEigenKind(border & borderKindBits) || (border & lumBorderInMemory) == lumBorderInMemory);
    return errorIf(!accepted, lumStatusBorderError);
}

/// What a call's border says: of the region itself, where a flag of either stage is one of the derivatives, and of the
/// planes of products.
struct EigenBorder {
    LumBorderType source;
    LumBorderType planes;
};

constexpr EigenBorder stagesOfBorder(LumBorderType border) {
    const LumBorderType flags = (border | (border & firstStageFlags) >> 4) & lumBorderInMemory;
    const LumBorderType given = border & borderKindBits;
    LumBorderType kind = isEigenKind(given) ? given : lumBorderMirror;
    // zeros affect no sum
    if (kind == lumBorderDefaultValue) kind = lumBorderConstant;
    return {kind | flags, kind};
}

template <class T> struct EigenCall {
    const T* src;
    int srcStep;
    Lum32f* dst;
    int dstStep;
    LumSize size;
    int kernelKind;
    int apertureSize;
    int blockSize;
    Lum8u* buffer;

    LumStatus check() const {
        return firstFailure(
            checkNotNull(src, dst, buffer), checkSize(size), checkStep(rowBytes<T>(size.width), srcStep),
            checkStep(rowBytes<Lum32f>(size.width), dstStep), checkStepAlignment<T>(srcStep),
            checkStepAlignment<Lum32f>(dstStep),
            errorIf(kernelKind != sobelKind && kernelKind != scharrKind && kernelKind != secondSobelKind,
                    lumStatusBadArgument),
            errorIf(!isSide(apertureSize) || !isSide(blockSize), lumStatusSizeError),
            errorIf(kernelKind == scharrKind && apertureSize != 3, lumStatusSizeError));
    }

    const DerivativeStages<T>& stages() const {
        if (kernelKind == scharrKind) return stagesOf<Derivative::scharr3, T>;
        return apertureSize == 3 ? stagesOf<Derivative::sobel3, T> : stagesOf<Derivative::sobel5, T>;
    }

    /// 1 / 4080 for three taps and 1 / 65280 for five.
    float scale() const {
        const float ofAperture = 1.0F / static_cast<float>(255 << ((2 * apertureSize + 30) & 31));
        return kernelKind == scharrKind ? ofAperture * 0.6125F : ofAperture;
    }

    /// Restores the sign of products with a derivative that is left minus right.
    float sign() const { return kernelKind == scharrKind ? 1.0F : -1.0F; }

    /// closing(window, y) makes a row of results.
    template <class Closing> void run(LumBorderType border, T borderValue, Closing closing) const {
        const EigenBorder borders = stagesOfBorder(border);
        const bool neutral = (border & borderKindBits) == lumBorderDefaultValue;
        Arena arena(buffer);
        CovarianceRows<T> rows({src, srcStep}, size, {borders.source, neutral ? T{0} : borderValue}, stages(),
                               {blockSize}, borders.planes, arena);
        rows.run(closing);
    }

    LumStatus smallerEigenvalues(LumBorderType border, T borderValue) const {
        const Image<Lum32f> result(dst, dstStep);
        run(border, borderValue, [&](const kernels::WindowRows& window, int y) {
            kernels::smallerEigenvalueRow(window, size.width, scale() * 0.5F, result.row(y));
        });
        return lumStatusOk;
    }

    LumStatus eigenSystems(LumBorderType border, T borderValue) const {
        const Image<Lum32f> result(dst, dstStep);
        run(border, borderValue, [&](const kernels::WindowRows& window, int y) {
            kernels::eigenSystemRow(window, size.width, scale(), sign(), result.row(y));
        });
        return lumStatusOk;
    }
};

} // namespace

template <class T>
LumStatus eigenBufferSize(LumSize roiSize, int apertureSize, int blockSize, Lum32s* bufferSize) {
    if (auto s = firstFailure(checkNotNull(bufferSize), checkSize(roiSize),
                              errorIf(!isSide(apertureSize) || !isSide(blockSize), lumStatusSizeError)))
        return s;
    const auto& stages =
        apertureSize == 3 ? stagesOf<Derivative::sobel3, T> : stagesOf<Derivative::sobel5, T>;
    const double ofRun = workBytes(roiSize.width, blockSize, [&](Arena& arena) {
        CovarianceRows<T>({nullptr, 0}, roiSize, {lumBorderConstant, T{0}}, stages, {blockSize},
                          lumBorderConstant, arena);
    });
    const double ofLowpass = lowpassSize32f.bytes(roiSize, blockSize == 3 ? lumMask3x3 : lumMask5x5);
    const auto width = static_cast<double>(roundedUp<std::int64_t>(roiSize.width, 16));
    *bufferSize =
        reportedBytes(20 * static_cast<double>(roiSize.height) * width + std::max(ofRun, ofLowpass) + 224);
    return lumStatusOk;
}

template <class T>
LumStatus minEigenVal(const T* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize, int kernelKind,
                      int apertureSize, int blockSize, Lum8u* buffer) {
    const EigenCall<T> call{src, srcStep, dst, dstStep, roiSize, kernelKind, apertureSize, blockSize, buffer};
    if (auto s = call.check()) return s;
    return call.smallerEigenvalues(lumBorderReplicate, T{0});
}

template <class T>
LumStatus minEigenValBorder(const T* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize,
                            int kernelKind, int apertureSize, int blockSize, LumBorderType border,
                            T borderValue, Lum8u* buffer) {
    const EigenCall<T> call{src, srcStep, dst, dstStep, roiSize, kernelKind, apertureSize, blockSize, buffer};
    if (auto s = firstFailure(call.check(), checkEigenBorder(border))) return s;
    return call.smallerEigenvalues(border, borderValue);
}

template <class T>
LumStatus eigenValsVecs(const T* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize, int kernelKind,
                        int apertureSize, int blockSize, Lum8u* buffer) {
    const EigenCall<T> call{src, srcStep, dst, dstStep, roiSize, kernelKind, apertureSize, blockSize, buffer};
    if (auto s = call.check()) return s;
    return call.eigenSystems(lumBorderReplicate, T{0});
}

template <class T>
LumStatus eigenValsVecsBorder(const T* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize,
                              int kernelKind, int apertureSize, int blockSize, LumBorderType border,
                              T borderValue, Lum8u* buffer) {
    const EigenCall<T> call{src, srcStep, dst, dstStep, roiSize, kernelKind, apertureSize, blockSize, buffer};
    if (auto s = firstFailure(call.check(), checkEigenBorder(border))) return s;
    return call.eigenSystems(border, borderValue);
}

LUM_INSTANCES(eigenBufferSize, (Lum8u), (Lum32f));
LUM_INSTANCES(minEigenVal, (Lum8u), (Lum32f));
LUM_INSTANCES(minEigenValBorder, (Lum8u), (Lum32f));
LUM_INSTANCES(eigenValsVecs, (Lum8u), (Lum32f));
LUM_INSTANCES(eigenValsVecsBorder, (Lum8u), (Lum32f));

} // namespace lum
