// Runs of pixels that have been found to be of one region (Galler and Fischer, An improved equivalence algorithm,
// Communications of the ACM 7, 1964). A run's parent is itself or an earlier run, so that the first run of a region
// is its root. Runs are numbered in 32 bits, which more than 2^32 pixels have room in.
#pragma once

#include <cstdint>

namespace lum::kernels {

using RunNumber = std::uint32_t;

/// The root of a run's region; the way there is halved for later calls.
inline RunNumber rootOf(RunNumber* parents, RunNumber run) {
    while (parents[run] != run) {
        parents[run] = parents[parents[run]];
        run = parents[run];
    }
    return run;
}

/// Makes one region of the regions of two runs.
inline void join(RunNumber* parents, RunNumber a, RunNumber b) {
    a = rootOf(parents, a);
    b = rootOf(parents, b);
    if (a < b)
        parents[b] = a;
    else
        parents[a] = b;
}

} // namespace lum::kernels
