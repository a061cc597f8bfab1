// Standard deviation of a rectangle placed at every pixel, from the corners of two integral images: the
// scalar form of each kernel and the vector form with the same result.
#pragma once

#include "frame/image.h"

namespace lum::kernels {

enum class Shape { upright, tilted };

/// An integral image as the rectangle's four corners see it when the rectangle is placed at pixel (0, 0).
/// Upright: bottom right, top right, top left, bottom left. Tilted: top, right, bottom, left.
template <class T> struct Corners {
    Image<const T> a;
    Image<const T> b;
    Image<const T> c;
    Image<const T> d;
};

/// `pixels` is the number of pixels in the rectangle, exact; the deviation is multiplied by `scale`, a half
/// is added, and the result truncated and saturated.
template <Shape shape>
void scaledDeviationScalar(const Corners<Lum32s>& sum, const Corners<Lum32s>& square, Image<Lum32s> dst,
                           LumSize size, double pixels, double scale);
template <Shape shape>
void scaledDeviation(const Corners<Lum32s>& sum, const Corners<Lum32s>& square, Image<Lum32s> dst,
                     LumSize size, double pixels, double scale);

/// Deviation in single precision. Sum is Lum32s or Lum32f.
template <Shape shape, class Sum>
void deviationScalar(const Corners<Sum>& sum, const Corners<Lum64f>& square, Image<Lum32f> dst, LumSize size,
                     double pixels);
template <Shape shape, class Sum>
void deviation(const Corners<Sum>& sum, const Corners<Lum64f>& square, Image<Lum32f> dst, LumSize size,
               double pixels);

} // namespace lum::kernels
