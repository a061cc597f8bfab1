#include "frame/instances.h"
#include "kernels/filter/gaussian.h"
#include "kernels/filter/gaussian_sums.h"

namespace lum::kernels {
namespace {

// Rows without a tail: what is read and written reaches to the end of the last block.

template <int channels> struct RowsOfFloats {
    template <int radius>
    static void ofRadius(const float* src, std::ptrdiff_t count, const float* halfKernel, int, float* out) {
        Uniform<float> weights[radius + 1];
        for (int j = 0; j <= radius; ++j) weights[j] = Uniform(halfKernel[j]);
        // 16 elements per iteration
        for (std::ptrdiff_t x = 0; x < count; x += gaussianBlock) {
            Float16 sums = firstPair<Rows::anywhere>(src + x - radius * channels, src + x + radius * channels,
                                                     weights[0]);
#pragma GCC unroll 3
            for (int j = radius - 1; j > 0; --j)
                sums = withPair<Rows::anywhere>(sums, src + x - j * channels, src + x + j * channels,
                                                weights[radius - j]);
            store(withMiddle<Rows::anywhere>(sums, src + x, weights[radius]), out + x);
        }
    }

    static void ofAnyRadius(const float* src, std::ptrdiff_t count, const float* weights, int radius,
                            float* out) {
        const Uniform<float> outermost(weights[0]);
        const Uniform<float> centre(weights[radius]);
        // 16 elements per iteration
        for (std::ptrdiff_t x = 0; x < count; x += gaussianBlock) {
            const float* left = src + x - radius * channels;
            const float* right = src + x + radius * channels;
            Float16 sums = firstPair<Rows::anywhere>(left, right, outermost);
            for (const float* weight = weights + 1; weight < weights + radius; ++weight) {
                left += channels;
                right -= channels;
                sums = withPair<Rows::anywhere>(sums, left, right, Uniform(*weight));
            }
            store(withMiddle<Rows::anywhere>(sums, src + x, centre), out + x);
        }
    }
};

} // namespace

template <class S>
void gaussianRowScalar(const S* src, std::ptrdiff_t count, int channels, const float* weights, int radius,
                       float* out) {
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const S* centre = src + i;
        float sum = static_cast<float>(centre[-radius * channels] + centre[radius * channels]) * weights[0];
        for (int j = radius - 1; j > 0; --j)
            sum += static_cast<float>(centre[-j * channels] + centre[j * channels]) * weights[radius - j];
        out[gaussianPlace<S>(i, count)] = sum + static_cast<float>(centre[0]) * weights[radius];
    }
}

template <> GaussianRow<Lum32f>* gaussianRow(int radius, int channels) {
    return channels == 1 ? rowOfRadius<Lum32f, RowsOfFloats<1>>(radius)
                         : rowOfRadius<Lum32f, RowsOfFloats<3>>(radius);
}

LUM_INSTANCES(gaussianRowScalar, (Lum8u), (Lum32f));

} // namespace lum::kernels
