#include <cmath>
#include <limits>

#include "integral/sqr_integral_checks.h"
#include "kernels/integral/integral.h"
#include "support/control_word.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

LumStatus integral(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, LumSize size, Lum32s value) {
    return lumiIntegral_8u32s_C1R(src, srcStep, dst, dstStep, size, value);
}
LumStatus integral(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep, LumSize size, Lum32f value) {
    return lumiIntegral_8u32f_C1R(src, srcStep, dst, dstStep, size, value);
}
LumStatus sqrIntegral(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, Lum32s* sqr, int sqrStep,
                      LumSize size, Lum32s value, Lum32s sqrValue) {
    return lumiSqrIntegral_8u32s_C1R(src, srcStep, dst, dstStep, sqr, sqrStep, size, value, sqrValue);
}
LumStatus sqrIntegral(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, Lum64f* sqr, int sqrStep,
                      LumSize size, Lum32s value, Lum64f sqrValue) {
    return lumiSqrIntegral_8u32s64f_C1R(src, srcStep, dst, dstStep, sqr, sqrStep, size, value, sqrValue);
}
LumStatus sqrIntegral(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep, Lum64f* sqr, int sqrStep,
                      LumSize size, Lum32f value, Lum64f sqrValue) {
    return lumiSqrIntegral_8u32f64f_C1R(src, srcStep, dst, dstStep, sqr, sqrStep, size, value, sqrValue);
}

/// A call on whole images.
template <class Sum> LumStatus run(const GuardedImage<Lum8u>& src, GuardedImage<Sum>& dst, Sum start) {
    return integral(src.data(), src.step(), dst.data(), dst.step(), src.size(), start);
}
LumStatus run(const GuardedImage<Lum32f>& src, GuardedImage<Lum32f>& dst) {
    return lumiIntegral_32f_C1R(src.data(), src.step(), dst.data(), dst.step(), src.size());
}
template <class Sum, class Square>
LumStatus run(const GuardedImage<Lum8u>& src, GuardedImage<Sum>& dst, GuardedImage<Square>& sqr, Sum start,
              Square sqrStart) {
    return sqrIntegral(src.data(), src.step(), dst.data(), dst.step(), sqr.data(), sqr.step(), src.size(),
                       start, sqrStart);
}

/// What one element of a result must be, from exact sums of whole rows; `rowSums` are those left of column x.
template <class Out> Out expectedElement(const std::vector<std::int64_t>& rowSums, Out start) {
    if constexpr (std::is_integral_v<Out>) {
        std::int64_t total = start;
        for (std::int64_t sum : rowSums) total += sum;
        return static_cast<Out>(static_cast<std::uint64_t>(total));
    } else {
        Out total = start;
        for (std::int64_t sum : rowSums) total = total + static_cast<Out>(sum);
        return total;
    }
}

template <class Out, class Value>
void expectSums(const GuardedImage<Lum8u>& src, const GuardedImage<Out>& dst, Out start, Value value) {
    for (int x = 0; x <= src.size().width; ++x) {
        std::vector<std::int64_t> rowSums;
        for (int y = 0; y <= src.size().height; ++y) {
            ASSERT_EQ(expectedElement<Out>(rowSums, start), dst.at(x, y)) << "at " << x << ", " << y;
            if (y == src.size().height) break;
            std::int64_t sum = 0;
            for (int i = 0; i < x; ++i) sum += value(src.at(i, y));
            rowSums.push_back(sum);
        }
    }
}

const auto pixel = [](std::int64_t p) { return p; };
const auto square = [](std::int64_t p) { return p * p; };

using Sums = testing::Types<Lum32s, Lum32f>;
MEMBER_TEST_SUITE(IntegralTypes, Sums);

template <class SumType, class SquareType> struct Member {
    using Sum = SumType;
    using Square = SquareType;
};
using Members = testing::Types<Member<Lum32s, Lum32s>, Member<Lum32s, Lum64f>, Member<Lum32f, Lum64f>>;
MEMBER_TEST_SUITE(SqrIntegralTypes, Members);

/// The exported call, and the scalar kernel beside it, over one shape of images.
template <class Sum> void expectAgreesWithScalar(int width, int height, Placement from, Placement to) {
    GuardedImage<Lum8u> src(width, height, from);
    GuardedImage<Sum> expected(width + 1, height + 1, to);
    GuardedImage<Sum> actual(width + 1, height + 1, to);
    src.fillRandom(width);
    const Sum start = 1000003;
    lum::kernels::integralScalar<Sum>({src.data(), src.step()}, {expected.data(), expected.step()},
                                      src.size(), start);
    ASSERT_EQ(lumStatusOk, run(src, actual, start));
    ASSERT_TRUE(sameBits(expected.pixels(), actual.pixels())) << "width " << width;
    ASSERT_TRUE(actual.outsideUntouched());
}

template <class M> void expectSquaresAgreeWithScalar(int width, int height, Placement from, Placement to) {
    using Sum = typename M::Sum;
    using Square = typename M::Square;
    GuardedImage<Lum8u> src(width, height, from);
    GuardedImage<Sum> expected(width + 1, height + 1, to);
    GuardedImage<Sum> actual(width + 1, height + 1, to);
    GuardedImage<Square> expectedSquares(width + 1, height + 1, to);
    GuardedImage<Square> actualSquares(width + 1, height + 1, to);
    src.fillRandom(width);
    const Sum start = 16777211;
    const Square sqrStart = static_cast<Square>(2147483000.25);
    lum::kernels::sqrIntegralScalar<Sum, Square>({src.data(), src.step()}, {expected.data(), expected.step()},
                                                 {expectedSquares.data(), expectedSquares.step()}, src.size(),
                                                 start, sqrStart);
    ASSERT_EQ(lumStatusOk, run(src, actual, actualSquares, start, sqrStart));
    ASSERT_TRUE(sameBits(expected.pixels(), actual.pixels())) << "width " << width;
    ASSERT_TRUE(sameBits(expectedSquares.pixels(), actualSquares.pixels())) << "squares, width " << width;
    ASSERT_TRUE(actual.outsideUntouched());
    ASSERT_TRUE(actualSquares.outsideUntouched());
}

/// Floats of very different magnitude, so that every other order of additions shows.
float unevenFloat(unsigned seed) {
    std::mt19937 engine(seed);
    const float mantissa = static_cast<float>(static_cast<int>(engine() % 2000001) - 1000000);
    return std::ldexp(mantissa, static_cast<int>(engine() % 30) - 20);
}

/// The control word of a caller that rounds downward: a 0 that comes from a difference is -0.
constexpr unsigned downward = 0x3F80;

} // namespace

TEST(Integral_8u32s_C1R, ThreePixelsByTwo) {
    const Lum8u src[] = {1, 2, 3, //
                         4, 5, 6};
    GuardedImage<Lum32s> dst(4, 3);
    EXPECT_STATUS(lumStatusOk, lumiIntegral_8u32s_C1R(src, 3, dst.data(), dst.step(), {3, 2}, 100));
    EXPECT_EQ((std::vector<Lum32s>{100, 100, 100, 100, //
                                   100, 101, 103, 106, //
                                   100, 105, 112, 121}),
              dst.pixels());
}

TEST(Integral_8u32s_C1R, OnePixelGivesThreeStartValuesAndTheSum) {
    const Lum8u src = 9;
    GuardedImage<Lum32s> dst(2, 2);
    EXPECT_STATUS(lumStatusOk, lumiIntegral_8u32s_C1R(&src, 1, dst.data(), dst.step(), {1, 1}, 5));
    EXPECT_EQ((std::vector<Lum32s>{5, 5, 5, 14}), dst.pixels());
}

TEST(Integral_8u32s_C1R, SumsWrapModulo32Bits) {
    GuardedImage<Lum8u> src(40, 3);
    GuardedImage<Lum32s> dst(41, 4);
    src.fill([](int, int, int) { return 255; });
    EXPECT_STATUS(lumStatusOk, run(src, dst, 0x7FFFFFF0));
    EXPECT_EQ(static_cast<Lum32s>(0x7FFFFFF0U + 40U * 3U * 255U), dst.at(40, 3));
    EXPECT_EQ(static_cast<Lum32s>(0x7FFFFFF0U + 255U), dst.at(1, 1));
}

TEST(Integral_8u32f_C1R, RowSumIsExactAndRoundsOnlyWhenAddedToTheRowAbove) {
    // Above 2 to the 24 the odd sums of the row would be lost one by one.
    GuardedImage<Lum8u> src(8, 2);
    GuardedImage<Lum32f> dst(9, 3);
    src.fill([](int, int, int) { return 1; });
    EXPECT_STATUS(lumStatusOk, run(src, dst, 16777216.0F));
    EXPECT_EQ(16777216.0F, dst.at(1, 1));
    EXPECT_EQ(16777218.0F, dst.at(2, 1));
    EXPECT_EQ(16777224.0F, dst.at(8, 1));
    EXPECT_EQ(16777216.0F, dst.at(1, 2));
    EXPECT_EQ(16777232.0F, dst.at(8, 2));
}

TEST(Integral_8u32f_C1R, RowsWiderThanASigned32BitSumStayExact) {
    // 255 x 8421505 is 2 to the 31 and 127.
    constexpr int width = 8421544;
    const std::vector<Lum8u> src(width, 255);
    std::vector<Lum32f> dst(2 * (width + 1));
    EXPECT_STATUS(lumStatusOk,
                  lumiIntegral_8u32f_C1R(src.data(), width, dst.data(), 4 * (width + 1), {width, 1}, 0.0F));
    for (int x = 8421490; x <= width; ++x) EXPECT_EQ(static_cast<float>(255.0 * x), dst[width + 1 + x]) << x;
}

TEST(SqrIntegral_8u32s64f_C1R, RowsWiderThanASigned32BitSumOfSquaresStayExact) {
    constexpr int width = 70001;
    const std::vector<Lum8u> src(width, 255);
    std::vector<Lum32s> dst(2 * (width + 1));
    std::vector<Lum64f> sqr(2 * (width + 1));
    EXPECT_STATUS(lumStatusOk, lumiSqrIntegral_8u32s64f_C1R(src.data(), width, dst.data(), 4 * (width + 1),
                                                            sqr.data(), 8 * (width + 1), {width, 1}, 0, 0.0));
    for (int x : {33025, 33026, 66051, 66052, width}) EXPECT_EQ(65025.0 * x, sqr[width + 1 + x]) << x;
    EXPECT_EQ(255 * width, dst[2 * width + 1]);
}

TEST(Integral_32f_C1R, RowSumRoundsAtEachPixel) {
    const float src[] = {1e8F, 1, 1, 1, 1, -1e8F};
    for (int height : {1, 4}) {
        GuardedImage<Lum32f> rows(6, height);
        GuardedImage<Lum32f> dst(7, height + 1);
        rows.fill([&](int x, int, int) { return src[x]; });
        EXPECT_STATUS(lumStatusOk, run(rows, dst));
        EXPECT_EQ(1e8F, dst.at(2, 1));
        EXPECT_EQ(1e8F, dst.at(5, 1));
        EXPECT_EQ(0.0F, dst.at(6, 1));
        for (int x = 0; x < 7; ++x) EXPECT_EQ(0.0F, dst.at(x, 0));
        for (int y = 0; y <= height; ++y) EXPECT_EQ(0.0F, dst.at(0, y));
    }
}

TEST(Integral_32f_C1R, FirstRowAndFirstColumnAreWrittenAsZero) {
    for (int height : {1, 3, 4, 6})
        for (int width : {1, 5, 16, 23}) {
            GuardedImage<Lum32f> src(width, height);
            GuardedImage<Lum32f> dst(width + 1, height + 1);
            src.fillRandom(2);
            dst.fill([](int, int, int) { return -7; });
            EXPECT_STATUS(lumStatusOk, run(src, dst));
            for (int x = 0; x <= width; ++x) EXPECT_EQ(0.0F, dst.at(x, 0)) << x;
            for (int y = 0; y <= height; ++y) EXPECT_EQ(0.0F, dst.at(0, y)) << y;
        }
}

TEST(Integral_32f_C1R, VectorAgreesWithScalarAndWithTheFormula) {
    for (int width = 1; width <= 70; ++width)
        for (int height : {1, 2, 3, 4, 5, 8, 11}) {
            const Placement placement{.padding = width % 3 * 4,
                                      .guard = width % 2 ? Guard::before : Guard::after};
            GuardedImage<Lum32f> src(width, height, placement);
            GuardedImage<Lum32f> expected(width + 1, height + 1, placement);
            GuardedImage<Lum32f> actual(width + 1, height + 1, placement);
            src.fill([&](int x, int y, int) { return unevenFloat(1000 * width + 100 * y + x); });
            lum::kernels::integralOfFloatsScalar({src.data(), src.step()}, {expected.data(), expected.step()},
                                                 src.size());
            ASSERT_EQ(lumStatusOk, run(src, actual));
            ASSERT_TRUE(sameBits(expected.pixels(), actual.pixels())) << width << " x " << height;
            ASSERT_TRUE(actual.outsideUntouched());
            std::vector<float> above(width + 1, 0.0F);
            for (int y = 0; y < height; ++y) {
                float sum = 0;
                for (int x = 0; x < width; ++x) {
                    sum += src.at(x, y);
                    above[x + 1] += sum;
                    ASSERT_EQ(above[x + 1], actual.at(x + 1, y + 1));
                }
            }
        }
}

TEST(Integral_32f_C1R, InfinitiesAndNaNsSpreadToTheRightAndBelow) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    GuardedImage<Lum32f> src(9, 5);
    GuardedImage<Lum32f> dst(10, 6);
    src.fill([](int x, int y, int) {
        return x == 2 && y == 1 ? infinity : x == 6 && y == 2 ? -infinity : 1.0F;
    });
    EXPECT_STATUS(lumStatusOk, run(src, dst));
    for (int y = 0; y <= 5; ++y)
        for (int x = 0; x <= 9; ++x) {
            const bool first = x >= 3 && y >= 2;
            const bool second = x >= 7 && y >= 3;
            if (first && second)
                EXPECT_TRUE(std::isnan(dst.at(x, y)));
            else
                EXPECT_EQ(first ? infinity : static_cast<float>(x * y), dst.at(x, y)) << x << ", " << y;
        }
}

MEMBER_TEST(IntegralTypes, VectorAgreesWithScalarOnEveryWidth) {
    for (int width = 1; width <= 70; ++width) {
        expectAgreesWithScalar<TypeParam>(width, 3, {}, {});
        expectAgreesWithScalar<TypeParam>(width, 3, {.padding = 3, .guard = Guard::before},
                                          {.padding = 4, .guard = Guard::before});
    }
    expectAgreesWithScalar<TypeParam>(1037, 5, {}, {});
}

MEMBER_TEST(IntegralTypes, VectorAgreesWithScalarOnEveryAlignment) {
    // Offsets that are no multiple of the element too: pointers have no rule.
    for (int offset = 0; offset < 16; ++offset)
        for (int padding : {0, 4, 12}) {
            expectAgreesWithScalar<TypeParam>(
                61, 4, {.padding = padding, .offset = 15 - offset, .guard = Guard::before},
                {.padding = padding, .offset = offset, .guard = Guard::before});
        }
}

MEMBER_TEST(IntegralTypes, SumsOfBlackArePositiveZeroWhenRoundingDownward) {
    for (int offset = 0; offset < 16; ++offset) {
        GuardedImage<Lum8u> src(21, 3);
        GuardedImage<TypeParam> dst(22, 4, {.offset = offset, .guard = Guard::before});
        dst.fill([](int, int, int) { return -7; });
        {
            const ControlWord callers(downward);
            EXPECT_STATUS(lumStatusOk, run(src, dst, TypeParam{0}));
        }
        EXPECT_TRUE(sameBits(std::vector<TypeParam>(22 * 4), dst.pixels())) << "offset " << offset;
    }
}

MEMBER_TEST(IntegralTypes, EqualsTheExactSums) {
    for (unsigned seed = 1; seed <= 4; ++seed) {
        SCOPED_TRACE(seed);
        GuardedImage<Lum8u> src(20 * seed + 3, 7 + seed);
        GuardedImage<TypeParam> dst(src.size().width + 1, src.size().height + 1);
        src.fillRandom(seed);
        const auto start = static_cast<TypeParam>(seed % 2 ? 2147483600 : -33554431);
        EXPECT_STATUS(lumStatusOk, run(src, dst, start));
        expectSums(src, dst, start, pixel);
    }
}

MEMBER_TEST(IntegralTypes, ChecksComeInTheirOrder) {
    GuardedImage<Lum8u> src(4, 2);
    GuardedImage<TypeParam> dst(5, 3, {.padding = 4});
    const Lum8u* noSource = nullptr;
    TypeParam* noResult = nullptr;
    const int step = dst.step();
    const TypeParam value = 7;
    for (LumSize size : {LumSize{4, 2}, LumSize{0, 0}}) {
        EXPECT_REFUSED(lumStatusNullPointer, dst, integral(noSource, 4, dst.data(), step, size, value));
        EXPECT_STATUS(lumStatusNullPointer, integral(src.data(), 4, noResult, step, size, value));
    }
    for (LumSize size : {LumSize{0, 2}, LumSize{4, 0}, LumSize{-1, 2}, LumSize{4, -1}})
        EXPECT_REFUSED(lumStatusSizeError, dst, integral(src.data(), 0, dst.data(), 1, size, value));
    for (int shortStep : {3, 0, -4})
        EXPECT_REFUSED(lumStatusStepError, dst,
                       integral(src.data(), shortStep, dst.data(), step + 1, src.size(), value));
    for (int shortStep : {19, 16, -20})
        EXPECT_REFUSED(lumStatusStepError, dst,
                       integral(src.data(), 4, dst.data(), shortStep, src.size(), value));
    for (int odd : {21, 22, 23})
        EXPECT_REFUSED(lumStatusStepAlignmentError, dst,
                       integral(src.data(), 4, dst.data(), odd, src.size(), value));
    EXPECT_STATUS(lumStatusOk, integral(src.data(), 4, dst.data(), 20, src.size(), value));
}

MEMBER_TEST(IntegralTypes, HugeWidthIsStepErrorAndNotWrapped) {
    GuardedImage<Lum8u> src(4, 2);
    GuardedImage<TypeParam> dst(5, 3);
    for (int width : {0x7FFFFFFF, 0x40000000, 0x20000000})
        EXPECT_REFUSED(
            lumStatusStepError, dst,
            integral(src.data(), 0x7FFFFFFF, dst.data(), 0x7FFFFFFC, LumSize{width, 1}, TypeParam{0}));
}

TEST(Integral_32f_C1R, ChecksComeInTheirOrder) {
    GuardedImage<Lum32f> src(4, 2, {.padding = 4});
    GuardedImage<Lum32f> dst(5, 3, {.padding = 4});
    const auto call = [](const Lum32f* from, int fromStep, Lum32f* to, int toStep, LumSize size) {
        return lumiIntegral_32f_C1R(from, fromStep, to, toStep, size);
    };
    EXPECT_REFUSED(lumStatusNullPointer, dst, call(nullptr, 16, dst.data(), 20, {0, 0}));
    EXPECT_STATUS(lumStatusNullPointer, call(src.data(), 16, nullptr, 20, {0, 0}));
    for (LumSize size : {LumSize{0, 2}, LumSize{4, 0}, LumSize{-1, 2}, LumSize{4, -1}})
        EXPECT_REFUSED(lumStatusSizeError, dst, call(src.data(), 1, dst.data(), 1, size));
    EXPECT_REFUSED(lumStatusStepError, dst, call(src.data(), 15, dst.data(), 21, src.size()));
    EXPECT_REFUSED(lumStatusStepError, dst, call(src.data(), 17, dst.data(), 19, src.size()));
    EXPECT_REFUSED(lumStatusStepAlignmentError, dst, call(src.data(), 18, dst.data(), 20, src.size()));
    EXPECT_REFUSED(lumStatusStepAlignmentError, dst, call(src.data(), 16, dst.data(), 22, src.size()));
    EXPECT_STATUS(lumStatusOk, call(src.data(), 16, dst.data(), 20, src.size()));
}

MEMBER_TEST(SqrIntegralTypes, VectorAgreesWithScalarOnEveryWidth) {
    for (int width = 1; width <= 70; ++width) {
        expectSquaresAgreeWithScalar<TypeParam>(width, 3, {}, {});
        expectSquaresAgreeWithScalar<TypeParam>(width, 3, {.padding = 1, .guard = Guard::before},
                                                {.padding = 8, .guard = Guard::before});
    }
    expectSquaresAgreeWithScalar<TypeParam>(1037, 5, {}, {});
}

MEMBER_TEST(SqrIntegralTypes, VectorAgreesWithScalarOnEveryAlignment) {
    for (int offset = 0; offset < 16; ++offset)
        for (int padding : {0, 8})
            expectSquaresAgreeWithScalar<TypeParam>(
                61, 4, {.padding = padding, .offset = 15 - offset, .guard = Guard::before},
                {.padding = padding, .offset = offset, .guard = Guard::before});
}

MEMBER_TEST(SqrIntegralTypes, SumsOfBlackArePositiveZeroWhenRoundingDownward) {
    using Sum = typename TypeParam::Sum;
    using Square = typename TypeParam::Square;
    for (int offset = 0; offset < 16; ++offset) {
        GuardedImage<Lum8u> src(21, 3);
        GuardedImage<Sum> dst(22, 4, {.offset = offset, .guard = Guard::before});
        GuardedImage<Square> sqr(22, 4);
        dst.fill([](int, int, int) { return -7; });
        sqr.fill([](int, int, int) { return -7; });
        {
            const ControlWord callers(downward);
            EXPECT_STATUS(lumStatusOk, run(src, dst, sqr, Sum{0}, Square{0}));
        }
        EXPECT_TRUE(sameBits(std::vector<Sum>(22 * 4), dst.pixels())) << "offset " << offset;
        EXPECT_TRUE(sameBits(std::vector<Square>(22 * 4), sqr.pixels())) << "squares, offset " << offset;
    }
}

MEMBER_TEST(SqrIntegralTypes, EqualsTheExactSums) {
    using Sum = typename TypeParam::Sum;
    using Square = typename TypeParam::Square;
    for (unsigned seed = 1; seed <= 4; ++seed) {
        SCOPED_TRACE(seed);
        GuardedImage<Lum8u> src(20 * seed + 3, 7 + seed);
        GuardedImage<Sum> dst(src.size().width + 1, src.size().height + 1);
        GuardedImage<Square> sqr(src.size().width + 1, src.size().height + 1);
        src.fillRandom(seed);
        const auto start = static_cast<Sum>(seed % 2 ? 2147483600 : -33554431);
        const auto sqrStart = static_cast<Square>(seed % 2 ? 2147483000.75 : -5);
        EXPECT_STATUS(lumStatusOk, run(src, dst, sqr, start, sqrStart));
        expectSums(src, dst, start, pixel);
        expectSums(src, sqr, sqrStart, square);
    }
}

MEMBER_TEST(SqrIntegralTypes, FirstRowAndFirstColumnAreTheStartValues) {
    using Sum = typename TypeParam::Sum;
    using Square = typename TypeParam::Square;
    GuardedImage<Lum8u> src(37, 5);
    GuardedImage<Sum> dst(38, 6);
    GuardedImage<Square> sqr(38, 6);
    src.fillRandom(3);
    EXPECT_STATUS(lumStatusOk, run(src, dst, sqr, Sum{-3}, Square{11}));
    for (int x = 0; x < 38; ++x) {
        EXPECT_EQ(Sum{-3}, dst.at(x, 0));
        EXPECT_EQ(Square{11}, sqr.at(x, 0));
    }
    for (int y = 0; y < 6; ++y) {
        EXPECT_EQ(Sum{-3}, dst.at(0, y));
        EXPECT_EQ(Square{11}, sqr.at(0, y));
    }
}

MEMBER_TEST(SqrIntegralTypes, ChecksComeInTheirOrder) {
    expectSqrIntegralChecks<typename TypeParam::Sum, typename TypeParam::Square>(
        [](auto... arguments) { return sqrIntegral(arguments...); }, 1);
}
