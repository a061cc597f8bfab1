#include "support/fixed_filter_cases.h"

#include "kernels/filter/lowpass.h"

using namespace support;

namespace {

std::vector<std::vector<int>> mask(int taps) {
    return outerProduct(std::vector<int>(taps, 1), std::vector<int>(taps, 1));
}

Lum8u mean8u(double sum, int taps) {
    const int s = static_cast<int>(sum);
    return static_cast<Lum8u>(taps == 3 ? ((s + 5) * 7280) >> 16 : (s * 2622) >> 16);
}

Lum32f mean32f(double sum, int taps) { return static_cast<float>(sum) * (taps == 3 ? 0.111111111F : 0.04F); }

const FixedFilter<Lum8u, Lum8u> of8u{lumiFilterLowpassBorder_8u_C1R, lumiFilterLowpassGetBufferSize_8u_C1R,
                                     mask, mean8u};
const FixedFilter<Lum32f, Lum32f> of32f{lumiFilterLowpassBorder_32f_C1R,
                                        lumiFilterLowpassGetBufferSize_32f_C1R, mask, mean32f};

} // namespace

TEST(Lowpass, MeansOfNineByHand) {
    const auto results = amongZeros(of8u, {10, 20, 30, 40, 50, 60, 70, 80, 90});
    EXPECT_EQ(50, results[4]);
    EXPECT_EQ(13, results[0]); // 120 / 9
    EXPECT_EQ(31, results[8]); // 280 / 9
}

TEST(Lowpass, EveryWidthAndBothGuards) {
    expectMaskOnEveryWidthAndBothGuards(of8u);
    expectMaskOnEveryWidthAndBothGuards(of32f);
}

TEST(Lowpass, EveryBorder) {
    expectMaskOnEveryBorder(of8u);
    expectMaskOnEveryBorder(of32f);
}

TEST(Lowpass, BuffersOfExactlyTheQueriedSizeAtEveryAlignment) {
    expectExactBuffersSufficeAtEveryAlignment(of8u);
    expectExactBuffersSufficeAtEveryAlignment(of32f);
}

TEST(Lowpass, BytesOfRowsInBlocksOnEveryBorder) {
    for (LumMaskSize maskSize : maskSizes)
        for (LumBorderType border : everyBorder())
            for (LumSize size : {LumSize{64, 1}, LumSize{65, 2}, LumSize{127, 5}, LumSize{130, 4}})
                for (Guard guard : {Guard::after, Guard::before})
                    expectMask(of8u, size, maskSize, border, {.guard = guard});
}

TEST(Lowpass, FloatsAreCloseToTheExactSum) { expectCloseOnFloats(of32f, 1 / 9.0, 1 / 25.0); }

TEST(Lowpass, FloatsAreAddedInOrderAndScaledOnce) {
    const auto sum = [](int taps, auto v) {
        float all = v(0);
        for (int i = 1; i < taps; ++i) all = all + v(i);
        return all;
    };
    expectOrderOnFloats(of32f, [=](int taps, auto pixel) {
        const float whole = sum(taps, [=](int k) { return sum(taps, [=](int i) { return pixel(i, k); }); });
        return mean32f(whole, taps);
    });
}

TEST(Lowpass, FlatImages) {
    expectOfFlatImages(of8u, [](double value) { return value; });
    expectOfFlatImages(of32f, [](double value) { return value; });
}

TEST(Lowpass, ChecksInOrder) {
    expectChecksInOrder(of8u);
    expectChecksInOrder(of32f);
}

TEST(Lowpass, SizesFollowTheirFormulas) {
    expectSizes(of8u, {32, 12, 248, 36, 144, 12, 64});
    expectSizes(of32f, {64, 12, 184, 64, 96, 0, 32});
}

TEST(Lowpass, BytesAndCrossDerivativeShareOneQuery) {
    for (LumMaskSize maskSize : maskSizes)
        for (int width = 1; width < 100; ++width) {
            Lum32s lowpass = 0;
            Lum32s cross = 0;
            EXPECT_STATUS(lumStatusOk, lumiFilterLowpassGetBufferSize_8u_C1R({width, 9}, maskSize, &lowpass));
            EXPECT_STATUS(lumStatusOk,
                          lumiFilterSobelCrossGetBufferSize_8u16s_C1R({width, 9}, maskSize, &cross));
            EXPECT_EQ(lowpass, cross);
        }
}

TEST(Lowpass, EverySumOfBytesFollowsItsFormula) {
    // one result; its sum runs through all values
    for (LumMaskSize maskSize : maskSizes) {
        const int taps = tapsOfMask(maskSize);
        GuardedBlock buffer(queriedBuffer(of8u, {16, 1}, maskSize));
        std::vector<Lum8u> pixels(20 * 5);
        Lum8u result[16];
        for (int sum = 0; sum <= 255 * taps * taps; ++sum) {
            std::fill(pixels.begin(), pixels.end(), Lum8u{0});
            int left = sum;
            for (int y = 0; y < taps; ++y)
                for (int x = 0; x < taps; ++x) {
                    const int value = std::min(left, 255);
                    pixels[y * 20 + x] = static_cast<Lum8u>(value);
                    left -= value;
                }
            const Lum8u* src = pixels.data() + taps / 2 * 21;
            ASSERT_EQ(lumStatusOk,
                      of8u.run(src, 20, result, 16, {16, 1}, maskSize, lumBorderInMemory, 0, buffer.as()));
            ASSERT_EQ(mean8u(sum, taps), result[0]) << sum;
        }
    }
}

TEST(Lowpass, FlatWholeNumbersComeBackAsLongAsTheirSumsAreExact) {
    // 25 v stays below 2^24
    for (LumMaskSize maskSize : maskSizes) {
        GuardedBlock buffer(queriedBuffer(of32f, {1, 1}, maskSize));
        for (int v = -671088; v <= 671088; v += 7) {
            const float value = static_cast<float>(v);
            float result = 0;
            ASSERT_EQ(lumStatusOk,
                      of32f.run(&value, 4, &result, 4, {1, 1}, maskSize, lumBorderReplicate, 0, buffer.as()));
            ASSERT_EQ(value, result);
        }
    }
}

namespace {

/// One row of bytes and two against the scalar form, from rows of exactly their length with other pixels beside them.
template <int taps> void expectBytesAgree(int width) {
    using namespace lum::kernels;
    std::vector<std::unique_ptr<GuardedImage<Lum8u>>> images;
    RowOfBytes rows[taps + 1];
    for (int k = 0; k <= taps; ++k) {
        images.push_back(std::make_unique<GuardedImage<Lum8u>>(width, 1));
        rows[k].pixels = images.back()->fillRandom(width + k).data();
        for (int i = 0; i < 2; ++i) {
            rows[k].before[i] = static_cast<Lum8u>(200 + 7 * k + i);
            rows[k].after[i] = static_cast<Lum8u>(11 * k + 3 * i);
        }
    }
    GuardedImage<Lum8u> scalar(width, 2);
    GuardedImage<Lum8u> one(width, 2);
    GuardedImage<Lum8u> two(width, 2);
    for (int y = 0; y < 2; ++y) {
        lowpassScalar<taps>(rows + y, scalar.row(y), width);
        lowpass<taps>(rows + y, one.row(y), width);
    }
    lowpassTwoRows<taps>(rows, two.row(0), two.row(1), width, {4096, 4096});
    EXPECT_TRUE(sameBits(scalar.pixels(), one.pixels())) << width;
    EXPECT_TRUE(sameBits(scalar.pixels(), two.pixels())) << width;
}

template <int taps> void expectKernelsAgree(int width) {
    using namespace lum::kernels;
    expectBytesAgree<taps>(width);
    expectRowsAgree<float, float>(width, taps, lowpassDownScalar<taps>, lowpassDown<taps>);
    expectInPlaceAgrees(width, taps, lowpassAlongScalar<taps>, lowpassAlong<taps>);
}

} // namespace

TEST(Lowpass, VectorKernelsAgreeWithScalarOnEveryWidth) {
    for (int width = 1; width <= 150; ++width) {
        expectKernelsAgree<3>(width);
        expectKernelsAgree<5>(width);
    }
}

TEST(Lowpass, VectorKernelsAgreeWithScalarOnLongRows) {
    for (int width : {2047, 2048, 2049, 2111, 4097}) {
        expectKernelsAgree<3>(width);
        expectKernelsAgree<5>(width);
    }
}
