#include <bit>
#include <cmath>
#include <limits>

#include "kernels/stats/accumulate_weighted.h"
#include "support/guarded_image.h"
#include "support/status_checks.h"

using namespace support;

namespace {

float weighted(float s1, float s2, float alpha) {
    const float difference = s1 - s2;
    const float step = difference * alpha;
    return s2 + step;
}

/// The arguments of the call.
struct Call {
    const Lum32f* src1;
    int src1Step;
    const Lum32f* src2;
    int src2Step;
    Lum32f* dst;
    int dstStep;
    LumSize size;
    Lum32f alpha;
};

LumStatus run(const Call& c) {
    return lumiAddWeighted_32f_C1R(c.src1, c.src1Step, c.src2, c.src2Step, c.dst, c.dstStep, c.size, c.alpha);
}
LumStatus run(const GuardedImage<Lum32f>& src1, const GuardedImage<Lum32f>& src2, GuardedImage<Lum32f>& dst,
              float alpha) {
    return run(
        {src1.data(), src1.step(), src2.data(), src2.step(), dst.data(), dst.step(), dst.size(), alpha});
}
/// A row without padding.
std::vector<float> weightedRow(const std::vector<float>& src1, const std::vector<float>& src2, float alpha) {
    const int count = static_cast<int>(src1.size());
    std::vector<float> dst(src1.size());
    EXPECT_STATUS(
        lumStatusOk,
        run({src1.data(), 4 * count, src2.data(), 4 * count, dst.data(), 4 * count, {count, 1}, alpha}));
    return dst;
}

void expectWeighted(int width, int height, Placement first, Placement second, Placement result, float alpha) {
    GuardedImage<Lum32f> src1(width, height, first);
    GuardedImage<Lum32f> src2(width, height, second);
    GuardedImage<Lum32f> dst(width, height, result);
    GuardedImage<Lum32f> scalar(width, height);
    src1.fillRandom(width);
    src2.fillRandom(width + 1);
    ASSERT_EQ(lumStatusOk, run(src1, src2, dst, alpha));
    lum::kernels::weightedSumScalar({src1.data(), src1.step()}, {src2.data(), src2.step()},
                                    {scalar.data(), scalar.step()}, scalar.size(), alpha);
    ASSERT_TRUE(sameBits(scalar.pixels(), dst.pixels())) << "width " << width;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            ASSERT_EQ(weighted(src1.at(x, y), src2.at(x, y), alpha), dst.at(x, y));
    ASSERT_TRUE(dst.outsideUntouched());
}

} // namespace

TEST(AddWeighted_32f_C1R, QuarterOfTheWayByHand) {
    // A quarter of the way from the second source to the first.
    EXPECT_EQ((std::vector<float>{10, 25, 4}), weightedRow({40, 10, 4}, {0, 30, 4}, 0.25F));
}

TEST(AddWeighted_32f_C1R, FormulaHoldsOnEveryWidth) {
    for (Guard guard : {Guard::after, Guard::before})
        for (int width = 1; width <= 70; ++width)
            ASSERT_NO_FATAL_FAILURE(expectWeighted(width, 3, {.guard = guard}, {.padding = 4, .guard = guard},
                                                   {.padding = 8, .guard = guard}, 0.3F));
    ASSERT_NO_FATAL_FAILURE(expectWeighted(1037, 2, {}, {}, {}, -1.75F));
}

TEST(AddWeighted_32f_C1R, ResultDoesNotDependOnThePath) {
    // off the element or on it, each image by itself
    for (int first : {0, 1, 4})
        for (int second : {0, 2, 12})
            for (int result = 0; result < 16; ++result)
                for (int width : {2, 5, 37})
                    ASSERT_NO_FATAL_FAILURE(expectWeighted(width, 2,
                                                           {.offset = first, .guard = Guard::before},
                                                           {.offset = second, .guard = Guard::before},
                                                           {.offset = result, .guard = Guard::before}, 0.7F));
}

TEST(AddWeighted_32f_C1R, DestinationMayBeEitherSource) {
    for (bool overFirst : {true, false}) {
        GuardedImage<Lum32f> src1(45, 3, {.padding = 4});
        GuardedImage<Lum32f> src2(45, 3, {.padding = 4});
        GuardedImage<Lum32f> expected(45, 3);
        src1.fillRandom(1);
        src2.fillRandom(2);
        GuardedImage<Lum32f>& dst = overFirst ? src1 : src2;
        EXPECT_STATUS(lumStatusOk, run(src1, src2, expected, 0.25F));
        EXPECT_STATUS(lumStatusOk, run(src1, src2, dst, 0.25F));
        EXPECT_TRUE(sameBits(expected.pixels(), dst.pixels()));
    }
}

TEST(AddWeighted_32f_C1R, AlphaZeroGivesTheSecondSourcePlusZero) {
    const std::vector<float> src2{-0.0F, 2.5F, -7, 1e-40F, 0};
    const std::vector<float> dst = weightedRow({3, 1, 4, 1, 5}, src2, 0.0F);
    for (int x = 0; x < 5; ++x)
        EXPECT_EQ(std::bit_cast<unsigned>(src2[x] + 0.0F), std::bit_cast<unsigned>(dst[x]));
}

TEST(AddWeighted_32f_C1R, ValuesBeyondTheFiniteAndBothZerosFollowTheFormula) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    const float special[] = {infinity, -infinity, notANumber, -0.0F, 0.0F, 1e-45F, -1e-40F, 3e38F, 1.0F};
    for (float alpha : {0.0F, -0.0F, 0.5F, 1.0F, -2.0F, infinity, notANumber}) {
        // each of them beside each, in vectors and after them
        GuardedImage<Lum32f> src1(9, 9);
        GuardedImage<Lum32f> src2(9, 9);
        GuardedImage<Lum32f> dst(9, 9);
        src1.fill([&](int x, int, int) { return special[x]; });
        src2.fill([&](int x, int y, int) { return special[(x + y) % 9]; });
        EXPECT_STATUS(lumStatusOk, run(src1, src2, dst, alpha));
        for (int y = 0; y < 9; ++y)
            for (int x = 0; x < 9; ++x) {
                const float expected = weighted(src1.at(x, y), src2.at(x, y), alpha);
                const float actual = dst.at(x, y);
                if (std::isnan(expected))
                    EXPECT_TRUE(std::isnan(actual));
                else
                    EXPECT_EQ(std::bit_cast<unsigned>(expected), std::bit_cast<unsigned>(actual));
            }
    }
}

TEST(AddWeighted_32f_C1R, ChecksInOrder) {
    GuardedImage<Lum32f> image(4, 2);
    Lum32f* p = image.data();
    const int largest = 0x7FFFFFFC;
    std::vector<std::pair<LumStatus, Call>> table;
    for (LumSize size : {LumSize{4, 2}, LumSize{0, 0}}) {
        table.push_back({lumStatusNullPointer, {nullptr, 16, p, 16, p, 16, size, 1}});
        table.push_back({lumStatusNullPointer, {p, 16, nullptr, 16, p, 16, size, 1}});
        table.push_back({lumStatusNullPointer, {p, 16, p, 16, nullptr, 16, size, 1}});
    }
    for (LumSize size : {LumSize{0, 2}, LumSize{4, 0}, LumSize{-1, 2}})
        table.push_back({lumStatusSizeError, {p, 15, p, 15, p, 15, size, 1}});
    table.push_back({lumStatusStepError, {p, 15, p, 16, p, 18, {4, 2}, 1}});
    table.push_back({lumStatusStepError, {p, 18, p, 15, p, 16, {4, 2}, 1}});
    table.push_back({lumStatusStepError, {p, 18, p, 18, p, 15, {4, 2}, 1}});
    table.push_back({lumStatusStepError, {p, largest, p, largest, p, largest, {0x40000001, 1}, 1}});
    table.push_back({lumStatusStepAlignmentError, {p, 18, p, 16, p, 16, {4, 2}, 1}});
    table.push_back({lumStatusStepAlignmentError, {p, 16, p, 17, p, 16, {4, 2}, 1}});
    table.push_back({lumStatusStepAlignmentError, {p, 16, p, 16, p, 19, {4, 2}, 1}});
    for (const auto& [expected, call] : table) EXPECT_REFUSED(expected, image, run(call));
}
