// The edge detectors as records of one shape, and what they find by the plain rule.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

#include "support/border_walk.h"
#include "support/guarded_image.h"
#include "support/status_checks.h"

namespace support {

/// One gradient and what the form makes of it.
struct PlainGradient {
    double dx;
    double dy;
    double magnitude; ///< 0 where it does not count
    int direction;    ///< 1 horizontal, 2 and 4 diagonal (of different signs, of one sign), 3 vertical
};

/// The rule of edges, pixel by pixel, with the following of edges as passes over the whole image.
inline std::vector<Lum8u> plainEdges(LumSize size, const std::function<PlainGradient(int x, int y)>& gradient,
                                     double high) {
    const auto [width, height] = size;
    std::vector<PlainGradient> all;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) all.push_back(gradient(x, y));
    const auto magnitude = [&](int x, int y) {
        return x < 0 || y < 0 || x >= width || y >= height ? 0.0 : all[y * width + x].magnitude;
    };
    std::vector<Lum8u> ridge(all.size()), edge(all.size());
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const PlainGradient& g = all[y * width + x];
            const double m = g.magnitude;
            if (m == 0) continue;
            bool kept = false;
            if (g.direction == 1) kept = magnitude(x - 1, y) < m && magnitude(x + 1, y) <= m;
            if (g.direction == 3) kept = magnitude(x, y - 1) < m && magnitude(x, y + 1) <= m;
            if (g.direction == 4) kept = magnitude(x - 1, y - 1) < m && magnitude(x + 1, y + 1) < m;
            if (g.direction == 2) kept = magnitude(x + 1, y - 1) < m && magnitude(x - 1, y + 1) < m;
            ridge[y * width + x] = kept;
            edge[y * width + x] = kept && m > high ? 255 : 0;
        }
    for (bool changed = true; changed;) {
        changed = false;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                if (!ridge[y * width + x] || edge[y * width + x] != 0) continue;
                for (int j = -1; j <= 1; ++j)
                    for (int i = -1; i <= 1; ++i) {
                        const int u = x + i;
                        const int v = y + j;
                        if (u < 0 || v < 0 || u >= width || v >= height || edge[v * width + u] == 0) continue;
                        edge[y * width + x] = 255;
                        changed = true;
                    }
            }
    }
    return edge;
}

inline constexpr float lowerTangent = std::bit_cast<float>(0x3ED413CDU);
inline constexpr float upperTangent = std::bit_cast<float>(0x401A827AU);

/// Directions of caller-made gradients.
inline int plainDirection(float dx, float dy, bool oneSign) {
    const float adx = std::fabs(dx);
    const float ady = std::fabs(dy);
    if (ady < adx * lowerTangent) return 1;
    if (adx * upperTangent < ady) return 3;
    return oneSign ? 4 : 2;
}

/// A detector that starts from derivatives of type T.
template <class T> struct CannyForm {
    const char* name;
    std::function<LumStatus(const GuardedImage<T>& dx, const GuardedImage<T>& dy, GuardedImage<Lum8u>& dst,
                            float low, float high, Lum8u* buffer)>
        run;
    /// The magnitude, 0 where it does not count.
    double (*magnitude)(T dx, T dy, float low);
    double (*high)(float high);
};

inline LumSizeL longSize(LumSize size) { return {size.width, size.height}; }

template <class T> auto longCanny() {
    if constexpr (std::is_same_v<T, Lum16s>)
        return lumiCanny_16s8u_C1R_L;
    else
        return lumiCanny_32f8u_C1R_L;
}
template <class T> auto plainCanny() {
    if constexpr (std::is_same_v<T, Lum16s>)
        return lumiCanny_16s8u_C1R;
    else
        return lumiCanny_32f8u_C1R;
}

template <class T> auto cannyCall() {
    return [](const GuardedImage<T>& dx, const GuardedImage<T>& dy, GuardedImage<Lum8u>& dst, float low,
              float high, Lum8u* buffer) {
        return plainCanny<T>()(dx.data(), dx.step(), dy.data(), dy.step(), dst.data(), dst.step(), dst.size(),
                               low, high, buffer);
    };
}
template <class T> auto cannyCall(LumNormKind norm) {
    return [norm](const GuardedImage<T>& dx, const GuardedImage<T>& dy, GuardedImage<Lum8u>& dst, float low,
                  float high, Lum8u* buffer) {
        return longCanny<T>()(dx.data(), dx.step(), dy.data(), dy.step(), dst.data(), dst.step(),
                              longSize(dst.size()), low, high, norm, buffer);
    };
}

inline double above(double magnitude, double low) { return magnitude > low ? magnitude : 0; }

inline double saturatedSum(Lum16s dx, Lum16s dy, float low) {
    return above(std::min(std::abs(int{dx}) + std::abs(int{dy}), 65535), std::floor(low));
}
inline double exactSquares(Lum16s dx, Lum16s dy, float low) {
    return above(static_cast<double>(dx) * dx + static_cast<double>(dy) * dy, std::floor(low * low));
}
inline double itself(float high) { return high; }
inline double integralPart(float high) { return std::floor(high); }
inline double squared(float high) { return high * high; }
inline double squaredIntegralPart(float high) { return std::floor(high * high); }

inline const std::vector<CannyForm<Lum16s>> forms16s = {
    {"16s", cannyCall<Lum16s>(), saturatedSum, integralPart},
    {"16s L1", cannyCall<Lum16s>(lumNormL1), saturatedSum, integralPart},
    {"16s L2", cannyCall<Lum16s>(lumNormL2), exactSquares, squaredIntegralPart},
};

inline const std::vector<CannyForm<Lum32f>> forms32f = {
    {"32f", cannyCall<Lum32f>(),
     [](float dx, float dy, float low) {
         const float sum = std::fabs(dx) + std::fabs(dy);
         return sum < low ? 0.0 : double{sum};
     },
     itself},
    {"32f L1", cannyCall<Lum32f>(lumNormL1),
     [](float dx, float dy, float low) {
         const float sum = std::fabs(dx) + std::fabs(dy);
         return above(sum, low);
     },
     itself},
    {"32f L2", cannyCall<Lum32f>(lumNormL2),
     [](float dx, float dy, float low) {
         const float sum = dx * dx + dy * dy;
         return above(sum, low * low);
     },
     squared},
};

inline int cannyBufferSize(LumSize size) {
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk, lumiCannyGetSize(size, &bytes));
    return bytes;
}

template <class T>
std::vector<Lum8u> plainEdges(const CannyForm<T>& form, const GuardedImage<T>& dx, const GuardedImage<T>& dy,
                              float low, float high) {
    return plainEdges(
        dx.size(),
        [&](int x, int y) {
            const T a = dx.at(x, y);
            const T b = dy.at(x, y);
            bool oneSign;
            if constexpr (std::is_same_v<T, Lum16s>)
                oneSign = (a < 0) == (b < 0);
            else
                oneSign = std::signbit(a) == std::signbit(b);
            return PlainGradient{double(a), double(b), form.magnitude(a, b, low),
                                 plainDirection(a, b, oneSign)};
        },
        form.high(high));
}

} // namespace support
