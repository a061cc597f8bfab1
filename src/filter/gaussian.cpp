#include "filter/gaussian.h"

#include <algorithm>

#include "filter/gaussian_strip.h"
#include "filter/rows_ahead.h"
#include "filter/slide_window.h"
#include "frame/instances.h"
#include "frame/lanes.h"
#include "frame/stores.h"

namespace lum {
namespace {

/// From this many bytes of floats on a run asks for the size of the cache.
constexpr Lum32s cacheQueryThreshold = 0x80000;

Stores chosenStores(LumSize roiSize, int channels) {
    const Lum32s bytes = wrappedBytes(4 * channels, roiSize);
    if (bytes < cacheQueryThreshold) return Stores::ordinary;
    return storesForBytes(bytes, OnUnknownCache::storeOrdinarily);
}

/// Pointer-wide sizes may pass 32 bits, in which no query could report the work memory.
LumStatus sizeBeyond32Bits(LumSizeL roiSize) {
    return errorIf(static_cast<Lum32s>(roiSize.width) != roiSize.width ||
                       static_cast<Lum32s>(roiSize.height) != roiSize.height,
                   lumStatusSizeError);
}

template <class T, int channels>
void filterStrip(GaussianStrip<T, channels> strip, Image<const T> src, Image<T> dst, LumSize size,
                 Stores stores) {
    constexpr int rowsAhead = 6;
    const int height = size.height;
    // Rows of a strip are apart in memory, so the processor does not fetch them ahead by itself.
    const auto looks = areBeyondCaches<T>(size, channels) ? kernels::Looks::ahead : kernels::Looks::here;
    kernels::GaussianColumn<T>* columnStage =
        kernels::gaussianColumn<T>(strip.radius(), strip.weights(), stores, looks);
    slideWindow(
        height, strip.radius(), strip.radius(), [&](int y) { strip.loadRow(y); },
        [&](int y) {
            const kernels::GaussianRowsAhead<T> ahead{rowAhead(src, y + strip.radius(), rowsAhead, height),
                                                      rowAhead(dst, y, rowsAhead, height)};
            columnStage(strip.around(y), strip.count(), strip.weights(), dst.row(y), ahead);
        });
}

} // namespace

template <class T, int channels>
LumStatus gaussianL(const T* src, intptr_t srcStep, T* dst, intptr_t dstStep, LumSizeL roiSize,
                    LumBorderType border, const T* borderValue, const LumFilterGaussianSpecL* spec,
                    Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(src, dst, buffer, spec), sizeBeyond32Bits(roiSize))) return s;
    if (auto s = firstFailure(checkStep(rowBytes<T>(roiSize.width, channels), srcStep, dstStep),
                              checkSize(roiSize), checkStepAlignment<T>(srcStep, dstStep),
                              errorIf(border < 0 || border > 255, lumStatusBorderError)))
        return s;
    if (!allSidesInMemory(border)) {
        if (auto s = firstFailure(borderValueMissing(border, borderValue), linearBorder(border))) return s;
    }
    if (auto s = gaussianKernelSize(spec->kernelSize)) return s;

    const LumSize size{static_cast<Lum32s>(roiSize.width), static_cast<Lum32s>(roiSize.height)};
    const Image<T> result(dst, dstStep);
    const Stores wanted = chosenStores(size, channels);
    const Stores stores = isStreamable(result) ? wanted : Stores::ordinary;
    const GaussianRun<T> run{{src, srcStep}, size, border, borderValue, spec, buffer};
    // In place a strip would read columns that its neighbour has overwritten; whole rows are read ahead of their
    // results.
    const int stripWidth =
        src == dst ? size.width : gaussianStripWidth<T>(size.width, channels, spec->kernelSize);
    int width = 0;
    for (int x = 0; x < size.width; x += width) {
        width = std::min(stripWidth, size.width - x);
        const std::ptrdiff_t first = static_cast<std::ptrdiff_t>(x) * channels;
        filterStrip(GaussianStrip<T, channels>(run, x, width), run.src.shifted(first), result.shifted(first),
                    size, stores);
    }
    if (stores == Stores::streaming) storeFence();
    return lumStatusOk;
}

template <class T, int channels>
LumStatus gaussian(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize, LumBorderType border,
                   const T* borderValue, const LumFilterGaussianSpec* spec, Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(src, dst, buffer, spec), checkStep(1, srcStep, dstStep),
                              checkSize(roiSize)))
        return s;
    if (auto s = gaussianParameters(spec->kernelSize, spec->dataType, channels)) return s;
    return gaussianL<T, channels>(src, srcStep, dst, dstStep, {roiSize.width, roiSize.height}, border,
                                  borderValue, gaussianCoreSpec(spec), buffer);
}

template <class T>
LumStatus gaussianBorder(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize, T borderValue,
                         const LumFilterGaussianSpec* spec, Lum8u* buffer) {
    if (auto s = checkNotNull(spec)) return s;
    return gaussian<T, 1>(src, srcStep, dst, dstStep, roiSize, spec->border, &borderValue, spec, buffer);
}

template <class T>
LumStatus gaussianBorderC3(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                           const T* borderValue, const LumFilterGaussianSpec* spec, Lum8u* buffer) {
    if (auto s = checkNotNull(spec)) return s;
    return gaussian<T, 3>(src, srcStep, dst, dstStep, roiSize, spec->border, borderValue, spec, buffer);
}

LUM_INSTANCES(gaussianL, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum16s, 1), (Lum16s, 3),
              (Lum32f, 1), (Lum32f, 3));
LUM_INSTANCES(gaussian, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum16s, 1), (Lum16s, 3),
              (Lum32f, 1), (Lum32f, 3));
LUM_INSTANCES(gaussianBorder, (Lum8u), (Lum16u), (Lum16s), (Lum32f));
LUM_INSTANCES(gaussianBorderC3, (Lum8u), (Lum16u), (Lum16s), (Lum32f));

} // namespace lum
