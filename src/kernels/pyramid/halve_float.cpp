#include "kernels/pyramid/halve_float.h"

#include "frame/instances.h"
#include "kernels/pyramid/in_blocks.h"
#include "kernels/pyramid/load_floats.h"

namespace lum::kernels {
namespace {

template <int n>
LUM_LANE Block<float, n> fiveTaps(Block<float, n> outer, Block<float, n> inner, Block<float, n> middle,
                                  const float (&weights)[3]) {
    const auto sum = outer * broadcast<n>(weights[0]) + inner * broadcast<n>(weights[1]);
    return sum + middle * broadcast<n>(weights[2]);
}

} // namespace

template <class T, int channels>
void halveFiveScalar(const T* src, const float* weights, std::ptrdiff_t pixels, float* dst) {
    for (std::ptrdiff_t i = 0; i < pixels * channels; ++i) {
        const T* middle = src + i / channels * channels + i;
        const auto at = [&](int pixel) { return static_cast<float>(middle[pixel * channels]); };
        dst[i] = (at(-2) + at(2)) * weights[0] + (at(-1) + at(1)) * weights[1] + at(0) * weights[2];
    }
}

template <class T, int channels>
void halveFive(const T* src, const float* weights, std::ptrdiff_t pixels, float* dst) {
    const float own[] = {weights[0], weights[1], weights[2]};
    // The last loads of a block take an element more than its results need: the last result is left out.
    const std::ptrdiff_t last = pixels - 1;
    if constexpr (channels == 1) {
        constexpr int N = 16;
        inBlocks<N>(
            last,
            [&](std::ptrdiff_t x) LUM_INLINED {
                forVectors<float, N>([&]<int n>(int part) LUM_INLINED {
                    const T* place = src + 2 * (x + part);
                    const auto before = load<2 * n>(place - 2);
                    const auto here = load<2 * n>(place);
                    const auto outer = evenSums<n>(before, load<2 * n>(place + 2));
                    const auto inner = oddSums<n>(before, here);
                    store(fiveTaps<n>(outer, inner, evenFloats<n>(here), own), dst + x + part);
                });
            },
            [&](std::ptrdiff_t x) { halveFiveScalar<T, 1>(src + 2 * x, weights, 1, dst + x); });
    } else {
        // One pixel per iteration. The fourth element is that of the next pixel, which follows in memory, and its place
        // in the result is written again.
        for (std::ptrdiff_t i = 0; i < last; ++i) {
            const T* place = src + 6 * i;
            const auto outer = loadFloats<4>(place - 6) + loadFloats<4>(place + 6);
            const auto inner = loadFloats<4>(place - 3) + loadFloats<4>(place + 3);
            store(fiveTaps<4>(outer, inner, loadFloats<4>(place), own), dst + 3 * i);
        }
    }
    halveFiveScalar<T, channels>(src + 2 * last * channels, weights, 1, dst + last * channels);
}

LUM_INSTANCES(halveFiveScalar, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1), (Lum32f, 3));
LUM_INSTANCES(halveFive, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1), (Lum32f, 3));

} // namespace lum::kernels
