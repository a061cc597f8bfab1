// Summed-area images of rectangles turned by 45 degrees: the scalar form of each kernel and the vector form
// with the same result.
#pragma once

#include "frame/image.h"

namespace lum::kernels {

/// dst has two columns and two rows more than the source of the given size; its first two rows are `value`.
/// Lum32s (wraps), Lum32f (the sum of pixels is exact, the combination in single precision).
template <class Sum>
void tiltedIntegralScalar(Image<const Lum8u> src, Image<Sum> dst, LumSize size, Sum value);
template <class Sum> void tiltedIntegral(Image<const Lum8u> src, Image<Sum> dst, LumSize size, Sum value);

/// The same of the pixels and, in sqr, of their squares. <Lum32s, Lum32s>, <Lum32s, Lum64f>, <Lum32f,
/// Lum64f>.
template <class Sum, class Square>
void tiltedSqrIntegralScalar(Image<const Lum8u> src, Image<Sum> dst, Image<Square> sqr, LumSize size,
                             Sum value, Square sqrValue);
template <class Sum, class Square>
void tiltedSqrIntegral(Image<const Lum8u> src, Image<Sum> dst, Image<Square> sqr, LumSize size, Sum value,
                       Square sqrValue);

} // namespace lum::kernels
