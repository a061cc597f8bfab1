#include "kernels/filter/pipeline_low.h"

#include <algorithm>

#include "frame/convert.h"
#include "frame/lanes_products.h"
#include "frame/lanes_reduce.h"
#include "kernels/filter/tap_weights.h"

namespace lum::kernels {
namespace {

constexpr int multiplierBits = 14;

enum class Division { none, multiplied };

/// A sum that wraps like the 32-bit registers it is formed in.
template <class Source> unsigned wrappedSum(Source source, const LowKernel& kernel, int i) {
    unsigned sum = 0;
    for (int k = 0; k < kernel.count; ++k)
        sum += static_cast<unsigned>(source.at(k)[i] * kernel.coefficients[k]);
    return sum;
}

Lum16s lowWord(unsigned value) { return static_cast<Lum16s>(value); }

template <Division division, class Source>
void restResults(Source source, const LowKernel& kernel, Lum16s* dst, int from, int to) {
    for (int i = from; i < to; ++i) {
        unsigned value = wrappedSum(source, kernel, i);
        if constexpr (division == Division::multiplied) {
            const unsigned product = value * static_cast<unsigned>(kernel.scale.multiplier);
            value = static_cast<unsigned>(static_cast<int>(product) >> multiplierBits);
        }
        dst[i] = lowWord(value);
    }
}

template <class Source> void scalarBlocks(Source source, const LowKernel& kernel, Lum16s* dst, int count) {
    for (int i = 0; i < count; ++i) {
        const Lum16s sum = lowWord(wrappedSum(source, kernel, i));
        dst[i] = kernel.scale.undivided
                     ? sum
                     : saturated<Lum16s>((sum * kernel.scale.multiplier) >> multiplierBits);
    }
}

/// Sums times a multiplier, shifted and saturated.
template <int N> LUM_LANE Block<Lum16s, N> divided(Block<Lum16s, N> sums, const Uniform<Lum16s>& multiplier) {
    const auto products =
        interleaveUnits(sums * multiplier, multiplyHigh(sums, multiplier.template block<N>()));
    return narrowUnits<Lum16s>(bitsAs<Lum32s>(products.low) >> multiplierBits,
                               bitsAs<Lum32s>(products.high) >> multiplierBits);
}

template <Division division, class Source>
void vectorBlocks(Source source, const LowKernel& kernel, Lum16s* dst, int count) {
    const Uniform<Lum16s> multiplier(kernel.scale.multiplier);
    const auto weight = [coefficients = kernel.coefficients](int k) { return coefficients[k]; };
    withWeights<Lum16s>(kernel.count, weight, [&](const auto& weights) LUM_INLINED {
        const int taps = weights.count();
        // a vector per iteration
        return forBlocks<Lum16s, 8>(0, count, [&]<int n>(int i) LUM_INLINED {
            auto sums = load<n>(source.at(0) + i) * weights.at(0);
#pragma GCC unroll 4
            for (int k = 1; k < taps; ++k) sums = sums + load<n>(source.at(k) + i) * weights.at(k);
            if constexpr (division == Division::multiplied) sums = divided(sums, multiplier);
            store(sums, dst + i);
        });
    });
}

template <class Source> void blocks(Source source, const LowKernel& kernel, Lum16s* dst, int count) {
    if (kernel.scale.undivided)
        vectorBlocks<Division::none>(source, kernel, dst, count);
    else
        vectorBlocks<Division::multiplied>(source, kernel, dst, count);
}

template <class Source> void rest(Source source, const LowKernel& kernel, Lum16s* dst, int from, int to) {
    if (kernel.scale.undivided)
        restResults<Division::none>(source, kernel, dst, from, to);
    else
        restResults<Division::multiplied>(source, kernel, dst, from, to);
}

constexpr int sixteenthBits = 4;

constexpr int cacheLine = 64;
constexpr int lineElements = cacheLine / sizeof(Lum16s);

template <class Source> Lum16s symmetricResult(Source source, const Lum16s* kernel, int i) {
    const int outer = source.at(0)[i] + source.at(4)[i];
    const int inner = source.at(1)[i] + source.at(3)[i];
    const unsigned sum = static_cast<unsigned>(kernel[2] * source.at(2)[i]) +
                         static_cast<unsigned>(kernel[1]) * static_cast<unsigned>(inner) +
                         static_cast<unsigned>(kernel[0]) * static_cast<unsigned>(outer);
    return static_cast<Lum16s>(lowWord(sum) >> sixteenthBits);
}

template <class Source>
void symmetricElements(Source source, const Lum16s* kernel, Lum16s* dst, int from, int to) {
    for (int i = from; i < to; ++i) dst[i] = symmetricResult(source, kernel, i);
}

struct SymmetricWeights {
    Uniform<Lum16s> outer;
    Uniform<Lum16s> inner;
    Uniform<Lum16s> centre;

    explicit SymmetricWeights(const Lum16s* kernel) : outer(kernel[0]), inner(kernel[1]), centre(kernel[2]) {}

    template <class Words> LUM_LANE Words results(Words s0, Words s1, Words s2, Words s3, Words s4) const {
        return (s2 * centre + ((s1 + s3) * inner + (s0 + s4) * outer)) >> sixteenthBits;
    }
};

/// Whole blocks from `from` on; returns where they end.
template <Stores stores, class Source>
LUM_LANE int symmetricBlocks(Source source, SymmetricWeights weights, Lum16s* dst, int from, int to) {
    const Lum16s* const tap[5] = {source.at(0), source.at(1), source.at(2), source.at(3), source.at(4)};
    // a vector per iteration
    return forBlocks<Lum16s, 8>(from, to, [&]<int n>(int i) LUM_INLINED {
        store<stores>(weights.results(load<n>(tap[0] + i), load<n>(tap[1] + i), load<n>(tap[2] + i),
                                      load<n>(tap[3] + i), load<n>(tap[4] + i)),
                      dst + i);
    });
}

template <Stores stores>
void symmetricRows(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size, const Lum16s* kernel) {
    const SymmetricWeights weights(kernel);
    int y = 0;
    // 2 rows of results at a time, from six rows of the source
    for (; y <= size.height - 2; y += 2) {
        const Lum16s* const* rows = srcRows + y;
        const Lum16s* const row[6] = {rows[0], rows[1], rows[2], rows[3], rows[4], rows[5]};
        Lum16s* upper = dst.row(y);
        Lum16s* lower = dst.row(y + 1);
        // a vector of columns per iteration
        const int tail = forBlocks<Lum16s, 8>(0, size.width, [&]<int n>(int i) LUM_INLINED {
            const auto s1 = load<n>(row[1] + i);
            const auto s2 = load<n>(row[2] + i);
            const auto s3 = load<n>(row[3] + i);
            const auto s4 = load<n>(row[4] + i);
            store<stores>(weights.results(load<n>(row[0] + i), s1, s2, s3, s4), upper + i);
            store<stores>(weights.results(s1, s2, s3, s4, load<n>(row[5] + i)), lower + i);
        });
        // tail: scalar, one column at a time
        symmetricElements(DownRows<Lum16s>{rows}, kernel, upper, tail, size.width);
        symmetricElements(DownRows<Lum16s>{rows + 1}, kernel, lower, tail, size.width);
    }
    // the last of an odd number of rows
    for (; y < size.height; ++y) {
        const DownRows<Lum16s> source{srcRows + y};
        const int tail = symmetricBlocks<stores>(source, weights, dst.row(y), 0, size.width);
        symmetricElements(source, kernel, dst.row(y), tail, size.width);
    }
    if constexpr (stores == Stores::streaming) storeFence();
}

} // namespace

void lowRowScalar(const Lum16s* src, int spacing, Lum16s* dst, int count, const LowKernel& kernel) {
    scalarBlocks(AlongRow<Lum16s>{src, spacing}, kernel, dst, count);
}

void lowRow(const Lum16s* src, int spacing, Lum16s* dst, int count, const LowKernel& kernel) {
    blocks(AlongRow<Lum16s>{src, spacing}, kernel, dst, count);
}

void lowRowRest(const Lum16s* src, int spacing, Lum16s* dst, int count, const LowKernel& kernel) {
    rest(AlongRow<Lum16s>{src, spacing}, kernel, dst, 0, count);
}

void lowColumnsScalar(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size, int blockElements,
                      const LowKernel& kernel) {
    for (int y = 0; y < size.height; ++y) {
        const DownRows<Lum16s> source{srcRows + y};
        scalarBlocks(source, kernel, dst.row(y), blockElements);
        rest(source, kernel, dst.row(y), blockElements, size.width);
    }
}

void lowColumns(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size, int blockElements,
                const LowKernel& kernel) {
    for (int y = 0; y < size.height; ++y) {
        const DownRows<Lum16s> source{srcRows + y};
        blocks(source, kernel, dst.row(y), blockElements);
        rest(source, kernel, dst.row(y), blockElements, size.width);
    }
}

void symmetricRowScalar(const Lum16s* src, int spacing, Lum16s* dst, int count, const Lum16s* kernel) {
    symmetricElements(AlongRow<Lum16s>{src, spacing}, kernel, dst, 0, count);
}

void symmetricRow(const Lum16s* src, int spacing, Lum16s* dst, int count, const Lum16s* kernel,
                  Stores stores) {
    const AlongRow<Lum16s> source{src, spacing};
    const SymmetricWeights weights(kernel);
    const auto ordinary = [=](int from, int to) {
        const int tail = symmetricBlocks<Stores::ordinary>(source, weights, dst, from, to);
        // tail: scalar, one result at a time
        symmetricElements(source, kernel, dst, tail, to);
    };
    const auto address = reinterpret_cast<std::uintptr_t>(dst);
    if (stores == Stores::ordinary || address % sizeof(Lum16s) != 0) return ordinary(0, count);
    // Only whole cache lines are stored past the cache: a line that took stores of both kinds would be fetched
    // and written back in between.
    const int lead = std::min(count, static_cast<int>((0 - address) % cacheLine / sizeof(Lum16s)));
    const int lines = lead + (count - lead) / lineElements * lineElements;
    ordinary(0, lead);
    symmetricBlocks<Stores::streaming>(source, weights, dst, lead, lines);
    ordinary(lines, count);
}

void symmetricColumnsScalar(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size,
                            const Lum16s* kernel) {
    for (int y = 0; y < size.height; ++y)
        symmetricElements(DownRows<Lum16s>{srcRows + y}, kernel, dst.row(y), 0, size.width);
}

void symmetricColumns(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size, const Lum16s* kernel,
                      Stores stores) {
    if (stores == Stores::streaming)
        symmetricRows<Stores::streaming>(srcRows, dst, size, kernel);
    else
        symmetricRows<Stores::ordinary>(srcRows, dst, size, kernel);
}

} // namespace lum::kernels
