#include "kernels/filter/lowpass.h"

#include <algorithm>

#include "frame/instances.h"
#include "frame/lanes_convert.h"
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
    template <int N> static Block<Lum8u, N> ofBlock(Block<Lum16s, N> sums) {
        if constexpr (bias != 0) sums = sums + broadcast<N>(bias);
        return narrowSaturated<Lum8u>(multiplyHigh(sums, broadcast<N>(multiplier)));
    }
};

/// Columns whose sums are kept on the stack at a time: they stay in the cache of the first level.
constexpr std::ptrdiff_t columnsOfChunk = 512;

/// Calls block(x) for x = 0, N, 2 N, ... and last for the block that ends at `count`, count >= N. Tail: overlapping last
/// vector.
template <int N> LUM_LANE void forBlocks(std::ptrdiff_t count, auto block) {
    std::ptrdiff_t x = 0;
    for (; x < count - N; x += N) block(x);
    block(count - N);
}

/// The sums of `count` results: those down the columns are formed once and then added along the row.
template <int taps, int N>
void boxChunk(std::array<const Lum8u*, taps> rows, Lum8u* dst, std::ptrdiff_t count) {
    alignas(64) Lum16s columnSums[columnsOfChunk + taps - 1];
    forBlocks<N>(count + taps - 1, [&](std::ptrdiff_t x) LUM_INLINED {
        forVectors<Lum16s, N>([&]<int n>(int i) LUM_INLINED {
            auto sum = widen<Lum16s>(load<n>(rows[0] + x + i));
            for (int k = 1; k < taps; ++k) sum = sum + widen<Lum16s>(load<n>(rows[k] + x + i));
            store(sum, columnSums + x + i);
        });
    });
    forBlocks<N>(count, [&](std::ptrdiff_t x) LUM_INLINED {
        auto sum = load<N>(columnSums + x);
        for (int k = 1; k < taps; ++k) sum = sum + load<N>(columnSums + x + k);
        store(MeanOfSum<taps>::ofBlock(sum), dst + x);
    });
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
    if (count >= 32)
        boxRow<taps, 32>(rows, dst, count);
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
