// Textures that move, their pyramids by hand, and trackers on them.
#pragma once

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "lumcv.h"
#include "support/guarded_image.h"

namespace support {

/// A smooth picture of everywhere, with detail in every window of a dozen pixels; values of about 20 to 235.
inline double texture(double x, double y) {
    return 128 + 30 * std::sin(0.31 * x + 0.13 * y) + 25 * std::sin(0.17 * y - 0.23 * x + 1) +
           22 * std::sin(0.41 * y + 0.05 * x) + 16 * std::sin(0.53 * x - 0.47 * y + 2) +
           12 * std::cos(0.71 * x + 0.37 * y);
}

template <class T> struct FlowMembers;
template <> struct FlowMembers<Lum8u> {
    static constexpr LumDataType type = lumType8u;
    static constexpr auto init = lumiOpticalFlowPyrLKInit_8u_C1R;
    static constexpr auto run = lumiOpticalFlowPyrLK_8u_C1R;
    static constexpr double scale = 1;
};
template <> struct FlowMembers<Lum16u> {
    static constexpr LumDataType type = lumType16u;
    static constexpr auto init = lumiOpticalFlowPyrLKInit_16u_C1R;
    static constexpr auto run = lumiOpticalFlowPyrLK_16u_C1R;
    static constexpr double scale = 257;
};
template <> struct FlowMembers<Lum32f> {
    static constexpr LumDataType type = lumType32f;
    static constexpr auto init = lumiOpticalFlowPyrLKInit_32f_C1R;
    static constexpr auto run = lumiOpticalFlowPyrLK_32f_C1R;
    static constexpr double scale = 1.0 / 255;
};

/// A pyramid of rate 2, each level by the weights 1 4 6 4 1 from the one before it; levels end at unreadable pages.
template <class T> class FlowPyramid {
  public:
    /// value(x, y) in 0 to 255, levels 0 to `last`.
    template <class Value> FlowPyramid(LumSize size, int last, Value value, Guard guard = Guard::after) {
        for (int k = 0; k <= last; ++k) {
            levels_.push_back(std::make_unique<GuardedImage<T>>(
                size.width, size.height,
                Placement{.padding = 2 * static_cast<int>(sizeof(T)), .offset = k, .guard = guard}));
            if (k == 0)
                levels_[0]->fill([&](int x, int y, int) { return element(value(x, y)); });
            else
                halve(*levels_[k - 1], *levels_[k]);
            images_.push_back(levels_[k]->data());
            rois_.push_back(size);
            rates_.push_back(std::pow(0.5, k));
            steps_.push_back(levels_[k]->step());
            size = {(size.width + 1) / 2, (size.height + 1) / 2};
        }
        record = {images_.data(), rois_.data(), rates_.data(), steps_.data(), nullptr, last};
    }

    const GuardedImage<T>& level(int k) const { return *levels_[k]; }
    bool untouched() const {
        return std::all_of(levels_.begin(), levels_.end(),
                           [](const auto& level) { return level->untouched(); });
    }

    LumPyramid record;

  private:
    static double element(double value) {
        value *= FlowMembers<T>::scale;
        return std::is_integral_v<T> ? std::nearbyint(value) : value;
    }
    static void halve(const GuardedImage<T>& large, GuardedImage<T>& small) {
        const auto mirrored = [](int i, int length) {
            i = std::abs(i);
            return std::clamp(i >= length ? 2 * length - 2 - i : i, 0, length - 1);
        };
        constexpr double weights[] = {1, 4, 6, 4, 1};
        small.fill([&](int x, int y, int) {
            double sum = 0;
            for (int j = -2; j <= 2; ++j)
                for (int i = -2; i <= 2; ++i)
                    sum += weights[i + 2] * weights[j + 2] *
                           large.at(mirrored(2 * x + i, large.size().width),
                                    mirrored(2 * y + j, large.size().height));
            return std::is_integral_v<T> ? std::nearbyint(sum / 256) : sum / 256;
        });
    }

    std::vector<std::unique_ptr<GuardedImage<T>>> levels_;
    std::vector<void*> images_;
    std::vector<LumSize> rois_;
    std::vector<Lum64f> rates_;
    std::vector<Lum32s> steps_;
};

inline constexpr LumSize sceneSize{150, 120};

/// Where a point of the first picture lies in the second one.
struct Motion {
    double dx, dy, angle;

    LumPoint32f of(LumPoint32f p) const {
        const double x = p.x - 75.0;
        const double y = p.y - 60.0;
        return {static_cast<float>(75 + std::cos(angle) * x - std::sin(angle) * y + dx),
                static_cast<float>(60 + std::sin(angle) * x + std::cos(angle) * y + dy)};
    }
    /// The second picture: the texture at the place that has moved here.
    double value(double x, double y) const {
        const double u = x - dx - 75;
        const double v = y - dy - 60;
        return texture(75 + std::cos(angle) * u + std::sin(angle) * v,
                       60 - std::sin(angle) * u + std::cos(angle) * v);
    }
};

template <class T> FlowPyramid<T> still(int last = 2, Guard guard = Guard::after) {
    return FlowPyramid<T>(
        sceneSize, last, [](int x, int y) { return texture(x, y); }, guard);
}
template <class T> FlowPyramid<T> moved(Motion motion, int last = 2, Guard guard = Guard::after) {
    return FlowPyramid<T>(
        sceneSize, last, [=](int x, int y) { return motion.value(x, y); }, guard);
}

struct FlowSearch {
    int winSize = 15;
    int maxLevel = 2;
    int maxIterations = 30;
    float threshold = 0.001F;
};

struct Tracked {
    LumStatus call;
    std::vector<LumPoint32f> next;
    std::vector<Lum8s> status;
    std::vector<Lum32f> error;
};

/// A state for a region in a block of exactly its size.
template <class T> class FlowState {
  public:
    FlowState(LumSize region, int winSize, std::size_t spare = 0)
        : block_(bytesFor(region, winSize), spare % 2 == 0 ? Guard::after : Guard::before, spare) {
        EXPECT_EQ(0, FlowMembers<T>::init(&state, region, winSize, 0, block_.as()));
    }
    static std::size_t bytesFor(LumSize region, int winSize) {
        Lum32s bytes = 0;
        EXPECT_EQ(0, lumiOpticalFlowPyrLKGetSize(winSize, region, FlowMembers<T>::type, 0, &bytes));
        return bytes;
    }
    GuardedBlock& block() { return block_; }

  private:
    GuardedBlock block_;

  public:
    LumOpticalFlowState* state = nullptr;
};

/// No level is smaller than this region, and every level of these tests is smaller than that one.
inline constexpr LumSize windowsOnly{1, 1};
inline constexpr LumSize wholeLevels{400, 400};

template <class T>
Tracked track(const FlowPyramid<T>& before, const FlowPyramid<T>& after,
              const std::vector<LumPoint32f>& points, std::vector<LumPoint32f> guesses, LumSize region,
              const FlowSearch& search, std::size_t spare = 0) {
    FlowState<T> state(region, search.winSize, spare);
    Tracked t{0, std::move(guesses), std::vector<Lum8s>(points.size(), -99),
              std::vector<Lum32f>(points.size(), -99)};
    t.call = FlowMembers<T>::run(&before.record, &after.record, points.data(), t.next.data(), t.status.data(),
                                 t.error.data(), static_cast<int>(points.size()), search.winSize,
                                 search.maxLevel, search.maxIterations, search.threshold, state.state);
    return t;
}

inline std::vector<LumPoint32f> gridOfPoints(LumSize size, int margin, int distance) {
    std::vector<LumPoint32f> points;
    for (int y = margin; y < size.height - margin; y += distance)
        for (int x = margin; x < size.width - margin; x += distance)
            points.push_back({static_cast<float>(x) + 0.3F, static_cast<float>(y) - 0.2F});
    return points;
}

} // namespace support
