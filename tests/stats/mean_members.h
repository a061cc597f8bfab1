// The means and deviations under test: members by element type and channels, all called in one way.
#pragma once

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>

#include "lumcv.h"
#include "support/guarded_image.h"

namespace means {

/// The arguments of every member; each takes those that it has.
template <class T> struct Arguments {
    const T* src;
    int srcStep;
    const Lum8u* mask;
    int maskStep;
    LumSize size;
    int coi;
    Lum64f* mean;
    Lum64f* stdDev;
};

template <class T> struct Exports;
template <> struct Exports<Lum8u> {
    static constexpr auto mean = lumiMean_8u_C1MR;
    static constexpr auto meanOfChannel = lumiMean_8u_C3CMR;
    static constexpr auto all = lumiMean_StdDev_8u_C1R;
    static constexpr auto masked = lumiMean_StdDev_8u_C1MR;
    static constexpr auto channel = lumiMean_StdDev_8u_C3CR;
    static constexpr auto channelMasked = lumiMean_StdDev_8u_C3CMR;
};
template <> struct Exports<Lum16u> {
    static constexpr auto mean = lumiMean_16u_C1MR;
    static constexpr auto meanOfChannel = lumiMean_16u_C3CMR;
    static constexpr auto all = lumiMean_StdDev_16u_C1R;
    static constexpr auto masked = lumiMean_StdDev_16u_C1MR;
    static constexpr auto channel = lumiMean_StdDev_16u_C3CR;
    static constexpr auto channelMasked = lumiMean_StdDev_16u_C3CMR;
};
template <> struct Exports<Lum32f> {
    static constexpr auto mean = lumiMean_32f_C1MR;
    static constexpr auto meanOfChannel = lumiMean_32f_C3CMR;
    static constexpr auto all = lumiMean_StdDev_32f_C1R;
    static constexpr auto masked = lumiMean_StdDev_32f_C1MR;
    static constexpr auto channel = lumiMean_StdDev_32f_C3CR;
    static constexpr auto channelMasked = lumiMean_StdDev_32f_C3CMR;
};

/// The members of an element type over an image of one channel, or one channel of three.
template <class Element, int channelCount> struct Member {
    using T = Element;
    using A = Arguments<T>;
    static constexpr int channels = channelCount;

    static LumStatus mean(const A& a) {
        if constexpr (channels == 1)
            return Exports<T>::mean(a.src, a.srcStep, a.mask, a.maskStep, a.size, a.mean);
        else
            return Exports<T>::meanOfChannel(a.src, a.srcStep, a.mask, a.maskStep, a.size, a.coi, a.mean);
    }
    static LumStatus meanStdDev(const A& a) {
        if constexpr (channels == 1)
            return Exports<T>::all(a.src, a.srcStep, a.size, a.mean, a.stdDev);
        else
            return Exports<T>::channel(a.src, a.srcStep, a.size, a.coi, a.mean, a.stdDev);
    }
    static LumStatus meanStdDevMasked(const A& a) {
        if constexpr (channels == 1)
            return Exports<T>::masked(a.src, a.srcStep, a.mask, a.maskStep, a.size, a.mean, a.stdDev);
        else
            return Exports<T>::channelMasked(a.src, a.srcStep, a.mask, a.maskStep, a.size, a.coi, a.mean,
                                             a.stdDev);
    }
};

using Members = testing::Types<Member<Lum8u, 1>, Member<Lum16u, 1>, Member<Lum32f, 1>, Member<Lum8u, 3>,
                               Member<Lum16u, 3>, Member<Lum32f, 3>>;

/// An image, a mask and the places of the results.
template <class MemberOf> struct Scene {
    using T = typename MemberOf::T;

    support::GuardedImage<T> src;
    support::GuardedImage<Lum8u> mask;
    int coi = 1;
    Lum64f mean = -1;
    Lum64f stdDev = -1;

    Scene(int width, int height, support::Placement placement = {})
        : src(width, height, placed(placement)),
          mask(width, height, {.padding = 3, .guard = placement.guard}) {}

    static support::Placement placed(support::Placement placement) {
        placement.channels = MemberOf::channels;
        return placement;
    }

    /// Floats are whole numbers below 256, so that sums over some hundred of them are exact.
    void fillRandom(unsigned seed) {
        std::mt19937 engine(seed);
        src.fill([&](int, int, int) {
            const auto value = engine();
            return static_cast<T>(std::is_same_v<T, Lum32f> ? value % 256 : value);
        });
        mask.fill([&](int, int, int) { return engine() % 2 == 0 ? 0 : engine() % 255 + 1; });
    }

    Arguments<T> arguments() {
        return {src.data(), src.step(), mask.data(), mask.step(), src.size(), coi, &mean, &stdDev};
    }
    T pixel(int x, int y) const { return src.at(x, y, MemberOf::channels == 1 ? 0 : coi - 1); }
};

/// What the definitions give, with sums that are exact for integers and whole floats.
struct Expected {
    Lum64f mean = 0;
    Lum64f stdDev = 0;
};

template <class MemberOf> Expected expectedOf(const Scene<MemberOf>& scene, bool masked) {
    using T = typename MemberOf::T;
    std::int64_t n = 0;
    std::int64_t s = 0;
    std::int64_t q = 0;
    for (int y = 0; y < scene.src.size().height; ++y)
        for (int x = 0; x < scene.src.size().width; ++x) {
            if (masked && scene.mask.at(x, y) == 0) continue;
            const auto p = static_cast<std::int64_t>(scene.pixel(x, y));
            ++n, s += p, q += p * p;
        }
    if (n == 0) return {};
    Expected expected;
    expected.mean = static_cast<Lum64f>(s) / n;
    expected.stdDev = std::sqrt(std::fabs(static_cast<Lum64f>(q) / n - expected.mean * expected.mean));
    if (std::is_same_v<T, Lum32f> &&
        0.05 * expected.mean * expected.mean > expected.stdDev * expected.stdDev) {
        const auto m = static_cast<float>(expected.mean);
        Lum64f d = 0;
        for (int y = 0; y < scene.src.size().height; ++y)
            for (int x = 0; x < scene.src.size().width; ++x)
                if (!masked || scene.mask.at(x, y) != 0)
                    d += std::pow(static_cast<Lum64f>(scene.pixel(x, y)) - m, 2);
        expected.stdDev = std::sqrt(d / n);
    }
    return expected;
}

} // namespace means
