#include <deque>

#include "feature_rows.h"
#include "kernels/feature/canny.h"

using namespace support;
using namespace lum::kernels;

namespace {

/// Directions count only where there is a magnitude.
template <class M>
void expectSameGradients(GuardedRow<M>& a, GuardedRow<Lum8u>& directionsOfA, GuardedRow<M>& b,
                         GuardedRow<Lum8u>& directionsOfB) {
    ASSERT_TRUE(sameBits(a.elements(), b.elements()));
    const auto magnitudes = a.elements();
    for (std::size_t x = 0; x < magnitudes.size(); ++x)
        if (magnitudes[x] != 0) {
            ASSERT_EQ(directionsOfA.data()[x], directionsOfB.data()[x]) << x;
        }
}

template <Magnitude magnitude, class D> void expectMagnitudesAgree() {
    using M = MagnitudeElement<D, magnitude>;
    std::mt19937 engine(7);
    onEveryRow([&](int width, Guard guard, int shift) {
        GuardedRow<D> dx(width, guard, shift), dy(width, guard, shift);
        const auto component = [&](std::ptrdiff_t) {
            const auto bits = engine();
            if (bits % 16 == 0) return static_cast<D>(-32768);
            if (bits % 16 == 1) return static_cast<D>(0);
            const int value = static_cast<int>(bits >> 8) >> (bits % 16);
            return static_cast<D>(std::is_same_v<D, Lum16s> ? value : value * 0.37);
        };
        dx.fill(component);
        dy.fill(component);
        for (M low : {static_cast<M>(0), static_cast<M>(300), static_cast<M>(60000)}) {
            GuardedRow<M> plain(width, guard), fast(width, guard);
            GuardedRow<Lum8u> plainDirections(width, guard), fastDirections(width, guard);
            magnitudeRowScalar<magnitude>(dx.data(), dy.data(), width, low, plain.data(),
                                          plainDirections.data());
            magnitudeRow<magnitude>(dx.data(), dy.data(), width, low, fast.data(), fastDirections.data());
            expectSameGradients(plain, plainDirections, fast, fastDirections);
        }
    });
}

template <Derivative kind, Magnitude magnitude> void expectGradientsAgree() {
    using M = MagnitudeElement<Lum16s, magnitude>;
    std::mt19937 engine(8);
    const int taps = 2 * reachOf(kind) + 1;
    onEveryRow([&](int width, Guard guard, int shift) {
        GuardedRow<Lum16s> smooth(width + taps - 1, guard, shift), difference(width + taps - 1, guard, shift);
        const int shrink = static_cast<int>(engine() % 8);
        smooth.fill([&](std::ptrdiff_t) { return engine() % 4081 >> shrink; });
        difference.fill([&](std::ptrdiff_t) { return (static_cast<int>(engine() % 1531) - 765) >> shrink; });
        for (M low : {M{0}, M{100}, M{2000}}) {
            GuardedRow<M> plain(width, guard), fast(width, guard);
            GuardedRow<Lum8u> plainDirections(width, guard), fastDirections(width, guard);
            gradientMagnitudeRowScalar<kind, magnitude>(smooth.data(), difference.data(), width, low,
                                                        plain.data(), plainDirections.data());
            gradientMagnitudeRow<kind, magnitude>(smooth.data(), difference.data(), width, low, fast.data(),
                                                  fastDirections.data());
            expectSameGradients(plain, plainDirections, fast, fastDirections);
        }
    });
}

template <class M> void expectSuppressionAgrees() {
    std::mt19937 engine(9);
    onEveryRow([&](int width, Guard guard, int shift) {
        std::deque<GuardedRow<M>> lines;
        const unsigned share = 1 + engine() % 4;
        for (int i = 0; i < 3; ++i) {
            lines.emplace_back(width + 2, guard, shift);
            lines.back().fill([&](std::ptrdiff_t x) {
                return x == 0 || x == width + 1 || engine() % share != 0 ? 0U : engine() % 5 * 16000;
            });
        }
        GuardedRow<Lum8u> directions(width, guard, shift);
        directions.fill([&](std::ptrdiff_t) { return 1 + engine() % 4; });
        const MagnitudeRows<M> rows{lines[0].data() + 1, lines[1].data() + 1, lines[2].data() + 1};
        GuardedRow<Lum8u> plain(width, guard), fast(width, guard);
        suppressRowScalar<M>(rows, directions.data(), width, static_cast<M>(32000), plain.data());
        suppressRow<M>(rows, directions.data(), width, static_cast<M>(32000), fast.data());
        ASSERT_EQ(plain.elements(), fast.elements());
    });
}

template <Derivative kind, class T> void expectColumnStagesAgree() {
    using S = StageElement<T>;
    std::mt19937 engine(10);
    onEveryRow([&](int width, Guard guard, int shift) {
        std::deque<GuardedRow<T>> source;
        const T* rows[largestDerivativeTaps] = {};
        for (int k = 0; k <= 2 * reachOf(kind); ++k) {
            source.emplace_back(width, guard, shift);
            source.back().fill([&](std::ptrdiff_t) {
                return std::is_same_v<T, Lum8u> ? engine() % 256 : static_cast<int>(engine()) * 1e-7;
            });
            rows[k] = source.back().data();
        }
        GuardedRow<S> smooth(width, guard), difference(width, guard), fastSmooth(width, guard),
            fastDifference(width, guard);
        derivativeDownScalar<kind, T>(rows, width, smooth.data(), difference.data());
        derivativeDown<kind, T>(rows, width, fastSmooth.data(), fastDifference.data());
        ASSERT_TRUE(sameBits(smooth.elements(), fastSmooth.elements()));
        ASSERT_TRUE(sameBits(difference.elements(), fastDifference.elements()));
    });
}

} // namespace

TEST(CannyKernels, MagnitudesAgreeWithTheScalarForm) {
    expectMagnitudesAgree<Magnitude::sum, Lum16s>();
    expectMagnitudesAgree<Magnitude::squares, Lum16s>();
    expectMagnitudesAgree<Magnitude::sumKeepingEqual, Lum32f>();
    expectMagnitudesAgree<Magnitude::sum, Lum32f>();
    expectMagnitudesAgree<Magnitude::squares, Lum32f>();
}

TEST(CannyKernels, FusedGradientsAgreeWithTheScalarForm) {
    expectGradientsAgree<Derivative::sobel3, Magnitude::sum>();
    expectGradientsAgree<Derivative::sobel5, Magnitude::sum>();
    expectGradientsAgree<Derivative::scharr3, Magnitude::sum>();
    expectGradientsAgree<Derivative::sobel3, Magnitude::root>();
    expectGradientsAgree<Derivative::sobel5, Magnitude::root>();
    expectGradientsAgree<Derivative::scharr3, Magnitude::root>();
}

TEST(CannyKernels, SuppressionAgreesWithTheScalarForm) {
    expectSuppressionAgrees<Lum16u>();
    expectSuppressionAgrees<std::uint32_t>();
    expectSuppressionAgrees<Lum32f>();
}

TEST(CannyKernels, JoinedAndFollowedEdgesAgreeWithTheScalarForm) {
    std::mt19937 engine(12);
    for (int width : kernelWidths()) {
        constexpr int height = 5;
        const int mapWidth = width + 2;
        std::vector<Lum8u> plain(mapWidth * (height + 2) + 4);
        for (int y = 1; y <= height; ++y)
            for (int x = 1; x <= width; ++x) {
                const unsigned pick = engine() % 20;
                plain[y * mapWidth + x] = pick == 0 ? mapEdge : pick < 9 ? mapRidge : mapNothing;
            }
        std::vector<Lum8u> fast = plain;
        const auto follow = [&](std::vector<Lum8u>& map, auto join) {
            std::vector<std::uint32_t> stack(width * height);
            std::uint32_t* top = stack.data();
            for (int y = 1; y <= height; ++y) {
                const int first = y * mapWidth + 1;
                top = join(map.data() + first, mapWidth, width, static_cast<std::uint32_t>(first), top);
            }
            followEdges(map.data(), mapWidth, stack.data(), top);
        };
        follow(plain, joinRowScalar);
        follow(fast, joinRow);
        ASSERT_EQ(plain, fast) << width;
    }
}

TEST(CannyKernels, ColumnStagesAgreeWithTheScalarForm) {
    expectColumnStagesAgree<Derivative::sobel3, Lum8u>();
    expectColumnStagesAgree<Derivative::sobel5, Lum8u>();
    expectColumnStagesAgree<Derivative::scharr3, Lum8u>();
    expectColumnStagesAgree<Derivative::central3, Lum8u>();
    expectColumnStagesAgree<Derivative::sobel3, Lum32f>();
    expectColumnStagesAgree<Derivative::sobel5, Lum32f>();
    expectColumnStagesAgree<Derivative::scharr3, Lum32f>();
    expectColumnStagesAgree<Derivative::central3, Lum32f>();
}

TEST(CannyKernels, EdgeRowsAgreeWithTheScalarForm) {
    std::mt19937 engine(11);
    onEveryRow([&](int width, Guard guard, int shift) {
        GuardedRow<Lum8u> map(width, guard, shift), plain(width, guard), fast(width, guard);
        map.fill([&](std::ptrdiff_t) {
            return engine() % 3 == 0 ? mapNothing : engine() % 2 == 0 ? mapRidge : mapEdge;
        });
        edgeRowScalar(map.data(), width, plain.data());
        edgeRow(map.data(), width, fast.data());
        ASSERT_EQ(plain.elements(), fast.elements());
    });
}
