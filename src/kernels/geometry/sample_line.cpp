#include "kernels/geometry/sample_line.h"

#include "frame/instances.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace lum::kernels {

// The walk (Bresenham, Algorithm for computer control of a digital plotter, 1965) is one chain of dependent
// steps through scattered pixels: there is no vector form.
template <class T, int channels>
void sampleLine(Image<const T> src, T* dst, LumPoint point1, LumPoint point2) {
    constexpr std::ptrdiff_t bytesOfPixel = channels * sizeof(T);
    const int dx = point2.x - point1.x;
    const int dy = point2.y - point1.y;
    const std::ptrdiff_t alongX = dx < 0 ? -bytesOfPixel : bytesOfPixel;
    const std::ptrdiff_t alongY = dy < 0 ? -src.step : src.step;
    // Of two equal sides y is the major one.
    const bool majorIsX = std::abs(dx) > std::abs(dy);
    const auto major = static_cast<unsigned>(std::max(std::abs(dx), std::abs(dy)));
    const auto minor = static_cast<unsigned>(std::min(std::abs(dx), std::abs(dy)));
    const std::ptrdiff_t alongMajor = majorIsX ? alongX : alongY;
    const std::ptrdiff_t alongBoth = alongX + alongY;

    const auto* pixel = reinterpret_cast<const unsigned char*>(
        src.row(point1.y) + static_cast<std::ptrdiff_t>(point1.x) * channels);
    // Stays at or above 0 and at or below 2 x major, which is below 2 to the 32.
    unsigned error = major;
    std::memcpy(dst, pixel, bytesOfPixel);
    for (unsigned i = 0; i < major; ++i) {
        dst += channels;
        const bool steps = error < 2 * minor;
        error += (steps ? 2 * major : 0) - 2 * minor;
        pixel += steps ? alongBoth : alongMajor;
        std::memcpy(dst, pixel, bytesOfPixel);
    }
}

LUM_INSTANCES(sampleLine, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1), (Lum32f, 3));

} // namespace lum::kernels
