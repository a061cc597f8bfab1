// Sums of integers over a region, in blocks of any width: they are exact in any order.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/lanes_products.h"
#include "kernels/stats/mean.h"
#include "kernels/stats/partial_sums.h"

namespace lum::kernels {

/// The sums of a stretch of a row, of values that centred() gives; 0 where a pixel is excluded. They are kept in vectors of
/// so many bytes.
template <class T, bool squared, int bytes = vectorBytes> struct StretchSums;

template <bool squared, int bytes> struct StretchSums<Lum8u, squared, bytes> {
    BlockSum<std::uint64_t, bytes> sum;
    BlockSum<std::uint32_t, bytes> squares;

    template <int n> LUM_LANE static Block<Lum8u, n> centred(Block<Lum8u, n> p) { return p; }
    template <int n> LUM_LANE void add(Block<Lum8u, n> p) {
        sum.add(byteSums(p));
        if constexpr (squared) squares.add(sumsOfSquares(p));
    }
};

/// Pixels less 32768, which fit the signed products.
template <bool squared, int bytes> struct StretchSums<Lum16u, squared, bytes> {
    BlockSum<std::int32_t, bytes> sum;
    BlockSum<std::uint64_t, bytes> squares;

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

/// Vectors of mask bytes, or blocks of 16 bytes of pixels, after which sums carry over into the totals: a byte counts that
/// many excluded pixels, and no 32-bit sum overflows by then.
inline constexpr int vectorsOfStretch = 252;

/// The sums of blocks of 16 bytes of pixels.
template <bool masked, bool squared, class T> class BlockSums {
    static constexpr int count = lanesOf<T>;

  public:
    /// All ones in `apart` keep a pixel out whatever the mask says.
    LUM_LANE void add(Block<T, count> pixels, Block<Lum8u, count> mask, Block<std::int8_t, count> apart) {
        auto excluded = apart;
        if constexpr (masked) {
            const auto byMask = mask == zeros<Lum8u, count>();
            excludedPixels_ = excludedPixels_ - bitsAs<Lum8u>(andNot(apart, byMask));
            excluded = apart | byMask;
        }
        const auto p = sums_.centred(pixels);
        sums_.add(andNot(bitsAs<typename decltype(p)::Element>(widenMask<T, count>(excluded)), p));
    }
    LUM_LANE void addTo(IntegerTotals& totals) const {
        totals.sum.add(sums_.sum);
        if constexpr (squared) totals.squares.add(sums_.squares);
        if constexpr (masked) totals.excluded.add(byteSums(excludedPixels_));
    }

  private:
    StretchSums<T, squared, 16> sums_;
    Block<Lum8u, count> excludedPixels_ = zeros<Lum8u, count>();
};

/// Pixels of a row that are added at once.
template <class T, int channels>
inline constexpr int pixelsOfGroup = sizeof(T) == 1 && channels == 1 ? 64 : OneVector<Lum8u>::count;

/// Rows of one channel that hold no group of pixels, added to the totals. What a row has is too little to carry over at its
/// end, so all of them share their sums.
template <bool masked, bool squared, class T>
[[gnu::noinline]] void addNarrowRows(IntegerTotals& totals, const Pixels<T, 1>& src, Image<const Lum8u> mask,
                                     LumSize size) {
    constexpr int count = lanesOf<T>;
    constexpr int rowsOfStretch = vectorsOfStretch * count / pixelsOfGroup<T, 1>;
    constexpr auto none = zeros<Lum8u, count>;
    const int blocksEnd = size.width - size.width % count;
    const LastBlock<T> last(size.width);
    const auto repeated = last.repeated(size.width);
    for (int y = 0; y < size.height;) {
        BlockSums<masked, squared, T> sums;
        for (const int end = y + std::min(size.height - y, rowsOfStretch); y < end; ++y) {
            const T* row = src.row(y);
            const Lum8u* maskRow = masked ? mask.row(y) : nullptr;
            // 16 bytes of pixels per iteration
            for (int x = 0; x < blocksEnd; x += count)
                sums.add(load<count>(row + x), masked ? load<count>(maskRow + x) : none(),
                         zeros<std::int8_t, count>());
            // tail: masked last block
            if (blocksEnd < size.width)
                sums.add(last.load(row), masked ? last.load(maskRow) : none(), repeated);
        }
        sums.addTo(totals);
    }
}

/// One row, no narrower than 16 bytes of pixels, added to the totals. Out of line, so that the totals are in memory and the
/// registers, of which 32-bit code has eight, are left to the stretch.
template <bool masked, bool squared, class T, int channels>
[[gnu::noinline]] void addRow(IntegerTotals& totals, const PixelVectors<T, channels>& vectors, const T* row,
                              const Lum8u* mask, int width) {
    constexpr int unit = lanesOf<T>;
    constexpr int together = OneVector<Lum8u>::count;
    constexpr int group = pixelsOfGroup<T, channels>;
    const auto isExcluded = [&]<int n>(int x) LUM_INLINED { return load<n>(mask + x) == zeros<Lum8u, n>(); };
    const auto pixels = [&]<int n>(int x) LUM_INLINED { return vectors.template block<n>(row, x); };

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
                        const auto p = sums.centred(pixels.template operator()<n>(x + i + j));
                        sums.add(
                            andNot(bitsAs<typename decltype(p)::Element>(widenMask<T, n>(excluded, j)), p));
                    });
                } else {
                    forVectors<T, together>([&]<int n>(int j) LUM_INLINED {
                        sums.add(sums.centred(pixels.template operator()<n>(x + i + j)));
                    });
                }
            });
        totals.sum.add(sums.sum);
        totals.squares.add(sums.squares);
        if constexpr (masked) totals.excluded.add(byteSums(excludedPixels));
    }
    if (x == width) return;

    BlockSums<masked, squared, T> sums;
    constexpr auto none = zeros<Lum8u, unit>;
    const auto add = [&](int place, Block<std::int8_t, unit> apart) LUM_INLINED {
        const auto values = pixels.template operator()<unit>(place);
        sums.add(values, masked ? load<unit>(mask + place) : none(), apart);
    };
    // 16 bytes of pixels per iteration
    for (; x <= width - unit; x += unit) add(x, zeros<std::int8_t, unit>());
    // tail: masked last vector, of which only the last pixels count
    if (x < width) add(width - unit, allButLast<unit>(width - x));
    sums.addTo(totals);
}

} // namespace lum::kernels
