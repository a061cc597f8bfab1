#include "filter/sobel_kernel.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "frame/check.h"
#include "frame/instances.h"

namespace lum {
namespace {

/// What sums are formed in: integers wrap, and their low 16 bits do not depend on when the rest is dropped.
template <class T> using Sum = std::conditional_t<std::is_integral_v<T>, std::uint32_t, float>;

template <class T, class Step> void sweep(T* kernel, int kernelSize, int firstPass, int passes, Step step) {
    for (int pass = firstPass; pass < firstPass + passes; ++pass)
        for (int j = kernelSize - 1 - pass; j < kernelSize - 1; ++j)
            kernel[j] =
                static_cast<T>(step(static_cast<Sum<T>>(kernel[j]), static_cast<Sum<T>>(kernel[j + 1])));
}

} // namespace

template <class T> LumStatus genSobelKernel(T* kernel, int kernelSize, int derivativeOrder, int sign) {
    if (auto s =
            firstFailure(checkNotNull(kernel), checkCount(kernelSize),
                         errorIf(kernelSize % 2 == 0 || derivativeOrder < 0 || kernelSize <= derivativeOrder,
                                 lumStatusSizeError)))
        return s;
    std::fill_n(kernel, kernelSize - 1, T{0});
    kernel[kernelSize - 1] = 1;
    const int smoothings = kernelSize - derivativeOrder - 1;
    sweep(kernel, kernelSize, 1, smoothings, [](auto element, auto right) { return element + right; });
    sweep(kernel, kernelSize, 1 + smoothings, derivativeOrder,
          [](auto element, auto right) { return element - right; });
    if (sign < 0)
        std::transform(kernel, kernel + kernelSize, kernel,
                       [](T element) { return static_cast<T>(-static_cast<Sum<T>>(element)); });
    return lumStatusOk;
}

LUM_INSTANCES(genSobelKernel, (Lum16s), (Lum32f));

} // namespace lum
