#include "distance/inpaint_state.h"

#include <algorithm>

#include "frame/arena.h"
#include "frame/check.h"
#include "frame/convert.h"
#include "morph/single_init.h"

namespace lum {
namespace {

/// The first and the last place other than 0 of a row; whether there is one.
struct Places {
    int first, last;
};

std::int64_t countOf(const Lum8u* row, int width, Places& places) {
    std::int64_t count = 0;
    for (int x = 0; x < width; ++x) {
        if (row[x] == 0) continue;
        if (count == 0) places.first = x;
        places.last = x;
        ++count;
    }
    return count;
}

} // namespace

InpaintHole holeOf(Image<const Lum8u> mask, LumSize size) {
    InpaintHole hole{0, {}};
    int left = size.width;
    int right = -1;
    int top = -1;
    int bottom = -1;
    for (int y = 0; y < size.height; ++y) {
        Places places{};
        const std::int64_t count = countOf(mask.row(y), size.width, places);
        if (count == 0) continue;
        hole.count += count;
        left = std::min(left, places.first);
        right = std::max(right, places.last);
        if (top < 0) top = y;
        bottom = y;
    }
    hole.box = {left, top, right - left + 1, bottom - top + 1};
    return hole;
}

LumRect grown(LumRect box, int pixels, LumSize size) {
    const int left = std::max(box.x - pixels, 0);
    const int top = std::max(box.y - pixels, 0);
    const int right =
        box.x + box.width - 1 > size.width - 1 - pixels ? size.width : box.x + box.width + pixels;
    const int bottom =
        box.y + box.height - 1 > size.height - 1 - pixels ? size.height : box.y + box.height + pixels;
    return {left, top, right - left, bottom - top};
}

int reachOf(Lum32f radius) { return truncatedIndex(radius); }

bool isInpaintRadius(Lum32f radius) { return radius >= 1; }

bool isTableRadius(Lum32f radius) {
    // From here on the table of neighbours alone takes more bytes than 31 bits can count.
    constexpr float tooLarge = 4379;
    return radius < tooLarge;
}

LumStatus sizesOf(LumSize workSize, std::int64_t holePixels, Lum32f radius, Lum32s method, Lum32s channels,
                  InpaintSizes& sizes) {
    const int side = 2 * reachOf(radius) + 1;
    if (auto s =
            morphologyBorderGetSize<Lum8u, 1>(workSize, {side, side}, &sizes.specDisc, &sizes.bufferDisc))
        return s;
    if (auto s = morphologyBorderGetSize<Lum8u, 1>(workSize, {3, 3}, &sizes.specCross, &sizes.bufferCross))
        return s;

    const auto square = static_cast<std::uint64_t>(side) * static_cast<std::uint64_t>(side);
    const auto up = [](std::uint64_t bytes, std::uint64_t unit) { return roundedUp(bytes, unit); };
    const auto rows = static_cast<std::uint64_t>(workSize.height);
    const auto width = static_cast<std::uint64_t>(workSize.width);
    const std::uint64_t head =
        up(sizeof(LumInpaintState) + up(static_cast<std::uint32_t>(sizes.specDisc), 16) +
               up(static_cast<std::uint32_t>(sizes.specCross), 16),
           64);
    const std::uint64_t table = up(square * sizeof(kernels::InpaintNeighbour), 64);
    const std::uint64_t order = up(static_cast<std::uint64_t>(holePixels) * sizeof(std::uint64_t), 64);
    const std::uint64_t masks = 2 * up(width, 64) * rows;
    const std::uint64_t floats = up(width * 4, 64) * rows;
    const std::uint64_t gradients = up(width * 4 * static_cast<std::uint64_t>(channels), 64) * rows;
    const std::uint64_t state =
        head + table + order + masks + floats + gradients + (method == lumInpaintFront ? floats : 0) + 64;
    sizes.state = static_cast<std::uint32_t>(state);
    sizes.buffer = static_cast<std::uint32_t>(square + static_cast<std::uint32_t>(sizes.bufferDisc) +
                                              static_cast<std::uint32_t>(sizes.bufferCross));
    return lumStatusOk;
}

LumInpaintState* placeInpaintState(Lum8u* stateBuffer, const LumInpaintState& values, std::int64_t holePixels,
                                   const InpaintSizes& sizes) {
    Arena arena(stateBuffer);
    auto* state = arena.allocate<LumInpaintState>();
    *state = values;
    const auto block = [&]<class T>(T*& place, std::size_t bytes) {
        place = reinterpret_cast<T*>(arena.align(64).allocate<Lum8u>(bytes));
    };
    state->specDisc = reinterpret_cast<LumMorphMaskRecord*>(
        arena.align(16).allocate<Lum8u>(static_cast<std::size_t>(sizes.specDisc)));
    state->specCross = reinterpret_cast<LumMorphMaskRecord*>(
        arena.align(16).allocate<Lum8u>(static_cast<std::size_t>(sizes.specCross)));
    const auto rows = static_cast<std::size_t>(values.workHeight);
    const auto side = 2 * static_cast<std::size_t>(reachOf(values.radius)) + 1;
    block(state->neighbourTable, side * side * sizeof(kernels::InpaintNeighbour));
    block(state->order, static_cast<std::size_t>(holePixels) * sizeof(std::uint64_t));
    block(state->workMask, static_cast<std::size_t>(values.maskStride) * rows);
    block(state->bandMask, static_cast<std::size_t>(values.maskStride) * rows);
    block(state->distanceCopy, static_cast<std::size_t>(values.distanceStride) * rows);
    block(state->imageGradient, static_cast<std::size_t>(values.imageGradientStride) * rows);
    if (values.method == lumInpaintFront)
        block(state->distanceGradient, static_cast<std::size_t>(values.distanceGradientStride) * rows);
    return state;
}

} // namespace lum
