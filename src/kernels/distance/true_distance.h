// The exact Euclidean distance transform: a pass along the columns, and the lower envelope of parabolas in every row.
#pragma once

#include "frame/image.h"
#include "lumcv.h"

namespace lum::kernels {

/// The tables of the rows, of a width of w elements each.
struct EnvelopeTables {
    /// 0.5 / i; element 0 is not used.
    float* halfInverse;
    /// Squared distances along the columns.
    float* squared;
    /// The columns of the envelope's parabolas, and where each begins: one element more.
    Lum32s* vertex;
    float* bound;
    /// Distances in pixels to the nearest 0 above.
    Lum32s* above;
};

/// Of every pixel the distance to the nearest pixel that is 0.
void trueDistanceScalar(Image<const Lum8u> src, Image<float> dst, LumSize size, const EnvelopeTables& tables);
void trueDistance(Image<const Lum8u> src, Image<float> dst, LumSize size, const EnvelopeTables& tables);

} // namespace lum::kernels
