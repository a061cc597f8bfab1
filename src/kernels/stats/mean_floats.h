// Sums of floats over a region: in lanes of four, whose order is the result in every build.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

#include "frame/lanes_parts.h"
#include "frame/lanes_transpose.h"
#include "kernels/pixels.h"
#include "kernels/stats/partial_sums.h"

namespace lum::kernels {

inline constexpr int pixelsOfBlock = 16;

/// Blocks after which the lanes carry over into the totals: a byte counts that many excluded pixels.
inline constexpr int blocksOfStretch = 255;

/// Three vectors of four elements hold four of one channel, each in a lane of its own, as 4 is no multiple of 3. The vector
/// that has an element of the channel in the lane:
constexpr int vectorOfLane(int lane) {
    int vector = 0;
    while ((4 * vector + lane) % 3 != 0) ++vector;
    return vector;
}

/// The pixel, counted within four, whose element is in the lane.
template <int channels> constexpr int pixelOfLane(int lane) {
    return channels == 1 ? lane : (4 * vectorOfLane(lane) + lane) / 3;
}

using VectorBytes = std::array<Lum8u, 16>;

/// All bits set in the lanes that the vector gives to a channel of three.
template <int vector> struct LanesFrom {
    alignas(16) static constexpr VectorBytes bytes = [] {
        VectorBytes lanes{};
        for (int b = 0; b < 16; ++b) lanes[b] = vectorOfLane(b / 4) == vector ? 0xFF : 0;
        return lanes;
    }();
};

/// The shuffle that brings one byte per pixel of a block to the lanes of one of its vectors.
template <int channels, int vector> struct BytesToLanes {
    alignas(16) static constexpr VectorBytes bytes = [] {
        VectorBytes places{};
        for (int b = 0; b < 16; ++b)
            places[b] = static_cast<Lum8u>(vector * 4 + pixelOfLane<channels>(b / 4));
        return places;
    }();
};

/// Aligned, so that short vectors take it as an operand in memory.
LUM_LANE Block<Lum8u, 16> constant(const VectorBytes& bytes) {
    return load<16>(static_cast<const Lum8u*>(__builtin_assume_aligned(bytes.data(), 16)));
}

/// 16 pixels of a row: four vectors, of three channels in an order of their own.
template <int channels, bool masked> struct PixelBlock {
    /// The element of the first pixel.
    const float* first;
    /// All bits of a byte set where the mask excludes the pixel.
    Block<Lum8u, 16> excluded;

    template <int vector> LUM_LANE Float4 elements() const {
        const float* place = first + vector * 4 * channels;
        if constexpr (channels == 1)
            return load<4>(place);
        else
            return from<0>(place) | from<1>(place) | from<2>(place);
    }

    /// The lanes of excluded pixels cleared.
    template <int vector> LUM_LANE Float4 selected(Float4 lanes) const {
        if constexpr (!masked)
            return lanes;
        else
            return andNot(
                bitsAs<float>(shuffleUnits(excluded, constant(BytesToLanes<channels, vector>::bytes))),
                lanes);
    }

  private:
    template <int third> LUM_LANE static Float4 from(const float* place) {
        return load<4>(place + third * 4) & bitsAs<float>(constant(LanesFrom<third>::bytes));
    }
};

using Double2 = Block<double, 2>;

LUM_LANE Double2 wideLanes(Float4 lanes) {
    const auto wide = toDouble(lanes);
    return lowHalf(wide) + highHalf(wide);
}

/// The four vectors of a block add up among themselves first, so that one addition per block waits for the one before.
LUM_LANE Float4 sumOfFour(Float4 a, Float4 b, Float4 c, Float4 d) { return (a + b) + (c + d); }

/// Raw: the order of the four lanes is the result, and the other three keep what they have, a zero's sign included.
LUM_LANE Float4 addedToFirst(Float4 lanes, float value) { return {_mm_add_ss(lanes.v, _mm_set_ss(value))}; }

inline Lum32f keptBits(Lum32f value, unsigned kept) {
    return std::bit_cast<Lum32f>(std::bit_cast<unsigned>(value) & kept);
}

// The lanes of a stretch. They add a block, or one pixel (`kept` has all bits set, or none where it is excluded), and
// widen what they hold to two doubles. Where four rows have a lane each, terms() is what four pixels of a row add, and
// addTerms() adds a term to each row.

template <bool squared> class SumLanes {
  public:
    template <class BlockOf> LUM_LANE void add(const BlockOf& block) {
        const Float4 p0 = pixels<0>(block);
        const Float4 p1 = pixels<1>(block);
        const Float4 p2 = pixels<2>(block);
        const Float4 p3 = pixels<3>(block);
        sums_ = sums_ + sumOfFour(p0, p1, p2, p3);
        if constexpr (squared) squares_ = squares_ + sumOfFour(p0 * p0, p1 * p1, p2 * p2, p3 * p3);
    }
    void add(Lum32f element, unsigned kept) {
        const Lum32f p = keptBits(element, kept);
        sums_ = addedToFirst(sums_, p);
        if constexpr (squared) squares_ = addedToFirst(squares_, p * p);
    }
    LUM_LANE Float4 terms(Float4 elements) const { return elements; }
    LUM_LANE void addTerms(Float4 p) {
        sums_ = sums_ + p;
        if constexpr (squared) squares_ = squares_ + p * p;
    }
    Float4 sums() const { return sums_; }
    Float4 squares() const { return squares_; }

  private:
    template <int vector, class BlockOf> LUM_LANE static Float4 pixels(const BlockOf& block) {
        return block.template selected<vector>(block.template elements<vector>());
    }

    Float4 sums_ = zeros<float, 4>();
    Float4 squares_ = zeros<float, 4>();
};

/// Squares of the distances to a centre; no sums.
class DeviationLanes {
  public:
    explicit DeviationLanes(Lum32f centre) : centre_(centre), centres_(broadcast<4>(centre)) {}

    template <class BlockOf> LUM_LANE void add(const BlockOf& block) {
        squares_ = squares_ + sumOfFour(squaresOf<0>(block), squaresOf<1>(block), squaresOf<2>(block),
                                        squaresOf<3>(block));
    }
    void add(Lum32f element, unsigned kept) {
        const Lum32f deviation = keptBits(element - centre_, kept);
        squares_ = addedToFirst(squares_, deviation * deviation);
    }
    LUM_LANE Float4 terms(Float4 elements) const { return elements - centres_; }
    LUM_LANE void addTerms(Float4 deviations) { squares_ = squares_ + deviations * deviations; }
    Float4 sums() const { return zeros<float, 4>(); }
    Float4 squares() const { return squares_; }

  private:
    template <int vector, class BlockOf> LUM_LANE Float4 squaresOf(const BlockOf& block) const {
        const Float4 deviations =
            block.template selected<vector>(block.template elements<vector>() - centres_);
        return deviations * deviations;
    }

    Lum32f centre_;
    Float4 centres_;
    Float4 squares_ = zeros<float, 4>();
};

struct FloatTotals {
    Double2 sums = zeros<double, 2>();
    Double2 squares = zeros<double, 2>();
    BlockSum<std::uint64_t> excluded;
    std::uint64_t excludedSingly = 0;

    template <class Lanes> void add(const Lanes& lanes) {
        sums = sums + wideLanes(lanes.sums());
        squares = squares + wideLanes(lanes.squares());
    }
    /// One row after the other, each of which has one lane; the other lanes of a row alone are zeros.
    template <class Lanes> void addRows(const Lanes& lanes) {
        addEach(sums, lanes.sums());
        addEach(squares, lanes.squares());
    }

  private:
    static void addEach(Double2& total, Float4 lanes) {
        double rows[4];
        store(toDouble(lanes), rows);
        for (double row : rows) total = total + Double2{{row, 0}};
    }
};

/// Four rows that hold no block, side by side: each adds up in a lane of its own, one pixel after the other, as it does
/// alone.
template <bool masked, class Lanes>
[[gnu::noinline]] void addFourRows(FloatTotals& totals, const Lanes& empty, Image<const float> src,
                                   Image<const Lum8u> mask, int y, int width) {
    Lanes lanes = empty;
    auto excludedPixels = zeros<Lum8u, 16>();
    // Four pixels of each row; not all of them count where `before` has bits set.
    const auto add = [&]<bool all>(int x, Block<std::int8_t, 16> before) LUM_INLINED {
        auto excluded = before;
        if constexpr (masked) {
            const auto bytes = [&](int row) LUM_INLINED { return load<4>(mask.row(y + row) + x); };
            const auto zeroBytes =
                join(join(bytes(0), bytes(1)), join(bytes(2), bytes(3))) == zeros<Lum8u, 16>();
            excludedPixels = excludedPixels - bitsAs<Lum8u>(andNot(before, zeroBytes));
            excluded = before | zeroBytes;
        }
        const auto terms = [&](int row) LUM_INLINED {
            const auto ofRow = lanes.terms(load<4>(src.row(y + row) + x));
            if constexpr (all && !masked) return ofRow;
            return andNot(bitsAs<float>(widenMask<float, 4>(excluded, 4 * row)), ofRow);
        };
        Float4 a = terms(0);
        Float4 b = terms(1);
        Float4 c = terms(2);
        Float4 d = terms(3);
        transposeUnits(a, b, c, d);
        lanes.addTerms(a);
        lanes.addTerms(b);
        lanes.addTerms(c);
        lanes.addTerms(d);
    };
    int x = 0;
    // four pixels per iteration
    for (; x <= width - 4; x += 4) add.template operator()<true>(x, zeros<std::int8_t, 16>());
    // tail: masked last vectors
    if (x < width) {
        const auto ofRow = allButLast<4>(width - x);
        const auto ofTwo = join(ofRow, ofRow);
        add.template operator()<false>(width - 4, join(ofTwo, ofTwo));
    }
    totals.addRows(lanes);
    if constexpr (masked) totals.excluded.add(byteSums(excludedPixels));
}

/// One row from the channel's element of its first pixel, added to the totals by lanes that begin as the empty ones. Out of
/// line, so that the totals are in memory and the registers, of which 32-bit code has eight, are left to the lanes.
template <int channels, bool masked, class Lanes>
[[gnu::noinline]] void addRow(FloatTotals& totals, const Lanes& empty, const float* row, const Lum8u* mask,
                              int width) {
    constexpr auto none = zeros<Lum8u, 16>;
    // A block of a channel reads up to the last element of its last pixel and two more, so the row's last pixel is never in
    // one.
    const int reach = channels == 1 ? width : width - 1;
    const int blocksEnd = reach / pixelsOfBlock * pixelsOfBlock;
    int x = 0;
    while (x < blocksEnd) {
        const int stretchEnd = x + std::min(blocksEnd - x, blocksOfStretch * pixelsOfBlock);
        Lanes lanes = empty;
        auto excluded = none();
        // 16 pixels per iteration
        for (; x < stretchEnd; x += pixelsOfBlock) {
            PixelBlock<channels, masked> block{row + x * channels, none()};
            if constexpr (masked) {
                block.excluded = bitsAs<Lum8u>(load<16>(mask + x) == none());
                excluded = excluded - block.excluded;
            }
            lanes.add(block);
        }
        totals.add(lanes);
        if constexpr (masked) totals.excluded.add(byteSums(excluded));
    }
    if (x == width) return;

    Lanes lanes = empty;
    // tail: masked last vectors, of which only up to 15 last pixels count
    if (x < reach && reach >= pixelsOfBlock) {
        const int start = reach - pixelsOfBlock;
        const auto before = bitsAs<Lum8u>(allButLast<16>(reach - x));
        PixelBlock<channels, true> block{row + start * channels, before};
        if constexpr (masked) {
            const auto zeroBytes = bitsAs<Lum8u>(load<16>(mask + start) == none());
            block.excluded = before | zeroBytes;
            totals.excluded.add(byteSums(none() - andNot(before, zeroBytes)));
        }
        lanes.add(block);
        x = reach;
    }
    // tail: scalar, one pixel at a time
    std::uint64_t excluded = 0;
    for (; x < width; ++x) {
        const unsigned kept = !masked || mask[x] != 0 ? ~0U : 0U;
        if constexpr (masked) excluded += kept == 0;
        lanes.add(row[x * channels], kept);
    }
    totals.add(lanes);
    if constexpr (masked) totals.excludedSingly += excluded;
}

} // namespace lum::kernels
