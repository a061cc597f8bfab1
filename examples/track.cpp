// Points of one frame found again in the next one, by optical flow through two levels of a pyramid.
#include <cmath>
#include <cstdio>
#include <vector>

#include "check.h"

namespace {

constexpr LumSize size = {96, 80};
constexpr int winSize = 11;
constexpr float rate = 2;

/// A frame and the level below it, in the pyramid that the tracker reads.
struct Frame {
    std::vector<Lum8u> fine, coarse, memory, buffer;
    LumPyramid* pyramid = nullptr;

    /// Smooth waves, moved to the right and down.
    Frame(float right, float down) : fine(size.width * size.height) {
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                fine[y * size.width + x] = static_cast<Lum8u>(128 + 60 * std::sin((x - right) * 0.31F) +
                                                              60 * std::cos((y - down) * 0.23F));
        Lum32s bytes = 0, bufferBytes = 0;
        CHECK(lumiPyramidGetSize(&bytes, &bufferBytes, 1, size, rate));
        memory.resize(bytes);
        buffer.resize(bufferBytes + 1);
        CHECK(lumiPyramidInit(&pyramid, 1, size, rate, memory.data(), buffer.data()));
        const LumSize below = pyramid->rois[1];
        coarse.resize(below.width * below.height);
        pyramid->images[0] = fine.data(), pyramid->steps[0] = size.width;
        pyramid->images[1] = coarse.data(), pyramid->steps[1] = below.width;

        constexpr Lum16s kernel[] = {1, 4, 6, 4, 1};
        CHECK(lumiPyramidLayerDownGetSize_8u_C1R(size, rate, 5, &bytes, &bufferBytes));
        std::vector<Lum8u> layer(bytes), layerBuffer(bufferBytes + 1);
        LumPyramidLayerDownState* state = nullptr;
        CHECK(lumiPyramidLayerDownInit_8u_C1R(&state, size, rate, kernel, 5, 2, layer.data(),
                                              layerBuffer.data()));
        CHECK(lumiPyramidLayerDown_8u_C1R(fine.data(), size.width, size, coarse.data(), below.width, below,
                                          state));
    }
};

} // namespace

int main() {
    const Frame before(0, 0), after(2.5F, -1.5F);
    const std::vector<LumPoint32f> points = {{30, 30}, {48, 40}, {64, 52}};
    std::vector<LumPoint32f> found = points; // where the search begins
    std::vector<Lum8s> lost(points.size());
    std::vector<Lum32f> error(points.size());

    Lum32s bytes = 0;
    CHECK(lumiOpticalFlowPyrLKGetSize(winSize, size, lumType8u, 0, &bytes));
    std::vector<Lum8u> memory(bytes);
    LumOpticalFlowState* state = nullptr;
    CHECK(lumiOpticalFlowPyrLKInit_8u_C1R(&state, size, winSize, 0, memory.data()));
    CHECK(lumiOpticalFlowPyrLK_8u_C1R(before.pyramid, after.pyramid, points.data(), found.data(), lost.data(),
                                      error.data(), static_cast<int>(points.size()), winSize, 1, 30, 0.01F,
                                      state));
    for (std::size_t i = 0; i < points.size(); ++i)
        if (lost[i] == 0)
            std::printf("(%g, %g) moved by %.1f, %.1f\n", points[i].x, points[i].y, found[i].x - points[i].x,
                        found[i].y - points[i].y);
        else
            std::printf("(%g, %g) is lost\n", points[i].x, points[i].y);
    return 0;
}
