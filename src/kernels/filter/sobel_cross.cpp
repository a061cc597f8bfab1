#include "kernels/filter/sobel_cross.h"

#include "kernels/filter/fixed_kernel.h"
#include "kernels/filter/float_stage.h"

namespace lum::kernels {
namespace {

constexpr std::array<int, 3> three{1, 0, -1};
constexpr std::array<int, 5> five{1, 2, 0, -2, -1};

template <int taps> constexpr auto crossMask = FixedKernel<3>::outer(three, three);
template <> constexpr auto crossMask<5> = FixedKernel<5>::outer(five, five);

/// Opposite taps meet first, so that equal ones cancel exactly.
template <int taps> struct Derivative {
    auto operator()(auto tap) const {
        if constexpr (taps == 3)
            return tap(0) - tap(2);
        else
            return (tap(0) - tap(4)) + 2.0F * (tap(1) - tap(3));
    }
};

} // namespace

template <int taps> void sobelCrossScalar(const Lum8u* const* rows, Lum16s* dst, std::ptrdiff_t count) {
    convolveRowScalar<crossMask<taps>, SumsAsWords>(rows, dst, count);
}

template <int taps> void sobelCross(const Lum8u* const* rows, Lum16s* dst, std::ptrdiff_t count) {
    convolveRow<crossMask<taps>, SumsAsWords>(rows, dst, count);
}

template <int taps> void sobelCrossAlongScalar(const float* extended, float* out, std::ptrdiff_t count) {
    floatStageScalar(alongRow(extended), out, count, Derivative<taps>());
}

template <int taps> void sobelCrossAlong(const float* extended, float* out, std::ptrdiff_t count) {
    floatStage(alongRow(extended), out, count, Derivative<taps>());
}

template <int taps> void sobelCrossDownScalar(const float* const* rows, float* dst, std::ptrdiff_t count) {
    floatStageScalar(downRows(rows), dst, count, Derivative<taps>());
}

template <int taps> void sobelCrossDown(const float* const* rows, float* dst, std::ptrdiff_t count) {
    floatStage(downRows(rows), dst, count, Derivative<taps>());
}

template decltype(sobelCrossScalar<3>) sobelCrossScalar<3>;
template decltype(sobelCrossScalar<5>) sobelCrossScalar<5>;
template decltype(sobelCross<3>) sobelCross<3>;
template decltype(sobelCross<5>) sobelCross<5>;
template decltype(sobelCrossAlongScalar<3>) sobelCrossAlongScalar<3>;
template decltype(sobelCrossAlongScalar<5>) sobelCrossAlongScalar<5>;
template decltype(sobelCrossAlong<3>) sobelCrossAlong<3>;
template decltype(sobelCrossAlong<5>) sobelCrossAlong<5>;
template decltype(sobelCrossDownScalar<3>) sobelCrossDownScalar<3>;
template decltype(sobelCrossDownScalar<5>) sobelCrossDownScalar<5>;
template decltype(sobelCrossDown<3>) sobelCrossDown<3>;
template decltype(sobelCrossDown<5>) sobelCrossDown<5>;

} // namespace lum::kernels
