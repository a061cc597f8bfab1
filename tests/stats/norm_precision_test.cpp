// What a norm rounds and where, what it must not round or wrap, and what NaN does to it.
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "norm_members.h"
#include "support/guarded_image.h"
#include "support/status_checks.h"

using namespace support;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr double wideInfinity = std::numeric_limits<double>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr std::uint64_t bitsOfZeroOverZero = 0xFFF8000000000000;

std::uint64_t bitsOf(double value) { return std::bit_cast<std::uint64_t>(value); }

template <NormKind kind> using OfBytes = NormMembers<kind, Lum8u>;
template <NormKind kind> using OfWords = NormMembers<kind, Lum16u>;
template <NormKind kind> using OfFloats = NormMembers<kind, Lum32f>;

/// Rows of the given values, all selected.
template <class T> struct Rows {
    int width;
    int height;
    std::vector<T> values;
    std::vector<Lum8u> mask;

    Rows(int columns, std::vector<T> elements)
        : width(columns),
          height(static_cast<int>(elements.size()) / columns),
          values(std::move(elements)),
          mask(values.size(), 1) {}
    ConstImage<T> view() const { return {values.data(), static_cast<int>(width * sizeof(T))}; }
    ConstImage<Lum8u> selected() const { return {mask.data(), width}; }
    LumSize size() const { return {width, height}; }
};

template <class Members, class T> double norm(const Rows<T>& rows) {
    const Norm result = normOf<Members>(rows.view(), rows.selected(), rows.size());
    EXPECT_STATUS(lumStatusOk, result.status);
    return result.value;
}

template <class Members, class T> double difference(const Rows<T>& a, const Rows<T>& b) {
    const Norm result = normOfDifference<Members>(a.view(), b.view(), a.selected(), a.size());
    EXPECT_STATUS(lumStatusOk, result.status);
    return result.value;
}

template <class Members, class T> Norm relative(const Rows<T>& a, const Rows<T>& b) {
    return relativeNorm<Members>(a.view(), b.view(), a.selected(), a.size());
}

} // namespace

TEST(NormsOfIntegers, RowsLongerThanA32BitLaneHoldsAreExact) {
    // Odd, and several times as long as the largest values take to fill a lane.
    constexpr std::uint64_t width = 1100003;
    const Rows<Lum8u> bytes(width, std::vector<Lum8u>(width, 255));
    const Rows<Lum8u> noBytes(width, std::vector<Lum8u>(width, 0));
    EXPECT_EQ(static_cast<double>(width * 255), norm<OfBytes<NormKind::l1>>(bytes));
    EXPECT_EQ(std::sqrt(static_cast<double>(width * 65025)), norm<OfBytes<NormKind::l2>>(bytes));
    EXPECT_EQ(std::sqrt(static_cast<double>(width * 65025)),
              difference<OfBytes<NormKind::l2>>(noBytes, bytes));
    EXPECT_EQ(1.0, relative<OfBytes<NormKind::l2>>(noBytes, bytes).value);
    EXPECT_EQ(1.0, relative<OfBytes<NormKind::l1>>(noBytes, bytes).value);

    const Rows<Lum16u> words(width, std::vector<Lum16u>(width, 65535));
    const Rows<Lum16u> noWords(width, std::vector<Lum16u>(width, 0));
    EXPECT_EQ(static_cast<double>(width * 65535), norm<OfWords<NormKind::l1>>(words));
    EXPECT_EQ(std::sqrt(static_cast<double>(width * 4294836225)), norm<OfWords<NormKind::l2>>(words));
    EXPECT_EQ(std::sqrt(static_cast<double>(width * 4294836225)),
              difference<OfWords<NormKind::l2>>(noWords, words));
    EXPECT_EQ(1.0, relative<OfWords<NormKind::l2>>(noWords, words).value);
    EXPECT_EQ(1.0, relative<OfWords<NormKind::l1>>(noWords, words).value);
}

TEST(NormsOfIntegers, TallColumnsOfNarrowRowsAreExact) {
    // Several times as many as the largest values take to fill a 32-bit lane.
    constexpr std::uint64_t rows = 20000;
    const Rows<Lum8u> bytes(63, std::vector<Lum8u>(63 * rows, 255));
    const Rows<Lum8u> noBytes(63, std::vector<Lum8u>(63 * rows, 0));
    EXPECT_EQ(static_cast<double>(63 * rows * 255), norm<OfBytes<NormKind::l1>>(bytes));
    EXPECT_EQ(std::sqrt(static_cast<double>(63 * rows * 65025)), norm<OfBytes<NormKind::l2>>(bytes));
    EXPECT_EQ(1.0, relative<OfBytes<NormKind::l2>>(noBytes, bytes).value);

    const Rows<Lum16u> words(31, std::vector<Lum16u>(31 * rows, 65535));
    const Rows<Lum16u> noWords(31, std::vector<Lum16u>(31 * rows, 0));
    EXPECT_EQ(static_cast<double>(31 * rows * 65535), norm<OfWords<NormKind::l1>>(words));
    EXPECT_EQ(std::sqrt(static_cast<double>(31 * rows * 4294836225)), norm<OfWords<NormKind::l2>>(words));
    EXPECT_EQ(1.0, relative<OfWords<NormKind::l2>>(noWords, words).value);
}

TEST(NormsOfIntegers, SumsBeyondTheMantissaRoundOnce) {
    // More than 2^53: the exact sum is odd and lies between two doubles.
    constexpr int width = 2048;
    constexpr int height = 1100;
    std::vector<Lum16u> values(width * height, 65535);
    values[777] = 2;
    values[778] = 1;
    std::uint64_t squares = 0;
    for (std::uint64_t value : values) squares += value * value;
    ASSERT_GT(squares, 1ULL << 53);
    ASSERT_NE(0U, squares & 1);
    EXPECT_EQ(std::sqrt(static_cast<double>(squares)),
              norm<OfWords<NormKind::l2>>(Rows<Lum16u>(width, values)));
}

TEST(NormsOfIntegers, EverySquareOfAWordIsExact) {
    for (int width : {1, 19})
        for (unsigned value : {0U, 1U, 255U, 256U, 0x7FFFU, 0x8000U, 0x8001U, 0xFF00U, 0xFFFFU}) {
            std::vector<Lum16u> values(width, 0);
            values[width / 2] = static_cast<Lum16u>(value);
            EXPECT_EQ(static_cast<double>(value), norm<OfWords<NormKind::l2>>(Rows<Lum16u>(width, values)));
            EXPECT_EQ(static_cast<double>(value), norm<OfWords<NormKind::inf>>(Rows<Lum16u>(width, values)));
        }
}

TEST(NormsOfFloats, RowsAreSummedInSinglePrecision) {
    // 2^24 + 1 is no single; in double three such rows would not round back to three times 2^24.
    for (int width : {2, 4, 8, 23}) {
        std::vector<float> values(3 * width, 0.0F);
        for (int y = 0; y < 3; ++y) {
            values[y * width] = 16777216.0F;
            values[y * width + width - 1] = -1.0F;
        }
        EXPECT_EQ(50331648.0, norm<OfFloats<NormKind::l1>>(Rows<float>(width, values))) << width;
    }
}

TEST(NormsOfFloats, RowsAreAddedInDoublePrecision) {
    const Rows<float> rows(1, {16777216.0F, 1.0F, -1.0F});
    EXPECT_EQ(16777218.0, norm<OfFloats<NormKind::l1>>(rows));
}

TEST(NormsOfFloats, TotalIsRoundedToSingleBeforeTheRoot) {
    // Squares of 2^24 and 1: the sum of 25 bits loses its last one.
    const Rows<float> rows(1, {4096.0F, 1.0F});
    EXPECT_EQ(4096.0, norm<OfFloats<NormKind::l2>>(rows));
    // The root itself is not rounded to single.
    const Rows<float> two(1, {1.0F, 1.0F});
    EXPECT_EQ(std::sqrt(2.0), norm<OfFloats<NormKind::l2>>(two));
}

TEST(NormsOfFloats, RelativeNormDividesTotalsRoundedToSingle) {
    const Rows<float> a(1, {16777216.0F + 3.0F - 3.0F, 4.0F, 1.0F});
    const Rows<float> b(1, {0.0F, 3.0F, 0.0F});
    // 2^24 + 2, as a single, over 3.
    EXPECT_EQ(16777218.0 / 3.0, relative<OfFloats<NormKind::l1>>(a, b).value);
    // 2^48 + 2 becomes 2^48.
    EXPECT_EQ(std::sqrt(281474976710656.0 / 9.0), relative<OfFloats<NormKind::l2>>(a, b).value);
}

TEST(NormsOfFloats, RelativeNormIsTheRatioOfTheOtherTwo) {
    GuardedImage<Lum32f> a(211, 9);
    GuardedImage<Lum32f> b(211, 9);
    GuardedImage<Lum8u> mask(211, 9);
    a.fillRandom(5);
    b.fillRandom(6);
    mask.fill([](int x, int y, int) { return (x * y) % 3; });
    const auto expectRatio = [&]<class Members>(Members) {
        const ConstImage<float> first{a.data(), a.step()};
        const ConstImage<float> second{b.data(), b.step()};
        const ConstImage<Lum8u> selected{mask.data(), mask.step()};
        EXPECT_EQ(normOfDifference<Members>(first, second, selected, a.size()).value /
                      normOf<Members>(second, selected, a.size()).value,
                  relativeNorm<Members>(first, second, selected, a.size()).value);
    };
    expectRatio(OfFloats<NormKind::inf>{});
    expectRatio(OfFloats<NormKind::l1>{});
}

TEST(NormsOfFloats, RandomSumsAreNearTheSumInDouble) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    for (int width : {7, 64, 1001}) {
        GuardedImage<Lum32f> a(width, 20);
        GuardedImage<Lum8u> mask(width, 20);
        a.fillRandom(seed);
        mask.fill([](int x, int, int) { return x % 5; });
        double sum = 0;
        double squares = 0;
        for (int y = 0; y < 20; ++y)
            for (int x = 0; x < width; ++x)
                if (mask.at(x, y) != 0) {
                    sum += std::fabs(static_cast<double>(a.at(x, y)));
                    squares += static_cast<double>(a.at(x, y)) * a.at(x, y);
                }
        const ConstImage<float> view{a.data(), a.step()};
        const ConstImage<Lum8u> selected{mask.data(), mask.step()};
        const double l1 = normOf<OfFloats<NormKind::l1>>(view, selected, a.size()).value;
        EXPECT_NEAR(sum, l1, 1e-5 * sum);
        EXPECT_EQ(static_cast<double>(static_cast<float>(l1)), l1);
        EXPECT_NEAR(std::sqrt(squares), normOf<OfFloats<NormKind::l2>>(view, selected, a.size()).value,
                    1e-5 * std::sqrt(squares));
    }
}

TEST(NormsOfFloats, DifferenceIsRoundedToSingle) {
    const Rows<float> a(1, {16777216.0F});
    const Rows<float> b(1, {-1.0F});
    EXPECT_EQ(16777216.0, difference<OfFloats<NormKind::inf>>(a, b));
    EXPECT_EQ(16777216.0, difference<OfFloats<NormKind::l1>>(a, b));
    EXPECT_EQ(16777216.0, difference<OfFloats<NormKind::l2>>(a, b));
}

TEST(NormsOfFloats, TotalBeyondSingleIsInfinity) {
    const Rows<float> rows(1, {3e38F, -3e38F});
    EXPECT_EQ(wideInfinity, norm<OfFloats<NormKind::l1>>(rows));
    EXPECT_EQ(static_cast<double>(3e38F), norm<OfFloats<NormKind::inf>>(rows));
    EXPECT_EQ(wideInfinity, norm<OfFloats<NormKind::l2>>(rows));
}

TEST(NormsOfFloats, DenominatorWhoseSquaresVanishIsZero) {
    for (int width : {1, 20}) {
        const Rows<float> a(width, std::vector<float>(width, 1.0F));
        const Rows<float> b(width, std::vector<float>(width, 1e-30F));
        const Norm squares = relative<OfFloats<NormKind::l2>>(a, b);
        EXPECT_STATUS(lumStatusZeroDenominator, squares.status);
        EXPECT_EQ(wideInfinity, squares.value);
        EXPECT_STATUS(lumStatusOk, relative<OfFloats<NormKind::l1>>(a, b).status);
    }
}

TEST(NormsOfFloats, DenormalDenominatorIsNotZero) {
    const Rows<float> a(2, {1.0F, 0.0F});
    const Rows<float> b(2, {0.0F, std::numeric_limits<float>::denorm_min()});
    const Norm norm = relative<OfFloats<NormKind::inf>>(a, b);
    EXPECT_STATUS(lumStatusOk, norm.status);
    EXPECT_EQ(1.0 / static_cast<double>(std::numeric_limits<float>::denorm_min()), norm.value);
}

TEST(NormsOfFloats, NaNMakesASumNaNAndIsNeverTheLargest) {
    for (int width : {1, 6, 50})
        for (int place : {0, width - 1}) {
            std::vector<float> values(width, -2.0F);
            values[place] = notANumber;
            const Rows<float> rows(width, values);
            EXPECT_TRUE(std::isnan(norm<OfFloats<NormKind::l1>>(rows)));
            EXPECT_TRUE(std::isnan(norm<OfFloats<NormKind::l2>>(rows)));
            EXPECT_EQ(width == 1 ? 0.0 : 2.0, norm<OfFloats<NormKind::inf>>(rows));
        }
}

TEST(NormsOfFloats, NaNAfterTheLargestDoesNotHideIt) {
    // one element at a time; the same lane, one and two vectors on
    for (auto [width, after] : {std::pair{3, 1}, std::pair{50, 4}, std::pair{50, 8}})
        for (int place = 0; place + after < width; ++place) {
            std::vector<float> values(width, -2.0F);
            values[place] = -5.0F;
            values[place + after] = notANumber;
            const Rows<float> rows(width, values);
            const Rows<float> zeros(width, std::vector<float>(width, 0.0F));
            EXPECT_EQ(5.0, norm<OfFloats<NormKind::inf>>(rows)) << "place " << place;
            EXPECT_EQ(5.0, (difference<OfFloats<NormKind::inf>>(rows, zeros))) << "place " << place;
        }
}

TEST(NormsOfFloats, NaNOverZeroGivesTheNaNAndTheWarning) {
    for (int width : {1, 50}) {
        const Rows<float> a(width, std::vector<float>(width, notANumber));
        const Rows<float> b(width, std::vector<float>(width, -0.0F));
        for (const Norm& norm :
             {relative<OfFloats<NormKind::l1>>(a, b), relative<OfFloats<NormKind::l2>>(a, b)}) {
            EXPECT_STATUS(lumStatusZeroDenominator, norm.status);
            EXPECT_EQ(bitsOfZeroOverZero, bitsOf(norm.value));
        }
    }
}

TEST(NormsOfFloats, NaNOverSomethingIsNaNAndOk) {
    const Rows<float> a(5, {1, 2, notANumber, 4, 5});
    const Rows<float> b(5, {1, 2, 3, 4, 5});
    const Norm norm = relative<OfFloats<NormKind::l1>>(a, b);
    EXPECT_STATUS(lumStatusOk, norm.status);
    EXPECT_TRUE(std::isnan(norm.value));
    // A NaN denominator is not 0 either.
    EXPECT_STATUS(lumStatusOk, relative<OfFloats<NormKind::l1>>(b, a).status);
}

TEST(NormsOfFloats, EqualInfinitiesHaveADifferenceOfNaN) {
    const Rows<float> a(5, {1, infinity, 3, 4, -infinity});
    EXPECT_TRUE(std::isnan(difference<OfFloats<NormKind::l1>>(a, a)));
    EXPECT_EQ(0.0, difference<OfFloats<NormKind::inf>>(a, a));
    EXPECT_EQ(wideInfinity, norm<OfFloats<NormKind::inf>>(a));
}

TEST(NormsOfFloats, NegativeZeroHasTheNormZero) {
    const Rows<float> zeros(6, std::vector<float>(6, -0.0F));
    EXPECT_EQ(0U, bitsOf(norm<OfFloats<NormKind::inf>>(zeros)));
    EXPECT_EQ(0U, bitsOf(norm<OfFloats<NormKind::l1>>(zeros)));
    EXPECT_EQ(0U, bitsOf(norm<OfFloats<NormKind::l2>>(zeros)));
}
