// Sums of a small kernel of whole numbers over rows of bytes. The compiler knows the weights,
// so weights of 0 cost nothing, and pairs of taps from anywhere in the kernel share a
// multiplication.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include "frame/lanes_products.h"
#include "frame/lanes_reduce.h"
#include "lumcv/types.h"

namespace lum::kernels {

template <int size> struct FixedKernel {
    static constexpr int taps = size;
    int weights[size][size];

    /// The outer product of a column and a row.
    static constexpr FixedKernel outer(const std::array<int, size>& column,
                                       const std::array<int, size>& row) {
        FixedKernel kernel{};
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x) kernel.weights[y][x] = column[y] * row[x];
        return kernel;
    }

    friend constexpr FixedKernel operator+(const FixedKernel& a, const FixedKernel& b) {
        FixedKernel sum{};
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x) sum.weights[y][x] = a.weights[y][x] + b.weights[y][x];
        return sum;
    }
};

struct KernelTap {
    int row;
    int column;
    int weight;
};

template <auto kernel> constexpr int tapsInUse() {
    int count = 0;
    for (const auto& row : kernel.weights)
        count += static_cast<int>(kernel.taps - std::ranges::count(row, 0));
    return count;
}

/// The taps that are not 0, and at the end of an odd number one of weight 0.
template <auto kernel> constexpr auto tapsOf() {
    std::array<KernelTap, (tapsInUse<kernel>() + 1) / 2 * 2> taps{};
    int count = 0;
    for (int y = 0; y < kernel.taps; ++y)
        for (int x = 0; x < kernel.taps; ++x)
            if (kernel.weights[y][x] != 0) taps[count++] = {y, x, kernel.weights[y][x]};
    return taps;
}

/// Whether every product of a pair and every partial sum over bytes stays within 16 bits.
template <auto kernel> constexpr bool sumsFitWords() {
    int magnitude = 0;
    bool bytes = true;
    for (const KernelTap& tap : tapsOf<kernel>()) {
        magnitude += tap.weight < 0 ? -tap.weight : tap.weight;
        bytes = bytes && tap.weight >= -128 && tap.weight <= 127;
    }
    return bytes && magnitude <= 32767 / 255;
}

/// Sums of results whose taps were interleaved within units of 16 bytes.
template <int N> using UnitSums = UnitHalves<Lum16s, N / 2>;

/// Adds a pair of taps to the sums of N results: two products and their sum are one operation.
template <KernelTap first, KernelTap second, int N>
LUM_LANE void addPair(const Lum8u* const* rows, std::ptrdiff_t x, UnitSums<N>& sums) {
    const auto a = load<N>(rows[first.row] + first.column + x);
    auto b = zeros<Lum8u, N>();
    if constexpr (second.weight != 0) b = load<N>(rows[second.row] + second.column + x);
    const auto weights = bitsAs<Lum8s>(broadcast<N / 2>(static_cast<Lum16s>(
        (first.weight & 0xFF) | static_cast<int>(static_cast<unsigned>(second.weight) << 8))));
    const auto pairs = interleaveUnits(a, b);
    sums.low = sums.low + multiplyAddPairs(pairs.low, weights);
    sums.high = sums.high + multiplyAddPairs(pairs.high, weights);
}

template <auto kernel, int N, std::size_t... pairs>
LUM_LANE Block<Lum16s, N> blockSums(const Lum8u* const* rows, std::ptrdiff_t x,
                                    std::index_sequence<pairs...>) {
    constexpr auto taps = tapsOf<kernel>();
    UnitSums<N> sums{zeros<Lum16s, N / 2>(), zeros<Lum16s, N / 2>()};
    (addPair<taps[2 * pairs], taps[2 * pairs + 1], N>(rows, x, sums), ...);
    return joinUnits(sums.low, sums.high);
}

template <auto kernel> inline int oneSum(const Lum8u* const* rows, std::ptrdiff_t x) {
    int sum = 0;
    for (int y = 0; y < kernel.taps; ++y)
        for (int i = 0; i < kernel.taps; ++i) sum += kernel.weights[y][i] * rows[y][x + i];
    return sum;
}

/// dst[x] = Finish::one(sum over y, i of weights[y][i] * rows[y][x + i]).
template <auto kernel, class Finish, class D>
void convolveRowScalar(const Lum8u* const* rows, D* dst, std::ptrdiff_t count) {
    for (std::ptrdiff_t x = 0; x < count; ++x) dst[x] = Finish::one(oneSum<kernel>(rows, x));
}

/// dst must not be one of the rows: the tail: overlapping last vector, computes again what it overlaps. Rows below 16
/// results take the scalar form.
template <auto kernel, class Finish, class D>
void convolveRow(const Lum8u* const* rows, D* dst, std::ptrdiff_t count) {
    static_assert(sumsFitWords<kernel>());
    if (count < 16) {
        convolveRowScalar<kernel, Finish>(rows, dst, count);
        return;
    }
    std::array<const Lum8u*, kernel.taps> source;
    std::copy_n(rows, kernel.taps, source.begin());
    constexpr std::make_index_sequence<tapsOf<kernel>().size() / 2> pairs;
    std::ptrdiff_t x = 0;
    // 64 results per iteration
    for (; x <= count - 64; x += 64)
        forVectors<Lum8u, 64>([&]<int n>(int i) LUM_INLINED {
            Finish::finish(blockSums<kernel, n>(source.data(), x + i, pairs), dst + x + i);
        });
    // 16 results per iteration
    for (; x <= count - 16; x += 16) Finish::finish(blockSums<kernel, 16>(source.data(), x, pairs), dst + x);
    // tail: overlapping last vector
    if (x < count) Finish::finish(blockSums<kernel, 16>(source.data(), count - 16, pairs), dst + count - 16);
}

/// The sums as they are.
struct SumsAsWords {
    static Lum16s one(int sum) { return static_cast<Lum16s>(sum); }
    template <int N> LUM_LANE static void finish(Block<Lum16s, N> sums, Lum16s* dst) { store(sums, dst); }
};

} // namespace lum::kernels
