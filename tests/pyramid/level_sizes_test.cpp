#include <algorithm>
#include <limits>
#include <random>

#include "lumcv.h"
#include "support/status_checks.h"

namespace {

constexpr int largest = std::numeric_limits<int>::max();

bool operator==(LumSize a, LumSize b) { return a.width == b.width && a.height == b.height; }

/// The size below, by the plain and the pointer-wide function, which must agree.
LumSize below(LumSize size, float rate) {
    LumSize plain{-1, -1};
    LumSizeL wide{-1, -1};
    EXPECT_STATUS(lumStatusOk, lumiGetPyramidDownROI(size, &plain, rate));
    EXPECT_STATUS(lumStatusOk, lumiGetPyramidDownROI_L({size.width, size.height}, &wide, rate));
    EXPECT_EQ(plain.width, wide.width);
    EXPECT_EQ(plain.height, wide.height);
    return plain;
}

struct Range {
    LumSize least{-1, -1};
    LumSize most{-1, -1};
};
Range above(LumSize size, float rate) {
    Range plain;
    LumSizeL least{-1, -1};
    LumSizeL most{-1, -1};
    EXPECT_STATUS(lumStatusOk, lumiGetPyramidUpROI(size, &plain.least, &plain.most, rate));
    EXPECT_STATUS(lumStatusOk, lumiGetPyramidUpROI_L({size.width, size.height}, &least, &most, rate));
    EXPECT_EQ(plain.least.width, least.width);
    EXPECT_EQ(plain.least.height, least.height);
    EXPECT_EQ(plain.most.width, most.width);
    EXPECT_EQ(plain.most.height, most.height);
    return plain;
}

/// As the rule reads, both sides in one walk.
Range plainRange(LumSize size, float rate) {
    const auto least = [&](int n) {
        return n == 1 ? 1 : std::max(static_cast<int>(static_cast<float>(n - 1) * rate) + 1, n + 1);
    };
    const auto most = [&](int n) { return std::max(static_cast<int>(static_cast<float>(n) * rate), n + 1); };
    return {{least(size.width), least(size.height)}, {most(size.width), most(size.height)}};
}
LumSize plainBelow(LumSize size, float rate) {
    const auto start = [&](int n) {
        const int value = static_cast<int>(static_cast<float>(n) / rate + 0.5F);
        return value < 2 ? 1 : value;
    };
    LumSize result{start(size.width), start(size.height)};
    for (;;) {
        const Range range = plainRange(result, rate);
        bool settled = true;
        if (size.height < range.least.height) {
            --result.height;
            settled = false;
        } else if (size.height > range.most.height) {
            ++result.height;
            settled = false;
        }
        if (size.width < range.least.width)
            --result.width;
        else if (size.width > range.most.width)
            ++result.width;
        else if (settled)
            return result;
    }
}

} // namespace

TEST(LevelSizes, ThreePixelsBecomeTwoAtRateTwo) {
    EXPECT_TRUE((LumSize{2, 2}) == below({3, 3}, 2.0F));
    EXPECT_TRUE((LumSize{1, 1}) == below({2, 1}, 2.0F));
    EXPECT_TRUE((LumSize{960, 540}) == below({1920, 1080}, 2.0F));
    EXPECT_TRUE((LumSize{1280, 720}) == below({1920, 1080}, 1.5F));
    EXPECT_TRUE((LumSize{1, 1}) == below({1, 1}, 10.0F));
}

TEST(LevelSizes, OnePixelLiesBelowOneOrTwo) {
    const Range range = above({1, 1}, 2.0F);
    EXPECT_TRUE((LumSize{1, 1}) == range.least);
    EXPECT_TRUE((LumSize{2, 2}) == range.most);
    const Range ofThree = above({1, 4}, 3.5F);
    EXPECT_TRUE((LumSize{1, 11}) == ofThree.least);
    EXPECT_TRUE((LumSize{3, 14}) == ofThree.most);
}

TEST(LevelSizes, LevelsGrowByAPixelAtLeast) {
    const Range range = above({100, 7}, 1.0001F);
    EXPECT_TRUE((LumSize{101, 8}) == range.least);
    EXPECT_TRUE((LumSize{101, 8}) == range.most);
    EXPECT_TRUE((LumSize{99, 6}) == below({100, 7}, 1.0001F));
}

TEST(LevelSizes, EverySizeAndRateFollowsTheRule) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    std::vector<float> rates{1.0000001F, 1.1F, 1.25F, 1.5F, 1.99999F, 2.0F,
                             2.00001F,   2.5F, 3.0F,  7.3F, 10.0F};
    for (int i = 0; i < 40; ++i) rates.push_back(1.001F + static_cast<float>(engine() % 8999) / 1000);
    for (float rate : rates)
        for (int i = 0; i < 300; ++i) {
            const int limit = i < 200 ? 200 : 100000;
            const LumSize size{static_cast<int>(engine() % limit) + 1,
                               static_cast<int>(engine() % limit) + 1};
            const LumSize level = below(size, rate);
            ASSERT_TRUE(plainBelow(size, rate) == level)
                << size.width << " x " << size.height << " at " << rate;
            const Range range = above(level, rate);
            const Range plain = plainRange(level, rate);
            ASSERT_TRUE(plain.least == range.least && plain.most == range.most);
            ASSERT_TRUE(size.width >= range.least.width && size.width <= range.most.width);
            ASSERT_TRUE(size.height >= range.least.height && size.height <= range.most.height);
            ASSERT_TRUE(level.width < size.width || size.width == 1);
        }
}

TEST(LevelSizes, LengthsBeyond32BitsEndThere) {
    const Range range = above({largest, 1500000000}, 10.0F);
    EXPECT_TRUE((LumSize{largest, largest}) == range.least);
    EXPECT_TRUE((LumSize{largest, largest}) == range.most);
    for (float rate : {1.0000001F, 1.5F, 2.0F, 10.0F}) {
        const LumSize level = below({largest, largest - 1}, rate);
        EXPECT_NEAR(static_cast<double>(largest) / rate, level.width, 200) << rate;
        EXPECT_NEAR(static_cast<double>(largest) / rate, level.height, 200) << rate;
    }
}

TEST(LevelSizes, RatesAreAboveOneAndUpToTen) {
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    const float infinite = std::numeric_limits<float>::infinity();
    for (float rate : {1.0F, 0.5F, 0.0F, -2.0F, 10.5F, 10.000001F, notANumber, infinite, -infinite}) {
        LumSize size{-1, -1};
        LumSize other{-1, -1};
        LumSizeL sizeL{-1, -1};
        LumSizeL otherL{-1, -1};
        EXPECT_STATUS(lumStatusBadArgument, lumiGetPyramidDownROI({9, 9}, &size, rate)) << rate;
        EXPECT_STATUS(lumStatusBadArgument, lumiGetPyramidDownROI_L({9, 9}, &sizeL, rate)) << rate;
        EXPECT_STATUS(lumStatusBadArgument, lumiGetPyramidUpROI({9, 9}, &size, &other, rate)) << rate;
        EXPECT_STATUS(lumStatusBadArgument, lumiGetPyramidUpROI_L({9, 9}, &sizeL, &otherL, rate)) << rate;
        EXPECT_EQ(-2, size.width + other.width);
        EXPECT_EQ(-2, sizeL.width + otherL.width);
    }
    EXPECT_TRUE((LumSize{10, 10}) == below({100, 100}, 10.0F));
    EXPECT_TRUE((LumSize{99, 99}) == below({100, 100}, 1.0000001F));
}

TEST(LevelSizes, PointersComeBeforeSizesAndThoseBeforeTheRate) {
    LumSize size{-1, -1};
    LumSizeL sizeL{-1, -1};
    const float rate = 1.0F; // refused as well
    EXPECT_STATUS(lumStatusNullPointer, lumiGetPyramidDownROI({0, 0}, nullptr, rate));
    EXPECT_STATUS(lumStatusNullPointer, lumiGetPyramidDownROI_L({0, 0}, nullptr, rate));
    EXPECT_STATUS(lumStatusNullPointer, lumiGetPyramidUpROI({0, 0}, nullptr, &size, rate));
    EXPECT_STATUS(lumStatusNullPointer, lumiGetPyramidUpROI({0, 0}, &size, nullptr, rate));
    EXPECT_STATUS(lumStatusNullPointer, lumiGetPyramidUpROI_L({0, 0}, nullptr, &sizeL, rate));
    EXPECT_STATUS(lumStatusNullPointer, lumiGetPyramidUpROI_L({0, 0}, &sizeL, nullptr, rate));
    for (LumSize bad : {LumSize{0, 5}, LumSize{5, 0}, LumSize{-1, 5}, LumSize{5, -7}}) {
        EXPECT_STATUS(lumStatusSizeError, lumiGetPyramidDownROI(bad, &size, rate));
        EXPECT_STATUS(lumStatusSizeError, lumiGetPyramidDownROI_L({bad.width, bad.height}, &sizeL, rate));
        EXPECT_STATUS(lumStatusSizeError, lumiGetPyramidUpROI(bad, &size, &size, rate));
        EXPECT_STATUS(lumStatusSizeError,
                      lumiGetPyramidUpROI_L({bad.width, bad.height}, &sizeL, &sizeL, rate));
    }
    EXPECT_EQ(-1, size.width);
    EXPECT_EQ(-1, sizeL.width);
}

TEST(LevelSizes, PointerWideSizesAboveAnIntAreRefused) {
    if constexpr (sizeof(std::intptr_t) > 4) {
        const auto tooLong = static_cast<std::intptr_t>(std::int64_t{1} << 31);
        LumSizeL size{-1, -1};
        EXPECT_STATUS(lumStatusSizeError, lumiGetPyramidDownROI_L({tooLong, 1}, &size, 1.0F));
        EXPECT_STATUS(lumStatusSizeError, lumiGetPyramidUpROI_L({1, tooLong}, &size, &size, 1.0F));
        EXPECT_EQ(-1, size.width);
    } else {
        EXPECT_EQ(sizeof(int), sizeof(std::intptr_t));
    }
}
