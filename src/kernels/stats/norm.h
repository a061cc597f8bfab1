// Norms of the pixels that a mask selects: the scalar form and the vector form with the same result.
#pragma once

#include "kernels/pixels.h"

namespace lum::kernels {

enum class NormKind { inf, l1, l2 };

/// Whose norm: the first image's, that of the difference of two images, or the latter and the second image's.
enum class NormOf { image, difference, differenceAndSecond };

/// Inf: the largest magnitude. L1: the sum of magnitudes. L2: the sum of squares, without its root. Integer totals
/// are exact before they become a double. In 32f NaN is never the largest; a row is summed in single precision, rows
/// in double, and the total is rounded to a float.
struct NormTotals {
    double first = 0;  ///< of the image, or of the difference
    double second = 0; ///< of the second image; 0 where not asked for
};

/// Lum8u, Lum16u, Lum32f; channels 1 and 3. The second image is looked at only for a difference; its channel is that
/// of the first.
template <NormKind kind, class T, int channels> struct MaskedTotals {
    using PixelsOf = const Pixels<T, channels>&;

    static NormTotals scalar(NormOf of, PixelsOf first, PixelsOf second, Image<const Lum8u> mask,
                             LumSize size);
    static NormTotals vectors(NormOf of, PixelsOf first, PixelsOf second, Image<const Lum8u> mask,
                              LumSize size);
};

} // namespace lum::kernels
