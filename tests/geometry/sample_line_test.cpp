#include <cstdlib>

#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;

namespace {

template <class T, int channels, LumStatus (*member)(const T*, int, LumSize, T*, LumPoint, LumPoint)>
struct Member {
    using Element = T;
    static constexpr int count = channels;
    static LumStatus call(const T* src, int srcStep, LumSize size, T* dst, LumPoint point1, LumPoint point2) {
        return member(src, srcStep, size, dst, point1, point2);
    }
};

using Members =
    testing::Types<Member<Lum8u, 1, lumiSampleLine_8u_C1R>, Member<Lum8u, 3, lumiSampleLine_8u_C3R>,
                   Member<Lum16u, 1, lumiSampleLine_16u_C1R>, Member<Lum16u, 3, lumiSampleLine_16u_C3R>,
                   Member<Lum32f, 1, lumiSampleLine_32f_C1R>, Member<Lum32f, 3, lumiSampleLine_32f_C3R>>;
MEMBER_TEST_SUITE(SampleLineMembers, Members);

/// The walk by its rules.
std::vector<LumPoint> walk(LumPoint point1, LumPoint point2) {
    const int lengthX = std::abs(point2.x - point1.x);
    const int lengthY = std::abs(point2.y - point1.y);
    const int signX = point2.x < point1.x ? -1 : 1;
    const int signY = point2.y < point1.y ? -1 : 1;
    const bool majorIsX = lengthX > lengthY;
    const int major = majorIsX ? lengthX : lengthY;
    const int minor = majorIsX ? lengthY : lengthX;
    std::vector<LumPoint> places;
    LumPoint place = point1;
    int e = major;
    for (int i = 0; i < major + 1; ++i) {
        places.push_back(place);
        e -= 2 * minor;
        if (e < 0) {
            (majorIsX ? place.y : place.x) += majorIsX ? signY : signX;
            e += 2 * major;
        }
        (majorIsX ? place.x : place.y) += majorIsX ? signX : signY;
    }
    return places;
}

/// The samples of a line in an image whose pixel (x, y) is 10 y + x.
std::vector<int> samples(LumPoint point1, LumPoint point2) {
    GuardedImage<Lum8u> src(10, 10);
    src.fill([](int x, int y, int) { return 10 * y + x; });
    const int count = static_cast<int>(walk(point1, point2).size());
    GuardedImage<Lum8u> dst(count, 1);
    EXPECT_STATUS(lumStatusOk,
                  lumiSampleLine_8u_C1R(src.data(), src.step(), src.size(), dst.data(), point1, point2));
    EXPECT_TRUE(dst.outsideUntouched());
    const std::vector<Lum8u> pixels = dst.pixels();
    return {pixels.begin(), pixels.end()};
}

} // namespace

TEST(SampleLine_8u_C1R, DiagonalGivesOneSampleARow) {
    EXPECT_EQ((std::vector<int>{0, 11, 22, 33}), samples({0, 0}, {3, 3}));
    EXPECT_EQ((std::vector<int>{33, 22, 11, 0}), samples({3, 3}, {0, 0}));
    EXPECT_EQ((std::vector<int>{3, 12, 21, 30}), samples({3, 0}, {0, 3}));
}

TEST(SampleLine_8u_C1R, PointIsOneSample) { EXPECT_EQ((std::vector<int>{47}), samples({7, 4}, {7, 4})); }

TEST(SampleLine_8u_C1R, StraightLinesRunAlongOneAxis) {
    EXPECT_EQ((std::vector<int>{50, 51, 52, 53}), samples({0, 5}, {3, 5}));
    EXPECT_EQ((std::vector<int>{99, 89, 79}), samples({9, 9}, {9, 7}));
}

TEST(SampleLine_8u_C1R, TiesStayOnTheNearerSideOfTheirStart) {
    // Half way between two rows e is 0 exactly, which is not below 0: the step comes one sample later, whichever
    // end the walk begins at.
    EXPECT_EQ((std::vector<int>{0, 1, 12}), samples({0, 0}, {2, 1}));
    EXPECT_EQ((std::vector<int>{12, 11, 0}), samples({2, 1}, {0, 0}));
    EXPECT_EQ((std::vector<int>{0, 10, 21}), samples({0, 0}, {1, 2}));
    EXPECT_EQ((std::vector<int>{0, 1, 12, 13, 24}), samples({0, 0}, {4, 2}));
}

MEMBER_TEST(SampleLineMembers, EveryLineOfASmallRegionFollowsTheWalk) {
    using T = typename TypeParam::Element;
    const LumSize size{9, 7};
    for (Guard guard : {Guard::after, Guard::before}) {
        GuardedImage<T> src(size.width, size.height,
                            {.channels = TypeParam::count, .padding = 4, .offset = 3, .guard = guard});
        src.fillRandom(3);
        for (int from = 0; from < 63; ++from)
            for (int to = 0; to < 63; ++to) {
                const LumPoint point1{from % 9, from / 9};
                const LumPoint point2{to % 9, to / 9};
                const std::vector<LumPoint> places = walk(point1, point2);
                GuardedImage<T> dst(static_cast<int>(places.size()), 1,
                                    {.channels = TypeParam::count, .offset = 5, .guard = guard});
                ASSERT_EQ(lumStatusOk,
                          TypeParam::call(src.data(), src.step(), size, dst.data(), point1, point2));
                ASSERT_TRUE(dst.outsideUntouched());
                for (int i = 0; i < dst.size().width; ++i)
                    for (int c = 0; c < TypeParam::count; ++c)
                        ASSERT_EQ(src.at(places[i].x, places[i].y, c), dst.at(i, 0, c))
                            << "sample " << i << " from " << from << " to " << to;
            }
    }
}

MEMBER_TEST(SampleLineMembers, LongLinesEndAtTheirSecondPoint) {
    using T = typename TypeParam::Element;
    GuardedImage<T> src(1201, 801, {.channels = TypeParam::count});
    src.fillRandom(4);
    for (LumPoint point2 : {LumPoint{1200, 800}, LumPoint{1200, 1}, LumPoint{13, 800}, LumPoint{800, 800}}) {
        const std::vector<LumPoint> places = walk({0, 0}, point2);
        std::vector<T> dst(places.size() * TypeParam::count);
        ASSERT_EQ(lumStatusOk,
                  TypeParam::call(src.data(), src.step(), src.size(), dst.data(), {0, 0}, point2));
        EXPECT_EQ(src.at(point2.x, point2.y), dst[(places.size() - 1) * TypeParam::count]);
        for (std::size_t i = 0; i < places.size(); ++i)
            ASSERT_EQ(src.at(places[i].x, places[i].y, TypeParam::count - 1),
                      dst[i * TypeParam::count + TypeParam::count - 1]);
    }
}

MEMBER_TEST(SampleLineMembers, ChecksComeInTheirOrder) {
    using T = typename TypeParam::Element;
    GuardedImage<T> src(4, 3, {.channels = TypeParam::count, .padding = 8});
    GuardedImage<T> dst(4, 1, {.channels = TypeParam::count});
    const int row = 4 * TypeParam::count * static_cast<int>(sizeof(T));
    const int step = src.step();
    const LumSize size = src.size();
    const LumPoint outside{-1, -1};
    const auto call = [](const T* s, int sStep, LumSize region, T* d, LumPoint point1, LumPoint point2) {
        return TypeParam::call(s, sStep, region, d, point1, point2);
    };
    EXPECT_REFUSED(lumStatusNullPointer, dst, call(nullptr, step, {0, 0}, dst.data(), outside, outside));
    EXPECT_STATUS(lumStatusNullPointer, call(src.data(), step, {0, 0}, nullptr, outside, outside));
    for (LumSize empty : {LumSize{0, 3}, LumSize{4, 0}, LumSize{-4, 3}, LumSize{4, -3}})
        EXPECT_REFUSED(lumStatusSizeError, dst, call(src.data(), 1, empty, dst.data(), outside, outside));
    for (int shortStep : {row - 1, 0, -step})
        EXPECT_REFUSED(lumStatusStepError, dst,
                       call(src.data(), shortStep, size, dst.data(), outside, outside));
    EXPECT_REFUSED(lumStatusStepError, dst,
                   call(src.data(), 0x7FFFFFFC, {0x7FFFFFFF, 1}, dst.data(), outside, outside));
    if (sizeof(T) > 1)
        EXPECT_REFUSED(lumStatusStepAlignmentError, dst,
                       call(src.data(), step + 1, size, dst.data(), outside, outside));
    const LumPoint good{3, 2};
    for (LumPoint bad : {LumPoint{-1, 0}, LumPoint{0, -1}, LumPoint{4, 0}, LumPoint{0, 3},
                         LumPoint{0x7FFFFFFF, 0}, LumPoint{0, static_cast<Lum32s>(0x80000000)}}) {
        EXPECT_REFUSED(lumStatusOutOfRange, dst, call(src.data(), step, size, dst.data(), bad, good));
        EXPECT_REFUSED(lumStatusOutOfRange, dst, call(src.data(), step, size, dst.data(), good, bad));
    }
    EXPECT_STATUS(lumStatusOk, call(src.data(), row, size, dst.data(), {0, 0}, good));
}

MEMBER_TEST(SampleLineMembers, PointsThatOverflowTheCountAreOutOfRange) {
    GuardedImage<typename TypeParam::Element> src(4, 3, {.channels = TypeParam::count});
    GuardedImage<typename TypeParam::Element> dst(4, 1, {.channels = TypeParam::count});
    const Lum32s lowest = static_cast<Lum32s>(0x80000000);
    EXPECT_REFUSED(
        lumStatusOutOfRange, dst,
        TypeParam::call(src.data(), src.step(), src.size(), dst.data(), {lowest, 0}, {0x7FFFFFFF, 0}));
}
