// Rows of one value, and where the vectors of a row begin.
#pragma once

#include <cstdint>

#include "frame/lanes.h"

namespace lum::kernels {

/// Elements before the first one that lies on a 16-byte boundary; 0 where none lies on one.
template <class T> int elementsToBoundary(const T* first) {
    const auto address = reinterpret_cast<std::uintptr_t>(first);
    return address % sizeof(T) == 0 ? static_cast<int>((0 - address) % 16 / sizeof(T)) : 0;
}

/// Sets `count` elements: Lum32s, Lum32f, Lum64f.
template <class T> void fillRow(T* row, int count, T value) {
    constexpr int n = 64 / sizeof(T);
    const auto block = broadcast<n>(value);
    int x = 0;
    // 64 bytes per iteration
    for (; x <= count - n; x += n) store(block, row + x);
    // tail: scalar, one element at a time
    for (; x < count; ++x) row[x] = value;
}

} // namespace lum::kernels
