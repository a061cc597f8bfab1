#include "kernels/morph/weighted.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "frame/instances.h"
#include "frame/lanes_convert.h"
#include "kernels/morph/blocks.h"

namespace lum::kernels {
namespace {

template <class T> WeightOf<T> weightAt(const Weights<T>& weights, std::ptrdiff_t x, std::ptrdiff_t y) {
    WeightOf<T> weight;
    std::memcpy(&weight, static_cast<const Lum8u*>(weights.cells) + (y * weights.width + x) * sizeof weight,
                sizeof weight);
    return weight;
}

Lum32s weighted(Lum8u pixel, Lum32s weight) {
    return static_cast<Lum32s>(static_cast<std::uint32_t>(weight) + pixel);
}
Lum32f weighted(Lum32f pixel, Lum32f weight) { return weight + pixel; }

/// What a window starts from.
template <MorphOp op, class T> constexpr WeightOf<T> start = weakestFinite<op, T>;

template <MorphOp op, class T>
T pixelAt(Image<const T> src, std::ptrdiff_t width, std::ptrdiff_t height, const Weights<T>& weights,
          std::ptrdiff_t x, std::ptrdiff_t y) {
    WeightOf<T> value = start<op, T>;
    for (std::ptrdiff_t j = 0; j < weights.height; ++j) {
        const T* const row = src.row(std::clamp<std::ptrdiff_t>(y + j - weights.anchorY, 0, height - 1));
        for (std::ptrdiff_t i = 0; i < weights.width; ++i) {
            const T pixel = row[std::clamp<std::ptrdiff_t>(x + i - weights.anchorX, 0, width - 1)];
            value = stronger<op>(value, weighted(pixel, weightAt(weights, i, j)));
        }
    }
    if constexpr (std::is_same_v<T, Lum8u>) value = std::clamp(value, 0, 255);
    return static_cast<T>(value);
}

/// Bytes are added in 16 bits. A weight beyond 255 in either direction does what 255 does, as long as its sums do not
/// wrap.
constexpr Lum32s largestUseful = 255;
bool neverWraps(const Weights<Lum8u>& weights) {
    for (std::ptrdiff_t i = 0; i < weights.width * weights.height; ++i)
        if (weightAt(weights, i, 0) > INT32_MAX - 255) return false;
    return true;
}
bool neverWraps(const Weights<Lum32f>&) { return true; }

template <int N> LUM_LANE auto lanesOf(const Lum8u* place) { return widen<Lum16s>(load<N>(place)); }
template <int N> LUM_LANE auto lanesOf(const Lum32f* place) { return load<N>(place); }
template <int N> LUM_LANE auto lanesOf(Lum32s weight) {
    return broadcast<N>(static_cast<Lum16s>(std::clamp(weight, -largestUseful, largestUseful)));
}
template <int N> LUM_LANE auto lanesOf(Lum32f weight) { return broadcast<N>(weight); }
template <int N> LUM_LANE void putLanes(Block<Lum16s, N> value, Lum8u* place) {
    store(narrowSaturated<Lum8u>(value), place);
}
template <int N> LUM_LANE void putLanes(Block<Lum32f, N> value, Lum32f* place) { store(value, place); }

/// Pixels x .. x + N - 1, whose windows lie in the region from left to right.
template <MorphOp op, int N, class T>
LUM_LANE void blockAt(Image<const T> src, std::ptrdiff_t height, const Weights<T>& weights, std::ptrdiff_t x,
                      std::ptrdiff_t y, T* dst) {
    auto value = lanesOf<N>(start<op, T>);
    for (std::ptrdiff_t j = 0; j < weights.height; ++j) {
        const T* const row =
            src.row(std::clamp<std::ptrdiff_t>(y + j - weights.anchorY, 0, height - 1)) + x - weights.anchorX;
        for (std::ptrdiff_t i = 0; i < weights.width; ++i)
            value = stronger<op>(value, lanesOf<N>(weightAt(weights, i, j)) + lanesOf<N>(row + i));
    }
    putLanes(value, dst + x);
}

} // namespace

template <MorphOp op, class T>
void strongestWeightedScalar(Image<const T> src, Image<T> dst, std::ptrdiff_t width, std::ptrdiff_t height,
                             const Weights<T>& weights) {
    for (std::ptrdiff_t y = 0; y < height; ++y)
        for (std::ptrdiff_t x = 0; x < width; ++x)
            dst.row(y)[x] = pixelAt<op>(src, width, height, weights, x, y);
}

template <MorphOp op, class T>
void strongestWeighted(Image<const T> src, Image<T> dst, std::ptrdiff_t width, std::ptrdiff_t height,
                       const Weights<T>& weights) {
    constexpr int N = 16;
    const std::ptrdiff_t first = weights.anchorX;
    const std::ptrdiff_t last = width - (weights.width - 1 - weights.anchorX);
    if (last - first < N || !neverWraps(weights))
        return strongestWeightedScalar<op>(src, dst, width, height, weights);
    for (std::ptrdiff_t y = 0; y < height; ++y) {
        T* const row = dst.row(y);
        // 16 pixels per iteration; tail: overlapping last vector. Then the windows that leave the region.
        std::ptrdiff_t x = first;
        for (; x <= last - N; x += N) blockAt<op, N>(src, height, weights, x, y, row);
        if (x < last) blockAt<op, N>(src, height, weights, last - N, y, row);
        for (x = 0; x < first; ++x) row[x] = pixelAt<op>(src, width, height, weights, x, y);
        for (x = last; x < width; ++x) row[x] = pixelAt<op>(src, width, height, weights, x, y);
    }
}

LUM_INSTANCES(strongestWeighted, (MorphOp::dilate, Lum8u), (MorphOp::erode, Lum8u), (MorphOp::dilate, Lum32f),
              (MorphOp::erode, Lum32f));
LUM_INSTANCES(strongestWeightedScalar, (MorphOp::dilate, Lum8u), (MorphOp::erode, Lum8u),
              (MorphOp::dilate, Lum32f), (MorphOp::erode, Lum32f));

} // namespace lum::kernels
