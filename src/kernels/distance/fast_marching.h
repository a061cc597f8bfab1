// Distances by sweeps of an upwind update.
#pragma once

#include "frame/image.h"
#include "lumcv.h"

namespace lum::kernels {

/// What tells the later sweeps where to look. One row before the first and one after the last can be written.
struct SweepFlags {
    /// Per pixel, in which passes it is looked at: bits of SweepPass.
    Image<Lum8u> pixels;
    /// Per row, whether it is looked at at all.
    Lum8u* rows;
};

/// The distances of every pixel; those outside the mask only for a radius above 0. The flags are clear.
void fastMarching(Image<const Lum8u> src, Image<float> dst, LumSize size, float radius,
                  const SweepFlags& flags);

} // namespace lum::kernels
