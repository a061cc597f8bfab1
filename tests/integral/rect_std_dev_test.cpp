#include <cmath>
#include <limits>

#include "integral/rect_std_dev_members.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace deviations;
using namespace support;
using lum::kernels::Corners;
using lum::kernels::Shape;

namespace {

constexpr int maximum = std::numeric_limits<Lum32s>::max();
constexpr int minimum = std::numeric_limits<Lum32s>::min();

MEMBER_TEST_SUITE(RectStdDevMembers, Members);

std::int64_t wrapped(std::int64_t value) { return static_cast<Lum32s>(static_cast<std::uint64_t>(value)); }

/// Result (i, j) straight from the definition of each member.
template <class M>
typename M::Out expectedDeviation(const IntegralImage<typename M::Sum>& src,
                                  const IntegralImage<typename M::Square>& sqr, LumRect rect, int i, int j,
                                  double scale) {
    constexpr bool upright = M::shape == Shape::upright;
    typename M::Sum p[4];
    typename M::Square q[4];
    for (int k = 0; k < 4; ++k) {
        const LumPoint place = corner<M::shape>(rect, k);
        p[k] = src.at(place.x + i, place.y + j);
        q[k] = sqr.at(place.x + i, place.y + j);
    }
    const double n = (upright ? 1.0 : 2.0) * rect.width * rect.height;
    const float nFloat = static_cast<float>(n);

    if constexpr (std::is_integral_v<typename M::Square>) {
        const auto total = [](const Lum32s* v) {
            return static_cast<float>(wrapped(std::int64_t{v[0]} - v[1] + v[2] - v[3]));
        };
        const float mean = total(p) / nFloat;
        const float meanSquare = total(q) / nFloat;
        const float meanTimesMean = mean * mean;
        float var = meanSquare - meanTimesMean;
        if (!upright)
            var = static_cast<float>(static_cast<double>(meanSquare) -
                                     static_cast<double>(mean) * static_cast<double>(mean));
        if (var < 0) var = 0;
        const double result = std::trunc(std::sqrt(static_cast<double>(var)) * scale + 0.5);
        return result >= maximum ? maximum : result <= minimum ? minimum : static_cast<Lum32s>(result);
    } else {
        double mean;
        double meanSquare;
        if constexpr (std::is_integral_v<typename M::Sum>) {
            const std::int64_t s = wrapped(std::int64_t{p[0]} - p[1] + p[2] - p[3]);
            const float meanAsFloat = static_cast<float>(s) / nFloat;
            mean = meanAsFloat;
            const double total = upright ? ((q[0] - q[1]) + q[2]) - q[3] : (q[0] + q[2]) - (q[1] + q[3]);
            meanSquare = total / n;
        } else if (upright) {
            const float first = p[0] - p[1];
            const float second = p[2] - p[3];
            const float s = first + second;
            const double reciprocal = 1.0 / n;
            mean = s * reciprocal;
            meanSquare = ((q[0] - q[1]) + (q[2] - q[3])) * reciprocal;
        } else {
            const double a = p[0];
            mean = (((a - p[1]) + p[2]) - p[3]) / n;
            meanSquare = (((q[0] - q[1]) + q[2]) - q[3]) / n;
        }
        const float var = static_cast<float>(meanSquare - mean * mean);
        return var > 0 ? std::sqrt(var) : 0.0F;
    }
}

/// Corners as the kernels take them.
template <Shape shape, class T> Corners<T> cornersOf(const IntegralImage<T>& integral, LumRect rect) {
    const auto seenFrom = [&](int k) {
        const LumPoint place = corner<shape>(rect, k);
        return lum::Image<const T>(integral.image.row(place.y) + integral.column + place.x, integral.step());
    };
    return {seenFrom(0), seenFrom(1), seenFrom(2), seenFrom(3)};
}

template <class M>
void scalarDeviation(const IntegralImage<typename M::Sum>& src, const IntegralImage<typename M::Square>& sqr,
                     GuardedImage<typename M::Out>& dst, LumRect rect, double scale) {
    const double pixels = (M::shape == Shape::upright ? 1.0 : 2.0) * rect.width * rect.height;
    const auto sums = cornersOf<M::shape>(src, rect);
    const auto squares = cornersOf<M::shape>(sqr, rect);
    if constexpr (std::is_integral_v<typename M::Square>)
        lum::kernels::scaledDeviationScalar<M::shape>(sums, squares, {dst.data(), dst.step()}, dst.size(),
                                                      pixels, scale);
    else
        lum::kernels::deviationScalar<M::shape, typename M::Sum>(sums, squares, {dst.data(), dst.step()},
                                                                 dst.size(), pixels);
}

/// The exported call against the scalar kernel and the definition.
template <class M>
void expectDeviations(const IntegralImage<typename M::Sum>& src, const IntegralImage<typename M::Square>& sqr,
                      LumSize size, LumRect rect, int scaleFactor, double scale, Placement to = {}) {
    GuardedImage<typename M::Out> scalar(size.width, size.height, to);
    GuardedImage<typename M::Out> actual(size.width, size.height, to);
    scalarDeviation<M>(src, sqr, scalar, rect, scale);
    ASSERT_EQ(lumStatusOk, run<M>(src, sqr, actual, rect, scaleFactor));
    ASSERT_TRUE(sameBits(scalar.pixels(), actual.pixels())) << "width " << size.width;
    ASSERT_TRUE(actual.outsideUntouched());
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const auto expected = expectedDeviation<M>(src, sqr, rect, x, y, scale);
            ASSERT_EQ(expected, actual.at(x, y)) << "at " << x << ", " << y << " of width " << size.width;
        }
}

/// Fills both integral images with what real sums look like: squares around pixels times the sum, so that the
/// variance is of either sign.
template <class Sum, class Square>
void fillPlausibly(IntegralImage<Sum>& src, IntegralImage<Square>& sqr, unsigned seed) {
    std::mt19937 engine(seed);
    src.image.fill([&](int x, int y, int) { return 37 * x * y + static_cast<int>(engine() % 2000); });
    sqr.image.fill(
        [&](int x, int y, int) { return 37 * 37 * x * y + static_cast<int>(engine() % 90000) * 0.5; });
}

/// Whether the integral image counts a pixel at one of its elements: all above and to the left of it, or in the
/// cone above it.
template <Shape shape> bool counts(LumPoint element, LumPoint pixel) {
    if (shape == Shape::upright) return pixel.x < element.x && pixel.y < element.y;
    const int above = element.y - 2 - pixel.y;
    return above >= 0 && pixel.x >= element.x - 1 - above && pixel.x <= element.x + above;
}

/// The deviation of one pixel's rectangle of 2 x 1 pixels that hold 0 and `high`.
template <class M> typename M::Out deviationOfTwoPixels(int high, int scaleFactor = 0) {
    using Sum = typename M::Sum;
    using Square = typename M::Square;
    const auto h = static_cast<Sum>(high);
    const auto square = static_cast<Square>(static_cast<double>(high) * high);
    const Sum src[] = {0, 0, 0, 0, 0, h};
    const Square sqr[] = {0, 0, 0, 0, 0, square};
    typename M::Out dst = 77;
    EXPECT_STATUS(
        lumStatusOk,
        M::call({src, 3 * sizeof(Sum), sqr, 3 * sizeof(Square), &dst, 4, {1, 1}, {0, 0, 2, 1}, scaleFactor}));
    return dst;
}

} // namespace

TEST(RectStdDev_32s32f_C1R, TwoPixelsOf0And6HaveADeviationOf3) {
    // Integral images of one row of the pixels 0, 6 and 0, and of their squares.
    const Lum32s src[] = {0, 0, 0, 0, //
                          0, 0, 6, 6};
    const Lum64f sqr[] = {0, 0, 0,  0, //
                          0, 0, 36, 36};
    Lum32f dst[2];
    EXPECT_STATUS(lumStatusOk, lumiRectStdDev_32s32f_C1R(src, sizeof(src) / 2, sqr, sizeof(sqr) / 2, dst,
                                                         sizeof(dst), {2, 1}, {0, 0, 2, 1}));
    EXPECT_EQ(3, dst[0]) << "36 / 2 - 3 x 3 = 9";
    EXPECT_EQ(3, dst[1]);
}

MEMBER_TEST(RectStdDevMembers, AgreesWithScalarAndTheDefinitionOnEveryWidth) {
    for (int width = 1; width <= 70; ++width) {
        const LumRect rect{width % 4, width % 3, 1 + width % 7, 1 + width % 5};
        const LumSize size{width, 3};
        IntegralImage<typename TypeParam::Sum> src(size, rect, width % 2 * 4);
        IntegralImage<typename TypeParam::Square> sqr(size, rect, width % 2 * 8);
        fillPlausibly(src, sqr, width);
        expectDeviations<TypeParam>(src, sqr, size, rect, 0, 1.0);
        expectDeviations<TypeParam>(src, sqr, size, rect, 2, 0.25, {.padding = 4, .guard = Guard::before});
    }
}

MEMBER_TEST(RectStdDevMembers, AgreesWithTheDefinitionOnArbitraryIntegrals) {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 engine(seed);
        const LumRect rect{static_cast<int>(engine() % 5), static_cast<int>(engine() % 5),
                           1 + static_cast<int>(engine() % 20), 1 + static_cast<int>(engine() % 20)};
        const LumSize size{33, 9};
        IntegralImage<typename TypeParam::Sum> src(size, rect);
        IntegralImage<typename TypeParam::Square> sqr(size, rect);
        src.image.fillRandom(seed);
        sqr.image.fillRandom(seed + 100);
        expectDeviations<TypeParam>(src, sqr, size, rect, -3, 8.0);
    }
}

MEMBER_TEST(RectStdDevMembers, CornersAreSummedInTheirOrder) {
    // Wide enough that no two corners share an element; each order of these corners gives another sum.
    const LumRect rect{8, 0, 8, 8};
    const LumSize size{7, 1};
    const double orders[][4] = {
        {2, 1, 1e17, 1e17}, {1e17, 1e17, 500, 100}, {1e17, 300, 100, 1e17}, {900, 1e17, 1e17, 200}};
    for (const auto& ofSums : orders)
        for (const auto& ofSquares : orders) {
            IntegralImage<typename TypeParam::Sum> src(size, rect);
            IntegralImage<typename TypeParam::Square> sqr(size, rect);
            const auto fill = [&](auto& integral, const double* values) {
                integral.image.fill([&](int x, int y, int) {
                    for (int k = 0; k < 4; ++k) {
                        const LumPoint place = corner<TypeParam::shape>(rect, k);
                        const int column = x - integral.column - place.x;
                        // Integers sum in any order: theirs need no large values.
                        const bool isLarge =
                            values[k] > 1000 && std::is_integral_v<decltype(integral.at(0, 0))>;
                        if (y == place.y && column >= 0 && column < size.width)
                            return isLarge ? 1e5 : values[k];
                    }
                    return 0.0;
                });
            };
            fill(src, ofSums);
            fill(sqr, ofSquares);
            expectDeviations<TypeParam>(src, sqr, size, rect, 0, 1.0);
        }
}

MEMBER_TEST(RectStdDevMembers, ReciprocalsRoundOnlyWhereThereIsOne) {
    // 49 x (1 / 49) is below 1, 49 / 49 is not.
    const LumSize size{6, 2};
    for (int side = 1; side <= 40; ++side) {
        const LumRect rect{side, 0, side, side};
        IntegralImage<typename TypeParam::Sum> src(size, rect);
        IntegralImage<typename TypeParam::Square> sqr(size, rect);
        if (TypeParam::shape == Shape::upright) {
            src.image.fill([&](int x, int y, int) { return 3 * (x - src.column) * y; });
            sqr.image.fill([&](int x, int y, int) { return 9 * (x - sqr.column) * y; });
        } else {
            src.image.fill([](int, int y, int) { return 3 * y * (y - 1); });
            sqr.image.fill([](int, int y, int) { return 9 * y * (y - 1); });
        }
        expectDeviations<TypeParam>(src, sqr, size, rect, 0, 1.0);
    }
}

MEMBER_TEST(RectStdDevMembers, RoundingOfEachStepReachesTheResult) {
    // Counts that are no powers of two, and a fine scale.
    for (LumRect rect : {LumRect{1, 0, 3, 1}, LumRect{2, 1, 5, 3}, LumRect{0, 0, 7, 5}}) {
        const LumSize size{33, 3};
        IntegralImage<typename TypeParam::Sum> src(size, rect);
        IntegralImage<typename TypeParam::Square> sqr(size, rect);
        std::mt19937 engine(3);
        src.image.fill([&](int, int, int) { return static_cast<int>(engine() % 1000); });
        sqr.image.fill([&](int, int, int) { return static_cast<int>(engine() % 1000000); });
        expectDeviations<TypeParam>(src, sqr, size, rect, -20, 1048576.0);
    }
}

MEMBER_TEST(RectStdDevMembers, IntegerSumsAreExactModulo32BitsInEveryLane) {
    if constexpr (std::is_integral_v<typename TypeParam::Sum>) {
        constexpr bool upright = TypeParam::shape == Shape::upright;
        const LumRect rect{2, 1, 5, 3};
        const LumSize size{33, 3};
        IntegralImage<Lum32s> src(size, rect);
        IntegralImage<typename TypeParam::Square> sqr(size, rect);
        // Two terms over the whole range, which cancel in each rectangle's corners, and a small one that stays.
        std::mt19937 engine(4);
        unsigned first[100];
        unsigned second[100];
        for (unsigned& term : first) term = engine();
        for (unsigned& term : second) term = engine();
        const auto element = [&](int x, int y, unsigned end) {
            const unsigned large =
                upright ? first[x] + second[y] : first[x + y] + second[x - y + src.image.size().height];
            return static_cast<Lum32s>(large + engine() % end);
        };
        src.image.fill([&](int x, int y, int) { return element(x, y, 1000); });
        sqr.image.fill([&](int x, int y, int) {
            if constexpr (std::is_integral_v<typename TypeParam::Square>)
                return element(x, y, 1000000);
            else
                return engine() % 1000000;
        });
        expectDeviations<TypeParam>(src, sqr, size, rect, -3, 8.0);
    }
}

MEMBER_TEST(RectStdDevMembers, QuotientsOfSquaresAreNoProductsWithAReciprocal) {
    if constexpr (std::is_floating_point_v<typename TypeParam::Square>) {
        const LumSize size{6, 2};
        for (int side = 1; side <= 40; ++side) {
            const LumRect rect{side, 0, side, side};
            IntegralImage<typename TypeParam::Sum> src(size, rect);
            IntegralImage<Lum64f> sqr(size, rect);
            // The variance is 2 to the -30 of the mean's square, so that the last bits of Q / N are in its upper half.
            const double square = 25 + std::ldexp(25.0, -30);
            if (TypeParam::shape == Shape::upright) {
                src.image.fill([&](int x, int y, int) { return 5 * (x - src.column) * y; });
                sqr.image.fill([&](int x, int y, int) { return square * (x - sqr.column) * y; });
            } else {
                src.image.fill([](int, int y, int) { return 5 * y * (y - 1); });
                sqr.image.fill([&](int, int y, int) { return square * y * (y - 1); });
            }
            expectDeviations<TypeParam>(src, sqr, size, rect, 0, 1.0);
        }
    }
}

MEMBER_TEST(RectStdDevMembers, NothingIsReadAfterTheLastCorner) {
    const LumRect rect{2, 1, 3, 4};
    for (int width = 1; width <= 20; ++width) {
        const LumSize size{width, 2};
        // The steps are the least that pass, and the last element of either image is that of the lowest corner.
        const LumPoint lowest = corner<TypeParam::shape>(rect, TypeParam::shape == Shape::upright ? 0 : 2);
        const int columns = TypeParam::shape == Shape::upright
                                ? rect.x + width + rect.width
                                : rect.width + width + rect.x + rect.y + rect.height - 1;
        const LumSize whole{columns, lowest.y + size.height};
        const int columnOfFirst = columns - lowest.x - width;
        IntegralImage<typename TypeParam::Sum> src(whole, columnOfFirst);
        IntegralImage<typename TypeParam::Square> sqr(whole, columnOfFirst);
        fillPlausibly(src, sqr, width);
        expectDeviations<TypeParam>(src, sqr, size, rect, 0, 1.0);
    }
}

MEMBER_TEST(RectStdDevMembers, StoresAtEveryAlignment) {
    const LumRect rect{1, 2, 5, 3};
    const LumSize size{31, 2};
    IntegralImage<typename TypeParam::Sum> src(size, rect);
    IntegralImage<typename TypeParam::Square> sqr(size, rect);
    fillPlausibly(src, sqr, 9);
    for (int offset = 0; offset < 16; ++offset)
        expectDeviations<TypeParam>(src, sqr, size, rect, 0, 1.0, {.offset = offset, .guard = Guard::before});
}

MEMBER_TEST(RectStdDevMembers, ConstantImageHasNoDeviation) {
    using Out = typename TypeParam::Out;
    // 8 and 16 pixels of 7 in every rectangle: both means are exact in every arithmetic.
    const LumRect rect{3, 0, 4, 2};
    const LumSize size{9, 2};
    IntegralImage<typename TypeParam::Sum> src(size, rect);
    IntegralImage<typename TypeParam::Square> sqr(size, rect);
    if (TypeParam::shape == Shape::upright) {
        src.image.fill([&](int x, int y, int) { return 7 * (x - src.column) * y; });
        sqr.image.fill([&](int x, int y, int) { return 49 * (x - sqr.column) * y; });
    } else {
        // The cones of a constant image without edges hold 2, 6, 12, 20 and so on pixels.
        src.image.fill([](int, int y, int) { return 7 * y * (y - 1); });
        sqr.image.fill([](int, int y, int) { return 49 * y * (y - 1); });
    }
    GuardedImage<Out> dst(9, 2);
    EXPECT_STATUS(lumStatusOk, run<TypeParam>(src, sqr, dst, rect));
    for (Out value : dst.pixels()) EXPECT_EQ(Out{0}, value);
}

MEMBER_TEST(RectStdDevMembers, NegativeVarianceIsZero) {
    using Out = typename TypeParam::Out;
    const LumRect rect{0, 0, 1, 1};
    const LumSize size{6, 1};
    IntegralImage<typename TypeParam::Sum> src(size, rect);
    IntegralImage<typename TypeParam::Square> sqr(size, rect);
    // A sum without squares.
    src.image.fill([](int x, int y, int) { return 5 * x * y * y; });
    GuardedImage<Out> dst(6, 1);
    dst.fill([](int, int, int) { return 9; });
    EXPECT_STATUS(lumStatusOk, run<TypeParam>(src, sqr, dst, rect));
    for (Out value : dst.pixels()) EXPECT_EQ(Out{0}, value);
}

MEMBER_TEST(RectStdDevMembers, NaNInTheSquaresGivesZeroAndInfinityStays) {
    if constexpr (std::is_floating_point_v<typename TypeParam::Square>) {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        for (int width : {1, 3, 4, 7}) {
            const LumRect rect{1, 0, 1, 1};
            IntegralImage<typename TypeParam::Sum> src({width, 1}, rect);
            IntegralImage<Lum64f> sqr({width, 1}, rect);
            const int row = corner<TypeParam::shape>(rect, 0).y;
            GuardedImage<Lum32f> dst(width, 1);
            for (double value : {std::numeric_limits<double>::quiet_NaN(), infinity}) {
                sqr.image.fill([&](int, int y, int) { return y == row ? value : 0.0; });
                EXPECT_STATUS(lumStatusOk, run<TypeParam>(src, sqr, dst, rect));
                // In an upright rectangle two corners share the row, and their difference is no number.
                const bool remains = value == infinity && TypeParam::shape == Shape::tilted;
                for (float result : dst.pixels())
                    EXPECT_EQ(remains ? std::numeric_limits<float>::infinity() : 0.0F, result);
            }
        }
    }
}

MEMBER_TEST(RectStdDevMembers, EqualsTheDeviationOfThePixels) {
    using Sum = typename TypeParam::Sum;
    using Square = typename TypeParam::Square;
    constexpr bool upright = TypeParam::shape == Shape::upright;
    GuardedImage<Lum8u> picture(60, 50);
    picture.fillRandom(11);
    const int extra = upright ? 1 : 2;
    GuardedImage<Sum> sum(60 + extra, 50 + extra);
    GuardedImage<Square> square(60 + extra, 50 + extra);
    const auto integrate = [&] {
        const auto call = [&](auto member) {
            return member(picture.data(), 60, sum.data(), sum.step(), square.data(), square.step(), {60, 50},
                          Sum{0}, Square{0});
        };
        if constexpr (std::is_integral_v<Square>)
            return call(upright ? lumiSqrIntegral_8u32s_C1R : lumiTiltedSqrIntegral_8u32s_C1R);
        else if constexpr (std::is_integral_v<Sum>)
            return call(upright ? lumiSqrIntegral_8u32s64f_C1R : lumiTiltedSqrIntegral_8u32s64f_C1R);
        else
            return call(upright ? lumiSqrIntegral_8u32f64f_C1R : lumiTiltedSqrIntegral_8u32f64f_C1R);
    };
    ASSERT_EQ(lumStatusOk, integrate());
    const LumRect rect{22, 2, 8, 5};
    const LumSize size{10, 3};
    GuardedImage<typename TypeParam::Out> dst(10, 3);
    ASSERT_EQ(lumStatusOk, TypeParam::call({.src = sum.data(),
                                            .srcStep = sum.step(),
                                            .sqr = square.data(),
                                            .sqrStep = square.step(),
                                            .dst = dst.data(),
                                            .dstStep = dst.step(),
                                            .size = size,
                                            .rect = rect}));
    for (int j = 0; j < size.height; ++j)
        for (int i = 0; i < size.width; ++i) {
            double s = 0;
            double q = 0;
            int count = 0;
            for (int y = 0; y < 50; ++y)
                for (int x = 0; x < 60; ++x) {
                    int times = 0;
                    for (int k = 0; k < 4; ++k) {
                        const LumPoint place = corner<TypeParam::shape>(rect, k);
                        const bool counted = counts<TypeParam::shape>({place.x + i, place.y + j}, {x, y});
                        times += counted ? (k % 2 == 0 ? 1 : -1) : 0;
                    }
                    const double value = picture.at(x, y);
                    s += times * value;
                    q += times * value * value;
                    count += times;
                }
            ASSERT_EQ((upright ? 1 : 2) * rect.width * rect.height, count);
            const double deviation = std::sqrt(q / count - (s / count) * (s / count));
            EXPECT_NEAR(deviation, dst.at(i, j), std::is_integral_v<typename TypeParam::Out> ? 0.51 : 1e-3);
        }
}

TEST(RectStdDev_32s_C1RSfs, VarianceThatRoundsBelowZeroGivesNoDeviation) {
    int negative = 0;
    for (int width = 1; width <= 300; ++width) {
        const Lum32s sum = 255 * width;
        const Lum32s sumOfSquares = 65025 * width;
        const auto pixels = static_cast<float>(width);
        const float mean = static_cast<float>(sum) / pixels;
        const float meanTimesMean = mean * mean;
        if (!(static_cast<float>(sumOfSquares) / pixels < meanTimesMean)) continue;
        ++negative;
        std::vector<Lum32s> sums(2 * (width + 2));
        std::vector<Lum32s> squares(2 * (width + 2));
        sums[2 * width + 2] = sum;
        squares[2 * width + 2] = sumOfSquares;
        Lum32s dst = 77;
        EXPECT_STATUS(lumStatusOk, Scaled::call({.src = sums.data(),
                                                 .srcStep = 4 * (width + 2),
                                                 .sqr = squares.data(),
                                                 .sqrStep = 4 * (width + 2),
                                                 .dst = &dst,
                                                 .dstStep = 4,
                                                 .size = {1, 1},
                                                 .rect = {0, 0, width, 1},
                                                 .scaleFactor = -10}));
        EXPECT_EQ(0, dst);
    }
    EXPECT_GT(negative, 0);
}

TEST(RectStdDev_32s_C1RSfs, ScaleFactorIsAPowerOfTwoAndHalvesRoundUp) {
    // Deviation of 0 and 10 is 5.
    EXPECT_EQ(5, deviationOfTwoPixels<Scaled>(10));
    EXPECT_EQ(10, deviationOfTwoPixels<Scaled>(10, -1));
    EXPECT_EQ(3, deviationOfTwoPixels<Scaled>(10, 1));
    EXPECT_EQ(1, deviationOfTwoPixels<Scaled>(10, 2));
    EXPECT_EQ(1, deviationOfTwoPixels<Scaled>(8, 3));
    EXPECT_EQ(0, deviationOfTwoPixels<Scaled>(6, 3));
}

TEST(RectStdDev_32s_C1RSfs, ShiftIsTakenModulo32) {
    EXPECT_EQ(5, deviationOfTwoPixels<Scaled>(10, 32));
    EXPECT_EQ(3, deviationOfTwoPixels<Scaled>(10, 33));
    EXPECT_EQ(10, deviationOfTwoPixels<Scaled>(10, -33));
    EXPECT_EQ(5, deviationOfTwoPixels<Scaled>(10, -64));
    EXPECT_EQ(5, deviationOfTwoPixels<Scaled>(10, minimum));
    EXPECT_EQ(0, deviationOfTwoPixels<Scaled>(10, maximum));
}

TEST(RectStdDev_32s_C1RSfs, ResultsOutsideTheRangeSaturate) {
    EXPECT_EQ(maximum, deviationOfTwoPixels<Scaled>(10, -30));
    EXPECT_EQ(1 << 30, deviationOfTwoPixels<Scaled>(2, -30));
    EXPECT_EQ(maximum, deviationOfTwoPixels<Scaled>(4, -30));
}

TEST(RectStdDev_32s_C1RSfs, ResultsSaturateInEveryLane) {
    const LumRect rect{0, 0, 2, 1};
    const LumSize size{9, 1};
    IntegralImage<Lum32s> src(size, rect);
    IntegralImage<Lum32s> sqr(size, rect);
    // Sums of 10 and squares of 2000 over two pixels: the deviation is the root of 975.
    src.image.fill([](int x, int y, int) { return 5 * x * y; });
    sqr.image.fill([](int x, int y, int) { return 1000 * x * y; });
    GuardedImage<Lum32s> dst(9, 1);
    for (int factor : {-30, -31}) {
        EXPECT_STATUS(lumStatusOk, run<Scaled>(src, sqr, dst, rect, factor));
        for (Lum32s result : dst.pixels()) EXPECT_EQ(factor == -30 ? maximum : minimum, result);
    }
}

TEST(RectStdDev_32s_C1RSfs, ShiftBy31GivesANegativeScale) {
    EXPECT_EQ(minimum, deviationOfTwoPixels<Scaled>(10, -31));
    EXPECT_EQ(0, deviationOfTwoPixels<Scaled>(0, -31));
}

TEST(RectStdDev_32s_C1RSfs, SumsWrap) {
    // S = (minimum + 4) - minimum + maximum - minimum is 2 to the 32 and 3.
    const Lum32s src[] = {maximum, minimum, minimum, minimum + 4};
    const Lum32s sqr[] = {0, 0, 0, 29};
    Lum32s dst = 0;
    EXPECT_STATUS(lumStatusOk, Scaled::call({src, 8, sqr, 8, &dst, 4, {1, 1}, {0, 0, 1, 1}}));
    EXPECT_EQ(4, dst);
}
