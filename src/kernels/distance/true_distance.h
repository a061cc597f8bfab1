// The exact Euclidean distance transform: a pass along the columns, and the lower envelope of parabolas in every row.
#pragma once

#include "frame/image.h"
#include "lumcv.h"

namespace lum::kernels {

/// Elements on either side of a row that a search for the nearest pixel reads; there is none in short rows.
constexpr int searchMargin = 112;
constexpr int marginOf(int width) { return width < 128 ? 0 : searchMargin; }

/// The tables of the rows, of a width of w elements each.
struct EnvelopeTables {
    /// 0.5 / i; element 0 is not used.
    float* halfInverse;
    /// Squared distances along the columns, with marginOf() elements that may be written on either side.
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
