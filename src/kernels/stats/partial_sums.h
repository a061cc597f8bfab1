// Sums within a block, as wide as they need to be: what norms and means add up first.
#pragma once

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

} // namespace lum::kernels
