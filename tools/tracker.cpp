#include "tracker.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "drawing.h"
#include "failure.h"
#include "gallery/timing.h"
#include "gallery/work_memory.h"

namespace tools {
namespace {

constexpr int levelsBelow = 3;
constexpr float rate = 2;
constexpr int winSize = 21;
constexpr int iterations = 30;
constexpr float threshold = 0.01F;

/// A picture and its smaller versions.
class PicturePyramid {
  public:
    explicit PicturePyramid(const Picture& grey) {
        Lum32s bytes = 0;
        Lum32s scratchBytes = 0;
        expectOk(lumiPyramidGetSize(&bytes, &scratchBytes, levelsBelow, grey.size(), rate),
                 "lumiPyramidGetSize");
        memory_.resize(bytes);
        std::vector<Lum8u> scratch(scratchBytes);
        expectOk(lumiPyramidInit(&record_, levelsBelow, grey.size(), rate, memory_.data(), scratch.data()),
                 "lumiPyramidInit");
        planes_.push_back(grey);
        for (int k = 1; k <= record_->level; ++k)
            planes_.emplace_back(record_->rois[k].width, record_->rois[k].height);
        for (int k = 0; k <= record_->level; ++k) {
            record_->images[k] = planes_[k].data();
            record_->steps[k] = planes_[k].step();
        }
        reduce();
    }
    PicturePyramid(const PicturePyramid&) = delete;
    PicturePyramid& operator=(const PicturePyramid&) = delete;

    const LumPyramid* record() const { return record_; }

  private:
    void reduce() {
        const LumSize size = planes_[0].size();
        const std::array<Lum16s, 5> kernel{1, 4, 6, 4, 1};
        Lum32s stateBytes = 0;
        Lum32s bufferBytes = 0;
        expectOk(lumiPyramidLayerDownGetSize_8u_C1R(size, rate, 5, &stateBytes, &bufferBytes),
                 "lumiPyramidLayerDownGetSize_8u_C1R");
        WorkMemory memory(stateBytes);
        WorkMemory buffer(bufferBytes);
        LumPyramidLayerDownState* state = nullptr;
        expectOk(lumiPyramidLayerDownInit_8u_C1R(&state, size, rate, kernel.data(), 5, 2, memory.bytes(),
                                                 buffer.bytes()),
                 "lumiPyramidLayerDownInit_8u_C1R");
        for (std::size_t k = 1; k < planes_.size(); ++k)
            expectOk(lumiPyramidLayerDown_8u_C1R(planes_[k - 1].data(), planes_[k - 1].step(),
                                                 planes_[k - 1].size(), planes_[k].data(), planes_[k].step(),
                                                 planes_[k].size(), state),
                     "lumiPyramidLayerDown_8u_C1R");
    }

    std::vector<Lum8u> memory_;
    std::vector<Picture> planes_;
    LumPyramid* record_ = nullptr;
};

/// The smaller eigenvalue of the gradients around each pixel.
Plane<Lum32f> textureOf(const Picture& grey) {
    Lum32s bytes = 0;
    expectOk(lumiMinEigenValGetBufferSize_8u32f_C1R(grey.size(), 3, 5, &bytes),
             "lumiMinEigenValGetBufferSize_8u32f_C1R");
    WorkMemory buffer(bytes);
    Plane<Lum32f> texture(grey.width, grey.height);
    expectOk(lumiMinEigenVal_8u32f_C1R(grey.data(), grey.step(), texture.data(), texture.step(), grey.size(),
                                       0, 3, 5, buffer.bytes()),
             "lumiMinEigenVal_8u32f_C1R");
    return texture;
}

Colour colourOfDirection(float dx, float dy) {
    constexpr float third = 2.0943951F;
    const float angle = std::atan2(dy, dx);
    const auto tone = [&](float shift) { return static_cast<Lum8u>(150 + 105 * std::cos(angle - shift)); };
    return {tone(0), tone(third), tone(2 * third)};
}

LumPoint pixelAt(LumPoint32f p) {
    return {static_cast<int>(std::lround(p.x)), static_cast<int>(std::lround(p.y))};
}

} // namespace

std::vector<LumPoint32f> texturedPoints(const Picture& grey, int spacing) {
    const Plane<Lum32f> texture = textureOf(grey);
    const float best = *std::max_element(texture.elements.begin(), texture.elements.end());
    std::vector<LumPoint32f> points;
    for (int top = 0; top < grey.height; top += spacing)
        for (int left = 0; left < grey.width; left += spacing) {
            LumPoint place{left, top};
            for (int y = top; y < std::min(top + spacing, grey.height); ++y)
                for (int x = left; x < std::min(left + spacing, grey.width); ++x)
                    if (texture.at(x, y) > texture.at(place.x, place.y)) place = {x, y};
            if (texture.at(place.x, place.y) > best / 1000)
                points.push_back({static_cast<float>(place.x), static_cast<float>(place.y)});
        }
    return points;
}

Tracking followPoints(const Picture& before, const Picture& after, const std::vector<LumPoint32f>& points) {
    Tracking tracking{{}, 0};
    if (points.empty()) return tracking;
    const PicturePyramid first(before);
    const PicturePyramid second(after);
    Lum32s bytes = 0;
    expectOk(lumiOpticalFlowPyrLKGetSize(winSize, before.size(), lumType8u, 0, &bytes),
             "lumiOpticalFlowPyrLKGetSize");
    WorkMemory memory(bytes);
    LumOpticalFlowState* state = nullptr;
    expectOk(lumiOpticalFlowPyrLKInit_8u_C1R(&state, before.size(), winSize, 0, memory.bytes()),
             "lumiOpticalFlowPyrLKInit_8u_C1R");

    const int count = static_cast<int>(points.size());
    std::vector<LumPoint32f> next(points.size());
    std::vector<Lum8s> status(points.size());
    std::vector<Lum32f> error(points.size());
    tracking.milliseconds = fastestCall(
        "lumiOpticalFlowPyrLK_8u_C1R", [&] { next = points; },
        [&] {
            return lumiOpticalFlowPyrLK_8u_C1R(first.record(), second.record(), points.data(), next.data(),
                                               status.data(), error.data(), count, winSize,
                                               first.record()->level, iterations, threshold, state);
        });
    for (std::size_t i = 0; i < points.size(); ++i)
        if (status[i] == 0) tracking.tracks.push_back({points[i], next[i], error[i]});
    return tracking;
}

void drawTracks(Picture& colour, const std::vector<Track>& tracks) {
    const int thickness = std::max(1, colour.width / 600);
    const float barb = static_cast<float>(3 * thickness);
    for (const Track& track : tracks) {
        const float dx = track.to.x - track.from.x;
        const float dy = track.to.y - track.from.y;
        const float length = std::hypot(dx, dy);
        const Colour tone = colourOfDirection(dx, dy);
        const LumPoint tip = pixelAt(track.to);
        drawLine(colour, pixelAt(track.from), tip, tone, thickness);
        if (length < 1) {
            drawBox(colour, {tip.x - thickness, tip.y - thickness, 2 * thickness + 1, 2 * thickness + 1},
                    tone, thickness);
            continue;
        }
        for (const float side : {-0.6F, 0.6F}) {
            const LumPoint32f end{track.to.x - barb * (dx + side * dy) / length,
                                  track.to.y - barb * (dy - side * dx) / length};
            drawLine(colour, tip, pixelAt(end), tone, thickness);
        }
    }
}

} // namespace tools
