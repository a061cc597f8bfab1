#include "segment/flood_fill.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "frame/check.h"
#include "frame/instances.h"
#include "kernels/segment/flood_fill.h"
#include "kernels/segment/gradient_fill.h"

namespace lum {
namespace {

using kernels::Between;
using kernels::Connected;
using kernels::CutOff;
using kernels::EqualTo;
using kernels::FilledRegion;
using kernels::Pixel;
using kernels::Run;
using kernels::RunStack;
using kernels::Within;

std::int64_t pixelCount(LumSize size) { return std::int64_t{size.width} * size.height; }

std::size_t stackBytes(LumSize size) { return static_cast<std::size_t>(6 * pixelCount(size) + 32); }
std::size_t gradStackBytes(LumSize size) { return static_cast<std::size_t>(16 * pixelCount(size) + 64); }

bool outside(LumPoint seed, LumSize size) {
    return seed.x < 0 || seed.y < 0 || seed.x >= size.width || seed.y >= size.height;
}

template <int neighbours>
constexpr Connected connected = neighbours == 8 ? Connected::eight : Connected::four;

/// A pixel from its value, or from a pointer to its channels.
template <class T> Pixel<T, 1> pixelOf(T value) { return {value}; }
template <class T> Pixel<T, 3> pixelOf(const T* values) { return {values[0], values[1], values[2]}; }

template <class T, std::size_t channels> Pixel<T, channels> pixelAt(Image<T> image, LumPoint place) {
    Pixel<T, channels> pixel;
    std::copy_n(image.row(place.y) + std::ptrdiff_t{place.x} * static_cast<int>(channels), channels,
                pixel.begin());
    return pixel;
}

/// The tests of every member, of which only those of the floating range have limits on the deltas.
template <class T, int channels>
LumStatus checkArguments(LumStatus pointers, int srcDstStep, LumSize roiSize, LumPoint seed) {
    return firstFailure(
        pointers, checkSize(roiSize), checkStep(rowBytes<T>(roiSize.width, channels), srcDstStep),
        checkStepAlignment<T>(srcDstStep), errorIf(outside(seed, roiSize), lumStatusOutOfRange));
}

template <class T, std::size_t channels>
void report(LumFillRegion* region, const FilledRegion& filled, const Pixel<T, channels>& newVal) {
    region->area = static_cast<Lum64f>(filled.area);
    std::fill_n(region->value, 3, 0.0);
    std::copy(newVal.begin(), newVal.end(), region->value);
    region->rect = filled.box;
}

template <int neighbours, class T, std::size_t channels>
void fillEqual(Image<T> image, LumSize size, LumPoint seed, const Pixel<T, channels>& newVal,
               LumFillRegion* region, Lum8u* buffer) {
    const EqualTo<T, channels> rule{pixelAt<T, channels>(image, seed)};
    if (rule.value == newVal) return;
    RunStack stack(buffer, stackBytes(size));
    report(region, kernels::fillRegion<connected<neighbours>>(rule, image, size, seed, newVal, stack, {}),
           newVal);
}

template <class T> T lowerLimit(T seed, T delta) {
    if constexpr (std::is_floating_point_v<T>)
        return seed - delta;
    else
        return static_cast<T>(std::max(seed - delta, 0));
}

template <class T> T upperLimit(T seed, T delta) {
    if constexpr (std::is_floating_point_v<T>)
        return seed + delta;
    else
        return static_cast<T>(std::min<int>(seed + delta, std::numeric_limits<T>::max()));
}

template <int neighbours, class T, std::size_t channels>
void fillBetween(Image<T> image, LumSize size, LumPoint seed, const Pixel<T, channels>& newVal,
                 const Pixel<T, channels>& minDelta, const Pixel<T, channels>& maxDelta,
                 LumFillRegion* region, Lum8u* buffer) {
    const Pixel<T, channels> centre = pixelAt<T, channels>(image, seed);
    Between<T, channels> rule;
    for (std::size_t c = 0; c < channels; ++c) {
        rule.low[c] = lowerLimit(centre[c], minDelta[c]);
        rule.high[c] = upperLimit(centre[c], maxDelta[c]);
    }
    // Only where a filled pixel is a member again can a fill go round for ever.
    const std::int64_t pixels = pixelCount(size);
    const CutOff cutOff{.pending = pixels / 4, .found = isMember(rule, newVal.data()) ? pixels : 0};
    // Of fewer than four pixels, whose stack has no limit, two runs may wait: more than their buffer holds.
    Run few[2];
    RunStack stack = pixels < 4 ? RunStack(reinterpret_cast<unsigned char*>(few), sizeof few)
                                : RunStack(buffer, stackBytes(size));
    report(region, kernels::fillRegion<connected<neighbours>>(rule, image, size, seed, newVal, stack, cutOff),
           newVal);
}

template <class T, std::size_t channels> bool anyNegative(const Pixel<T, channels>& deltas) {
    return std::any_of(deltas.begin(), deltas.end(), [](T delta) { return delta < 0; });
}

template <int neighbours, class T, std::size_t channels>
LumStatus fillSteps(Image<T> image, LumSize size, LumPoint seed, const Pixel<T, channels>& newVal,
                    const Pixel<T, channels>& minDelta, const Pixel<T, channels>& maxDelta,
                    LumFillRegion* region, Lum8u* buffer) {
    if (auto s = errorIf(anyNegative(minDelta) || anyNegative(maxDelta), lumStatusOutOfRange)) return s;
    const Within<T, channels> rule(minDelta, maxDelta);
    RunStack stack(buffer + kernels::takenMapBytes(size), gradStackBytes(size));
    report(region, kernels::fillSteps<connected<neighbours>>(rule, image, size, seed, newVal, buffer, stack),
           newVal);
    return lumStatusOk;
}

} // namespace

LumStatus floodFillBufferSize(LumSize roiSize, Lum32s* size) {
    if (auto s = firstFailure(checkNotNull(size), checkSize(roiSize))) return s;
    *size = static_cast<Lum32s>(6 * static_cast<std::uint64_t>(pixelCount(roiSize)) + 32);
    return lumStatusOk;
}

LumStatus floodFillGradBufferSize(LumSize roiSize, Lum32s* size) {
    if (auto s = firstFailure(checkNotNull(size), checkSize(roiSize))) return s;
    const std::int64_t map = (std::int64_t{roiSize.width} + 2) * (std::int64_t{roiSize.height} + 2);
    *size = static_cast<Lum32s>(16 * static_cast<std::uint64_t>(pixelCount(roiSize)) +
                                static_cast<std::uint64_t>(map) + 64);
    return lumStatusOk;
}

template <int neighbours, class T>
LumStatus floodFill(T* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed, T newVal,
                    LumFillRegion* region, Lum8u* buffer) {
    if (auto s = checkArguments<T, 1>(checkNotNull(srcDst, region, buffer), srcDstStep, roiSize, seed))
        return s;
    fillEqual<neighbours>(Image<T>{srcDst, srcDstStep}, roiSize, seed, pixelOf(newVal), region, buffer);
    return lumStatusOk;
}

template <int neighbours, class T>
LumStatus floodFillC3(T* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed, const T* newVal,
                      LumFillRegion* region, Lum8u* buffer) {
    if (auto s =
            checkArguments<T, 3>(checkNotNull(srcDst, newVal, region, buffer), srcDstStep, roiSize, seed))
        return s;
    fillEqual<neighbours>(Image<T>{srcDst, srcDstStep}, roiSize, seed, pixelOf(newVal), region, buffer);
    return lumStatusOk;
}

template <int neighbours, class T>
LumStatus floodFillRange(T* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed, T newVal, T minDelta,
                         T maxDelta, LumFillRegion* region, Lum8u* buffer) {
    if (auto s = checkArguments<T, 1>(checkNotNull(srcDst, region, buffer), srcDstStep, roiSize, seed))
        return s;
    fillBetween<neighbours>(Image<T>{srcDst, srcDstStep}, roiSize, seed, pixelOf(newVal), pixelOf(minDelta),
                            pixelOf(maxDelta), region, buffer);
    return lumStatusOk;
}

template <int neighbours, class T>
LumStatus floodFillRangeC3(T* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed, const T* newVal,
                           const T* minDelta, const T* maxDelta, LumFillRegion* region, Lum8u* buffer) {
    if (auto s = checkArguments<T, 3>(checkNotNull(srcDst, newVal, minDelta, maxDelta, region, buffer),
                                      srcDstStep, roiSize, seed))
        return s;
    fillBetween<neighbours>(Image<T>{srcDst, srcDstStep}, roiSize, seed, pixelOf(newVal), pixelOf(minDelta),
                            pixelOf(maxDelta), region, buffer);
    return lumStatusOk;
}

template <int neighbours, class T>
LumStatus floodFillGrad(T* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed, T newVal, T minDelta,
                        T maxDelta, LumFillRegion* region, Lum8u* buffer) {
    if (auto s = checkArguments<T, 1>(checkNotNull(srcDst, region, buffer), srcDstStep, roiSize, seed))
        return s;
    return fillSteps<neighbours>(Image<T>{srcDst, srcDstStep}, roiSize, seed, pixelOf(newVal),
                                 pixelOf(minDelta), pixelOf(maxDelta), region, buffer);
}

template <int neighbours, class T>
LumStatus floodFillGradC3(T* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed, const T* newVal,
                          const T* minDelta, const T* maxDelta, LumFillRegion* region, Lum8u* buffer) {
    if (auto s = checkArguments<T, 3>(checkNotNull(srcDst, newVal, minDelta, maxDelta, region, buffer),
                                      srcDstStep, roiSize, seed))
        return s;
    return fillSteps<neighbours>(Image<T>{srcDst, srcDstStep}, roiSize, seed, pixelOf(newVal),
                                 pixelOf(minDelta), pixelOf(maxDelta), region, buffer);
}

LUM_INSTANCES(floodFill, (4, Lum8u), (4, Lum16u), (4, Lum32s), (4, Lum32f), (8, Lum8u), (8, Lum16u),
              (8, Lum32s), (8, Lum32f));
LUM_INSTANCES(floodFillC3, (4, Lum8u), (4, Lum16u), (4, Lum32f), (8, Lum8u), (8, Lum16u), (8, Lum32f));
LUM_INSTANCES(floodFillRange, (4, Lum8u), (4, Lum16u), (4, Lum32f), (8, Lum8u), (8, Lum16u), (8, Lum32f));
LUM_INSTANCES(floodFillRangeC3, (4, Lum8u), (4, Lum16u), (4, Lum32f), (8, Lum8u), (8, Lum16u), (8, Lum32f));
LUM_INSTANCES(floodFillGrad, (4, Lum8u), (4, Lum16u), (4, Lum32f), (8, Lum8u), (8, Lum16u), (8, Lum32f));
LUM_INSTANCES(floodFillGradC3, (4, Lum8u), (4, Lum16u), (4, Lum32f), (8, Lum8u), (8, Lum16u), (8, Lum32f));

} // namespace lum
