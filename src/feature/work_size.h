// Sizes of work memory that must not wrap: sums in double precision, reported as 32 bits.
#pragma once

#include <limits>

#include "frame/arena.h"
#include "frame/convert.h"
#include "lumcv/types.h"

namespace lum {

/// A block begins anywhere, and its pieces at multiples of at most this.
inline constexpr int largestAlignment = 64;

/// Bytes that place(arena) takes from any block. It takes some rows of `width` for each of `taps`; of windows so large
/// that those cannot be counted in 32 bits the result is beyond what is ever reported.
template <class Place> double workBytes(double width, double taps, Place place) {
    constexpr double mostElements = 1 << 27;
    if ((width + taps) * (taps + 8) > mostElements) return std::numeric_limits<double>::max();
    Arena arena(nullptr);
    place(arena);
    return static_cast<double>(arena.used() + largestAlignment);
}

/// At most the largest number of 32 bits: a region whose run needs more has no block of its size and is not run.
inline Lum32s reportedBytes(double bytes) { return truncatedTo32s(bytes); }

} // namespace lum
