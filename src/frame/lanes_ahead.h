// Blocks that lie a few elements after one that is loaded already.
#pragma once

#include "frame/lanes.h"

namespace lum {

namespace lanes_detail {

/// The first M elements.
template <int M, class T, int N> LUM_LANE Block<T, M> firstVector(Block<T, N> a) {
    if constexpr (N == M)
        return a;
    else
        return firstVector<M>(a.low);
}

/// The bytes of a block from byte `distance` on, then those of the vector after it.
template <int distance, class T, int N, int M>
LUM_LANE Block<T, N> shiftedIn(Block<T, N> a, Block<T, M> next) {
    if constexpr (N == M)
        return blockOf<T, N>(_mm_alignr_epi8(rawInteger(next.v), rawInteger(a.v), distance));
    else
        return {shiftedIn<distance>(a.low, firstVector<M>(a.high)), shiftedIn<distance>(a.high, next)};
}

} // namespace lanes_detail

/// N elements from place + ahead on, of which `block` holds those from place on. What lies up to 16 bytes beyond
/// place + N may be read.
template <int ahead, class T, int N> LUM_LANE Block<T, N> loadAhead(Block<T, N> block, const T* place) {
    constexpr int distance = ahead * static_cast<int>(sizeof(T));
    constexpr int M = 16 / static_cast<int>(sizeof(T));
    // Short vectors are shifted faster than they are loaded across the lines of a cache.
    if constexpr (vectorBytes == 16 && distance < 16 && N >= M)
        return lanes_detail::shiftedIn<distance>(block, load<M>(place + N));
    else
        return load<N>(place + ahead);
}

} // namespace lum
