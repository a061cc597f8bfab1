#include "support/fixed_filter_cases.h"

#include "kernels/filter/sobel_cross.h"

using namespace support;

namespace {

std::vector<std::vector<int>> mask(int taps) {
    const std::vector<int> kernel =
        taps == 3 ? std::vector<int>{1, 0, -1} : std::vector<int>{1, 2, 0, -2, -1};
    return outerProduct(kernel, kernel);
}

const FixedFilter<Lum8u, Lum16s> of8u{lumiFilterSobelCrossBorder_8u16s_C1R,
                                      lumiFilterSobelCrossGetBufferSize_8u16s_C1R, mask,
                                      [](double sum, int) { return static_cast<Lum16s>(sum); }};
const FixedFilter<Lum32f, Lum32f> of32f{lumiFilterSobelCrossBorder_32f_C1R,
                                        lumiFilterSobelCrossGetBufferSize_32f_C1R, mask,
                                        [](double sum, int) { return static_cast<Lum32f>(sum); }};

} // namespace

TEST(SobelCross, ThreeTapsByHand) {
    const auto results = amongZeros(of8u, {1, 0, 0, 0, 5, 0, 0, 0, 3});
    EXPECT_EQ(1 + 3, results[4]);
    EXPECT_EQ(5, results[0]);
    EXPECT_EQ(-5, results[2]);
    EXPECT_EQ(0, results[1]);
}

TEST(SobelCross, EveryWidthAndBothGuards) {
    expectMaskOnEveryWidthAndBothGuards(of8u);
    expectMaskOnEveryWidthAndBothGuards(of32f);
}

TEST(SobelCross, EveryBorder) {
    expectMaskOnEveryBorder(of8u);
    expectMaskOnEveryBorder(of32f);
}

TEST(SobelCross, BuffersOfExactlyTheQueriedSizeAtEveryAlignment) {
    expectExactBuffersSufficeAtEveryAlignment(of8u);
    expectExactBuffersSufficeAtEveryAlignment(of32f);
}

TEST(SobelCross, FloatsAreCloseToTheExactSum) { expectCloseOnFloats(of32f, 1, 1); }

TEST(SobelCross, OppositeFloatsMeetFirst) {
    const auto derivative = [](int taps, auto v) {
        return taps == 3 ? v(0) - v(2) : (v(0) - v(4)) + 2.0F * (v(1) - v(3));
    };
    expectOrderOnFloats(of32f, [=](int taps, auto pixel) {
        return derivative(taps, [=](int k) { return derivative(taps, [=](int i) { return pixel(i, k); }); });
    });
}

TEST(SobelCross, FlatImages) {
    expectOfFlatImages(of8u, [](double) { return 0.0; });
    expectOfFlatImages(of32f, [](double) { return 0.0; });
}

TEST(SobelCross, ChecksInOrder) {
    expectChecksInOrder(of8u);
    expectChecksInOrder(of32f);
}

TEST(SobelCross, SizesFollowTheirFormulas) {
    expectSizes(of8u, {32, 12, 248, 36, 144, 12, 64});
    expectSizes(of32f, {64, 12, 248, 64, 96, 0, 32});
}

TEST(SobelCross, LargestMagnitudesAreExact) {
    // a corner of white on black, and the other way round, under the five-tap mask: 18 x 255 each way
    GuardedImage<Lum8u> src(5, 5);
    GuardedImage<Lum16s> dst(5, 5);
    GuardedBlock buffer(queriedBuffer(of8u, {5, 5}, lumMask5x5));
    for (bool white : {true, false}) {
        src.fill([&](int x, int y, int) { return ((x < 2) == (y < 2)) == white ? 255 : 0; });
        ASSERT_EQ(lumStatusOk, of8u.run(src.data(), src.step(), dst.data(), dst.step(), {5, 5}, lumMask5x5,
                                        lumBorderReplicate, 0, buffer.as()));
        EXPECT_EQ(white ? 18 * 255 : -18 * 255, dst.at(2, 2));
    }
}

namespace {

template <int taps> void expectKernelsAgree(int width) {
    using namespace lum::kernels;
    expectRowsAgree<Lum8u, Lum16s>(width, taps, sobelCrossScalar<taps>, sobelCross<taps>);
    expectRowsAgree<float, float>(width, taps, sobelCrossDownScalar<taps>, sobelCrossDown<taps>);
    expectInPlaceAgrees(width, taps, sobelCrossAlongScalar<taps>, sobelCrossAlong<taps>);
}

} // namespace

TEST(SobelCross, VectorKernelsAgreeWithScalarOnEveryWidth) {
    for (int width = 1; width <= 70; ++width) {
        expectKernelsAgree<3>(width);
        expectKernelsAgree<5>(width);
    }
}
