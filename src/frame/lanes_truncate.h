// Truncations toward zero that clamp to the range of the result, as those of one value in convert.h do. A NaN gives the
// lower limit.
#pragma once

#include <limits>

#include "frame/lanes_convert.h"

namespace lum {

/// Doubles, four or more, truncated toward zero. What 32 bits cannot hold gives the lowest of them.
template <int N> LUM_LANE Block<std::int32_t, N> truncated(Block<double, N> a) {
    static_assert(N >= 4);
    if constexpr (vectorBytes == 16 && N == 4)
        return blockOf<std::int32_t, N>(
            _mm_unpacklo_epi64(_mm_cvttpd_epi32(a.low.v), _mm_cvttpd_epi32(a.high.v)));
    else if constexpr (!isOneVector<double, N>)
        return join(truncated(a.low), truncated(a.high));
    else if constexpr (Block<double, N>::bytes == 32)
        return blockOf<std::int32_t, N>(_mm256_cvttpd_epi32(a.v));
    else
        return blockOf<std::int32_t, N>(_mm512_cvttpd_epi32(a.v));
}

/// Clamped to the range of the integers, then truncated toward zero.
template <int N> LUM_LANE Block<std::int32_t, N> truncatedTo32s(Block<double, N> a) {
    return truncated(min(max(a, broadcast<N>(-2147483648.0)), broadcast<N>(2147483647.0)));
}

/// A half added, clamped to the range of an integer type of at most 16 bits, then truncated toward zero.
template <class T, int N> LUM_LANE Block<std::int32_t, N> halfUpTruncated(Block<float, N> a) {
    static_assert(sizeof(T) <= 2, "the limits must be exact in single precision");
    constexpr float lowest = std::numeric_limits<T>::min();
    constexpr float highest = std::numeric_limits<T>::max();
    return truncated(min(max(a + broadcast<N>(0.5F), broadcast<N>(lowest)), broadcast<N>(highest)));
}

} // namespace lum
