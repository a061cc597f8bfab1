// How the rows of the feature kernels are cut into blocks.
#pragma once

#include <cstddef>

namespace lum::kernels {

/// Calls body(x) for blocks of N elements that cover 0 .. count - 1, count >= N. Tail: overlapping last vector, which
/// computes again what it overlaps, so what the body writes may not be what it reads.
template <int N, class Body> [[gnu::always_inline]] inline void forBlocks(std::ptrdiff_t count, Body body) {
    // one place that calls, so that the body becomes part of the loop
    for (std::ptrdiff_t x = 0;;) {
        body(x);
        x += N;
        if (x >= count) return;
        if (x > count - N) x = count - N;
    }
}

} // namespace lum::kernels
