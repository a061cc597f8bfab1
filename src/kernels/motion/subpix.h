// Bilinear interpolation: the weights, one value of each kind, and patches in a scalar and a vector form.
#pragma once

#include <algorithm>
#include <cstddef>
#include <type_traits>

#include "frame/convert.h"
#include "frame/image.h"
#include "lumcv/types.h"

namespace lum::kernels {

/// 8u sources with integer results are sampled in fixed point, all others in single precision.
template <class Source, class Result>
inline constexpr bool sampledInFixedPoint = std::is_same_v<Source, Lum8u>&& std::is_integral_v<Result>;

/// Weights of two neighbours, in single precision.
struct FloatPair {
    float first;
    float second;
};
/// Weights of the pixel, of the one at its right, and of the two below these.
struct FloatQuad {
    float w00, w01, w10, w11;
};

/// How a fixed-point sum becomes a result: shifts modulo 32, as processors take them.
struct FixedScale {
    int half;
    int shift;

    explicit FixedScale(int scaleFactor)
        : half(static_cast<int>(1U << ((scaleFactor + 13U) & 31U))),
          shift(static_cast<int>((scaleFactor + 14U) & 31U)) {}
};
struct FixedPair {
    int first;
    int second;
    FixedScale scale;
};
struct FixedQuad {
    int w00, w01, w10, w11;
    FixedScale scale;
};

template <class Source, class Result>
using PairOf = std::conditional_t<sampledInFixedPoint<Source, Result>, FixedPair, FloatPair>;
template <class Source, class Result>
using QuadOf = std::conditional_t<sampledInFixedPoint<Source, Result>, FixedQuad, FloatQuad>;

/// A sum of products below 2^22, rounded and scaled.
template <class Result> Result scaledFixed(int sum, FixedScale scale) {
    const auto rounded = static_cast<int>(static_cast<unsigned>(sum) + static_cast<unsigned>(scale.half));
    return saturated<Result>(rounded >> scale.shift);
}

/// A sum in single precision as a result: 16u to nearest even, saturated; 64f is the same value.
template <class Result> Result resultOf(float sum) {
    if constexpr (std::is_floating_point_v<Result>)
        return sum;
    else
        return nearestEven<Result>(sum);
}

template <class Result, class Source> Result blended(Source first, Source second, const FloatPair& weights) {
    return resultOf<Result>(weights.first * static_cast<float>(first) +
                            weights.second * static_cast<float>(second));
}
template <class Result> Result blended(Lum8u first, Lum8u second, const FixedPair& weights) {
    return scaledFixed<Result>(weights.first * first + weights.second * second, weights.scale);
}

/// The pixel at `above`, and those at its right and below it.
template <class Result, class Source>
Result blended(const Source* above, const Source* below, const FloatQuad& weights) {
    return resultOf<Result>(
        ((weights.w00 * static_cast<float>(above[0]) + weights.w01 * static_cast<float>(above[1])) +
         weights.w10 * static_cast<float>(below[0])) +
        weights.w11 * static_cast<float>(below[1]));
}
template <class Result> Result blended(const Lum8u* above, const Lum8u* below, const FixedQuad& weights) {
    const int sum =
        weights.w00 * above[0] + weights.w01 * above[1] + weights.w10 * below[0] + weights.w11 * below[1];
    return scaledFixed<Result>(sum, weights.scale);
}

/// A pixel that is both neighbours of a pair in one direction and in the other.
template <class Result, class Source> Result cornerOf(Source pixel, const FloatPair& weights) {
    return resultOf<Result>(static_cast<float>(pixel) * (weights.first + weights.second));
}
template <class Result> Result cornerOf(Lum8u pixel, const FixedPair& weights) {
    return scaledFixed<Result>(16384 * pixel, weights.scale);
}

/// 8u and 16u results of 8u; 16u of 16u; 32f of 8u, 16u and 32f; 64f, in single precision nevertheless, of 8u, 16u, 16s
/// and 32f.
template <class Source, class Result> struct Sampling {
    using Pair = PairOf<Source, Result>;
    using Quad = QuadOf<Source, Result>;

    /// A patch whose pixels, and those at their right and below, lie in the source.
    static void patchScalar(Image<const Source> src, Image<Result> dst, LumSize size, const Quad& weights);
    static void patch(Image<const Source> src, Image<Result> dst, LumSize size, const Quad& weights);

    /// A row interpolated along itself; of `count` results the last one reads pixel `count`.
    static void rowScalar(const Source* src, Result* dst, std::ptrdiff_t count, const Pair& weights);
    static void row(const Source* src, Result* dst, std::ptrdiff_t count, const Pair& weights);
};

} // namespace lum::kernels
