#include "segment/watershed.h"

#include <algorithm>
#include <cstdint>

#include "frame/arena.h"
#include "frame/check.h"
#include "frame/instances.h"
#include "kernels/segment/watershed_flood.h"
#include "kernels/segment/watershed_raster.h"

namespace lum {
namespace {

using kernels::FloatCost;
using kernels::FloodBoundaries;
using kernels::Hops;
using kernels::IntegerCost;
using kernels::RasterBoundaries;

/// Every norm of the raster engine is one of Hops.
static_assert(Hops{0} == Hops::eight && Hops{1} == Hops::four && Hops{2} == Hops::chamfer &&
              Hops{3} == Hops::eikonal);

template <class Relief, class Marker>
LumStatus checkArguments(const Relief* src, int srcStep, const Marker* markers, int markersStep,
                         LumSize roiSize, const Lum8u* buffer) {
    return firstFailure(checkNotNull(src, markers, buffer), checkSize(roiSize),
                        checkStep(rowBytes<Relief>(roiSize.width), srcStep),
                        checkStep(rowBytes<Marker>(roiSize.width), markersStep),
                        checkStepAlignment<Marker>(markersStep), checkStepAlignment<Relief>(srcStep));
}

LumStatus checkRaster(Lum32s norm, Lum32s flags) {
    return firstFailure(errorIf((flags & lumSegmentDistance) == 0, lumStatusBadArgument),
                        errorIf(norm < 0 || norm > 3, lumStatusBadArgument));
}

FloodBoundaries floodBoundaries(Lum32s flags) {
    const bool four = (flags & lumSegmentBorder4) != 0;
    const bool eight = (flags & lumSegmentBorder8) != 0;
    return {eight  ? FloodBoundaries::eight
            : four ? FloodBoundaries::four
                   : FloodBoundaries::none,
            four    ? FloodBoundaries::four
            : eight ? FloodBoundaries::eight
                    : FloodBoundaries::none};
}

/// A column has no neighbours but those above and below.
RasterBoundaries rasterBoundaries(Lum32s flags, Lum32s testedFirst, LumSize size) {
    if ((flags & (lumSegmentBorder4 | lumSegmentBorder8)) == 0) return RasterBoundaries::none;
    if (size.width == 1) return RasterBoundaries::four;
    const Lum32s other = testedFirst ^ (lumSegmentBorder4 | lumSegmentBorder8);
    const Lum32s chosen = (flags & testedFirst) != 0 ? testedFirst : other;
    return chosen == lumSegmentBorder4 ? RasterBoundaries::four : RasterBoundaries::eight;
}

std::uint32_t wordOf(Lum32s value) { return static_cast<std::uint32_t>(value); }

} // namespace

template <class Marker> LumStatus watershedBufferSize(LumSize roiSize, Lum32s* size) {
    if (auto s = firstFailure(checkNotNull(size), checkSize(roiSize))) return s;
    const std::uint32_t w = wordOf(roiSize.width);
    const std::uint32_t h = wordOf(roiSize.height);
    constexpr std::uint32_t bytes = sizeof(Marker);
    const std::uint32_t flood = 12 * w * h + bytes * (w + 2) * (h + 2) + 36;
    const std::uint32_t raster = (6 * h + 2) * roundedUp(bytes * w, 32U) + h + 66;
    *size = std::max(static_cast<Lum32s>(flood), static_cast<Lum32s>(raster));
    return lumStatusOk;
}

LumStatus watershedFloatBufferSize(LumSize roiSize, Lum32s* size) {
    if (auto s = firstFailure(checkNotNull(size), checkSize(roiSize))) return s;
    const std::uint32_t w = wordOf(roiSize.width);
    const std::uint32_t h = wordOf(roiSize.height);
    *size = static_cast<Lum32s>(roundedUp(w, 4U) * 9 * h + (h + 2) + 64);
    return lumStatusOk;
}

template <class Marker>
LumStatus watershed(const Lum8u* src, int srcStep, Marker* markers, int markersStep, LumSize roiSize,
                    Lum32s norm, Lum32s flags, Lum8u* buffer) {
    if (auto s = checkArguments(src, srcStep, markers, markersStep, roiSize, buffer)) return s;
    if ((flags & lumSegmentQueue) != 0) {
        if (auto s = errorIf(norm != 0 && norm != 1, lumStatusBadArgument)) return s;
        const auto connected = norm == 0 ? kernels::Connected::eight : kernels::Connected::four;
        kernels::floodWatershed<Marker>({src, srcStep}, {markers, markersStep}, roiSize, connected,
                                        floodBoundaries(flags), buffer);
        return lumStatusOk;
    }
    if (auto s = checkRaster(norm, flags)) return s;
    const Hops hops = roiSize.width == 1 ? Hops::four : Hops{norm};
    kernels::rasterWatershed<IntegerCost, Marker>({src, srcStep}, {markers, markersStep}, roiSize, hops,
                                                  rasterBoundaries(flags, lumSegmentBorder4, roiSize),
                                                  alignedUp(buffer, 32));
    return lumStatusOk;
}

LumStatus watershedFloat(const Lum32f* src, int srcStep, Lum16u* markers, int markersStep, LumSize roiSize,
                         Lum32s norm, Lum32s flags, Lum8u* buffer) {
    if (auto s = firstFailure(checkArguments(src, srcStep, markers, markersStep, roiSize, buffer),
                              errorIf((flags & lumSegmentQueue) != 0, lumStatusModeError),
                              checkRaster(norm, flags)))
        return s;
    kernels::rasterWatershed<FloatCost, Lum16u>({src, srcStep}, {markers, markersStep}, roiSize, Hops{norm},
                                                rasterBoundaries(flags, lumSegmentBorder8, roiSize),
                                                alignedUp(buffer, 64));
    return lumStatusOk;
}

LUM_INSTANCES(watershedBufferSize, (Lum8u), (Lum16u));
LUM_INSTANCES(watershed, (Lum8u), (Lum16u));

} // namespace lum
