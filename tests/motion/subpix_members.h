// The exported members of subpixel sampling by source and result, and a plain reference for their values.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "lumcv.h"
#include "support/guarded_image.h"

namespace support {

/// The arguments of a patch inside the source.
template <class S, class D> struct Inside {
    const S* src;
    int srcStep;
    D* dst;
    int dstStep;
    LumSize size;
    float dx = 0;
    float dy = 0;
    int scaleFactor = 0;
};

/// The arguments of a patch around a point.
template <class S, class D> struct Around {
    const S* src;
    int srcStep;
    LumSize srcSize;
    D* dst;
    int dstStep;
    LumSize dstSize;
    LumPoint32f point;
    LumPoint* pMin;
    LumPoint* pMax;
    int scaleFactor = 0;
};

template <class S, class D> struct SubpixMembers;

#define SUBPIX_MEMBERS(S, D, inside, around)                                                                 \
    template <> struct SubpixMembers<S, D> {                                                                 \
        using Source = S;                                                                                    \
        using Result = D;                                                                                    \
        static LumStatus callInside(const Inside<S, D>& a) {                                                 \
            return inside(a.src, a.srcStep, a.dst, a.dstStep, a.size, a.dx, a.dy);                           \
        }                                                                                                    \
        static LumStatus callAround(const Around<S, D>& a) {                                                 \
            return around(a.src, a.srcStep, a.srcSize, a.dst, a.dstStep, a.dstSize, a.point, a.pMin,         \
                          a.pMax);                                                                           \
        }                                                                                                    \
    };
SUBPIX_MEMBERS(Lum8u, Lum8u, lumiCopySubpix_8u_C1R, lumiCopySubpixIntersect_8u_C1R)
SUBPIX_MEMBERS(Lum16u, Lum16u, lumiCopySubpix_16u_C1R, lumiCopySubpixIntersect_16u_C1R)
SUBPIX_MEMBERS(Lum8u, Lum32f, lumiCopySubpix_8u32f_C1R, lumiCopySubpixIntersect_8u32f_C1R)
SUBPIX_MEMBERS(Lum16u, Lum32f, lumiCopySubpix_16u32f_C1R, lumiCopySubpixIntersect_16u32f_C1R)
SUBPIX_MEMBERS(Lum32f, Lum32f, lumiCopySubpix_32f_C1R, lumiCopySubpixIntersect_32f_C1R)
#undef SUBPIX_MEMBERS

template <> struct SubpixMembers<Lum8u, Lum16u> {
    using Source = Lum8u;
    using Result = Lum16u;
    static LumStatus callInside(const Inside<Lum8u, Lum16u>& a) {
        return lumiCopySubpix_8u16u_C1R_Sfs(a.src, a.srcStep, a.dst, a.dstStep, a.size, a.dx, a.dy,
                                            a.scaleFactor);
    }
    static LumStatus callAround(const Around<Lum8u, Lum16u>& a) {
        return lumiCopySubpixIntersect_8u16u_C1R_Sfs(a.src, a.srcStep, a.srcSize, a.dst, a.dstStep, a.dstSize,
                                                     a.point, a.pMin, a.pMax, a.scaleFactor);
    }
};

/// Four weights of 14 bits: pixel, right, below, below right.
inline std::array<long long, 4> plainFixedWeights(long long ax, long long ay) {
    const long long bx = 16384 - ax;
    const long long by = 16384 - ay;
    std::array<long long, 4> w{(bx * by + 16384) >> 14, (ax * by + 16384) >> 14, (bx * ay + 16384) >> 14,
                               (ax * ay + 16384) >> 14};
    const long long d = 16384 - (w[0] + w[1] + w[2] + w[3]);
    if (d >= 0) return w;
    if (w[0] >= w[1] && w[0] >= w[2] && w[0] >= w[3])
        w[0] += d;
    else if (w[2] >= w[0] && w[2] >= w[1] && w[2] >= w[3])
        w[2] += d;
    else if (w[0] <= w[1] && w[2] <= w[1])
        w[w[1] >= w[3] ? 1 : 3] += d;
    else
        w[3] += d;
    return w;
}

/// The values of a sampled pixel from its neighbours, each in the arithmetic of its kind.
template <class S, class D> struct PlainSampler {
    static constexpr bool fixed = std::is_same_v<S, Lum8u> && std::is_integral_v<D>;
    float fx;
    float fy;
    int scaleFactor;

    static D finish(float sum) {
        if constexpr (std::is_same_v<D, Lum32f>)
            return sum;
        else
            return static_cast<D>(std::nearbyint(std::clamp(sum, 0.0F, 65535.0F)));
    }
    D finishFixed(long long sum) const {
        const long long most = std::is_same_v<D, Lum8u> ? 255 : 65535;
        return static_cast<D>(
            std::clamp<long long>((sum + (1LL << (scaleFactor + 13))) >> (scaleFactor + 14), 0, most));
    }
    static long long fraction(float f) { return static_cast<long long>(f * 16384 + 0.5F); }

    D four(S a, S b, S c, S d) const {
        if constexpr (fixed) {
            const auto w = plainFixedWeights(fraction(fx), fraction(fy));
            return finishFixed(w[0] * a + w[1] * b + w[2] * c + w[3] * d);
        } else {
            volatile float sum = (1 - fx) * (1 - fy) * static_cast<float>(a);
            sum = sum + fx * (1 - fy) * static_cast<float>(b);
            sum = sum + (1 - fx) * fy * static_cast<float>(c);
            sum = sum + fx * fy * static_cast<float>(d);
            return finish(sum);
        }
    }
    D two(S a, S b, float f) const {
        if constexpr (fixed) {
            return finishFixed((16384 - fraction(f)) * a + fraction(f) * b);
        } else {
            return finish((1 - f) * static_cast<float>(a) + f * static_cast<float>(b));
        }
    }
    D one(S a) const {
        if constexpr (fixed)
            return finishFixed(16384LL * a);
        else
            return finish(static_cast<float>(a) * ((1 - fx) + fx));
    }
};

/// A patch inside the source, row by row.
template <class S, class D> std::vector<D> plainInside(const GuardedImage<S>& src, const Inside<S, D>& a) {
    const auto fractionOf = [](float t) {
        const float d = t - std::trunc(t);
        return d < 0 ? 1 + t - std::trunc(t) : d;
    };
    PlainSampler<S, D> sampler{fractionOf(a.dx), fractionOf(a.dy), a.scaleFactor};
    if constexpr (std::is_same_v<D, Lum32f>) {
        if (sampler.fx < 1e-6F) sampler.fx = 1e-6F;
        const float least = std::is_same_v<S, Lum32f> ? 1e-6F : 1e-9F;
        if (sampler.fy < least) sampler.fy = least;
    }
    std::vector<D> patch;
    for (int y = 0; y < a.size.height; ++y)
        for (int x = 0; x < a.size.width; ++x)
            patch.push_back(
                sampler.four(src.at(x, y), src.at(x + 1, y), src.at(x, y + 1), src.at(x + 1, y + 1)));
    return patch;
}

template <class D> struct PlainPatch {
    std::vector<D> pixels;
    LumPoint first;
    LumPoint last;
};

/// A patch around a point; positions within the range of an int.
template <class S, class D> PlainPatch<D> plainAround(const GuardedImage<S>& src, const Around<S, D>& a) {
    struct Direction {
        long long i;
        float f;
        long long first;
        long long last;
    };
    const auto placed = [](float p, int w, int sourceWidth) {
        const float c = p - static_cast<float>(w - 1) * 0.5F;
        Direction d;
        d.i = static_cast<long long>(static_cast<float>(w) + c) - w;
        d.f = c - static_cast<float>(d.i);
        const long long lastX = d.i + w - 1;
        d.first = std::min<long long>(d.i < 0 ? -d.i : 0, w);
        d.last = w - 1;
        if (lastX > sourceWidth - 2) d.last -= lastX - (sourceWidth - 2);
        if (d.i >= sourceWidth) d.first = 0, d.last = -1;
        if (d.i + w <= 0) d.last = -1;
        return d;
    };
    const Direction dx = placed(a.point.x, a.dstSize.width, a.srcSize.width);
    const Direction dy = placed(a.point.y, a.dstSize.height, a.srcSize.height);
    const PlainSampler<S, D> sampler{dx.f, dy.f, a.scaleFactor};
    PlainPatch<D> patch;
    for (int y = 0; y < a.dstSize.height; ++y)
        for (int x = 0; x < a.dstSize.width; ++x) {
            const bool left = x < dx.first;
            const bool right = !left && x > dx.last;
            const bool above = y < dy.first;
            const bool below = !above && y > dy.last;
            const int sx = static_cast<int>(left ? 0 : right ? a.srcSize.width - 1 : dx.i + x);
            const int sy = static_cast<int>(above ? 0 : below ? a.srcSize.height - 1 : dy.i + y);
            D value;
            if ((left || right) && (above || below))
                value = sampler.one(src.at(sx, sy));
            else if (left || right)
                value = sampler.two(src.at(sx, sy), src.at(sx, sy + 1), dy.f);
            else if (above || below)
                value = sampler.two(src.at(sx, sy), src.at(sx + 1, sy), dx.f);
            else
                value = sampler.four(src.at(sx, sy), src.at(sx + 1, sy), src.at(sx, sy + 1),
                                     src.at(sx + 1, sy + 1));
            patch.pixels.push_back(value);
        }
    patch.first = {static_cast<int>(dx.first), static_cast<int>(dy.first)};
    patch.last = {static_cast<int>(dx.last), static_cast<int>(dy.last)};
    return patch;
}

} // namespace support
