// Sums of integers over a region, in blocks of any width: they are exact in any order.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/lanes_products.h"
#include "kernels/stats/mean.h"
#include "kernels/stats/partial_sums.h"

namespace lum::kernels {

/// The sums of a stretch of a row, of values that centred() gives; 0 where a pixel is excluded.
template <class T, bool squared> struct StretchSums;

template <bool squared> struct StretchSums<Lum8u, squared> {
    BlockSum<std::uint64_t> sum;
    BlockSum<std::uint32_t> squares;

    template <int n> LUM_LANE static Block<Lum8u, n> centred(Block<Lum8u, n> p) { return p; }
    template <int n> LUM_LANE void add(Block<Lum8u, n> p) {
        sum.add(byteSums(p));
        if constexpr (squared) squares.add(sumsOfSquares(p));
    }
};

/// Pixels less 32768, which fit the signed products.
template <bool squared> struct StretchSums<Lum16u, squared> {
    BlockSum<std::int32_t> sum;
    BlockSum<std::uint64_t> squares;

    template <int n> LUM_LANE static Block<Lum16s, n> centred(Block<Lum16u, n> p) {
        return bitsAs<Lum16s>(p ^ broadcast<n>(static_cast<Lum16u>(middleOf16u)));
    }
    template <int n> LUM_LANE void add(Block<Lum16s, n> p) {
        sum.add(multiplyAddPairs(p, broadcast<n>(Lum16s{1})));
        // A pair of squares reaches 2^31 at most, which is not negative as an unsigned element.
        if constexpr (squared) squares.add(pairSums(bitsAs<std::uint32_t>(multiplyAddPairs(p, p))));
    }
};

struct IntegerTotals {
    BlockSum<std::int64_t> sum;
    BlockSum<std::int64_t> squares;
    BlockSum<std::uint64_t> excluded;
};

/// Vectors of mask bytes after which sums carry over into the totals: a byte counts that many excluded pixels, and no 32-bit
/// sum overflows by then.
inline constexpr int vectorsOfStretch = 252;

/// One row, no narrower than 16 bytes of pixels, added to the totals. Out of line, so that the totals are in memory and the
/// registers, of which 32-bit code has eight, are left to the stretch.
template <bool masked, bool squared, class T, int channels>
[[gnu::noinline]] void addRow(IntegerTotals& totals, const PixelVectors<T, channels>& vectors, const T* row,
                              const Lum8u* mask, int width) {
    constexpr int unit = lanesOf<T>;
    constexpr int together = OneVector<Lum8u>::count;
    constexpr int group = sizeof(T) == 1 && channels == 1 ? 64 : together;
    const auto isExcluded = [&]<int n>(int x) LUM_INLINED { return load<n>(mask + x) == zeros<Lum8u, n>(); };
    // n pixels from x on, as they are added up.
    const auto pixels = [&]<int n>(int x) LUM_INLINED {
        return StretchSums<T, squared>::centred(vectors.template block<n>(row, x));
    };

    int x = 0;
    while (x <= width - group) {
        const int end = x + std::min(width - x, vectorsOfStretch * together);
        StretchSums<T, squared> sums;
        auto excludedPixels = zeros<Lum8u, together>();
        // the pixels of a vector of mask bytes, or of a few, per iteration
        for (; x <= end - group; x += group)
            forParts<together, group>([&](int i) LUM_INLINED {
                if constexpr (masked) {
                    const auto excluded = isExcluded.template operator()<together>(x + i);
                    excludedPixels = excludedPixels - bitsAs<Lum8u>(excluded);
                    forVectors<T, together>([&]<int n>(int j) LUM_INLINED {
                        const auto p = pixels.template operator()<n>(x + i + j);
                        sums.add(
                            andNot(bitsAs<typename decltype(p)::Element>(widenMask<T, n>(excluded, j)), p));
                    });
                } else {
                    forVectors<T, together>([&]<int n>(int j) LUM_INLINED {
                        sums.add(pixels.template operator()<n>(x + i + j));
                    });
                }
            });
        totals.sum.add(sums.sum);
        totals.squares.add(sums.squares);
        if constexpr (masked) totals.excluded.add(byteSums(excludedPixels));
    }
    if (x == width) return;

    StretchSums<T, squared> sums;
    const auto add = [&](int place, Block<std::int8_t, unit> excluded) LUM_INLINED {
        if constexpr (masked) {
            const auto byMask = isExcluded.template operator()<unit>(place);
            const auto counted = bitsAs<Lum8u>(andNot(excluded, byMask));
            totals.excluded.add(byteSums(zeros<Lum8u, unit>() - counted));
            excluded = excluded | byMask;
        }
        const auto p = pixels.template operator()<unit>(place);
        sums.add(andNot(bitsAs<typename decltype(p)::Element>(widenMask<T, unit>(excluded)), p));
    };
    // 16 bytes of pixels per iteration
    for (; x <= width - unit; x += unit) add(x, zeros<std::int8_t, unit>());
    // tail: masked last vector, of which only the last pixels count
    if (x < width) add(width - unit, allButLast<unit>(width - x));
    totals.sum.add(sums.sum);
    totals.squares.add(sums.squares);
}

} // namespace lum::kernels
