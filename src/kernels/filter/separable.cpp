#include "kernels/filter/separable.h"

#include <type_traits>

#include "frame/instances.h"
#include "kernels/filter/pair_sums.h"

namespace lum::kernels {
namespace {

/// The reciprocal of the divisor; kernels of 32f have none.
template <class K> struct Scale {
    float value;
    Uniform<float> everywhere;

    explicit Scale(float scale) : value(scale), everywhere(scale) {}
    float of(float sum) const { return std::is_same_v<K, Lum32f> ? sum : sum * value; }
    template <int N> LUM_LANE Block<float, N> of(Block<float, N> sums) const {
        if constexpr (std::is_same_v<K, Lum32f>)
            return sums;
        else
            return sums * everywhere;
    }
};

template <class K> auto weightOf(Taps<K> taps) {
    return [taps](int k) { return static_cast<float>(taps.coefficients[k]); };
}

template <class K, class D, class Source>
void stageScalar(Source source, Taps<K> taps, D* out, std::ptrdiff_t first, std::ptrdiff_t end) {
    const Scale<K> scale(taps.scale);
    for (std::ptrdiff_t x = first; x < end; ++x)
        out[x] =
            toElement<D, Rounding::truncated>(scale.of(weightedSum(source, taps.count, weightOf(taps), x)));
}

/// What an iteration stores lies before what is read after it: the row stage works in place. Each iteration calls
/// look(x) first.
template <class K, class D, class Source, class Look>
LUM_LANE void stage(Source source, Taps<K> taps, D* out, std::ptrdiff_t count, Look look) {
    const Scale<K> scale(taps.scale);
    const std::ptrdiff_t tail = withWeights<float>(taps.count, weightOf(taps), [&](const auto& weights) {
        using Weights = std::remove_cvref_t<decltype(weights)>;
        // four vectors of floats per iteration: their sums hide the latency of an addition
        return forBlocks<Lum8u, 4>(std::ptrdiff_t{0}, count, [&]<int N>(std::ptrdiff_t x) LUM_INLINED {
            look(x, std::integral_constant<int, N>());
            const auto sums = [&]<int n>(int i)
                                  LUM_INLINED { return scale.of(weightedSums<n>(source, weights, x + i)); };
            if constexpr (std::is_same_v<D, Lum32f>)
                forSums<Weights, N>([&]<int n>(int i)
                                        LUM_INLINED { store(sums.template operator()<n>(i), out + x + i); });
            else
                store(narrowElements<D>(fromSums<Weights, Lum32s, N>([&]<int n>(int i) LUM_INLINED {
                          return toIntegers<D, Rounding::truncated>(sums.template operator()<n>(i));
                      })),
                      out + x);
        });
    });
    // tail: scalar, one element at a time
    stageScalar(source, taps, out, tail, count);
}

template <class K, class D, class Source>
void stage(Source source, Taps<K> taps, D* out, std::ptrdiff_t count) {
    stage(source, taps, out, count, [](std::ptrdiff_t, auto) {});
}

/// Scaled sums from pairs of coefficients: bytes where all sums stay within 16 bits, words else.
enum class Pairs { ofBytes, ofWords };
constexpr int largestSumForBytes = 127;

template <Pairs pairs, class T>
void exactRow(const T* extended, Taps<Lum16s> taps, int channels, float* out, std::ptrdiff_t count) {
    using Pair = std::conditional_t<pairs == Pairs::ofBytes, Lum16s, Lum32s>;
    const AlongRow<T> source{extended, channels};
    const Uniform<float> scale(taps.scale);
    std::ptrdiff_t x = withWeights<Pair>(
        taps.count, pairsOf, pairOf<Pair>(taps.coefficients, taps.count), [&](const auto& weights) {
            // a vector of bytes or of words per iteration
            if constexpr (pairs == Pairs::ofBytes) {
                return forBlocks<Lum8u, 16>(
                    std::ptrdiff_t{0}, count, [&]<int n>(std::ptrdiff_t i) LUM_INLINED {
                        store(scaled(smallSums<n>(source, weights, i), scale), out + i);
                    });
            } else {
                const Uniform<Lum32s> start(0);
                return forBlocks<Lum16s, 8>(
                    std::ptrdiff_t{0}, count, [&]<int n>(std::ptrdiff_t i) LUM_INLINED {
                        const auto sums = scaled(interleavedSums<n>(source, weights, i, start), scale);
                        store(toElements<Lum32f, Rounding::truncated>(sums), out + i);
                    });
            }
        });
    // tail: scalar, one element at a time
    for (; x < count; ++x) {
        int sum = 0;
        for (int i = 0; i < taps.count; ++i) sum += taps.coefficients[i] * source.at(i)[x];
        out[x] = static_cast<float>(sum) * taps.scale;
    }
}

} // namespace

template <class K>
void separableRowScalar(const float* extended, Taps<K> taps, int channels, float* out, std::ptrdiff_t count) {
    stageScalar(AlongRow<float>{extended, channels}, taps, out, 0, count);
}

template <class K>
void separableRow(const float* extended, Taps<K> taps, int channels, float* out, std::ptrdiff_t count) {
    stage(AlongRow<float>{extended, channels}, taps, out, count);
}

template <class T> bool rowSumsAreExact(Taps<Lum16s> taps) {
    constexpr int largestElement = std::is_same_v<T, Lum8u> ? 255 : 32768;
    return sumOfMagnitudes(taps.coefficients, taps.count) <= (1 << 24) / largestElement;
}

template <class T>
void separableRowExact(const T* extended, Taps<Lum16s> taps, int channels, float* out, std::ptrdiff_t count) {
    if constexpr (std::is_same_v<T, Lum8u>) {
        if (sumOfMagnitudes(taps.coefficients, taps.count) <= largestSumForBytes)
            return exactRow<Pairs::ofBytes>(extended, taps, channels, out, count);
    }
    exactRow<Pairs::ofWords>(extended, taps, channels, out, count);
}

template <class K, class D>
void separableColumnScalar(const float* const* rows, Taps<K> taps, D* dst, std::ptrdiff_t count) {
    stageScalar(DownRows<float>{rows}, taps, dst, 0, count);
}

template <class K, class D>
void separableColumn(const float* const* rows, Taps<K> taps, D* dst, std::ptrdiff_t count) {
    stage(DownRows<float>{rows}, taps, dst, count);
}

void separableColumnAhead(const float* const* rows, Taps<Lum32f> taps, float* dst, std::ptrdiff_t count,
                          const SeparableRowsAhead& rowsAhead) {
    constexpr int floatsOfLine = 16;
    constexpr int secondLevel = 2;
    const SeparableRowsAhead ahead = rowsAhead;
    // Line by line the sums wait for nothing; a whole row asked for at once would make them.
    stage(DownRows<float>{rows}, taps, dst, count,
          [&]<int N>(std::ptrdiff_t x, std::integral_constant<int, N>) LUM_INLINED {
#pragma GCC unroll 4
              for (int i = 0; i < N; i += floatsOfLine) {
                  __builtin_prefetch(ahead.src + x + i, 0, secondLevel);
                  __builtin_prefetch(ahead.dst + x + i, 1, secondLevel);
              }
          });
}

LUM_INSTANCES(separableRowScalar, (Lum16s), (Lum32f));
LUM_INSTANCES(separableRow, (Lum16s), (Lum32f));
LUM_INSTANCES(rowSumsAreExact, (Lum8u), (Lum16s));
LUM_INSTANCES(separableRowExact, (Lum8u), (Lum16s));
LUM_INSTANCES(separableColumnScalar, (Lum16s, Lum8u), (Lum16s, Lum16s), (Lum32f, Lum16u), (Lum32f, Lum32f));
LUM_INSTANCES(separableColumn, (Lum16s, Lum8u), (Lum16s, Lum16s), (Lum32f, Lum16u), (Lum32f, Lum32f));

} // namespace lum::kernels
