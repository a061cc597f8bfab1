// Dilation and erosion of bit images: the bits under the set cells of a mask are joined by or (dilation) or by and
// (erosion), a word of pixels at a time.
#pragma once

#include <cstddef>

#include "kernels/morph/bit_image.h"
#include "kernels/morph/extended_image.h"
#include "kernels/morph/operation.h"

namespace lum::kernels {

/// Cells row after row, set where not 0, and the cell that is the centre.
struct BitMask {
    const Lum8u* cells;
    std::ptrdiff_t width, height;
    std::ptrdiff_t anchorX, anchorY;
};

struct BitMaskRun {
    BitImage<const Lum8u> src;
    BitImage<Lum8u> dst;
    std::ptrdiff_t width, height;
    BitMask mask;
    ReadableMargins readable;
    /// Outside::repeat or Outside::fill with `value`.
    Outside outside;
    bool value;
    /// Work memory: bitMaskLeastBytes() at least; more of it makes the run faster.
    Lum8u* work;
    std::size_t workBytes;
};

std::size_t bitMaskLeastBytes(std::ptrdiff_t width, const BitMask& mask);

/// The mask has a set cell.
template <MorphOp op> void joinUnderMask(const BitMaskRun& run);

/// Copies pixels. The work memory holds a row.
void copyBits(BitImage<const Lum8u> src, BitImage<Lum8u> dst, std::ptrdiff_t width, std::ptrdiff_t height,
              Lum8u* work);

} // namespace lum::kernels
