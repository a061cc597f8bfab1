// Watersheds by flooding: one queue of pixels a grey level (Vincent and Soille, Watersheds in digital spaces, IEEE PAMI
// 13, 1991; Meyer, Color image segmentation, 1992).
#pragma once

#include <cstddef>

#include "frame/image.h"
#include "kernels/segment/flood_fill.h"

namespace lum::kernels {

/// Where boundaries between regions are drawn.
struct FloodBoundaries {
    enum Rule { none, four, eight };
    /// Neighbours of a marker that turn it into a boundary, before the flood.
    Rule atSeeds;
    /// Neighbours of a flooded pixel that have a say in its label.
    Rule atFlood;
};

/// Bytes of the block, whose address needs no alignment.
template <class Marker> std::size_t floodBytes(LumSize size);

/// Labels every pixel that the markers reach; Lum8u, Lum16u.
template <class Marker>
void floodWatershed(Image<const Lum8u> relief, Image<Marker> markers, LumSize size, Connected connected,
                    FloodBoundaries boundaries, unsigned char* block);

} // namespace lum::kernels
