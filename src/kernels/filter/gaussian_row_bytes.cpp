#include "frame/lanes_parts.h"
#include "frame/lanes_products.h"
#include "frame/lanes_words_times.h"
#include "kernels/filter/gaussian.h"
#include "kernels/filter/gaussian_sums.h"

namespace lum::kernels {
namespace {

/// n elements as floats, in the order of gaussianPlace(): the quarters of all units one after the other.
template <int n> struct Quarters {
    UnitHalves<float, n / 4> low;
    UnitHalves<float, n / 4> high;

    LUM_LANE Quarters operator+(const Quarters& more) const {
        return {{low.low + more.low.low, low.high + more.low.high},
                {high.low + more.high.low, high.high + more.high.high}};
    }
    LUM_LANE void storeTo(float* out) const {
        store(low.low, out);
        store(low.high, out + n / 4);
        store(high.low, out + n / 2);
        store(high.high, out + n / 2 + n / 4);
    }
};

/// The sums of the bytes at equal distance before and after, weighted: they are words, which are exact.
template <int n>
LUM_LANE Quarters<n> pair(const Lum8u* before, const Lum8u* after, const WordFactor& weight) {
    const auto bytes = interleaveUnits(load<n>(before), load<n>(after));
    const auto one = broadcast<n>(Lum8s{1});
    return {weight.times(bitsAs<Lum16u>(multiplyAddPairs(bytes.low, one))),
            weight.times(bitsAs<Lum16u>(multiplyAddPairs(bytes.high, one)))};
}

template <int n> LUM_LANE Quarters<n> middle(const Lum8u* place, const WordFactor& weight) {
    const auto words = interleaveUnits(load<n>(place), zeros<Lum8u, n>());
    return {weight.times(bitsAs<Lum16u>(words.low)), weight.times(bitsAs<Lum16u>(words.high))};
}

/// Calls work<n>(x) for the blocks of gaussianPlace().
template <class Work> LUM_LANE void forPlacedBlocks(std::ptrdiff_t count, Work work) {
    constexpr int n = OneVector<Lum8u>::count;
    std::ptrdiff_t x = 0;
    // one vector of bytes per iteration
    for (; x <= count - n; x += n) work.template operator()<n>(x);
    // tail: whole blocks of 16 elements
    for (; x < count; x += gaussianBlock) work.template operator()<gaussianBlock>(x);
}

template <int channels> struct RowsOfBytes {
    template <int radius>
    static void ofRadius(const Lum8u* src, std::ptrdiff_t count, const float* halfKernel, int, float* out) {
        WordFactor weights[radius + 1];
        for (int j = 0; j <= radius; ++j) weights[j] = WordFactor(halfKernel[j]);
        forPlacedBlocks(count, [&]<int n>(std::ptrdiff_t x) LUM_INLINED {
            auto sums = pair<n>(src + x - radius * channels, src + x + radius * channels, weights[0]);
#pragma GCC unroll 3
            for (int j = radius - 1; j > 0; --j)
                sums = sums + pair<n>(src + x - j * channels, src + x + j * channels, weights[radius - j]);
            (sums + middle<n>(src + x, weights[radius])).storeTo(out + x);
        });
    }

    static void ofAnyRadius(const Lum8u* src, std::ptrdiff_t count, const float* halfKernel, int radius,
                            float* out) {
        const WordFactor outermost(halfKernel[0]);
        const WordFactor centre(halfKernel[radius]);
        forPlacedBlocks(count, [&]<int n>(std::ptrdiff_t x) LUM_INLINED {
            const Lum8u* left = src + x - radius * channels;
            const Lum8u* right = src + x + radius * channels;
            auto sums = pair<n>(left, right, outermost);
            for (const float* weight = halfKernel + 1; weight < halfKernel + radius; ++weight) {
                left += channels;
                right -= channels;
                sums = sums + pair<n>(left, right, WordFactor(*weight));
            }
            (sums + middle<n>(src + x, centre)).storeTo(out + x);
        });
    }
};

} // namespace

template <> GaussianRow<Lum8u>* gaussianRow(int radius, int channels) {
    return channels == 1 ? rowOfRadius<Lum8u, RowsOfBytes<1>>(radius)
                         : rowOfRadius<Lum8u, RowsOfBytes<3>>(radius);
}

} // namespace lum::kernels
