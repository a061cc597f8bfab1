// Reductions of three interleaved channels to one. Lum8u, Lum16u, Lum32f.
#pragma once

#include "frame/image.h"
#include "lumcv/types.h"

namespace lum::kernels {

/// The largest channel. Of floats that are no numbers, a later channel takes precedence over an earlier one.
template <class T> void largestOfThreeScalar(Image<const T> src, Image<T> dst, LumSize size);
template <class T> void largestOfThree(Image<const T> src, Image<T> dst, LumSize size);

/// 8u ((r + g + b) x 1365 + 2048) >> 12; 16u (r + g + b + 1) / 3 in integers; 32f ((r + g) + b) x 1/3 in single
/// precision.
template <class T> void meanOfThreeScalar(Image<const T> src, Image<T> dst, LumSize size);
template <class T> void meanOfThree(Image<const T> src, Image<T> dst, LumSize size);

/// sqrt((r r + g g) + b b) x 0.57735026 in single precision; integers rounded to nearest even and saturated.
template <class T> void rootOfSquaresScalar(Image<const T> src, Image<T> dst, LumSize size);
template <class T> void rootOfSquares(Image<const T> src, Image<T> dst, LumSize size);

} // namespace lum::kernels
