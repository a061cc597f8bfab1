// Matrices of four by four floats in the units of blocks.
#pragma once

#include "frame/lanes.h"

namespace lum {

namespace lanes_detail {

/// Within units of 16 bytes: x(0), y(0), x(1), y(1) from the low or from the high halves.
template <bool high, class V> LUM_LANE V unpackedFloats(V x, V y) {
    if constexpr (sizeof(V) == 16)
        return high ? _mm_unpackhi_ps(x, y) : _mm_unpacklo_ps(x, y);
    else if constexpr (sizeof(V) == 32)
        return high ? _mm256_unpackhi_ps(x, y) : _mm256_unpacklo_ps(x, y);
    else
        return high ? _mm512_unpackhi_ps(x, y) : _mm512_unpacklo_ps(x, y);
}
/// The same of pairs of floats: the low or the high halves of both.
template <bool high, class V> LUM_LANE V joinedHalves(V x, V y) {
    if constexpr (sizeof(V) == 16)
        return high ? _mm_movehl_ps(y, x) : _mm_movelh_ps(x, y);
    else if constexpr (sizeof(V) == 32)
        return high ? _mm256_shuffle_ps(x, y, 0xEE) : _mm256_shuffle_ps(x, y, 0x44);
    else
        return high ? _mm512_shuffle_ps(x, y, 0xEE) : _mm512_shuffle_ps(x, y, 0x44);
}

} // namespace lanes_detail

/// In each unit of four floats, a, b, c and d are the rows of a matrix, which become its columns.
template <int N>
LUM_LANE void transposeUnits(Block<float, N>& a, Block<float, N>& b, Block<float, N>& c, Block<float, N>& d) {
    using namespace lanes_detail;
    const auto ab = unpackedFloats<false>(a.v, b.v);
    const auto cd = unpackedFloats<false>(c.v, d.v);
    const auto abUpper = unpackedFloats<true>(a.v, b.v);
    const auto cdUpper = unpackedFloats<true>(c.v, d.v);
    a.v = joinedHalves<false>(ab, cd);
    b.v = joinedHalves<true>(ab, cd);
    c.v = joinedHalves<false>(abUpper, cdUpper);
    d.v = joinedHalves<true>(abUpper, cdUpper);
}

} // namespace lum
