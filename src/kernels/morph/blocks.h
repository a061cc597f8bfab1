// Rows in blocks. A body is written once for any number of elements, one element included, so the scalar form of a
// kernel is its instance for one element.
#pragma once

#include <cstddef>

#include "frame/lanes.h"

// Of the lambda that works on a block: it is part of the loop that calls it.
#define LUM_BLOCK_BODY __attribute__((always_inline))

namespace lum::kernels {

/// Elements of the largest block.
template <class T> inline constexpr int blockElements = 64 / static_cast<int>(sizeof(T));

/// N elements, one of which is a plain value.
template <int N, class T> LUM_LANE auto take(const T* place) {
    if constexpr (N == 1)
        return *place;
    else
        return load<N>(place);
}
template <class T> LUM_LANE void put(T value, T* place) { *place = value; }
template <class T, int N> LUM_LANE void put(Block<T, N> value, T* place) { store(value, place); }

template <int N, class T> LUM_LANE auto spread(T value) {
    if constexpr (N == 1)
        return value;
    else
        return broadcast<N>(value);
}

/// Calls body.operator()<N>(x) for blocks that cover 0 .. count - 1. Tail: overlapping last vector, so the body must give
/// the same when an element is visited twice; scalar in rows below a block of 16 bytes.
template <int N, class T, class Body> LUM_LANE void forEachBlock(std::ptrdiff_t count, Body body) {
    if (count >= N) {
        // Whole blocks, then the last of them from the end of the row.
        std::ptrdiff_t x = 0;
        for (; x <= count - N; x += N) body.template operator()<N>(x);
        if (x < count) body.template operator()<N>(count - N);
    } else if constexpr (N * sizeof(T) > 16) {
        forEachBlock<N / 2, T>(count, body);
    } else {
        for (std::ptrdiff_t x = 0; x < count; ++x) body.template operator()<1>(x);
    }
}
template <class T, class Body> LUM_LANE void forEachBlock(std::ptrdiff_t count, Body body) {
    forEachBlock<blockElements<T>, T>(count, body);
}

} // namespace lum::kernels
