// How the rows of the feature kernels are cut into blocks.
#pragma once

#include <cstddef>

namespace lum::kernels {

/// Calls body(x) for blocks of N elements that cover 0 .. count - 1, count >= N. The last block ends with the row and
/// computes again what it overlaps, so what the body writes may not be what it reads.
template <int N, class Body> [[gnu::always_inline]] inline void forBlocks(std::ptrdiff_t count, Body body) {
    std::ptrdiff_t x = 0;
    for (; x <= count - N; x += N) body(x);
    if (x < count) body(count - N);
}

} // namespace lum::kernels
