// The arithmetic of a Haar stage, for one pixel and for vectors of four. A Group carries `vectors` vectors of
// neighbouring pixels through the classifiers: first() and further() take the rectangles, decide() closes a
// classifier, stays() tells at the end which pixels reach the threshold of the stage.
#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

#include "frame/vector.h"
#include "kernels/integral/haar_stage.h"

namespace lum::kernels {

/// work(0), work(1), ... with constant arguments, so that arrays indexed by them live in registers.
template <int count, class Work> [[gnu::always_inline]] inline void forEachVector(Work work) {
    [&]<int... i>(std::integer_sequence<int, i...>) __attribute__((always_inline)) {
        (work(std::integral_constant<int, i>{}), ...);
    }
    (std::make_integer_sequence<int, count>{});
}

/// Sums of one rectangle for one pixel: ((A - B) - C) + D; integers wrap.
inline float rectangleSum(const HaarCorners<Lum32f>& at) { return *at.a - *at.b - *at.c + *at.d; }
inline Lum32s rectangleSum(const HaarCorners<Lum32s>& at) {
    const auto wrapping = [](Lum32s value) { return static_cast<std::uint32_t>(value); };
    return static_cast<Lum32s>(wrapping(*at.a) - wrapping(*at.b) - wrapping(*at.c) + wrapping(*at.d));
}

/// The same for four pixels, from the i-th on.
inline __m128 rectangleSums(const HaarCorners<Lum32f>& at, int i) {
    return _mm_add_ps(
        _mm_sub_ps(_mm_sub_ps(_mm_loadu_ps(at.a + i), _mm_loadu_ps(at.b + i)), _mm_loadu_ps(at.c + i)),
        _mm_loadu_ps(at.d + i));
}
inline __m128i rectangleSums(const HaarCorners<Lum32s>& at, int i) {
    const auto load = [i](const Lum32s* corner) { return loadVector<Access::unaligned>(corner + i); };
    return _mm_add_epi32(_mm_sub_epi32(_mm_sub_epi32(load(at.a), load(at.b)), load(at.c)), load(at.d));
}

/// How the first rectangle of a classifier enters: with its weight, or as the negative of its sum.
enum class HaarFirstTerm { weighted, negated };

/// Where a classifier's sum and its limit cannot be compared: the classifier adds `below` and the total does not
/// reach the threshold, or it adds `above` and the pixel stays.
enum class HaarUnordered { isBelow, isAbove };

/// Totals in single precision, on integral images of floats or of integers.
template <HaarUnordered unordered, HaarFirstTerm firstTerm = HaarFirstTerm::weighted> struct HaarFloats {
    using Value = Lum32f;
    using Norm = Lum32f;
    /// Vectors that the fewest loads a pixel take: four sums, a weight and two operands fill the registers.
    static constexpr int denseVectors = 4;

    template <class Element> static float first(const HaarCorners<Element>& at, float weight) {
        if constexpr (firstTerm == HaarFirstTerm::negated)
            return *at.b - *at.a + *at.c - *at.d;
        else
            return term(at, weight);
    }
    template <class Element> static float further(float t, const HaarCorners<Element>& at, float weight) {
        return t + term(at, weight);
    }
    static bool below(float t, float threshold, float norm) {
        if constexpr (unordered == HaarUnordered::isBelow)
            return !(t >= threshold * norm);
        else
            return threshold * norm > t;
    }
    static float sum(float total, float value) { return total + value; }
    static bool stays(float total, float threshold) {
        if constexpr (unordered == HaarUnordered::isBelow)
            return total >= threshold;
        else
            return !(threshold > total);
    }
    template <class Element> static float term(const HaarCorners<Element>& at, float weight) {
        return static_cast<float>(rectangleSum(at)) * weight;
    }

    template <int vectors> class Group {
      public:
        explicit Group(const HaarFloats&) {
            forEachVector<vectors>([&](auto v) { total_[v] = _mm_setzero_ps(); });
        }

        template <class Element>
        [[gnu::always_inline]] void first(const HaarCorners<Element>& at, float weight) {
            const __m128 weights = _mm_set1_ps(weight);
            forEachVector<vectors>([&](auto v) {
                if constexpr (firstTerm == HaarFirstTerm::negated)
                    t_[v] = _mm_sub_ps(
                        _mm_add_ps(_mm_sub_ps(_mm_loadu_ps(at.b + 4 * v), _mm_loadu_ps(at.a + 4 * v)),
                                   _mm_loadu_ps(at.c + 4 * v)),
                        _mm_loadu_ps(at.d + 4 * v));
                else
                    t_[v] = _mm_mul_ps(floats(rectangleSums(at, 4 * v)), weights);
            });
        }
        template <class Element>
        [[gnu::always_inline]] void further(const HaarCorners<Element>& at, float weight) {
            const __m128 weights = _mm_set1_ps(weight);
            forEachVector<vectors>([&](auto v) {
                t_[v] = _mm_add_ps(t_[v], _mm_mul_ps(floats(rectangleSums(at, 4 * v)), weights));
            });
        }
        [[gnu::always_inline]] void decide(float threshold, const float* norm, float below, float above) {
            const __m128 thresholds = _mm_set1_ps(threshold);
            const __m128 aboves = _mm_set1_ps(above);
            const __m128 differing = _mm_xor_ps(aboves, _mm_set1_ps(below));
            forEachVector<vectors>([&](auto v) {
                const __m128 limit = _mm_mul_ps(thresholds, _mm_loadu_ps(norm + 4 * v));
                const __m128 isBelow = unordered == HaarUnordered::isBelow ? _mm_cmpnge_ps(t_[v], limit)
                                                                           : _mm_cmpgt_ps(limit, t_[v]);
                const __m128 added = _mm_xor_ps(aboves, _mm_and_ps(isBelow, differing));
                total_[v] = _mm_add_ps(total_[v], added);
            });
        }
        __m128i stays(int v, float threshold) const {
            const __m128 limit = _mm_set1_ps(threshold);
            return _mm_castps_si128(unordered == HaarUnordered::isBelow ? _mm_cmpge_ps(total_[v], limit)
                                                                        : _mm_cmpngt_ps(limit, total_[v]));
        }

      private:
        static __m128 floats(__m128 sums) { return sums; }
        static __m128 floats(__m128i sums) { return _mm_cvtepi32_ps(sums); }

        __m128 t_[vectors];
        __m128 total_[vectors];
    };
};

using HaarWithNegatedFirst = HaarFloats<HaarUnordered::isBelow, HaarFirstTerm::negated>;
using HaarWithWeightedFirst = HaarFloats<HaarUnordered::isBelow>;
using HaarUnorderedAbove = HaarFloats<HaarUnordered::isAbove>;

/// Integers only: products and their sums in 64 bits, totals in 32 bits, all wrapping.
struct HaarIntegers {
    using Value = Lum32s;
    using Norm = Lum32s;
    /// Each vector of four pixels has two of 64-bit sums.
    static constexpr int denseVectors = 2;

    /// Bits by which a classifier's sum is shifted to the left.
    unsigned shift;

    static std::uint64_t product(Lum32s a, Lum32s b) {
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(a) * b);
    }
    static std::uint64_t first(const HaarCorners<Lum32s>& at, Lum32s weight) {
        return product(rectangleSum(at), weight);
    }
    static std::uint64_t further(std::uint64_t t, const HaarCorners<Lum32s>& at, Lum32s weight) {
        return t + product(rectangleSum(at), weight);
    }
    bool below(std::uint64_t t, Lum32s threshold, Lum32s norm) const {
        const std::uint64_t shifted = shift < 64 ? t << shift : 0;
        return static_cast<std::int64_t>(shifted) < static_cast<std::int64_t>(product(threshold, norm));
    }
    static Lum32s sum(Lum32s total, Lum32s value) {
        return static_cast<Lum32s>(static_cast<std::uint32_t>(total) + static_cast<std::uint32_t>(value));
    }
    static bool stays(Lum32s total, Lum32s threshold) { return !(total < threshold); }

    /// A factor made ready for products of 32-bit lanes, of which the processor has only unsigned ones. With
    /// f = 2^31 for a factor at or above 0 and f = 2^31 - 1 below, the lane x xor f is x + f or f - x, so
    /// x factor = (x xor f) |factor| - f |factor|.
    struct Factor {
        __m128i flip;
        __m128i magnitude;

        explicit Factor(Lum32s factor) {
            const __m128i factors = _mm_set1_epi32(factor);
            const __m128i sign = _mm_srai_epi32(factors, 31);
            flip = _mm_xor_si128(sign, _mm_set1_epi32(static_cast<int>(0x80000000U)));
            magnitude = _mm_sub_epi32(_mm_xor_si128(factors, sign), sign);
        }
        /// f |factor|, in both 64-bit lanes.
        __m128i excess() const { return _mm_mul_epu32(flip, magnitude); }
        __m128i even(__m128i flipped) const { return _mm_mul_epu32(flipped, magnitude); }
        __m128i odd(__m128i flipped) const { return _mm_mul_epu32(_mm_srli_epi64(flipped, 32), magnitude); }
    };

    template <int vectors> class Group {
      public:
        explicit Group(const HaarIntegers& rule)
            : shift_(_mm_cvtsi32_si128(static_cast<int>(rule.shift < 64 ? rule.shift : 64U))) {
            forEachVector<vectors>([&](auto v) { total_[v] = _mm_setzero_si128(); });
        }

        [[gnu::always_inline]] void first(const HaarCorners<Lum32s>& at, Lum32s weight) {
            const Factor factor(weight);
            excess_ = factor.excess();
            forEachVector<vectors>([&](auto v) {
                const __m128i flipped = _mm_xor_si128(rectangleSums(at, 4 * v), factor.flip);
                even_[v] = factor.even(flipped);
                odd_[v] = factor.odd(flipped);
            });
        }
        [[gnu::always_inline]] void further(const HaarCorners<Lum32s>& at, Lum32s weight) {
            const Factor factor(weight);
            excess_ = _mm_add_epi64(excess_, factor.excess());
            forEachVector<vectors>([&](auto v) {
                const __m128i flipped = _mm_xor_si128(rectangleSums(at, 4 * v), factor.flip);
                even_[v] = _mm_add_epi64(even_[v], factor.even(flipped));
                odd_[v] = _mm_add_epi64(odd_[v], factor.odd(flipped));
            });
        }
        [[gnu::always_inline]] void decide(Lum32s threshold, const Lum32s* norm, Lum32s below, Lum32s above) {
            const Factor factor(threshold);
            const __m128i excess = factor.excess();
            forEachVector<vectors>([&](auto v) {
                const __m128i flipped =
                    _mm_xor_si128(loadVector<Access::unaligned>(norm + 4 * v), factor.flip);
                const __m128i even =
                    signIfBelow(shifted(even_[v]), _mm_sub_epi64(factor.even(flipped), excess));
                const __m128i odd = signIfBelow(shifted(odd_[v]), _mm_sub_epi64(factor.odd(flipped), excess));
                // The signs are in the upper halves: those of even pixels move to the lower ones.
                const __m128i signs =
                    _mm_or_si128(_mm_srli_epi64(even, 32), _mm_and_si128(odd, _mm_set_epi32(-1, 0, -1, 0)));
                const __m128i isBelow = _mm_srai_epi32(signs, 31);
                const __m128i added = _mm_xor_si128(_mm_set1_epi32(above),
                                                    _mm_and_si128(isBelow, _mm_set1_epi32(above ^ below)));
                total_[v] = _mm_add_epi32(total_[v], added);
            });
        }
        __m128i stays(int v, Lum32s threshold) const {
            const __m128i isBelow = _mm_cmpgt_epi32(_mm_set1_epi32(threshold), total_[v]);
            return _mm_xor_si128(isBelow, _mm_set1_epi32(-1));
        }

      private:
        __m128i shifted(__m128i t) const { return _mm_sll_epi64(_mm_sub_epi64(t, excess_), shift_); }

        /// The sign bits of the 64-bit lanes are set where a < b: where only a is negative, and where the signs are
        /// equal and the difference is negative.
        static __m128i signIfBelow(__m128i a, __m128i b) {
            const __m128i onlyANegative = _mm_andnot_si128(b, a);
            const __m128i differenceOfEqualSigns = _mm_andnot_si128(_mm_xor_si128(a, b), _mm_sub_epi64(a, b));
            return _mm_or_si128(onlyANegative, differenceOfEqualSigns);
        }

        __m128i shift_;
        __m128i excess_;
        __m128i even_[vectors];
        __m128i odd_[vectors];
        __m128i total_[vectors];
    };
};

} // namespace lum::kernels
