#include <cmath>
#include <limits>

#include "kernels/stats/mean.h"
#include "stats/mean_members.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;
using namespace means;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/// Integer deviations to the bit; the second pass of floats adds up rounded squares.
template <class T> void expectDeviation(Lum64f expected, Lum64f actual) {
    if constexpr (std::is_integral_v<T>)
        ASSERT_EQ(expected, actual);
    else
        ASSERT_NEAR(expected, actual, expected * 1e-6);
}

/// All members over a scene against the definitions.
template <class MemberOf> void expectDefinitions(Scene<MemberOf>& scene) {
    using T = typename MemberOf::T;
    for (int coi = 1; coi <= MemberOf::channels; ++coi) {
        scene.coi = coi;
        const Expected all = expectedOf(scene, false);
        const Expected selected = expectedOf(scene, true);
        SCOPED_TRACE(testing::Message() << "width " << scene.src.size().width << ", channel " << coi);
        ASSERT_EQ(lumStatusOk, MemberOf::mean(scene.arguments()));
        ASSERT_EQ(selected.mean, scene.mean);
        scene.mean = scene.stdDev = -1;
        ASSERT_EQ(lumStatusOk, MemberOf::meanStdDevMasked(scene.arguments()));
        ASSERT_EQ(selected.mean, scene.mean);
        ASSERT_NO_FATAL_FAILURE(expectDeviation<T>(selected.stdDev, scene.stdDev));
        ASSERT_EQ(lumStatusOk, MemberOf::meanStdDev(scene.arguments()));
        ASSERT_EQ(all.mean, scene.mean);
        ASSERT_NO_FATAL_FAILURE(expectDeviation<T>(all.stdDev, scene.stdDev));
    }
    ASSERT_TRUE(scene.src.untouched() && scene.mask.untouched());
}

MEMBER_TEST_SUITE(Means, Members);

} // namespace

TEST(Mean, WorkedExample) {
    const Lum8u src[] = {1, 3, 5, 7};
    const Lum8u mask[] = {1, 255, 0, 0};
    const LumSize size{4, 1};
    double mean = 0;
    double stdDev = 0;
    EXPECT_STATUS(lumStatusOk, lumiMean_8u_C1MR(src, 4, mask, 4, size, &mean));
    EXPECT_EQ(2, mean); // of 1 and 3
    EXPECT_STATUS(lumStatusOk, lumiMean_StdDev_8u_C1R(src, 4, size, &mean, &stdDev));
    EXPECT_EQ(4, mean);
    EXPECT_EQ(std::sqrt(5.0), stdDev); // the squares' mean of 21 less 16
}

MEMBER_TEST(Means, DefinitionsHoldOnEveryWidth) {
    using T = typename TypeParam::T;
    for (Guard guard : {Guard::after, Guard::before})
        for (int width = 1; width <= 70; ++width) {
            Scene<TypeParam> scene(width, 3, {.padding = sizeof(T), .guard = guard});
            scene.fillRandom(width);
            ASSERT_NO_FATAL_FAILURE(expectDefinitions(scene));
        }
}

MEMBER_TEST(Means, DefinitionsHoldOnEveryAlignment) {
    for (int offset = 0; offset < 16; ++offset)
        for (Guard guard : {Guard::after, Guard::before})
            for (int width : {5, 16, 37}) {
                Scene<TypeParam> scene(width, 2, {.offset = offset, .guard = guard});
                scene.fillRandom(width);
                ASSERT_NO_FATAL_FAILURE(expectDefinitions(scene));
            }
}

MEMBER_TEST(Means, RandomScenesFollowTheDefinitions) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int round = 0; round < 40; ++round) {
        Scene<TypeParam> scene(1 + engine() % 500, 1 + engine() % 20,
                               {.padding = 4 * static_cast<int>(engine() % 9)});
        scene.fillRandom(engine());
        ASSERT_NO_FATAL_FAILURE(expectDefinitions(scene));
    }
}

MEMBER_TEST(Means, WideAndTallRegionsOfExtremeValuesAddUpExactly) {
    using T = typename TypeParam::T;
    constexpr T highest = std::is_integral_v<T> ? std::numeric_limits<T>::max() : static_cast<T>(16);
    for (LumSize size :
         {LumSize{4079, 2}, LumSize{4080, 2}, LumSize{4081, 2}, LumSize{4097, 2}, LumSize{9000, 2},
          LumSize{4, 1111}, LumSize{8, 1111}, LumSize{15, 1111}, LumSize{31, 1111}, LumSize{63, 1111}})
        for (T value : {T{0}, highest})
            for (int selected : {0, 1, 255}) {
                Scene<TypeParam> scene(size.width, size.height);
                scene.src.fill([&](int, int, int) { return value; });
                scene.mask.fill(
                    [&](int x, int y, int) { return (x + y) % 300 == 299 ? 255 - selected : selected; });
                ASSERT_NO_FATAL_FAILURE(expectDefinitions(scene));
            }
}

MEMBER_TEST(Means, VectorAgreesWithScalarKernel) {
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    const auto expectSame = [](const auto& scalar, const auto& vector) {
        EXPECT_EQ(scalar.count, vector.count);
        EXPECT_EQ(scalar.sum, vector.sum);
        EXPECT_EQ(scalar.squares, vector.squares);
    };
    std::vector<int> widths{127, 128, 129, 201};
    for (int width = 1; width <= 70; ++width) widths.push_back(width);
    for (int width : widths)
        for (int coi = 1; coi <= channels; ++coi) {
            // four rows and two: narrow rows of floats are added up four at a time
            Scene<TypeParam> scene(width, 6);
            scene.fillRandom(width);
            const lum::kernels::Pixels<T, channels> src{{scene.src.data(), scene.src.step()}, coi - 1};
            const lum::Image<const Lum8u> mask(scene.mask.data(), scene.mask.step());
            const LumSize size = scene.src.size();
            SCOPED_TRACE(testing::Message() << "width " << width << ", channel " << coi);
            using Sums = lum::kernels::SumsOf<T, channels>;
            expectSame(Sums::scalar(src, size), Sums::vectors(src, size));
            const auto scalar = Sums::maskedScalar(src, mask, size);
            expectSame(scalar, Sums::masked(src, mask, size));
            const auto sumAlone = Sums::maskedWithoutSquares(src, mask, size);
            EXPECT_EQ(scalar.count, sumAlone.count);
            EXPECT_EQ(scalar.sum, sumAlone.sum);
            EXPECT_EQ(0, sumAlone.squares);
            if constexpr (std::is_same_v<T, Lum32f>) {
                using Deviations = lum::kernels::DeviationsOf<channels>;
                EXPECT_EQ(Deviations::scalar(src, size, 100), Deviations::vectors(src, size, 100));
                EXPECT_EQ(Deviations::maskedScalar(src, mask, size, 100),
                          Deviations::masked(src, mask, size, 100));
            }
        }
}

MEMBER_TEST(Means, MaskOfZerosGivesZeroAndNoWarning) {
    Scene<TypeParam> scene(45, 3);
    scene.fillRandom(1);
    scene.mask.fill([](int, int, int) { return 0; });
    EXPECT_STATUS(lumStatusOk, TypeParam::mean(scene.arguments()));
    EXPECT_EQ(0.0, scene.mean);
    scene.mean = -1;
    EXPECT_STATUS(lumStatusOk, TypeParam::meanStdDevMasked(scene.arguments()));
    EXPECT_EQ(0.0, scene.mean);
    EXPECT_EQ(0.0, scene.stdDev);
    EXPECT_FALSE(std::signbit(scene.mean) || std::signbit(scene.stdDev));
}

MEMBER_TEST(Means, OutputsAreOptional) {
    Scene<TypeParam> scene(45, 3);
    scene.fillRandom(2);
    for (bool masked : {false, true}) {
        const auto call = [&](Lum64f* mean, Lum64f* stdDev) {
            auto arguments = scene.arguments();
            arguments.mean = mean;
            arguments.stdDev = stdDev;
            return masked ? TypeParam::meanStdDevMasked(arguments) : TypeParam::meanStdDev(arguments);
        };
        Lum64f mean = 0;
        Lum64f stdDev = 0;
        EXPECT_STATUS(lumStatusOk, call(&mean, &stdDev));
        EXPECT_EQ(expectedOf(scene, masked).mean, mean);
        Lum64f meanAlone = 0;
        Lum64f stdDevAlone = 0;
        EXPECT_STATUS(lumStatusOk, call(&meanAlone, nullptr));
        EXPECT_STATUS(lumStatusOk, call(nullptr, &stdDevAlone));
        EXPECT_EQ(mean, meanAlone);
        EXPECT_EQ(stdDev, stdDevAlone);
        EXPECT_STATUS(lumStatusOk, call(nullptr, nullptr));
    }
}

MEMBER_TEST(Means, MaskOfOnesGivesTheUnmaskedResult) {
    Scene<TypeParam> scene(67, 5);
    scene.fillRandom(3);
    scene.mask.fill([](int x, int, int) { return 1 + x % 255; });
    EXPECT_STATUS(lumStatusOk, TypeParam::meanStdDev(scene.arguments()));
    const Lum64f mean = scene.mean;
    const Lum64f stdDev = scene.stdDev;
    EXPECT_STATUS(lumStatusOk, TypeParam::meanStdDevMasked(scene.arguments()));
    EXPECT_EQ(mean, scene.mean);
    EXPECT_EQ(stdDev, scene.stdDev);
}

TEST(Mean_8u_C1MR, SumIsExactBelowAtAndBeyondTheBoundOf32BitLanes) {
    // 0x7FFFFF, 0x800000 and more pixels
    for (LumSize size : {LumSize{178481, 47}, LumSize{4096, 2048}, LumSize{4096, 2049}}) {
        GuardedImage<Lum8u> image(size.width, size.height);
        image.fill([](int, int, int) { return 255; });
        image.at(size.width - 1, size.height - 1) = 1;
        const Lum64f pixels = static_cast<Lum64f>(size.width) * size.height;
        Lum64f mean = 0;
        EXPECT_STATUS(lumStatusOk,
                      lumiMean_8u_C1MR(image.data(), image.step(), image.data(), image.step(), size, &mean));
        EXPECT_EQ((255 * pixels - 254) / pixels, mean);
        Lum64f stdDev = 0;
        EXPECT_STATUS(lumStatusOk, lumiMean_StdDev_8u_C1R(image.data(), image.step(), size, &mean, &stdDev));
        EXPECT_EQ((255 * pixels - 254) / pixels, mean);
        EXPECT_EQ(std::sqrt(std::fabs((65025 * pixels - 65024) / pixels - mean * mean)), stdDev);
    }
}

TEST(Mean_StdDev_16u_C1R, SquaresOfMillionsOfExtremePixelsAreExact) {
    for (Lum16u value : {Lum16u{0}, Lum16u{65535}, Lum16u{32768}}) {
        GuardedImage<Lum16u> image(2048, 2049);
        image.fill([&](int, int, int) { return value; });
        image.at(2047, 2048) = 1;
        const std::int64_t n = 2048 * 2049;
        const std::int64_t s = (n - 1) * value + 1;
        const std::int64_t q = (n - 1) * value * value + 1;
        Lum64f mean = 0;
        Lum64f stdDev = 0;
        EXPECT_STATUS(lumStatusOk,
                      lumiMean_StdDev_16u_C1R(image.data(), image.step(), {2048, 2049}, &mean, &stdDev));
        EXPECT_EQ(static_cast<Lum64f>(s) / n, mean);
        EXPECT_EQ(std::sqrt(std::fabs(static_cast<Lum64f>(q) / n - mean * mean)), stdDev);
    }
}

TEST(Mean_StdDev_16u_C1R, DifferenceBelowZeroGivesTheRootOfItsMagnitude) {
    constexpr int side = 1449;
    constexpr std::int64_t n = side * side;
    GuardedImage<Lum16u> image(side, side);
    image.fill([](int, int, int) { return 65535; });
    const Lum64f squares = n * std::int64_t{65535} * 65535;
    const Lum64f difference = squares / n - 65535.0 * 65535.0;
    ASSERT_LT(difference, 0);
    Lum64f mean = 0;
    Lum64f stdDev = 0;
    EXPECT_STATUS(lumStatusOk,
                  lumiMean_StdDev_16u_C1R(image.data(), image.step(), {side, side}, &mean, &stdDev));
    EXPECT_EQ(65535, mean);
    EXPECT_EQ(std::sqrt(-difference), stdDev);
}

using SingleMembers = testing::Types<Member<Lum32f, 1>, Member<Lum32f, 3>>;
MEMBER_TEST_SUITE(MeansOfFloats, SingleMembers);

MEMBER_TEST(MeansOfFloats, ConstantImageTakesTheSecondPassAndGivesZero) {
    // a short image, a middle one, a large one
    for (LumSize size : {LumSize{20, 10}, LumSize{100, 100}, LumSize{640, 480}}) {
        Scene<TypeParam> scene(size.width, size.height);
        scene.src.fill([](int, int, int) { return 1000; });
        scene.mask.fill([](int x, int y, int) { return x % 7 != y % 3; });
        EXPECT_STATUS(lumStatusOk, TypeParam::meanStdDev(scene.arguments()));
        EXPECT_EQ(1000.0, scene.mean);
        EXPECT_EQ(0.0, scene.stdDev);
        EXPECT_STATUS(lumStatusOk, TypeParam::meanStdDevMasked(scene.arguments()));
        EXPECT_EQ(1000.0, scene.mean);
        EXPECT_EQ(0.0, scene.stdDev);
    }
}

MEMBER_TEST(MeansOfFloats, SmallVarianceBesideALargeMeanSurvives) {
    Scene<TypeParam> scene(640, 120);
    scene.src.fill([](int x, int y, int) { return 10000 + ((x + y) % 2 == 0 ? 0.25F : -0.25F); });
    scene.mask.fill([](int x, int, int) { return x % 4 < 2; });
    EXPECT_STATUS(lumStatusOk, TypeParam::meanStdDev(scene.arguments()));
    EXPECT_NEAR(0.25, scene.stdDev, 1e-3);
    EXPECT_STATUS(lumStatusOk, TypeParam::meanStdDevMasked(scene.arguments()));
    EXPECT_NEAR(0.25, scene.stdDev, 1e-3);
}

MEMBER_TEST(MeansOfFloats, SecondPassRunsBelowFivePercentOfTheSquaredMeanOnly) {
    const auto run = [](float a, float b, float c) {
        Scene<TypeParam> scene(3, 1);
        scene.src.fill([&](int x, int, int) { return x == 0 ? a : x == 1 ? b : c; });
        EXPECT_EQ(lumStatusOk, TypeParam::meanStdDev(scene.arguments()));
        return Expected{scene.mean, scene.stdDev};
    };
    // variance 2/9, squared mean 1/9: the single pass in double
    const Expected wide = run(0, 1, 0);
    EXPECT_EQ(std::sqrt(std::fabs(1.0 / 3 - (1.0 / 3) * (1.0 / 3))), wide.stdDev);
    // variance 2/9, squared mean 106.8: floats about the mean rounded to single
    const Expected narrow = run(10, 11, 10);
    EXPECT_EQ(31.0 / 3, narrow.mean);
    const float m = static_cast<float>(31.0 / 3);
    const float d0 = 10 - m;
    const float d1 = 11 - m;
    const float squares = d0 * d0 + d1 * d1 + d0 * d0;
    EXPECT_EQ(std::sqrt(squares / 3.0), narrow.stdDev);
    EXPECT_NE(std::sqrt(std::fabs(321.0 / 3 - narrow.mean * narrow.mean)), narrow.stdDev);
    // 4.95 % and 5.05 % of the squared mean, which is 1: values 1 - r, 1, 1 + r have the variance 2 r r / 3
    for (float share : {0.0495F, 0.0505F}) {
        const float r = std::sqrt(1.5F * share);
        const float low = 1 - r;
        const float high = 1 + r;
        const Expected result = run(low, 1, high);
        const float sum = low + 1 + high;
        const float q = low * low + 1 + high * high;
        const Lum64f mean = sum / 3.0;
        const auto centre = static_cast<float>(mean);
        const float deviations =
            (low - centre) * (low - centre) + (1 - centre) * (1 - centre) + (high - centre) * (high - centre);
        const Lum64f single = std::sqrt(std::fabs(q / 3.0 - mean * mean));
        const Lum64f second = std::sqrt(deviations / 3.0);
        EXPECT_NE(single, second) << "the passes must differ to tell them apart";
        EXPECT_EQ(share < 0.05F ? second : single, result.stdDev);
    }
}

MEMBER_TEST(MeansOfFloats, ResultIsTheSameForEveryAlignmentOfTheSameRows) {
    for (int width : {3, 30, 83, 5001}) {
        Lum64f mean = 0;
        Lum64f stdDev = 0;
        for (int offset = 0; offset < 16; ++offset) {
            Scene<TypeParam> scene(width, 2,
                                   {.padding = 4 * (offset % 5), .offset = offset, .guard = Guard::before});
            scene.src.fillRandom(7);
            EXPECT_STATUS(lumStatusOk, TypeParam::meanStdDev(scene.arguments()));
            if (offset == 0) mean = scene.mean, stdDev = scene.stdDev;
            EXPECT_EQ(mean, scene.mean);
            EXPECT_EQ(stdDev, scene.stdDev);
        }
    }
}

MEMBER_TEST(MeansOfFloats, RoundedSumsStayNearTheExactOnes) {
    Scene<TypeParam> scene(2500, 41);
    std::mt19937 engine(8);
    scene.src.fill([&](int, int, int) { return 3.3F * static_cast<float>(engine() % 100000) / 100000; });
    Lum64f sum = 0;
    Lum64f squares = 0;
    for (int y = 0; y < 41; ++y)
        for (int x = 0; x < 2500; ++x) {
            const Lum64f p = scene.pixel(x, y);
            sum += p, squares += p * p;
        }
    const Lum64f mean = sum / (2500 * 41);
    EXPECT_STATUS(lumStatusOk, TypeParam::meanStdDev(scene.arguments()));
    EXPECT_NEAR(mean, scene.mean, 1e-6);
    EXPECT_NEAR(std::sqrt(squares / (2500 * 41) - mean * mean), scene.stdDev, 1e-6);
}

MEMBER_TEST(MeansOfFloats, NaNAndInfinitySpreadUnlessMaskedOut) {
    for (float special : {notANumber, infinity})
        for (auto [width, base] :
             {std::pair{5, 0}, std::pair{50, 0}, std::pair{5, 2048}, std::pair{50, 2048}}) {
            // values beside 2048 take the second pass
            Scene<TypeParam> scene(width, 2);
            scene.fillRandom(9);
            scene.src.fill([&, from = base](int x, int y, int c) { return scene.src.at(x, y, c) + from; });
            scene.mask.fill([&](int x, int, int) { return x % 4 != 1; });
            const Expected expected = expectedOf(scene, true);
            scene.src.fill([&](int x, int y, int) { return x % 4 == 1 ? special : scene.src.at(x, y, 0); });
            EXPECT_STATUS(lumStatusOk, TypeParam::meanStdDev(scene.arguments()));
            EXPECT_FALSE(std::isfinite(scene.mean));
            EXPECT_TRUE(std::isnan(scene.stdDev));
            EXPECT_STATUS(lumStatusOk, TypeParam::mean(scene.arguments()));
            EXPECT_EQ(expected.mean, scene.mean);
            EXPECT_STATUS(lumStatusOk, TypeParam::meanStdDevMasked(scene.arguments()));
            EXPECT_EQ(expected.mean, scene.mean);
            EXPECT_NEAR(expected.stdDev, scene.stdDev, 1e-5);
        }
}
