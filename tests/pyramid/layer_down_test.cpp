#include <cmath>
#include <numeric>
#include <random>

#include "layer_members.h"
#include "layer_reference.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

LumSize below(LumSize size, float rate) {
    LumSize result{-1, -1};
    EXPECT_STATUS(lumStatusOk, lumiGetPyramidDownROI(size, &result, rate));
    return result;
}

MEMBER_TEST_SUITE(LayerDown, DownMembers);

template <class Member, class T = typename Member::T, class Tap = typename Member::Tap>
std::vector<reference::Plane> plainResult(const GuardedImage<T>& src, LumSize dstRoi, float rate,
                                          const std::vector<Tap>& kernel) {
    std::vector<reference::Plane> planes;
    for (int c = 0; c < Member::channels; ++c)
        planes.push_back(reference::reduce(
            reference::smooth(reference::channelOf(src, c), reference::weightsDown(kernel)), dstRoi, rate));
    return planes;
}

/// Runs on a region with a state for another region, and compares with the formulas.
template <class Member>
void expectFormula(LumSize size, LumSize stateRoi, float rate,
                   const std::vector<typename Member::Tap>& kernel, std::mt19937& engine) {
    using T = typename Member::T;
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", rate " << rate << ", "
                                    << kernel.size() << " taps, state for " << stateRoi.width << " x "
                                    << stateRoi.height);
    GuardedImage<T> src(size.width, size.height, anyPlacement<Member>(engine));
    src.fillRandom(engine());
    const LumSize result = below(size, rate);
    GuardedImage<T> dst(result.width, result.height, anyPlacement<Member>(engine));
    const LayerState<Member> state(stateRoi, rate, kernel, engine() % 65);
    ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
    EXPECT_TRUE(dst.outsideUntouched());
    EXPECT_TRUE(src.untouched());
    ASSERT_EQ("", reference::differenceFrom(dst, plainResult<Member>(src, result, rate, kernel)));
}

} // namespace

TEST(LayerDownExample, FlatAndSingleBrightPixel) {
    // 1 4 6 4 1 in both directions, at every second pixel: the weights at even distances are 1/16, 6/16, 1/16.
    GuardedImage<Lum8u> src(8, 6);
    src.fill([](int x, int y, int) { return x == 4 && y == 2 ? 255 : 0; });
    GuardedImage<Lum8u> dst(4, 3);
    const LayerState<Down8uC1> state({8, 6}, 2.0F, {1, 4, 6, 4, 1});
    EXPECT_EQ(lumStatusOk, state.status());
    ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
    // 255 * 36 / 256 = 35.86, 255 * 6 / 256 = 5.98, 255 / 256 = 0.996. Row 0 of the result sees row 2 twice, since
    // row -2 is its reflection: 255 * 12 / 256 = 11.95.
    const std::vector<Lum8u> expected{0, 2, 12, 2, 0, 6, 36, 6, 0, 1, 6, 1};
    EXPECT_EQ(expected, dst.pixels());

    src.fill([](int, int, int) { return 77; });
    ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
    EXPECT_EQ(std::vector<Lum8u>(12, 77), dst.pixels());
}

TEST(LayerDownExample, ThreeTapsAtRateThree) {
    // A row alone: smoothing by 1 2 1 gives (x - 1, x, x + 1) * (1, 2, 1) / 4, and result 1 lies at 3 exactly.
    GuardedImage<Lum32f> src(6, 1);
    const float row[] = {0, 4, 8, 100, 12, 16};
    src.fill([&](int x, int, int) { return row[x]; });
    GuardedImage<Lum32f> dst(2, 1);
    const LayerState<Down32fC1> state({6, 1}, 3.0F, {1, 2, 1});
    ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
    EXPECT_EQ(2.0F, dst.at(0, 0));  // (4 + 0 + 0 + 4) / 4
    EXPECT_EQ(55.0F, dst.at(1, 0)); // (8 + 200 + 12) / 4
}

TEST(LayerDownExample, HalfWayBetweenPixels) {
    // Rate 1.5: result 1 lies at 1.5, between the smoothed pixels 1 and 2.
    GuardedImage<Lum32f> src(3, 1);
    const float row[] = {0, 8, 32};
    src.fill([&](int x, int, int) { return row[x]; });
    GuardedImage<Lum32f> dst(2, 1);
    ASSERT_EQ(2, below({3, 1}, 1.5F).width);
    const LayerState<Down32fC1> state({3, 1}, 1.5F, {0, 1, 0});
    ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
    EXPECT_EQ(0.0F, dst.at(0, 0));
    EXPECT_EQ(20.0F, dst.at(1, 0));
}

TEST(LayerDownExample, IntegersRoundToEven) {
    // One row of height 1: the column sums are 16 times the row sums.
    GuardedImage<Lum8u> src(5, 1);
    GuardedImage<Lum8u> dst(3, 1);
    const LayerState<Down8uC1> state({5, 1}, 2.0F, {1, 4, 6, 4, 1});
    for (int value = 0; value < 64; ++value) {
        // Result 1 is (6 * (value % 32) + 2 * (value / 32)) / 16 in eighths.
        const int middle = value % 32;
        const int end = value / 32;
        src.fill([&](int x, int, int) { return x == 2 ? middle : x == 0 ? 2 * end : 0; });
        ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
        EXPECT_EQ(static_cast<int>(std::nearbyint((6.0 * middle + 2.0 * end) / 16)), dst.at(1, 0)) << value;
    }
}

TEST(LayerDownExample, IntegerKernelsHaveTwelveBits) {
    // The sum is 9: (1 << 14) / 9 >> 2 = 455, 910, 1365; they add up to 4095 of 4096.
    GuardedImage<Lum16u> src(16, 16);
    src.fill([](int, int, int) { return 65535; });
    GuardedImage<Lum16u> dst(8, 8);
    const LayerState<Down16uC1> state({16, 16}, 2.0F, {1, 2, 3, 2, 1});
    ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
    const double share = 4095.0 / 4096;
    EXPECT_EQ(static_cast<int>(std::nearbyint(65535 * share * share)), dst.at(3, 3));
}

TEST(LayerDownExample, ResultsSaturate) {
    // -1 4 -1 overshoots beside an edge in both directions.
    GuardedImage<Lum8u> src(9, 9);
    src.fill([](int x, int, int) { return x < 4 ? 10 : x == 4 ? 200 : x % 2 == 0 ? 250 : 0; });
    GuardedImage<Lum8u> dst(5, 5);
    const LayerState<Down8uC1> state({9, 9}, 2.0F, {-1, 4, -1});
    ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
    EXPECT_EQ(255, dst.at(3, 2));
    src.fill([](int x, int, int) { return x % 2 == 0 ? 0 : 250; });
    ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
    EXPECT_EQ(0, dst.at(2, 2));
}

MEMBER_TEST(LayerDown, EveryWidthAtRateTwoFollowsTheFormulas) {
    using Tap = typename TypeParam::Tap;
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int width = 1; width <= 80; ++width) {
        const LumSize size{width, static_cast<int>(engine() % 14) + 1};
        ASSERT_NO_FATAL_FAILURE(expectFormula<TypeParam>(size, size, 2.0F, {1, 4, 6, 4, 1}, engine));
        ASSERT_NO_FATAL_FAILURE(expectFormula<TypeParam>(size, size, 2.0F, {2, 8, 12, 8, 2}, engine));
        ASSERT_NO_FATAL_FAILURE(expectFormula<TypeParam>(size, size, 2.0F, {1, 3, 8, 3, 1}, engine));
        ASSERT_NO_FATAL_FAILURE(expectFormula<TypeParam>(size, size, 2.0F, {1, 2, 1}, engine));
        const auto kernel = randomKernel<Tap>(3 + 2 * static_cast<int>(engine() % 8), engine);
        ASSERT_NO_FATAL_FAILURE(expectFormula<TypeParam>(size, size, 2.0F, kernel, engine));
    }
    for (int width : {128, 129, 255, 257, 300})
        ASSERT_NO_FATAL_FAILURE(
            expectFormula<TypeParam>({width, 9}, {width, 9}, 2.0F, {1, 4, 6, 4, 1}, engine));
}

MEMBER_TEST(LayerDown, EveryRateFollowsTheFormulas) {
    using Tap = typename TypeParam::Tap;
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (float rate :
         {1.0000001F, 1.1F, 1.5F, 1.75F, 1.99997F, 1.99999F, 2.00001F, 2.0001F, 3.0F, 4.0F, 6.5F, 10.0F})
        for (int i = 0; i < 12; ++i) {
            const LumSize size{static_cast<int>(engine() % 60) + 1, static_cast<int>(engine() % 30) + 1};
            const auto kernel = randomKernel<Tap>(3 + 2 * static_cast<int>(engine() % 5), engine);
            ASSERT_NO_FATAL_FAILURE(expectFormula<TypeParam>(size, size, rate, kernel, engine));
        }
    for (int i = 0; i < 40; ++i) {
        const float rate = 1.001F + static_cast<float>(engine() % 8999) / 1000;
        const LumSize size{static_cast<int>(engine() % 100) + 1, static_cast<int>(engine() % 20) + 1};
        ASSERT_NO_FATAL_FAILURE(expectFormula<TypeParam>(size, size, rate, {1, 4, 6, 4, 1}, engine));
    }
}

MEMBER_TEST(LayerDown, RegionsSmallerThanTheKernelReflectRepeatedly) {
    using Tap = typename TypeParam::Tap;
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int width = 1; width <= 9; ++width)
        for (int height : {1, 2, 3, 7, 20})
            for (float rate : {2.0F, 1.3F})
                ASSERT_NO_FATAL_FAILURE(expectFormula<TypeParam>({width, height}, {width, height}, rate,
                                                                 randomKernel<Tap>(13, engine), engine));
}

MEMBER_TEST(LayerDown, StatesServeSmallerAndLargerRegions) {
    using Tap = typename TypeParam::Tap;
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    const LumSize sizes[] = {{1, 1}, {5, 40}, {40, 5}, {33, 21}, {90, 64}};
    for (LumSize stateRoi : sizes)
        for (LumSize size : sizes)
            for (float rate : {2.0F, 1.5F, 3.0F}) {
                ASSERT_NO_FATAL_FAILURE(
                    expectFormula<TypeParam>(size, stateRoi, rate, {1, 4, 6, 4, 1}, engine));
                ASSERT_NO_FATAL_FAILURE(
                    expectFormula<TypeParam>(size, stateRoi, rate, randomKernel<Tap>(7, engine), engine));
            }
}

MEMBER_TEST(LayerDown, EveryLevelOfTheTableRuns) {
    using T = typename TypeParam::T;
    for (float rate : {2.0F, 1.4F}) {
        const LayerState<TypeParam> state({100, 60}, rate, {1, 4, 6, 4, 1});
        LumSize size{100, 60};
        while (size.width > 1 || size.height > 1) {
            const LumSize next = below(size, rate);
            GuardedImage<T> src(size.width, size.height, {.channels = TypeParam::channels});
            src.fillRandom(7);
            GuardedImage<T> dst(next.width, next.height, {.channels = TypeParam::channels});
            ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
            ASSERT_EQ("",
                      reference::differenceFrom(
                          dst, plainResult<TypeParam>(src, next, rate,
                                                      std::vector<typename TypeParam::Tap>{1, 4, 6, 4, 1})));
            size = next;
        }
    }
}

MEMBER_TEST(LayerDown, AKernelOfSumZeroIsTakenAsItIs) {
    if constexpr (std::is_integral_v<typename TypeParam::T>) {
        std::mt19937 engine(11);
        // In units of 1 / 4096, so that large taps show.
        ASSERT_NO_FATAL_FAILURE(
            expectFormula<TypeParam>({20, 12}, {20, 12}, 2.0F, {-8192, 16384, -8192}, engine));
        ASSERT_NO_FATAL_FAILURE(
            expectFormula<TypeParam>({20, 12}, {20, 12}, 1.5F, {-100, 0, 200, 0, -100}, engine));
    } else {
        using T = typename TypeParam::T;
        GuardedImage<T> src(8, 8, {.channels = TypeParam::channels});
        src.fill([](int, int, int) { return 1; });
        GuardedImage<T> dst(4, 4, {.channels = TypeParam::channels});
        const LayerState<TypeParam> state({8, 8}, 2.0F, {-1, 2, -1});
        ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
        EXPECT_TRUE(std::isnan(dst.at(2, 2))); // infinities of both signs
    }
}

MEMBER_TEST(LayerDown, TheHalfAfterTheMiddleIsReplaced) {
    using T = typename TypeParam::T;
    GuardedImage<T> src(30, 20, {.channels = TypeParam::channels});
    src.fillRandom(5);
    const LayerState<TypeParam> symmetric({30, 20}, 2.0F, {1, 3, 5, 3, 1});
    const LayerState<TypeParam> asymmetric({30, 20}, 2.0F, {1, 3, 5, 9, -7});
    EXPECT_STATUS(lumStatusOk, symmetric.status());
    EXPECT_STATUS(lumStatusKernelNotSymmetric, asymmetric.status());
    GuardedImage<T> expected(15, 10, {.channels = TypeParam::channels});
    GuardedImage<T> actual(15, 10, {.channels = TypeParam::channels});
    ASSERT_EQ(lumStatusOk, runLayer(src, expected, symmetric));
    ASSERT_EQ(lumStatusOk, runLayer(src, actual, asymmetric));
    EXPECT_TRUE(sameBits(expected.pixels(), actual.pixels()));
}

TEST(LayerDownRates, JustUnderTwoTakesTheLastPixelPastTheEnd) {
    // So long that the rule gives one result more than half of the pixels.
    const float rate = 1.99999F;
    const int width = 600001;
    const LumSize result = below({width, 1}, rate);
    ASSERT_GT(2 * (result.width - 1), width - 1);
    GuardedImage<Lum16u> src(width, 1);
    src.fill([](int x, int, int) { return x % 50021; });
    GuardedImage<Lum16u> dst(result.width, 1);
    const LayerState<Down16uC1> state({width, 1}, rate, {0, 1, 0});
    ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
    for (int x = 0; x < result.width; ++x)
        ASSERT_EQ(src.at(std::min(2 * x, width - 1), 0), dst.at(x, 0)) << x;

    GuardedImage<Lum8u> tall(1, width);
    tall.fill([](int, int y, int) { return y * 7; });
    GuardedImage<Lum8u> half(1, result.width);
    const LayerState<Down8uC1> tallState({1, width}, rate, {0, 1, 0});
    ASSERT_EQ(lumStatusOk, runLayer(tall, half, tallState));
    for (int y = 0; y < result.width; ++y)
        ASSERT_EQ(tall.at(0, std::min(2 * y, width - 1)), half.at(0, y)) << y;
}

TEST(LayerDownRates, TheIntervalAroundTwoIsOpen) {
    // Outside of it results are interpolated: at 1.99998 result 100 lies at 199.998.
    GuardedImage<Lum32f> src(300, 1);
    src.fill([](int x, int, int) { return x; });
    for (float rate : {1.99998F, 2.00002F, 1.999981F, 2.000019F}) {
        const LumSize result = below({300, 1}, rate);
        GuardedImage<Lum32f> dst(result.width, 1);
        const LayerState<Down32fC1> state({300, 1}, rate, {0, 1, 0});
        ASSERT_EQ(lumStatusOk, runLayer(src, dst, state));
        const bool isTwo = rate > 1.99998F && rate < 2.00002F;
        EXPECT_EQ(isTwo, dst.at(100, 0) == 200.0F) << rate;
    }
}
