#include "kernels/pyramid/interpolate.h"

#include "frame/convert_lanes.h"
#include "frame/instances.h"
#include "kernels/pyramid/in_blocks.h"
#include "kernels/pyramid/rounded.h"

namespace lum::kernels {
namespace {

constexpr int blockLength = 16;

inline float between(float first, float second, float fraction) {
    return (1.0F - fraction) * first + fraction * second;
}

} // namespace

template <class T, int channels>
void interpolatePixels(const T* src, const PixelPlace* places, std::ptrdiff_t count, float* dst) {
    for (std::ptrdiff_t i = 0; i < count; ++i, dst += channels) {
        const PixelPlace& place = places[i];
        const T* first = src + static_cast<std::ptrdiff_t>(place.first) * channels;
        const T* second = src + static_cast<std::ptrdiff_t>(place.second) * channels;
        for (int c = 0; c < channels; ++c) {
            const float value = between(first[c], second[c], place.fraction);
            dst[c] = place.isCopied ? static_cast<float>(first[c]) : value;
        }
    }
}

template <class T, int channels>
void interpolateHalvesScalar(const T* src, std::ptrdiff_t pixels, float* dst) {
    for (std::ptrdiff_t i = 0; i < pixels; ++i, src += channels, dst += 2 * channels)
        for (int c = 0; c < channels; ++c) {
            dst[c] = static_cast<float>(src[c]);
            dst[c + channels] = between(src[c], src[c + channels], 0.5F);
        }
}

template <class T, int channels> void interpolateHalves(const T* src, std::ptrdiff_t pixels, float* dst) {
    const auto halfBetween = []<int n>(Block<float, n> first, Block<float, n> second) LUM_INLINED {
        return broadcast<n>(0.5F) * first + broadcast<n>(0.5F) * second;
    };
    std::ptrdiff_t i = 0;
    if constexpr (channels == 1) {
        // 16 pixels per iteration
        for (; i <= pixels - blockLength; i += blockLength)
            forVectors<float, blockLength>([&]<int n>(int part) LUM_INLINED {
                const auto here = loadFloats<n>(src + i + part);
                const auto after = loadFloats<n>(src + i + part + 1);
                store(interleave(here, halfBetween(here, after)), dst + 2 * (i + part));
            });
    } else {
        // One pixel per iteration. The fourth element is that of the next pixel, which follows in memory, and its place
        // in the result is written again by the next store.
        for (; i < pixels - 1; ++i) {
            const auto here = loadFloats<4>(src + 3 * i);
            const auto after = loadFloats<4>(src + 3 * i + 3);
            store(here, dst + 6 * i);
            store(halfBetween(here, after), dst + 6 * i + 3);
        }
    }
    // tail: scalar, one pixel at a time
    interpolateHalvesScalar<T, channels>(src + i * channels, pixels - i, dst + 2 * i * channels);
}

template <class T>
void blendRowsScalar(const float* first, const float* second, float fraction, std::ptrdiff_t count, T* dst) {
    for (std::ptrdiff_t i = 0; i < count; ++i) dst[i] = rounded<T>(between(first[i], second[i], fraction));
}

template <class T>
void blendRows(const float* first, const float* second, float fraction, std::ptrdiff_t count, T* dst) {
    const float ofFirst = 1.0F - fraction;
    inBlocks<blockLength>(
        count,
        [&](std::ptrdiff_t x) LUM_INLINED {
            storeRounded<T, blockLength>(
                [&]<int n>(int i) LUM_INLINED {
                    return broadcast<n>(ofFirst) * load<n>(first + x + i) +
                           broadcast<n>(fraction) * load<n>(second + x + i);
                },
                dst + x);
        },
        [&](std::ptrdiff_t i) { dst[i] = rounded<T>(between(first[i], second[i], fraction)); });
}

template <class T> void storeRowScalar(const float* src, std::ptrdiff_t count, T* dst) {
    for (std::ptrdiff_t i = 0; i < count; ++i) dst[i] = rounded<T>(src[i]);
}

template <class T> void storeRow(const float* src, std::ptrdiff_t count, T* dst) {
    inBlocks<blockLength>(
        count, [&](std::ptrdiff_t i) { store(rounded<T>(load<blockLength>(src + i)), dst + i); },
        [&](std::ptrdiff_t i) { dst[i] = rounded<T>(src[i]); });
}

LUM_INSTANCES(interpolatePixels, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1), (Lum32f, 3));
LUM_INSTANCES(interpolateHalvesScalar, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1),
              (Lum32f, 3));
LUM_INSTANCES(interpolateHalves, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1), (Lum32f, 3));
LUM_INSTANCES(blendRowsScalar, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(blendRows, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(storeRowScalar, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(storeRow, (Lum8u), (Lum16u), (Lum32f));

} // namespace lum::kernels
