#include <array>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>

#include "kernels/filter/color_gradient.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

LumStatus reduce(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumSize size, int norm) {
    return lumiGradientColorToGray_8u_C3C1R(src, srcStep, dst, dstStep, size, norm);
}
LumStatus reduce(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep, LumSize size, int norm) {
    return lumiGradientColorToGray_16u_C3C1R(src, srcStep, dst, dstStep, size, norm);
}
LumStatus reduce(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumSize size, int norm) {
    return lumiGradientColorToGray_32f_C3C1R(src, srcStep, dst, dstStep, size, norm);
}

/// One pixel, at every place of a row that has whole vectors and a tail: the same bits at each.
template <class T> T reduced(T r, T g, T b, int norm) {
    std::array<T, 3 * 21> pixels;
    std::array<T, 21> result;
    for (int x = 0; x < 21; ++x) {
        pixels[3 * x] = r;
        pixels[3 * x + 1] = g;
        pixels[3 * x + 2] = b;
    }
    EXPECT_STATUS(lumStatusOk,
                  reduce(pixels.data(), sizeof pixels, result.data(), sizeof result, {21, 1}, norm));
    for (const T& value : result)
        EXPECT_EQ(0, std::memcmp(&result[0], &value, sizeof(T))) << result[0] << " and " << value;
    return result[0];
}

template <class T> void expectAgreesWithScalar(int width, Placement placement) {
    GuardedImage<T> dst(width, 3, placement);
    GuardedImage<T> scalar(width, 3, placement);
    placement.channels = 3;
    GuardedImage<T> src(width, 3, placement);
    src.fillRandom(width);
    for (int norm : {0, 1, 2}) {
        const lum::Image<const T> from(src.data(), src.step());
        const lum::Image<T> to(scalar.data(), scalar.step());
        if (norm == 0) lum::kernels::largestOfThreeScalar(from, to, dst.size());
        if (norm == 1) lum::kernels::meanOfThreeScalar(from, to, dst.size());
        if (norm == 2) lum::kernels::rootOfSquaresScalar(from, to, dst.size());
        ASSERT_EQ(lumStatusOk, reduce(src.data(), src.step(), dst.data(), dst.step(), dst.size(), norm));
        ASSERT_TRUE(sameBits(scalar.pixels(), dst.pixels())) << "width " << width << " norm " << norm;
        ASSERT_TRUE(dst.outsideUntouched());
    }
}

using Elements = testing::Types<Lum8u, Lum16u, Lum32f>;
MEMBER_TEST_SUITE(ColorGradientTypes, Elements);

} // namespace

TEST(ColorGradient, WhiteStaysWhiteInEveryNorm) {
    for (int norm : {0, 1, 2}) {
        EXPECT_EQ(255, reduced<Lum8u>(255, 255, 255, norm));
        EXPECT_EQ(65535, reduced<Lum16u>(65535, 65535, 65535, norm));
        EXPECT_EQ(0, reduced<Lum8u>(0, 0, 0, norm));
        EXPECT_EQ(0, reduced<Lum16u>(0, 0, 0, norm));
    }
}

MEMBER_TEST(ColorGradientTypes, VectorAgreesWithScalarOnEveryWidthAndAlignment) {
    for (int width = 1; width <= 70; ++width) {
        expectAgreesWithScalar<TypeParam>(width, {});
        expectAgreesWithScalar<TypeParam>(width,
                                          {.padding = 4, .offset = width % 16, .guard = Guard::before});
    }
}

MEMBER_TEST(ColorGradientTypes, DestinationMayBeTheSource) {
    for (int width = 1; width <= 70; ++width)
        for (int norm : {0, 1, 2}) {
            GuardedImage<TypeParam> image(width, 3, {.channels = 3});
            GuardedImage<TypeParam> expected(width, 3);
            image.fillRandom(width);
            EXPECT_STATUS(lumStatusOk, reduce(image.data(), image.step(), expected.data(), expected.step(),
                                              expected.size(), norm));
            EXPECT_STATUS(lumStatusOk, reduce(image.data(), image.step(), image.data(), image.step(),
                                              expected.size(), norm));
            for (int y = 0; y < 3; ++y)
                ASSERT_EQ(0, std::memcmp(expected.row(y), image.row(y), width * sizeof(TypeParam)))
                    << "width " << width << " norm " << norm;
        }
}

MEMBER_TEST(ColorGradientTypes, LargestOfThree) {
    EXPECT_EQ(TypeParam{200}, reduced<TypeParam>(200, 7, 100, 0));
    EXPECT_EQ(TypeParam{200}, reduced<TypeParam>(7, 200, 100, 0));
    EXPECT_EQ(TypeParam{200}, reduced<TypeParam>(7, 100, 200, 0));
}

MEMBER_TEST(ColorGradientTypes, NormsBelowZeroAndAboveTwoAreBadArgument) {
    GuardedImage<TypeParam> src(4, 2, {.channels = 3});
    GuardedImage<TypeParam> dst(4, 2);
    for (int norm : {-1, 3, 4, INT_MIN, INT_MAX})
        EXPECT_REFUSED(lumStatusBadArgument, dst,
                       reduce(src.data(), src.step(), dst.data(), dst.step(), {4, 2}, norm));
}

MEMBER_TEST(ColorGradientTypes, ChecksInOrder) {
    GuardedImage<TypeParam> src(4, 2, {.channels = 3});
    GuardedImage<TypeParam> dst(4, 2);
    for (LumSize size : {LumSize{4, 2}, LumSize{0, 0}}) {
        EXPECT_REFUSED(lumStatusNullPointer, dst, reduce(nullptr, 0, dst.data(), 0, size, 9));
        EXPECT_REFUSED(lumStatusNullPointer, dst,
                       reduce(src.data(), 0, static_cast<TypeParam*>(nullptr), 0, size, 9));
    }
    const auto run = [&](LumSize size, int srcStep, int dstStep) {
        return reduce(src.data(), srcStep, dst.data(), dstStep, size, 9);
    };
    for (LumSize size : {LumSize{0, 2}, LumSize{4, 0}, LumSize{-1, 2}, LumSize{4, INT_MIN}})
        EXPECT_REFUSED(lumStatusSizeError, dst, run(size, 0, 0));
    EXPECT_REFUSED(lumStatusStepError, dst, run({4, 2}, src.step() - 1, dst.step()));
    EXPECT_REFUSED(lumStatusStepError, dst, run({4, 2}, src.step(), dst.step() - 1));
    EXPECT_REFUSED(lumStatusStepError, dst, run({4, 2}, -src.step(), dst.step()));
    EXPECT_REFUSED(lumStatusStepError, dst, run({INT_MAX / 2, 2}, INT_MAX, INT_MAX));
    if constexpr (sizeof(TypeParam) > 1) {
        EXPECT_REFUSED(lumStatusStepAlignmentError, dst, run({4, 2}, src.step() + 1, dst.step()));
        EXPECT_REFUSED(lumStatusStepAlignmentError, dst, run({4, 2}, src.step(), dst.step() + 1));
        EXPECT_REFUSED(lumStatusStepError, dst, run({4, 2}, src.step() + 1, dst.step() - 1));
    }
}

TEST(ColorGradient, MeanOf8uFollowsItsFormula) {
    for (int sum = 0; sum <= 765; ++sum) {
        const int r = std::min(sum, 255);
        const int g = std::min(sum - r, 255);
        const auto result = reduced<Lum8u>(static_cast<Lum8u>(r), static_cast<Lum8u>(g),
                                           static_cast<Lum8u>(sum - r - g), lumSpatialNormL1);
        ASSERT_EQ((sum * 1365 + 2048) >> 12, result);
    }
}

TEST(ColorGradient, MeanOf16uIsRoundedInIntegers) {
    for (int sum = 0; sum <= 3 * 65535; sum += 7) {
        const int r = std::min(sum, 65535);
        const int g = std::min(sum - r, 65535);
        const auto result = reduced<Lum16u>(static_cast<Lum16u>(r), static_cast<Lum16u>(g),
                                            static_cast<Lum16u>(sum - r - g), lumSpatialNormL1);
        ASSERT_EQ((sum + 1) / 3, result);
    }
}

TEST(ColorGradient, RootOfSquaresRoundsToNearestEven) {
    EXPECT_EQ(58, reduced<Lum8u>(100, 0, 0, lumSpatialNormL2));    // 57.7
    EXPECT_EQ(129, reduced<Lum8u>(100, 200, 0, lumSpatialNormL2)); // 129.1
    EXPECT_EQ(1, reduced<Lum8u>(1, 0, 0, lumSpatialNormL2));
    for (int v = 0; v < 256; ++v) {
        const auto value = static_cast<Lum8u>(v);
        ASSERT_EQ(v, reduced<Lum8u>(value, value, value, lumSpatialNormL2));
        ASSERT_EQ(std::lrint(std::sqrt(static_cast<float>(v * v)) * 0.57735026F),
                  reduced<Lum8u>(value, 0, 0, lumSpatialNormL2));
    }
    EXPECT_EQ(37837, reduced<Lum16u>(65535, 0, 0, lumSpatialNormL2)); // 37836.65
}

TEST(ColorGradient, OfFloatsThatDoNotCompareTheLaterIsTheLargest) {
    const float none = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(3.0F, reduced<Lum32f>(none, 3, 2, lumSpatialNormInf));
    EXPECT_EQ(1.0F, reduced<Lum32f>(3, none, 1, lumSpatialNormInf));
    EXPECT_TRUE(std::isnan(reduced<Lum32f>(1, 2, none, lumSpatialNormInf)));
    EXPECT_TRUE(std::signbit(reduced<Lum32f>(0.0F, 0.0F, -0.0F, lumSpatialNormInf)));
    EXPECT_FALSE(std::signbit(reduced<Lum32f>(-0.0F, -0.0F, 0.0F, lumSpatialNormInf)));
    EXPECT_FALSE(std::signbit(reduced<Lum32f>(-0.0F, 0.0F, -1.0F, lumSpatialNormInf)));
}

TEST(ColorGradient, FloatsInEveryNorm) {
    EXPECT_EQ(-1.0F, reduced<Lum32f>(-3, -1, -2, lumSpatialNormInf));
    EXPECT_EQ((0.1F + 0.2F + 0.7F) * (1.0F / 3), reduced<Lum32f>(0.1F, 0.2F, 0.7F, lumSpatialNormL1));
    EXPECT_EQ(std::sqrt(0.1F * 0.1F + 0.2F * 0.2F + 0.7F * 0.7F) * 0.57735026F,
              reduced<Lum32f>(0.1F, 0.2F, 0.7F, lumSpatialNormL2));
    constexpr float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(infinity, reduced<Lum32f>(-infinity, 1, 2, lumSpatialNormL2));
    EXPECT_EQ(infinity, reduced<Lum32f>(1, infinity, 2, lumSpatialNormInf));
    EXPECT_EQ(infinity, reduced<Lum32f>(3e38F, 3e38F, 0, lumSpatialNormL1));
}
