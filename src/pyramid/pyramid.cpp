#include "pyramid/pyramid.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "frame/arena.h"
#include "pyramid/level_sizes.h"
#include "pyramid/reported_bytes.h"

namespace lum {
namespace {

static_assert(sizeof(void*) != 4 || (offsetof(LumPyramid, rois) == 4 && offsetof(LumPyramid, rates) == 8 &&
                                     offsetof(LumPyramid, steps) == 12 && offsetof(LumPyramid, state) == 16 &&
                                     offsetof(LumPyramid, level) == 20 && sizeof(LumPyramid) == 24));

/// What 64-bit pointers add to the record and to each level.
constexpr std::int64_t widerRecord = static_cast<std::int64_t>(sizeof(LumPyramid)) - 24;
constexpr std::int64_t widerPointer = static_cast<std::int64_t>(sizeof(void*)) - 4;

LumStatus checkLevelAndRate(int level, Lum32f rate) {
    return firstFailure(checkRate(rate), errorIf(level < 1, lumStatusBadArgument));
}

/// The record with its arrays, which hold nothing yet.
LumPyramid* place(Lum8u* memory, std::size_t levels) {
    Arena arena(memory);
    auto* pyramid = arena.align(alignof(LumPyramid)).allocate<LumPyramid>();
    pyramid->rois = arena.align(8).allocate<LumSize>(levels);
    pyramid->images = arena.skip(16).align(alignof(void*)).allocate<void*>(levels);
    pyramid->rates = arena.skip(8).align(8).allocate<Lum64f>(levels);
    pyramid->steps = arena.skip(16).allocate<Lum32s>(levels);
    return pyramid;
}

} // namespace

LumStatus pyramidGetSize(Lum32s* pyramidSize, Lum32s* bufferSize, int level, LumSize roiSize, Lum32f rate) {
    if (auto s = firstFailure(checkNotNull(pyramidSize, bufferSize), checkSize(roiSize),
                              checkLevelAndRate(level, rate)))
        return s;
    const std::int64_t last = std::min(levelsBelow(roiSize, rate), level);
    *pyramidSize = reportedBytes(44 * last + 112 + widerRecord + widerPointer * (last + 1));
    *bufferSize = reportedBytes(std::int64_t{8} * std::max(roiSize.width, roiSize.height));
    return lumStatusOk;
}

LumStatus pyramidGetSizeL(Lum32s* pyramidSize, Lum32s* bufferSize, int level, LumSizeL roiSize, Lum32f rate) {
    if (auto s = firstFailure(checkNotNull(pyramidSize, bufferSize), checkSize(roiSize),
                              checkSizeIn32Bits(roiSize)))
        return s;
    return pyramidGetSize(pyramidSize, bufferSize, level, in32Bits(roiSize), rate);
}

LumStatus pyramidInit(LumPyramid** pyramid, int level, LumSize roiSize, Lum32f rate, Lum8u* memory,
                      Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(pyramid, memory, buffer), checkSize(roiSize),
                              checkLevelAndRate(level, rate)))
        return s;
    // The sizes of all levels, down to 1 x 1, at any address.
    LumSize size = roiSize;
    std::memcpy(buffer, &size, sizeof(size));
    int last = 0;
    while (size.width > 1 || size.height > 1) {
        size = sizeBelow(size, rate);
        ++last;
        std::memcpy(buffer + last * sizeof(size), &size, sizeof(size));
    }
    last = std::min(last, level);

    LumPyramid* record = place(memory, static_cast<std::size_t>(last) + 1);
    record->state = nullptr;
    record->level = last;
    std::memcpy(record->rois, buffer, (static_cast<std::size_t>(last) + 1) * sizeof(LumSize));
    const Lum64f ratio = 1.0 / static_cast<Lum64f>(rate);
    Lum64f power = 1.0;
    for (int i = 0; i <= last; ++i, power *= ratio) {
        record->rates[i] = power;
        record->images[i] = nullptr;
        record->steps[i] = 0;
    }
    *pyramid = record;
    return lumStatusOk;
}

LumStatus pyramidInitL(LumPyramid** pyramid, int level, LumSizeL roiSize, Lum32f rate, Lum8u* memory,
                       Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(pyramid, memory, buffer), checkSize(roiSize),
                              checkSizeIn32Bits(roiSize)))
        return s;
    return pyramidInit(pyramid, level, in32Bits(roiSize), rate, memory, buffer);
}

} // namespace lum
