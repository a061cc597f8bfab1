// Regions grown from seeds in the order of the differences between neighbouring pixels (Adams and Bischof, Seeded
// region growing, IEEE PAMI 16, 1994).
#pragma once

#include <cstddef>

#include "frame/image.h"
#include "kernels/segment/flood_fill.h"

namespace lum::kernels {

/// Neighbours of a pixel that make it a boundary.
enum class GrowthBoundaries { none, four, eight };

/// Bytes of the block, whose address needs no alignment; at most 13 a pixel and 103 more.
std::size_t growthBytes(LumSize size);

/// Labels every inner pixel that the seeds reach, and sets the outermost ones to 255; where no seed touches an
/// unlabelled pixel nothing is written. One channel and three.
template <int channels>
void growRegions(Image<const Lum8u> src, Image<Lum8u> markers, LumSize size, Connected connected,
                 GrowthBoundaries boundaries, unsigned char* block);

} // namespace lum::kernels
