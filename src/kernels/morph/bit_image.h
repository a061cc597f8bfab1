// Images of one bit a pixel: bit 0 of a byte is the first of its eight pixels.
#pragma once

#include <cstddef>

#include "frame/image.h"
#include "lumcv/types.h"

namespace lum::kernels {

/// The first pixel of a region is bit 0 to 7 of the byte `bytes.first`. Byte is Lum8u or const Lum8u.
template <class Byte> struct BitImage {
    Image<Byte> bytes;
    int bit;

    /// From any bit offset at or above 0.
    static BitImage at(Byte* first, std::ptrdiff_t step, std::ptrdiff_t bitOffset) {
        return {{first + (bitOffset >> 3), step}, static_cast<int>(bitOffset & 7)};
    }
};

} // namespace lum::kernels
