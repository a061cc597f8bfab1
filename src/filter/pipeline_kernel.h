// Facts about a pipeline's kernel that choose the way its sums are formed, and tests that row and column stages
// share.
#pragma once

#include <cstdint>

#include "frame/check.h"

namespace lum {

inline std::int64_t sumOfMagnitudes(const Lum16s* kernel, int kernelSize) {
    std::int64_t sum = 0;
    for (int k = 0; k < kernelSize; ++k) sum += kernel[k] < 0 ? -kernel[k] : kernel[k];
    return sum;
}

inline bool holdsLowest(const Lum16s* kernel, int kernelSize) {
    for (int k = 0; k < kernelSize; ++k)
        if (kernel[k] == -32768) return true;
    return false;
}

/// All the first `count` pointers; a count below 1 walks nothing.
template <class T> LumStatus nullRow(T* const* rows, int count) {
    for (int y = 0; y < count; ++y)
        if (rows[y] == nullptr) return lumStatusNullPointer;
    return lumStatusOk;
}

} // namespace lum
