#include <algorithm>
#include <cstring>
#include <limits>

#include "distance/inpaint.h"
#include "distance/inpaint_state.h"
#include "frame/arena.h"
#include "frame/check.h"
#include "morph/single_init.h"

namespace lum {
namespace {

LumStatus checkRadiusAndMethod(Lum32f radius, Lum32s method) {
    return firstFailure(
        errorIf(!isInpaintRadius(radius), lumStatusBadArgument),
        errorIf(method != lumInpaintFront && method != lumInpaintIsophote, lumStatusBadArgument));
}

LumSize sizeOf(LumRect rect) { return {rect.width, rect.height}; }

/// The fields that depend on nothing but the arguments and the working region.
LumInpaintState valuesOf(LumSize roiSize, LumRect work, Lum32f radius, Lum32s method, int channels) {
    const auto stride = [](Lum32s width, int elementBytes) { return roundedUp(width * elementBytes, 64); };
    LumInpaintState values{};
    values.imageWidth = roiSize.width;
    values.imageHeight = roiSize.height;
    values.workWidth = values.width = work.width;
    values.workHeight = values.height = work.height;
    values.x = work.x;
    values.y = work.y;
    values.channels = channels;
    values.method = method;
    values.radius = radius;
    values.maskStride = stride(work.width, 1);
    values.distanceStride = stride(work.width, 4);
    values.imageGradientStride = stride(work.width, 4 * channels);
    values.distanceGradientStride = method == lumInpaintFront ? stride(work.width, 4) : 0;
    return values;
}

LumStatus buildElements(LumInpaintState& state, Lum8u* buffer) {
    const LumSize size{state.width, state.height};
    const int side = 2 * reachOf(state.radius) + 1;
    const std::size_t square = static_cast<std::size_t>(side) * static_cast<std::size_t>(side);
    std::memset(buffer, 1, square);
    if (auto s = morphologyBorderInit(size, buffer, {side, side}, state.specDisc, buffer + square)) return s;
    constexpr Lum8u cross[9] = {0, 1, 0, 1, 1, 1, 0, 1, 0};
    return morphologyBorderInit(size, cross, {3, 3}, state.specCross, buffer + square);
}

void copyRegion(LumInpaintState& state, Image<const Lum8u> mask, Image<const Lum32f> distances) {
    const Image<Lum8u> work{state.workMask, state.maskStride};
    const Image<Lum32f> copy{state.distanceCopy, state.distanceStride};
    for (int y = 0; y < state.height; ++y) {
        const Lum8u* selected = mask.row(state.y + y) + state.x;
        Lum8u* row = work.row(y);
        for (int x = 0; x < state.width; ++x)
            row[x] = selected[x] != 0 ? kernels::inpaintUnknown : kernels::inpaintKnown;
        std::memcpy(copy.row(y), distances.row(state.y + y) + state.x,
                    static_cast<std::size_t>(state.width) * sizeof(Lum32f));
    }
}

void fillNeighbours(LumInpaintState& state) {
    const int r = reachOf(state.radius);
    const float limit = state.radius * state.radius;
    const auto method = static_cast<kernels::InpaintMethod>(state.method);
    state.neighbourCount = 0;
    for (int dy = -r; dy <= r; ++dy)
        for (int dx = -r; dx <= r; ++dx) {
            if ((dx == 0 && dy == 0) || static_cast<float>(dx * dx + dy * dy) > limit) continue;
            const auto offset = [&](Lum32s stride, int elementBytes) {
                return static_cast<std::intptr_t>(dy) * stride +
                       static_cast<std::intptr_t>(dx) * elementBytes;
            };
            state.neighbourTable[state.neighbourCount++] = {
                .towardX = -dx,
                .towardY = -dy,
                .weight = kernels::inpaintWeight(method, dx, dy),
                .inMask = offset(state.maskStride, 1),
                .inDistances = offset(state.distanceStride, 4),
                .inGradient = offset(state.imageGradientStride, 4 * state.channels),
                .inImage = 0};
        }
}

/// The pixels with a distance, at most as many as the mask has.
void fillOrder(LumInpaintState& state, std::int64_t holePixels) {
    const Image<const Lum32f> distances{state.distanceCopy, state.distanceStride};
    std::int64_t count = 0;
    for (int y = 0; y < state.height && count < holePixels; ++y) {
        const Lum32f* row = distances.row(y);
        for (int x = 0; x < state.width && count < holePixels; ++x)
            if (row[x] > 0 && row[x] <= std::numeric_limits<float>::max())
                state.order[count++] =
                    kernels::inpaintEntry(row[x], static_cast<std::uint64_t>(y) * state.width + x);
    }
    state.pixelCount = static_cast<Lum32s>(count);
    // Doubles above 0 have the order of their bits.
    std::sort(state.order, state.order + count);
}

} // namespace

LumStatus inpaintGetSize(const Lum8u* mask, int maskStep, LumSize roiSize, Lum32f radius, Lum32s method,
                         Lum32s channels, Lum32s* stateSize, Lum32s* bufferSize) {
    if (auto s = firstFailure(checkNotNull(mask), checkStep(rowBytes<Lum8u>(roiSize.width), maskStep),
                              checkSize(roiSize), checkNotNull(stateSize, bufferSize),
                              checkRadiusAndMethod(radius, method),
                              errorIf(channels != 1 && channels != 3, lumStatusChannelCountError)))
        return s;
    const InpaintHole hole = holeOf({mask, maskStep}, roiSize);
    InpaintSizes sizes{};
    sizes.state = emptyStateBytes;
    if (hole.count > 0) {
        if (auto s = errorIf(!isTableRadius(radius), lumStatusBadArgument)) return s;
        const LumRect work = grown(hole.box, reachOf(radius) + 1, roiSize);
        if (auto s = sizesOf(sizeOf(work), hole.count, radius, method, channels, sizes)) return s;
    }
    *stateSize = static_cast<Lum32s>(sizes.state);
    *bufferSize = static_cast<Lum32s>(sizes.buffer);
    return lumStatusOk;
}

template <int channels>
LumStatus inpaintInit(LumInpaintState** state, const Lum32f* distances, int distancesStep, const Lum8u* mask,
                      int maskStep, LumSize roiSize, Lum32f radius, Lum32s method, Lum8u* stateBuffer,
                      Lum8u* initBuffer) {
    if (auto s = firstFailure(
            checkNotNull(mask), checkSize(roiSize), checkStep(rowBytes<Lum8u>(roiSize.width), maskStep),
            checkNotNull(distances, state), checkStep(rowBytes<Lum32f>(roiSize.width), distancesStep),
            checkStepAlignment<Lum32f>(distancesStep), checkNotNull(stateBuffer)))
        return s;
    const InpaintHole hole = holeOf({mask, maskStep}, roiSize);
    const bool empty = hole.count == 0;
    if (auto s = firstFailure(errorIf(!empty && initBuffer == nullptr, lumStatusNullPointer),
                              checkRadiusAndMethod(radius, method),
                              errorIf(!empty && !isTableRadius(radius), lumStatusBadArgument)))
        return s;
    if (empty) {
        auto* built = reinterpret_cast<LumInpaintState*>(stateBuffer);
        *built = valuesOf(roiSize, {}, radius, method, channels);
        *state = built;
        return lumStatusOk;
    }
    const LumRect work = grown(hole.box, reachOf(radius) + 1, roiSize);
    InpaintSizes sizes;
    if (auto s = sizesOf(sizeOf(work), hole.count, radius, method, channels, sizes)) return s;
    LumInpaintState* built =
        placeInpaintState(stateBuffer, valuesOf(roiSize, work, radius, method, channels), hole.count, sizes);
    if (auto s = buildElements(*built, initBuffer)) return s;
    copyRegion(*built, {mask, maskStep}, {distances, distancesStep});
    fillNeighbours(*built);
    fillOrder(*built, hole.count);
    *state = built;
    return lumStatusOk;
}

template LumStatus inpaintInit<1>(LumInpaintState**, const Lum32f*, int, const Lum8u*, int, LumSize, Lum32f,
                                  Lum32s, Lum8u*, Lum8u*);
template LumStatus inpaintInit<3>(LumInpaintState**, const Lum32f*, int, const Lum8u*, int, LumSize, Lum32f,
                                  Lum32s, Lum8u*, Lum8u*);

} // namespace lum
