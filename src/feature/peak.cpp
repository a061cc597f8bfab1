#include "feature/peak.h"

#include "frame/check.h"
#include "frame/image.h"
#include "frame/instances.h"
#include "kernels/feature/peak.h"

namespace lum {

LumStatus peaksBufferSize(int width, Lum32s* size) {
    if (auto s = firstFailure(checkNotNull(size), checkCount(width))) return s;
    *size = static_cast<Lum32s>((5U + static_cast<unsigned>(width)) >> 2 << 7 | 32U);
    return lumStatusOk;
}

template <class T>
LumStatus findPeaks(const T* src, int srcStep, LumSize roiSize, T threshold, LumPoint* peaks,
                    int maxPeakCount, int* peakCount, LumSpatialNorm norm, int border, Lum8u* buffer) {
    const auto leftOut = static_cast<float>(border);
    const bool leavesNothing = leftOut > static_cast<float>(roiSize.width) * 0.5F ||
                               leftOut > static_cast<float>(roiSize.height) * 0.5F;
    if (auto s = firstFailure(
            checkNotNull(src, peaks, peakCount, buffer), checkSize(roiSize), checkCount(maxPeakCount, border),
            errorIf(leavesNothing, lumStatusSizeError),
            errorIf(srcStep / 4 < roiSize.width, lumStatusStepError), checkStepAlignment<T>(srcStep),
            errorIf(norm != lumSpatialNormInf && norm != lumSpatialNormL1, lumStatusBadArgument)))
        return s;
    const auto findInRow =
        norm == lumSpatialNormInf ? kernels::findPeaksInRow<T, true> : kernels::findPeaksInRow<T, false>;
    const Image<const T> scores(src, srcStep);
    const std::ptrdiff_t count = static_cast<std::ptrdiff_t>(roiSize.width) - 2 * border;
    std::ptrdiff_t found = 0;
    for (int y = border; y < roiSize.height - border && found < maxPeakCount; ++y)
        found += findInRow({scores.row(y - 1) + border, scores.row(y) + border, scores.row(y + 1) + border},
                           count, threshold, {border, y}, peaks + found, maxPeakCount - found);
    *peakCount = static_cast<int>(found);
    return lumStatusOk;
}

LUM_INSTANCES(findPeaks, (Lum32f), (Lum32s));

} // namespace lum
