#include <cmath>
#include <random>

#include "layer_members.h"
#include "layer_reference.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

struct Range {
    LumSize least;
    LumSize most;
};
Range above(LumSize size, float rate) {
    Range range{};
    EXPECT_STATUS(lumStatusOk, lumiGetPyramidUpROI(size, &range.least, &range.most, rate));
    return range;
}

MEMBER_TEST_SUITE(LayerUp, UpMembers);

bool isTwofold(float rate, const std::vector<float>& weights) {
    return rate == 2.0F && weights == std::vector<float>{0.0625F, 0.25F, 0.375F, 0.25F, 0.0625F};
}

template <class Member, class T = typename Member::T, class Tap = typename Member::Tap>
std::vector<reference::Plane> plainResult(const GuardedImage<T>& src, LumSize dstRoi, float rate,
                                          const std::vector<Tap>& kernel) {
    const std::vector<float> weights = reference::weightsUp(kernel);
    std::vector<reference::Plane> planes;
    for (int c = 0; c < Member::channels; ++c) {
        const reference::Plane plane = reference::channelOf(src, c);
        planes.push_back(isTwofold(rate, weights)
                             ? reference::expandTwofold(plane, dstRoi)
                             : reference::smooth(reference::expand(plane, dstRoi, rate), weights));
    }
    return planes;
}

/// Runs on a region with a state for another region, and compares with the formulas.
template <class Member>
void expectFormula(LumSize size, LumSize result, LumSize stateRoi, float rate,
                   const std::vector<typename Member::Tap>& kernel, std::mt19937& engine) {
    using T = typename Member::T;
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << " to " << result.width << " x "
                                    << result.height << ", rate " << rate << ", " << kernel.size()
                                    << " taps, state for " << stateRoi.width << " x " << stateRoi.height);
    GuardedImage<T> src(size.width, size.height, anyPlacement<Member>(engine));
    src.fillRandom(engine());
    GuardedImage<T> dst(result.width, result.height, anyPlacement<Member>(engine));
    const LayerState<Member> state(stateRoi, rate, kernel, engine() % 65);
    ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
    EXPECT_TRUE(dst.outsideUntouched());
    EXPECT_TRUE(src.untouched());
    ASSERT_EQ("", reference::differenceFrom(dst, plainResult<Member>(src, result, rate, kernel)));
}

LumSize anySizeIn(Range range, std::mt19937& engine) {
    const auto pick = [&](int least, int most) {
        return least + static_cast<int>(engine() % (most - least + 1));
    };
    return {pick(range.least.width, range.most.width), pick(range.least.height, range.most.height)};
}

} // namespace

TEST(LayerUpExample, PixelsAndBetweenThem) {
    GuardedImage<Lum32f> src(3, 1);
    const float row[] = {8, 16, 40};
    src.fill([&](int x, int, int) { return row[x]; });
    GuardedImage<Lum32f> dst(6, 1);
    const LayerState<Up32fC1> state({3, 1}, 2.0F, {1, 4, 6, 4, 1});
    EXPECT_EQ(lumStatusOk, state.status());
    ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
    // (6 * 8 + 2 * 16) / 8, (8 + 16) / 2, (6 * 16 + 8 + 40) / 8, (16 + 40) / 2, (6 * 40 + 2 * 16) / 8, (40 + 16) / 2
    EXPECT_EQ((std::vector<float>{10, 12, 18, 28, 34, 28}), dst.pixels());
}

TEST(LayerUpExample, IntegersRoundToEven) {
    GuardedImage<Lum8u> src(3, 1);
    GuardedImage<Lum8u> dst(5, 1);
    const LayerState<Up8uC1> state({3, 1}, 2.0F, {2, 8, 12, 8, 2});
    for (int value = 0; value < 64; ++value) {
        src.fill([&](int x, int, int) { return x == 0 ? value % 8 : x == 1 ? value / 8 : 3; });
        ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
        const double a = value % 8;
        const double b = value / 8;
        EXPECT_EQ(static_cast<int>(std::nearbyint((a + b) / 2)), dst.at(1, 0)) << value;
        EXPECT_EQ(static_cast<int>(std::nearbyint((6 * b + a + 3) / 8)), dst.at(2, 0)) << value;
    }
}

TEST(LayerUpExample, OnePixelMeetsItself) {
    GuardedImage<Lum16u> src(1, 1);
    src.fill([](int, int, int) { return 1000; });
    for (LumSize size : {LumSize{1, 1}, LumSize{2, 1}, LumSize{1, 2}, LumSize{2, 2}}) {
        GuardedImage<Lum16u> dst(size.width, size.height);
        const LayerState<Up16uC1> state({1, 1}, 2.0F, {1, 4, 6, 4, 1});
        ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
        EXPECT_EQ(std::vector<Lum16u>(static_cast<std::size_t>(size.width) * size.height, 1000),
                  dst.pixels());
    }
}

TEST(LayerUpExample, ThirdsBetweenPixels) {
    // Rate 3 with a kernel that changes nothing: results 1 and 2 lie a third and two thirds on the way.
    GuardedImage<Lum32f> src(3, 1);
    const float row[] = {0, 9, 3};
    src.fill([&](int x, int, int) { return row[x]; });
    GuardedImage<Lum32f> dst(9, 1);
    const LayerState<Up32fC1> state({3, 1}, 3.0F, {0, 1, 0});
    ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
    // The pixel past the end is the reflection of the second one.
    const float expected[] = {0, 3, 6, 9, 7, 5, 3, 5, 7};
    for (int x = 0; x < 9; ++x) EXPECT_NEAR(expected[x], dst.at(x, 0), 1e-5) << x;
}

TEST(LayerUpExample, IntegerKernelsAreNormalisedInFloat) {
    // The sum of 1 2 3 2 1 is 9; a flat picture stays flat, which 12 bits would not give.
    GuardedImage<Lum16u> src(6, 6);
    src.fill([](int, int, int) { return 65535; });
    GuardedImage<Lum16u> dst(12, 12);
    const LayerState<Up16uC1> state({6, 6}, 2.0F, {1, 2, 3, 2, 1});
    ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
    EXPECT_EQ(std::vector<Lum16u>(144, 65535), dst.pixels());
}

MEMBER_TEST(LayerUp, EveryWidthAtRateTwoFollowsTheFormulas) {
    using Tap = typename TypeParam::Tap;
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int width = 1; width <= 75; ++width) {
        const LumSize size{width, static_cast<int>(engine() % 9) + 1};
        const Range range = above(size, 2.0F);
        ASSERT_NO_FATAL_FAILURE(
            expectFormula<TypeParam>(size, range.least, size, 2.0F, {1, 4, 6, 4, 1}, engine));
        ASSERT_NO_FATAL_FAILURE(
            expectFormula<TypeParam>(size, range.most, size, 2.0F, {3, 12, 18, 12, 3}, engine));
        const auto kernel = randomKernel<Tap>(3 + 2 * static_cast<int>(engine() % 5), engine);
        ASSERT_NO_FATAL_FAILURE(
            expectFormula<TypeParam>(size, anySizeIn(range, engine), size, 2.0F, kernel, engine));
    }
    for (int width : {128, 129, 257})
        ASSERT_NO_FATAL_FAILURE(
            expectFormula<TypeParam>({width, 5}, {2 * width, 10}, {width, 5}, 2.0F, {1, 4, 6, 4, 1}, engine));
}

MEMBER_TEST(LayerUp, EveryRateFollowsTheFormulas) {
    using Tap = typename TypeParam::Tap;
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (float rate : {1.0000001F, 1.1F, 1.5F, 1.99999F, 2.00001F, 2.5F, 3.0F, 7.0F, 10.0F})
        for (int i = 0; i < 8; ++i) {
            const LumSize size{static_cast<int>(engine() % 30) + 1, static_cast<int>(engine() % 12) + 1};
            const LumSize result = anySizeIn(above(size, rate), engine);
            const auto kernel = i % 3 == 0
                                    ? std::vector<Tap>{1, 4, 6, 4, 1}
                                    : randomKernel<Tap>(3 + 2 * static_cast<int>(engine() % 6), engine);
            ASSERT_NO_FATAL_FAILURE(expectFormula<TypeParam>(size, result, size, rate, kernel, engine));
        }
    for (int i = 0; i < 40; ++i) {
        const float rate = 1.001F + static_cast<float>(engine() % 8999) / 1000;
        const LumSize size{static_cast<int>(engine() % 40) + 1, static_cast<int>(engine() % 6) + 1};
        ASSERT_NO_FATAL_FAILURE(expectFormula<TypeParam>(size, anySizeIn(above(size, rate), engine), size,
                                                         rate, randomKernel<Tap>(5, engine), engine));
    }
}

MEMBER_TEST(LayerUp, StatesServeSmallerAndLargerRegions) {
    using Tap = typename TypeParam::Tap;
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    const LumSize sizes[] = {{1, 1}, {4, 20}, {31, 3}, {50, 24}};
    for (LumSize stateRoi : sizes)
        for (LumSize size : sizes)
            for (float rate : {2.0F, 1.5F, 3.0F}) {
                const LumSize result = anySizeIn(above(size, rate), engine);
                ASSERT_NO_FATAL_FAILURE(
                    expectFormula<TypeParam>(size, result, stateRoi, rate, {1, 4, 6, 4, 1}, engine));
                ASSERT_NO_FATAL_FAILURE(expectFormula<TypeParam>(size, result, stateRoi, rate,
                                                                 randomKernel<Tap>(7, engine), engine));
            }
}

MEMBER_TEST(LayerUp, LongRowsRunInStrips) {
    std::mt19937 engine(3);
    ASSERT_NO_FATAL_FAILURE(
        expectFormula<TypeParam>({4200, 2}, {8399, 4}, {4200, 2}, 2.0F, {1, 4, 6, 4, 1}, engine));
    ASSERT_NO_FATAL_FAILURE(
        expectFormula<TypeParam>({4200, 2}, {6300, 3}, {4200, 2}, 1.5F, {1, 2, 1}, engine));
}

MEMBER_TEST(LayerUp, AnIntegerKernelOfSumZeroIsTakenAsItIs) {
    if constexpr (std::is_integral_v<typename TypeParam::T>) {
        std::mt19937 engine(11);
        ASSERT_NO_FATAL_FAILURE(
            expectFormula<TypeParam>({9, 7}, {18, 14}, {9, 7}, 2.0F, {-1, 2, -1}, engine));
    } else {
        using T = typename TypeParam::T;
        GuardedImage<T> src(4, 4, {.channels = TypeParam::channels});
        src.fill([](int, int, int) { return 1; });
        GuardedImage<T> dst(8, 8, {.channels = TypeParam::channels});
        const LayerState<TypeParam> state({4, 4}, 2.0F, {-1, 2, -1});
        ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
        EXPECT_TRUE(std::isnan(dst.at(2, 2))); // infinities of both signs
    }
}

MEMBER_TEST(LayerUp, TheHalfAfterTheMiddleIsReplaced) {
    using T = typename TypeParam::T;
    GuardedImage<T> src(15, 10, {.channels = TypeParam::channels});
    src.fillRandom(5);
    for (float rate : {2.0F, 1.7F}) {
        const LumSize result = above({15, 10}, rate).most;
        const LayerState<TypeParam> symmetric({15, 10}, rate, {1, 4, 6, 4, 1});
        const LayerState<TypeParam> asymmetric({15, 10}, rate, {1, 4, 6, 0, 5});
        EXPECT_STATUS(lumStatusOk, symmetric.status());
        EXPECT_STATUS(lumStatusKernelNotSymmetric, asymmetric.status());
        GuardedImage<T> expected(result.width, result.height, {.channels = TypeParam::channels});
        GuardedImage<T> actual(result.width, result.height, {.channels = TypeParam::channels});
        ASSERT_EQ(lumStatusOk, runLayer(src, expected, symmetric));
        ASSERT_EQ(lumStatusOk, runLayer(src, actual, asymmetric));
        EXPECT_TRUE(sameBits(expected.pixels(), actual.pixels()));
    }
}

MEMBER_TEST(LayerUp, AFlatPictureStaysFlat) {
    using T = typename TypeParam::T;
    GuardedImage<T> src(13, 9, {.channels = TypeParam::channels});
    src.fill([](int, int, int c) { return 50 + 60 * c; });
    for (float rate : {1.3F, 2.0F, 3.0F}) {
        const Range range = above({13, 9}, rate);
        GuardedImage<T> dst(range.most.width, range.most.height, {.channels = TypeParam::channels});
        const LayerState<TypeParam> state({13, 9}, rate, {1, 4, 6, 4, 1});
        ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
        for (int y = 0; y < dst.size().height; ++y)
            for (int x = 0; x < dst.size().width; ++x)
                for (int c = 0; c < TypeParam::channels; ++c) ASSERT_NEAR(50 + 60 * c, dst.at(x, y, c), 1e-4);
    }
}
