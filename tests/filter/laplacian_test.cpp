#include "support/fixed_filter_cases.h"

#include "kernels/filter/laplacian.h"

using namespace support;

namespace {

std::vector<std::vector<int>> mask(int taps) {
    if (taps == 3) return {{2, 0, 2}, {0, -8, 0}, {2, 0, 2}};
    const std::vector<int> smoothing{1, 4, 6, 4, 1};
    const std::vector<int> difference{1, 0, -2, 0, 1};
    auto sum = outerProduct(difference, smoothing);
    const auto other = outerProduct(smoothing, difference);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x) sum[y][x] += other[y][x];
    return sum;
}

const FixedFilter<Lum8u, Lum16s> of8u{lumiFilterLaplacianBorder_8u16s_C1R,
                                      lumiFilterLaplacianGetBufferSize_8u16s_C1R, mask,
                                      [](double sum, int) { return static_cast<Lum16s>(sum); }};
const FixedFilter<Lum32f, Lum32f> of32f{lumiFilterLaplacianBorder_32f_C1R,
                                        lumiFilterLaplacianGetBufferSize_32f_C1R, mask,
                                        [](double sum, int) { return static_cast<Lum32f>(sum); }};

} // namespace

TEST(Laplacian, ThreeTapsByHand) {
    const auto results = amongZeros(of8u, {1, 0, 0, 0, 5, 0, 0, 0, 3});
    EXPECT_EQ(2 * (1 + 3) - 8 * 5, results[4]);
    EXPECT_EQ(2 * 5 - 8 * 1, results[0]);
    EXPECT_EQ(2 * 5, results[2]);
    EXPECT_EQ(0, results[1]);
}

TEST(Laplacian, EveryWidthAndBothGuards) {
    expectMaskOnEveryWidthAndBothGuards(of8u);
    expectMaskOnEveryWidthAndBothGuards(of32f);
}

TEST(Laplacian, EveryBorder) {
    expectMaskOnEveryBorder(of8u);
    expectMaskOnEveryBorder(of32f);
}

TEST(Laplacian, BuffersOfExactlyTheQueriedSizeAtEveryAlignment) {
    expectExactBuffersSufficeAtEveryAlignment(of8u);
    expectExactBuffersSufficeAtEveryAlignment(of32f);
}

TEST(Laplacian, FloatsAreCloseToTheExactSum) { expectCloseOnFloats(of32f, 1, 1); }

TEST(Laplacian, OppositeFloatsAreAddedFirst) {
    const auto smoothed = [](auto v) { return ((v(0) + v(4)) + 4.0F * (v(1) + v(3))) + 6.0F * v(2); };
    const auto difference = [](auto v) { return (v(0) + v(4)) - 2.0F * v(2); };
    expectOrderOnFloats(of32f, [=](int taps, auto pixel) {
        const auto beside = [=](int k) { return pixel(0, k) + pixel(2, k); };
        if (taps == 3) return 2.0F * (beside(0) + beside(2)) - 8.0F * pixel(1, 1);
        const auto along = [=](auto stage) {
            return [=](int k) { return stage([=](int i) { return pixel(i, k); }); };
        };
        return difference(along(smoothed)) + smoothed(along(difference));
    });
}

TEST(Laplacian, FlatImages) {
    expectOfFlatImages(of8u, [](double) { return 0.0; });
    expectOfFlatImages(of32f, [](double) { return 0.0; });
}

TEST(Laplacian, ChecksInOrder) {
    expectChecksInOrder(of8u);
    expectChecksInOrder(of32f);
}

TEST(Laplacian, SizesFollowTheirFormulas) {
    expectSizes(of8u, {64, 24, 336, 36, 144, 12, 64});
    expectSizes(of32f, {128, 24, 336, 64, 96, 0, 32});
}

TEST(Laplacian, LargestMagnitudesAreExact) {
    // white wherever the weight is positive, then wherever it is negative
    GuardedImage<Lum8u> src(5, 5);
    GuardedImage<Lum16s> dst(5, 5);
    for (LumMaskSize maskSize : maskSizes) {
        const int taps = tapsOfMask(maskSize);
        const int shift = (5 - taps) / 2;
        const auto weights = mask(taps);
        GuardedBlock buffer(queriedBuffer(of8u, {5, 5}, maskSize));
        for (int sign : {1, -1}) {
            src.fill([&](int x, int y, int) {
                const bool inside = x >= shift && x < 5 - shift && y >= shift && y < 5 - shift;
                return inside && sign * weights[y - shift][x - shift] > 0 ? 255 : 0;
            });
            ASSERT_EQ(lumStatusOk, of8u.run(src.data(), src.step(), dst.data(), dst.step(), {5, 5}, maskSize,
                                            lumBorderReplicate, 0, buffer.as()));
            EXPECT_EQ(sign * (taps == 3 ? 8 : 56) * 255, dst.at(2, 2));
        }
    }
}

TEST(Laplacian, FlatFloatsGiveZeroWhateverTheirBits) {
    GuardedImage<float> src(19, 7);
    GuardedImage<float> dst(19, 7);
    for (LumMaskSize maskSize : maskSizes) {
        GuardedBlock buffer(queriedBuffer(of32f, {19, 7}, maskSize));
        for (float v : {0.1F, -1.0F / 3, 1e-42F, 3.14159e30F, 16777215.0F}) {
            src.fill([&](int, int, int) { return v; });
            ASSERT_EQ(lumStatusOk, of32f.run(src.data(), src.step(), dst.data(), dst.step(), {19, 7},
                                             maskSize, lumBorderMirror, 0, buffer.as()));
            for (float pixel : dst.pixels()) ASSERT_EQ(0.0F, pixel) << v;
        }
    }
}

namespace {

template <int taps> void expectKernelsAgree(int width) {
    using namespace lum::kernels;
    expectRowsAgree<Lum8u, Lum16s>(width, taps, laplacianScalar<taps>, laplacian<taps>);
    expectRowsAgree<float, float>(width, 2 * taps, laplacianDownScalar<taps>, laplacianDown<taps>);
    expectInPlaceAgrees(
        width, taps,
        +[](const float* row, float* out, std::ptrdiff_t count) {
            std::vector<float> second(count);
            laplacianAlongScalar<taps>(row, out, second.data(), count);
        },
        +[](const float* row, float* out, std::ptrdiff_t count) {
            std::vector<float> second(count);
            std::vector<float> first(count);
            std::vector<float> secondScalar(count);
            laplacianAlongScalar<taps>(row, first.data(), secondScalar.data(), count);
            laplacianAlong<taps>(row, out, second.data(), count);
            EXPECT_TRUE(sameBits(secondScalar, second));
        });
}

} // namespace

TEST(Laplacian, VectorKernelsAgreeWithScalarOnEveryWidth) {
    for (int width = 1; width <= 70; ++width) {
        expectKernelsAgree<3>(width);
        expectKernelsAgree<5>(width);
    }
}
