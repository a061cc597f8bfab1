#include "integral/sqr_integral_checks.h"
#include "kernels/integral/tilted_integral.h"

#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

LumStatus tilted(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, LumSize size, Lum32s value) {
    return lumiTiltedIntegral_8u32s_C1R(src, srcStep, dst, dstStep, size, value);
}
LumStatus tilted(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep, LumSize size, Lum32f value) {
    return lumiTiltedIntegral_8u32f_C1R(src, srcStep, dst, dstStep, size, value);
}
LumStatus tiltedSqr(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, Lum32s* sqr, int sqrStep,
                    LumSize size, Lum32s value, Lum32s sqrValue) {
    return lumiTiltedSqrIntegral_8u32s_C1R(src, srcStep, dst, dstStep, sqr, sqrStep, size, value, sqrValue);
}
LumStatus tiltedSqr(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep, Lum64f* sqr, int sqrStep,
                    LumSize size, Lum32s value, Lum64f sqrValue) {
    return lumiTiltedSqrIntegral_8u32s64f_C1R(src, srcStep, dst, dstStep, sqr, sqrStep, size, value,
                                              sqrValue);
}
LumStatus tiltedSqr(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep, Lum64f* sqr, int sqrStep,
                    LumSize size, Lum32f value, Lum64f sqrValue) {
    return lumiTiltedSqrIntegral_8u32f64f_C1R(src, srcStep, dst, dstStep, sqr, sqrStep, size, value,
                                              sqrValue);
}

/// A call on whole images.
template <class Sum> LumStatus run(const GuardedImage<Lum8u>& src, GuardedImage<Sum>& dst, Sum start) {
    return tilted(src.data(), src.step(), dst.data(), dst.step(), src.size(), start);
}
template <class Sum, class Square>
LumStatus run(const GuardedImage<Lum8u>& src, GuardedImage<Sum>& dst, GuardedImage<Square>& sqr, Sum start,
              Square sqrStart) {
    return tiltedSqr(src.data(), src.step(), dst.data(), dst.step(), sqr.data(), sqr.step(), src.size(),
                     start, sqrStart);
}

Lum32s wrapped(std::int64_t value) { return static_cast<Lum32s>(static_cast<std::uint64_t>(value)); }

/// One combination of the recursion, s + b1 - (a - b2), in the arithmetic of the result.
Lum32s inner(std::int64_t s, Lum32s b1, Lum32s a, Lum32s b2) {
    return wrapped(s + b1 - (std::int64_t{a} - b2));
}
template <class T> T inner(std::int64_t s, T b1, T a, T b2) {
    const T added = static_cast<T>(s) + b1;
    const T removed = a - b2;
    return added - removed;
}
/// The last but one column: s + b1 + (b2 - a).
Lum32s outer(std::int64_t s, Lum32s b1, Lum32s a, Lum32s b2) { return inner(s, b1, a, b2); }
template <class T> T outer(std::int64_t s, T b1, T a, T b2) {
    const T added = static_cast<T>(s) + b1;
    const T more = b2 - a;
    return added + more;
}

/// The whole result by the four steps, rows one after the other.
template <class Out, class Value>
std::vector<Out> expectedTilted(const GuardedImage<Lum8u>& src, Out start, Value value) {
    const int width = src.size().width;
    const int columns = width + 2;
    std::vector<Out> result(2 * columns, start);
    for (int y = 0; y < src.size().height; ++y) {
        const auto s = [&](int x) { return static_cast<std::int64_t>(value(src.at(x, y))); };
        const std::vector<Out> a(result.end() - 2 * columns, result.end() - columns);
        const std::vector<Out> b(result.end() - columns, result.end());
        result.push_back(b[1]);
        for (int x = 1; x <= width - 1; ++x)
            result.push_back(inner(s(x - 1) + s(x), b[x - 1], a[x], b[x + 1]));
        result.push_back(outer(s(width - 1), b[width - 1], a[width], b[width + 1]));
        result.push_back(b[width]);
    }
    return result;
}

const auto pixel = [](int p) { return p; };
const auto square = [](int p) { return p * p; };

using Sums = testing::Types<Lum32s, Lum32f>;
MEMBER_TEST_SUITE(TiltedTypes, Sums);

template <class SumType, class SquareType> struct Member {
    using Sum = SumType;
    using Square = SquareType;
};
using Members = testing::Types<Member<Lum32s, Lum32s>, Member<Lum32s, Lum64f>, Member<Lum32f, Lum64f>>;
MEMBER_TEST_SUITE(TiltedSqrTypes, Members);

/// The exported call against the scalar kernel and the four steps.
template <class Sum> void expectTilted(int width, int height, Placement from, Placement to) {
    GuardedImage<Lum8u> src(width, height, from);
    GuardedImage<Sum> scalar(width + 2, height + 2, to);
    GuardedImage<Sum> actual(width + 2, height + 2, to);
    src.fillRandom(width);
    const auto start = static_cast<Sum>(2147483000);
    lum::kernels::tiltedIntegralScalar<Sum>({src.data(), src.step()}, {scalar.data(), scalar.step()},
                                            src.size(), start);
    ASSERT_EQ(lumStatusOk, run(src, actual, start));
    ASSERT_TRUE(sameBits(scalar.pixels(), actual.pixels())) << "width " << width;
    ASSERT_TRUE(sameBits(expectedTilted(src, start, pixel), actual.pixels())) << "width " << width;
    ASSERT_TRUE(actual.outsideUntouched());
}

template <class M> void expectTiltedSquares(int width, int height, Placement from, Placement to) {
    using Sum = typename M::Sum;
    using Square = typename M::Square;
    GuardedImage<Lum8u> src(width, height, from);
    GuardedImage<Sum> scalar(width + 2, height + 2, to);
    GuardedImage<Sum> actual(width + 2, height + 2, to);
    GuardedImage<Square> scalarSquares(width + 2, height + 2, to);
    GuardedImage<Square> actualSquares(width + 2, height + 2, to);
    src.fillRandom(width);
    const auto start = static_cast<Sum>(33554431);
    // In doubles this start value rounds away the low bits of every sum.
    const auto sqrStart = static_cast<Square>(sizeof(Square) == 8 ? 1e18 / 3 : 2147483000);
    lum::kernels::tiltedSqrIntegralScalar<Sum, Square>(
        {src.data(), src.step()}, {scalar.data(), scalar.step()},
        {scalarSquares.data(), scalarSquares.step()}, src.size(), start, sqrStart);
    ASSERT_EQ(lumStatusOk, run(src, actual, actualSquares, start, sqrStart));
    ASSERT_TRUE(sameBits(scalar.pixels(), actual.pixels())) << "width " << width;
    ASSERT_TRUE(sameBits(scalarSquares.pixels(), actualSquares.pixels())) << "squares, width " << width;
    ASSERT_TRUE(sameBits(expectedTilted(src, start, pixel), actual.pixels())) << "width " << width;
    ASSERT_TRUE(sameBits(expectedTilted(src, sqrStart, square), actualSquares.pixels())) << "width " << width;
    ASSERT_TRUE(actual.outsideUntouched());
    ASSERT_TRUE(actualSquares.outsideUntouched());
}

} // namespace

TEST(TiltedIntegral_8u32s_C1R, WidthOfOneTakesTheFirstAndTheLastTwoStepsOnly) {
    const Lum8u src[] = {10, 20};
    GuardedImage<Lum32s> dst(3, 4);
    EXPECT_STATUS(lumStatusOk, lumiTiltedIntegral_8u32s_C1R(src, 1, dst.data(), dst.step(), {1, 2}, 7));
    EXPECT_EQ((std::vector<Lum32s>{7, 7, 7,  //
                                   7, 7, 7,  //
                                   7, 17, 7, //
                                   17, 27, 17}),
              dst.pixels());
}

TEST(TiltedIntegral_8u32s_C1R, WidthOfTwoTakesTheMiddleStepOnce) {
    const Lum8u src[] = {1, 2, 4, 8};
    GuardedImage<Lum32s> dst(4, 4);
    EXPECT_STATUS(lumStatusOk, lumiTiltedIntegral_8u32s_C1R(src, 2, dst.data(), dst.step(), {2, 2}, 100));
    EXPECT_EQ((std::vector<Lum32s>{100, 100, 100, 100, //
                                   100, 100, 100, 100, //
                                   100, 103, 102, 100, //
                                   103, 114, 111, 102}),
              dst.pixels());
}

TEST(TiltedIntegral_8u32s_C1R, InsideItCountsTheConeThatOpensUpward) {
    GuardedImage<Lum8u> src(16, 6);
    GuardedImage<Lum32s> dst(18, 8);
    src.fillRandom(21);
    EXPECT_STATUS(lumStatusOk, run(src, dst, 0));
    // The tip's row holds the two pixels x - 1 and x, each row above one more on either side.
    Lum32s cone = 0;
    for (int y = 0; y < 6; ++y)
        for (int x = 8 - 1 - (5 - y); x <= 8 + (5 - y); ++x) cone += src.at(x, y);
    EXPECT_EQ(cone, dst.at(8, 7));
}

TEST(TiltedIntegral_8u32f_C1R, PixelsAreSummedExactlyBeforeTheyRound) {
    // 2 to the 24 takes an even sum whole; pixel by pixel both ones would be lost.
    const Lum8u src[] = {1, 1};
    GuardedImage<Lum32f> dst(4, 3);
    EXPECT_STATUS(lumStatusOk,
                  lumiTiltedIntegral_8u32f_C1R(src, 2, dst.data(), dst.step(), {2, 1}, 16777216.0F));
    EXPECT_EQ(16777218.0F, dst.at(1, 2));
    EXPECT_EQ(16777216.0F, dst.at(2, 2));
}

MEMBER_TEST(TiltedTypes, AgreesWithScalarAndTheFourStepsOnEveryWidth) {
    for (int width = 1; width <= 70; ++width) {
        expectTilted<TypeParam>(width, 4, {}, {});
        expectTilted<TypeParam>(width, 4, {.padding = 3, .guard = Guard::before},
                                {.padding = 4, .guard = Guard::before});
    }
    expectTilted<TypeParam>(1037, 5, {}, {});
}

MEMBER_TEST(TiltedTypes, AgreesWithScalarAndTheFourStepsOnEveryAlignment) {
    for (int offset = 0; offset < 16; ++offset)
        for (int padding : {0, 4, 8})
            expectTilted<TypeParam>(61, 4,
                                    {.padding = padding, .offset = 15 - offset, .guard = Guard::before},
                                    {.padding = padding, .offset = offset, .guard = Guard::before});
}

MEMBER_TEST(TiltedTypes, NothingIsReadAfterTheSourceOnAnyAlignment) {
    for (int width = 1; width <= 40; ++width)
        for (int offset : {0, 4, 8, 12})
            expectTilted<TypeParam>(width, 3, {}, {.offset = offset, .guard = Guard::before});
}

MEMBER_TEST(TiltedTypes, ChecksComeInTheirOrder) {
    GuardedImage<Lum8u> src(4, 2);
    GuardedImage<TypeParam> dst(6, 4, {.padding = 4});
    const TypeParam value = 7;
    const int step = dst.step();
    const Lum8u* noSource = nullptr;
    TypeParam* noResult = nullptr;
    EXPECT_REFUSED(lumStatusNullPointer, dst, tilted(noSource, 4, dst.data(), step, LumSize{0, 0}, value));
    EXPECT_STATUS(lumStatusNullPointer, tilted(src.data(), 4, noResult, step, LumSize{0, 0}, value));
    for (LumSize size : {LumSize{0, 2}, LumSize{4, 0}, LumSize{-1, 2}, LumSize{4, -1}})
        EXPECT_REFUSED(lumStatusSizeError, dst, tilted(src.data(), 0, dst.data(), 1, size, value));
    for (int shortStep : {3, 0, -4})
        EXPECT_REFUSED(lumStatusStepError, dst,
                       tilted(src.data(), shortStep, dst.data(), step + 1, src.size(), value));
    for (int shortStep : {23, 20, -24})
        EXPECT_REFUSED(lumStatusStepError, dst,
                       tilted(src.data(), 4, dst.data(), shortStep, src.size(), value));
    for (int odd : {25, 26, 27})
        EXPECT_REFUSED(lumStatusStepAlignmentError, dst,
                       tilted(src.data(), 4, dst.data(), odd, src.size(), value));
    EXPECT_REFUSED(lumStatusStepError, dst,
                   tilted(src.data(), 0x7FFFFFFF, dst.data(), 0x7FFFFFFC, LumSize{0x7FFFFFFF, 1}, value));
    EXPECT_STATUS(lumStatusOk, tilted(src.data(), 4, dst.data(), 24, src.size(), value));
}

MEMBER_TEST(TiltedSqrTypes, AgreesWithScalarAndTheFourStepsOnEveryWidth) {
    for (int width = 1; width <= 70; ++width) {
        expectTiltedSquares<TypeParam>(width, 4, {}, {});
        expectTiltedSquares<TypeParam>(width, 4, {.padding = 3, .guard = Guard::before},
                                       {.padding = 8, .guard = Guard::before});
    }
    expectTiltedSquares<TypeParam>(1037, 5, {}, {});
}

MEMBER_TEST(TiltedSqrTypes, AgreesWithScalarAndTheFourStepsOnEveryAlignment) {
    for (int offset = 0; offset < 16; ++offset)
        for (int padding : {0, 8})
            expectTiltedSquares<TypeParam>(
                61, 4, {.padding = padding, .offset = 15 - offset, .guard = Guard::before},
                {.padding = padding, .offset = offset, .guard = Guard::before});
}

MEMBER_TEST(TiltedSqrTypes, NothingIsReadAfterTheSourceOnAnyAlignment) {
    for (int width = 1; width <= 40; ++width)
        for (int offset : {0, 4, 8, 12})
            expectTiltedSquares<TypeParam>(width, 3, {}, {.offset = offset, .guard = Guard::before});
}

MEMBER_TEST(TiltedSqrTypes, ChecksComeInTheirOrder) {
    expectSqrIntegralChecks<typename TypeParam::Sum, typename TypeParam::Square>(
        [](auto... arguments) { return tiltedSqr(arguments...); }, 2);
}
