// The kernel of a layer state: tested for symmetry, normalised, and forced symmetric.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "frame/check.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// The elements of a kernel: integers for pixels of integers.
template <class T> using PyramidTap = std::conditional_t<std::is_integral_v<T>, Lum16s, Lum32f>;

template <class T> inline constexpr LumDataType pyramidDataType = lumType32f;
template <> inline constexpr LumDataType pyramidDataType<Lum8u> = lumType8u;
template <> inline constexpr LumDataType pyramidDataType<Lum16u> = lumType16u;

/// The mode that every Init takes.
inline constexpr int pyramidMode = 2;

/// Fixed point of normalised integer kernels.
inline constexpr int kernelFractionBits = 12;

/// Odd, and three taps at least.
constexpr LumStatus checkKernelSize(int kernelSize) {
    return errorIf(kernelSize < 3 || kernelSize % 2 == 0, lumStatusBadArgument);
}

/// Floats that differ by a denormal at most are the same.
inline bool tapsDiffer(Lum16s a, Lum16s b) { return a != b; }
inline bool tapsDiffer(Lum32f a, Lum32f b) { return std::fabs(a - b) > std::numeric_limits<Lum32f>::min(); }

/// A warning where two taps at the same distance from the middle differ.
template <class Tap> LumStatus symmetryOf(const Tap* kernel, int kernelSize) {
    for (int i = 0; i < kernelSize / 2; ++i)
        if (tapsDiffer(kernel[i], kernel[kernelSize - 1 - i])) return lumStatusKernelNotSymmetric;
    return lumStatusOk;
}

/// The middle tap and twice each tap before it; those after it play no part.
template <class Sum, class Tap> Sum sumOfKernel(const Tap* kernel, int kernelSize) {
    const int middle = kernelSize / 2;
    Sum sum = kernel[middle];
    for (int i = 0; i < middle; ++i) sum += 2 * static_cast<Sum>(kernel[i]);
    return sum;
}

/// The shares of the sum with 12 bits after the binary point: divided with two bits more, which are then cut off. A
/// kernel of sum 0 keeps its values. Both halves are written.
inline void normaliseFixed(const Lum16s* kernel, int kernelSize, Lum32s* normalised) {
    const auto sum = sumOfKernel<std::int64_t>(kernel, kernelSize);
    for (int i = 0; i <= kernelSize / 2; ++i) {
        const Lum32s share =
            sum == 0 ? kernel[i] : static_cast<Lum32s>((std::int64_t{kernel[i]} * 16384) / sum) >> 2;
        normalised[i] = normalised[kernelSize - 1 - i] = share;
    }
}

/// The shares of the sum in single precision. Both halves are written.
template <class Tap> void normaliseFloat(const Tap* kernel, int kernelSize, Lum32f* normalised) {
    const auto sum = sumOfKernel<Lum32f>(kernel, kernelSize);
    for (int i = 0; i <= kernelSize / 2; ++i)
        normalised[i] = normalised[kernelSize - 1 - i] = static_cast<Lum32f>(kernel[i]) / sum;
}

/// Whether these are the five taps 1 4 6 4 1, divided by their sum.
inline bool isBinomial(const Lum32f* halfKernel, int kernelSize) {
    return kernelSize == 5 && halfKernel[0] == 0.0625F && halfKernel[1] == 0.25F && halfKernel[2] == 0.375F;
}

} // namespace lum
