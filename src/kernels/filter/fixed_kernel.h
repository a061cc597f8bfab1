// Sums of a small mask of whole numbers over rows of bytes, sixteen at a time. The weights are known when the
// kernel is compiled, so weights of 0 cost nothing, and pairs of taps from anywhere in the mask share a
// multiplication.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include "frame/vector.h"
#include "lumcv/types.h"

namespace lum::kernels {

template <int size> struct FixedKernel {
    static constexpr int taps = size;
    int weights[size][size];

    /// The outer product of a column and a row.
    static constexpr FixedKernel outer(const std::array<int, size>& column,
                                       const std::array<int, size>& row) {
        FixedKernel mask{};
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x) mask.weights[y][x] = column[y] * row[x];
        return mask;
    }

    friend constexpr FixedKernel operator+(const FixedKernel& a, const FixedKernel& b) {
        FixedKernel sum{};
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x) sum.weights[y][x] = a.weights[y][x] + b.weights[y][x];
        return sum;
    }
};

struct MaskTap {
    int row;
    int column;
    int weight;
};

template <auto mask> constexpr int tapsInUse() {
    int count = 0;
    for (const auto& row : mask.weights) count += static_cast<int>(mask.taps - std::ranges::count(row, 0));
    return count;
}

/// The taps that are not 0, and at the end of an odd number one of weight 0.
template <auto mask> constexpr auto tapsOf() {
    std::array<MaskTap, (tapsInUse<mask>() + 1) / 2 * 2> taps{};
    int count = 0;
    for (int y = 0; y < mask.taps; ++y)
        for (int x = 0; x < mask.taps; ++x)
            if (mask.weights[y][x] != 0) taps[count++] = {y, x, mask.weights[y][x]};
    return taps;
}

/// Whether every product of a pair and every partial sum over bytes stays within 16 bits.
template <auto mask> constexpr bool sumsFitWords() {
    int magnitude = 0;
    bool bytes = true;
    for (const MaskTap& tap : tapsOf<mask>()) {
        magnitude += tap.weight < 0 ? -tap.weight : tap.weight;
        bytes = bytes && tap.weight >= -128 && tap.weight <= 127;
    }
    return bytes && magnitude <= 32767 / 255;
}

struct SixteenSums {
    __m128i low = _mm_setzero_si128();
    __m128i high = _mm_setzero_si128();
};

template <MaskTap first, MaskTap second>
inline void addPair(const Lum8u* const* rows, std::ptrdiff_t x, SixteenSums& sums) {
    const __m128i a = loadVector<Access::unaligned>(rows[first.row] + first.column + x);
    __m128i b = _mm_setzero_si128();
    if constexpr (second.weight != 0) b = loadVector<Access::unaligned>(rows[second.row] + second.column + x);
    const __m128i weights = _mm_set1_epi16(static_cast<short>(
        (first.weight & 0xFF) | static_cast<int>(static_cast<unsigned>(second.weight) << 8)));
    sums.low = _mm_add_epi16(sums.low, _mm_maddubs_epi16(_mm_unpacklo_epi8(a, b), weights));
    sums.high = _mm_add_epi16(sums.high, _mm_maddubs_epi16(_mm_unpackhi_epi8(a, b), weights));
}

template <auto mask, std::size_t... pairs>
inline SixteenSums sixteenSums(const Lum8u* const* rows, std::ptrdiff_t x, std::index_sequence<pairs...>) {
    constexpr auto taps = tapsOf<mask>();
    SixteenSums sums;
    (addPair<taps[2 * pairs], taps[2 * pairs + 1]>(rows, x, sums), ...);
    return sums;
}

template <auto mask> inline int oneSum(const Lum8u* const* rows, std::ptrdiff_t x) {
    int sum = 0;
    for (int y = 0; y < mask.taps; ++y)
        for (int i = 0; i < mask.taps; ++i) sum += mask.weights[y][i] * rows[y][x + i];
    return sum;
}

/// dst[x] = Finish::one(sum over y, i of weights[y][i] * rows[y][x + i]).
template <auto mask, class Finish, class D>
void maskRowScalar(const Lum8u* const* rows, D* dst, std::ptrdiff_t count) {
    for (std::ptrdiff_t x = 0; x < count; ++x) dst[x] = Finish::one(oneSum<mask>(rows, x));
}

/// dst must not be one of the rows: the last turn computes again what it overlaps.
template <auto mask, class Finish, class D>
void convolveRow(const Lum8u* const* rows, D* dst, std::ptrdiff_t count) {
    static_assert(sumsFitWords<mask>());
    if (count < 16) {
        maskRowScalar<mask, Finish>(rows, dst, count);
        return;
    }
    std::array<const Lum8u*, mask.taps> source;
    std::copy_n(rows, mask.taps, source.begin());
    constexpr std::make_index_sequence<tapsOf<mask>().size() / 2> pairs;
    // 16 results a turn
    for (std::ptrdiff_t x = 0; x <= count - 16; x += 16)
        Finish::sixteen(sixteenSums<mask>(source.data(), x, pairs), dst + x);
    // the last 16 results
    if (count % 16 != 0)
        Finish::sixteen(sixteenSums<mask>(source.data(), count - 16, pairs), dst + count - 16);
}

/// The sums as they are.
struct SumsAsWords {
    static Lum16s one(int sum) { return static_cast<Lum16s>(sum); }
    static void sixteen(const SixteenSums& sums, Lum16s* dst) {
        storeVector<Access::unaligned>(dst, sums.low);
        storeVector<Access::unaligned>(dst + 8, sums.high);
    }
};

} // namespace lum::kernels
