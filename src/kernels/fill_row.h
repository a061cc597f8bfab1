// Rows of one value, and where the 16-byte units of a row begin.
#pragma once

#include <cstdint>

#include "frame/lanes.h"

namespace lum::kernels {

/// Elements before the first one that lies on a 16-byte boundary; 0 where none lies on one.
template <class T> int elementsToBoundary(const T* first) {
    const auto address = reinterpret_cast<std::uintptr_t>(first);
    return address % sizeof(T) == 0 ? static_cast<int>((0 - address) % 16 / sizeof(T)) : 0;
}

/// Sets `count` elements.
template <class T> void fillRow(T* row, int count, T value) {
    constexpr int unit = 16 / sizeof(T);
    const auto block = broadcast<unit>(value);
    int x = 0;
    // 16 bytes per iteration
    for (; x <= count - unit; x += unit) store(block, row + x);
    // tail, one element at a time
    for (; x < count; ++x) row[x] = value;
}

} // namespace lum::kernels
