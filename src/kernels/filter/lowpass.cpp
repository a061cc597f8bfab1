#include "kernels/filter/lowpass.h"

#include <algorithm>
#include <array>

#include "frame/instances.h"
#include "frame/lanes_parts.h"
#include "frame/lanes_products.h"
#include "kernels/filter/float_stage.h"

namespace lum::kernels {
namespace {

/// The mean of a sum, by a product of signed words of which the high half is kept.
template <int taps> struct MeanOfSum {
    static constexpr Lum16s bias = taps == 3 ? 5 : 0;
    static constexpr Lum16s multiplier = taps == 3 ? 7280 : 2622;
    static_assert(((taps * taps * 255 + bias) * multiplier) >> 16 == 255, "no mean exceeds a byte");

    static Lum8u one(int sum) { return static_cast<Lum8u>(((sum + bias) * multiplier) >> 16); }
    template <int N> LUM_LANE static Block<Lum16s, N> ofBiased(Block<Lum16s, N> sums) {
        return multiplyHigh(sums, broadcast<N>(multiplier));
    }
};

/// Columns of a block: a cache line.
constexpr int columnsOfBlock = 64;

/// Columns whose sums are kept on the stack at a time: they stay in the cache of the first level.
constexpr std::ptrdiff_t columnsOfChunk = 2048;

/// Calls block(x) for even x: for 0, N, 2 N, ... and last for the block that ends at `count` or one before it,
/// count >= N. Tail: overlapping last vector.
template <int N> LUM_LANE void forEvenBlocks(std::ptrdiff_t count, auto block) {
    const std::ptrdiff_t last = (count - N) / 2 * 2;
    for (std::ptrdiff_t x = 0; x < last; x += N) block(x);
    block(last);
}

/// Asks for the cache line that lies so many bytes after a place. What is asked for line by line comes while the sums are
/// formed; a whole row asked for at once makes them wait.
template <int forWriting> LUM_LANE void prefetchAfter(const Lum8u* place, std::uintptr_t bytes) {
    constexpr int secondLevel = 2;
    const auto address = reinterpret_cast<std::uintptr_t>(place) + bytes;
    __builtin_prefetch(reinterpret_cast<const void*>(address), forWriting, secondLevel);
}

/// The sums down the columns of a chunk and of those beside it, as words: those of even columns and those of odd ones,
/// which are split by a mask and by a shift where neighbours would have to be unpacked. Column 0 begins a cache line, as
/// the rows of the source do.
struct ColumnSums {
    static constexpr std::ptrdiff_t columnsBefore = 64;
    alignas(64) Lum8u bytes[2][columnsBefore + columnsOfChunk + 64];

    /// The sums from column x + k on, of every second one; x is even. A word is as far from the start as its two columns
    /// are, in bytes, so that nothing is left to compute for an address.
    LUM_LANE Lum16s* from(std::ptrdiff_t x, int k = 0) {
        const int odd = k & 1;
        return reinterpret_cast<Lum16s*>(bytes[odd] + columnsBefore + x + (k - odd));
    }
    Lum16s& at(std::ptrdiff_t x) { return *from(x - (x & 1), static_cast<int>(x & 1)); }
};

/// A row of bytes as the words of their even and of their odd columns.
template <int N> struct EvenAndOdd {
    Block<Lum16u, N> even;
    Block<Lum16u, N> odd;

    /// Loaded once, which the compiler would do for the mask and again for the shift.
    LUM_LANE explicit EvenAndOdd(const Lum8u* place) {
        const auto words = inOrder(bitsAs<Lum16u>(load<2 * N>(place)));
        even = words & broadcast<N>(Lum16u{0xFF});
        odd = words >> 8;
    }
    LUM_LANE EvenAndOdd operator+(const EvenAndOdd& more) const {
        EvenAndOdd sum = *this;
        sum.even = even + more.even;
        sum.odd = odd + more.odd;
        return sum;
    }
    LUM_LANE void storeTo(ColumnSums& sums, std::ptrdiff_t x) const {
        store(bitsAs<Lum16s>(even), sums.from(x));
        store(bitsAs<Lum16s>(odd), sums.from(x, 1));
    }
};

/// Pixel x of a row of `count` pixels, or one beside it.
template <int taps> int pixelAt(const RowOfBytes& row, std::ptrdiff_t x, std::ptrdiff_t count) {
    return x < 0 ? row.before[x + taps / 2] : x < count ? row.pixels[x] : row.after[x - count];
}

template <int taps> int columnSum(const RowOfBytes* rows, std::ptrdiff_t x, std::ptrdiff_t count) {
    int sum = 0;
    for (int k = 0; k < taps; ++k) sum += pixelAt<taps>(rows[k], x, count);
    return sum;
}

/// The sums for `length` results of each row, or of two, from result `first` of `count` on. Two rows share the rows between
/// the outermost ones.
template <int taps, int results, int N>
LUM_LANE void sumColumns(const RowOfBytes* rows, std::array<ColumnSums, results>& sums, std::ptrdiff_t first,
                         std::ptrdiff_t length, std::ptrdiff_t count, BytesAhead ahead) {
    std::array<const Lum8u*, taps + results - 1> source;
    for (int k = 0; k < taps + results - 1; ++k) source[k] = rows[k].pixels + first;
    forEvenBlocks<N>(length, [&](std::ptrdiff_t blockStart) LUM_INLINED {
        if constexpr (results == 2) {
            prefetchAfter<0>(source[taps - 1] + blockStart, ahead.src);
            prefetchAfter<0>(source[taps] + blockStart, ahead.src);
        }
        forVectors<Lum8u, N>([&]<int n>(int part) LUM_INLINED {
            const std::ptrdiff_t x = blockStart + part;
            const auto row = [&](int k) LUM_INLINED { return EvenAndOdd<n / 2>(source[k] + x); };
            auto inner = row(1);
            for (int k = 2; k < taps; ++k) inner = inner + row(k);
            (row(0) + inner).storeTo(sums[0], x);
            if constexpr (results == 2) (inner + row(taps)).storeTo(sums[1], x);
        });
    });
    const auto one = [&](std::ptrdiff_t x) {
        for (int result = 0; result < results; ++result)
            sums[result].at(x) = static_cast<Lum16s>(columnSum<taps>(rows + result, first + x, count));
    };
    constexpr int anchor = taps / 2;
    for (std::ptrdiff_t x = -anchor; x < 0; ++x) one(x);
    for (std::ptrdiff_t x = length / 2 * 2; x < length + anchor; ++x) one(x);
}

/// A row of `count` results from the sums down their columns. The columns between the outermost ones are in the sums
/// of an even result and of the odd one after it.
template <int taps, int N>
void meansAlong(ColumnSums& sums, Lum8u* dst, std::ptrdiff_t count, BytesAhead ahead) {
    constexpr int anchor = taps / 2;
    forEvenBlocks<N>(count, [&](std::ptrdiff_t blockStart) LUM_INLINED {
        if constexpr (N >= 64) prefetchAfter<1>(dst + blockStart, ahead.dst);
        forVectors<Lum8u, N>([&]<int n>(int part) LUM_INLINED {
            const std::ptrdiff_t x = blockStart + part;
            const auto column = [&](int k) LUM_INLINED { return load<n / 2>(sums.from(x, k - anchor)); };
            auto between = column(1);
            for (int k = 2; k < taps; ++k) between = between + column(k);
            if constexpr (MeanOfSum<taps>::bias != 0)
                between = between + broadcast<n / 2>(MeanOfSum<taps>::bias);
            const auto even = MeanOfSum<taps>::ofBiased(column(0) + between);
            const auto odd = MeanOfSum<taps>::ofBiased(between + column(taps));
            store(bitsAs<Lum8u>(even | (odd << 8)), dst + x);
        });
    });
    // tail: scalar, one element
    if (count % 2 != 0) {
        int sum = 0;
        for (int k = 0; k < taps; ++k) sum += sums.at(count - 1 + k - anchor);
        dst[count - 1] = MeanOfSum<taps>::one(sum);
    }
}

/// One row of results, or two; count >= N.
template <int taps, int results, int N>
void boxRows(const RowOfBytes* rows, const std::array<Lum8u*, results>& dst, std::ptrdiff_t count,
             BytesAhead ahead = {}) {
    std::array<ColumnSums, results> sums;
    for (std::ptrdiff_t start = 0; start < count; start += columnsOfChunk) {
        // The last chunk of a long row overlaps the one before.
        const std::ptrdiff_t length = std::min(count, columnsOfChunk);
        const std::ptrdiff_t first = std::min(start, count - length);
        sumColumns<taps, results, N>(rows, sums, first, length, count, ahead);
        for (int result = 0; result < results; ++result)
            meansAlong<taps, N>(sums[result], dst[result] + first, length, ahead);
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

template <int taps> void lowpassScalar(const RowOfBytes* rows, Lum8u* dst, std::ptrdiff_t count) {
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        int sum = 0;
        for (int k = 0; k < taps; ++k) sum += columnSum<taps>(rows, x + k - taps / 2, count);
        dst[x] = MeanOfSum<taps>::one(sum);
    }
}

template <int taps> void lowpass(const RowOfBytes* rows, Lum8u* dst, std::ptrdiff_t count) {
    if (count >= columnsOfBlock)
        boxRows<taps, 1, columnsOfBlock>(rows, {dst}, count);
    else if (count >= 16)
        boxRows<taps, 1, 16>(rows, {dst}, count);
    else
        lowpassScalar<taps>(rows, dst, count);
}

template <int taps>
void lowpassTwoRows(const RowOfBytes* rows, Lum8u* first, Lum8u* second, std::ptrdiff_t count,
                    BytesAhead ahead) {
    if (count >= columnsOfBlock) {
        boxRows<taps, 2, columnsOfBlock>(rows, {first, second}, count, ahead);
    } else {
        lowpass<taps>(rows, first, count);
        lowpass<taps>(rows + 1, second, count);
    }
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
LUM_INSTANCES(lowpassTwoRows, (3), (5));
LUM_INSTANCES(lowpassAlongScalar, (3), (5));
LUM_INSTANCES(lowpassAlong, (3), (5));
LUM_INSTANCES(lowpassDownScalar, (3), (5));
LUM_INSTANCES(lowpassDown, (3), (5));

} // namespace lum::kernels
