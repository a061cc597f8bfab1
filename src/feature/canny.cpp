#include "feature/canny.h"

#include <algorithm>
#include <cstring>

#include "feature/derivative_rows.h"
#include "feature/edge_map.h"
#include "feature/feature_checks.h"
#include "frame/convert.h"
#include "frame/instances.h"

namespace lum {
namespace {

using kernels::Derivative;
using kernels::Magnitude;
using kernels::MagnitudeElement;

/// From here on the size formula counts two 32-bit numbers per pending pixel. One is enough whatever the size, since
/// the formula's own result bounds the positions in the map.
constexpr std::intptr_t wideSide = 65533;

constexpr LumStatus checkThresholds(Lum32f low, Lum32f high) {
    return errorIf(low < 0 || low > high, lumStatusBadArgument);
}

constexpr bool isCannyNorm(LumNormKind norm) { return norm == lumNormL1 || norm == lumNormL2; }

template <class T>
LumStatus checkArguments(const T* dx, std::intptr_t dxStep, const T* dy, std::intptr_t dyStep, Lum8u* dst,
                         std::intptr_t dstStep, auto roiSize, Lum32f low, Lum32f high, Lum8u* buffer) {
    return firstFailure(checkNotNull(dx, dy, dst, buffer), checkSize(roiSize),
                        checkStep(rowBytes<T>(roiSize.width), dxStep, dyStep),
                        checkStep(rowBytes<Lum8u>(roiSize.width), dstStep),
                        checkStepAlignment<T>(dxStep, dyStep), checkThresholds(low, high));
}

/// A threshold in the type of the magnitudes that are compared with it. Integers are above a number where they are
/// above its integral part.
template <class M> M threshold(Lum32f value) {
    if constexpr (std::is_same_v<M, Lum32f>)
        return value;
    else if constexpr (std::is_same_v<M, Lum16u>)
        return truncated<Lum16u>(value);
    else
        return truncatedTo32u(value);
}

template <Magnitude magnitude, class T>
void detect(const T* dx, std::intptr_t dxStep, const T* dy, std::intptr_t dyStep, Lum8u* dst,
            std::intptr_t dstStep, LumSizeL size, Lum32f low, Lum32f high, Lum8u* buffer) {
    using M = MagnitudeElement<T, magnitude>;
    if constexpr (magnitude == Magnitude::squares) {
        low = low * low;
        high = high * high;
    }
    const M lowest = threshold<M>(low);
    const Image<const T> alongX(dx, dxStep);
    const Image<const T> alongY(dy, dyStep);
    Arena arena(buffer);
    EdgeMap<M> edges(size, arena);
    edges.detect({dst, dstStep}, threshold<M>(high), [&](std::intptr_t y, M* magnitudes, Lum8u* directions) {
        kernels::magnitudeRow<magnitude>(alongX.row(y), alongY.row(y), size.width, lowest, magnitudes,
                                         directions);
    });
}

// ---- from an image of bytes

template <class M>
using GradientRow = void (*)(const Lum16s* smooth, const Lum16s* difference, std::ptrdiff_t count, M low,
                             M* magnitudes, Lum8u* directions);

constexpr LumStatus checkMask(LumMaskSize mask) {
    return errorIf(mask != lumMask3x3 && mask != lumMask5x5, lumStatusMaskSizeError);
}

template <Derivative kind, Magnitude magnitude>
void detectFromBytes(Image<const Lum8u> src, Image<Lum8u> dst, LumSize size, LumBorderType border,
                     Lum8u borderValue, Lum32f low, Lum32f high, Lum8u* buffer) {
    using M = MagnitudeElement<Lum16s, magnitude>;
    constexpr int reach = kernels::reachOf(kind);
    const bool narrow = std::min(size.width, size.height) < 2 * reach + 1;
    const GradientRow<M> gradientRow = narrow ? kernels::gradientMagnitudeRowByAngle<kind, magnitude>
                                              : kernels::gradientMagnitudeRow<kind, magnitude>;
    const M lowest = threshold<M>(low);
    Arena arena(buffer);
    EdgeMap<M> edges({size.width, size.height}, arena);
    DerivativeRows<Lum8u> rows(src, size, {border, borderValue}, kernels::derivativeDown<kind, Lum8u>, reach,
                               {}, arena);
    rows.prepare();
    edges.detect(dst, threshold<M>(high), [&](std::intptr_t y, M* magnitudes, Lum8u* directions) {
        rows.enter(y);
        gradientRow(rows.smooth(), rows.difference(), size.width, lowest, magnitudes, directions);
    });
}

template <Derivative kind>
void detectFromBytes(Image<const Lum8u> src, Image<Lum8u> dst, LumSize size, LumBorderType border,
                     Lum8u borderValue, Lum32f low, Lum32f high, LumNormKind norm, Lum8u* buffer) {
    if (norm == lumNormL1)
        detectFromBytes<kind, Magnitude::sum>(src, dst, size, border, borderValue, low, high, buffer);
    else
        detectFromBytes<kind, Magnitude::root>(src, dst, size, border, borderValue, low, high, buffer);
}

template <class Size> LumStatus bufferSizeFor(Size roiSize, Lum32s* bufferSize) {
    if (auto s = firstFailure(checkNotNull(bufferSize), checkSize(roiSize))) return s;
    const auto width = static_cast<std::uint32_t>(roiSize.width);
    const auto height = static_cast<std::uint32_t>(roiSize.height);
    const bool wide = roiSize.width >= wideSide || roiSize.height >= wideSide;
    const std::uint32_t rows = wide ? 9 * height + 18 : 5 * height + 10;
    *bufferSize = static_cast<Lum32s>(rows * (width + 2) + 16 * width + 160);
    return lumStatusOk;
}

} // namespace

LumStatus cannyBufferSize(LumSize roiSize, Lum32s* bufferSize) { return bufferSizeFor(roiSize, bufferSize); }

#if INTPTR_MAX > INT32_MAX
LumStatus cannyBufferSizeL(LumSizeL roiSize, Lum32s* bufferSize) {
    return bufferSizeFor(roiSize, bufferSize);
}
#else
// LumSize and LumSizeL are the same two words here: both names are served by one function.
#    pragma GCC diagnostic push
#    pragma GCC diagnostic ignored "-Wattribute-alias"
[[gnu::alias("_ZN3lum15cannyBufferSizeE7LumSizePi")]] LumStatus cannyBufferSizeL(LumSizeL roiSize,
                                                                                 Lum32s* bufferSize);
#    pragma GCC diagnostic pop
#endif

template <class T>
LumStatus canny(const T* dx, int dxStep, const T* dy, int dyStep, Lum8u* dst, int dstStep, LumSize roiSize,
                Lum32f lowThreshold, Lum32f highThreshold, Lum8u* buffer) {
    if (auto s = checkArguments(dx, dxStep, dy, dyStep, dst, dstStep, roiSize, lowThreshold, highThreshold,
                                buffer))
        return s;
    constexpr Magnitude magnitude = std::is_same_v<T, Lum32f> ? Magnitude::sumKeepingEqual : Magnitude::sum;
    detect<magnitude>(dx, dxStep, dy, dyStep, dst, dstStep, {roiSize.width, roiSize.height}, lowThreshold,
                      highThreshold, buffer);
    return lumStatusOk;
}

template <class T>
LumStatus cannyOfNorm(const T* dx, std::intptr_t dxStep, const T* dy, std::intptr_t dyStep, Lum8u* dst,
                      std::intptr_t dstStep, LumSizeL roiSize, Lum32f lowThreshold, Lum32f highThreshold,
                      LumNormKind norm, Lum8u* buffer) {
    if (auto s = firstFailure(checkArguments(dx, dxStep, dy, dyStep, dst, dstStep, roiSize, lowThreshold,
                                             highThreshold, buffer),
                              errorIf(!isCannyNorm(norm), lumStatusNormError)))
        return s;
    const auto run = norm == lumNormL1 ? detect<Magnitude::sum, T> : detect<Magnitude::squares, T>;
    run(dx, dxStep, dy, dyStep, dst, dstStep, roiSize, lowThreshold, highThreshold, buffer);
    return lumStatusOk;
}

LumStatus cannyBorderBufferSize(LumSize roiSize, int, LumMaskSize mask, LumDataType, Lum32s* bufferSize) {
    if (auto s = firstFailure(checkNotNull(bufferSize), checkSize(roiSize), checkMask(mask))) return s;
    const std::uint32_t taps = mask == lumMask3x3 ? 3 : 5;
    const std::uint32_t width = static_cast<std::uint32_t>(roiSize.width) + taps - 1;
    const std::uint32_t height = static_cast<std::uint32_t>(roiSize.height) + taps - 1;
    const std::uint32_t map = roundedUp(width * height, 32U);
    std::uint32_t bytes = roundedUp(16 * width, 32U) + map + roundedUp(4 * width * height, 32U) + 64;
    if (static_cast<std::uint32_t>(std::min(roiSize.width, roiSize.height)) < taps) bytes += map;
    *bufferSize = static_cast<Lum32s>(bytes);
    return lumStatusOk;
}

LumStatus cannyBorder(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumSize roiSize, int filterKind,
                      LumMaskSize mask, LumBorderType border, Lum8u borderValue, Lum32f lowThreshold,
                      Lum32f highThreshold, LumNormKind norm, Lum8u* buffer) {
    if (auto s = firstFailure(
            checkMask(mask),
            errorIf(filterKind == scharrFilter && mask == lumMask5x5, lumStatusMaskSizeError),
            checkNotNull(src, dst, buffer), checkSize(roiSize),
            errorIf(filterKind != sobelFilter && filterKind != scharrFilter, lumStatusBadArgument),
            errorIf(!isCannyNorm(norm), lumStatusBadArgument), checkThresholds(lowThreshold, highThreshold),
            checkBorderWithoutMirror(border)))
        return s;
    const auto run = filterKind == scharrFilter ? detectFromBytes<Derivative::scharr3>
                     : mask == lumMask3x3       ? detectFromBytes<Derivative::sobel3>
                                                : detectFromBytes<Derivative::sobel5>;
    run({src, srcStep}, {dst, dstStep}, roiSize, border, borderValue, lowThreshold, highThreshold, norm,
        buffer);
    return lumStatusOk;
}

LUM_INSTANCES(canny, (Lum16s), (Lum32f));
LUM_INSTANCES(cannyOfNorm, (Lum16s), (Lum32f));

} // namespace lum
