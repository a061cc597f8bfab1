#include <bit>
#include <cmath>
#include <random>

#include "chamfer_members.h"
#include "kernels/distance/chamfer.h"
#include "support/member_test.h"

using namespace support;
using namespace chamfers;

namespace {

/// A picture with about one 0 in `rarity` pixels.
void scatter(GuardedImage<Lum8u>& picture, std::mt19937& engine, unsigned rarity) {
    picture.fill([&](int, int, int) { return engine() % rarity == 0 ? 0U : 1 + engine() % 255; });
}

template <class T> std::vector<T> row(std::initializer_list<int> values) {
    return {values.begin(), values.end()};
}

/// The distances of a picture given as text, a 0 for each point.
template <class Member>
std::vector<typename Member::Element> distances(const std::vector<const char*>& lines,
                                                std::vector<typename Member::Length> metrics) {
    const int width = static_cast<int>(std::strlen(lines[0]));
    const int height = static_cast<int>(lines.size());
    GuardedImage<Lum8u> src(width, height);
    GuardedImage<typename Member::Element> dst(width, height);
    src.fill([&](int x, int y, int) { return lines[y][x] == '.' ? 0 : 7; });
    EXPECT_STATUS(lumStatusOk, Member::call(src, dst, metrics.data()));
    return dst.pixels();
}

MEMBER_TEST_SUITE(Chamfer, Members);

} // namespace

MEMBER_TEST(Chamfer, WorkedExample) {
    using T = typename TypeParam::Element;
    // Two steps along an axis are as long as a diagonal one and a bit; knight's moves do not matter.
    EXPECT_EQ((row<T>({7, 4, 3, 4, 7, 6, 3, 0, 3, 6, 7, 4, 3, 4, 7, 8, 7, 6, 7, 8})),
              distances<TypeParam>({"#####", "##.##", "#####", "#####"}, {3, 4, 7}));
}

MEMBER_TEST(Chamfer, NoZeroPixelIsFarthestEverywhere) {
    using T = typename TypeParam::Element;
    for (const auto& [width, height] : {std::pair{1, 1}, {3, 9}, {40, 21}}) {
        GuardedImage<Lum8u> src(width, height);
        GuardedImage<T> dst(width, height);
        src.fill([](int x, int, int) { return 1 + x; });
        const typename TypeParam::Length metrics[3] = {2, 3, 4};
        ASSERT_EQ(lumStatusOk, TypeParam::call(src, dst, metrics));
        EXPECT_EQ(std::vector<T>(static_cast<std::size_t>(width) * height, std::numeric_limits<T>::max()),
                  dst.pixels());
    }
}

MEMBER_TEST(Chamfer, ZerosAreZero) {
    using T = typename TypeParam::Element;
    GuardedImage<Lum8u> src(37, 6);
    GuardedImage<T> dst(37, 6);
    dst.fillRandom(1);
    const typename TypeParam::Length metrics[3] = {2, 3, 4};
    ASSERT_EQ(lumStatusOk, TypeParam::call(src, dst, metrics));
    EXPECT_EQ(std::vector<T>(37 * 6, T{0}), dst.pixels());
}

MEMBER_TEST(Chamfer, OnePixel) {
    using T = typename TypeParam::Element;
    EXPECT_EQ(row<T>({0}), distances<TypeParam>({"."}, {1, 1, 1}));
    EXPECT_EQ(std::vector<T>{std::numeric_limits<T>::max()}, distances<TypeParam>({"#"}, {1, 1, 1}));
}

MEMBER_TEST(Chamfer, AnyValueButZeroIsMeasured) {
    using T = typename TypeParam::Element;
    GuardedImage<Lum8u> src(256, 1);
    GuardedImage<T> dst(256, 1);
    src.fill([](int x, int, int) { return x; });
    const typename TypeParam::Length metrics[3] = {1, 2, 3};
    ASSERT_EQ(lumStatusOk, TypeParam::call(src, dst, metrics));
    for (int x = 0; x < 256; ++x) EXPECT_EQ(static_cast<T>(x), dst.at(x, 0));
}

MEMBER_TEST(Chamfer, LongChainsSaturateAndNeverWrap) {
    using T = typename TypeParam::Element;
    using Length = typename TypeParam::Length;
    constexpr T largest = std::numeric_limits<T>::max();
    const Length long_ = std::is_integral_v<T> ? static_cast<Length>(largest / 2) : static_cast<Length>(2e38);
    for (const Length a : {long_, std::numeric_limits<Length>::max()})
        for (const Length b : {long_, std::numeric_limits<Length>::max()}) {
            GuardedImage<Lum8u> src(90, 7);
            GuardedImage<T> dst(90, 7);
            src.fill([](int x, int y, int) { return x != 45 || y != 3; });
            const Length metrics[3] = {a, b, std::numeric_limits<Length>::max()};
            ASSERT_EQ(lumStatusOk, TypeParam::call(src, dst, metrics));
            for (int y = 0; y < 7; ++y)
                for (int x = 0; x < 90; ++x) {
                    const int steps = std::abs(x - 45) + std::abs(y - 3);
                    const T distance = dst.at(x, y);
                    if (steps == 0) {
                        EXPECT_EQ(T{0}, distance);
                    } else if (steps == 1 && a <= b) {
                        EXPECT_EQ(std::min(static_cast<Length>(largest), a), distance);
                    } else if (steps > 5) {
                        EXPECT_EQ(largest, distance) << x << ", " << y;
                    }
                }
        }
}

MEMBER_TEST(Chamfer, OneColumnTakesAxialStepsOnly) {
    using T = typename TypeParam::Element;
    // The diagonal is cheaper and cannot be taken.
    EXPECT_EQ((row<T>({6, 3, 0, 3, 6, 9})), distances<TypeParam>({"#", "#", ".", "#", "#", "#"}, {3, 2, 5}));
    EXPECT_EQ((row<T>({6, 3, 0, 3, 6, 9})), distances<TypeParam>({"##.###"}, {3, 2, 5}));
}

MEMBER_TEST(Chamfer, DoubledDiagonalReplacesTwoAxialSteps) {
    using T = typename TypeParam::Element;
    if (TypeParam::kernelSize == 5) return;
    // Nothing lies below the last row to zigzag through, so it steps two pixels for 4; the first row has no such step:
    // its pixels come down to 4 by way of the row below.
    EXPECT_EQ((row<T>({0, 3, 4, 7, 8, 3, 2, 5, 6, 9})), distances<TypeParam>({".####", "#####"}, {3, 2, 9}));
    EXPECT_EQ((row<T>({3, 2, 5, 6, 9, 0, 3, 4, 7, 8})), distances<TypeParam>({"#####", ".####"}, {3, 2, 9}));
}

TEST(Chamfer5x5, UselessKnightGivesThe3x3Result) {
    std::mt19937 engine(5);
    GuardedImage<Lum8u> src(53, 31);
    scatter(src, engine, 90);
    for (const auto& metrics :
         {std::array<Lum32s, 3>{1, 1, 2}, {1, 2, 3}, {3, 2, 5}, {4, 9, 12}, {7, 3, 100}}) {
        GuardedImage<Lum8u> three(53, 31), five(53, 31);
        ASSERT_EQ(lumStatusOk, Three8u::call(src, three, metrics.data()));
        ASSERT_EQ(lumStatusOk, Five8u::call(src, five, metrics.data()));
        EXPECT_EQ(three.pixels(), five.pixels());
        const std::array<Lum32f, 3> floats{Lum32f(metrics[0]), Lum32f(metrics[1]), Lum32f(metrics[2])};
        GuardedImage<Lum32f> threeFloats(53, 31), fiveFloats(53, 31);
        ASSERT_EQ(lumStatusOk, Three32f::call(src, threeFloats, floats.data()));
        ASSERT_EQ(lumStatusOk, Five32f::call(src, fiveFloats, floats.data()));
        EXPECT_EQ(threeFloats.pixels(), fiveFloats.pixels());
    }
}

TEST(Chamfer5x5, ForwardingIsDecidedBeforeTheSmallImageRule) {
    // Small, and with a knight's move of no use: the last row of the 3x3 form has its steps of two pixels.
    GuardedImage<Lum8u> src(5, 2), five(5, 2), three(5, 2);
    src.fill([](int x, int y, int) { return x + y; });
    const Lum32s metrics[3] = {3, 2, 5};
    ASSERT_EQ(lumStatusOk, Five8u::call(src, five, metrics));
    ASSERT_EQ(lumStatusOk, Three8u::call(src, three, metrics));
    EXPECT_EQ(three.pixels(), five.pixels());
    EXPECT_EQ(7, five.at(3, 0));
}

TEST(Chamfer5x5, FloatsForwardWithinATolerance) {
    // c is shorter than a + d by less than a ten-millionth of it, so knight's moves are left out.
    GuardedImage<Lum8u> src(9, 9);
    src.fill([](int x, int y, int) { return x != 4 || y != 4; });
    GuardedImage<Lum32f> dst(9, 9);
    const Lum32f a = 1, d = 1.5F;
    const Lum32f within = std::nextafter(2.5F, 0.0F);
    const Lum32f metrics[3] = {a, d, within};
    ASSERT_EQ(lumStatusOk, Five32f::call(src, dst, metrics));
    EXPECT_EQ(2.5F, dst.at(6, 5));
    const Lum32f beyond = 2.5F - 3e-6F;
    const Lum32f shorter[3] = {a, d, beyond};
    ASSERT_EQ(lumStatusOk, Five32f::call(src, dst, shorter));
    EXPECT_EQ(beyond, dst.at(6, 5));
}

TEST(Chamfer5x5, KnightMovesCount) {
    GuardedImage<Lum8u> src(9, 9);
    src.fill([](int x, int y, int) { return x != 4 || y != 4; });
    GuardedImage<Lum8u> dst(9, 9);
    const Lum32s metrics[3] = {5, 7, 11};
    ASSERT_EQ(lumStatusOk, Five8u::call(src, dst, metrics));
    const Lum8u quadrant[5][5] = {{0, 5, 10, 15, 20},
                                  {5, 7, 11, 16, 21},
                                  {10, 11, 14, 18, 22},
                                  {15, 16, 18, 21, 25},
                                  {20, 21, 22, 25, 28}};
    for (int y = 0; y < 9; ++y)
        for (int x = 0; x < 9; ++x) EXPECT_EQ(quadrant[std::abs(y - 4)][std::abs(x - 4)], dst.at(x, y));
}

TEST(Chamfer5x5, SmallIrregularImagesRelaxUntilStable) {
    // A knight's move of 1 beside axial steps of 20: chains wind back and forth over the whole picture.
    std::mt19937 engine(11);
    for (const auto& [width, height] : {std::pair{3, 40}, {3, 3}, {2, 17}, {64, 3}, {1, 9}}) {
        GuardedImage<Lum8u> src(width, height), dst(width, height);
        src.fill([](int x, int y, int) { return x + y; });
        const Lum32s metrics[3] = {20, 30, 1};
        ASSERT_EQ(lumStatusOk, Five8u::call(src, dst, metrics));
        // Stable: no single step makes any pixel shorter.
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                for (int dy = -2; dy <= 2; ++dy)
                    for (int dx = -2; dx <= 2; ++dx) {
                        const int far = std::max(std::abs(dx), std::abs(dy)),
                                  near = std::min(std::abs(dx), std::abs(dy));
                        if (far == 0 || x + dx < 0 || x + dx >= width || y + dy < 0 || y + dy >= height)
                            continue;
                        const int length = near == 0 ? 20 * far : near == far ? 30 * far : 1;
                        ASSERT_LE(dst.at(x, y), dst.at(x + dx, y + dy) + length);
                    }
    }
}

TEST(ChamferMask, StandardLengths) {
    const Lum32s threes[3][2] = {{1, 1}, {1, 2}, {2, 3}};
    const Lum32s fives[3][3] = {{1, 1, 2}, {1, 2, 3}, {5, 7, 11}};
    const std::uint32_t threeBits[3][2] = {
        {0x3F800000, 0x3F800000}, {0x3F800000, 0x40000000}, {0x3F747AE1, 0x3FAF4539}};
    const std::uint32_t fiveBits[3][3] = {{0x3F800000, 0x3F800000, 0x40000000},
                                          {0x3F800000, 0x40000000, 0x40400000},
                                          {0x3F800000, 0x3FB33333, 0x400C9A02}};
    for (int kernelSize : {3, 5})
        for (int norm : {0, 1, 2}) {
            Lum32s integers[3] = {-1, -1, -1};
            Lum32f floats[3] = {-1, -1, -1}, byType[3] = {-1, -1, -1};
            ASSERT_EQ(lumStatusOk, lumiGetDistanceTransformMask_32s(kernelSize, norm, integers));
            ASSERT_EQ(lumStatusOk, lumiGetDistanceTransformMask_32f(kernelSize, norm, floats));
            ASSERT_EQ(lumStatusOk, lumiGetDistanceTransformMask(10 * kernelSize + norm, byType));
            for (int i = 0; i < 3; ++i) {
                const bool written = i < (kernelSize == 3 ? 2 : 3);
                EXPECT_EQ(written ? (kernelSize == 3 ? threes[norm][i] : fives[norm][i]) : -1, integers[i]);
                const float expected =
                    written ? std::bit_cast<float>(kernelSize == 3 ? threeBits[norm][i] : fiveBits[norm][i])
                            : -1;
                EXPECT_EQ(expected, floats[i]);
                EXPECT_EQ(expected, byType[i]);
            }
        }
}

TEST(ChamferMask, StatusesInTheirOrder) {
    Lum32s integers[3] = {-1, -1, -1};
    Lum32f floats[3] = {-1, -1, -1};
    const auto query = [&](int kernelSize, int norm, bool null) {
        const LumStatus ofFloats =
            lumiGetDistanceTransformMask_32f(kernelSize, norm, null ? nullptr : floats);
        EXPECT_EQ(ofFloats, lumiGetDistanceTransformMask_32s(kernelSize, norm, null ? nullptr : integers));
        return ofFloats;
    };
    EXPECT_STATUS(lumStatusNullPointer, query(4, 3, true));
    EXPECT_STATUS(lumStatusSizeError, query(4, 3, false));
    EXPECT_STATUS(lumStatusSizeError, query(0, 0, false));
    EXPECT_STATUS(lumStatusSizeError, query(-3, 0, false));
    EXPECT_STATUS(lumStatusBadArgument, query(3, 3, false));
    EXPECT_STATUS(lumStatusBadArgument, query(5, -1, false));
    EXPECT_STATUS(lumStatusBadArgument, lumiGetDistanceTransformMask(33, nullptr));
    EXPECT_STATUS(lumStatusBadArgument, lumiGetDistanceTransformMask(49, floats));
    EXPECT_STATUS(lumStatusBadArgument, lumiGetDistanceTransformMask(-30, floats));
    EXPECT_STATUS(lumStatusBadArgument, lumiGetDistanceTransformMask(-52, nullptr));
    EXPECT_STATUS(lumStatusNullPointer, lumiGetDistanceTransformMask(40, nullptr));
    EXPECT_STATUS(lumStatusSizeError, lumiGetDistanceTransformMask(40, floats));
    EXPECT_STATUS(lumStatusSizeError, lumiGetDistanceTransformMask(2, floats));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(-1, integers[i]);
        EXPECT_EQ(-1, floats[i]);
    }
}

MEMBER_TEST(Chamfer, StatusesInTheirOrder) {
    using T = typename TypeParam::Element;
    using Length = typename TypeParam::Length;
    constexpr int bytes = sizeof(T);
    GuardedImage<Lum8u> src(6, 5);
    GuardedImage<T> dst(6, 5);
    dst.fillRandom(3);
    const Length good[3] = {1, 2, 3};
    const Length zero[3] = {0, 2, 3};
    struct Case {
        LumStatus status;
        bool src, dst, metrics;
        LumSize size;
        int srcStep, dstStep;
        const Length* lengths;
    };
    const LumSize size = src.size();
    const int step = 6 * bytes;
    const Case cases[] = {
        {lumStatusNullPointer, false, true, true, {0, 5}, 6, step, good},
        {lumStatusNullPointer, true, false, true, size, 5, step, good},
        {lumStatusNullPointer, true, true, false, {6, -1}, 6, step, good},
        {lumStatusSizeError, true, true, true, {0, 5}, 0, step, good},
        {lumStatusSizeError, true, true, true, {6, 0}, 6, step - 1, good},
        {lumStatusSizeError, true, true, true, {-6, 5}, 6, step, zero},
        {lumStatusStepError, true, true, true, size, 5, step + 1, good},
        {lumStatusStepError, true, true, true, size, 6, step - 1, zero},
        {lumStatusStepError, true, true, true, size, -6, step, good},
        {lumStatusStepError, true, true, true, size, 6, -step, good},
        {bytes == 1 ? lumStatusMetricError : lumStatusStepAlignmentError, true, true, true, size, 6, step + 1,
         zero},
        {lumStatusMetricError, true, true, true, size, 6, step, zero},
    };
    for (const Case& c : cases)
        EXPECT_REFUSED(c.status, dst,
                       TypeParam::call(c.src ? src.data() : nullptr, c.srcStep, c.dst ? dst.data() : nullptr,
                                       c.dstStep, c.size, c.metrics ? c.lengths : nullptr));
    for (int i = 0; i < (TypeParam::kernelSize == 3 ? 2 : 3); ++i)
        for (const Length bad :
             {Length{0}, Length{-1}, std::numeric_limits<Length>::lowest(),
              std::is_integral_v<Length> ? Length{0} : std::numeric_limits<Length>::quiet_NaN()}) {
            Length metrics[3] = {1, 2, 3};
            metrics[i] = bad;
            EXPECT_REFUSED(lumStatusMetricError, dst, TypeParam::call(src, dst, metrics));
        }
    if (TypeParam::kernelSize == 3) {
        const GuardedBlock two(2 * sizeof(Length));
        const Length lengths[2] = {1, 2};
        GuardedBlock block(sizeof lengths);
        std::memcpy(block.template as<Length>(), lengths, sizeof lengths);
        EXPECT_STATUS(lumStatusOk, TypeParam::call(src, dst, block.template as<Length>()));
    }
}

TEST(ChamferInPlace, StatusesInTheirOrder) {
    GuardedImage<Lum8u> image(6, 5);
    image.fillRandom(4);
    const Lum32s good[3] = {1, 2, 3}, bad[3] = {1, 0, 3};
    for (const auto call : {lumiDistanceTransform_3x3_8u_C1IR, lumiDistanceTransform_5x5_8u_C1IR}) {
        EXPECT_REFUSED(lumStatusNullPointer, image, call(nullptr, 6, {0, 5}, good));
        EXPECT_REFUSED(lumStatusNullPointer, image, call(image.data(), 5, {6, 5}, nullptr));
        EXPECT_REFUSED(lumStatusSizeError, image, call(image.data(), -1, {0, 5}, good));
        EXPECT_REFUSED(lumStatusStepError, image, call(image.data(), 5, {6, 5}, bad));
        EXPECT_REFUSED(lumStatusMetricError, image, call(image.data(), 6, {6, 5}, bad));
    }
    Lum32s third[3] = {1, 2, 0};
    EXPECT_REFUSED(lumStatusMetricError, image,
                   lumiDistanceTransform_5x5_8u_C1IR(image.data(), 6, {6, 5}, third));
    EXPECT_STATUS(lumStatusOk, lumiDistanceTransform_3x3_8u_C1IR(image.data(), 6, {6, 5}, third));
}

TEST(ChamferInPlace, EqualsOutOfPlace) {
    std::mt19937 engine(8);
    for (int width : {1, 2, 3, 4, 15, 16, 17, 31, 33, 64, 100})
        for (const auto& metrics :
             {std::array<Lum32s, 3>{1, 2, 3}, {2, 3, 4}, {5, 7, 11}, {3, 2, 1}, {3, 2, 5}}) {
            GuardedImage<Lum8u> src(width, 9), three(width, 9), five(width, 9);
            scatter(src, engine, 30);
            ASSERT_EQ(lumStatusOk, Three8u::call(src, three, metrics.data()));
            ASSERT_EQ(lumStatusOk, Five8u::call(src, five, metrics.data()));
            const auto expectInPlace = [&](const GuardedImage<Lum8u>& expected, auto call) {
                GuardedImage<Lum8u> image(width, 9, {.padding = 3});
                image.fill([&](int x, int y, int) { return src.at(x, y); });
                ASSERT_EQ(lumStatusOk, call(image.data(), image.step(), image.size(), metrics.data()));
                EXPECT_EQ(expected.pixels(), image.pixels());
                EXPECT_TRUE(image.outsideUntouched());
            };
            expectInPlace(three, lumiDistanceTransform_3x3_8u_C1IR);
            expectInPlace(five, lumiDistanceTransform_5x5_8u_C1IR);
        }
}

MEMBER_TEST(Chamfer, EverySizeAndMetricAgreesWithThePlainPasses) {
    using T = typename TypeParam::Element;
    using Length = typename TypeParam::Length;
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    const auto length = [&]() -> Length {
        if constexpr (std::is_integral_v<Length>)
            return engine() % 20 == 0 ? static_cast<Length>(1 + engine() % 70000)
                                      : static_cast<Length>(1 + engine() % 20);
        else
            return static_cast<Length>(1 + engine() % 2000) /
                   static_cast<Length>(engine() % 3 == 0 ? 100 : 97);
    };
    const std::array<Length, 3> usual[] = {{1, 1, 2}, {1, 2, 3}, {2, 3, 4}, {5, 7, 11},
                                           {3, 2, 5}, {3, 2, 1}, {4, 5, 6}};
    std::vector<int> widths{129, 200};
    for (int width = 1; width <= 70; ++width) widths.push_back(width);
    for (int width : widths)
        for (int height : {1, 2, 3, 4, 5, 6, 9, 22}) {
            GuardedImage<Lum8u> src(width, height,
                                    {.padding = static_cast<int>(engine() % 4),
                                     .offset = static_cast<int>(engine() % 33),
                                     .guard = engine() % 2 == 0 ? Guard::after : Guard::before});
            GuardedImage<T> dst(width, height,
                                {.padding = static_cast<int>(engine() % 4 * sizeof(T)),
                                 .offset = static_cast<int>(engine() % 33),
                                 .guard = engine() % 2 == 0 ? Guard::after : Guard::before});
            for (int i = 0; i < 3; ++i) {
                const auto metrics = engine() % 2 == 0 ? usual[engine() % std::size(usual)]
                                                       : std::array<Length, 3>{length(), length(), length()};
                const unsigned rarities[] = {3, 30, 300, 1000};
                scatter(src, engine, rarities[engine() % 4]);
                ASSERT_EQ(lumStatusOk, TypeParam::call(src, dst, metrics.data()));
                const Reference<T, Length> reference(src, metrics.data(), TypeParam::kernelSize);
                ASSERT_TRUE(sameBits(reference.distances(), dst.pixels()))
                    << width << " x " << height << ", metrics " << metrics[0] << ", " << metrics[1] << ", "
                    << metrics[2];
                ASSERT_TRUE(src.untouched() && dst.outsideUntouched());
            }
        }
}

MEMBER_TEST(Chamfer, ScalarAgreesWithVectorBitForBit) {
    using namespace lum::kernels;
    using T = typename TypeParam::Element;
    std::mt19937 engine(6);
    std::vector<int> widths{255, 256, 257, 1037};
    for (int width = 1; width <= 70; ++width) widths.push_back(width);
    const auto length = [&] { return static_cast<T>(1 + engine() % 40); };
    for (int width : widths)
        for (int height : {1, 2, 5, 8, 13})
            for (const ChamferSteps steps :
                 {ChamferSteps::axial, ChamferSteps::eight, ChamferSteps::knight, ChamferSteps::window}) {
                GuardedImage<Lum8u> src(width, height, {.offset = static_cast<int>(engine() % 33)});
                GuardedImage<T> scalar(width, height), vector(width, height, {.padding = 2 * sizeof(T)});
                scatter(src, engine, 1 + engine() % 200);
                const T axial = length();
                const ChamferMetric<T> metric{
                    .steps = steps,
                    .axial = axial,
                    .diagonal = length(),
                    .knight = length(),
                    .doubleAxial = static_cast<T>(2 * axial - engine() % static_cast<unsigned>(axial)),
                    .doubleDiagonal = length(),
                    .doubleStepsInLastRow = steps == ChamferSteps::eight && height % 2 == 1};
                chamferScalar<T>({src.data(), src.step()}, {scalar.data(), scalar.step()}, src.size(),
                                 metric);
                chamfer<T>({src.data(), src.step()}, {vector.data(), vector.step()}, src.size(), metric);
                ASSERT_TRUE(sameBits(scalar.pixels(), vector.pixels())) << width << " x " << height;
                ASSERT_TRUE(vector.outsideUntouched());
            }
}
