#include "rows.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>

namespace bench {
namespace {

/// The next of a fixed sequence of numbers in 0..limit - 1.
int nextNumber(unsigned& state, int limit) {
    state = state * 1664525U + 1013904223U;
    return static_cast<int>((state >> 8) % static_cast<unsigned>(limit));
}

/// Scratches of nine pixels' width all over the picture, as long as its width asks for, until they cover the share of its
/// pixels that two dozen cover of the full size: about one in twenty.
Plane<Lum8u> scratches() {
    constexpr double share = 0.051;
    constexpr double halfWidth = 4.5;
    Plane<Lum8u> mask;
    unsigned state = 7;
    for (int covered = 0; covered < share * pixels;) {
        const double x0 = 20 + nextNumber(state, width - 40);
        const double y0 = 20 + nextNumber(state, height - 40);
        const double angle = nextNumber(state, 628) / 100.0;
        const double length = (200.0 + nextNumber(state, 700)) * width / fullSize.width;
        const double dx = std::cos(angle);
        const double dy = std::sin(angle);
        for (double along = 0; along < length; along += 0.5)
            for (double across = -halfWidth; across < halfWidth; across += 0.5) {
                const int x = static_cast<int>(std::lround(x0 + along * dx - across * dy));
                const int y = static_cast<int>(std::lround(y0 + along * dy + across * dx));
                if (x < 0 || x >= width || y < 0 || y >= height) continue;
                Lum8u& place = mask.data[y * width + x];
                covered += place == 0;
                place = 255;
            }
    }
    return mask;
}

/// The mask with its distances, and all that the calls need.
struct Hole {
    Plane<Lum8u> mask = scratches();
    Plane<Lum32f> distances;
    std::vector<Lum8u> marchBuffer;
    std::vector<Lum8u> state;
    std::vector<Lum8u> buffer;

    Hole() {
        Lum32s bytes = 0;
        lumiFastMarchingGetBufferSize_8u32f_C1R(size, &bytes);
        marchBuffer.resize(static_cast<std::size_t>(bytes));
        march(0);
    }

    void march(float radius) {
        lumiFastMarching_8u32f_C1R(mask.data, mask.step(), distances.data, distances.step(), size, radius,
                                   marchBuffer.data());
    }

    /// The analysis and the repair.
    void inpaint(const Plane<Lum8u>& src, Plane<Lum8u>& dst, float radius, int method) {
        Lum32s stateSize = 0;
        Lum32s bufferSize = 0;
        lumiInpaintGetSize(mask.data, mask.step(), size, radius, method, src.channels, &stateSize,
                           &bufferSize);
        state.resize(static_cast<std::size_t>(stateSize));
        buffer.resize(static_cast<std::size_t>(bufferSize));
        const auto init = src.channels == 1 ? lumiInpaintInit_8u_C1R : lumiInpaintInit_8u_C3R;
        const auto run = src.channels == 1 ? lumiInpaint_8u_C1R : lumiInpaint_8u_C3R;
        LumInpaintState* built = nullptr;
        init(&built, distances.data, distances.step(), mask.data, mask.step(), size, radius, method,
             state.data(), buffer.data());
        run(src.data, src.step(), dst.data, dst.step(), size, built, buffer.data());
    }
};

Setup fastMarching(float radius) {
    return [radius] {
        auto hole = std::make_shared<Hole>();
        return [hole, radius] { hole->march(radius); };
    };
}

/// The marching included.
Setup inpaint(int channels, float radius, int method) {
    return [=] {
        struct Work {
            Hole hole;
            Plane<Lum8u> src, dst;
        };
        auto work = std::make_shared<Work>(Work{{}, sceneAs<Lum8u>(channels), Plane<Lum8u>(channels)});
        return [work, radius, method] {
            work->hole.march(0);
            work->hole.inpaint(work->src, work->dst, radius, method);
        };
    };
}

const RowFile file([] {
    row("FastMarching_8u32f(radius 0)", fastMarching(0));
    row("FastMarching_8u32f(radius 20)", fastMarching(20));
    row("Inpaint_8u_front_r5", inpaint(1, 5, lumInpaintFront));
    row("Inpaint_8u_front_r5_C3", inpaint(3, 5, lumInpaintFront));
    row("Inpaint_8u_isophote_r5", inpaint(1, 5, lumInpaintIsophote));
    row("Inpaint_8u_isophote_r5_C3", inpaint(3, 5, lumInpaintIsophote));
});

} // namespace

} // namespace bench
