// Watersheds by sweeps over the image until nothing changes any more: every pixel takes the label of the marker that it
// reaches at the lowest cost (Danielsson, Euclidean distance mapping, Computer Graphics and Image Processing 14, 1980;
// Sethian, A fast marching level set method, PNAS 93, 1996, for the step between two neighbours).
#pragma once

#include <cstddef>

#include "frame/image.h"
#include "kernels/segment/raster_cost.h"

namespace lum::kernels {

/// Neighbours, and what a hop to them counts.
enum class Hops { eight, four, chamfer, eikonal };

/// Where boundaries between regions are drawn in the end.
enum class RasterBoundaries { none, four, eight };

/// Bytes of the block, which lies on a multiple of 4 bytes.
template <class Cost> std::size_t rasterBytes(LumSize size);

/// Labels every pixel. IntegerCost with Lum8u and Lum16u, FloatCost with Lum16u.
template <class Cost, class Marker>
void rasterWatershed(Image<const typename Cost::Relief> relief, Image<Marker> markers, LumSize size,
                     Hops hops, RasterBoundaries boundaries, unsigned char* block);

} // namespace lum::kernels
