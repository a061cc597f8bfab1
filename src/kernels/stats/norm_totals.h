// What a norm carries through its rows, a pixel and a vector of pixels at a time. Magnitudes of integers come in
// unsigned, floats with their sign; pixels that do not count come in as 0.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "frame/convert.h"
#include "kernels/stats/norm.h"

namespace lum::kernels {

/// Vectors that a 32-bit lane of integer sums holds without wrapping: each adds at most four squares of 8 bits or two
/// words of 16 to a lane. The last block of a row may be longer by two.
constexpr int vectorsPerBlock = 16384;
static_assert((vectorsPerBlock + 2) * (4ULL * 255 * 255) <= 0xFFFFFFFF);
static_assert((vectorsPerBlock + 2) * (2ULL * 0xFFFF) <= 0xFFFFFFFF);

/// In halves that convert exactly, so that it rounds once and in double.
inline double asDouble(std::uint64_t sum) {
    return static_cast<double>(static_cast<std::uint32_t>(sum >> 32)) * 4294967296.0 +
           static_cast<double>(static_cast<std::uint32_t>(sum));
}

/// The lane of eight that pixel x of a row of floats is added to: whole vectors of four take turns between the lower
/// and the upper four lanes; the pixels after them end at the last lane. The order of a row's sum so depends on
/// nothing but its width.
constexpr int laneOfSum(int x, int width) { return x < width - width % 4 ? x % 8 : x - width + 8; }

/// The sum of a row from its eight lanes.
inline float sumOfLanes(__m128 lower, __m128 upper) {
    const __m128 four = _mm_add_ps(lower, upper);
    const __m128 two = _mm_add_ps(four, _mm_movehl_ps(four, four));
    return _mm_cvtss_f32(_mm_add_ss(two, _mm_shuffle_ps(two, two, 1)));
}

/// Floats a pixel or four pixels at a time: L1 or L2.
template <NormKind kind> class FloatsTotal {
  public:
    void add(float value, int x, int width) {
        lanes_[laneOfSum(x, width)] += kind == NormKind::l1 ? std::fabs(value) : value * value;
    }
    void addVector(__m128i values, int parity) {
        const __m128 floats = _mm_castsi128_ps(values);
        __m128& sum = parity == 0 ? lower_ : upper_;
        if constexpr (kind == NormKind::l1)
            sum = _mm_add_ps(sum, _mm_andnot_ps(_mm_set1_ps(-0.0F), floats));
        else
            sum = _mm_add_ps(sum, _mm_mul_ps(floats, floats));
    }
    void endBlock() {}
    void endScalarRow() {
        lower_ = _mm_loadu_ps(lanes_);
        upper_ = _mm_loadu_ps(lanes_ + 4);
        std::fill(lanes_, lanes_ + 8, 0.0F);
        endRow();
    }
    void endRow() {
        total_ += static_cast<double>(sumOfLanes(lower_, upper_));
        lower_ = upper_ = _mm_setzero_ps();
    }
    double value() const { return static_cast<double>(nearestFloat(total_)); }

  private:
    float lanes_[8] = {};
    __m128 lower_ = _mm_setzero_ps();
    __m128 upper_ = _mm_setzero_ps();
    double total_ = 0;
};

/// Integers a pixel or a vector at a time: L1 or L2. Sums of a block of vectors are kept in 32-bit lanes where
/// that is faster, and end in 64-bit lanes: those hold 2^32 squares of the largest word, 8 GiB of them.
template <NormKind kind, class T> class IntegersTotal {
  public:
    void add(T magnitude, int, int) {
        const std::uint64_t value = magnitude;
        total_ += kind == NormKind::l1 ? value : value * value;
    }
    void addVector(__m128i magnitudes, int) {
        const __m128i zero = _mm_setzero_si128();
        if constexpr (kind == NormKind::l1 && sizeof(T) == 1) {
            wide_ = _mm_add_epi64(wide_, _mm_sad_epu8(magnitudes, zero));
        } else if constexpr (kind == NormKind::l1) {
            block_ = withWords(block_, magnitudes);
        } else if constexpr (sizeof(T) == 1) {
            const __m128i low = _mm_unpacklo_epi8(magnitudes, zero);
            const __m128i high = _mm_unpackhi_epi8(magnitudes, zero);
            block_ =
                _mm_add_epi32(block_, _mm_add_epi32(_mm_madd_epi16(low, low), _mm_madd_epi16(high, high)));
        } else {
            block_ = withWords(block_, _mm_mullo_epi16(magnitudes, magnitudes));
            upperBlock_ = withWords(upperBlock_, _mm_mulhi_epu16(magnitudes, magnitudes));
        }
    }
    void endBlock() {
        if constexpr (kind == NormKind::l1 && sizeof(T) == 1) return;
        wide_ = withDoubleWords(wide_, block_);
        block_ = _mm_setzero_si128();
        if constexpr (kind == NormKind::l2 && sizeof(T) == 2) {
            upperWide_ = withDoubleWords(upperWide_, upperBlock_);
            upperBlock_ = _mm_setzero_si128();
        }
    }
    void endScalarRow() {}
    void endRow() { endBlock(); }
    double value() const { return asDouble(total_ + sumOf(wide_) + (sumOf(upperWide_) << 16)); }

  private:
    /// The sum of both words of each 32-bit lane.
    static __m128i withWords(__m128i sum, __m128i words) {
        const __m128i low = _mm_and_si128(words, _mm_set1_epi32(0xFFFF));
        return _mm_add_epi32(sum, _mm_add_epi32(low, _mm_srli_epi32(words, 16)));
    }
    static __m128i withDoubleWords(__m128i sum, __m128i lanes) {
        const __m128i low = _mm_unpacklo_epi32(lanes, _mm_setzero_si128());
        return _mm_add_epi64(sum, _mm_add_epi64(low, _mm_unpackhi_epi32(lanes, _mm_setzero_si128())));
    }
    static std::uint64_t sumOf(__m128i lanes) {
        std::uint64_t both[2];
        std::memcpy(both, &lanes, sizeof both);
        return both[0] + both[1];
    }

    std::uint64_t total_ = 0;
    __m128i block_ = _mm_setzero_si128();
    __m128i wide_ = _mm_setzero_si128();
    // The upper halves of 32-bit squares, times 65536.
    __m128i upperBlock_ = _mm_setzero_si128();
    __m128i upperWide_ = _mm_setzero_si128();
};

/// The largest magnitude.
template <class T> class Largest {
  public:
    void add(T value, int, int) {
        if constexpr (std::is_floating_point_v<T>) value = std::fabs(value);
        if (value > largest_) largest_ = value;
    }
    void addVector(__m128i values, int parity) {
        __m128i& lanes = parity == 0 ? even_ : odd_;
        if constexpr (std::is_same_v<T, Lum8u>) {
            lanes = _mm_max_epu8(values, lanes);
        } else if constexpr (std::is_same_v<T, Lum16u>) {
            // What exceeds the largest is added to it: there is no comparison of unsigned words.
            lanes = _mm_adds_epu16(lanes, _mm_subs_epu16(values, lanes));
        } else {
            // NaN as the first operand leaves the second.
            const __m128 magnitudes = _mm_andnot_ps(_mm_set1_ps(-0.0F), _mm_castsi128_ps(values));
            lanes = _mm_castps_si128(_mm_max_ps(magnitudes, _mm_castsi128_ps(lanes)));
        }
    }
    void endBlock() {}
    void endScalarRow() {}
    void endRow() {}
    double value() const {
        Largest whole = *this;
        for (const __m128i& lanes : {even_, odd_}) {
            T elements[lanesOf<T>];
            std::memcpy(elements, &lanes, sizeof elements);
            for (T element : elements) whole.add(element, 0, 0);
        }
        return static_cast<double>(whole.largest_);
    }

  private:
    T largest_ = 0;
    // Two, because floats take four cycles to compare.
    __m128i even_ = _mm_setzero_si128();
    __m128i odd_ = _mm_setzero_si128();
};

template <NormKind kind, class T>
using NormTotal =
    std::conditional_t<kind == NormKind::inf, Largest<T>,
                       std::conditional_t<std::is_integral_v<T>, IntegersTotal<kind, T>, FloatsTotal<kind>>>;

} // namespace lum::kernels
