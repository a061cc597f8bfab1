#include "distance/fast_marching.h"

#include <cstdint>
#include <cstring>

#include "frame/arena.h"
#include "frame/check.h"
#include "kernels/distance/fast_marching.h"

namespace lum {
namespace {

/// Flags of the pixels of each row, and a row before the first and after the last; then those of the rows.
kernels::SweepFlags clearFlagsIn(Lum8u* buffer, LumSize size) {
    Arena arena(buffer);
    arena.align(32);
    const auto stride = roundedUp(static_cast<std::size_t>(size.width), std::size_t{32});
    const std::size_t rows = static_cast<std::size_t>(size.height) + 2;
    Lum8u* pixels = arena.allocate<Lum8u>(rows * stride);
    Lum8u* rowFlags = arena.allocate<Lum8u>(rows);
    std::memset(pixels, 0, rows * stride);
    std::memset(rowFlags, 0, rows);
    return {.pixels = {pixels + stride, static_cast<std::ptrdiff_t>(stride)}, .rows = rowFlags + 1};
}

} // namespace

LumStatus fastMarching(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize,
                       Lum32f radius, Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(src, dst, buffer), checkSize(roiSize),
                              checkStep(rowBytes<Lum8u>(roiSize.width), srcStep),
                              checkStep(rowBytes<Lum32f>(roiSize.width), dstStep),
                              checkStepAlignment<Lum32f>(dstStep), errorIf(radius < 0, lumStatusBadArgument)))
        return s;
    kernels::fastMarching({src, srcStep}, {dst, dstStep}, roiSize, radius, clearFlagsIn(buffer, roiSize));
    return lumStatusOk;
}

LumStatus fastMarchingGetBufferSize(LumSize roiSize, Lum32s* size) {
    if (auto s = firstFailure(checkNotNull(size), checkSize(roiSize))) return s;
    const std::uint32_t stride = ((static_cast<std::uint32_t>(roiSize.width) + 31) & ~std::uint32_t{31}) | 5;
    *size = static_cast<Lum32s>((static_cast<std::uint32_t>(roiSize.height) + 34) * stride + 40);
    return lumStatusOk;
}

} // namespace lum
