#include "kernels/filter/lowpass.h"

#include "kernels/filter/fixed_kernel.h"
#include "kernels/filter/single_stage.h"

namespace lum::kernels {
namespace {

constexpr std::array<int, 3> three{1, 1, 1};
constexpr std::array<int, 5> five{1, 1, 1, 1, 1};

template <int taps> constexpr auto boxMask = FixedKernel<3>::outer(three, three);
template <> constexpr auto boxMask<5> = FixedKernel<5>::outer(five, five);

/// The mean of a sum, by a product of signed words of which the high half is kept.
template <int taps> struct MeanOfSum {
    static constexpr int bias = taps == 3 ? 5 : 0;
    static constexpr int multiplier = taps == 3 ? 7280 : 2622;
    static_assert(((taps * taps * 255 + bias) * multiplier) >> 16 == 255, "no mean exceeds a byte");

    static Lum8u one(int sum) { return static_cast<Lum8u>(((sum + bias) * multiplier) >> 16); }
    static __m128i means(__m128i sums) {
        if constexpr (bias != 0) sums = _mm_add_epi16(sums, _mm_set1_epi16(bias));
        return _mm_mulhi_epi16(sums, _mm_set1_epi16(multiplier));
    }
    static void sixteen(const SixteenSums& sums, Lum8u* dst) {
        storeVector<Access::unaligned>(dst, _mm_packus_epi16(means(sums.low), means(sums.high)));
    }
};

template <int taps> struct Sum {
    auto operator()(auto tap) const {
        auto sum = tap(0);
        for (int i = 1; i < taps; ++i) sum = sum + tap(i);
        return sum;
    }
};

template <int taps> struct Mean {
    auto operator()(auto tap) const { return Sum<taps>()(tap) * (1.0F / (taps * taps)); }
};

} // namespace

template <int taps> void lowpassScalar(const Lum8u* const* rows, Lum8u* dst, std::ptrdiff_t count) {
    maskRowScalar<boxMask<taps>, MeanOfSum<taps>>(rows, dst, count);
}

template <int taps> void lowpass(const Lum8u* const* rows, Lum8u* dst, std::ptrdiff_t count) {
    convolveRow<boxMask<taps>, MeanOfSum<taps>>(rows, dst, count);
}

template <int taps> void lowpassAlongScalar(const float* extended, float* out, std::ptrdiff_t count) {
    singleStageScalar(alongRow(extended), out, count, Sum<taps>());
}

template <int taps> void lowpassAlong(const float* extended, float* out, std::ptrdiff_t count) {
    singleStage(alongRow(extended), out, count, Sum<taps>());
}

template <int taps> void lowpassDownScalar(const float* const* rows, float* dst, std::ptrdiff_t count) {
    singleStageScalar(downRows(rows), dst, count, Mean<taps>());
}

template <int taps> void lowpassDown(const float* const* rows, float* dst, std::ptrdiff_t count) {
    singleStage(downRows(rows), dst, count, Mean<taps>());
}

template decltype(lowpassScalar<3>) lowpassScalar<3>;
template decltype(lowpassScalar<5>) lowpassScalar<5>;
template decltype(lowpass<3>) lowpass<3>;
template decltype(lowpass<5>) lowpass<5>;
template decltype(lowpassAlongScalar<3>) lowpassAlongScalar<3>;
template decltype(lowpassAlongScalar<5>) lowpassAlongScalar<5>;
template decltype(lowpassAlong<3>) lowpassAlong<3>;
template decltype(lowpassAlong<5>) lowpassAlong<5>;
template decltype(lowpassDownScalar<3>) lowpassDownScalar<3>;
template decltype(lowpassDownScalar<5>) lowpassDownScalar<5>;
template decltype(lowpassDown<3>) lowpassDown<3>;
template decltype(lowpassDown<5>) lowpassDown<5>;

} // namespace lum::kernels
