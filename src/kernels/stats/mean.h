// Sums over a region: of its pixels, of their squares and of their squared deviations, over all pixels or
// those that a mask selects, of an image of one channel or of one channel of three.
//
// `channels` is 1 or 3; of three, src is the image seen from the channel's element in the first pixel.
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/image.h"

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

/// Lum8u, Lum16u, Lum32f; as are all.
template <class T, int channels> RegionSums<T> sumsScalar(Image<const T> src, LumSize size);
template <class T, int channels> RegionSums<T> sums(Image<const T> src, LumSize size);

template <class T, int channels>
RegionSums<T> maskedSumsScalar(Image<const T> src, Image<const Lum8u> mask, LumSize size);
template <class T, int channels>
RegionSums<T> maskedSums(Image<const T> src, Image<const Lum8u> mask, LumSize size);

/// The same without the squares, which are 0.
template <class T, int channels>
RegionSums<T> maskedSum(Image<const T> src, Image<const Lum8u> mask, LumSize size);

/// Sum of (p - centre) x (p - centre).
template <int channels> Lum64f squaredDeviationsScalar(Image<const Lum32f> src, LumSize size, Lum32f centre);
template <int channels> Lum64f squaredDeviations(Image<const Lum32f> src, LumSize size, Lum32f centre);

template <int channels>
Lum64f maskedSquaredDeviationsScalar(Image<const Lum32f> src, Image<const Lum8u> mask, LumSize size,
                                     Lum32f centre);
template <int channels>
Lum64f maskedSquaredDeviations(Image<const Lum32f> src, Image<const Lum8u> mask, LumSize size, Lum32f centre);

} // namespace lum::kernels
