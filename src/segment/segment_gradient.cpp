#include "segment/segment_gradient.h"

#include <cstdint>

#include "frame/check.h"
#include "frame/instances.h"
#include "kernels/segment/bound_segments.h"
#include "kernels/segment/gradient_growing.h"
#include "lumcv/watershed.h"

namespace lum {
namespace {

using kernels::GrowthBoundaries;

LumStatus checkNorm(LumSpatialNorm norm) {
    return errorIf(norm != lumSpatialNormInf && norm != lumSpatialNormL1, lumStatusBadArgument);
}

GrowthBoundaries boundariesOf(Lum32s flags) {
    if ((flags & lumSegmentBorder8) != 0) return GrowthBoundaries::eight;
    return (flags & lumSegmentBorder4) != 0 ? GrowthBoundaries::four : GrowthBoundaries::none;
}

} // namespace

LumStatus segmentGradientBufferSize(LumSize roiSize, Lum32s* size) {
    if (auto s = firstFailure(checkNotNull(size), checkSize(roiSize))) return s;
    const std::uint32_t pixels =
        static_cast<std::uint32_t>(roiSize.width) * static_cast<std::uint32_t>(roiSize.height);
    *size = static_cast<Lum32s>(13 * pixels + 103);
    return lumStatusOk;
}

template <int channels>
LumStatus segmentGradient(const Lum8u* src, int srcStep, Lum8u* markers, int markersStep, LumSize roiSize,
                          LumSpatialNorm norm, Lum32s flags, Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(src, markers, buffer), checkSize(roiSize),
                              checkStep(rowBytes<Lum8u>(roiSize.width, channels), srcStep),
                              checkStep(rowBytes<Lum8u>(roiSize.width), markersStep), checkNorm(norm)))
        return s;
    const auto connected = norm == lumSpatialNormInf ? kernels::Connected::eight : kernels::Connected::four;
    kernels::growRegions<channels>({src, srcStep}, {markers, markersStep}, roiSize, connected,
                                   boundariesOf(flags), buffer);
    return lumStatusOk;
}

template <class T>
LumStatus boundSegments(T* srcDst, int srcDstStep, LumSize roiSize, T borderValue, LumSpatialNorm norm) {
    if (auto s = firstFailure(checkNotNull(srcDst), checkSize(roiSize),
                              checkStep(rowBytes<T>(roiSize.width), srcDstStep),
                              checkStepAlignment<T>(srcDstStep), checkNorm(norm)))
        return s;
    const Image<T> image(srcDst, srcDstStep);
    // A column has no corners, whatever the norm.
    for (int y = 0; y < roiSize.height; ++y)
        kernels::BoundedRow<T>(image.row(y), y > 0 ? image.row(y - 1) : nullptr, roiSize.width, borderValue,
                               norm == lumSpatialNormInf)
            .draw();
    return lumStatusOk;
}

LUM_INSTANCES(segmentGradient, (1), (3));
LUM_INSTANCES(boundSegments, (Lum8u), (Lum16u));

} // namespace lum
