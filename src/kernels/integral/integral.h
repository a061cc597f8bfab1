// Summed-area images: the scalar form of each kernel and the vector form with the same result.
#pragma once

#include "frame/image.h"

namespace lum::kernels {

/// dst has a column and a row more than the source of the given size; its first row and first column are
/// `value`. The row's sum is an exact integer that is converted and added to the row above. Lum32s (wraps),
/// Lum32f.
template <class Sum> void integralScalar(Image<const Lum8u> src, Image<Sum> dst, LumSize size, Sum value);
template <class Sum> void integral(Image<const Lum8u> src, Image<Sum> dst, LumSize size, Sum value);

/// The same of the pixels and, in sqr, of their squares. <Lum32s, Lum32s>, <Lum32s, Lum64f>, <Lum32f,
/// Lum64f>.
template <class Sum, class Square>
void sqrIntegralScalar(Image<const Lum8u> src, Image<Sum> dst, Image<Square> sqr, LumSize size, Sum value,
                       Square sqrValue);
template <class Sum, class Square>
void sqrIntegral(Image<const Lum8u> src, Image<Sum> dst, Image<Square> sqr, LumSize size, Sum value,
                 Square sqrValue);

/// The row's sum is a float that rounds at each pixel, from left to right; the start value is 0.
void integralOfFloatsScalar(Image<const Lum32f> src, Image<Lum32f> dst, LumSize size);
void integralOfFloats(Image<const Lum32f> src, Image<Lum32f> dst, LumSize size);

} // namespace lum::kernels
