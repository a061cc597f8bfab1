// Facts about a pipeline's kernel that choose the way its sums are formed, and tests that row and column stages
// share.
#pragma once

#include <bit>
#include <cstdint>
#include <type_traits>

#include "frame/check.h"
#include "kernels/filter/taps.h"

namespace lum {

using kernels::sumOfMagnitudes;

/// Whether all sums of a kernel in single precision are exact: the divisor is a power of two, and no partial
/// sum of the products can pass 2^24, whatever the elements. Any way of forming such sums gives the same
/// results.
template <class S> bool sumsAreExact(const S* kernel, int kernelSize, int divisor) {
    constexpr std::int64_t largestElement = std::is_signed_v<S> ? 32768 : 65535;
    const unsigned magnitude =
        divisor < 0 ? 0U - static_cast<unsigned>(divisor) : static_cast<unsigned>(divisor);
    return std::has_single_bit(magnitude) && sumOfMagnitudes(kernel, kernelSize) * largestElement <= 1 << 24;
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
