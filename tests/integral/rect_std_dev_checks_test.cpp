#include <functional>

#include "integral/rect_std_dev_members.h"
#include "support/guarded_image.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace deviations;
using namespace support;

namespace {

MEMBER_TEST_SUITE(RectStdDevMembers, Members);

} // namespace

MEMBER_TEST(RectStdDevMembers, RectangleTestsComeAfterTheSteps) {
    using Square = typename TypeParam::Square;
    using Arguments = typename TypeParam::Arguments;
    const LumRect good{1, 2, 3, 4};
    const LumSize size{4, 2};
    IntegralImage<typename TypeParam::Sum> src(size, good);
    IntegralImage<Square> sqr(size, good);
    GuardedImage<typename TypeParam::Out> dst(4, 2, {.padding = 4});
    const Arguments passing = callOf<TypeParam>(src, sqr, dst, good);
    const auto emptied = [](LumSize empty) {
        return [=](Arguments& a) {
            a.srcStep = a.sqrStep = a.dstStep = 1;
            a.size = empty;
        };
    };
    struct Row {
        LumStatus expected;
        std::function<void(Arguments&)> spoil;
    };
    const Row table[] = {
        {lumStatusNullPointer,
         [](Arguments& a) {
             a.src = nullptr, a.size = {0, 0};
         }},
        {lumStatusNullPointer,
         [](Arguments& a) {
             a.sqr = nullptr, a.size = {0, 0};
         }},
        {lumStatusNullPointer,
         [](Arguments& a) {
             a.dst = nullptr, a.size = {0, 0};
         }},
        {lumStatusSizeError, emptied({0, 2})},
        {lumStatusSizeError, emptied({4, 0})},
        {lumStatusSizeError, emptied({-4, 2})},
        {lumStatusSizeError, emptied({4, -2})},
        {lumStatusStepError, [](Arguments& a) { a.srcStep = -a.srcStep; }},
        {lumStatusStepError, [](Arguments& a) { a.sqrStep = -a.sqrStep; }},
        {lumStatusStepError, [](Arguments& a) { ++a.srcStep, ++a.sqrStep, a.dstStep = 15; }},
        {lumStatusStepAlignmentError, [](Arguments& a) { a.srcStep += 2; }},
        {lumStatusStepAlignmentError,
         [](Arguments& a) { a.sqrStep += static_cast<int>(sizeof(Square)) / 2; }},
        {lumStatusStepAlignmentError, [](Arguments& a) { a.dstStep += 2; }},
    };
    const LumRect bad[] = {{-1, 2, 3, 4}, {1, -1, 3, 4}, {1, 2, 0, 4},
                           {1, 2, 3, 0},  {1, 2, -3, 4}, {1, 2, 3, -4}};
    for (LumRect rect : {good, bad[2]})
        for (const Row& row : table) {
            Arguments arguments = passing;
            arguments.rect = rect;
            row.spoil(arguments);
            EXPECT_REFUSED(row.expected, dst, TypeParam::call(arguments));
        }
    for (LumRect rect : bad) EXPECT_REFUSED(lumStatusSizeError, dst, run<TypeParam>(src, sqr, dst, rect));
}

MEMBER_TEST(RectStdDevMembers, StepsHoldTheReachOfTheRectangleToTheByte) {
    using Sum = typename TypeParam::Sum;
    using Square = typename TypeParam::Square;
    const int elements = TypeParam::shape == Shape::upright ? 1 + 4 + 3 : 3 + 4 + 1 + 2 + 4 - 1;
    const int srcStep = elements * static_cast<int>(sizeof(Sum));
    const int sqrStep = elements * static_cast<int>(sizeof(Square));
    GuardedImage<Sum> src(elements, 20);
    GuardedImage<Square> sqr(elements, 20);
    GuardedImage<typename TypeParam::Out> dst(4, 1);
    const auto call = [&](int firstStep, int secondStep, int resultStep) {
        // Column 6 of row 0: the corner furthest left lies five columns before element (0, 0).
        return TypeParam::call({.src = src.data() + 6,
                                .srcStep = firstStep,
                                .sqr = sqr.data() + 6,
                                .sqrStep = secondStep,
                                .dst = dst.data(),
                                .dstStep = resultStep,
                                .size = {4, 1},
                                .rect = {1, 2, 3, 4}});
    };
    EXPECT_REFUSED(lumStatusStepError, dst, call(srcStep - 1, sqrStep, 16));
    EXPECT_REFUSED(lumStatusStepError, dst, call(srcStep, sqrStep - 1, 16));
    EXPECT_REFUSED(lumStatusStepError, dst, call(srcStep, sqrStep, 15));
    EXPECT_STATUS(lumStatusOk, call(srcStep, sqrStep, 16));
}

MEMBER_TEST(RectStdDevMembers, CountOfElementsOfARowWraps) {
    using Sum = typename TypeParam::Sum;
    using Square = typename TypeParam::Square;
    Sum src[4] = {};
    Square sqr[4] = {};
    GuardedImage<typename TypeParam::Out> dst(2, 1);
    const auto call = [&](LumRect rect) {
        return TypeParam::call({.src = src,
                                .srcStep = sizeof(src),
                                .sqr = sqr,
                                .sqrStep = sizeof(sqr),
                                .dst = dst.data(),
                                .dstStep = dst.step(),
                                .size = dst.size(),
                                .rect = rect});
    };
    // The count wraps to a negative number, so that the steps pass and the rectangle itself is refused.
    EXPECT_REFUSED(lumStatusSizeError, dst, call({0x7FFFFFFF, 0, 0x7FFFFFF, 0}));
    // It does not wrap once more as a count of bytes.
    EXPECT_REFUSED(lumStatusStepError, dst, call({0x40000000, 0, 1, 0}));
}

MEMBER_TEST(RectStdDevMembers, AllStepsComeBeforeAllAlignments) {
    const LumRect rect{0, 0, 1, 1};
    const LumSize size{4, 1};
    IntegralImage<typename TypeParam::Sum> src(size, rect);
    IntegralImage<typename TypeParam::Square> sqr(size, rect);
    GuardedImage<typename TypeParam::Out> dst(4, 1, {.padding = 4});
    const int srcStep = 5 * static_cast<int>(sizeof(typename TypeParam::Sum));
    const int sqrStep = 5 * static_cast<int>(sizeof(typename TypeParam::Square));
    const struct {
        LumStatus expected;
        int srcStep;
        int sqrStep;
        int dstStep;
    } table[] = {
        {lumStatusStepError, srcStep + 2, sqrStep - 1, 16},
        {lumStatusStepError, srcStep, sqrStep - 1, 18},
        {lumStatusStepError, srcStep + 2, sqrStep, 15},
        {lumStatusStepAlignmentError, srcStep + 2, sqrStep, 18},
    };
    for (const auto& row : table) {
        auto arguments = callOf<TypeParam>(src, sqr, dst, rect);
        arguments.srcStep = row.srcStep;
        arguments.sqrStep = row.sqrStep;
        arguments.dstStep = row.dstStep;
        EXPECT_REFUSED(row.expected, dst, TypeParam::call(arguments));
    }
}
