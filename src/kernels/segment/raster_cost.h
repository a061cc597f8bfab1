// The cost of reaching a pixel from the nearest marker: first the highest relief on the way, then the length of the way
// on that level.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "frame/convert.h"
#include "lumcv/types.h"

namespace lum::kernels {

constexpr std::int32_t wrappingSum(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

/// Of a relief of integers: level and length in one word, so that one comparison orders by both.
struct IntegerCost {
    using Relief = Lum8u;
    /// Of the step between two neighbours that both have a say.
    static constexpr int eikonalAddend = 63;

    std::int32_t word;

    static IntegerCost ofSeed(Relief level) { return {floorOf(level)}; }
    static constexpr IntegerCost unreached() { return {0x7FC00000}; }

    IntegerCost plus(int addend) const { return {wrappingSum(word, addend)}; }
    /// The cost of a pixel from that of its best candidate.
    IntegerCost at(Relief level) const { return {std::max(wrappingSum(word, 1), floorOf(level))}; }

    /// The candidate of two neighbours at a right angle, of which `other` costs no less.
    IntegerCost withOther(IntegerCost other) const {
        // 64 minus the solution of the eikonal equation for two neighbours on a grid of spacing 64.
        static constexpr std::uint8_t gain[64] = {
            19, 18, 18, 17, 17, 16, 16, 15, 15, 14, 14, 14, 13, 13, 12, 12, 11, 11, 11, 10, 10, 9,
            9,  9,  8,  8,  8,  7,  7,  7,  6,  6,  6,  5,  5,  5,  4,  4,  4,  4,  3,  3,  3,  3,
            2,  2,  2,  2,  2,  1,  1,  1,  1,  1,  1,  1,  0,  0,  0,  0,  0,  0,  0,  0};
        const std::uint32_t d = static_cast<std::uint32_t>(other.word) - static_cast<std::uint32_t>(word);
        return d < 64 ? IntegerCost{wrappingSum(word, -gain[d])} : *this;
    }

    friend bool operator<(IntegerCost a, IntegerCost b) { return a.word < b.word; }
    friend bool operator<=(IntegerCost a, IntegerCost b) { return a.word <= b.word; }

  private:
    static constexpr std::int32_t floorOf(Relief level) { return level << 23; }
};

/// Of a relief of floats.
struct FloatCost {
    using Relief = Lum32f;
    static constexpr int eikonalAddend = 255;

    float level;
    std::int32_t hops;

    // A zero has no sign, so that equal levels have equal bits.
    static FloatCost ofSeed(Relief relief) { return {relief + 0.F, 0}; }
    static constexpr FloatCost unreached() {
        return {std::numeric_limits<float>::max(), std::numeric_limits<std::int32_t>::max()};
    }

    FloatCost plus(int addend) const { return {level, wrappingSum(hops, addend)}; }
    FloatCost at(Relief relief) const {
        return relief > level ? FloatCost{relief + 0.F, 0} : FloatCost{level, wrappingSum(hops, 1)};
    }

    FloatCost withOther(FloatCost other) const {
        const std::uint32_t d = static_cast<std::uint32_t>(other.hops) - static_cast<std::uint32_t>(hops);
        if (std::bit_cast<std::uint32_t>(level) != std::bit_cast<std::uint32_t>(other.level) || d >= 256)
            return *this;
        // One hop is worth 256; the equation has the sum of both plus this root as twice its solution.
        const float root = std::sqrt(static_cast<float>(131072 - static_cast<std::int32_t>(d * d)));
        const float twice = static_cast<float>(wrappingSum(hops, other.hops)) + root;
        return {level, wrappingSum(truncatedIndex(twice * 0.5F + 0.5F), -eikonalAddend)};
    }

    friend bool operator<(FloatCost a, FloatCost b) {
        return a.level < b.level || (a.level == b.level && a.hops < b.hops);
    }
    friend bool operator<=(FloatCost a, FloatCost b) {
        return a.level < b.level || (a.level == b.level && a.hops <= b.hops);
    }
};

} // namespace lum::kernels
