// What a norm carries through its rows, a pixel and a block of pixels at a time. Magnitudes of integers are given
// unsigned, floats with their sign; pixels that do not count are given as 0.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "frame/convert.h"
#include "frame/lanes_products.h"
#include "kernels/stats/norm.h"
#include "kernels/stats/partial_sums.h"

namespace lum::kernels {

/// 16 bytes of pixels that 32-bit sums hold without wrapping: such a unit adds at most four squares of 8 bits or two words
/// of 16 to each. The last stretch of a row may be longer by four.
constexpr int unitsOfStretch = 16384;
static_assert((unitsOfStretch + 4) * (4ULL * 255 * 255) <= 0xFFFFFFFF);
static_assert((unitsOfStretch + 4) * (2ULL * 0xFFFF) <= 0xFFFFFFFF);

/// Bytes of pixels that are added at once where there is one channel of integers.
constexpr int bytesOfGroup = 64;

/// In halves that convert exactly, so that it rounds once and in double.
inline double asDouble(std::uint64_t sum) {
    return static_cast<double>(static_cast<std::uint32_t>(sum >> 32)) * 4294967296.0 +
           static_cast<double>(static_cast<std::uint32_t>(sum));
}

/// The lane of eight that pixel x of a row of floats is added to: groups of four alternate between the lower and the upper
/// four lanes; the pixels after the last group end at the last lane. So the order of a row's sum depends on nothing but
/// its width.
constexpr int laneOfSum(int x, int width) { return x < width - width % 4 ? x % 8 : x - width + 8; }

/// Floats: L1 or L2. The order of eight lanes is the result, in every build.
template <NormKind kind> class FloatsTotal {
  public:
    /// The lanes of a row, a block at a time.
    struct Lanes {
        static constexpr int pixelsPerIteration = 8;
        static constexpr bool hasStretches = false;

        Float4 lower = zeros<float, 4>();
        Float4 upper = zeros<float, 4>();

        /// x is the lane of the first pixel, 0 or 4, or that and a multiple of 8.
        template <int n> LUM_LANE void addBlock(Block<float, n> values, int x) {
            const auto terms = kind == NormKind::l1 ? abs(values) : values * values;
            if constexpr (n == 8) {
                lower = lower + lowHalf(terms);
                upper = upper + highHalf(terms);
            } else if (x % 8 == 0) {
                lower = lower + terms;
            } else {
                upper = upper + terms;
            }
        }
        void endStretch() {}
    };

    void add(float value, int x, int width) {
        lanes_[laneOfSum(x, width)] += kind == NormKind::l1 ? std::fabs(value) : value * value;
    }
    void endScalarRow() {
        add({load<4>(lanes_), load<4>(lanes_ + 4)});
        std::fill(lanes_, lanes_ + 8, 0.0F);
    }
    void add(const Lanes& row) {
        float four[4];
        store(row.lower + row.upper, four);
        total_ += static_cast<double>((four[0] + four[2]) + (four[1] + four[3]));
    }
    double value() const { return static_cast<double>(nearestFloat(total_)); }

  private:
    float lanes_[8] = {};
    double total_ = 0;
};

/// Integers a pixel or a block at a time: L1 or L2. Sums of a stretch of a row are kept in 32 bits where that is faster,
/// and end in 64 bits: those hold 2^32 squares of the largest word, 8 GiB of them. All are kept in vectors of so many bytes.
template <NormKind kind, class T, int bytes> class IntegersTotal {
  public:
    static constexpr int pixelsPerIteration = bytesOfGroup / sizeof(T);
    static constexpr bool hasStretches = true;

    void add(T magnitude, int, int) {
        const std::uint64_t value = magnitude;
        total_ += kind == NormKind::l1 ? value : value * value;
    }
    template <int n> LUM_LANE void addBlock(Block<T, n> magnitudes, int) {
        if constexpr (kind == NormKind::l1 && sizeof(T) == 1) {
            wide_.add(byteSums(magnitudes));
        } else if constexpr (kind == NormKind::l1) {
            stretch_.add(pairSums(magnitudes));
        } else if constexpr (sizeof(T) == 1) {
            stretch_.add(sumsOfSquares(magnitudes));
        } else {
            stretch_.add(pairSums(magnitudes * magnitudes));
            upperStretch_.add(pairSums(multiplyHigh(magnitudes, magnitudes)));
        }
    }
    void endStretch() {
        if constexpr (kind == NormKind::l1 && sizeof(T) == 1) return;
        wide_.add(stretch_);
        stretch_ = {};
        if constexpr (kind == NormKind::l2 && sizeof(T) == 2) {
            upperWide_.add(upperStretch_);
            upperStretch_ = {};
        }
    }
    void endScalarRow() {}
    double value() const { return asDouble(total_ + wide_.total() + (upperWide_.total() << 16)); }

  private:
    std::uint64_t total_ = 0;
    BlockSum<std::uint32_t, bytes> stretch_;
    BlockSum<std::uint64_t, bytes> wide_;
    // The upper halves of 32-bit squares, times 65536.
    BlockSum<std::uint32_t, bytes> upperStretch_;
    BlockSum<std::uint64_t, bytes> upperWide_;
};

/// The largest magnitude, of candidates in vectors of so many bytes.
template <class T, int bytes> class Largest {
    using Lanes = Block<T, bytes / static_cast<int>(sizeof(T))>;

  public:
    static constexpr int pixelsPerIteration = bytesOfGroup / sizeof(T);
    static constexpr bool hasStretches = false;

    void add(T value, int, int) {
        if constexpr (std::is_floating_point_v<T>) value = std::fabs(value);
        // Not a branch, which could not be predicted.
        largest_ = value > largest_ ? value : largest_;
    }
    template <int n> LUM_LANE void addBlock(Block<T, n> values, int x) {
        Lanes& lanes = x / n % 2 == 0 ? even_ : odd_;
        if constexpr (std::is_floating_point_v<T>) values = abs(values);
        // NaN as the first operand leaves the second.
        lanes = max(replaceFirst(zeros<T, Lanes::count>(), values), lanes);
    }
    void endStretch() {}
    void endScalarRow() {}
    double value() const { return static_cast<double>(std::max(largest_, largestOf(max(even_, odd_)))); }

  private:
    /// Halves are compared until one element is left, or 16 bytes of floats.
    static constexpr int notHalved = std::is_integral_v<T> ? 1 : lanesOf<T>;
    template <int n> static T largestOf(Block<T, n> lanes) {
        if constexpr (n > notHalved) {
            return largestOf(max(highHalf(lanes), lowHalf(lanes)));
        } else if constexpr (n == 1) {
            return onlyElement(lanes);
        } else {
            T elements[n];
            store(lanes, elements);
            T largest = elements[0];
            for (T element : elements) largest = element > largest ? element : largest;
            return largest;
        }
    }

    T largest_ = 0;
    // Two, because floats take four cycles to compare.
    Lanes even_ = zeros<T, Lanes::count>();
    Lanes odd_ = zeros<T, Lanes::count>();
};

template <NormKind kind, class T, int bytes = vectorBytes>
using NormTotal = std::conditional_t<
    kind == NormKind::inf, Largest<T, bytes>,
    std::conditional_t<std::is_integral_v<T>, IntegersTotal<kind, T, bytes>, FloatsTotal<kind>>>;

} // namespace lum::kernels
