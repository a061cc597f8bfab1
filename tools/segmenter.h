// Pictures divided into regions: seeds where the picture is smooth, and the watersheds that they grow to.
#pragma once

#include <vector>

#include "picture.h"

namespace tools {

/// How strongly a colour picture changes at each pixel, averaged over its neighbours.
Picture gradientOf(const Picture& colour);

/// Places spread over the relief, each where it is lowest in its part of the picture.
std::vector<LumPoint> spreadSeeds(const Picture& relief, int count);

/// Most seeds that a picture can have: each needs a label, and a pixel of its own.
int mostSeeds(LumSize size);

/// The watersheds of the relief around the seeds, numbered from 1 in their order; every pixel is in one.
Plane<Lum16u> watersheds(const Picture& relief, const std::vector<LumPoint>& seeds);

/// Lines of 65535 between the regions.
void drawBoundaries(Plane<Lum16u>& labels);

/// Each region in its mean colour, boundaries dark. Labels run from 1 to `regions`; all others are boundaries.
Picture paintedRegions(const Picture& colour, const Plane<Lum16u>& labels, int regions);

} // namespace tools
