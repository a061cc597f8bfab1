// Differences of two images, of which one is the destination itself.
#pragma once

#include <cstddef>

#include "frame/image.h"
#include "lumcv/types.h"

namespace lum::kernels {

/// What becomes of differences below 0 that the element type can hold.
enum class Negatives { keep, clear };

/// dst = minuend - subtrahend, whose rows may be those of dst. Integers saturate. Floats that are not below 0 stay as they
/// are, a NaN and a negated zero too. Lum8u, Lum16u, Lum16s, Lum32f.
template <class T> struct Subtraction {
    static void vectors(Image<const T> minuend, Image<const T> subtrahend, Image<T> dst,
                        std::ptrdiff_t rowElements, std::ptrdiff_t rows, Negatives negatives);
    static void scalar(Image<const T> minuend, Image<const T> subtrahend, Image<T> dst,
                       std::ptrdiff_t rowElements, std::ptrdiff_t rows, Negatives negatives);
};

} // namespace lum::kernels
