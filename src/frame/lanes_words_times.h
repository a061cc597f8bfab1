// Unsigned words times floats, as wide as the words lie in units of 16 bytes.
#pragma once

#include "frame/lanes_convert.h"
#include "frame/lanes_reduce.h"

namespace lum {

/// A float by which words are multiplied: each product rounds once. Where one instruction multiplies and adds with one
/// rounding, a word w is not converted: as the low half of the float 2^23 + w it is multiplied, and 2^23 times the
/// factor, which is exact, is taken away again.
class WordFactor {
  public:
    WordFactor() = default;
    explicit WordFactor(float factor) : factor_(factor) {
#if defined(__FMA__)
        excess_ = Uniform(factor * -8388608.0F);
#endif
    }

    /// The products of the words of each half of a unit.
    template <int N> LUM_LANE UnitHalves<float, N / 2> times(Block<std::uint16_t, N> words) const {
        const auto halves = interleaveUnits(words, broadcast<N>(upperHalf));
        return {product<N / 2>(halves.low), product<N / 2>(halves.high)};
    }

  private:
#if defined(__FMA__)
    static constexpr std::uint16_t upperHalf = 0x4B00;

    template <int N> LUM_LANE Block<float, N> product(Block<std::uint16_t, 2 * N> shifted) const {
        const auto value = bitsAs<float>(shifted).v;
        const auto factor = factor_.template block<N>().v;
        const auto excess = excess_.template block<N>().v;
        if constexpr (N == 4)
            return {_mm_fmadd_ps(value, factor, excess)};
        else if constexpr (N == 8)
            return {_mm256_fmadd_ps(value, factor, excess)};
        else
            return {_mm512_fmadd_ps(value, factor, excess)};
    }

    Uniform<float> excess_;
#else
    static constexpr std::uint16_t upperHalf = 0;

    template <int N> LUM_LANE Block<float, N> product(Block<std::uint16_t, 2 * N> widened) const {
        return toFloat(bitsAs<std::int32_t>(widened)) * factor_;
    }
#endif
    Uniform<float> factor_;
};

} // namespace lum
