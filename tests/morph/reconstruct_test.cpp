#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "kernels/morph/reconstruct.h"
#include "lumcv.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;
using lum::kernels::MorphOp;

namespace {

template <MorphOp op, class T> struct Members;
template <> struct Members<MorphOp::dilate, Lum8u> {
    static constexpr auto run = lumiMorphReconstructDilate_8u_C1IR;
};
template <> struct Members<MorphOp::dilate, Lum16u> {
    static constexpr auto run = lumiMorphReconstructDilate_16u_C1IR;
};
template <> struct Members<MorphOp::dilate, Lum32f> {
    static constexpr auto run = lumiMorphReconstructDilate_32f_C1IR;
};
template <> struct Members<MorphOp::dilate, Lum64f> {
    static constexpr auto run = lumiMorphReconstructDilate_64f_C1IR;
};
template <> struct Members<MorphOp::erode, Lum8u> {
    static constexpr auto run = lumiMorphReconstructErode_8u_C1IR;
};
template <> struct Members<MorphOp::erode, Lum16u> {
    static constexpr auto run = lumiMorphReconstructErode_16u_C1IR;
};
template <> struct Members<MorphOp::erode, Lum32f> {
    static constexpr auto run = lumiMorphReconstructErode_32f_C1IR;
};
template <> struct Members<MorphOp::erode, Lum64f> {
    static constexpr auto run = lumiMorphReconstructErode_64f_C1IR;
};

template <class T> constexpr LumDataType typeOf = lumType8u;
template <> constexpr LumDataType typeOf<Lum16u> = lumType16u;
template <> constexpr LumDataType typeOf<Lum32f> = lumType32f;
template <> constexpr LumDataType typeOf<Lum64f> = lumType64f;

template <class T> Lum32s bufferBytes(LumSize size) {
    Lum32s bytes = 0;
    EXPECT_EQ(lumStatusOk, lumiMorphReconstructGetBufferSize(size, typeOf<T>, 1, &bytes));
    return bytes;
}

template <MorphOp op, class T>
LumStatus reconstruct(const GuardedImage<T>& limit, GuardedImage<T>& marker, LumSpatialNorm connectivity,
                      int spare = 0) {
    GuardedBlock buffer(bufferBytes<T>(limit.size()), Guard::after, spare);
    return Members<op, T>::run(limit.data(), limit.step(), marker.data(), marker.step(), limit.size(),
                               buffer.as(), connectivity);
}

/// The definition: all pixels at once, again and again.
template <MorphOp op, class T>
std::vector<T> fixedPoint(const GuardedImage<T>& limit, const GuardedImage<T>& marker,
                          LumSpatialNorm connectivity) {
    const LumSize size = limit.size();
    const auto stronger = [](T a, T b) { return op == MorphOp::dilate ? a > b : a < b; };
    std::vector<T> now = marker.pixels();
    const auto clipped = [&](T value, int x, int y) {
        return stronger(value, limit.at(x, y)) ? limit.at(x, y) : value;
    };
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) now[y * size.width + x] = clipped(now[y * size.width + x], x, y);
    for (bool changed = true; changed;) {
        changed = false;
        std::vector<T> next = now;
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x) {
                T& value = next[y * size.width + x];
                for (int dy = -1; dy <= 1; ++dy)
                    for (int dx = -1; dx <= 1; ++dx) {
                        if (connectivity == lumSpatialNormL1 && dx != 0 && dy != 0) continue;
                        if (y + dy < 0 || y + dy >= size.height || x + dx < 0 || x + dx >= size.width)
                            continue;
                        const T candidate = clipped(now[(y + dy) * size.width + x + dx], x, y);
                        if (stronger(candidate, value)) {
                            value = candidate;
                            changed = true;
                        }
                    }
            }
        now = next;
    }
    return now;
}

using Elements = testing::Types<Lum8u, Lum16u, Lum32f, Lum64f>;
MEMBER_TEST_SUITE(ReconstructMembers, Elements);

} // namespace

TEST(ReconstructByHand, SeedFillsItsPlateau) {
    GuardedImage<Lum8u> limit(7, 2);
    GuardedImage<Lum8u> marker(7, 2);
    const int limits[2][7] = {{5, 5, 0, 7, 7, 7, 2}, {5, 1, 0, 7, 3, 7, 2}};
    limit.fill([&](int x, int y, int) { return limits[y][x]; });
    marker.fill([](int x, int y, int) { return x == 3 && y == 0 ? 6 : 0; });
    ASSERT_EQ(lumStatusOk, (reconstruct<MorphOp::dilate>(limit, marker, lumSpatialNormL1)));
    EXPECT_EQ((std::vector<Lum8u>{0, 0, 0, 6, 6, 6, 2, 0, 0, 0, 6, 3, 6, 2}), marker.pixels());
}

template <class T> struct Sides {
    static T low() { return 3; }
    static T high() { return 200; }
};

MEMBER_TEST(ReconstructMembers, DiagonalNeighboursJoinInEight) {
    using T = TypeParam;
    GuardedImage<T> limit(4, 4);
    limit.fill([](int x, int y, int) { return x / 2 == y / 2 ? Sides<T>::high() : Sides<T>::low(); });
    for (LumSpatialNorm connectivity : {lumSpatialNormInf, lumSpatialNormL1}) {
        GuardedImage<T> marker(4, 4);
        marker.fill([](int x, int y, int) { return x == 0 && y == 0 ? Sides<T>::high() : Sides<T>::low(); });
        ASSERT_EQ(lumStatusOk, (reconstruct<MorphOp::dilate>(limit, marker, connectivity)));
        EXPECT_EQ(Sides<T>::high(), marker.at(1, 1));
        EXPECT_EQ(connectivity == lumSpatialNormInf ? Sides<T>::high() : Sides<T>::low(), marker.at(2, 2));
        EXPECT_EQ(Sides<T>::low(), marker.at(2, 1));
    }
}

MEMBER_TEST(ReconstructMembers, MarkerEqualToTheMaskStays) {
    using T = TypeParam;
    GuardedImage<T> limit(40, 9);
    GuardedImage<T> marker(40, 9);
    limit.fillRandom(1);
    marker.fillRandom(1);
    ASSERT_EQ(lumStatusOk, (reconstruct<MorphOp::dilate>(limit, marker, lumSpatialNormInf)));
    EXPECT_TRUE(marker.untouched());
    ASSERT_EQ(lumStatusOk, (reconstruct<MorphOp::erode>(limit, marker, lumSpatialNormL1)));
    EXPECT_TRUE(marker.untouched());
}

MEMBER_TEST(ReconstructMembers, MarkerBeyondTheMaskIsClipped) {
    using T = TypeParam;
    GuardedImage<T> limit(20, 5);
    GuardedImage<T> marker(20, 5);
    limit.fill([](int x, int y, int) { return 10 + (x + y) % 3; });
    marker.fill([](int, int, int) { return 100; });
    ASSERT_EQ(lumStatusOk, (reconstruct<MorphOp::dilate>(limit, marker, lumSpatialNormInf)));
    EXPECT_EQ(limit.pixels(), marker.pixels());
    marker.fill([](int, int, int) { return 0; });
    ASSERT_EQ(lumStatusOk, (reconstruct<MorphOp::erode>(limit, marker, lumSpatialNormInf)));
    EXPECT_EQ(limit.pixels(), marker.pixels());
}

MEMBER_TEST(ReconstructMembers, ZeroMarkerStaysZero) {
    using T = TypeParam;
    GuardedImage<T> limit(33, 8);
    limit.fill([](int x, int y, int) { return (x * 7 + y * 3) % 50; });
    GuardedImage<T> marker(33, 8);
    ASSERT_EQ(lumStatusOk, (reconstruct<MorphOp::dilate>(limit, marker, lumSpatialNormInf)));
    for (T value : marker.pixels()) EXPECT_EQ(T{0}, value);
}

MEMBER_TEST(ReconstructMembers, OneRowAndOneColumn) {
    using T = TypeParam;
    for (LumSize size : {LumSize{90, 1}, LumSize{1, 90}, LumSize{1, 1}, LumSize{2, 3}})
        for (int at : {0, size.width * size.height / 2, size.width * size.height - 1}) {
            GuardedImage<T> limit(size.width, size.height);
            limit.fill([](int, int, int) { return 50; });
            GuardedImage<T> marker(size.width, size.height);
            marker.fill([&](int x, int y, int) { return y * size.width + x == at ? 40 : 1; });
            ASSERT_EQ(lumStatusOk, (reconstruct<MorphOp::dilate>(limit, marker, lumSpatialNormL1)));
            for (T value : marker.pixels()) EXPECT_EQ(T{40}, value);
        }
}

MEMBER_TEST(ReconstructMembers, SpiralIsFollowedToItsEnd) {
    using T = TypeParam;
    // A corridor that changes direction at every side, walled by low limits: many sweeps.
    constexpr int side = 41;
    GuardedImage<T> limit(side, side);
    limit.fill([](int, int, int) { return 1; });
    int left = 0;
    int top = 0;
    int right = side - 1;
    int bottom = side - 1;
    int x = 0;
    int y = 0;
    limit.at(0, 0) = 9;
    const auto walk = [&](int dx, int dy, int steps) {
        for (int i = 0; i < steps; ++i) limit.at(x += dx, y += dy) = 9;
    };
    while (right - left >= 2 && bottom - top >= 2) {
        walk(1, 0, right - x);
        walk(0, 1, bottom - y);
        walk(-1, 0, x - left);
        walk(0, -1, y - top - 2);
        left += 2, top += 2, right -= 2, bottom -= 2;
        if (right - left >= 2) walk(1, 0, left - x);
    }
    for (LumSpatialNorm connectivity : {lumSpatialNormInf, lumSpatialNormL1}) {
        GuardedImage<T> marker(side, side);
        marker.fill([](int px, int py, int) { return px == 0 && py == 0 ? 8 : 0; });
        const auto expected = fixedPoint<MorphOp::dilate>(limit, marker, connectivity);
        ASSERT_EQ(lumStatusOk, (reconstruct<MorphOp::dilate>(limit, marker, connectivity)));
        EXPECT_EQ(expected, marker.pixels());
        EXPECT_EQ(T{8}, marker.at(x, y));
    }
}

MEMBER_TEST(ReconstructMembers, RandomRunsReachTheFixedPoint) {
    using T = TypeParam;
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 engine(seed);
    const auto below = [&](int n) { return static_cast<int>(engine() % n); };
    for (int i = 0; i < 160; ++i) {
        const LumSize size{1 + below(140), 1 + below(12)};
        const int padding = static_cast<int>(sizeof(T)) * below(4);
        const int offset = static_cast<int>(sizeof(T)) * below(8);
        const Guard guard = below(2) == 0 ? Guard::after : Guard::before;
        GuardedImage<T> limit(size.width, size.height,
                              {.padding = padding, .offset = offset, .guard = guard});
        GuardedImage<T> marker(size.width, size.height, {.offset = offset, .guard = guard});
        const int levels = 1 + below(200);
        const int rarity = 1 + below(60);
        limit.fill([&](int, int, int) { return below(levels); });
        const LumSpatialNorm connectivity = below(2);
        marker.fill([&](int, int, int) { return below(rarity) == 0 ? below(levels + 10) : 0; });
        const auto raised = fixedPoint<MorphOp::dilate>(limit, marker, connectivity);
        ASSERT_EQ(lumStatusOk, (reconstruct<MorphOp::dilate>(limit, marker, connectivity, below(32))));
        ASSERT_EQ(raised, marker.pixels());
        marker.fill([&](int, int, int) { return below(rarity) == 0 ? below(levels) : 250; });
        const auto lowered = fixedPoint<MorphOp::erode>(limit, marker, connectivity);
        ASSERT_EQ(lumStatusOk, (reconstruct<MorphOp::erode>(limit, marker, connectivity, below(32))));
        ASSERT_EQ(lowered, marker.pixels());
        EXPECT_TRUE(marker.outsideUntouched());
        EXPECT_TRUE(limit.untouched());
    }
}

TEST(ReconstructFloats, NaNSpreadsToNoNeighbour) {
    constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
    for (int width : {5, 40, 90})
        for (LumSpatialNorm connectivity : {lumSpatialNormInf, lumSpatialNormL1}) {
            // One in the mask keeps its place; the marker passes around it.
            GuardedImage<Lum32f> limit(width, 3);
            limit.fill([&](int x, int y, int) { return x == 2 && y == 1 ? notANumber : 9.0F; });
            GuardedImage<Lum32f> marker(width, 3);
            marker.fill([&](int x, int y, int) { return x == 0 && y == 1 ? 4.0F : 1.0F; });
            ASSERT_EQ(lumStatusOk, (reconstruct<MorphOp::dilate>(limit, marker, connectivity)));
            for (int y = 0; y < 3; ++y)
                for (int x = 0; x < width; ++x) {
                    if (x == 2 && y == 1)
                        EXPECT_TRUE(marker.at(x, y) != marker.at(x, y));
                    else
                        EXPECT_EQ(4.0F, marker.at(x, y)) << x << ", " << y;
                }
            // One in the marker becomes the mask's pixel.
            limit.fill([&](int, int, int) { return 9.0F; });
            marker.fill([&](int x, int y, int) { return x == 2 && y == 1 ? notANumber : 1.0F; });
            ASSERT_EQ(lumStatusOk, (reconstruct<MorphOp::dilate>(limit, marker, connectivity)));
            for (float value : marker.pixels()) EXPECT_EQ(9.0F, value);
        }
}

TEST(ReconstructBufferSize, Formulas) {
    const auto bytes = [](LumDataType type, LumSize size) {
        Lum32s result = -1;
        EXPECT_EQ(lumStatusOk, lumiMorphReconstructGetBufferSize(size, type, 1, &result));
        return result;
    };
    EXPECT_EQ(4 * 30 + 7 + 161, bytes(lumType8u, {30, 7}));
    EXPECT_EQ(2 * (4 * 30 + 7) + 322, bytes(lumType16u, {30, 7}));
    EXPECT_EQ(16 * 30 + 7 + 164, bytes(lumType32f, {30, 7}));
    EXPECT_EQ(32 * 30 + 7 + 168, bytes(lumType64f, {30, 7}));
    EXPECT_EQ(static_cast<Lum32s>(0xFFFFFFFCU + 1 + 161), bytes(lumType8u, {0x7FFFFFFF, 1}));
}

TEST(ReconstructBufferSize, RefusesInOrder) {
    Lum32s bytes = -77;
    EXPECT_STATUS(lumStatusNullPointer, lumiMorphReconstructGetBufferSize({0, 1}, 7, 3, nullptr));
    EXPECT_STATUS(lumStatusSizeError, lumiMorphReconstructGetBufferSize({0, 1}, 7, 3, &bytes));
    EXPECT_STATUS(lumStatusSizeError, lumiMorphReconstructGetBufferSize({1, -1}, 7, 3, &bytes));
    for (LumDataType type : {0, 2, 7, 11, 14, -1})
        EXPECT_STATUS(lumStatusDataTypeError, lumiMorphReconstructGetBufferSize({1, 1}, type, 3, &bytes));
    for (int channels : {0, 3, 4, -1})
        EXPECT_STATUS(lumStatusCountError,
                      lumiMorphReconstructGetBufferSize({1, 1}, lumType8u, channels, &bytes));
    EXPECT_EQ(-77, bytes);
}

MEMBER_TEST(ReconstructMembers, RefusesInOrder) {
    using T = TypeParam;
    constexpr int size = sizeof(T);
    GuardedImage<T> limit(4, 3);
    GuardedImage<T> marker(4, 3);
    marker.fillRandom(1);
    Lum8u buffer[2048];
    const auto expect = [&](LumStatus status, const T* src, int srcStep, T* srcDst, int srcDstStep,
                            LumSize roiSize, Lum8u* work, int connectivity) {
        EXPECT_REFUSED(status, marker,
                       (Members<MorphOp::dilate, T>::run(src, srcStep, srcDst, srcDstStep, roiSize, work,
                                                         connectivity)));
        EXPECT_REFUSED(
            status, marker,
            (Members<MorphOp::erode, T>::run(src, srcStep, srcDst, srcDstStep, roiSize, work, connectivity)));
    };
    const T* const src = limit.data();
    T* const dst = marker.data();
    const int row = 4 * size;
    expect(lumStatusNullPointer, nullptr, row, dst, row, {0, 3}, buffer, 0);
    expect(lumStatusNullPointer, src, row, nullptr, row, {0, 3}, buffer, 0);
    expect(lumStatusNullPointer, src, row, dst, row, {0, 3}, nullptr, 0);
    for (LumSize wrong : {LumSize{0, 3}, LumSize{4, 0}, LumSize{-4, 3}})
        expect(lumStatusSizeError, src, -1, dst, row, wrong, buffer, 0);
    expect(lumStatusStepError, src, row - 1, dst, row + 1, {4, 3}, buffer, 2);
    expect(lumStatusStepError, src, row, dst, row - 1, {4, 3}, buffer, 2);
    expect(lumStatusStepError, src, -row, dst, row, {4, 3}, buffer, 2);
    if (size > 1) {
        expect(lumStatusStepAlignmentError, src, row + 1, dst, row, {4, 3}, buffer, 2);
        expect(lumStatusStepAlignmentError, src, row, dst, row + size / 2, {4, 3}, buffer, 2);
    }
    for (int connectivity : {2, -1, 8})
        expect(lumStatusBadArgument, src, row, dst, row, {4, 3}, buffer, connectivity);
}

namespace {

template <MorphOp op, class T> void expectSameRows() {
    using Vector = lum::kernels::ReconstructRow<op, T>;
    using Scalar = lum::kernels::ReconstructRowScalar<op, T>;
    std::mt19937 engine(11);
    for (int width = 1; width <= 200; ++width)
        for (int offset = 0; offset < 4; ++offset) {
            const Placement placement{.offset = offset * static_cast<int>(sizeof(T))};
            GuardedImage<T> limit(width, 1, placement);
            GuardedImage<T> neighbour(width, 1, placement);
            GuardedImage<T> a(width, 1, placement);
            GuardedImage<T> b(width, 1, placement);
            const auto value = [&](int, int, int) {
                if constexpr (std::is_floating_point_v<T>)
                    if (engine() % 40 == 0) return std::numeric_limits<T>::quiet_NaN();
                return static_cast<T>(engine() % 30);
            };
            limit.fill(value);
            neighbour.fill(value);
            a.fill(value);
            b.fill([&](int x, int, int) { return a.at(x, 0); });
            const auto expectSame = [&] { ASSERT_TRUE(sameBits(a.pixels(), b.pixels())) << width; };
            Vector::clip(a.data(), limit.data(), width);
            Scalar::clip(b.data(), limit.data(), width);
            expectSame();
            EXPECT_EQ(Scalar::mergeNearest(b.data(), neighbour.data(), limit.data(), width),
                      Vector::mergeNearest(a.data(), neighbour.data(), limit.data(), width));
            expectSame();
            neighbour.fill(value);
            EXPECT_EQ(Scalar::mergeThree(b.data(), neighbour.data(), limit.data(), width),
                      Vector::mergeThree(a.data(), neighbour.data(), limit.data(), width));
            expectSame();
            Vector::spread(a.data(), limit.data(), width);
            Scalar::spread(b.data(), limit.data(), width);
            expectSame();
            EXPECT_TRUE(a.outsideUntouched());
        }
}

} // namespace

MEMBER_TEST(ReconstructMembers, VectorRowsAreThoseOfScalarCode) {
    expectSameRows<MorphOp::dilate, TypeParam>();
    expectSameRows<MorphOp::erode, TypeParam>();
}
