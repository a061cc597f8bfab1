// Low precision: the scale that is a divisor, and the kernels that the fast forms take.
#pragma once

#include "frame/convert.h"
#include "frame/stores.h"
#include "kernels/filter/pipeline_low.h"

namespace lum {

/// 16384 / divisor in single precision, truncated.
inline kernels::LowScale lowScale(int divisor) {
    const float quotient = 16384.0F / static_cast<float>(divisor);
    return {divisor == 1, truncated<Lum16s>(quotient)};
}

/// Sums over 16 of five symmetric taps need no multiplication.
inline bool isSymmetricOverSixteen(const Lum16s* kernel, int kernelSize, int divisor) {
    return kernelSize == 5 && divisor == 16 && kernel[0] == kernel[4] && kernel[1] == kernel[3];
}

/// The fast forms use streaming stores from a number of pixels on, whatever the cache; the product of width and
/// height wraps.
constexpr Stores storesOfFastRows(LumSize roiSize) {
    return wrappedBytes(1, roiSize) >= 0x80001 ? Stores::streaming : Stores::ordinary;
}
constexpr Stores storesOfFastColumns(LumSize roiSize) {
    return wrappedBytes(1, roiSize) >= 0x40001 ? Stores::streaming : Stores::ordinary;
}

} // namespace lum
