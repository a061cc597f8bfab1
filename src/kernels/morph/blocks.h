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

/// Calls body(x) for blocks of N that cover 0 .. count - 1, at least one. Tail: overlapping last vector, so the body must give
/// the same when an element is visited twice.
template <int N, class Body> LUM_LANE void forEachWholeBlock(std::ptrdiff_t count, Body body) {
    std::ptrdiff_t x = 0;
    for (; x <= count - N; x += N) body(x);
    if (x < count) body(count - N);
}

/// The same with body.operator()<N>(x), in smaller blocks where a row is shorter than N; scalar in rows below a block of 16 bytes.
template <int N, class T, class Body> LUM_LANE void forEachBlock(std::ptrdiff_t count, Body body) {
    if (count >= N) {
        forEachWholeBlock<N>(count, [&](std::ptrdiff_t x) LUM_BLOCK_BODY { body.template operator()<N>(x); });
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
