// One value into neighbouring elements of a row.
#pragma once

#include <bit>
#include <cstddef>

#include "frame/lanes.h"

namespace lum::kernels {

namespace run_detail {

/// Fewer than 2 N elements: two blocks that overlap, or fewer than N.
template <int N, class U> LUM_LANE void writeShort(U* place, int count, U value) {
    if constexpr (N == 1) {
        if (count > 0) std::memcpy(place, &value, sizeof value);
    } else {
        if (count < N) {
            writeShort<N / 2>(place, count, value);
            return;
        }
        const auto block = broadcast<N>(value);
        store(block, place);
        store(block, place + count - N);
    }
}

} // namespace run_detail

/// Sets `count` elements, 0 or more, of 1 to 4 bytes.
template <class T> inline void writeRun(T* first, std::ptrdiff_t count, T newValue) {
    // Floats are written by their bits: a short block of them is none that arithmetic knows.
    using U = UnsignedOf<sizeof(T)>;
    constexpr int N = 64 / static_cast<int>(sizeof(T));
    U* place = reinterpret_cast<U*>(first);
    const U value = std::bit_cast<U>(newValue);
    if (count < N) {
        run_detail::writeShort<N / 2>(place, static_cast<int>(count), value);
        return;
    }
    const auto block = broadcast<N>(value);
    // 64 bytes per iteration
    for (std::ptrdiff_t i = 0; i < count - N; i += N) store(block, place + i);
    // the last 64 bytes
    store(block, place + count - N);
}

} // namespace lum::kernels
