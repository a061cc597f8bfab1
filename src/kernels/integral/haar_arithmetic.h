// The arithmetic of a Haar stage, for one pixel and for blocks. A Group carries a number of neighbouring pixels through
// the classifiers: first() and further() take the rectangles, decide() closes a classifier, stays() tells at the end
// which pixels reach the threshold of the stage.
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/lanes_parts.h"
#include "frame/lanes_products.h"
#include "kernels/integral/haar_stage.h"

namespace lum::kernels {

/// The value as a block of any size.
template <int N, class T> LUM_LANE Block<T, N> everywhere(const Uniform<T>& value) {
    if constexpr (isOneVector<T, N>) {
        return value.template block<N>();
    } else {
        const auto half = everywhere<N / 2>(value);
        return {half, half};
    }
}

/// Sums of one rectangle for one pixel: ((A - B) - C) + D; integers wrap.
inline float rectangleSum(const HaarCorners<Lum32f>& at) { return *at.a - *at.b - *at.c + *at.d; }
inline Lum32s rectangleSum(const HaarCorners<Lum32s>& at) {
    const auto wrapping = [](Lum32s value) { return static_cast<std::uint32_t>(value); };
    return static_cast<Lum32s>(wrapping(*at.a) - wrapping(*at.b) - wrapping(*at.c) + wrapping(*at.d));
}

/// The same for N pixels, from the i-th on.
template <int N, class Element>
LUM_LANE Block<Element, N> rectangleSums(const HaarCorners<Element>& at, int i) {
    return ((load<N>(at.a + i) - load<N>(at.b + i)) - load<N>(at.c + i)) + load<N>(at.d + i);
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
    /// Pixels that take the fewest loads each: in 16-byte vectors four sums, a weight and two operands fill the
    /// registers.
    static constexpr int densePixels = 16;

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

    template <int pixels> class Group {
      public:
        explicit Group(const HaarFloats&) {}

        template <class Element> LUM_LANE void first(const HaarCorners<Element>& at, float weight) {
            t_ = fromVectors<float, pixels>([&]<int n>(int i) LUM_INLINED {
                if constexpr (firstTerm == HaarFirstTerm::negated)
                    return ((load<n>(at.b + i) - load<n>(at.a + i)) + load<n>(at.c + i)) - load<n>(at.d + i);
                else
                    return terms<n>(at, i, weight);
            });
        }
        template <class Element> LUM_LANE void further(const HaarCorners<Element>& at, float weight) {
            t_ = mapVectors(t_, [&]<int n>(Block<float, n> t, int i)
                                    LUM_INLINED { return t + terms<n>(at, i, weight); });
        }
        LUM_LANE void decide(float threshold, const float* norm, float below, float above) {
            total_ = mapVectors(total_, [&]<int n>(Block<float, n> total, int i) LUM_INLINED {
                const auto t = part<n>(t_, i);
                const auto limit = broadcast<n>(threshold) * load<n>(norm + i);
                const auto low = broadcast<n>(below);
                const auto high = broadcast<n>(above);
                if constexpr (unordered == HaarUnordered::isBelow)
                    return total + (low ^ ((low ^ high) & bitsAs<float>(t >= limit)));
                else
                    return total + (high ^ ((low ^ high) & bitsAs<float>(limit > t)));
            });
        }
        LUM_LANE Block<Lum32s, pixels> stays(float threshold) const {
            const auto limit = broadcast<pixels>(threshold);
            if constexpr (unordered == HaarUnordered::isBelow)
                return total_ >= limit;
            else
                return ~(limit > total_);
        }

      private:
        template <int n, class Element>
        LUM_LANE static Block<float, n> terms(const HaarCorners<Element>& at, int i, float weight) {
            if constexpr (std::is_same_v<Element, Lum32f>)
                return rectangleSums<n>(at, i) * broadcast<n>(weight);
            else
                return toFloat(rectangleSums<n>(at, i)) * broadcast<n>(weight);
        }

        Block<float, pixels> t_;
        Block<float, pixels> total_ = zeros<float, pixels>();
    };
};

using HaarWithNegatedFirst = HaarFloats<HaarUnordered::isBelow, HaarFirstTerm::negated>;
using HaarWithWeightedFirst = HaarFloats<HaarUnordered::isBelow>;
using HaarUnorderedAbove = HaarFloats<HaarUnordered::isAbove>;

/// Integers only: products and their sums in 64 bits, totals in 32 bits, all wrapping.
struct HaarIntegers {
    using Value = Lum32s;
    using Norm = Lum32s;
    /// Each vector of pixels has two of 64-bit sums.
    static constexpr int densePixels = 8;

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

    /// A factor made ready for products of 32-bit elements, of which the processor has only unsigned ones. With
    /// f = 2^31 for a factor at or above 0 and f = 2^31 - 1 below, the element x xor f is x + f or f - x, so
    /// x factor = (x xor f) |factor| - f |factor|.
    struct Factor {
        Uniform<std::uint32_t> flip;
        Uniform<std::uint32_t> magnitude;

        LUM_LANE explicit Factor(Lum32s factor) {
            const auto factors = Uniform<Lum32s>(factor).vector;
            const auto sign = factors >> 31;
            flip.vector = bitsAs<std::uint32_t>(sign) ^ Uniform<std::uint32_t>(0x80000000U).vector;
            magnitude.vector = bitsAs<std::uint32_t>((factors ^ sign) - sign);
        }

        /// f |factor|
        LUM_LANE Uniform<std::uint64_t> excess() const {
            Uniform<std::uint64_t> product;
            product.vector = evenProducts(flip.vector, magnitude.vector);
            return product;
        }
        template <int N> LUM_LANE Block<std::uint32_t, N> flipped(Block<Lum32s, N> values) const {
            return bitsAs<std::uint32_t>(values) ^ everywhere<N>(flip);
        }
        template <int N> LUM_LANE Block<std::uint64_t, N / 2> even(Block<std::uint32_t, N> flipped) const {
            return evenProducts(flipped, everywhere<N>(magnitude));
        }
        template <int N> LUM_LANE Block<std::uint64_t, N / 2> odd(Block<std::uint32_t, N> flipped) const {
            return even(bitsAs<std::uint32_t>(bitsAs<std::uint64_t>(flipped) >> 32));
        }
    };

    template <int pixels> class Group {
      public:
        explicit Group(const HaarIntegers& rule)
            : shift_(rule.shift < 64 ? static_cast<int>(rule.shift) : 0),
              keptWeightBits_(rule.shift < 64 ? -1 : 0) {}

        LUM_LANE void first(const HaarCorners<Lum32s>& at, Lum32s weight) {
            const Factor factor(weight & keptWeightBits_);
            excess_ = factor.excess();
            const auto flipped = factor.flipped(rectangleSums<pixels>(at, 0));
            even_ = factor.even(flipped);
            odd_ = factor.odd(flipped);
        }
        LUM_LANE void further(const HaarCorners<Lum32s>& at, Lum32s weight) {
            const Factor factor(weight & keptWeightBits_);
            excess_.vector = excess_.vector + factor.excess().vector;
            const auto flipped = factor.flipped(rectangleSums<pixels>(at, 0));
            even_ = even_ + factor.even(flipped);
            odd_ = odd_ + factor.odd(flipped);
        }
        LUM_LANE void decide(Lum32s threshold, const Lum32s* norm, Lum32s below, Lum32s above) {
            const Factor factor(threshold);
            const auto excessOfLimit = factor.excess();
            total_ = mapVectors(total_, [&]<int n>(Block<Lum32s, n> total, int i) LUM_INLINED {
                const auto flipped = factor.flipped(load<n>(norm + i));
                const auto excess = everywhere<n / 2>(excessOfLimit);
                const auto even =
                    signIfBelow(shifted(part<n / 2>(even_, i / 2)), factor.even(flipped) - excess);
                const auto odd = signIfBelow(shifted(part<n / 2>(odd_, i / 2)), factor.odd(flipped) - excess);
                // The signs are in the upper halves: those of even pixels move to the lower ones.
                const auto upper = broadcast<n / 2>(std::uint64_t{0xFFFFFFFFU} << 32);
                const auto isBelow = bitsAs<Lum32s>((even >> 32) | (odd & upper)) >> 31;
                return total + (broadcast<n>(above) ^ (isBelow & broadcast<n>(above ^ below)));
            });
        }
        LUM_LANE Block<Lum32s, pixels> stays(Lum32s threshold) const {
            return ~(broadcast<pixels>(threshold) > total_);
        }

      private:
        template <int N> LUM_LANE Block<std::uint64_t, N> shifted(Block<std::uint64_t, N> t) const {
            return (t - everywhere<N>(excess_)) << shift_;
        }

        /// The sign bits of the elements are set where a < b: where only a is negative, and where the signs are equal
        /// and the difference is negative.
        template <int N>
        LUM_LANE static Block<std::uint64_t, N> signIfBelow(Block<std::uint64_t, N> a,
                                                            Block<std::uint64_t, N> b) {
            return andNot(b, a) | andNot(a ^ b, a - b);
        }

        /// A shift by 64 bits or more leaves nothing of the sum: the weights are 0 instead.
        int shift_;
        Lum32s keptWeightBits_;
        Uniform<std::uint64_t> excess_;
        Block<std::uint64_t, pixels / 2> even_;
        Block<std::uint64_t, pixels / 2> odd_;
        Block<Lum32s, pixels> total_ = zeros<Lum32s, pixels>();
    };
};

} // namespace lum::kernels
