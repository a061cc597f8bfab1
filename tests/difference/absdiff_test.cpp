#include <bit>
#include <cmath>
#include <limits>

#include "difference/absdiff.h"
#include "kernels/difference/absdiff.h"
#include "support/cache_report.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

float withBits(unsigned bits) { return std::bit_cast<float>(bits); }
unsigned bitsOf(float value) { return std::bit_cast<unsigned>(value); }

/// The members of one element type: of two images, and of an image and a constant.
template <class T> struct Exports;
template <> struct Exports<Lum8u> {
    static constexpr auto absDiff = lumiAbsDiff_8u_C1R;
    static constexpr auto absDiffC = lumiAbsDiffC_8u_C1R;
};
template <> struct Exports<Lum16u> {
    static constexpr auto absDiff = lumiAbsDiff_16u_C1R;
    static constexpr auto absDiffC = lumiAbsDiffC_16u_C1R;
};
template <> struct Exports<Lum32f> {
    static constexpr auto absDiff = lumiAbsDiff_32f_C1R;
    static constexpr auto absDiffC = lumiAbsDiffC_32f_C1R;
};

template <class T> struct Call {
    const T* src1;
    int src1Step;
    const T* src2;
    int src2Step;
    T* dst;
    int dstStep;
    LumSize size;
};
template <class T> LumStatus absDiff(const Call<T>& c) {
    return Exports<T>::absDiff(c.src1, c.src1Step, c.src2, c.src2Step, c.dst, c.dstStep, c.size);
}
template <class T>
LumStatus absDiff(const GuardedImage<T>& src1, const GuardedImage<T>& src2, GuardedImage<T>& dst) {
    return absDiff<T>(
        {src1.data(), src1.step(), src2.data(), src2.step(), dst.data(), dst.step(), dst.size()});
}

template <class T> struct CallWithConstant {
    const T* src;
    int srcStep;
    T* dst;
    int dstStep;
    LumSize size;
    T value = 1;
};
template <class T> LumStatus absDiffC(const CallWithConstant<T>& c) {
    return Exports<T>::absDiffC(c.src, c.srcStep, c.dst, c.dstStep, c.size, c.value);
}
template <class T> LumStatus absDiffC(const GuardedImage<T>& src, T value, GuardedImage<T>& dst) {
    return absDiffC<T>({src.data(), src.step(), dst.data(), dst.step(), dst.size(), value});
}

/// One pixel of 32f through the two-image member.
float difference(float a, float b) {
    float result = 0;
    EXPECT_STATUS(lumStatusOk, lumiAbsDiff_32f_C1R(&a, 4, &b, 4, &result, 4, {1, 1}));
    return result;
}

using Elements = testing::Types<Lum8u, Lum16u, Lum32f>;
MEMBER_TEST_SUITE(AbsDiffTypes, Elements);

// The choice of stores leaves no trace in a result. Its sizes are kept, the one of a constant in 16u among them,
// which counts an image too many.
static_assert(lum::absDiffStreamedBytes<Lum8u> == 0 && lum::absDiffCStreamedBytes<Lum8u> == 0);
static_assert(lum::absDiffStreamedBytes<Lum16u> == 6 && lum::absDiffCStreamedBytes<Lum16u> == 6);
static_assert(lum::absDiffStreamedBytes<Lum32f> == 12 && lum::absDiffCStreamedBytes<Lum32f> == 8);

/// The exported calls against the scalar kernels on one shape of images, every byte compared.
template <class T> void expectAgreesWithScalar(int width, int height, Placement placement) {
    GuardedImage<T> a(width, height, placement);
    GuardedImage<T> b(width, height, placement);
    GuardedImage<T> expected(width, height, placement);
    GuardedImage<T> actual(width, height, placement);
    a.fillRandom(1 + width);
    b.fillRandom(77 + width);

    lum::kernels::absDiffScalar<T>({a.data(), a.step()}, {b.data(), b.step()},
                                   {expected.data(), expected.step()}, a.size());
    ASSERT_EQ(lumStatusOk, absDiff(a, b, actual));
    ASSERT_TRUE(sameBits(expected.pixels(), actual.pixels())) << "width " << width;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            ASSERT_EQ(static_cast<T>(std::abs(a.at(x, y) - b.at(x, y))), actual.at(x, y));
    ASSERT_TRUE(actual.outsideUntouched());

    const T constant = static_cast<T>(200);
    lum::kernels::absDiffCScalar<T>({a.data(), a.step()}, constant, {expected.data(), expected.step()},
                                    a.size());
    ASSERT_EQ(lumStatusOk, absDiffC(a, constant, actual));
    ASSERT_TRUE(sameBits(expected.pixels(), actual.pixels())) << "constant, width " << width;
    ASSERT_TRUE(actual.outsideUntouched());
}

} // namespace

MEMBER_TEST(AbsDiffTypes, ThreePixelsByHand) {
    using T = TypeParam;
    const T first[] = {10, 200, 7};
    const T second[] = {30, 50, 7};
    T dst[3] = {};
    EXPECT_STATUS(lumStatusOk,
                  absDiff<T>({first, sizeof(first), second, sizeof(second), dst, sizeof(dst), {3, 1}}));
    EXPECT_EQ((std::vector<T>{20, 150, 0}), std::vector<T>(dst, dst + 3));
    EXPECT_STATUS(lumStatusOk, absDiffC<T>({first, sizeof(first), dst, sizeof(dst), {3, 1}, 50}));
    EXPECT_EQ((std::vector<T>{40, 150, 43}), std::vector<T>(dst, dst + 3));
}

MEMBER_TEST(AbsDiffTypes, VectorAgreesWithScalarOnEveryWidthAndBothStores) {
    for (int cache : {hugeCache, tinyCache}) {
        CacheReport report(cache);
        for (int width = 1; width <= 70; ++width) {
            expectAgreesWithScalar<TypeParam>(width, 3, {});
            expectAgreesWithScalar<TypeParam>(width, 3, {.padding = 4, .guard = Guard::before});
        }
        expectAgreesWithScalar<TypeParam>(1037, 5, {});
    }
}

MEMBER_TEST(AbsDiffTypes, VectorAgreesWithScalarOnEveryAlignment) {
    for (int offset = 0; offset < 16; offset += sizeof(TypeParam))
        for (int cache : {hugeCache, tinyCache}) {
            CacheReport report(cache);
            expectAgreesWithScalar<TypeParam>(64 / sizeof(TypeParam), 2,
                                              {.offset = offset, .guard = Guard::before});
            expectAgreesWithScalar<TypeParam>(37, 2,
                                              {.padding = 16, .offset = offset, .guard = Guard::before});
        }
}

MEMBER_TEST(AbsDiffTypes, AnyOneMisalignedPointerOrStepGivesTheAlignedResult) {
    constexpr int width = 64 / sizeof(TypeParam);
    const Placement aligned{.guard = Guard::before};
    const Placement pointerOff{.offset = 1, .guard = Guard::before};
    const Placement stepOff{.padding = sizeof(TypeParam), .guard = Guard::before};
    const auto constant = static_cast<TypeParam>(100);
    GuardedImage<TypeParam> a(width, 2, aligned);
    GuardedImage<TypeParam> b(width, 2, aligned);
    GuardedImage<TypeParam> expected(width, 2, aligned);
    GuardedImage<TypeParam> expectedC(width, 2, aligned);
    a.fillRandom(5);
    b.fillRandom(6);
    ASSERT_EQ(lumStatusOk, absDiff(a, b, expected));
    ASSERT_EQ(lumStatusOk, absDiffC(a, constant, expectedC));
    for (int cache : {hugeCache, tinyCache})
        for (int misplaced = 0; misplaced < 3; ++misplaced)
            for (const Placement& off : {pointerOff, stepOff}) {
                CacheReport report(cache);
                GuardedImage<TypeParam> first(width, 2, misplaced == 0 ? off : aligned);
                GuardedImage<TypeParam> second(width, 2, misplaced == 1 ? off : aligned);
                GuardedImage<TypeParam> result(width, 2, misplaced == 2 ? off : aligned);
                first.fill([&](int x, int y, int) { return a.at(x, y); });
                second.fill([&](int x, int y, int) { return b.at(x, y); });
                ASSERT_EQ(lumStatusOk, absDiff(first, second, result));
                EXPECT_TRUE(sameBits(expected.pixels(), result.pixels())) << "image " << misplaced;
                ASSERT_EQ(lumStatusOk, absDiffC(first, constant, result));
                EXPECT_TRUE(sameBits(expectedC.pixels(), result.pixels())) << "image " << misplaced;
            }
}

MEMBER_TEST(AbsDiffTypes, DestinationMayBeEitherSource) {
    GuardedImage<TypeParam> a(45, 3);
    GuardedImage<TypeParam> b(45, 3);
    GuardedImage<TypeParam> expected(45, 3);
    a.fillRandom(8);
    b.fillRandom(9);
    const auto original = a.pixels();
    EXPECT_STATUS(lumStatusOk, absDiff(a, b, expected));
    EXPECT_STATUS(lumStatusOk, absDiff(a, b, a));
    EXPECT_TRUE(sameBits(expected.pixels(), a.pixels()));
    a.fill([&](int x, int y, int) { return original[y * 45 + x]; });
    EXPECT_STATUS(lumStatusOk, absDiff(a, b, b));
    EXPECT_TRUE(sameBits(expected.pixels(), b.pixels()));
}

MEMBER_TEST(AbsDiffTypes, NullPointersComeBeforeSizes) {
    using T = TypeParam;
    GuardedImage<T> image(4, 2);
    T* data = image.data();
    const int step = image.step();
    for (LumSize size : {LumSize{4, 2}, LumSize{0, 0}}) {
        const Call<T> ofTwo[] = {{nullptr, step, data, step, data, step, size},
                                 {data, step, nullptr, step, data, step, size},
                                 {data, step, data, step, nullptr, step, size}};
        const CallWithConstant<T> ofOne[] = {{nullptr, step, data, step, size},
                                             {data, step, nullptr, step, size}};
        for (const auto& call : ofTwo) EXPECT_REFUSED(lumStatusNullPointer, image, absDiff(call));
        for (const auto& call : ofOne) EXPECT_REFUSED(lumStatusNullPointer, image, absDiffC(call));
    }
}

MEMBER_TEST(AbsDiffTypes, EmptyRegionIsSizeErrorBeforeSteps) {
    using T = TypeParam;
    GuardedImage<T> image(4, 2);
    T* data = image.data();
    for (LumSize size : {LumSize{0, 2}, LumSize{4, 0}, LumSize{-4, 2}, LumSize{4, -2}})
        for (int step : {image.step(), -1, 0}) {
            EXPECT_REFUSED(lumStatusSizeError, image, absDiff<T>({data, step, data, step, data, step, size}));
            EXPECT_REFUSED(lumStatusSizeError, image, absDiffC<T>({data, step, data, step, size}));
        }
}

/// The status of calls in which one image has another step than the others.
template <class T> std::vector<LumStatus> statusesWithStep(GuardedImage<T>& image, int other) {
    T* data = image.data();
    const int step = image.step();
    const LumSize size = image.size();
    return {absDiff<T>({data, other, data, step, data, step, size}),
            absDiff<T>({data, step, data, other, data, step, size}),
            absDiff<T>({data, step, data, step, data, other, size}),
            absDiffC<T>({data, other, data, step, size}), absDiffC<T>({data, step, data, other, size})};
}

MEMBER_TEST(AbsDiffTypes, StepOfTheRowPassesAndOneByteLessIsStepError) {
    GuardedImage<TypeParam> image(4, 2);
    for (int shortStep : {image.step() - 1, 0, -image.step()}) {
        EXPECT_EQ(std::vector<LumStatus>(5, lumStatusStepError), statusesWithStep(image, shortStep));
        EXPECT_TRUE(image.untouched());
    }
    EXPECT_STATUS(lumStatusOk, absDiff(image, image, image));
}

MEMBER_TEST(AbsDiffTypes, StepOffTheElementIsStepAlignmentError) {
    GuardedImage<TypeParam> image(4, 1, {.padding = 8});
    const LumStatus expected = sizeof(TypeParam) == 1 ? lumStatusOk : lumStatusStepAlignmentError;
    for (int more : {1, 3})
        EXPECT_EQ(std::vector<LumStatus>(5, expected), statusesWithStep(image, image.step() + more));
}

MEMBER_TEST(AbsDiffTypes, HugeWidthIsStepErrorAndNotWrapped) {
    GuardedImage<TypeParam> image(4, 1);
    TypeParam* data = image.data();
    const int step = sizeof(TypeParam) == 1 ? 0x7FFFFFFE : 0x7FFFFFFC;
    EXPECT_REFUSED(lumStatusStepError, image,
                   absDiff<TypeParam>({data, step, data, step, data, step, {0x7FFFFFFF, 1}}));
}

TEST(AbsDiff_16u_C1R, ShortOddStepIsTooShortFirstLongOneMisaligned) {
    GuardedImage<Lum16u> image(2, 1);
    const auto callWithSteps = [&](int step) {
        return absDiff<Lum16u>({image.data(), step, image.data(), step, image.data(), step, {2, 1}});
    };
    EXPECT_REFUSED(lumStatusStepAlignmentError, image, callWithSteps(5));
    EXPECT_REFUSED(lumStatusStepError, image, callWithSteps(3));
}

TEST(AbsDiff_8u_C3R, StepBelowThreeTimesWidthIsStepError) {
    GuardedImage<Lum8u> image(10, 1, {.channels = 3});
    Lum8u* p = image.data();
    EXPECT_REFUSED(lumStatusStepError, image, lumiAbsDiff_8u_C3R(p, 29, p, 30, p, 30, {10, 1}));
    EXPECT_STATUS(lumStatusOk, lumiAbsDiff_8u_C3R(p, 30, p, 30, p, 30, {10, 1}));
}

TEST(AbsDiff_8u_C3R, WidthOfThreeChannelsWraps) {
    GuardedImage<Lum8u> image(1, 1, {.channels = 3});
    Lum8u* p = image.data();
    EXPECT_REFUSED(lumStatusSizeError, image, lumiAbsDiff_8u_C3R(p, 3, p, 3, p, 3, {0x40000000, 1}));
    EXPECT_STATUS(lumStatusOk, lumiAbsDiff_8u_C3R(p, 3, p, 3, p, 3, {0x55555556, 1}));
}

TEST(AbsDiff_8u_C3R, EachChannelIsDifferenced) {
    GuardedImage<Lum8u> a(11, 2, {.channels = 3});
    GuardedImage<Lum8u> b(11, 2, {.channels = 3});
    GuardedImage<Lum8u> dst(11, 2, {.channels = 3, .padding = 5});
    a.fillRandom(1);
    b.fillRandom(2);
    EXPECT_STATUS(lumStatusOk, lumiAbsDiff_8u_C3R(a.data(), a.step(), b.data(), b.step(), dst.data(),
                                                  dst.step(), a.size()));
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 11; ++x)
            for (int c = 0; c < 3; ++c) EXPECT_EQ(std::abs(a.at(x, y, c) - b.at(x, y, c)), dst.at(x, y, c));
    EXPECT_TRUE(dst.outsideUntouched());
}

TEST(AbsDiffC_8u_C1R, ConstantIsClampedToTheElement) {
    GuardedImage<Lum8u> src(256, 1);
    GuardedImage<Lum8u> dst(256, 1);
    src.fill([](int x, int, int) { return x; });
    EXPECT_STATUS(lumStatusOk, lumiAbsDiffC_8u_C1R(src.data(), 256, dst.data(), 256, {256, 1}, -5));
    EXPECT_EQ(src.pixels(), dst.pixels());
    EXPECT_STATUS(lumStatusOk, lumiAbsDiffC_8u_C1R(src.data(), 256, dst.data(), 256, {256, 1}, 300));
    for (int x = 0; x < 256; ++x) EXPECT_EQ(255 - x, dst.at(x, 0));
}

TEST(AbsDiffC_16u_C1R, ConstantIsClampedToTheElement) {
    const Lum16u src[2] = {0, 65535};
    Lum16u dst[2] = {};
    EXPECT_STATUS(lumStatusOk, lumiAbsDiffC_16u_C1R(src, 4, dst, 4, {2, 1}, 70000));
    EXPECT_EQ(65535, dst[0]);
    EXPECT_EQ(0, dst[1]);
    EXPECT_STATUS(lumStatusOk, lumiAbsDiffC_16u_C1R(src, 4, dst, 4, {2, 1}, -70000));
    EXPECT_EQ(0, dst[0]);
    EXPECT_EQ(65535, dst[1]);
}

TEST(AbsDiff_32f_C1R, EqualInfinitiesGivePositiveNaN) {
    const float result = difference(infinity, infinity);
    EXPECT_TRUE(std::isnan(result));
    EXPECT_FALSE(std::signbit(result));
}

TEST(AbsDiff_32f_C1R, NaNKeepsItsPayloadWithTheSignCleared) {
    EXPECT_EQ(0x7FC01234U, bitsOf(difference(1.0F, withBits(0xFFC01234))));
    EXPECT_EQ(0x7FC05678U, bitsOf(difference(withBits(0xFFC05678), 1.0F)));
}

TEST(AbsDiff_32f_C1R, OfTwoNaNsTheFirstOperandStays) {
    constexpr int width = 13;
    GuardedImage<Lum32f> a(width, 1);
    GuardedImage<Lum32f> b(width, 1);
    GuardedImage<Lum32f> dst(width, 1);
    a.fill([](int x, int, int) { return withBits(0xFFC00100 + x); });
    b.fill([](int x, int, int) { return withBits(0x7FC00200 + x); });
    EXPECT_STATUS(lumStatusOk, absDiff(a, b, dst));
    for (int x = 0; x < width; ++x) EXPECT_EQ(0x7FC00100U + x, bitsOf(dst.at(x, 0)));
}

TEST(AbsDiff_32f_C1R, DifferenceOfZerosIsPositiveZero) {
    EXPECT_EQ(0U, bitsOf(difference(-0.0F, 0.0F)));
    EXPECT_EQ(0U, bitsOf(difference(0.0F, 0.0F)));
}

TEST(AbsDiffC_32f_C1R, ConstantIsUsedUnchanged) {
    const float src[2] = {1.5F, -infinity};
    float dst[2] = {};
    EXPECT_STATUS(lumStatusOk, lumiAbsDiffC_32f_C1R(src, 8, dst, 8, {2, 1}, -300.25F));
    EXPECT_EQ(301.75F, dst[0]);
    EXPECT_EQ(infinity, dst[1]);
}

TEST(AbsDiff, OnlyWideElementsAskForTheCache) {
    CacheReport report(hugeCache);
    GuardedImage<Lum8u> bytes(64, 1);
    EXPECT_STATUS(lumStatusOk, absDiff(bytes, bytes, bytes));
    EXPECT_STATUS(lumStatusOk, absDiffC<Lum8u>(bytes, 3, bytes));
    EXPECT_EQ(0, report.queries());
    GuardedImage<Lum16u> words(32, 1);
    EXPECT_STATUS(lumStatusOk, absDiff(words, words, words));
    EXPECT_STATUS(lumStatusOk, absDiffC<Lum16u>(words, 3, words));
    EXPECT_EQ(2, report.queries());
}

TEST(AbsDiff, FailingCacheQueryIsNotReported) {
    CacheReport report(0, lumStatusOutOfRange);
    GuardedImage<Lum32f> image(32, 2, {.guard = Guard::before});
    image.fillRandom(3);
    EXPECT_STATUS(lumStatusOk, absDiff(image, image, image));
    for (float value : image.pixels()) EXPECT_EQ(0U, bitsOf(value));
}
