#include "kernels/filter/column_pipeline_three.h"

#include "frame/instances.h"
#include "kernels/to_floats.h"

namespace lum::kernels {
namespace {

enum class Symmetry { symmetric, general };

/// Of three floats or of three blocks of them.
template <Symmetry symmetry, class Values, class Weight>
LUM_LANE Values threeTapSum(Values a, Values b, Values c, const Weight (&w)[3]) {
    if constexpr (symmetry == Symmetry::symmetric)
        return (a + c) * w[0] + b * w[1];
    else
        return a * w[0] + b * w[1] + c * w[2];
}

template <Symmetry symmetry, Rounding rounding, class R>
void scalarResults(const Lum16s* const* rows, R* dst, int from, int to, const ThreeWeights& weights) {
    const float w[] = {weights.first, weights.middle, weights.last};
    for (int i = from; i < to; ++i)
        dst[i] = toElement<R, rounding>(threeTapSum<symmetry>(static_cast<float>(rows[0][i]),
                                                              static_cast<float>(rows[1][i]),
                                                              static_cast<float>(rows[2][i]), w));
}

template <Symmetry symmetry, class R>
void restResults(const Lum16s* const* rows, R* dst, RowRounding rounded, int width,
                 const ThreeWeights& weights) {
    if (rounded.rest == Rounding::nearestEven)
        scalarResults<symmetry, Rounding::nearestEven>(rows, dst, rounded.count, width, weights);
    else
        scalarResults<symmetry, Rounding::truncated>(rows, dst, rounded.count, width, weights);
}

/// Converts the last row of each window while it makes the window's results.
template <Symmetry symmetry, Range range, class R>
void ringRows(const Lum16s* const* srcRows, Image<R> dst, LumSize size, RowRounding rounded,
              const ThreeWeights& weights, RingOfThree ring) {
    const Uniform<float> w[] = {Uniform(weights.first), Uniform(weights.middle), Uniform(weights.last)};
    toFloats(srcRows[0], rounded.count, ring.row(0));
    toFloats(srcRows[1], rounded.count, ring.row(1));
    for (int y = 0; y < size.height; ++y) {
        const float* first = ring.row(y);
        const float* middle = ring.row(y + 1);
        float* last = ring.row(y + 2);
        const Lum16s* latest = srcRows[y + 2];
        R* result = dst.row(y);
        // a vector of words per iteration, at least 8 results
        forBlocks<Lum16s, 8>(0, rounded.count, [&]<int n>(int i) LUM_INLINED {
            const auto values = loadFloats<n>(latest + i);
            store(values, last + i);
            const auto sums = mapVectors(values, [&]<int m>(Block<float, m> value, int part) LUM_INLINED {
                return threeTapSum<symmetry>(load<m>(first + i + part), load<m>(middle + i + part), value, w);
            });
            store(toElements<R, Rounding::nearestEven, range>(sums), result + i);
        });
        // tail: scalar
        restResults<symmetry>(srcRows + y, result, rounded, size.width, weights);
    }
}

template <Symmetry symmetry, class R>
void scalarRows(const Lum16s* const* srcRows, Image<R> dst, LumSize size, RowRounding rounded,
                const ThreeWeights& weights) {
    for (int y = 0; y < size.height; ++y) {
        scalarResults<symmetry, Rounding::nearestEven>(srcRows + y, dst.row(y), 0, rounded.count, weights);
        restResults<symmetry>(srcRows + y, dst.row(y), rounded, size.width, weights);
    }
}

} // namespace

template <class R>
void threeTapColumnsScalar(const Lum16s* const* srcRows, Image<R> dst, LumSize size, RowRounding rounded,
                           const ThreeWeights& weights, RingOfThree) {
    if (weights.symmetric)
        scalarRows<Symmetry::symmetric>(srcRows, dst, size, rounded, weights);
    else
        scalarRows<Symmetry::general>(srcRows, dst, size, rounded, weights);
}

template <class R>
void threeTapColumns(const Lum16s* const* srcRows, Image<R> dst, LumSize size, RowRounding rounded,
                     const ThreeWeights& weights, RingOfThree ring) {
    using enum Symmetry;
    if (weights.symmetric && weights.small)
        ringRows<symmetric, Range::of32Bits>(srcRows, dst, size, rounded, weights, ring);
    else if (weights.symmetric)
        ringRows<symmetric, Range::any>(srcRows, dst, size, rounded, weights, ring);
    else if (weights.small)
        ringRows<general, Range::of32Bits>(srcRows, dst, size, rounded, weights, ring);
    else
        ringRows<general, Range::any>(srcRows, dst, size, rounded, weights, ring);
}

LUM_INSTANCES(threeTapColumnsScalar, (Lum8s), (Lum8u), (Lum16s));
LUM_INSTANCES(threeTapColumns, (Lum8s), (Lum8u), (Lum16s));

} // namespace lum::kernels
