#include "kernels/filter/laplacian.h"

#include "kernels/filter/fixed_kernel.h"
#include "kernels/filter/float_stage.h"

namespace lum::kernels {
namespace {

constexpr std::array<int, 5> smoothing{1, 4, 6, 4, 1};
constexpr std::array<int, 5> secondDifference{1, 0, -2, 0, 1};

template <int taps> constexpr auto laplacianMask = FixedKernel<3>{{{2, 0, 2}, {0, -8, 0}, {2, 0, 2}}};
template <>
constexpr auto laplacianMask<5> =
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
    convolveRowScalar<laplacianMask<taps>, SumsAsWords>(rows, dst, count);
}

template <int taps> void laplacian(const Lum8u* const* rows, Lum16s* dst, std::ptrdiff_t count) {
    convolveRow<laplacianMask<taps>, SumsAsWords>(rows, dst, count);
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

template decltype(laplacianScalar<3>) laplacianScalar<3>;
template decltype(laplacianScalar<5>) laplacianScalar<5>;
template decltype(laplacian<3>) laplacian<3>;
template decltype(laplacian<5>) laplacian<5>;
template decltype(laplacianAlongScalar<3>) laplacianAlongScalar<3>;
template decltype(laplacianAlongScalar<5>) laplacianAlongScalar<5>;
template decltype(laplacianAlong<3>) laplacianAlong<3>;
template decltype(laplacianAlong<5>) laplacianAlong<5>;
template decltype(laplacianDownScalar<3>) laplacianDownScalar<3>;
template decltype(laplacianDownScalar<5>) laplacianDownScalar<5>;
template decltype(laplacianDown<3>) laplacianDown<3>;
template decltype(laplacianDown<5>) laplacianDown<5>;

} // namespace lum::kernels
