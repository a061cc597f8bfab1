#include "kernels/filter/lowpass.h"

#include <algorithm>

#include "frame/instances.h"
#include "frame/lanes_parts.h"
#include "frame/lanes_products.h"
#include "kernels/filter/fixed_kernel.h"
#include "kernels/filter/float_stage.h"

namespace lum::kernels {
namespace {

constexpr std::array<int, 3> three{1, 1, 1};
constexpr std::array<int, 5> five{1, 1, 1, 1, 1};

template <int taps> constexpr auto boxKernel = FixedKernel<3>::outer(three, three);
template <> constexpr auto boxKernel<5> = FixedKernel<5>::outer(five, five);

/// The mean of a sum, by a product of signed words of which the high half is kept.
template <int taps> struct MeanOfSum {
    static constexpr Lum16s bias = taps == 3 ? 5 : 0;
    static constexpr Lum16s multiplier = taps == 3 ? 7280 : 2622;
    static_assert(((taps * taps * 255 + bias) * multiplier) >> 16 == 255, "no mean exceeds a byte");

    static Lum8u one(int sum) { return static_cast<Lum8u>(((sum + bias) * multiplier) >> 16); }
    template <int N> LUM_LANE static Block<Lum16s, N> ofBlock(Block<Lum16s, N> sums) {
        if constexpr (bias != 0) sums = sums + broadcast<N>(bias);
        return multiplyHigh(sums, broadcast<N>(multiplier));
    }
};

/// Columns whose sums are kept on the stack at a time: they stay in the cache of the first level.
constexpr std::ptrdiff_t columnsOfChunk = 2048;

/// Calls block(x) for even x: for 0, N, 2 N, ... and last for the block that ends at `count` or one before it,
/// count >= N. Tail: overlapping last vector.
template <int N> LUM_LANE void forEvenBlocks(std::ptrdiff_t count, auto block) {
    const std::ptrdiff_t last = (count - N) / 2 * 2;
    for (std::ptrdiff_t x = 0; x < last; x += N) block(x);
    block(last);
}

/// The sums down the columns of a chunk, as words: those of even columns and those of odd ones, which are split by a
/// mask and by a shift where neighbours would have to be unpacked.
struct ColumnSums {
    alignas(64) Lum16s even[columnsOfChunk / 2 + 2];
    alignas(64) Lum16s odd[columnsOfChunk / 2 + 2];

    /// The array by its pointer: GCC 12 miscompiles the checked index of a chosen array.
    Lum16s& at(std::ptrdiff_t x) {
        Lum16s* const sums = x % 2 == 0 ? even : odd;
        return sums[x / 2];
    }
};

template <int taps, int N>
LUM_LANE void sumColumns(const std::array<const Lum8u*, taps>& rows, ColumnSums& sums, std::ptrdiff_t count) {
    forEvenBlocks<N>(count, [&](std::ptrdiff_t x) LUM_INLINED {
        const auto evenOf = [](auto words) LUM_INLINED { return words & broadcast<N / 2>(Lum16u{0xFF}); };
        const auto first = bitsAs<Lum16u>(load<N>(rows[0] + x));
        auto even = evenOf(first);
        auto odd = first >> 8;
        for (int k = 1; k < taps; ++k) {
            const auto words = bitsAs<Lum16u>(load<N>(rows[k] + x));
            even = even + evenOf(words);
            odd = odd + (words >> 8);
        }
        store(bitsAs<Lum16s>(even), sums.even + x / 2);
        store(bitsAs<Lum16s>(odd), sums.odd + x / 2);
    });
    if (count % 2 != 0) {
        Lum16s last = 0;
        for (int k = 0; k < taps; ++k) last = static_cast<Lum16s>(last + rows[k][count - 1]);
        sums.at(count - 1) = last;
    }
}

/// `count` results: the sums down the columns are formed once and then added along the row. The columns between the
/// outermost ones are in the sums of an even result and of the odd one after it.
template <int taps, int N>
void boxChunk(const std::array<const Lum8u*, taps>& rows, Lum8u* dst, std::ptrdiff_t count) {
    ColumnSums sums;
    sumColumns<taps, N>(rows, sums, count + taps - 1);
    forEvenBlocks<N>(count, [&](std::ptrdiff_t x) LUM_INLINED {
        const auto column = [&](int k) LUM_INLINED { return load<N / 2>(&sums.at(x + k)); };
        auto between = column(1);
        for (int k = 2; k < taps; ++k) between = between + column(k);
        const auto even = MeanOfSum<taps>::ofBlock(column(0) + between);
        const auto odd = MeanOfSum<taps>::ofBlock(between + column(taps));
        store(bitsAs<Lum8u>(even | (odd << 8)), dst + x);
    });
    // tail: scalar, one element
    if (count % 2 != 0) {
        int sum = 0;
        for (int k = 0; k < taps; ++k) sum += sums.at(count - 1 + k);
        dst[count - 1] = MeanOfSum<taps>::one(sum);
    }
}

/// count >= N.
template <int taps, int N> void boxRow(const Lum8u* const* rows, Lum8u* dst, std::ptrdiff_t count) {
    for (std::ptrdiff_t start = 0; start < count; start += columnsOfChunk) {
        // The last chunk of a long row overlaps the one before.
        const std::ptrdiff_t results = std::min(count, columnsOfChunk);
        const std::ptrdiff_t first = std::min(start, count - results);
        std::array<const Lum8u*, taps> source;
        for (int k = 0; k < taps; ++k) source[k] = rows[k] + first;
        boxChunk<taps, N>(source, dst + first, results);
    }
}

template <int taps> struct Sum {
    auto operator()(auto tap) const {
        auto sum = tap(0);
        for (int i = 1; i < taps; ++i) sum = sum + tap(i);
        return sum;
    }
};

template <int taps> struct Mean {
    auto operator()(auto tap) const { return Sum<taps>()(tap) * (1.0F / (taps * taps)); }
};

} // namespace

template <int taps> void lowpassScalar(const Lum8u* const* rows, Lum8u* dst, std::ptrdiff_t count) {
    convolveRowScalar<boxKernel<taps>, MeanOfSum<taps>>(rows, dst, count);
}

template <int taps> void lowpass(const Lum8u* const* rows, Lum8u* dst, std::ptrdiff_t count) {
    constexpr int wide = OneVector<Lum8u>::count;
    if (count >= wide)
        boxRow<taps, wide>(rows, dst, count);
    else if (count >= 16)
        boxRow<taps, 16>(rows, dst, count);
    else
        lowpassScalar<taps>(rows, dst, count);
}

template <int taps> void lowpassAlongScalar(const float* extended, float* out, std::ptrdiff_t count) {
    floatStageScalar(alongRow(extended), out, count, Sum<taps>());
}

template <int taps> void lowpassAlong(const float* extended, float* out, std::ptrdiff_t count) {
    floatStage(alongRow(extended), out, count, Sum<taps>());
}

template <int taps> void lowpassDownScalar(const float* const* rows, float* dst, std::ptrdiff_t count) {
    floatStageScalar(downRows(rows), dst, count, Mean<taps>());
}

template <int taps> void lowpassDown(const float* const* rows, float* dst, std::ptrdiff_t count) {
    floatStage(downRows(rows), dst, count, Mean<taps>());
}

LUM_INSTANCES(lowpassScalar, (3), (5));
LUM_INSTANCES(lowpass, (3), (5));
LUM_INSTANCES(lowpassAlongScalar, (3), (5));
LUM_INSTANCES(lowpassAlong, (3), (5));
LUM_INSTANCES(lowpassDownScalar, (3), (5));
LUM_INSTANCES(lowpassDown, (3), (5));

} // namespace lum::kernels
