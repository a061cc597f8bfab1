#include <cstring>
#include <type_traits>

#include "frame/vector.h"
#include "kernels/filter/gaussian.h"
#include "kernels/filter/gaussian_sums.h"

namespace lum::kernels {
namespace {

void storeFloats(float* out, __m128i integers) { _mm_storeu_ps(out, _mm_cvtepi32_ps(integers)); }

// 16 elements
void storeVectorOfFloats(Lum8u, __m128i elements, float* out) {
    // Each shuffle spreads four bytes over four integers in one step; negative indices give zeros.
    const __m128i step = _mm_set1_epi32(4);
    const __m128i first = _mm_setr_epi32(~0xFF, ~0xFE, ~0xFD, ~0xFC);
    const __m128i second = _mm_add_epi32(first, step);
    const __m128i third = _mm_add_epi32(second, step);
    const __m128i fourth = _mm_add_epi32(third, step);
    storeFloats(out, _mm_shuffle_epi8(elements, first));
    storeFloats(out + 4, _mm_shuffle_epi8(elements, second));
    storeFloats(out + 8, _mm_shuffle_epi8(elements, third));
    storeFloats(out + 12, _mm_shuffle_epi8(elements, fourth));
}

// 8 elements
void storeVectorOfFloats(Lum16u, __m128i elements, float* out) {
    const __m128i zero = _mm_setzero_si128();
    storeFloats(out, _mm_unpacklo_epi16(elements, zero));
    storeFloats(out + 4, _mm_unpackhi_epi16(elements, zero));
}

void storeVectorOfFloats(Lum16s, __m128i elements, float* out) {
    storeFloats(out, _mm_srai_epi32(_mm_unpacklo_epi16(elements, elements), 16));
    storeFloats(out + 4, _mm_srai_epi32(_mm_unpackhi_epi16(elements, elements), 16));
}

void storeSums(const GaussianSums& sums, float* out) {
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) _mm_store_ps(out + 4 * i, sums.vectors[i]);
}

template <int radius, int channels>
void rowOfRadius(const float* src, std::ptrdiff_t count, const float* weights, int, float* out) {
    __m128 lanes[radius + 1];
    for (int j = 0; j <= radius; ++j) lanes[j] = _mm_set1_ps(weights[j]);

    // 16 elements per iteration
    for (std::ptrdiff_t x = 0; x < count; x += gaussianBlock) {
        GaussianSums sums;
        addPair<Pair::first, Access::unaligned>(sums, src + x - radius * channels,
                                                src + x + radius * channels, lanes[0]);
#pragma GCC unroll 3
        for (int j = radius - 1; j > 0; --j)
            addPair<Pair::further, Access::unaligned>(sums, src + x - j * channels, src + x + j * channels,
                                                      lanes[radius - j]);
        addMiddle<Access::unaligned>(sums, src + x, lanes[radius]);
        storeSums(sums, out + x);
    }
}

template <int channels>
void rowOfAnyRadius(const float* src, std::ptrdiff_t count, const float* weights, int radius, float* out) {
    const __m128 outermost = _mm_set1_ps(weights[0]);
    const __m128 centre = _mm_set1_ps(weights[radius]);
    // 16 elements per iteration
    for (std::ptrdiff_t x = 0; x < count; x += gaussianBlock) {
        const float* left = src + x - radius * channels;
        const float* right = src + x + radius * channels;
        GaussianSums sums;
        addPair<Pair::first, Access::unaligned>(sums, left, right, outermost);
        for (const float* weight = weights + 1; weight < weights + radius; ++weight) {
            left += channels;
            right -= channels;
            addPair<Pair::further, Access::unaligned>(sums, left, right, _mm_set1_ps(*weight));
        }
        addMiddle<Access::unaligned>(sums, src + x, centre);
        storeSums(sums, out + x);
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
        constexpr int lanes = 16 / sizeof(T);
        std::ptrdiff_t i = 0;
        // whole vectors of elements
        for (; i <= count - lanes; i += lanes)
            storeVectorOfFloats(T{}, loadVector<Access::unaligned>(src + i), out + i);
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
