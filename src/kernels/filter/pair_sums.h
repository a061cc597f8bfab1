// Sums of products of whole numbers, two taps by one instruction: exact.
#pragma once

#include "frame/lanes_products.h"
#include "kernels/filter/tap_weights.h"

namespace lum::kernels {

/// The coefficients of a kernel two by two as one weight, the first in its lower half. The last of an odd number is there
/// twice: before a zero, and after one. Unsigned coefficients are at most 32767.
template <class Pair, class K> auto pairOf(const K* kernel, int taps) {
    return [kernel, taps](int j) {
        constexpr int bits = 4 * sizeof(Pair);
        constexpr unsigned mask = (1U << bits) - 1;
        const auto at = [kernel](int k) { return static_cast<unsigned>(kernel[k]) & mask; };
        if (j < taps / 2) return static_cast<Pair>(at(2 * j) | at(2 * j + 1) << bits);
        return static_cast<Pair>(j == taps / 2 ? at(taps - 1) : at(taps - 1) << bits);
    };
}
inline constexpr auto pairsOf = [](int taps) { return (taps + 1) / 2; };
inline constexpr auto pairsOfNeighbours = [](int taps) { return taps / 2 + 2 * (taps % 2); };

/// Elements as signed words, for the products. Unsigned words are moved down by half their range, which the sums make good
/// at their start.
template <int N, class S> LUM_LANE Block<Lum16s, N> loadFactors(const S* place) {
    if constexpr (std::is_same_v<S, Lum16u>)
        return bitsAs<Lum16s>(load<N>(place)) ^ broadcast<N>(Lum16s{-32768});
    else
        return widen<Lum16s>(load<N>(place));
}
template <class S, class K> int startOfSums(const K* kernel, int taps) {
    int start = 0;
    if constexpr (std::is_same_v<S, Lum16u>)
        for (int k = 0; k < taps; ++k) start += 32768 * kernel[k];
    return start;
}

/// Products with a pair of taps added to 32-bit sums, from interleaved elements.
template <class Sums, class Pairs>
LUM_LANE void addProducts(Sums& sums, const Pairs& pairs, const Uniform<Lum32s>& weight) {
    const auto factors = bitsAs<Lum16s>(weight.template block<decltype(sums.low)::count>());
    sums.low = sums.low + multiplyAddPairs(pairs.low, factors);
    sums.high = sums.high + multiplyAddPairs(pairs.high, factors);
}

/// n sums from x on, whatever lies between the taps. Halves of units for words; bytes are interleaved before they are
/// widened, and their halves are those of the block.
template <int n, class Source, class Weights>
LUM_LANE auto interleavedSums(const Source& source, const Weights& weights, std::ptrdiff_t x,
                              const Uniform<Lum32s>& start) {
    using S = std::remove_cvref_t<decltype(*source.at(0))>;
    constexpr bool ofBytes = sizeof(S) == 1;
    const int taps = weights.count();
    UnitHalves<Lum32s, n / 2> sums{start.block<n / 2>(), start.block<n / 2>()};
    const auto add = [&](auto first, auto second, int j) LUM_INLINED {
        if constexpr (ofBytes) {
            const auto pairs = widen<Lum16s>(interleave(first, second));
            addProducts(sums, UnitHalves<Lum16s, n>{lowHalf(pairs), highHalf(pairs)}, weights.at(j));
        } else {
            addProducts(sums, interleaveUnits(first, second), weights.at(j));
        }
    };
    const auto at = [&](int k) LUM_INLINED {
        if constexpr (ofBytes)
            return load<n>(source.at(k) + x);
        else
            return loadFactors<n>(source.at(k) + x);
    };
#pragma GCC unroll 3
    for (int j = 0; j < taps / 2; ++j) add(at(2 * j), at(2 * j + 1), j);
    if (taps % 2 != 0) add(at(taps - 1), zeros<std::conditional_t<ofBytes, Lum8u, Lum16s>, n>(), taps / 2);
    if constexpr (ofBytes)
        return join(sums.low, sums.high);
    else
        return sums;
}

/// The same along a row of one channel, where pairs of taps are pairs of neighbouring elements: a vector multiplied as it is
/// gives the sums of the even results, the vector one element further those of the odd. Nothing is read after the
/// window.
template <int n, class S, class Weights>
LUM_LANE auto neighbourSums(const S* src, const Weights& weights, const Uniform<Lum32s>& start) {
    const int taps = weights.count();
    auto even = start.block<n / 2>();
    auto odd = even;
    const auto add = [&](auto& sums, const S* place, int j) LUM_INLINED {
        sums = sums +
               multiplyAddPairs(loadFactors<n>(place), bitsAs<Lum16s>(weights.at(j).template block<n / 2>()));
    };
#pragma GCC unroll 2
    for (int j = 0; j < taps / 2; ++j) {
        add(even, src + 2 * j, j);
        add(odd, src + 2 * j + 1, j);
    }
    // The last of an odd number of taps: both sums from one vector.
    if (taps % 2 != 0) {
        add(even, src + taps - 1, taps / 2);
        add(odd, src + taps - 1, taps / 2 + 1);
    }
    return interleaveUnits(even, odd);
}

/// n sums of bytes that all fit in 16 bits, with weights of signed bytes.
template <int n, class Source, class Weights>
LUM_LANE Block<Lum16s, n> smallSums(const Source& source, const Weights& weights, std::ptrdiff_t x) {
    const int taps = weights.count();
    UnitHalves<Lum16s, n / 2> sums{zeros<Lum16s, n / 2>(), zeros<Lum16s, n / 2>()};
    const auto add = [&](Block<Lum8u, n> first, Block<Lum8u, n> second, int j) LUM_INLINED {
        const auto pairs = interleaveUnits(first, second);
        const auto factors = bitsAs<Lum8s>(weights.at(j).template block<n / 2>());
        sums.low = sums.low + multiplyAddPairs(pairs.low, factors);
        sums.high = sums.high + multiplyAddPairs(pairs.high, factors);
    };
    const auto at = [&](int k) LUM_INLINED { return load<n>(source.at(k) + x); };
#pragma GCC unroll 3
    for (int j = 0; j < taps / 2; ++j) add(at(2 * j), at(2 * j + 1), j);
    if (taps % 2 != 0) add(at(taps - 1), zeros<Lum8u, n>(), taps / 2);
    return joinUnits(sums.low, sums.high);
}

/// Sums times a scale, as floats.
template <class T, int N> LUM_LANE Block<float, N> scaled(Block<T, N> sums, const Uniform<float>& scale) {
    return toFloat(sums) * scale;
}
template <int N>
LUM_LANE UnitHalves<float, N> scaled(UnitHalves<Lum32s, N> sums, const Uniform<float>& scale) {
    return {toFloat(sums.low) * scale, toFloat(sums.high) * scale};
}

/// Sums as signed words that hold the nearest values.
template <int N> LUM_LANE Block<Lum16s, N> saturatedWords(Block<Lum32s, N> sums) {
    return narrowSaturated<Lum16s>(sums);
}
template <int N> LUM_LANE Block<Lum16s, 2 * N> saturatedWords(UnitHalves<Lum32s, N> sums) {
    return narrowUnits<Lum16s>(sums.low, sums.high);
}

} // namespace lum::kernels
