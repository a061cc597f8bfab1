#include "kernels/filter/column_pipeline_three.h"

namespace lum::kernels {
namespace {

enum class Symmetry { symmetric, general };

template <Symmetry symmetry, class T> float threeTapSum(T first, T middle, T last, const ThreeWeights& w) {
    const auto a = static_cast<float>(first);
    const auto b = static_cast<float>(middle);
    const auto c = static_cast<float>(last);
    if constexpr (symmetry == Symmetry::symmetric)
        return (a + c) * w.first + b * w.middle;
    else
        return a * w.first + b * w.middle + c * w.last;
}

template <Symmetry symmetry> __m128 threeTapSums(__m128 a, __m128 b, __m128 c, const __m128 (&w)[3]) {
    const __m128 middle = _mm_mul_ps(b, w[1]);
    if constexpr (symmetry == Symmetry::symmetric)
        return _mm_add_ps(_mm_mul_ps(_mm_add_ps(a, c), w[0]), middle);
    else
        return _mm_add_ps(_mm_add_ps(_mm_mul_ps(a, w[0]), middle), _mm_mul_ps(c, w[2]));
}

void convertRow(const Lum16s* src, float* floats, int from, int to) {
    int i = from;
    // 8 elements per iteration
    for (; i <= to - 8; i += 8) {
        const Floats values = floatsAt(src + i);
        storeFloats<Access::aligned>(floats + i, values.low);
        storeFloats<Access::aligned>(floats + i + 4, values.high);
    }
    // tail, one element at a time
    for (; i < to; ++i) floats[i] = src[i];
}

/// Converts the last row of each window while it makes the window's results.
template <Symmetry symmetry, Clamp clamp, Rounding rest, class R>
void ringRows(const Lum16s* const* srcRows, Image<R> dst, LumSize size, int rounded,
              const ThreeWeights& weights, RingOfThree ring) {
    const __m128 w[3] = {_mm_set1_ps(weights.first), _mm_set1_ps(weights.middle), _mm_set1_ps(weights.last)};
    convertRow(srcRows[0], ring.row(0), 0, size.width);
    convertRow(srcRows[1], ring.row(1), 0, size.width);
    for (int y = 0; y < size.height; ++y) {
        const float* first = ring.row(y);
        const float* middle = ring.row(y + 1);
        float* last = ring.row(y + 2);
        const Lum16s* latest = srcRows[y + 2];
        R* result = dst.row(y);
        // 8 results per iteration, to nearest even
        for (int i = 0; i < rounded; i += 8) {
            const Floats values = floatsAt(latest + i);
            storeFloats<Access::aligned>(last + i, values.low);
            storeFloats<Access::aligned>(last + i + 4, values.high);
            const __m128 low =
                threeTapSums<symmetry>(_mm_load_ps(first + i), _mm_load_ps(middle + i), values.low, w);
            const __m128 high = threeTapSums<symmetry>(_mm_load_ps(first + i + 4),
                                                       _mm_load_ps(middle + i + 4), values.high, w);
            storeEight<Rounding::nearestEven, clamp>(result + i, {low, high});
        }
        // rest, one result at a time
        convertRow(latest, last, rounded, size.width);
        for (int i = rounded; i < size.width; ++i)
            result[i] = resultOf<R, rest>(threeTapSum<symmetry>(first[i], middle[i], last[i], weights));
    }
}

template <Symmetry symmetry, Clamp clamp, class R>
void ringRowsRounded(const Lum16s* const* srcRows, Image<R> dst, LumSize size, int rounded, Rounding rest,
                     const ThreeWeights& weights, RingOfThree ring) {
    if (rest == Rounding::nearestEven)
        ringRows<symmetry, clamp, Rounding::nearestEven>(srcRows, dst, size, rounded, weights, ring);
    else
        ringRows<symmetry, clamp, Rounding::truncated>(srcRows, dst, size, rounded, weights, ring);
}

template <Symmetry symmetry, Rounding rounding, class R>
void scalarResults(const Lum16s* const* rows, R* dst, int from, int to, const ThreeWeights& weights) {
    for (int i = from; i < to; ++i)
        dst[i] = resultOf<R, rounding>(threeTapSum<symmetry>(rows[0][i], rows[1][i], rows[2][i], weights));
}

template <Symmetry symmetry, class R>
void scalarRows(const Lum16s* const* srcRows, Image<R> dst, LumSize size, int rounded, Rounding rest,
                const ThreeWeights& weights) {
    for (int y = 0; y < size.height; ++y) {
        scalarResults<symmetry, Rounding::nearestEven>(srcRows + y, dst.row(y), 0, rounded, weights);
        if (rest == Rounding::nearestEven)
            scalarResults<symmetry, Rounding::nearestEven>(srcRows + y, dst.row(y), rounded, size.width,
                                                           weights);
        else
            scalarResults<symmetry, Rounding::truncated>(srcRows + y, dst.row(y), rounded, size.width,
                                                         weights);
    }
}

} // namespace

template <class R>
void threeTapColumnsScalar(const Lum16s* const* srcRows, Image<R> dst, LumSize size, int rounded,
                           Rounding rest, ThreeWeights weights, RingOfThree) {
    if (weights.symmetric)
        scalarRows<Symmetry::symmetric>(srcRows, dst, size, rounded, rest, weights);
    else
        scalarRows<Symmetry::general>(srcRows, dst, size, rounded, rest, weights);
}

template <class R>
void threeTapColumns(const Lum16s* const* srcRows, Image<R> dst, LumSize size, int rounded, Rounding rest,
                     ThreeWeights weights, RingOfThree ring) {
    using enum Symmetry;
    if (weights.symmetric && weights.small)
        ringRowsRounded<symmetric, Clamp::none>(srcRows, dst, size, rounded, rest, weights, ring);
    else if (weights.symmetric)
        ringRowsRounded<symmetric, Clamp::upper>(srcRows, dst, size, rounded, rest, weights, ring);
    else if (weights.small)
        ringRowsRounded<general, Clamp::none>(srcRows, dst, size, rounded, rest, weights, ring);
    else
        ringRowsRounded<general, Clamp::upper>(srcRows, dst, size, rounded, rest, weights, ring);
}

template decltype(threeTapColumnsScalar<Lum8s>) threeTapColumnsScalar<Lum8s>;
template decltype(threeTapColumnsScalar<Lum8u>) threeTapColumnsScalar<Lum8u>;
template decltype(threeTapColumnsScalar<Lum16s>) threeTapColumnsScalar<Lum16s>;
template decltype(threeTapColumns<Lum8s>) threeTapColumns<Lum8s>;
template decltype(threeTapColumns<Lum8u>) threeTapColumns<Lum8u>;
template decltype(threeTapColumns<Lum16s>) threeTapColumns<Lum16s>;

} // namespace lum::kernels
