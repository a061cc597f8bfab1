// The watersheds under test, all called in one way.
#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "lumcv.h"
#include "support/guarded_image.h"
#include "support/status_checks.h"

namespace watersheds {

template <class ReliefElement, class MarkerElement> struct Member;

template <> struct Member<Lum8u, Lum8u> {
    using Relief = Lum8u;
    using Marker = Lum8u;
    static constexpr auto call = lumiSegmentWatershed_8u_C1IR;
    static constexpr auto bufferSize = lumiSegmentWatershedGetBufferSize_8u_C1R;
};
template <> struct Member<Lum8u, Lum16u> {
    using Relief = Lum8u;
    using Marker = Lum16u;
    static constexpr auto call = lumiSegmentWatershed_8u16u_C1IR;
    static constexpr auto bufferSize = lumiSegmentWatershedGetBufferSize_8u16u_C1R;
};
template <> struct Member<Lum32f, Lum16u> {
    using Relief = Lum32f;
    using Marker = Lum16u;
    static constexpr auto call = lumiSegmentWatershed_32f16u_C1IR;
    static constexpr auto bufferSize = lumiSegmentWatershedGetBufferSize_32f16u_C1R;
};

using Integer = testing::Types<Member<Lum8u, Lum8u>, Member<Lum8u, Lum16u>>;
using All = testing::Types<Member<Lum8u, Lum8u>, Member<Lum8u, Lum16u>, Member<Lum32f, Lum16u>>;

template <class M> constexpr typename M::Marker boundary = static_cast<typename M::Marker>(~0U);

/// A relief and its markers, in rows without padding.
template <class M> struct Scene {
    LumSize size;
    std::vector<typename M::Relief> relief;
    std::vector<typename M::Marker> markers;

    bool holds(int x, int y) const { return x >= 0 && y >= 0 && x < size.width && y < size.height; }
    int at(int x, int y) const { return y * size.width + x; }
};

/// The markers after a call, whose buffer has exactly the queried size.
template <class M>
std::vector<typename M::Marker> segmented(const Scene<M>& scene, Lum32s norm, Lum32s flags, int shift = 0) {
    using namespace support;
    const Guard guard = shift % 2 == 0 ? Guard::after : Guard::before;
    const auto [width, height] = scene.size;
    GuardedImage<typename M::Relief> relief(width, height,
                                            {.padding = shift % 3 * 4, .offset = shift, .guard = guard});
    GuardedImage<typename M::Marker> markers(width, height,
                                             {.padding = shift % 5 * 2, .offset = shift, .guard = guard});
    relief.fill([&](int x, int y, int) { return scene.relief[scene.at(x, y)]; });
    markers.fill([&](int x, int y, int) { return scene.markers[scene.at(x, y)]; });
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk, M::bufferSize(scene.size, &bytes));
    GuardedBlock buffer(static_cast<std::size_t>(bytes), guard, shift);
    EXPECT_STATUS(lumStatusOk, M::call(relief.data(), relief.step(), markers.data(), markers.step(),
                                       scene.size, norm, flags, buffer.template as<>()));
    EXPECT_TRUE(relief.untouched());
    EXPECT_TRUE(markers.outsideUntouched());
    return markers.pixels();
}

/// A relief of few or many levels, with a few markers of single pixels and of blocks, some of which touch.
template <class M> Scene<M> randomScene(std::mt19937& engine, LumSize size) {
    Scene<M> scene{size, {}, {}};
    const auto pixels = static_cast<std::size_t>(size.width) * size.height;
    const int levels = engine() % 3 == 0 ? 3 : engine() % 2 == 0 ? 20 : 256;
    for (std::size_t i = 0; i < pixels; ++i)
        scene.relief.push_back(static_cast<typename M::Relief>(engine() % levels));
    scene.markers.assign(pixels, 0);
    const int seeds = static_cast<int>(engine() % 7);
    for (int i = 0; i < seeds; ++i) {
        const int left = static_cast<int>(engine() % size.width);
        const int top = static_cast<int>(engine() % size.height);
        const int side = 1 + static_cast<int>(engine() % 4);
        const auto label =
            engine() % 11 == 0 ? boundary<M> : static_cast<typename M::Marker>(1 + engine() % 9 * 28);
        for (int y = top; y < std::min(top + side, size.height); ++y)
            for (int x = left; x < std::min(left + side, size.width); ++x)
                scene.markers[scene.at(x, y)] = label;
    }
    return scene;
}

inline LumSize randomSize(std::mt19937& engine) {
    switch (engine() % 5) {
    case 0:
        return {1 + static_cast<int>(engine() % 4), 1 + static_cast<int>(engine() % 30)};
    case 1:
        return {1 + static_cast<int>(engine() % 90), 1 + static_cast<int>(engine() % 4)};
    default:
        return {1 + static_cast<int>(engine() % 40), 1 + static_cast<int>(engine() % 25)};
    }
}

inline int runsOf(int full) {
#ifdef LUMCV_SANITIZED
    return full / 4;
#else
    return full;
#endif
}

constexpr Lum32s boundaryFlags[] = {0, lumSegmentBorder4, lumSegmentBorder8,
                                    lumSegmentBorder4 | lumSegmentBorder8};

} // namespace watersheds
