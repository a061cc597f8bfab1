// Weighted sums in single precision of the elements of a row or of a column, in order of the coefficients: the
// products and additions of the scalar form and of eight lanes at once, which round alike.
#pragma once

#include "kernels/filter/pipeline_lanes.h"

namespace lum::kernels {

/// A coefficient of the kernel, scaled. Kernels of floats have no divisor.
inline float scaledCoefficient(Lum16s coefficient, float scale) {
    return static_cast<float>(coefficient) * scale;
}
inline float scaledCoefficient(Lum16u coefficient, float scale) {
    return static_cast<float>(coefficient) * scale;
}
inline float scaledCoefficient(Lum32f coefficient, float) { return coefficient; }

/// Scaled coefficients, each in four lanes, on a multiple of 16 bytes.
struct Weights {
    const float* lanes;
    int count;

    float one(int k) const { return lanes[4 * k]; }
    __m128 four(int k) const { return _mm_load_ps(lanes + 4 * k); }
};

template <class K> void spreadWeights(const K* kernel, int count, float scale, float* lanes) {
    for (int k = 0; k < count; ++k)
        _mm_store_ps(lanes + 4 * k, _mm_set1_ps(scaledCoefficient(kernel[k], scale)));
}

/// Coefficients that are scaled anew at each use, for kernels of any length without a table.
template <class K> struct ScaledAtUse {
    const K* kernel;
    int count;
    float scale;

    float one(int k) const { return scaledCoefficient(kernel[k], scale); }
    __m128 four(int k) const { return _mm_set1_ps(one(k)); }
};

/// Where the elements of a result lie: a number of elements apart in a row, or each in a row of its own.
template <class S> struct TapsOfRow {
    const S* first;
    std::ptrdiff_t spacing;

    const S* at(int k) const { return first + k * spacing; }
};
template <class S> struct TapsOfColumn {
    const S* const* rows;

    const S* at(int k) const { return rows[k]; }
};

template <class Taps, class W> inline float weightedSum(const Taps& taps, const W& weights, int i) {
    float sum = static_cast<float>(taps.at(0)[i]) * weights.one(0);
    for (int k = 1; k < weights.count; ++k) sum += static_cast<float>(taps.at(k)[i]) * weights.one(k);
    return sum;
}

/// Results from .. to - 1, one at a time.
template <Rounding rounding, class R, class Taps, class W>
inline void weightedElements(const Taps& taps, const W& weights, R* dst, int from, int to) {
    for (int i = from; i < to; ++i) dst[i] = resultOf<R, rounding>(weightedSum(taps, weights, i));
}

inline Floats products(Floats values, __m128 weight) {
    return {_mm_mul_ps(values.low, weight), _mm_mul_ps(values.high, weight)};
}

inline Floats added(Floats sums, Floats values) {
    return {_mm_add_ps(sums.low, values.low), _mm_add_ps(sums.high, values.high)};
}

/// Whole groups of eight results from `from` on; returns where they end. A length of 3 or 5 known to the
/// compiler unrolls the taps and keeps their weights in registers; 0 is any other.
template <int length, Rounding rounding, class R, class Taps, class W>
inline int weightedEights(const Taps& taps, const W& weights, R* dst, int from, int to) {
    int i = from;
    if constexpr (length == 0) {
        for (; i <= to - 8; i += 8) {
            Floats sums = products(floatsAt(taps.at(0) + i), weights.four(0));
            for (int k = 1; k < weights.count; ++k)
                sums = added(sums, products(floatsAt(taps.at(k) + i), weights.four(k)));
            storeEight<rounding>(dst + i, sums);
        }
    } else {
        __m128 weight[length];
        decltype(taps.at(0)) tap[length];
        for (int k = 0; k < length; ++k) {
            weight[k] = weights.four(k);
            tap[k] = taps.at(k);
        }
        for (; i <= to - 8; i += 8) {
            Floats sums = products(floatsAt(tap[0] + i), weight[0]);
#pragma GCC unroll 4
            for (int k = 1; k < length; ++k) sums = added(sums, products(floatsAt(tap[k] + i), weight[k]));
            storeEight<rounding>(dst + i, sums);
        }
    }
    return i;
}

/// Results from .. to - 1.
template <int length, Rounding rounding, class R, class Taps, class W>
inline void weightedResults(const Taps& taps, const W& weights, R* dst, int from, int to) {
    // 8 results per iteration
    const int rest = weightedEights<length, rounding>(taps, weights, dst, from, to);
    // tail, one result at a time
    weightedElements<rounding>(taps, weights, dst, rest, to);
}

} // namespace lum::kernels
