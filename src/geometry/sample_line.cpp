#include "geometry/sample_line.h"

#include <algorithm>
#include <limits>

#include "frame/check.h"
#include "frame/image.h"
#include "frame/instances.h"
#include "kernels/geometry/sample_line.h"

namespace lum {
namespace {

bool outside(LumPoint point, LumSize size) {
    return point.x < 0 || point.y < 0 || point.x >= size.width || point.y >= size.height;
}

/// Samples between two points of a region.
std::int64_t sampleCount(LumPoint point1, LumPoint point2) {
    const std::int64_t dx = std::int64_t{point2.x} - point1.x;
    const std::int64_t dy = std::int64_t{point2.y} - point1.y;
    return std::max(dx < 0 ? -dx : dx, dy < 0 ? -dy : dy) + 1;
}

} // namespace

template <class T, int channels>
LumStatus sampleLine(const T* src, int srcStep, LumSize roiSize, T* dst, LumPoint point1, LumPoint point2) {
    // Between two points of a region, whose sides are signed 32-bit numbers themselves, no count overflows;
    // the last test keeps the walk right by itself.
    if (auto s = firstFailure(
            checkNotNull(src, dst), checkSize(roiSize),
            checkStep(rowBytes<T>(roiSize.width, channels), srcStep), checkStepAlignment<T>(srcStep),
            errorIf(outside(point1, roiSize) || outside(point2, roiSize), lumStatusOutOfRange),
            errorIf(sampleCount(point1, point2) > std::numeric_limits<Lum32s>::max(), lumStatusBadValue)))
        return s;
    kernels::sampleLine<T, channels>({src, srcStep}, dst, point1, point2);
    return lumStatusOk;
}

LUM_INSTANCES(sampleLine, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1), (Lum32f, 3));

} // namespace lum
