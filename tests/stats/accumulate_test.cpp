#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "stats/accumulate_members.h"
#include "support/cache_report.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;
using namespace accumulators;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

unsigned bitsOf(float value) { return std::bit_cast<unsigned>(value); }
bool same(float a, float b) { return (std::isnan(a) && std::isnan(b)) || bitsOf(a) == bitsOf(b); }

/// Whether a pixel lies in a whole vector of a row that first aligns its accumulator by scalar steps.
bool inVector(const Lum32f* row, int x, int width) {
    const auto address = reinterpret_cast<std::uintptr_t>(row);
    int head = 0;
    while (head < width && (address + 4 * head) % 16 != 0) ++head;
    return x >= head && x < head + (width - head) / 4 * 4;
}

/// The accumulator that a call has to leave, from the formulas, pixel by pixel.
template <class Family, class T> std::vector<float> expectedSums(bool masked, Scene<T>& scene, float alpha) {
    std::vector<float> sums;
    const LumSize size = scene.srcDst.size();
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const float a = scene.srcDst.at(x, y);
            const auto s1 = static_cast<float>(scene.src1.at(x, y));
            const auto s2 = static_cast<float>(scene.src2.at(x, y));
            const bool vector = inVector(scene.srcDst.row(y), x, size.width);
            sums.push_back(!masked || scene.mask.at(x, y) != 0 ? Family::value(a, s1, s2, alpha)
                                                               : Family::valueMaskedOut(a, s2, vector));
        }
    return sums;
}

template <class Family, class T> void expectSums(bool masked, Scene<T>& scene, float alpha = 0.375F) {
    if (!masked && !Family::template hasPlain<T>) return;
    const std::vector<float> expected = expectedSums<Family>(masked, scene, alpha);
    ASSERT_EQ(lumStatusOk, call<Family>(masked, scene.arguments(alpha)));
    const std::vector<float> actual = scene.srcDst.pixels();
    const int width = scene.srcDst.size().width;
    for (std::size_t i = 0; i < actual.size(); ++i)
        ASSERT_TRUE(same(expected[i], actual[i]))
            << expected[i] << " is not " << actual[i] << ", pixel " << i % width << " of row " << i / width
            << ", width " << width << (masked ? ", masked" : "");
    ASSERT_TRUE(scene.srcDst.outsideUntouched());
}

MEMBER_TEST_SUITE(Accumulators, Members);

/// Those whose formula runs under a zero mask byte in scalar steps too.
MEMBER_TEST_SUITE(ClearingAccumulators, AskingMembers);

} // namespace

TEST(Accumulator, WorkedExample) {
    const Lum8u src[] = {1, 2, 3};
    const Lum8u mask[] = {255, 0, 1};
    float sums[] = {10, 20, 30};
    const LumSize size{3, 1};
    EXPECT_STATUS(lumStatusOk, lumiAdd_8u32f_C1IR(src, 3, sums, 12, size));
    EXPECT_EQ((std::vector<float>{11, 22, 33}), std::vector<float>(sums, sums + 3));
    EXPECT_STATUS(lumStatusOk, lumiAddSquare_8u32f_C1IMR(src, 3, mask, 3, sums, 12, size));
    EXPECT_EQ((std::vector<float>{12, 22, 42}), std::vector<float>(sums, sums + 3));
    EXPECT_STATUS(lumStatusOk, lumiAddProduct_8u32f_C1IR(src, 3, src, 3, sums, 12, size));
    EXPECT_EQ((std::vector<float>{13, 26, 51}), std::vector<float>(sums, sums + 3));
    // Half of the way to the source.
    EXPECT_STATUS(lumStatusOk, lumiAddWeighted_8u32f_C1IR(src, 3, sums, 12, size, 0.5F));
    EXPECT_EQ((std::vector<float>{7, 14, 27}), std::vector<float>(sums, sums + 3));
}

MEMBER_TEST(Accumulators, FormulaHoldsOnEveryWidth) {
    using T = typename TypeParam::Source;
    for (int cache : {hugeCache, tinyCache}) {
        CacheReport report(cache);
        for (bool masked : {false, true})
            for (Guard guard : {Guard::after, Guard::before})
                for (int width = 1; width <= 70; ++width) {
                    Scene<T> scene(width, 3, {.padding = sizeof(T), .guard = guard},
                                   {.padding = 4, .guard = guard});
                    scene.fillRandom(width);
                    ASSERT_NO_FATAL_FAILURE(expectSums<typename TypeParam::Family>(masked, scene));
                }
    }
}

MEMBER_TEST(Accumulators, FormulaHoldsOnEveryAlignment) {
    using T = typename TypeParam::Source;
    for (int cache : {hugeCache, tinyCache}) {
        CacheReport report(cache);
        for (bool masked : {false, true})
            for (int offset = 0; offset < 16; ++offset)
                for (int width : {3, 4, 20, 64}) {
                    const Placement aligned{.guard = Guard::before};
                    const Placement shifted{.offset = offset, .guard = Guard::before};
                    Scene<T> bothShifted(width, 2, shifted, shifted);
                    bothShifted.fillRandom(offset);
                    ASSERT_NO_FATAL_FAILURE(expectSums<typename TypeParam::Family>(masked, bothShifted));
                    Scene<T> sourcesShifted(width, 2, shifted, aligned);
                    sourcesShifted.fillRandom(offset);
                    ASSERT_NO_FATAL_FAILURE(expectSums<typename TypeParam::Family>(masked, sourcesShifted));
                    Scene<T> firstShifted(width, 2, shifted, aligned, aligned);
                    firstShifted.fillRandom(offset);
                    ASSERT_NO_FATAL_FAILURE(expectSums<typename TypeParam::Family>(masked, firstShifted));
                    Scene<T> secondShifted(width, 2, aligned, shifted, aligned);
                    secondShifted.fillRandom(offset);
                    ASSERT_NO_FATAL_FAILURE(expectSums<typename TypeParam::Family>(masked, secondShifted));
                    Scene<T> sumsShifted(width, 2, aligned, shifted);
                    sumsShifted.fillRandom(offset);
                    ASSERT_NO_FATAL_FAILURE(expectSums<typename TypeParam::Family>(masked, sumsShifted));
                }
    }
}

MEMBER_TEST(Accumulators, VectorAgreesWithScalarKernel) {
    using T = typename TypeParam::Source;
    using Family = typename TypeParam::Family;
    using Rule = decltype(Family::rule(0));
    using Kernel = lum::kernels::Accumulate<Rule, T>;
    const Rule rule = Family::rule(0.3F);
    for (int width : {1, 2, 3, 4, 5, 15, 16, 17, 31, 33, 47, 70, 1037}) {
        Scene<T> scalar(width, 3, {}, {});
        Scene<T> vector(width, 3, {}, {});
        scalar.fillRandom(width);
        vector.fillRandom(width);
        const Arguments<T> s = scalar.arguments();
        const Arguments<T> v = vector.arguments();
        const lum::kernels::AccumulatorSources<T> sources({s.src1, s.src1Step}, {s.src2, s.src2Step});
        if constexpr (Family::template hasPlain<T>) {
            Kernel::scalar(rule, sources, {s.srcDst, s.srcDstStep}, s.size);
            Kernel::vectors(rule, sources, {v.srcDst, v.srcDstStep}, v.size);
            ASSERT_TRUE(sameBits(scalar.srcDst.pixels(), vector.srcDst.pixels())) << "width " << width;
        }
        for (lum::Stores stores : {lum::Stores::ordinary, lum::Stores::streaming}) {
            Kernel::maskedScalar(rule, sources, {s.mask, s.maskStep}, {s.srcDst, s.srcDstStep}, s.size);
            Kernel::masked(rule, sources, {v.mask, v.maskStep}, {v.srcDst, v.srcDstStep}, v.size, stores);
            ASSERT_TRUE(sameBits(scalar.srcDst.pixels(), vector.srcDst.pixels()))
                << "masked, width " << width;
        }
    }
}

MEMBER_TEST(Accumulators, NegativeZeroUnderZeroMaskTellsVectorsFromScalar) {
    using T = typename TypeParam::Source;
    for (int offset = 0; offset < 16; ++offset)
        for (int width : {1, 2, 3, 4, 5, 7, 8, 11, 15, 16, 19, 20, 23, 31, 32, 35, 37, 70}) {
            // of rows 4 bytes beyond their pixels, each has an alignment of its own
            Scene<T> scene(width, 4, {}, {.padding = 4, .offset = offset, .guard = Guard::before});
            scene.fillRandom(width + offset);
            scene.srcDst.fill([](int, int, int) { return -0.0F; });
            scene.mask.fill([](int, int, int) { return 0; });
            ASSERT_NO_FATAL_FAILURE(expectSums<typename TypeParam::Family>(true, scene));
        }
}

MEMBER_TEST(Accumulators, ValuesBeyondTheFiniteAreAdded) {
    using T = typename TypeParam::Source;
    const float special[] = {infinity, -infinity, notANumber, -0.0F, 0.0F, 1e-45F, -1e-40F, 3e38F, 1.0F};
    for (bool masked : {false, true})
        for (float alpha : {0.5F, infinity, notANumber, -2.0F})
            for (int width : {3, 13, 41}) {
                Scene<T> scene(width, 27, {}, {});
                scene.fillRandom(11);
                if constexpr (std::is_same_v<T, Lum32f>) {
                    scene.src1.fill([&](int x, int y, int) { return special[(x + y) % 9]; });
                    scene.src2.fill([&](int x, int y, int) { return special[(2 * x + y + y / 9) % 9]; });
                }
                scene.srcDst.fill([&](int x, int y, int) { return special[(x + 2 * y + y / 9) % 9]; });
                ASSERT_NO_FATAL_FAILURE(expectSums<typename TypeParam::Family>(masked, scene, alpha));
            }
}

MEMBER_TEST(Accumulators, MaskedOutNaNKeepsItsBits) {
    using T = typename TypeParam::Source;
    Scene<T> scene(23, 2, {}, {.padding = 4});
    scene.fillRandom(4);
    scene.srcDst.fill([](int x, int, int) { return std::bit_cast<float>(0xFFC01200U + x); });
    scene.mask.fill([](int, int, int) { return 0; });
    EXPECT_STATUS(lumStatusOk, TypeParam::Family::masked(scene.arguments()));
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 23; ++x) EXPECT_EQ(0xFFC01200U + x, bitsOf(scene.srcDst.at(x, y)));
}

MEMBER_TEST(ClearingAccumulators, ExcludedSignallingNaNIsTheSameInVectorsAndScalar) {
    using T = typename TypeParam::Source;
    Scene<T> scene(23, 1, {}, {});
    scene.fillRandom(4);
    scene.srcDst.fill([](int, int, int) { return std::bit_cast<float>(0x7FA01200U); });
    scene.mask.fill([](int, int, int) { return 0; });
    EXPECT_STATUS(lumStatusOk, TypeParam::Family::masked(scene.arguments()));
    for (int x = 1; x < 23; ++x) EXPECT_EQ(bitsOf(scene.srcDst.at(0, 0)), bitsOf(scene.srcDst.at(x, 0)));
}

TEST(AddProduct_32f_C1IMR, MaskedOutNaNKeepsItsBitsBesideAnInfiniteSource) {
    for (float second : {std::numeric_limits<float>::infinity(), std::bit_cast<float>(0x7FC54321U)})
        for (int width : {3, 4, 17}) {
            GuardedImage<Lum32f> src(width, 1);
            GuardedImage<Lum32f> src2(width, 1);
            GuardedImage<Lum8u> mask(width, 1);
            GuardedImage<Lum32f> srcDst(width, 1);
            src2.fill([&](int, int, int) { return second; });
            srcDst.fill([](int x, int, int) { return std::bit_cast<float>(0x7FC12345U + x); });
            EXPECT_STATUS(lumStatusOk, lumiAddProduct_32f_C1IMR(src.data(), src.step(), src2.data(),
                                                                src2.step(), mask.data(), mask.step(),
                                                                srcDst.data(), srcDst.step(), src.size()));
            EXPECT_TRUE(srcDst.untouched()) << "width " << width;
        }
}

TEST(Add_32f_C1IMR, MaskedOutScalarStepsWriteNothing) {
    const Lum32f src[3] = {1, 2, 3};
    const Lum8u mask[3] = {};
    static const Lum32f readOnly[3] = {4, 5, 6};
    EXPECT_STATUS(lumStatusOk,
                  lumiAdd_32f_C1IMR(src, 12, mask, 3, const_cast<Lum32f*>(readOnly), 12, {3, 1}));
    EXPECT_STATUS(lumStatusOk,
                  lumiAddSquare_32f_C1IMR(src, 12, mask, 3, const_cast<Lum32f*>(readOnly), 12, {3, 1}));
    EXPECT_EQ(5.0F, readOnly[1]);
}

MEMBER_TEST(Accumulators, WidthOfThreeUpdatesAllPixelsWithEitherStores) {
    using T = typename TypeParam::Source;
    for (int cache : {hugeCache, tinyCache}) {
        CacheReport report(cache);
        Scene<T> scene(3, 40, {.padding = 2 * sizeof(T)}, {.padding = 4});
        scene.fillRandom(31);
        ASSERT_NO_FATAL_FAILURE(expectSums<typename TypeParam::Family>(true, scene));
    }
}

MEMBER_TEST(Accumulators, MaskedProductsAndWeightedSumsAskForTheCacheOnce) {
    using T = typename TypeParam::Source;
    CacheReport report(hugeCache);
    Scene<T> scene(40, 3, {}, {});
    EXPECT_STATUS(lumStatusOk, call<typename TypeParam::Family>(false, scene.arguments()));
    EXPECT_EQ(0, report.queries());
    EXPECT_STATUS(lumStatusOk, call<typename TypeParam::Family>(true, scene.arguments()));
    EXPECT_EQ(TypeParam::Family::asksForTheCache ? 1 : 0, report.queries());
}

MEMBER_TEST(Accumulators, FailingCacheQueryIsNotReported) {
    using T = typename TypeParam::Source;
    CacheReport report(0, lumStatusOutOfRange);
    Scene<T> scene(45, 3, {.guard = Guard::before}, {.padding = 12, .guard = Guard::before});
    scene.fillRandom(3);
    ASSERT_NO_FATAL_FAILURE(expectSums<typename TypeParam::Family>(true, scene));
}

TEST(Accumulators, RandomScenesFollowTheFormulas) {
    const unsigned seed = std::random_device{}();
    RecordProperty("seed", static_cast<int>(seed));
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int round = 0; round < 60; ++round) {
        const int width = 1 + static_cast<int>(engine() % 200);
        const int height = 1 + static_cast<int>(engine() % 5);
        const Placement sources{.padding = 4 * static_cast<int>(engine() % 5),
                                .offset = static_cast<int>(engine() % 16),
                                .guard = engine() % 2 == 0 ? Guard::before : Guard::after};
        const Placement second{.padding = 4 * static_cast<int>(engine() % 5),
                               .offset = static_cast<int>(engine() % 16),
                               .guard = sources.guard};
        const Placement sums{.padding = 4 * static_cast<int>(engine() % 5),
                             .offset = static_cast<int>(engine() % 16),
                             .guard = sources.guard};
        const float alpha = static_cast<float>(engine() % 1000) / 500 - 0.5F;
        CacheReport report(engine() % 2 == 0 ? tinyCache : hugeCache);
        for (bool masked : {false, true}) {
            Scene<Lum8u> bytes(width, height, sources, second, sums);
            bytes.fillRandom(engine());
            ASSERT_NO_FATAL_FAILURE(expectSums<Sum>(masked, bytes, alpha));
            ASSERT_NO_FATAL_FAILURE(expectSums<Products>(masked, bytes, alpha));
            Scene<Lum16u> words(width, height, sources, sums);
            words.fillRandom(engine());
            ASSERT_NO_FATAL_FAILURE(expectSums<Squares>(masked, words, alpha));
            ASSERT_NO_FATAL_FAILURE(expectSums<Weighted>(masked, words, alpha));
            Scene<Lum32f> floats(width, height, sources, second, sums);
            floats.fillRandom(engine());
            ASSERT_NO_FATAL_FAILURE(expectSums<Squares>(masked, floats, alpha));
            ASSERT_NO_FATAL_FAILURE(expectSums<Products>(masked, floats, alpha));
            ASSERT_NO_FATAL_FAILURE(expectSums<Weighted>(masked, floats, alpha));
            ASSERT_NO_FATAL_FAILURE(expectSums<Sum>(masked, floats, alpha));
        }
    }
}

TEST(AddWeighted, AlphaZeroRewritesEachPixelAsItselfPlusZero) {
    Scene<Lum8u> scene(21, 2, {}, {});
    scene.fillRandom(6);
    scene.srcDst.fill([](int x, int, int) { return x % 3 == 0 ? -0.0F : x * 0.7F; });
    EXPECT_STATUS(lumStatusOk, Weighted::plain(scene.arguments(0.0F)));
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 21; ++x)
            EXPECT_EQ(bitsOf(x % 3 == 0 ? 0.0F : x * 0.7F), bitsOf(scene.srcDst.at(x, y)));
}

TEST(AddWeighted, AlphaOneMayMissTheSourceByItsLastBit) {
    GuardedImage<Lum32f> src(9, 1);
    GuardedImage<Lum32f> sum(9, 1);
    src.fill([](int, int, int) { return 0.1F; });
    sum.fill([](int, int, int) { return 1000.0F; });
    EXPECT_STATUS(lumStatusOk,
                  lumiAddWeighted_32f_C1IR(src.data(), src.step(), sum.data(), sum.step(), {9, 1}, 1.0F));
    const float difference = 0.1F - 1000.0F;
    for (int x = 0; x < 9; ++x) EXPECT_EQ(1000.0F + difference, sum.at(x, 0));
    EXPECT_NE(0.1F, sum.at(0, 0));
}

TEST(AddSquare_16u32f_C1IR, LargestSquareIsRoundedToSinglePrecision) {
    GuardedImage<Lum16u> src(6, 1);
    GuardedImage<Lum32f> sum(6, 1);
    src.fill([](int, int, int) { return 65535; });
    EXPECT_STATUS(lumStatusOk,
                  lumiAddSquare_16u32f_C1IR(src.data(), src.step(), sum.data(), sum.step(), {6, 1}));
    for (float value : sum.pixels()) EXPECT_EQ(4294836224.0F, value);
}

TEST(Add_32f_C1IMR, MaskedOutNaNSourceLeavesTheAccumulator) {
    GuardedImage<Lum32f> src(19, 1);
    GuardedImage<Lum32f> sum(19, 1);
    GuardedImage<Lum8u> mask(19, 1);
    src.fill([](int x, int, int) { return x % 2 == 0 ? notANumber : infinity; });
    sum.fill([](int x, int, int) { return x + 0.5F; });
    EXPECT_STATUS(lumStatusOk, lumiAdd_32f_C1IMR(src.data(), src.step(), mask.data(), mask.step(), sum.data(),
                                                 sum.step(), {19, 1}));
    EXPECT_TRUE(sum.untouched());
}

TEST(AddProduct_32f_C1IMR, MaskedOutInfiniteSecondSourceGivesNaN) {
    for (int width : {3, 19}) {
        GuardedImage<Lum32f> src1(width, 1);
        GuardedImage<Lum32f> src2(width, 1);
        GuardedImage<Lum32f> sum(width, 1);
        GuardedImage<Lum8u> mask(width, 1);
        src1.fillRandom(1);
        src2.fill([](int x, int, int) { return x % 2 == 0 ? infinity : notANumber; });
        EXPECT_STATUS(lumStatusOk,
                      lumiAddProduct_32f_C1IMR(src1.data(), src1.step(), src2.data(), src2.step(),
                                               mask.data(), mask.step(), sum.data(), sum.step(), {width, 1}));
        for (float value : sum.pixels()) EXPECT_TRUE(std::isnan(value));
    }
}

TEST(AddProduct_32f_C1IMR, MaskedOutInfiniteFirstSourceDoesNoHarm) {
    GuardedImage<Lum32f> src1(19, 1);
    GuardedImage<Lum32f> src2(19, 1);
    GuardedImage<Lum32f> sum(19, 1);
    GuardedImage<Lum8u> mask(19, 1);
    src1.fill([](int x, int, int) { return x % 2 == 0 ? infinity : notANumber; });
    src2.fillRandom(1);
    sum.fill([](int x, int, int) { return x + 0.5F; });
    EXPECT_STATUS(lumStatusOk,
                  lumiAddProduct_32f_C1IMR(src1.data(), src1.step(), src2.data(), src2.step(), mask.data(),
                                           mask.step(), sum.data(), sum.step(), {19, 1}));
    EXPECT_TRUE(sum.untouched());
}

TEST(AddWeighted_32f_C1IMR, MaskedOutNaNInSourceOrAlphaDoesNoHarm) {
    for (float alpha : {0.5F, notANumber}) {
        GuardedImage<Lum32f> src(19, 1);
        GuardedImage<Lum32f> sum(19, 1);
        GuardedImage<Lum8u> mask(19, 1);
        src.fill([](int, int, int) { return notANumber; });
        sum.fill([](int x, int, int) { return x + 0.5F; });
        EXPECT_STATUS(lumStatusOk, lumiAddWeighted_32f_C1IMR(src.data(), src.step(), mask.data(), mask.step(),
                                                             sum.data(), sum.step(), {19, 1}, alpha));
        EXPECT_TRUE(sum.untouched());
    }
}
