// Sums over a region: of its pixels, of their squares and of their squared deviations, over all pixels or
// those that a mask selects, of an image of one channel or of one channel of three.
#pragma once

#include <cstdint>
#include <type_traits>

#include "kernels/pixels.h"

namespace lum::kernels {

/// Integers add up exactly. Floats add up in single precision within a stretch of a row and in double across
/// stretches, in an order that depends on the width alone.
template <class T> using Total = std::conditional_t<std::is_integral_v<T>, std::int64_t, Lum64f>;

template <class T> struct RegionSums {
    /// Selected pixels.
    std::int64_t count;
    Total<T> sum;
    /// Sum of p x p; of (p - 32768) x (p - 32768) in Lum16u.
    Total<T> squares;
};

/// Subtracted from a Lum16u before it is squared, so that it fits a signed product.
inline constexpr int middleOf16u = 32768;

/// Lum8u, Lum16u, Lum32f; channels 1 and 3.
template <class T, int channels> struct SumsOf {
    using PixelsOf = const Pixels<T, channels>&;

    static RegionSums<T> scalar(PixelsOf src, LumSize size);
    static RegionSums<T> vectors(PixelsOf src, LumSize size);

    static RegionSums<T> maskedScalar(PixelsOf src, Image<const Lum8u> mask, LumSize size);
    static RegionSums<T> masked(PixelsOf src, Image<const Lum8u> mask, LumSize size);

    /// The squares are 0.
    static RegionSums<T> maskedWithoutSquares(PixelsOf src, Image<const Lum8u> mask, LumSize size);
};

/// Sum of (p - centre) x (p - centre).
template <int channels> struct DeviationsOf {
    using PixelsOf = const Pixels<Lum32f, channels>&;

    static Lum64f scalar(PixelsOf src, LumSize size, Lum32f centre);
    static Lum64f vectors(PixelsOf src, LumSize size, Lum32f centre);

    static Lum64f maskedScalar(PixelsOf src, Image<const Lum8u> mask, LumSize size, Lum32f centre);
    static Lum64f masked(PixelsOf src, Image<const Lum8u> mask, LumSize size, Lum32f centre);
};

} // namespace lum::kernels
