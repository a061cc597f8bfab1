// The rows of an image by a rule, a block at a time: the same results as ScalarRow.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "frame/lanes_parts.h"
#include "frame/lanes_reduce.h"
#include "kernels/segment/row_rules.h"
#include "kernels/segment/write_run.h"

namespace lum::kernels {

/// Elements of a block: 32 bytes, so that short runs cost little more than themselves.
template <class T> constexpr int searchBlock = 32 / static_cast<int>(sizeof(T));

/// A pixel's channels over and over through a block, from the given channel on.
template <class T, int channels>
Block<T, searchBlock<T>> repeated(const Pixel<T, channels>& pixel, int channel) {
    constexpr int N = searchBlock<T>;
    if constexpr (channels == 1) {
        return broadcast<N>(pixel[0]);
    } else {
        std::array<T, N> elements;
        for (int i = 0; i < N; ++i) elements[i] = pixel[(channel + i) % channels];
        return load<N>(elements.data());
    }
}

/// Which elements of a block are accepted, element 0 as one of the given channel; a bit each.
template <class Rule> class BlockRule;

template <class T, int channels> class BlockRule<EqualTo<T, channels>> {
  public:
    explicit BlockRule(const EqualTo<T, channels>& rule, int channel = 0)
        : value_(repeated<T, channels>(rule.value, channel)) {}

    LUM_LANE std::uint32_t accepted(const T* place) const {
        return signBits(load<searchBlock<T>>(place) == value_);
    }

  private:
    Block<T, searchBlock<T>> value_;
};

template <class T, int channels> class BlockRule<Between<T, channels>> {
  public:
    explicit BlockRule(const Between<T, channels>& rule, int channel = 0)
        : low_(repeated<T, channels>(rule.low, channel)), high_(repeated<T, channels>(rule.high, channel)) {}

    LUM_LANE std::uint32_t accepted(const T* place) const {
        constexpr int N = searchBlock<T>;
        const auto v = load<N>(place);
        if constexpr (std::is_integral_v<T>)
            return signBits((subSaturated(low_, v) | subSaturated(v, high_)) == zeros<T, N>());
        else
            return signBits((low_ <= v) & (v <= high_));
    }

  private:
    Block<T, searchBlock<T>> low_;
    Block<T, searchBlock<T>> high_;
};

/// A bit for each element of a block.
template <class T>
constexpr std::uint32_t allOfBlock = static_cast<std::uint32_t>((std::uint64_t{1} << searchBlock<T>)-1);

template <class Rule, int channels = Rule::channelCount> class VectorRow;

/// One channel: pixels are elements.
template <class Rule> class VectorRow<Rule, 1> {
  public:
    using T = typename Rule::Element;

    VectorRow(const Rule& rule, const Pixel<T, 1>& newVal)
        : scalar_(rule, newVal), block_(rule), newVal_(newVal[0]) {}

    int firstMember(const T* row, int x, int end) const { return first<true>(row, x, end); }
    int membersEnd(const T* row, int x, int end) const { return first<false>(row, x, end); }

    int membersBegin(const T* row, int x) const {
        // whole blocks, to the left
        for (; x >= N; x -= N) {
            const std::uint32_t others = block_.accepted(row + x - N) ^ allOfBlock<T>;
            if (others != 0) return x - N + static_cast<int>(std::bit_width(others));
        }
        return scalar_.membersBegin(row, x);
    }

    void write(T* row, int x, int end) const { writeRun(row + x, end - x, newVal_); }

    /// The words begin .. end - 1 of a row, of at least one block of pixels: a bit for each pixel, set for members.
    void members(const T* row, int width, int begin, int end, std::uint64_t* words) const {
        for (int x = 64 * begin; x < 64 * end; x += 64) {
            std::uint64_t word = 0;
            if (x <= width - 64) {
                forParts<N, 64>(
                    [&](int part) { word |= std::uint64_t{block_.accepted(row + x + part)} << part; });
            } else {
                // tail: whole blocks, then a masked last one, without the columns that are known
                int i = 0;
                for (; x + i <= width - N; i += N) word |= std::uint64_t{block_.accepted(row + x + i)} << i;
                if (const int left = width - x - i; left > 0)
                    word |= std::uint64_t{block_.accepted(row + width - N) >> (N - left)} << i;
            }
            *words++ = word;
        }
    }

    /// Sets the pixels of the words begin .. end - 1 whose bits are set. In whole words that have any every pixel is
    /// written, those of clear bits with what they are.
    void writeSet(T* row, int width, int begin, int end, const std::uint64_t* words) const {
        for (int x = 64 * begin; x < 64 * end; x += 64) {
            std::uint64_t word = words[x / 64];
            if (word == ~std::uint64_t{0}) {
                writeRun(row + x, 64, newVal_);
            } else if (word != 0 && x <= width - 64) {
                writeSetOfWord(row + x, word);
            } else {
                // tail: run by run
                while (word != 0) {
                    const int first = std::countr_zero(word);
                    const int count = std::countr_one(word >> first);
                    write(row, x + first, x + first + count);
                    word &= word + (std::uint64_t{1} << first);
                }
            }
        }
    }

  private:
    static constexpr int N = searchBlock<T>;

    /// 16 pixels at a time, whose two bytes of bits become a mask.
    void writeSetOfWord(T* row, std::uint64_t word) const {
        using U = UnsignedOf<sizeof(T)>;
        alignas(16) static constexpr std::uint8_t bytes[16] = {0, 0, 0, 0, 0, 0, 0, 0,
                                                               1, 1, 1, 1, 1, 1, 1, 1};
        alignas(16) static constexpr std::uint8_t bits[16] = {1, 2, 4, 8, 16, 32, 64, 128,
                                                              1, 2, 4, 8, 16, 32, 64, 128};
        const auto bit = load<16>(bits);
        const auto value = broadcast<16>(std::bit_cast<U>(newVal_));
        auto rest = broadcast<2>(word);
        for (int i = 0; i < 64; i += 16, rest = rest >> 16) {
            const auto mask = (shuffleUnits(bitsAs<std::uint8_t>(rest), load<16>(bytes)) & bit) == bit;
            U* place = reinterpret_cast<U*>(row + i);
            store(select(widenMask<U, 16>(mask), value, load<16>(place)), place);
        }
    }

    /// The first member, or the first pixel that is none.
    template <bool members> int first(const T* row, int x, int end) const {
        const auto wanted = [&](const T* place) {
            return members ? block_.accepted(place) : block_.accepted(place) ^ allOfBlock<T>;
        };
        // whole blocks
        for (; x <= end - N; x += N)
            if (const std::uint32_t found = wanted(row + x); found != 0) return x + std::countr_zero(found);
        if (x >= end) return end;
        // tail: masked last vector, without the columns that are known
        if (end >= N) {
            const std::uint32_t found = wanted(row + end - N) >> (N - (end - x));
            return found != 0 ? x + std::countr_zero(found) : end;
        }
        return members ? scalar_.firstMember(row, x, end) : scalar_.membersEnd(row, x, end);
    }

    ScalarRow<Rule> scalar_;
    BlockRule<Rule> block_;
    T newVal_;
};

/// Three channels: three blocks hold whole pixels.
template <class Rule> class VectorRow<Rule, 3> {
  public:
    using T = typename Rule::Element;

    VectorRow(const Rule& rule, const Pixel<T, 3>& newVal)
        : scalar_(rule, newVal),
          blocks_{BlockRule<Rule>(rule, 0), BlockRule<Rule>(rule, N % 3), BlockRule<Rule>(rule, 2 * N % 3)} {
        for (int i = 0; i < 3 * N; ++i) newVals_[i] = newVal[i % 3];
    }

    int firstMember(const T* row, int x, int end) const { return scalar_.firstMember(row, x, end); }
    int membersBegin(const T* row, int x) const { return scalar_.membersBegin(row, x); }

    int membersEnd(const T* row, int x, int end) const {
        // three blocks, N pixels per iteration; a pixel ends at the first of its elements that is not accepted
        for (; x <= end - N; x += N)
            for (int i = 0; i < 3; ++i) {
                const std::uint32_t others =
                    blocks_[i].accepted(row + std::ptrdiff_t{3} * x + i * N) ^ allOfBlock<T>;
                if (others != 0) return x + (i * N + std::countr_zero(others)) / 3;
            }
        return scalar_.membersEnd(row, x, end);
    }

    void write(T* row, int x, int end) const {
        T* place = row + std::ptrdiff_t{3} * x;
        std::ptrdiff_t count = std::ptrdiff_t{3} * (end - x);
        // three blocks per iteration
        for (; count >= 3 * N; count -= 3 * N, place += 3 * N)
            for (int i = 0; i < 3; ++i) store(load<N>(newVals_.data() + i * N), place + i * N);
        // tail: staged copy
        std::memcpy(place, newVals_.data(), static_cast<std::size_t>(count) * sizeof(T));
    }

  private:
    static constexpr int N = searchBlock<T>;

    ScalarRow<Rule> scalar_;
    std::array<BlockRule<Rule>, 3> blocks_;
    std::array<T, 3 * N> newVals_;
};

} // namespace lum::kernels
