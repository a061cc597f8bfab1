#include "kernels/pyramid/interpolate.h"

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

template decltype(interpolatePixels<Lum8u, 1>) interpolatePixels<Lum8u, 1>;
template decltype(interpolatePixels<Lum8u, 3>) interpolatePixels<Lum8u, 3>;
template decltype(interpolatePixels<Lum16u, 1>) interpolatePixels<Lum16u, 1>;
template decltype(interpolatePixels<Lum16u, 3>) interpolatePixels<Lum16u, 3>;
template decltype(interpolatePixels<Lum32f, 1>) interpolatePixels<Lum32f, 1>;
template decltype(interpolatePixels<Lum32f, 3>) interpolatePixels<Lum32f, 3>;
template decltype(blendRowsScalar<Lum8u>) blendRowsScalar<Lum8u>;
template decltype(blendRowsScalar<Lum16u>) blendRowsScalar<Lum16u>;
template decltype(blendRowsScalar<Lum32f>) blendRowsScalar<Lum32f>;
template decltype(blendRows<Lum8u>) blendRows<Lum8u>;
template decltype(blendRows<Lum16u>) blendRows<Lum16u>;
template decltype(blendRows<Lum32f>) blendRows<Lum32f>;
template decltype(storeRowScalar<Lum8u>) storeRowScalar<Lum8u>;
template decltype(storeRowScalar<Lum16u>) storeRowScalar<Lum16u>;
template decltype(storeRowScalar<Lum32f>) storeRowScalar<Lum32f>;
template decltype(storeRow<Lum8u>) storeRow<Lum8u>;
template decltype(storeRow<Lum16u>) storeRow<Lum16u>;
template decltype(storeRow<Lum32f>) storeRow<Lum32f>;

} // namespace lum::kernels
