#include "lumcv.h"

#include <gtest/gtest.h>

#include <random>

#include "kernels/segment/bound_segments.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

template <class T> constexpr auto boundSegments = lumiBoundSegments_8u_C1IR;
template <> constexpr auto boundSegments<Lum16u> = lumiBoundSegments_16u_C1IR;

using Elements = testing::Types<Lum8u, Lum16u>;
MEMBER_TEST_SUITE(BoundSegments, Elements);

template <class T>
std::vector<T> bounded(const std::vector<T>& pixels, LumSize size, T border, LumSpatialNorm norm,
                       int shift = 0) {
    GuardedImage<T> image(
        size.width, size.height,
        {.padding = shift % 3 * 2, .offset = shift, .guard = shift % 2 == 0 ? Guard::after : Guard::before});
    image.fill([&](int x, int y, int) { return pixels[y * size.width + x]; });
    EXPECT_STATUS(lumStatusOk, boundSegments<T>(image.data(), image.step(), size, border, norm));
    EXPECT_TRUE(image.outsideUntouched());
    return image.pixels();
}

template <class T>
std::vector<T> reference(std::vector<T> pixels, LumSize size, T border, LumSpatialNorm norm) {
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            T& pixel = pixels[y * size.width + x];
            bool turns = false;
            for (int i = 0; i < 4; ++i) {
                const int dx = i == 3 ? -1 : i - 1;
                const int dy = i == 3 ? 0 : -1;
                if (norm == lumSpatialNormL1 && dx != 0 && dy != 0) continue;
                if (x + dx < 0 || x + dx >= size.width || y + dy < 0) continue;
                const T n = pixels[(y + dy) * size.width + x + dx];
                turns |= n != border && n != pixel;
            }
            if (turns) pixel = border;
        }
    return pixels;
}

template <class T> std::vector<T> randomLabels(std::mt19937& engine, LumSize size, int values) {
    std::vector<T> pixels(static_cast<std::size_t>(size.width) * size.height);
    T last = 0;
    for (T& pixel : pixels) pixel = last = engine() % 4 == 0 ? static_cast<T>(engine() % values * 51) : last;
    return pixels;
}

} // namespace

MEMBER_TEST(BoundSegments, SecondOfTwoNeighboursTurns) {
    using T = TypeParam;
    const std::vector<T> pixels{1, 1, 2, 2, //
                                1, 3, 3, 2, //
                                1, 3, 3, 2};
    EXPECT_EQ((std::vector<T>{1, 1, 9, 2, 1, 9, 3, 9, 1, 9, 3, 9}),
              bounded<T>(pixels, {4, 3}, 9, lumSpatialNormL1));
    EXPECT_EQ((std::vector<T>{1, 1, 9, 2, 1, 9, 9, 2, 9, 9, 9, 9}),
              bounded<T>({1, 1, 2, 2, 1, 3, 3, 2, 3, 3, 1, 1}, {4, 3}, 9, lumSpatialNormInf));
}

MEMBER_TEST(BoundSegments, LeftNeighbourThatTurnedCountsNoMore) {
    using T = TypeParam;
    EXPECT_EQ((std::vector<T>{1, 9, 3, 9, 5, 9}),
              bounded<T>({1, 2, 3, 4, 5, 6}, {6, 1}, 9, lumSpatialNormL1));
    std::vector<T> pixels(200);
    for (int i = 0; i < 200; ++i) pixels[i] = static_cast<T>(i);
    const auto result = bounded<T>(pixels, {200, 1}, 255, lumSpatialNormInf);
    for (int i = 0; i < 200; ++i) EXPECT_EQ(i % 2 == 1 ? 255 : i, result[i]);
}

MEMBER_TEST(BoundSegments, ColumnHasNoCorners) {
    using T = TypeParam;
    const std::vector<T> pixels{1, 1, 2, 2, 2, 7};
    EXPECT_EQ(bounded<T>(pixels, {1, 6}, 9, lumSpatialNormL1),
              bounded<T>(pixels, {1, 6}, 9, lumSpatialNormInf));
}

MEMBER_TEST(BoundSegments, EveryWidthFollowsTheReference) {
    using T = TypeParam;
    std::mt19937 engine(71);
    for (int width = 1; width <= 150; ++width)
        for (int values : {2, 3, 6})
            for (LumSpatialNorm norm : {lumSpatialNormInf, lumSpatialNormL1}) {
                const LumSize size{width, 1 + (width + values) % 8};
                const auto pixels = randomLabels<T>(engine, size, values);
                const T border = static_cast<T>(engine() % 2 == 0 ? 51 : 200);
                ASSERT_TRUE(sameBits(reference<T>(pixels, size, border, norm),
                                     bounded<T>(pixels, size, border, norm, width % 64)))
                    << width << " wide, " << values << " labels, norm " << norm;
            }
}

MEMBER_TEST(BoundSegments, VectorRowsAreScalarRows) {
    using T = TypeParam;
    std::mt19937 engine(72);
    for (int width = 1; width <= 140; ++width)
        for (int i = 0; i < 16; ++i) {
            GuardedImage<T> rows(
                width, 2, {.offset = (width + i) % 64, .guard = i % 2 == 0 ? Guard::after : Guard::before});
            const auto labels = randomLabels<T>(engine, {width, 2}, 4);
            rows.fill([&](int x, int y, int) { return labels[y * width + x]; });
            std::vector<T> expected(rows.row(1), rows.row(1) + width);
            const T* above = i / 2 % 2 == 0 ? rows.row(0) : nullptr;
            lum::kernels::BoundedRow<T>(expected.data(), above, width, 51, i / 4 % 2 == 0)
                .drawScalar(0, width);
            lum::kernels::BoundedRow<T>(rows.row(1), above, width, 51, i / 4 % 2 == 0).draw();
            ASSERT_EQ(expected, std::vector<T>(rows.row(1), rows.row(1) + width)) << width << " wide";
            ASSERT_TRUE(rows.outsideUntouched());
        }
}

MEMBER_TEST(BoundSegments, ArgumentsAreTestedInOrder) {
    using T = TypeParam;
    GuardedImage<T> image(6, 4, {.padding = 8});
    image.fillRandom(1);
    const int row = 6 * static_cast<int>(sizeof(T));
    EXPECT_REFUSED(lumStatusNullPointer, image, boundSegments<T>(nullptr, 1, {0, 4}, 9, 2));
    EXPECT_REFUSED(lumStatusSizeError, image, boundSegments<T>(image.data(), 1, {0, 4}, 9, 2));
    EXPECT_REFUSED(lumStatusSizeError, image, boundSegments<T>(image.data(), 1, {6, -1}, 9, 2));
    EXPECT_REFUSED(lumStatusStepError, image, boundSegments<T>(image.data(), row - 1, {6, 4}, 9, 2));
    EXPECT_REFUSED(lumStatusStepError, image, boundSegments<T>(image.data(), -image.step(), {6, 4}, 9, 2));
    if (sizeof(T) == 2)
        EXPECT_REFUSED(lumStatusStepAlignmentError, image,
                       boundSegments<T>(image.data(), row + 1, {6, 4}, 9, 2));
    for (LumSpatialNorm norm : {-1, 2})
        EXPECT_REFUSED(lumStatusBadArgument, image, boundSegments<T>(image.data(), row, {6, 4}, 9, norm));
}
