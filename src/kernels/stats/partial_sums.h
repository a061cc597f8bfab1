// Sums within a block, as wide as they need to be: what norms and means add up first.
#pragma once

#include <array>

#include "frame/lanes_parts.h"
#include "frame/lanes_products.h"

namespace lum::kernels {

/// The sums of neighbouring unsigned elements.
template <class T, int n> LUM_LANE auto pairSums(Block<T, n> a) {
    static_assert(std::is_unsigned_v<T>);
    using Wide = UnsignedOf<2 * sizeof(T)>;
    const auto pairs = bitsAs<Wide>(a);
    return (pairs & broadcast<n / 2>(static_cast<Wide>(static_cast<T>(-1)))) +
           (pairs >> static_cast<int>(8 * sizeof(T)));
}

/// Sums of the squares of four bytes, in no order.
template <int n> LUM_LANE Block<std::uint32_t, n / 4> sumsOfSquares(Block<Lum8u, n> bytes) {
    const auto words = interleaveUnits(bytes, zeros<Lum8u, n>());
    const auto low = bitsAs<std::int16_t>(words.low);
    const auto high = bitsAs<std::int16_t>(words.high);
    return bitsAs<std::uint32_t>(multiplyAddPairs(low, low) + multiplyAddPairs(high, high));
}

/// All ones but in the last `count` of n bytes: excludes what an overlapping last vector has before its row's last pixels.
template <int n> LUM_LANE Block<std::int8_t, n> allButLast(int count) {
    static constexpr auto onesThenZeros = [] {
        std::array<std::int8_t, 2 * n> bytes{};
        for (int i = 0; i < n; ++i) bytes[i] = -1;
        return bytes;
    }();
    return load<n>(onesThenZeros.data() + count);
}

} // namespace lum::kernels
