#include "kernels/motion/subpix.h"

#include "frame/instances.h"
#include "frame/lanes.h"
#include "frame/lanes_convert.h"
#include "frame/lanes_products.h"
#include "frame/lanes_reduce.h"

namespace lum::kernels {
namespace {

/// Results of one step: two vectors of floats in the build of the fewest registers, which leaves them room.
constexpr int blockOfResults = 8;
constexpr int smallBlock = 4;

template <int N, class Source> LUM_LANE Block<float, N> floatsAt(const Source* place) {
    if constexpr (std::is_same_v<Source, Lum32f>)
        return load<N>(place);
    else
        return toFloat(load<N>(place));
}

/// Neighbours as pairs of 16 bits, the left one first.
template <int N> LUM_LANE Block<std::int16_t, 2 * N> pairsAt(const Lum8u* place) {
    return widen<std::int16_t>(interleave(load<N>(place), load<N>(place + 1)));
}
template <int N> LUM_LANE Block<std::int16_t, 2 * N> weightPairs(int first, int second) {
    const unsigned pair = (static_cast<unsigned>(second) << 16) | (static_cast<unsigned>(first) & 0xFFFFU);
    return bitsAs<std::int16_t>(broadcast<N>(static_cast<std::int32_t>(pair)));
}

template <class Result, int N> LUM_LANE void storeSums(Block<float, N> sums, Result* place) {
    if constexpr (std::is_same_v<Result, Lum32f>)
        store(sums, place);
    else if constexpr (std::is_same_v<Result, Lum64f>)
        store(toDouble(sums), place);
    else
        store(
            narrowSaturated<Result>(nearestEven(min(max(sums, broadcast<N>(0.0F)), broadcast<N>(65535.0F)))),
            place);
}
template <class Result, int N>
LUM_LANE void storeSums(Block<std::int32_t, N> sums, FixedScale scale, Result* place) {
    store(narrowSaturated<Result>((sums + broadcast<N>(scale.half)) >> scale.shift), place);
}

/// The four weights in vectors, and a block of results from them: each row of the source is read once, for the results that
/// it lies below, and for what it adds to the next ones.
template <int N, class Quad> struct QuadBlock;

template <int N> struct QuadBlock<N, FloatQuad> {
    Block<float, N> w00, w01, w10, w11;

    explicit QuadBlock(const FloatQuad& w)
        : w00(broadcast<N>(w.w00)),
          w01(broadcast<N>(w.w01)),
          w10(broadcast<N>(w.w10)),
          w11(broadcast<N>(w.w11)) {}
    template <class Source> LUM_LANE Block<float, N> above(const Source* row) const {
        return w00 * floatsAt<N>(row) + w01 * floatsAt<N>(row + 1);
    }
    template <class Source, class Result>
    LUM_LANE Block<float, N> draw(Block<float, N> sums, const Source* row, Result* dst) const {
        const auto left = floatsAt<N>(row);
        const auto right = floatsAt<N>(row + 1);
        storeSums((sums + w10 * left) + w11 * right, dst);
        return w00 * left + w01 * right;
    }
};

template <int N> struct QuadBlock<N, FixedQuad> {
    Block<std::int16_t, 2 * N> upper, lower;
    FixedScale scale;

    explicit QuadBlock(const FixedQuad& w)
        : upper(weightPairs<N>(w.w00, w.w01)), lower(weightPairs<N>(w.w10, w.w11)), scale(w.scale) {}
    LUM_LANE Block<std::int32_t, N> above(const Lum8u* row) const {
        return multiplyAddPairs(pairsAt<N>(row), upper);
    }
    template <class Result>
    LUM_LANE Block<std::int32_t, N> draw(Block<std::int32_t, N> sums, const Lum8u* row, Result* dst) const {
        const auto pairs = pairsAt<N>(row);
        storeSums(sums + multiplyAddPairs(pairs, lower), scale, dst);
        return multiplyAddPairs(pairs, upper);
    }
};

template <int N, class Pair> struct PairBlock;

template <int N> struct PairBlock<N, FloatPair> {
    Block<float, N> first, second;

    explicit PairBlock(const FloatPair& w) : first(broadcast<N>(w.first)), second(broadcast<N>(w.second)) {}
    template <class Source, class Result> LUM_LANE void draw(const Source* src, Result* dst) const {
        storeSums(first * floatsAt<N>(src) + second * floatsAt<N>(src + 1), dst);
    }
};

template <int N> struct PairBlock<N, FixedPair> {
    Block<std::int16_t, 2 * N> pair;
    FixedScale scale;

    explicit PairBlock(const FixedPair& w) : pair(weightPairs<N>(w.first, w.second)), scale(w.scale) {}
    template <class Result> LUM_LANE void draw(const Lum8u* src, Result* dst) const {
        storeSums(multiplyAddPairs(pairsAt<N>(src), pair), scale, dst);
    }
};

/// Rows of a patch that blocks go down through, before those at their right do. Bytes are pairs of words by one operation: in
/// fixed point a row is read twice rather than carried, which takes registers.
template <class Source, class Result> constexpr int rowsOfBand = sampledInFixedPoint<Source, Result> ? 1 : 16;

template <int N, class Source, class Result>
void patchOfBlocks(Image<const Source> src, Image<Result> dst, LumSize size,
                   const QuadOf<Source, Result>& weights) {
    const QuadBlock<N, QuadOf<Source, Result>> block(weights);
    for (int first = 0, end = 0; first < size.height; first = end) {
        constexpr int most = rowsOfBand<Source, Result>;
        end = first + std::min(size.height - first, most);
        const Image<const Source> below{src.row(std::ptrdiff_t{first} + 1), src.step};
        const Image<Result> results{dst.row(first), dst.step};
        const auto goDown = [&](std::ptrdiff_t x) LUM_INLINED {
            auto sums = block.above(src.row(first) + x);
            for (std::ptrdiff_t y = 0; y < (most == 1 ? 1 : end - first); ++y)
                sums = block.draw(sums, below.row(y) + x, results.row(y) + x);
        };
        for (std::ptrdiff_t x = 0; x <= size.width - N; x += N) goDown(x);
        // tail: overlapping last vector
        if (size.width % N != 0) goDown(size.width - N);
    }
}

template <int N, class Source, class Result>
void rowOfBlocks(const Source* src, Result* dst, std::ptrdiff_t count,
                 const PairOf<Source, Result>& weights) {
    const PairBlock<N, PairOf<Source, Result>> block(weights);
    std::ptrdiff_t x = 0;
    for (; x <= count - N; x += N) block.draw(src + x, dst + x);
    // tail: overlapping last vector
    x = count - N;
    if (count % N != 0) block.draw(src + x, dst + x);
}

} // namespace

template <class Source, class Result>
void Sampling<Source, Result>::patchScalar(Image<const Source> src, Image<Result> dst, LumSize size,
                                           const Quad& weights) {
    for (int y = 0; y < size.height; ++y) {
        const Source* above = src.row(y);
        const Source* below = src.row(std::ptrdiff_t{y} + 1);
        Result* row = dst.row(y);
        for (std::ptrdiff_t x = 0; x < size.width; ++x)
            row[x] = blended<Result>(above + x, below + x, weights);
    }
}

template <class Source, class Result>
void Sampling<Source, Result>::patch(Image<const Source> src, Image<Result> dst, LumSize size,
                                     const Quad& weights) {
    if (size.width >= blockOfResults)
        patchOfBlocks<blockOfResults>(src, dst, size, weights);
    else if (size.width >= smallBlock)
        patchOfBlocks<smallBlock>(src, dst, size, weights);
    else
        patchScalar(src, dst, size, weights);
}

template <class Source, class Result>
void Sampling<Source, Result>::rowScalar(const Source* src, Result* dst, std::ptrdiff_t count,
                                         const Pair& weights) {
    for (std::ptrdiff_t x = 0; x < count; ++x) dst[x] = blended<Result>(src[x], src[x + 1], weights);
}

template <class Source, class Result>
void Sampling<Source, Result>::row(const Source* src, Result* dst, std::ptrdiff_t count,
                                   const Pair& weights) {
    if (count >= blockOfResults)
        rowOfBlocks<blockOfResults>(src, dst, count, weights);
    else if (count >= smallBlock)
        rowOfBlocks<smallBlock>(src, dst, count, weights);
    else
        rowScalar(src, dst, count, weights);
}

LUM_STRUCT_INSTANCES(Sampling, (Lum8u, Lum8u), (Lum8u, Lum16u), (Lum16u, Lum16u), (Lum8u, Lum32f),
                     (Lum16u, Lum32f), (Lum32f, Lum32f), (Lum8u, Lum64f), (Lum16u, Lum64f), (Lum16s, Lum64f),
                     (Lum32f, Lum64f));

} // namespace lum::kernels
