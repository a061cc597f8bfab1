#include <cstring>
#include <type_traits>

#include "frame/lanes_convert.h"
#include "kernels/filter/gaussian.h"
#include "kernels/filter/gaussian_sums.h"

namespace lum::kernels {
namespace {

template <int radius, int channels>
void rowOfRadius(const float* src, std::ptrdiff_t count, const float* halfKernel, int, float* out) {
    Uniform<float> weights[radius + 1];
    for (int j = 0; j <= radius; ++j) weights[j] = Uniform(halfKernel[j]);
    // 16 elements per iteration
    for (std::ptrdiff_t x = 0; x < count; x += gaussianBlock) {
        Float16 sums = firstPair(src + x - radius * channels, src + x + radius * channels, weights[0]);
#pragma GCC unroll 3
        for (int j = radius - 1; j > 0; --j)
            sums = withPair(sums, src + x - j * channels, src + x + j * channels, weights[radius - j]);
        store(withMiddle(sums, src + x, weights[radius]), out + x);
    }
}

template <int channels>
void rowOfAnyRadius(const float* src, std::ptrdiff_t count, const float* weights, int radius, float* out) {
    const Uniform<float> outermost(weights[0]);
    const Uniform<float> centre(weights[radius]);
    // 16 elements per iteration
    for (std::ptrdiff_t x = 0; x < count; x += gaussianBlock) {
        const float* left = src + x - radius * channels;
        const float* right = src + x + radius * channels;
        Float16 sums = firstPair(left, right, outermost);
        for (const float* weight = weights + 1; weight < weights + radius; ++weight) {
            left += channels;
            right -= channels;
            sums = withPair(sums, left, right, Uniform(*weight));
        }
        store(withMiddle(sums, src + x, centre), out + x);
    }
}

template <int channels> GaussianRow* rowOfChannels(int radius) {
    switch (radius) {
    case 1:
        return rowOfRadius<1, channels>;
    case 2:
        return rowOfRadius<2, channels>;
    case 3:
        return rowOfRadius<3, channels>;
    default:
        return rowOfAnyRadius<channels>;
    }
}

} // namespace

template <class T> void gaussianFloatsScalar(const T* src, std::ptrdiff_t count, float* out) {
    for (std::ptrdiff_t i = 0; i < count; ++i) out[i] = src[i];
}

template <class T> void gaussianFloats(const T* src, std::ptrdiff_t count, float* out) {
    if constexpr (std::is_floating_point_v<T>) {
        std::memcpy(out, src, count * sizeof(float));
    } else {
        std::ptrdiff_t i = 0;
        // 16 elements per iteration
        for (; i <= count - 16; i += 16) store(toFloat(load<16>(src + i)), out + i);
        // tail, one element at a time
        gaussianFloatsScalar(src + i, count - i, out + i);
    }
}

void gaussianRowScalar(const float* src, std::ptrdiff_t count, int channels, const float* weights, int radius,
                       float* out) {
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const float* centre = src + i;
        float sum = (centre[-radius * channels] + centre[radius * channels]) * weights[0];
        for (int j = radius - 1; j > 0; --j)
            sum += (centre[-j * channels] + centre[j * channels]) * weights[radius - j];
        out[i] = sum + centre[0] * weights[radius];
    }
}

GaussianRow* gaussianRow(int radius, int channels) {
    return channels == 1 ? rowOfChannels<1>(radius) : rowOfChannels<3>(radius);
}

template decltype(gaussianFloatsScalar<Lum8u>) gaussianFloatsScalar<Lum8u>;
template decltype(gaussianFloatsScalar<Lum16u>) gaussianFloatsScalar<Lum16u>;
template decltype(gaussianFloatsScalar<Lum16s>) gaussianFloatsScalar<Lum16s>;
template decltype(gaussianFloatsScalar<Lum32f>) gaussianFloatsScalar<Lum32f>;
template decltype(gaussianFloats<Lum8u>) gaussianFloats<Lum8u>;
template decltype(gaussianFloats<Lum16u>) gaussianFloats<Lum16u>;
template decltype(gaussianFloats<Lum16s>) gaussianFloats<Lum16s>;
template decltype(gaussianFloats<Lum32f>) gaussianFloats<Lum32f>;

} // namespace lum::kernels
