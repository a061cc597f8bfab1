#include "kernels/filter/sobel_cross.h"

#include "frame/instances.h"
#include "kernels/filter/fixed_kernel.h"
#include "kernels/filter/float_stage.h"

namespace lum::kernels {
namespace {

constexpr std::array<int, 3> three{1, 0, -1};
constexpr std::array<int, 5> five{1, 2, 0, -2, -1};

template <int taps> constexpr auto crossKernel = FixedKernel<3>::outer(three, three);
template <> constexpr auto crossKernel<5> = FixedKernel<5>::outer(five, five);

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
    convolveRowScalar<crossKernel<taps>, SumsAsWords>(rows, dst, count);
}

template <int taps> void sobelCross(const Lum8u* const* rows, Lum16s* dst, std::ptrdiff_t count) {
    convolveRow<crossKernel<taps>, SumsAsWords>(rows, dst, count);
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

LUM_INSTANCES(sobelCrossScalar, (3), (5));
LUM_INSTANCES(sobelCross, (3), (5));
LUM_INSTANCES(sobelCrossAlongScalar, (3), (5));
LUM_INSTANCES(sobelCrossAlong, (3), (5));
LUM_INSTANCES(sobelCrossDownScalar, (3), (5));
LUM_INSTANCES(sobelCrossDown, (3), (5));

} // namespace lum::kernels
