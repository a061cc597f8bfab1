// Rows of one value, and where a row's vectors begin.
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/vector.h"

namespace lum::kernels {

/// Elements in front of the first one that lies on a 16-byte boundary; 0 where none lies on one.
template <class T> int elementsToBoundary(const T* first) {
    const auto address = reinterpret_cast<std::uintptr_t>(first);
    return address % sizeof(T) == 0 ? static_cast<int>((0 - address) % 16 / sizeof(T)) : 0;
}

/// Sets `count` elements: Lum32s, Lum32f, Lum64f.
template <class T> void fillRow(T* row, int count, T value) {
    __m128i lanes;
    if constexpr (std::is_same_v<T, Lum32s>)
        lanes = _mm_set1_epi32(value);
    else if constexpr (std::is_same_v<T, Lum32f>)
        lanes = _mm_castps_si128(_mm_set1_ps(value));
    else
        lanes = _mm_castpd_si128(_mm_set1_pd(value));

    constexpr int perVector = 16 / sizeof(T);
    int x = 0;
    // whole vectors
    for (; x <= count - perVector; x += perVector) storeVector<Access::unaligned>(row + x, lanes);
    // tail, one element at a time
    for (; x < count; ++x) row[x] = value;
}

} // namespace lum::kernels
