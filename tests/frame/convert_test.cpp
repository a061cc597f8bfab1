#include <cmath>
#include <limits>

#include "frame/convert.h"

using namespace lum;

namespace {
constexpr float infinity = std::numeric_limits<float>::infinity();
}

TEST(Convert, NearestEvenTakesTiesToEven) {
    EXPECT_EQ(2, nearestEven<Lum8u>(2.5F));
    EXPECT_EQ(4, nearestEven<Lum8u>(3.5F));
    EXPECT_EQ(-2, nearestEven<Lum16s>(-2.5F));
    EXPECT_EQ(3, nearestEven<Lum16u>(2.500001F));
}

TEST(Convert, TruncatedGoesTowardZero) {
    EXPECT_EQ(2, truncated<Lum16s>(2.9F));
    EXPECT_EQ(-2, truncated<Lum16s>(-2.9F));
    EXPECT_EQ(0, truncated<Lum8u>(-0.9F));
}

TEST(Convert, HalfUpAddsAHalfAndTruncates) {
    EXPECT_EQ(3, halfUpTruncated<Lum8u>(2.5F));
    EXPECT_EQ(2, halfUpTruncated<Lum8u>(2.49F));
    EXPECT_EQ(-2, halfUpTruncated<Lum16s>(-2.9F));
}

TEST(Convert, EveryRoundingSaturatesTheValueHoweverLarge) {
    for (float large : {70000.0F, 3e9F, 1e30F, infinity}) {
        EXPECT_EQ(255, nearestEven<Lum8u>(large));
        EXPECT_EQ(0, nearestEven<Lum8u>(-large));
        EXPECT_EQ(32767, truncated<Lum16s>(large));
        EXPECT_EQ(-32768, truncated<Lum16s>(-large));
        EXPECT_EQ(65535, halfUpTruncated<Lum16u>(large));
        EXPECT_EQ(0, halfUpTruncated<Lum16u>(-large));
    }
    EXPECT_EQ(-128, nearestEven<Lum8s>(-128.6F));
    EXPECT_EQ(127, nearestEven<Lum8s>(127.6F));
}

TEST(Convert, DoublesSaturateAt32Bits) {
    EXPECT_EQ(2147483647, truncatedTo32s(1e12));
    EXPECT_EQ(-2147483647 - 1, truncatedTo32s(-1e12));
    EXPECT_EQ(-7, truncatedTo32s(-7.99));
}

TEST(Convert, IntegersSaturate) {
    EXPECT_EQ(255, saturated<Lum8u>(300));
    EXPECT_EQ(0, saturated<Lum8u>(-5));
    EXPECT_EQ(-32768, saturated<Lum16s>(-2147483647));
    EXPECT_EQ(65535, saturated<Lum16u>(70000));
}
