#include <cmath>
#include <cstring>
#include <limits>

#include "filter/gaussian_members.h"
#include "support/border_walk.h"
#include "support/cache_report.h"
#include "support/control_word.h"
#include "support/member_test.h"

using namespace gaussian;

namespace {

/// The filter straight from its formula, a result at a time.
template <class T>
std::vector<T> filtered(const GuardedImage<T>& src, int channels, const float* half, int K, int border,
                        const T* value) {
    const int a = K / 2;
    const LumSize size = src.size();
    const int kind = border & 15;
    auto flag = [&](int bit) { return (border & bit) != 0; };
    auto pixel = [&](int x, int y, int c) {
        const int column =
            borderWalk(x, size.width, kind, flag(lumBorderInMemoryLeft), flag(lumBorderInMemoryRight));
        return static_cast<float>(column == INT_MAX ? value[c] : src.at(column, y, c));
    };
    auto rowSum = [&](int x, int y, int c) {
        const int row =
            borderWalk(y, size.height, kind, flag(lumBorderInMemoryTop), flag(lumBorderInMemoryBottom));
        if (row == INT_MAX) return static_cast<float>(value[c]);
        float sum = (pixel(x - a, row, c) + pixel(x + a, row, c)) * half[0];
        for (int j = a - 1; j >= 1; --j)
            sum = sum + (pixel(x - j, row, c) + pixel(x + j, row, c)) * half[a - j];
        return sum + pixel(x, row, c) * half[a];
    };
    std::vector<T> result;
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            for (int c = 0; c < channels; ++c) {
                float sum = (rowSum(x, y - a, c) + rowSum(x, y + a, c)) * half[0];
                for (int j = 1; j < a; ++j)
                    sum = sum + (rowSum(x, y - a + j, c) + rowSum(x, y + a - j, c)) * half[j];
                sum = sum + rowSum(x, y, c) * half[a];
                if constexpr (std::is_integral_v<T>) {
                    const double lowest = std::numeric_limits<T>::min();
                    const double highest = std::numeric_limits<T>::max();
                    result.push_back(
                        static_cast<T>(std::nearbyint(std::min(std::max<double>(sum, lowest), highest))));
                } else {
                    result.push_back(sum);
                }
            }
    return result;
}

struct Shape {
    int width;
    int height;
    int K;
    int border = lumBorderReplicate;
    float sigma = 0.9F;
    /// Bytes that shift the alignment of images, object and work memory.
    int shift = 0;
    Guard guard = Guard::after;
};

/// All three forms of a run against the formula, in memory of exact size.
template <class M> void expectFormula(const Shape& shape, unsigned seed) {
    using T = typename M::Element;
    constexpr int channels = M::channels;
    const LumSize size{shape.width, shape.height};
    SCOPED_TRACE(testing::Message() << shape.width << " x " << shape.height << ", " << shape.K
                                    << " taps, border " << shape.border << ", shift " << shape.shift
                                    << ", seed " << seed);
    GuardedImage<T> src(shape.width, shape.height,
                        {.channels = channels,
                         .padding = shape.shift / static_cast<int>(sizeof(T)) * static_cast<int>(sizeof(T)),
                         .offset = shape.shift,
                         .guard = shape.guard,
                         .margin = marginsInMemory(shape.border, shape.K / 2)});
    src.fillRandom(seed);
    const T value[3] = {static_cast<T>(101), static_cast<T>(7), static_cast<T>(244)};
    CoreFilter<M> core(size, shape.K, shape.sigma, shape.border, shape.shift);
    const auto expected = filtered(src, channels, core.half(), shape.K, shape.border, value);
    const Placement placement{
        .channels = channels, .padding = 4, .offset = shape.shift, .guard = shape.guard};

    GuardedImage<T> dst(shape.width, shape.height, placement);
    ASSERT_EQ(lumStatusOk, core.run(src, dst, shape.border, value));
    ASSERT_TRUE(sameBits(expected, dst.pixels())) << "_L";
    ASSERT_TRUE(dst.outsideUntouched() && src.untouched());

    FrontFilter<M> front(size, shape.K, shape.sigma, shape.border, shape.shift);
    GuardedImage<T> plain(shape.width, shape.height, placement);
    ASSERT_EQ(lumStatusOk, M::plain(front.call(src, plain, shape.border, value)));
    ASSERT_TRUE(sameBits(expected, plain.pixels())) << "plain";
    ASSERT_TRUE(plain.outsideUntouched());

    GuardedImage<T> ofObject(shape.width, shape.height, placement);
    ASSERT_EQ(lumStatusOk, M::border(front.call(src, ofObject, shape.border, value)));
    ASSERT_TRUE(sameBits(expected, ofObject.pixels())) << "Border";
}

MEMBER_TEST_SUITE(FilterGaussian, AllMembers);

} // namespace

TEST(FilterGaussian_8u, AnImpulseByHand) {
    // sigma 1: g = 0.274069, 0.451863; 255 times their products.
    GuardedImage<Lum8u> src(3, 3);
    GuardedImage<Lum8u> dst(3, 3);
    src.fill([](int x, int y, int) { return x == 1 && y == 1 ? 255 : 0; });
    CoreFilter<Members<Lum8u, 1>> core({3, 3}, 3, 1.0F);
    const Lum8u black[] = {0};
    EXPECT_STATUS(lumStatusOk, core.run(src, dst, lumBorderConstant, black));
    EXPECT_EQ((std::vector<Lum8u>{19, 32, 19, 32, 52, 32, 19, 32, 19}), dst.pixels());
}

MEMBER_TEST(FilterGaussian, FormulaOnEveryWidth) {
    for (int K : {3, 5, 7, 9})
        for (int width = 1; width <= 70; ++width)
            expectFormula<TypeParam>({.width = width, .height = 3, .K = K, .shift = width % 8}, 100 + width);
}

MEMBER_TEST(FilterGaussian, FormulaOnEveryHeight) {
    for (int K : {3, 5, 7, 11})
        for (int height = 1; height <= 16; ++height)
            for (int border : {lumBorderReplicate, lumBorderMirror, lumBorderConstant})
                expectFormula<TypeParam>(
                    {.width = 5, .height = height, .K = K, .border = border, .guard = Guard::before},
                    200 + height);
}

MEMBER_TEST(FilterGaussian, FormulaWithEveryBorder) {
    for (int kind : {lumBorderReplicate, lumBorderMirror, lumBorderConstant})
        for (int flags = 0; flags <= 0xF0; flags += 0x10)
            for (auto [width, height] : {std::pair{1, 1}, {2, 1}, {1, 2}, {3, 2}, {4, 5}, {21, 9}})
                for (int K : {3, 5, 9})
                    expectFormula<TypeParam>({.width = width,
                                              .height = height,
                                              .K = K,
                                              .border = kind | flags,
                                              .sigma = 2.0F,
                                              .guard = K == 5 ? Guard::before : Guard::after},
                                             300 + kind + flags);
    for (int K : {3, 5, 7, 15})
        expectFormula<TypeParam>({.width = 19, .height = 6, .K = K, .border = lumBorderInMemory}, 400);
}

MEMBER_TEST(FilterGaussian, FormulaAtEveryAlignment) {
    for (int shift = 0; shift < 64; ++shift)
        for (int K : {3, 13}) {
            expectFormula<TypeParam>({.width = 3, .height = 4, .K = K, .shift = shift}, 500 + shift);
            expectFormula<TypeParam>(
                {.width = 33, .height = 2, .K = K, .border = lumBorderMirror, .shift = shift}, 600 + shift);
        }
}

MEMBER_TEST(FilterGaussian, FormulaOnRegionsMuchSmallerThanTheKernel) {
    for (int K : {31, 63})
        for (int width : {1, 2, 3, 4, 16})
            for (int border : {lumBorderReplicate, lumBorderMirror, lumBorderConstant})
                expectFormula<TypeParam>(
                    {.width = width, .height = 2, .K = K, .border = border, .sigma = 9.0F}, 700 + width);
}

MEMBER_TEST(FilterGaussian, FormulaOnAPicture) {
    expectFormula<TypeParam>({.width = 517, .height = 37, .K = 7, .border = lumBorderMirror, .sigma = 1.4F},
                             800);
    expectFormula<TypeParam>({.width = 301, .height = 41, .K = 21, .sigma = 3.4F}, 801);
}

// Runs work in strips of columns; their ends have neighbours in the region and no border.
MEMBER_TEST(FilterGaussian, FormulaAcrossStrips) {
    for (int border : {lumBorderMirror | lumBorderInMemoryTop, lumBorderConstant | lumBorderInMemoryLeft,
                       lumBorderReplicate | lumBorderInMemoryRight})
        expectFormula<TypeParam>({.width = 1025, .height = 2, .K = 25, .border = border, .sigma = 4.0F}, 900);
}

TEST(FilterGaussianStrips, LastStripMayBeNarrowerThanTheTapsReach) {
    for (int border : {lumBorderMirror, lumBorderInMemory}) {
        const Shape shape{.width = 40 * 512 + 1, .height = 1, .K = 25, .border = border, .sigma = 4.0F};
        expectFormula<Members<Lum8u, 1>>(shape, 901);
        expectFormula<Members<Lum32f, 1>>(shape, 902);
    }
}

TEST(FilterGaussianStrips, EveryStripMayBeNarrowerThanTheTapsReach) {
    for (int border : {lumBorderReplicate, lumBorderConstant})
        expectFormula<Members<Lum8u, 3>>(
            {.width = 360, .height = 1, .K = 263, .border = border, .sigma = 80.0F}, 903);
}

TEST(FilterGaussianAhead, PicturesBeyondTheCaches) {
    expectFormula<Members<Lum8u, 1>>({.width = 1030, .height = 2040, .K = 3}, 904);
    expectFormula<Members<Lum32f, 3>>({.width = 1030, .height = 170, .K = 5}, 905);
}

MEMBER_TEST(FilterGaussian, DestinationMayBeTheSource) {
    using T = typename TypeParam::Element;
    constexpr int channels = TypeParam::channels;
    const LumSize size{1920, 21};
    const T value[3] = {7, 8, 9};
    for (int K : {3, 5, 7, 15})
        for (int border : {lumBorderReplicate, lumBorderConstant}) {
            CoreFilter<TypeParam> core(size, K, 2.0F);
            GuardedImage<T> image(size.width, size.height, {.channels = channels});
            GuardedImage<T> expected(size.width, size.height, {.channels = channels});
            image.fillRandom(K);
            const auto run = [&](GuardedImage<T>& dst) { return core.run(image, dst, border, value); };
            EXPECT_STATUS(lumStatusOk, run(expected));
            EXPECT_STATUS(lumStatusOk, run(image));
            EXPECT_TRUE(sameBits(expected.pixels(), image.pixels())) << K << " taps, border " << border;
        }
}

MEMBER_TEST(FilterGaussian, AnObjectServesSmallerRegions) {
    using T = typename TypeParam::Element;
    CoreFilter<TypeParam> core({40, 30}, 5, 1.2F);
    for (auto [width, height] : {std::pair{40, 30}, {39, 1}, {1, 30}, {17, 11}}) {
        GuardedImage<T> src(width, height, {.channels = TypeParam::channels});
        GuardedImage<T> dst(width, height, {.channels = TypeParam::channels});
        src.fillRandom(width);
        EXPECT_STATUS(lumStatusOk, core.run(src, dst));
        EXPECT_TRUE(
            sameBits(filtered<T>(src, TypeParam::channels, core.half(), 5, lumBorderReplicate, nullptr),
                     dst.pixels()));
    }
}

MEMBER_TEST(FilterGaussian, VerySmallSigmaCopies) {
    using T = typename TypeParam::Element;
    for (int K : {3, 5, 7, 9}) {
        CoreFilter<TypeParam> core({21, 9}, K, 0.05F);
        GuardedImage<T> src(21, 9, {.channels = TypeParam::channels});
        GuardedImage<T> dst(21, 9, {.channels = TypeParam::channels});
        src.fillRandom(K);
        EXPECT_STATUS(lumStatusOk, core.run(src, dst, lumBorderMirror));
        EXPECT_EQ(src.pixels(), dst.pixels());
    }
}

MEMBER_TEST(FilterGaussian, FlatRegionStaysFlatWithBordersOfAnyKind) {
    using T = typename TypeParam::Element;
    const T flat = static_cast<T>(201);
    const T value[3] = {flat, flat, flat};
    for (int border : {lumBorderReplicate, lumBorderMirror, lumBorderConstant})
        for (int K : {3, 5, 7, 9, 15})
            for (float sigma : {0.6F, 1.0F, 4.0F}) {
                CoreFilter<TypeParam> core({25, 19}, K, sigma);
                GuardedImage<T> src(25, 19, {.channels = TypeParam::channels});
                GuardedImage<T> dst(25, 19, {.channels = TypeParam::channels});
                src.fill([&](int, int, int) { return flat; });
                EXPECT_STATUS(lumStatusOk, core.run(src, dst, border, value));
                for (T result : dst.pixels()) {
                    if constexpr (std::is_integral_v<T>)
                        ASSERT_EQ(flat, result);
                    else
                        ASSERT_NEAR(flat, result, 201 * 1e-6);
                }
            }
}

MEMBER_TEST(FilterGaussian, AllFourFlagsReadMemoryWithAnyKindAndNoBorderValue) {
    using T = typename TypeParam::Element;
    CoreFilter<TypeParam> core({13, 7}, 5, 1.0F);
    GuardedImage<T> src(13, 7, {.channels = TypeParam::channels, .margin = 2});
    src.fillRandom(9);
    const auto expected = filtered<T>(src, TypeParam::channels, core.half(), 5,
                                      lumBorderInMemory | lumBorderReplicate, nullptr);
    for (int border : {0xF0, 0xF1, 0xF3, 0xF6, 0xF7, 0xFF}) {
        GuardedImage<T> dst(13, 7, {.channels = TypeParam::channels});
        EXPECT_STATUS(lumStatusOk, core.run(src, dst, border));
        EXPECT_TRUE(sameBits(expected, dst.pixels())) << border;
    }
}

MEMBER_TEST(FilterGaussian, MirroredRegionOfOneRowUsesItForEveryTap) {
    using T = typename TypeParam::Element;
    CoreFilter<TypeParam> core({33, 1}, 7, 2.0F);
    GuardedImage<T> one(33, 1, {.channels = TypeParam::channels});
    one.fillRandom(4);
    GuardedImage<T> many(33, 1, {.channels = TypeParam::channels, .margin = 3});
    many.fill([&](int x, int, int c) { return one.at(std::min(std::max(x, 0), 32), 0, c); });
    GuardedImage<T> mirrored(33, 1, {.channels = TypeParam::channels});
    GuardedImage<T> stacked(33, 1, {.channels = TypeParam::channels});
    EXPECT_STATUS(lumStatusOk, core.run(one, mirrored, lumBorderMirror));
    EXPECT_STATUS(lumStatusOk,
                  core.run(many, stacked, lumBorderMirror | lumBorderInMemoryTop | lumBorderInMemoryBottom));
    EXPECT_TRUE(sameBits(stacked.pixels(), mirrored.pixels()));
}

MEMBER_TEST(FilterGaussian, StreamingStoresGiveTheSameBytes) {
    using T = typename TypeParam::Element;
    constexpr int channels = TypeParam::channels;
    constexpr int width = 1024 / channels;
    const LumSize size{width, 131};
    constexpr int element = sizeof(T);
    constexpr int paddingToVectors = (64 - width * channels * element % 64) % 64;
    for (int K : {3, 5, 7, 9, 63})
        // The first row may be on a vector where those after it are not.
        for (auto [offset, offsetOfRows] : {std::pair{0, 0}, {element, 0}, {3, 0}, {0, element}}) {
            CoreFilter<TypeParam> core(size, K, 1.0F);
            const Placement placement{.channels = channels,
                                      .padding = paddingToVectors + offsetOfRows,
                                      .offset = offset,
                                      .guard = Guard::before};
            GuardedImage<T> src(width, size.height, placement);
            src.fillRandom(K);
            std::vector<T> results[2];
            for (int cache : {hugeCache, tinyCache}) {
                CacheReport report(cache);
                GuardedImage<T> dst(width, size.height, placement);
                ASSERT_EQ(lumStatusOk, core.run(src, dst));
                ASSERT_TRUE(dst.outsideUntouched());
                results[cache == tinyCache] = dst.pixels();
            }
            ASSERT_TRUE(sameBits(results[0], results[1]))
                << K << " taps, offset " << offset << ", of rows " << offsetOfRows;
        }
}

// The stages run on whole vectors, past the end of a row: there they must find what the run has written.
MEMBER_TEST(FilterGaussian, SignallingNaNsInTheWorkMemoryRaiseNoException) {
    using T = typename TypeParam::Element;
    if (!hasExceptionFlags()) GTEST_SKIP() << "the machine does not keep the flags of exceptions";
    constexpr unsigned allMasked = 0x1F80;
    constexpr unsigned invalidFlag = 0x01;
    const T value[3] = {1, 2, 3};
    for (int border : {lumBorderReplicate, lumBorderConstant})
        for (int width : {1, 5, 17, 33}) {
            CoreFilter<TypeParam> core({width, 4}, 5, 1.0F);
            std::fill_n(core.bufferBlock.template as<std::uint32_t>(), core.bufferBlock.size() / 4,
                        0x7FA00001U);
            GuardedImage<T> src(width, 4, {.channels = TypeParam::channels});
            GuardedImage<T> dst(width, 4, {.channels = TypeParam::channels});
            src.fillRandom(width);
            const ControlWord callers(allMasked);
            EXPECT_STATUS(lumStatusOk, core.run(src, dst, border, value));
            EXPECT_EQ(0U, callers.now() & invalidFlag) << "width " << width << ", border " << border;
        }
}

MEMBER_TEST(FilterGaussian, SumsOfForeignWeightsSaturateByValue) {
    using T = typename TypeParam::Element;
    if constexpr (std::is_integral_v<T>) {
        for (int K : {3, 5, 7, 9})
            // The sums of bytes fit integers of 32 bits with the first weight, and no integers with the others.
            for (auto [weight, expected] : {std::pair{100.0F, std::numeric_limits<T>::max()},
                                            std::pair{1e7F, std::numeric_limits<T>::max()},
                                            std::pair{1e30F, std::numeric_limits<T>::max()}}) {
                CoreFilter<TypeParam> core({149, 3}, K, 1.0F);
                std::fill(core.half(), core.half() + K / 2 + 1, weight);
                GuardedImage<T> src(149, 3, {.channels = TypeParam::channels});
                GuardedImage<T> dst(149, 3, {.channels = TypeParam::channels});
                src.fill([](int, int, int) { return 100; });
                EXPECT_STATUS(lumStatusOk, core.run(src, dst));
                for (T result : dst.pixels()) ASSERT_EQ(expected, result);
                // One negative weight, at the centre: the product of both directions is positive, that with 0
                // elsewhere.
                std::fill(core.half(), core.half() + K / 2, 0.0F);
                core.half()[K / 2] = 1;
                core.half()[0] = -weight;
                EXPECT_STATUS(lumStatusOk, core.run(src, dst));
                for (T result : dst.pixels()) ASSERT_EQ(expected, result);
            }
    }
}

TEST(FilterGaussian_32f, SpecialValuesSpreadAsTheFormulaHasThem) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float specials[] = {infinity, -infinity, std::numeric_limits<float>::quiet_NaN(),
                              -0.0F,    1e-41F,    std::numeric_limits<float>::max()};
    for (float special : specials)
        for (int K : {3, 5, 7, 9}) {
            CoreFilter<Members<Lum32f, 1>> core({23, 11}, K, 1.0F);
            GuardedImage<Lum32f> src(23, 11);
            GuardedImage<Lum32f> dst(23, 11);
            src.fill([&](int x, int y, int) { return x == 9 && y == 5 ? special : -0.0F; });
            EXPECT_STATUS(lumStatusOk, core.run(src, dst, lumBorderMirror));
            const auto expected = filtered<Lum32f>(src, 1, core.half(), K, lumBorderMirror, nullptr);
            const auto actual = dst.pixels();
            for (std::size_t i = 0; i < expected.size(); ++i)
                ASSERT_TRUE(std::memcmp(&expected[i], &actual[i], sizeof(float)) == 0 ||
                            (std::isnan(expected[i]) && std::isnan(actual[i])))
                    << special << ", " << K << " taps, element " << i;
        }
}

TEST(FilterGaussianBorder, BorderOfTheObjectIsUsedAndNoOther) {
    using ByteMembers = Members<Lum8u, 1>;
    const Lum8u black[] = {0};
    GuardedImage<Lum8u> src(9, 9);
    src.fill([](int, int, int) { return 200; });
    for (int border : {lumBorderReplicate, lumBorderConstant}) {
        FrontFilter<ByteMembers> front({9, 9}, 3, 1.0F, border);
        GuardedImage<Lum8u> dst(9, 9);
        EXPECT_STATUS(lumStatusOk, ByteMembers::border(front.call(src, dst, border, black)));
        EXPECT_EQ(200, dst.at(4, 4));
        EXPECT_EQ(border == lumBorderReplicate, dst.at(0, 0) == 200);
    }
}
