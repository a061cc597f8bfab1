#include "kernels/pyramid/split.h"

#include <algorithm>

#include "frame/instances.h"
#include "kernels/pyramid/in_blocks.h"
#include "kernels/pyramid/load_floats.h"

namespace lum::kernels {
template <class T, int channels>
void splitPixelsScalar(const T* src, std::ptrdiff_t pixels, float* even, float* odd) {
    for (std::ptrdiff_t i = 0; i < pixels; ++i, src += channels) {
        float*& dst = i % 2 == 0 ? even : odd;
        dst = std::copy_n(src, channels, dst);
    }
}

template <class T, int channels>
void splitPixels(const T* src, std::ptrdiff_t pixels, float* even, float* odd) {
    std::ptrdiff_t pair = 0;
    if constexpr (channels == 1) {
        // 32 pixels per iteration
        for (; pair <= pixels / 2 - 16; pair += 16)
            forVectors<float, 16>([&]<int n>(int i) LUM_INLINED {
                const auto both = load<2 * n>(src + 2 * (pair + i));
                store(evenFloats<n>(both), even + pair + i);
                store(oddFloats<n>(both), odd + pair + i);
            });
    } else {
        // Two pixels per iteration. The fourth element of each is that of the next pixel, which follows in memory, and
        // its place in the result is written again by the next iteration.
        for (; pair <= pixels / 2 - 2; ++pair) {
            store(loadFloats<4>(src + 6 * pair), even + 3 * pair);
            store(loadFloats<4>(src + 6 * pair + 3), odd + 3 * pair);
        }
    }
    // tail: scalar, one pixel at a time
    splitPixelsScalar<T, channels>(src + 2 * pair * channels, pixels - 2 * pair, even + pair * channels,
                                   odd + pair * channels);
}

LUM_INSTANCES(splitPixelsScalar, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1), (Lum32f, 3));
LUM_INSTANCES(splitPixels, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1), (Lum32f, 3));

} // namespace lum::kernels
