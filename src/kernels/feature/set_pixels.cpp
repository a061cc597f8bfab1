#include "kernels/feature/set_pixels.h"

#include <bit>

#include "frame/lanes_reduce.h"

namespace lum::kernels {

int nextSetPixelScalar(const Lum8u* row, int x, int count) {
    while (x < count && row[x] == 0) ++x;
    return x;
}

int nextSetPixel(const Lum8u* row, int x, int count) {
    constexpr int pixels = 32;
    for (; x <= count - pixels; x += pixels) {
        const std::uint32_t bits = signBits(load<pixels>(row + x) != zeros<Lum8u, pixels>());
        if (bits != 0) return x + std::countr_zero(bits);
    }
    // tail: scalar
    return nextSetPixelScalar(row, x, count);
}

} // namespace lum::kernels
