// The loop over a row in blocks of a fixed number of elements.
#pragma once

#include <cstddef>

namespace lum::kernels {

/// Calls block(i) for blocks of N elements. Tail: overlapping last vector, so that its elements are written twice;
/// scalar(i) for each element of a row that is shorter than a block.
template <int N, class OfBlock, class OfElement>
[[gnu::always_inline]] inline void inBlocks(std::ptrdiff_t count, OfBlock block, OfElement scalar) {
    std::ptrdiff_t i = 0;
    // whole blocks
    for (; i <= count - N; i += N) block(i);
    if (i == count) return;
    // tail: overlapping last vector
    if (count >= N)
        block(count - N);
    else
        for (; i < count; ++i) scalar(i);
}

} // namespace lum::kernels
