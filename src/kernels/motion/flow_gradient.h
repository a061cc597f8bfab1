// Derivatives by the 3x3 stencil with the weights 3, 10, 3 across and -1, 0, 1 along, over 32: of whole levels and of
// sampled windows.
#pragma once

#include <cstddef>
#include <type_traits>

#include "frame/image.h"
#include "lumcv/types.h"

namespace lum::kernels {

/// Derivatives of a whole level. Those of 8u are exact integers, 32 times the derivative.
template <class T> using Derivative = std::conditional_t<std::is_same_v<T, Lum8u>, Lum16s, Lum32f>;
template <class T> inline constexpr float scaleOfDerivative = std::is_same_v<T, Lum8u> ? 0.03125F : 1.0F;

template <class T> struct LevelGradient {
    using Result = Derivative<T>;
    /// Edges replicate. Rows of results have `pitch` elements; `work` holds 2 * (width + 2) of them.
    static void drawScalar(Image<const T> level, LumSize size, Result* dx, Result* dy, std::ptrdiff_t pitch,
                           Result* work);
    static void draw(Image<const T> level, LumSize size, Result* dx, Result* dy, std::ptrdiff_t pitch,
                     Result* work);
};

/// Derivatives of the inner pixels of a window: `size` of them, around which one more pixel exists on all sides of
/// `window`. Single precision, stored as doubles, with copies of the inner pixels in `values`.
void windowGradientScalar(Image<const Lum32f> window, LumSize size, Image<Lum64f> values, Image<Lum64f> dx,
                          Image<Lum64f> dy);
void windowGradient(Image<const Lum32f> window, LumSize size, Image<Lum64f> values, Image<Lum64f> dx,
                    Image<Lum64f> dy);

} // namespace lum::kernels
