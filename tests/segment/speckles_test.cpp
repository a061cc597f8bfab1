#include "lumcv.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "kernels/segment/speckles.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

template <class T> constexpr auto markSpeckles = lumiMarkSpeckles_8u_C1IR;
template <> constexpr auto markSpeckles<Lum16u> = lumiMarkSpeckles_16u_C1IR;
template <> constexpr auto markSpeckles<Lum16s> = lumiMarkSpeckles_16s_C1IR;
template <> constexpr auto markSpeckles<Lum32f> = lumiMarkSpeckles_32f_C1IR;

using Elements = testing::Types<Lum8u, Lum16u, Lum16s, Lum32f>;
MEMBER_TEST_SUITE(MarkSpeckles, Elements);

std::size_t bufferBytes(LumSize size) {
    Lum32s bytes = 0;
    EXPECT_EQ(lumStatusOk, lumiMarkSpecklesGetBufferSize(size, lumType8u, 1, &bytes));
    return static_cast<std::size_t>(bytes);
}

template <class T> struct Rule {
    T speckleValue;
    Lum32s maxSize;
    T maxDifference;
};

template <class T>
std::vector<T> marked(const std::vector<T>& pixels, LumSize size, const Rule<T>& rule, int shift = 0) {
    GuardedImage<T> image(
        size.width, size.height,
        {.padding = shift % 3, .offset = shift, .guard = shift % 2 == 0 ? Guard::after : Guard::before});
    image.fill([&](int x, int y, int) { return pixels[y * size.width + x]; });
    GuardedBlock buffer(bufferBytes(size), shift % 2 == 0 ? Guard::after : Guard::before, shift);
    EXPECT_STATUS(lumStatusOk, markSpeckles<T>(image.data(), image.step(), size, rule.speckleValue,
                                               rule.maxSize, rule.maxDifference, lumNormInf, buffer.as<>()));
    EXPECT_TRUE(image.outsideUntouched());
    return image.pixels();
}

/// Region by region from a stack of pixels, each written when its region is known.
template <class T> std::vector<T> reference(std::vector<T> pixels, LumSize size, const Rule<T>& rule) {
    std::vector<int> labels(pixels.size());
    std::vector<bool> isSpeckle(pixels.size() + 1);
    const auto belongs = [&](T v) { return v == v && v != rule.speckleValue; };
    const auto similar = [&](T a, T b) {
        if constexpr (std::is_floating_point_v<T>)
            return std::fabs(a - b) <= rule.maxDifference;
        else
            return std::abs(int{a} - int{b}) <= rule.maxDifference;
    };
    int next = 1;
    for (int start = 0; start < static_cast<int>(pixels.size()); ++start) {
        if (!belongs(pixels[start])) continue;
        if (labels[start] != 0) {
            if (isSpeckle[labels[start]]) pixels[start] = rule.speckleValue;
            continue;
        }
        std::vector<int> pending{start};
        labels[start] = next;
        Lum32s count = 1;
        while (!pending.empty()) {
            const int place = pending.back();
            pending.pop_back();
            const int x = place % size.width;
            const int y = place / size.width;
            const auto look = [&](bool inside, int neighbour) {
                if (!inside || labels[neighbour] != 0 || !belongs(pixels[neighbour])) return;
                if (!similar(pixels[neighbour], pixels[place])) return;
                labels[neighbour] = next;
                pending.push_back(neighbour);
                ++count;
            };
            look(x + 1 < size.width, place + 1);
            look(x > 0, place - 1);
            look(y > 0, place - size.width);
            look(y + 1 < size.height, place + size.width);
        }
        if (count <= rule.maxSize) {
            isSpeckle[next] = true;
            pixels[start] = rule.speckleValue;
        }
        ++next;
    }
    return pixels;
}

} // namespace

MEMBER_TEST(MarkSpeckles, SmallRegionsAreWrittenOver) {
    using T = TypeParam;
    // Of values that differ by at most 2: a region of 6, one of 3, one of 1, and two that 0 keeps apart.
    const std::vector<T> pixels{10, 11, 13, 60, //
                                10, 90, 15, 60, //
                                11, 0,  0,  61};
    EXPECT_EQ((std::vector<T>{10, 11, 13, 0, 10, 0, 15, 0, 11, 0, 0, 0}),
              marked<T>(pixels, {4, 3}, {0, 3, 2}));
    EXPECT_EQ((std::vector<T>{10, 11, 13, 60, 10, 0, 15, 60, 11, 0, 0, 61}),
              marked<T>(pixels, {4, 3}, {0, 2, 2}));
    EXPECT_EQ(std::vector<T>(12, 0), marked<T>(pixels, {4, 3}, {0, 6, 2}));
}

MEMBER_TEST(MarkSpeckles, LargestSpeckleHasExactlyTheGivenSize) {
    using T = TypeParam;
    const std::vector<T> pixels{5, 5, 5, 9, 9, 9, 9};
    EXPECT_EQ((std::vector<T>{1, 1, 1, 9, 9, 9, 9}), marked<T>(pixels, {7, 1}, {1, 3, 0}));
    EXPECT_EQ((std::vector<T>{1, 1, 1, 9, 9, 9, 9}), marked<T>(pixels, {1, 7}, {1, 3, 0}));
    EXPECT_EQ(pixels, marked<T>(pixels, {7, 1}, {1, 2, 0}));
    EXPECT_EQ(pixels, marked<T>(pixels, {7, 1}, {1, 0, 0}));
    EXPECT_EQ(pixels, marked<T>(pixels, {7, 1}, {1, -1, 0}));
    EXPECT_EQ(std::vector<T>(7, 1), marked<T>(pixels, {7, 1}, {1, std::numeric_limits<Lum32s>::max(), 0}));
}

MEMBER_TEST(MarkSpeckles, EveryWidthFollowsTheReference) {
    using T = TypeParam;
    std::mt19937 engine(31);
    for (int width = 1; width <= 140; ++width)
        for (int spread : {2, 6, 60}) {
            const LumSize size{width, 1 + (width + spread) % 9};
            std::vector<T> pixels(static_cast<std::size_t>(size.width) * size.height);
            for (T& pixel : pixels) pixel = static_cast<T>(engine() % spread);
            const Rule<T> rule{static_cast<T>(engine() % spread), static_cast<Lum32s>(engine() % 30),
                               static_cast<T>(engine() % 3 * spread / 8)};
            ASSERT_TRUE(sameBits(reference<T>(pixels, size, rule), marked<T>(pixels, size, rule, width % 64)))
                << width << " wide, values below " << spread;
        }
}

MEMBER_TEST(MarkSpeckles, ValuesOfTheWholeRangeFollowTheReference) {
    using T = TypeParam;
    std::mt19937 engine(32);
    for (int i = 0; i < 60; ++i) {
        const LumSize size{90 + i, 5};
        std::vector<T> pixels(static_cast<std::size_t>(size.width) * size.height);
        for (T& pixel : pixels) {
            const auto bits = static_cast<std::uint32_t>(engine());
            if constexpr (std::is_floating_point_v<T>)
                pixel = std::bit_cast<float>(bits % 5 == 0 ? bits | 0x7F800000U : bits);
            else
                pixel = engine() % 2 == 0   ? static_cast<T>(bits)
                        : engine() % 2 == 0 ? std::numeric_limits<T>::max()
                                            : std::numeric_limits<T>::min();
        }
        const T far = std::is_floating_point_v<T> ? static_cast<T>(1e30F) : std::numeric_limits<T>::max();
        const Rule<T> rule{pixels[7], 1 + i % 4, i % 3 == 0 ? far : static_cast<T>(far / 2)};
        ASSERT_TRUE(sameBits(reference<T>(pixels, size, rule), marked<T>(pixels, size, rule, i)))
            << "run " << i;
    }
}

TEST(MarkSpeckles_16s_C1IR, DifferencesBeyond16BitsAreExact) {
    const std::vector<Lum16s> pixels{-32768, 32767, -1, 32766, 0};
    const std::vector<Lum16s> wide(100, -32768);
    EXPECT_EQ((std::vector<Lum16s>{7, 7, -1, 32766, 0}), marked<Lum16s>(pixels, {5, 1}, {7, 1, 32767}));
    EXPECT_EQ(wide, marked<Lum16s>(wide, {100, 1}, {7, 99, 0}));
}

TEST(MarkSpeckles_16s_C1IR, NegativeDifferenceJoinsNoPixels) {
    for (int width : {3, 100}) {
        const std::vector<Lum16s> pixels(width, 4);
        EXPECT_EQ(std::vector<Lum16s>(width, 9), marked<Lum16s>(pixels, {width, 1}, {9, 1, -1}));
    }
}

TEST(MarkSpeckles_32f_C1IR, NanIsInNoRegionAndStays) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    for (int width : {6, 60}) {
        std::vector<float> pixels(width, nan);
        pixels[1] = 3, pixels[2] = 3;
        const auto result = marked<float>(pixels, {width, 1}, {0, 50, 10});
        EXPECT_TRUE(std::isnan(result[0]));
        EXPECT_EQ(0, result[1]);
        EXPECT_EQ(0, result[2]);
        for (int x = 3; x < width; ++x) EXPECT_TRUE(std::isnan(result[x]));
        // As a speckle value NaN equals no pixel, and is written.
        const auto written = marked<float>(pixels, {width, 1}, {nan, 2, 10});
        EXPECT_TRUE(std::isnan(written[1]) && std::isnan(written[2]));
        const std::vector<float> same(width, 3);
        EXPECT_EQ(same, marked<float>(same, {width, 1}, {nan, width - 1, 10}));
        EXPECT_EQ(std::vector<float>(width, 0), marked<float>(same, {width, 1}, {0, 1, nan}));
    }
    // The difference of infinities is no number; that of one and a number is infinite.
    EXPECT_EQ((std::vector<float>{0, 0}), marked<float>({infinity, infinity}, {2, 1}, {0, 1, infinity}));
    EXPECT_EQ((std::vector<float>{infinity, 1}), marked<float>({infinity, 1}, {2, 1}, {0, 1, infinity}));
}

TEST(MarkSpeckles_32f_C1IR, MinusZeroIsTheSpeckleValueZero) {
    const std::vector<float> pixels{-0.F, 5, -0.F};
    const auto result = marked<float>(pixels, {3, 1}, {0.F, 1, 100});
    EXPECT_TRUE(std::signbit(result[0]) && std::signbit(result[2]));
    EXPECT_FALSE(std::signbit(result[1]));
}

TEST(MarkSpeckles_8u_C1IR, RowsMayGoUpwards) {
    GuardedImage<Lum8u> image(5, 4);
    image.fill([](int x, int y, int) { return y == 0 ? 9 : 10 * x; });
    GuardedBlock buffer(bufferBytes(image.size()));
    EXPECT_STATUS(lumStatusOk, lumiMarkSpeckles_8u_C1IR(image.row(3), -image.step(), image.size(), 200, 3, 0,
                                                        lumNormInf, buffer.as<>()));
    for (int x = 0; x < 5; ++x)
        for (int y = 0; y < 4; ++y) EXPECT_EQ(y == 0 ? 9 : 200, image.at(x, y));
}

TEST(MarkSpecklesGetBufferSize, FollowsTheFormulaAndRefuses) {
    Lum32s bytes = -3;
    for (LumDataType type : {lumType8u, lumType16u, lumType16s, lumType32f}) {
        EXPECT_STATUS(lumStatusOk, lumiMarkSpecklesGetBufferSize({7, 5}, type, 1, &bytes));
        EXPECT_EQ(13 * 35 + 64, bytes);
    }
    EXPECT_STATUS(lumStatusOk, lumiMarkSpecklesGetBufferSize({40000, 30000}, lumType8u, 1, &bytes));
    EXPECT_EQ(static_cast<Lum32s>(static_cast<std::uint32_t>(15600000064ULL)), bytes);
    bytes = -3;
    EXPECT_STATUS(lumStatusNullPointer, lumiMarkSpecklesGetBufferSize({0, 5}, lumType64f, 3, nullptr));
    EXPECT_STATUS(lumStatusSizeError, lumiMarkSpecklesGetBufferSize({0, 5}, lumType64f, 3, &bytes));
    EXPECT_STATUS(lumStatusSizeError, lumiMarkSpecklesGetBufferSize({5, -1}, lumType64f, 3, &bytes));
    for (LumDataType type : {0, 2, 11, 19, -1})
        EXPECT_STATUS(lumStatusDataTypeError, lumiMarkSpecklesGetBufferSize({5, 5}, type, 3, &bytes));
    for (int channels : {0, 3, 4, -1})
        EXPECT_STATUS(lumStatusCountError,
                      lumiMarkSpecklesGetBufferSize({5, 5}, lumType8u, channels, &bytes));
    EXPECT_EQ(-3, bytes);
}

TEST(MarkSpecklesGetBufferSize, HoldsARunAPixel) {
    for (int width = 1; width <= 200; ++width)
        for (int height = 1; height <= 200; ++height)
            ASSERT_LE(lum::kernels::speckleBytes({width, height}) + 63, 13U * width * height + 64);
}

MEMBER_TEST(MarkSpeckles, ArgumentsAreTestedInOrder) {
    using T = TypeParam;
    GuardedImage<T> image(5, 4);
    image.fillRandom(2);
    GuardedBlock buffer(bufferBytes(image.size()));
    const auto call = [&](T* data, LumSize size, LumNormKind norm, Lum8u* block) {
        return markSpeckles<T>(data, image.step(), size, 0, 100, 100, norm, block);
    };
    EXPECT_REFUSED(lumStatusNullPointer, image, call(nullptr, {0, 4}, 2, buffer.as<>()));
    EXPECT_REFUSED(lumStatusNullPointer, image, call(image.data(), {0, 4}, 2, nullptr));
    EXPECT_REFUSED(lumStatusSizeError, image, call(image.data(), {0, 4}, 2, buffer.as<>()));
    EXPECT_REFUSED(lumStatusSizeError, image, call(image.data(), {5, 0}, 2, buffer.as<>()));
    for (LumNormKind norm : {0, 2, 4, -1})
        EXPECT_REFUSED(lumStatusNormError, image, call(image.data(), image.size(), norm, buffer.as<>()));
}
