// Panels of motion: points followed between two views, and a moving object in what a camera that stands still sees.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <random>

#include "drawing.h"
#include "gallery/panel.h"
#include "gallery/timing.h"
#include "gallery/work_memory.h"
#include "lumcv.h"
#include "tones.h"
#include "tracker.h"

namespace tools {
namespace {

/// The grey picture rotated about its centre and moved, edges repeated.
Picture rotatedAndMoved(const Picture& grey, double angle, double dx, double dy) {
    Picture result(grey.width, grey.height);
    const double cx = grey.width / 2.0;
    const double cy = grey.height / 2.0;
    for (int y = 0; y < grey.height; ++y)
        for (int x = 0; x < grey.width; ++x) {
            const double u = x - cx - dx;
            const double v = y - cy - dy;
            const double sx =
                std::clamp(cx + std::cos(angle) * u + std::sin(angle) * v, 0.0, grey.width - 1.0);
            const double sy =
                std::clamp(cy - std::sin(angle) * u + std::cos(angle) * v, 0.0, grey.height - 1.0);
            const int ix = std::min(static_cast<int>(sx), std::max(grey.width - 2, 0));
            const int iy = std::min(static_cast<int>(sy), std::max(grey.height - 2, 0));
            const double fx = sx - ix;
            const double fy = sy - iy;
            const int right = std::min(ix + 1, grey.width - 1);
            const int below = std::min(iy + 1, grey.height - 1);
            const double value = (1 - fy) * ((1 - fx) * grey.at(ix, iy) + fx * grey.at(right, iy)) +
                                 fy * ((1 - fx) * grey.at(ix, below) + fx * grey.at(right, below));
            result.at(x, y) = static_cast<Lum8u>(std::lround(value));
        }
    return result;
}

DrawnPanel flowArrows(const Subject& subject) {
    const Picture& before = subject.grey;
    const double reach = before.width / 160.0;
    const Picture after = rotatedAndMoved(before, 0.02, reach, -reach / 2);
    const std::vector<LumPoint32f> points = texturedPoints(before, std::max(8, before.width / 48));
    const Tracking tracking = followPoints(before, after, points);
    DrawnPanel drawn{colourOf(after), tracking.milliseconds};
    drawn.code = "lumiOpticalFlowPyrLK_8u_C1R(firstPyramid, secondPyramid, points.data(), next.data(), "
                 "status.data(), error.data(), count, winSize, level, 30, 0.01F, state)";
    drawTracks(drawn.picture, tracking.tracks);
    if (tracking.tracks.empty()) drawNotice(drawn.picture, "no point found again");
    char text[80];
    std::snprintf(text, sizeof text, "%zu of %zu points found again", tracking.tracks.size(), points.size());
    drawn.numbers = {text};
    return drawn;
}

// ---- a moving object

constexpr int frames = 60;
constexpr LumFGMMParams backgroundParams{.history = 100,
                                         .mixtures = 3,
                                         .varInit = 225,
                                         .varMin = 16,
                                         .varMax = 5 * 225,
                                         .matchBackground = 16,
                                         .backgroundRatio = 0.9F,
                                         .matchGenerate = 9,
                                         .complexityPrior = 0.05F,
                                         .shadowValue = 127,
                                         .shadowEnabled = 1,
                                         .shadowRatio = 0.4F};

/// What a camera that stands still has seen after some frames.
struct Watch {
    Picture frame;
    Picture mask;
    Picture background;
    Plane<Lum32f> history;
    double millisecondsOfForeground = 0;
    double millisecondsOfBackground = 0;
    double millisecondsOfHistory = 0;
};

/// The middle of a colour picture.
Picture middleOf(const Picture& colour) {
    const int width = std::min(colour.width, 640);
    const int height = std::min(colour.height, 400);
    Picture cut(width, height, 3);
    for (int y = 0; y < height; ++y) {
        const Lum8u* from = colour.row(y + (colour.height - height) / 2) + 3 * ((colour.width - width) / 2);
        std::copy(from, from + 3 * width, cut.row(y));
    }
    return cut;
}

/// A ball that crosses the scene with its shadow on the ground, and grain over all.
Picture frameOf(const Picture& scene, int number, std::mt19937& engine) {
    Picture frame = scene;
    const double radius = std::max(3.0, scene.height / 8.0);
    const double x = scene.width * (0.05 + 0.9 * number / frames);
    const double y = scene.height * 0.45 + scene.height * 0.1 * std::sin(number * 0.2);
    for (int row = 0; row < frame.height; ++row)
        for (int column = 0; column < frame.width; ++column) {
            const double u = (column - x) / radius;
            const double v = (row - y) / radius;
            const double s = (column - x - radius) / (1.6 * radius);
            const double t = (row - y - 1.5 * radius) / (0.5 * radius);
            const int grain = static_cast<int>(engine() % 7) - 3;
            for (int channel = 0; channel < 3; ++channel) {
                double value = frame.at(column, row, channel);
                if (u * u + v * v < 1)
                    value = (channel == 0 ? 230 : 90) * (0.65 - 0.35 * v);
                else if (s * s + t * t < 1)
                    value *= 0.6;
                frame.at(column, row, channel) = static_cast<Lum8u>(std::clamp(value + grain, 0.0, 255.0));
            }
        }
    return frame;
}

Watch watched(const Subject& subject) {
    const Picture scene = middleOf(subject.colour);
    Watch watch{scene, Picture(scene.width, scene.height), Picture(scene.width, scene.height, 3),
                Plane<Lum32f>(scene.width, scene.height)};
    Lum32s bytes = 0;
    expectOk(lumiFGMMGetBufferSize_8u_C3R(scene.size(), backgroundParams.mixtures, &bytes),
             "lumiFGMMGetBufferSize_8u_C3R");
    WorkMemory block(bytes);
    auto* state = block.as<LumFGMMState>();
    expectOk(lumiFGMMInit_8u_C3R(scene.size(), backgroundParams.mixtures, &backgroundParams, state),
             "lumiFGMMInit_8u_C3R");

    std::mt19937 engine(5);
    const auto expectFrame = [&](auto call, const char* function, double& milliseconds) {
        LumStatus status = lumStatusOk;
        milliseconds = millisecondsOf([&] { status = call(); });
        expectOk(status, function);
    };
    // The empty scene first, for as long as the model needs to know it.
    for (int number = -20; number < frames; ++number) {
        watch.frame = frameOf(scene, number, engine);
        if (number < 0) watch.frame = frameOf(scene, -3 * frames, engine);
        expectFrame(
            [&] {
                return lumiFGMMForeground_8u_C3R(watch.frame.data(), watch.frame.step(), watch.mask.data(),
                                                 watch.mask.step(), scene.size(), state, nullptr, -1);
            },
            "lumiFGMMForeground_8u_C3R", watch.millisecondsOfForeground);
        if (number < 0) continue;
        Picture silhouette = watch.mask;
        for (Lum8u& value : silhouette.elements) value = value == 255 ? 1 : 0;
        expectFrame(
            [&] {
                return lumiUpdateMotionHistory_8u32f_C1IR(silhouette.data(), silhouette.step(),
                                                          watch.history.data(), watch.history.step(),
                                                          scene.size(), static_cast<Lum32f>(number + 1), 40);
            },
            "lumiUpdateMotionHistory_8u32f_C1IR", watch.millisecondsOfHistory);
    }
    expectFrame(
        [&] {
            return lumiFGMMBackground_8u_C3R(watch.background.data(), watch.background.step(), scene.size(),
                                             state);
        },
        "lumiFGMMBackground_8u_C3R", watch.millisecondsOfBackground);
    return watch;
}

Picture masked(const Watch& watch) {
    Picture picture = watch.frame;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const Lum8u kind = watch.mask.at(x, y);
            if (kind == 0)
                for (int c = 0; c < 3; ++c) picture.at(x, y, c) = static_cast<Lum8u>(picture.at(x, y, c) / 4);
            else
                drawPixel(picture, x, y, kind == 255 ? orange : cyan);
        }
    return picture;
}

} // namespace

std::vector<Panel> motionPanels(const Subject& subject) {
    // The panels of the moving object share its frames.
    auto cache = std::make_shared<std::unique_ptr<Watch>>();
    const auto watch = [cache, &subject]() -> const Watch& {
        if (*cache == nullptr) *cache = std::make_unique<Watch>(watched(subject));
        return **cache;
    };
    return {
        {"optical-flow", "Points followed to a view that is rotated and moved", "lumiOpticalFlowPyrLK_8u_C1R",
         "winSize 21, 4 levels, 30 iterations, threshold 0.01", [&subject] { return flowArrows(subject); }},
        {"moving-object", "Frame 60 of a ball that crosses the scene with its shadow", "", "",
         [watch] {
             return DrawnPanel{watch().frame, 0};
         }},
        {"motion-history", "When each place was last crossed", "lumiUpdateMotionHistory_8u32f_C1IR",
         "duration 40 frames",
         [watch] {
             return DrawnPanel{falseColours(scaled(watch().history, 15, frames)),
                               watch().millisecondsOfHistory,
                               {},
                               "lumiUpdateMotionHistory_8u32f_C1IR(silhouette.data(), silhouette.step(), "
                               "history.data(), history.step(), history.size(), number, 40)"};
         },
         "moving-object"},
        {"background", "The background that was learned", "lumiFGMMBackground_8u_C3R", "3 modes a pixel",
         [watch] {
             return DrawnPanel{watch().background,
                               watch().millisecondsOfBackground,
                               {},
                               "lumiFGMMBackground_8u_C3R(background.data(), background.step(), "
                               "background.size(), state)"};
         },
         "moving-object"},
        {"foreground", "Foreground (orange) and shadow (cyan)", "lumiFGMMForeground_8u_C3R",
         "history 100, 3 modes a pixel, shadows down to 0.4",
         [watch] {
             return DrawnPanel{
                 masked(watch()),
                 watch().millisecondsOfForeground,
                 {},
                 "lumiFGMMForeground_8u_C3R(frame.data(), frame.step(), mask.data(), mask.step(), "
                 "frame.size(), state, nullptr, -1)"};
         },
         "moving-object"},
    };
}

} // namespace tools
