// A mask as taps: which line of which source row is to be read, and where.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>

#include "kernels/morph/mask.h"

namespace lum::kernels {

/// Calls visit(row, column, length) for each run of set cells.
template <class Visit> void forEachRun(Mask mask, Visit visit) {
    for (std::ptrdiff_t row = 0; row < mask.height; ++row) {
        const Lum8u* const cells = mask.cells + row * mask.width;
        for (std::ptrdiff_t column = 0; column < mask.width; ++column) {
            if (cells[column] == 0) continue;
            const std::ptrdiff_t first = column;
            while (column < mask.width && cells[column] != 0) ++column;
            visit(row, first, column - first);
        }
    }
}

/// Lines of class k hold the strongest of 2^k neighbouring pixels. A run is covered by windows of the widest class that
/// fits into it, the last of which may overlap the one before it.
inline int classOfRun(std::ptrdiff_t length, int classes) {
    return std::min(static_cast<int>(std::bit_width(static_cast<std::size_t>(length))) - 1, classes - 1);
}
inline std::ptrdiff_t tapsOfRun(std::ptrdiff_t length, int classes) {
    const std::ptrdiff_t window = std::ptrdiff_t{1} << classOfRun(length, classes);
    return (length + window - 1) / window;
}

inline std::ptrdiff_t tapsOfMask(Mask mask, int classes) {
    std::ptrdiff_t taps = 0;
    forEachRun(mask, [&](std::ptrdiff_t, std::ptrdiff_t, std::ptrdiff_t length) {
        taps += tapsOfRun(length, classes);
    });
    return taps;
}

/// The number of classes, at most `most`, that asks for the fewest loads and stores.
inline int bestClasses(Mask mask, int most) {
    std::ptrdiff_t longest = 1;
    forEachRun(mask, [&](std::ptrdiff_t, std::ptrdiff_t, std::ptrdiff_t length) {
        longest = std::max(longest, length);
    });
    int best = 1;
    std::ptrdiff_t least = 0;
    for (int classes = 1; classes <= std::min(most, classOfRun(longest, most) + 1); ++classes) {
        constexpr int costOfClass = 3;
        const std::ptrdiff_t cost = tapsOfMask(mask, classes) + costOfClass * (classes - 1);
        if (classes == 1 || cost < least) {
            best = classes;
            least = cost;
        }
    }
    return best;
}

} // namespace lum::kernels
