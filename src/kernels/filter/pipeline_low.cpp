#include "kernels/filter/pipeline_low.h"

namespace lum::kernels {
namespace {

constexpr int multiplierBits = 14;

enum class Division { none, multiplied };

/// A sum that wraps like the 32-bit registers it is formed in.
template <class Taps, class W> unsigned wrappedSum(const Taps& taps, const W& weights, int i) {
    unsigned sum = 0;
    for (int k = 0; k < weights.count; ++k) sum += static_cast<unsigned>(taps.at(k)[i] * weights.one(k));
    return sum;
}

Lum16s lowWord(unsigned value) { return static_cast<Lum16s>(value); }

template <Division division, class Taps, class W>
void restResults(const Taps& taps, const W& weights, Lum16s* dst, int from, int to, LowScale scale) {
    for (int i = from; i < to; ++i) {
        unsigned value = wrappedSum(taps, weights, i);
        if constexpr (division == Division::multiplied) {
            const unsigned product = value * static_cast<unsigned>(scale.multiplier);
            value = static_cast<unsigned>(static_cast<int>(product) >> multiplierBits);
        }
        dst[i] = lowWord(value);
    }
}

template <class Taps, class W>
void scalarBlocks(const Taps& taps, const W& weights, Lum16s* dst, int count, LowScale scale) {
    for (int i = 0; i < count; ++i) {
        const Lum16s sum = lowWord(wrappedSum(taps, weights, i));
        dst[i] = scale.undivided ? sum : saturated<Lum16s>((sum * scale.multiplier) >> multiplierBits);
    }
}

/// Sums times a multiplier, shifted and saturated.
__m128i divided(__m128i sums, __m128i multiplier) {
    const __m128i low = _mm_mullo_epi16(sums, multiplier);
    const __m128i high = _mm_mulhi_epi16(sums, multiplier);
    return _mm_packs_epi32(_mm_srai_epi32(_mm_unpacklo_epi16(low, high), multiplierBits),
                           _mm_srai_epi32(_mm_unpackhi_epi16(low, high), multiplierBits));
}

template <int length, Division division, class Taps, class W>
void vectorBlocks(const Taps& taps, const W& weights, Lum16s* dst, int count, LowScale scale) {
    const int taken = length == 0 ? weights.count : length;
    const __m128i multiplier = _mm_set1_epi16(scale.multiplier);
    // 8 results per iteration
    for (int i = 0; i < count; i += 8) {
        __m128i sums = _mm_mullo_epi16(loadVector<Access::unaligned>(taps.at(0) + i), weights.eight(0));
#pragma GCC unroll 4
        for (int k = 1; k < taken; ++k)
            sums = _mm_add_epi16(
                sums, _mm_mullo_epi16(loadVector<Access::unaligned>(taps.at(k) + i), weights.eight(k)));
        if constexpr (division == Division::multiplied) sums = divided(sums, multiplier);
        storeVector<Access::unaligned>(dst + i, sums);
    }
}

template <Division division, class Taps, class W>
void vectorBlocksOfLength(const Taps& taps, const W& weights, Lum16s* dst, int count, LowScale scale) {
    switch (weights.count) {
    case 3:
        return vectorBlocks<3, division>(taps, weights, dst, count, scale);
    case 5:
        return vectorBlocks<5, division>(taps, weights, dst, count, scale);
    default:
        return vectorBlocks<0, division>(taps, weights, dst, count, scale);
    }
}

template <class Taps, class W>
void blocks(const Taps& taps, const W& weights, Lum16s* dst, int count, LowScale scale) {
    if (scale.undivided)
        vectorBlocksOfLength<Division::none>(taps, weights, dst, count, scale);
    else
        vectorBlocksOfLength<Division::multiplied>(taps, weights, dst, count, scale);
}

template <class Taps, class W>
void rest(const Taps& taps, const W& weights, Lum16s* dst, int from, int to, LowScale scale) {
    if (scale.undivided)
        restResults<Division::none>(taps, weights, dst, from, to, scale);
    else
        restResults<Division::multiplied>(taps, weights, dst, from, to, scale);
}

/// Weights that a column stage keeps on its stack, each in eight lanes: a kibibyte of them.
constexpr int tableLength = 64;

/// Coefficients spread anew at each use, for kernels of any length without a table.
struct SpreadAtUse {
    const Lum16s* kernel;
    int count;

    Lum16s one(int k) const { return kernel[k]; }
    __m128i eight(int k) const { return _mm_set1_epi16(kernel[k]); }
};

template <class W>
void columnsOf(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size, int blockElements,
               const W& weights, LowScale scale) {
    for (int y = 0; y < size.height; ++y) {
        const TapsOfColumn<Lum16s> taps{srcRows + y};
        blocks(taps, weights, dst.row(y), blockElements, scale);
        rest(taps, weights, dst.row(y), blockElements, size.width, scale);
    }
}

constexpr int sixteenthBits = 4;

constexpr int cacheLine = 64;
constexpr int lineElements = cacheLine / sizeof(Lum16s);

template <class Taps> Lum16s symmetricResult(const Taps& taps, const Lum16s* kernel, int i) {
    const int outer = taps.at(0)[i] + taps.at(4)[i];
    const int inner = taps.at(1)[i] + taps.at(3)[i];
    const unsigned sum = static_cast<unsigned>(kernel[2] * taps.at(2)[i]) +
                         static_cast<unsigned>(kernel[1]) * static_cast<unsigned>(inner) +
                         static_cast<unsigned>(kernel[0]) * static_cast<unsigned>(outer);
    return static_cast<Lum16s>(lowWord(sum) >> sixteenthBits);
}

template <class Taps>
void symmetricElements(const Taps& taps, const Lum16s* kernel, Lum16s* dst, int from, int to) {
    for (int i = from; i < to; ++i) dst[i] = symmetricResult(taps, kernel, i);
}

struct SymmetricWeights {
    __m128i outer;
    __m128i inner;
    __m128i centre;

    explicit SymmetricWeights(const Lum16s* kernel)
        : outer(_mm_set1_epi16(kernel[0])),
          inner(_mm_set1_epi16(kernel[1])),
          centre(_mm_set1_epi16(kernel[2])) {}

    __m128i results(__m128i s0, __m128i s1, __m128i s2, __m128i s3, __m128i s4) const {
        const __m128i sums = _mm_add_epi16(_mm_mullo_epi16(s2, centre),
                                           _mm_add_epi16(_mm_mullo_epi16(_mm_add_epi16(s1, s3), inner),
                                                         _mm_mullo_epi16(_mm_add_epi16(s0, s4), outer)));
        return _mm_srai_epi16(sums, sixteenthBits);
    }
};

/// Whole vectors from `from` on; returns where they end.
template <Access load, Access store, Stores stores, class Taps>
int symmetricVectors(const Taps& taps, SymmetricWeights weights, Lum16s* dst, int from, int to) {
    const Lum16s* const tap[5] = {taps.at(0), taps.at(1), taps.at(2), taps.at(3), taps.at(4)};
    int i = from;
    // 8 results per iteration
    for (; i <= to - 8; i += 8)
        storeVector<store, stores>(dst + i,
                                   weights.results(loadVector<load>(tap[0] + i), loadVector<load>(tap[1] + i),
                                                   loadVector<load>(tap[2] + i), loadVector<load>(tap[3] + i),
                                                   loadVector<load>(tap[4] + i)));
    return i;
}

template <Access access, Stores stores>
void symmetricRows(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size, const Lum16s* kernel) {
    const SymmetricWeights weights(kernel);
    int y = 0;
    // 2 rows of results a step, from six rows of the source
    for (; y <= size.height - 2; y += 2) {
        const Lum16s* const* rows = srcRows + y;
        const Lum16s* const row[6] = {rows[0], rows[1], rows[2], rows[3], rows[4], rows[5]};
        Lum16s* upper = dst.row(y);
        Lum16s* lower = dst.row(y + 1);
        int i = 0;
        // 8 columns per iteration
        for (; i <= size.width - 8; i += 8) {
            const __m128i s1 = loadVector<access>(row[1] + i);
            const __m128i s2 = loadVector<access>(row[2] + i);
            const __m128i s3 = loadVector<access>(row[3] + i);
            const __m128i s4 = loadVector<access>(row[4] + i);
            storeVector<access, stores>(upper + i,
                                        weights.results(loadVector<access>(row[0] + i), s1, s2, s3, s4));
            storeVector<access, stores>(lower + i,
                                        weights.results(s1, s2, s3, s4, loadVector<access>(row[5] + i)));
        }
        // tail, one column at a time
        symmetricElements(TapsOfColumn<Lum16s>{rows}, kernel, upper, i, size.width);
        symmetricElements(TapsOfColumn<Lum16s>{rows + 1}, kernel, lower, i, size.width);
    }
    // the last of an odd number of rows
    for (; y < size.height; ++y) {
        const TapsOfColumn<Lum16s> taps{srcRows + y};
        const int rest = symmetricVectors<access, access, stores>(taps, weights, dst.row(y), 0, size.width);
        symmetricElements(taps, kernel, dst.row(y), rest, size.width);
    }
    if constexpr (stores == Stores::streaming) storeFence();
}

} // namespace

void spreadLowWeights(const Lum16s* kernel, int count, Lum16s* lanes) {
    for (int k = 0; k < count; ++k)
        _mm_store_si128(reinterpret_cast<__m128i*>(lanes + 8 * k), _mm_set1_epi16(kernel[k]));
}

void lowRowScalar(const Lum16s* src, int spacing, Lum16s* dst, int count, LowWeights weights,
                  LowScale scale) {
    scalarBlocks(TapsOfRow<Lum16s>{src, spacing}, weights, dst, count, scale);
}

void lowRow(const Lum16s* src, int spacing, Lum16s* dst, int count, LowWeights weights, LowScale scale) {
    blocks(TapsOfRow<Lum16s>{src, spacing}, weights, dst, count, scale);
}

void lowRowRest(const Lum16s* src, int spacing, Lum16s* dst, int count, LowWeights weights, LowScale scale) {
    rest(TapsOfRow<Lum16s>{src, spacing}, weights, dst, 0, count, scale);
}

void lowColumnsScalar(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size, int blockElements,
                      const Lum16s* kernel, int kernelSize, LowScale scale) {
    const SpreadAtUse weights{kernel, kernelSize};
    for (int y = 0; y < size.height; ++y) {
        const TapsOfColumn<Lum16s> taps{srcRows + y};
        scalarBlocks(taps, weights, dst.row(y), blockElements, scale);
        rest(taps, weights, dst.row(y), blockElements, size.width, scale);
    }
}

void lowColumns(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size, int blockElements,
                const Lum16s* kernel, int kernelSize, LowScale scale) {
    if (kernelSize > tableLength)
        return columnsOf(srcRows, dst, size, blockElements, SpreadAtUse{kernel, kernelSize}, scale);
    alignas(16) Lum16s lanes[8 * tableLength];
    spreadLowWeights(kernel, kernelSize, lanes);
    columnsOf(srcRows, dst, size, blockElements, LowWeights{lanes, kernelSize}, scale);
}

void symmetricRowScalar(const Lum16s* src, int spacing, Lum16s* dst, int count, const Lum16s* kernel) {
    symmetricElements(TapsOfRow<Lum16s>{src, spacing}, kernel, dst, 0, count);
}

void symmetricRow(const Lum16s* src, int spacing, Lum16s* dst, int count, const Lum16s* kernel,
                  Stores stores) {
    const TapsOfRow<Lum16s> taps{src, spacing};
    const SymmetricWeights weights(kernel);
    const auto ordinary = [&](int from, int to) {
        const int rest = symmetricVectors<Access::unaligned, Access::unaligned, Stores::ordinary>(
            taps, weights, dst, from, to);
        // tail, one result at a time
        symmetricElements(taps, kernel, dst, rest, to);
    };
    const auto address = reinterpret_cast<std::uintptr_t>(dst);
    if (stores == Stores::ordinary || address % sizeof(Lum16s) != 0) return ordinary(0, count);
    // Only whole cache lines are stored past the cache: a line that took stores of both kinds would be fetched
    // and written back in between.
    const int lead = std::min(count, static_cast<int>((0 - address) % cacheLine / sizeof(Lum16s)));
    const int lines = lead + (count - lead) / lineElements * lineElements;
    ordinary(0, lead);
    symmetricVectors<Access::unaligned, Access::aligned, Stores::streaming>(taps, weights, dst, lead, lines);
    ordinary(lines, count);
}

void symmetricColumnsScalar(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size,
                            const Lum16s* kernel) {
    for (int y = 0; y < size.height; ++y)
        symmetricElements(TapsOfColumn<Lum16s>{srcRows + y}, kernel, dst.row(y), 0, size.width);
}

void symmetricColumns(const Lum16s* const* srcRows, Image<Lum16s> dst, LumSize size, const Lum16s* kernel,
                      Access access, Stores stores) {
    if (access == Access::unaligned)
        symmetricRows<Access::unaligned, Stores::ordinary>(srcRows, dst, size, kernel);
    else if (stores == Stores::ordinary)
        symmetricRows<Access::aligned, Stores::ordinary>(srcRows, dst, size, kernel);
    else
        symmetricRows<Access::aligned, Stores::streaming>(srcRows, dst, size, kernel);
}

} // namespace lum::kernels
