#include "kernels/filter/laplacian.h"

#include "frame/instances.h"
#include "kernels/filter/fixed_kernel.h"
#include "kernels/filter/float_stage.h"

namespace lum::kernels {
namespace {

constexpr std::array<int, 5> smoothing{1, 4, 6, 4, 1};
constexpr std::array<int, 5> secondDifference{1, 0, -2, 0, 1};

template <int taps> constexpr auto laplacianKernel = FixedKernel<3>{{{2, 0, 2}, {0, -8, 0}, {2, 0, 2}}};
template <>
constexpr auto laplacianKernel<5> =
    FixedKernel<5>::outer(secondDifference, smoothing) + FixedKernel<5>::outer(smoothing, secondDifference);

// Opposite taps are added first: of a flat image every such sum is exact, and the results cancel to 0.

struct Neighbours {
    auto operator()(auto tap) const { return tap(0) + tap(2); }
};

struct Centre {
    auto operator()(auto tap) const { return tap(1); }
};

struct Smoothed {
    auto operator()(auto tap) const { return (tap(0) + tap(4)) + 4.0F * (tap(1) + tap(3)) + 6.0F * tap(2); }
};

struct SecondDifference {
    auto operator()(auto tap) const { return (tap(0) + tap(4)) - 2.0F * tap(2); }
};

template <int taps> using FirstAlong = std::conditional_t<taps == 3, Neighbours, Smoothed>;
template <int taps> using SecondAlong = std::conditional_t<taps == 3, Centre, SecondDifference>;

/// The second rows are taps after the first.
template <int taps> struct Down {
    auto operator()(auto tap) const {
        const auto second = [tap](int k) { return tap(taps + k); };
        if constexpr (taps == 3)
            return 2.0F * (tap(0) + tap(2)) - 8.0F * second(1);
        else
            return SecondDifference()(tap) + Smoothed()(second);
    }
};

} // namespace

template <int taps> void laplacianScalar(const Lum8u* const* rows, Lum16s* dst, std::ptrdiff_t count) {
    convolveRowScalar<laplacianKernel<taps>, SumsAsWords>(rows, dst, count);
}

template <int taps> void laplacian(const Lum8u* const* rows, Lum16s* dst, std::ptrdiff_t count) {
    convolveRow<laplacianKernel<taps>, SumsAsWords>(rows, dst, count);
}

template <int taps>
void laplacianAlongScalar(const float* extended, float* first, float* second, std::ptrdiff_t count) {
    floatStageScalar(alongRow(extended), second, count, SecondAlong<taps>());
    floatStageScalar(alongRow(extended), first, count, FirstAlong<taps>());
}

template <int taps>
void laplacianAlong(const float* extended, float* first, float* second, std::ptrdiff_t count) {
    floatStage(alongRow(extended), second, count, SecondAlong<taps>());
    floatStage(alongRow(extended), first, count, FirstAlong<taps>());
}

template <int taps> void laplacianDownScalar(const float* const* rows, float* dst, std::ptrdiff_t count) {
    floatStageScalar(downRows(rows), dst, count, Down<taps>());
}

template <int taps> void laplacianDown(const float* const* rows, float* dst, std::ptrdiff_t count) {
    floatStage(downRows(rows), dst, count, Down<taps>());
}

LUM_INSTANCES(laplacianScalar, (3), (5));
LUM_INSTANCES(laplacian, (3), (5));
LUM_INSTANCES(laplacianAlongScalar, (3), (5));
LUM_INSTANCES(laplacianAlong, (3), (5));
LUM_INSTANCES(laplacianDownScalar, (3), (5));
LUM_INSTANCES(laplacianDown, (3), (5));

} // namespace lum::kernels
