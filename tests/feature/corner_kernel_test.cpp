#include <deque>

#include "feature_rows.h"
#include "kernels/feature/corner.h"
#include "kernels/feature/line.h"

using namespace support;
using namespace lum::kernels;

namespace {

/// A whole number from `least` to `largest`, or any float.
template <class Stage> Stage anyStage(std::mt19937& engine, int least, int largest) {
    if constexpr (std::is_same_v<Stage, Lum16s>)
        return static_cast<Stage>(least + static_cast<int>(engine() % (largest - least + 1)));
    else
        return static_cast<Stage>(static_cast<int>(engine()) * 1e-6);
}

template <Derivative kind, class Stage> void expectProductsAgree() {
    std::mt19937 engine(21);
    constexpr int more = 2 * reachOf(kind);
    onEveryRow([&](int width, Guard guard, int shift) {
        GuardedRow<Stage> smooth(width + more, guard, shift), difference(width + more, guard, shift);
        smooth.fill([&](std::ptrdiff_t) { return anyStage<Stage>(engine, 0, 4080); });
        difference.fill([&](std::ptrdiff_t) { return anyStage<Stage>(engine, -765, 765); });
        std::deque<GuardedRow<float>> rows;
        for (int i = 0; i < 6; ++i) rows.emplace_back(width, guard);
        productRowScalar<kind, Stage>(smooth.data(), difference.data(), width,
                                      {rows[0].data(), rows[1].data(), rows[2].data()});
        productRow<kind, Stage>(smooth.data(), difference.data(), width,
                                {rows[3].data(), rows[4].data(), rows[5].data()});
        for (int i = 0; i < 3; ++i) ASSERT_TRUE(sameBits(rows[i].elements(), rows[i + 3].elements()));
    });
}

template <Derivative kind> void expectExactProductsAgree() {
    std::mt19937 engine(22);
    constexpr int more = 2 * reachOf(kind);
    onEveryRow([&](int width, Guard guard, int shift) {
        GuardedRow<Lum16s> smooth(width + more, guard, shift), difference(width + more, guard, shift);
        smooth.fill([&](std::ptrdiff_t) { return engine() % 4081; });
        difference.fill([&](std::ptrdiff_t) { return static_cast<int>(engine() % 1531) - 765; });
        std::deque<GuardedRow<double>> rows;
        for (int i = 0; i < 6; ++i)
            rows.emplace_back(width, guard).fill([&](std::ptrdiff_t x) {
                return 1000.0 * static_cast<double>(x);
            });
        for (double weight : {1.0, -1.0, 1.0}) {
            addProductRowScalar<kind>(smooth.data(), difference.data(), width, weight,
                                      {rows[0].data(), rows[1].data(), rows[2].data()});
            addProductRow<kind>(smooth.data(), difference.data(), width, weight,
                                {rows[3].data(), rows[4].data(), rows[5].data()});
        }
        for (int i = 0; i < 3; ++i) ASSERT_TRUE(sameBits(rows[i].elements(), rows[i + 3].elements()));
    });
}

/// Rows of sums such as covariances have: some flat, some along one direction, some of both.
struct AnyWindow {
    std::deque<GuardedRow<float>> rows;
    std::vector<const float*> pointers;
    WindowRows window;

    AnyWindow(int width, int taps, Guard guard, int shift, std::mt19937& engine) {
        for (int i = 0; i < 3 * taps; ++i) pointers.push_back(rows.emplace_back(width, guard, shift).data());
        for (int k = 0; k < taps; ++k)
            for (int x = 0; x < width; ++x) {
                const unsigned texture = x / 16 % 4;
                const float dx = texture == 0 ? 0 : static_cast<float>(engine() % 2001) - 1000;
                const float dy = texture == 1   ? dx
                                 : texture == 2 ? static_cast<float>(engine() % 5)
                                 : texture == 3 ? static_cast<float>(engine() % 2001) - 1000
                                                : 0;
                rows[k].data()[x] = dx * dx;
                rows[taps + k].data()[x] = texture == 3 && engine() % 4 == 0 ? 0 : dx * dy;
                rows[2 * taps + k].data()[x] = dy * dy;
            }
        window = {pointers.data(), pointers.data() + taps, pointers.data() + 2 * taps, taps};
    }
};

template <class Scalar, class Vector> void expectMeasuresAgree(int channels, Scalar scalar, Vector vector) {
    std::mt19937 engine(23);
    onEveryRow([&](int width, Guard guard, int shift) {
        for (int taps : {1, 3, 4, 5}) {
            AnyWindow any(width, taps, guard, shift, engine);
            GuardedRow<float> plain(width * channels, guard, shift), fast(width * channels, guard, shift);
            scalar(any.window, width, plain.data());
            vector(any.window, width, fast.data());
            ASSERT_TRUE(sameBits(plain.elements(), fast.elements())) << width << " " << taps;
        }
    });
}

} // namespace

TEST(CornerKernels, ProductsAgreeWithTheScalarForm) {
    expectProductsAgree<Derivative::sobel3, Lum16s>();
    expectProductsAgree<Derivative::sobel5, Lum16s>();
    expectProductsAgree<Derivative::scharr3, Lum16s>();
    expectProductsAgree<Derivative::central3, Lum16s>();
    expectProductsAgree<Derivative::sobel3, Lum32f>();
    expectProductsAgree<Derivative::sobel5, Lum32f>();
    expectProductsAgree<Derivative::scharr3, Lum32f>();
    expectProductsAgree<Derivative::central3, Lum32f>();
}

TEST(CornerKernels, ExactProductsAgreeWithTheScalarForm) {
    expectExactProductsAgree<Derivative::sobel3>();
    expectExactProductsAgree<Derivative::sobel5>();
    expectExactProductsAgree<Derivative::scharr3>();
    expectExactProductsAgree<Derivative::central3>();
}

TEST(CornerKernels, WindowSumsAgreeWithTheScalarForm) {
    std::mt19937 engine(24);
    onEveryRow([&](int width, Guard guard, int shift) {
        for (int taps : {1, 2, 3, 5, 11}) {
            GuardedRow<float> row(width + taps - 1, guard, shift), plain(width, guard), fast(width, guard);
            row.fill([&](std::ptrdiff_t) { return anyStage<float>(engine, 0, 0); });
            windowSumsAlongScalar(row.data(), width, taps, plain.data());
            windowSumsAlong(row.data(), width, taps, fast.data());
            ASSERT_TRUE(sameBits(plain.elements(), fast.elements()));
        }
    });
}

TEST(CornerKernels, SmallerEigenvaluesAgreeWithTheScalarForm) {
    expectMeasuresAgree(
        1,
        [](auto& window, int count, float* dst) {
            smallerEigenvalueRowScalar(window, count, 0.5F / 4080, dst);
        },
        [](auto& window, int count, float* dst) { smallerEigenvalueRow(window, count, 0.5F / 4080, dst); });
}

TEST(CornerKernels, EigenSystemsAgreeWithTheScalarForm) {
    for (float sign : {1.0F, -1.0F})
        expectMeasuresAgree(
            6,
            [=](auto& window, int count, float* dst) {
                eigenSystemRowScalar(window, count, 1.0F / 4080, sign, dst);
            },
            [=](auto& window, int count, float* dst) {
                eigenSystemRow(window, count, 1.0F / 4080, sign, dst);
            });
}

TEST(CornerKernels, HarrisResponsesAgreeWithTheScalarForm) {
    expectMeasuresAgree(
        1, [](auto& window, int count, float* dst) { harrisRowScalar(window, count, 0.04F, 3, dst); },
        [](auto& window, int count, float* dst) { harrisRow(window, count, 0.04F, 3, dst); });
}
