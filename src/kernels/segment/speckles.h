// Small regions of similar pixels, written over.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/image.h"

namespace lum::kernels {

/// Bytes of the block of writeOverSpeckles(): at most 12 a pixel.
std::size_t speckleBytes(LumSize size);

/// What a speckle is.
template <class T> struct SpeckleRule {
    /// Belongs to no region, and is written over those that are small enough.
    T speckleValue;
    T maxDifference;
    std::int64_t maxSize;
};

/// Regions are those of neighbours that share an edge and differ by at most rule.maxDifference. The block lies on a
/// multiple of 4 bytes. Lum8u, Lum16u, Lum16s, Lum32f.
template <class T>
void writeOverSpeckles(Image<T> image, LumSize size, const SpeckleRule<T>& rule, unsigned char* block);

} // namespace lum::kernels
