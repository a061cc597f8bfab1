// The runs of pixels other than 0 in a row.
#pragma once

#include <bit>
#include <cstdint>

#include "frame/lanes_reduce.h"
#include "lumcv/types.h"

namespace lum::kernels {

/// Calls emit(left, end) for each run, from left to right; one pixel at a time.
template <class T, class Emit> inline void scalarRuns(const T* row, int width, Emit emit) {
    for (int x = 0; x < width; ++x) {
        if (row[x] == 0) continue;
        const int left = x;
        while (x < width && row[x] != 0) ++x;
        emit(left, x);
    }
}

/// The same, a block at a time; Lum8u and Lum16u.
template <class T, class Emit> inline void vectorRuns(const T* row, int width, Emit emit) {
    constexpr int N = 32;
    if (width < N) {
        scalarRuns(row, width, emit);
        return;
    }
    int left = -1; // of the run that is open
    std::uint32_t last = 0;
    // One bit a pixel, the pixel at x lowest; `count` of them are new.
    const auto addBits = [&](std::uint32_t bits, int x) {
        std::uint32_t changes = bits ^ (bits << 1 | last);
        last = bits >> (N - 1);
        for (; changes != 0; changes &= changes - 1) {
            const int place = x + std::countr_zero(changes);
            if (left < 0) {
                left = place;
            } else {
                emit(left, place);
                left = -1;
            }
        }
    };
    int x = 0;
    // whole blocks
    for (; x <= width - N; x += N) addBits(signBits(load<N>(row + x) != zeros<T, N>()), x);
    // tail: the last block, without the pixels that are known; the zeros after it end a run
    if (x < width) addBits(signBits(load<N>(row + width - N) != zeros<T, N>()) >> (N - (width - x)), x);
    if (left >= 0) emit(left, width);
}

} // namespace lum::kernels
