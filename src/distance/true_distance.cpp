#include "distance/true_distance.h"

#include <algorithm>
#include <cstdint>

#include "frame/arena.h"
#include "frame/check.h"
#include "kernels/distance/true_distance.h"

namespace lum {
namespace {

/// Five rows of tables and the margins of one, which lie within the thirteen rows of the buffer's size.
kernels::EnvelopeTables tablesIn(Lum8u* buffer, int width) {
    Arena arena(buffer);
    arena.align(16);
    const auto count = static_cast<std::size_t>(width);
    const auto margin = static_cast<std::size_t>(kernels::marginOf(width));
    return {.halfInverse = arena.allocate<float>(count),
            .squared = arena.allocate<float>(count + 2 * margin) + margin,
            .vertex = arena.allocate<Lum32s>(count),
            .bound = arena.allocate<float>(count + 1),
            .above = arena.allocate<Lum32s>(count)};
}

} // namespace

LumStatus trueDistanceTransform(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize,
                                Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(src, dst, buffer), checkSize(roiSize),
                              checkStep(rowBytes<Lum8u>(roiSize.width), srcStep),
                              checkStep(rowBytes<Lum32f>(roiSize.width), dstStep),
                              checkStepAlignment<Lum32f>(dstStep)))
        return s;
    kernels::trueDistance({src, srcStep}, {dst, dstStep}, roiSize, tablesIn(buffer, roiSize.width));
    return lumStatusOk;
}

LumStatus trueDistanceTransformGetBufferSize(LumSize roiSize, Lum32s* size) {
    if (auto s = firstFailure(checkNotNull(size), checkSize(roiSize))) return s;
    const auto inFours = [](Lum32s count) {
        return (static_cast<std::uint32_t>(count) + 3) & ~std::uint32_t{3};
    };
    *size = static_cast<Lum32s>(52 * std::max(inFours(roiSize.width), inFours(roiSize.height)) + 84);
    return lumStatusOk;
}

} // namespace lum
