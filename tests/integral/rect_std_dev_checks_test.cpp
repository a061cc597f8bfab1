#include "integral/rect_std_dev_members.h"
#include "support/guarded_image.h"
#include "support/status_checks.h"

using namespace deviations;
using namespace support;

namespace {

template <class M> class RectStdDevMembers : public testing::Test {};
TYPED_TEST_SUITE(RectStdDevMembers, Members);

} // namespace

TYPED_TEST(RectStdDevMembers, RectangleTestsComeAfterTheSteps) {
    using Sum = typename TypeParam::Sum;
    using Square = typename TypeParam::Square;
    const LumRect good{1, 2, 3, 4};
    const LumSize size{4, 2};
    IntegralImage<Sum> src(size, good);
    IntegralImage<Square> sqr(size, good);
    GuardedImage<typename TypeParam::Out> dst(4, 2, {.padding = 4});
    const int srcStep = src.step();
    const int sqrStep = sqr.step();
    const int dstStep = dst.step();
    const auto expectRefused = [&](LumStatus status, const Sum* p, int pStep, const Square* q, int qStep,
                                   typename TypeParam::Out* d, int dStep, LumSize places, LumRect rect) {
        EXPECT_REFUSED(status, dst, TypeParam::call(p, pStep, q, qStep, d, dStep, places, rect));
    };
    const LumRect bad[] = {{-1, 2, 3, 4}, {1, -1, 3, 4}, {1, 2, 0, 4},
                           {1, 2, 3, 0},  {1, 2, -3, 4}, {1, 2, 3, -4}};
    for (LumRect rect : {good, bad[2]}) {
        expectRefused(lumStatusNullPointer, nullptr, srcStep, sqr.data(), sqrStep, dst.data(), dstStep,
                      {0, 0}, rect);
        expectRefused(lumStatusNullPointer, src.data(), srcStep, nullptr, sqrStep, dst.data(), dstStep,
                      {0, 0}, rect);
        expectRefused(lumStatusNullPointer, src.data(), srcStep, sqr.data(), sqrStep, nullptr, dstStep,
                      {0, 0}, rect);
        for (LumSize empty : {LumSize{0, 2}, LumSize{4, 0}, LumSize{-4, 2}, LumSize{4, -2}})
            expectRefused(lumStatusSizeError, src.data(), 1, sqr.data(), 1, dst.data(), 1, empty, rect);
        expectRefused(lumStatusStepError, src.data(), -srcStep, sqr.data(), sqrStep, dst.data(), dstStep,
                      size, rect);
        expectRefused(lumStatusStepError, src.data(), srcStep, sqr.data(), -sqrStep, dst.data(), dstStep,
                      size, rect);
        expectRefused(lumStatusStepError, src.data(), srcStep + 1, sqr.data(), sqrStep + 1, dst.data(), 15,
                      size, rect);
        expectRefused(lumStatusStepAlignmentError, src.data(), srcStep + 2, sqr.data(), sqrStep, dst.data(),
                      dstStep, size, rect);
        expectRefused(lumStatusStepAlignmentError, src.data(), srcStep, sqr.data(),
                      sqrStep + static_cast<int>(sizeof(Square)) / 2, dst.data(), dstStep, size, rect);
        expectRefused(lumStatusStepAlignmentError, src.data(), srcStep, sqr.data(), sqrStep, dst.data(),
                      dstStep + 2, size, rect);
    }
    for (LumRect rect : bad)
        expectRefused(lumStatusSizeError, src.data(), srcStep, sqr.data(), sqrStep, dst.data(), dstStep, size,
                      rect);
}

TYPED_TEST(RectStdDevMembers, StepsHoldTheReachOfTheRectangleToTheByte) {
    using Sum = typename TypeParam::Sum;
    using Square = typename TypeParam::Square;
    const LumRect rect{1, 2, 3, 4};
    const LumSize size{4, 1};
    const int elements = TypeParam::shape == Shape::upright ? 1 + 4 + 3 : 3 + 4 + 1 + 2 + 4 - 1;
    const int srcStep = elements * static_cast<int>(sizeof(Sum));
    const int sqrStep = elements * static_cast<int>(sizeof(Square));
    GuardedImage<Sum> src(elements, 20);
    GuardedImage<Square> sqr(elements, 20);
    GuardedImage<typename TypeParam::Out> dst(4, 1);
    // Column 6 of row 0: the corner furthest left lies five columns before element (0, 0).
    const Sum* p = src.data() + 6;
    const Square* q = sqr.data() + 6;
    EXPECT_REFUSED(lumStatusStepError, dst,
                   TypeParam::call(p, srcStep - 1, q, sqrStep, dst.data(), 16, size, rect));
    EXPECT_REFUSED(lumStatusStepError, dst,
                   TypeParam::call(p, srcStep, q, sqrStep - 1, dst.data(), 16, size, rect));
    EXPECT_REFUSED(lumStatusStepError, dst,
                   TypeParam::call(p, srcStep, q, sqrStep, dst.data(), 15, size, rect));
    EXPECT_STATUS(lumStatusOk, TypeParam::call(p, srcStep, q, sqrStep, dst.data(), 16, size, rect));
}

TYPED_TEST(RectStdDevMembers, CountOfElementsOfARowWraps) {
    using Sum = typename TypeParam::Sum;
    using Square = typename TypeParam::Square;
    Sum src[4] = {};
    Square sqr[4] = {};
    GuardedImage<typename TypeParam::Out> dst(2, 1);
    // The count wraps to a negative number, so that the steps pass and the rectangle itself is refused.
    EXPECT_REFUSED(lumStatusSizeError, dst,
                   TypeParam::call(src, 4 * sizeof(Sum), sqr, 4 * sizeof(Square), dst.data(), 8, {2, 1},
                                   {0x7FFFFFFF, 0, 0x7FFFFFF, 0}));
    // It does not wrap once more as a count of bytes.
    EXPECT_REFUSED(lumStatusStepError, dst,
                   TypeParam::call(src, 4 * sizeof(Sum), sqr, 4 * sizeof(Square), dst.data(), 8, {2, 1},
                                   {0x40000000, 0, 1, 0}));
}

TYPED_TEST(RectStdDevMembers, AllStepsComeBeforeAllAlignments) {
    using Sum = typename TypeParam::Sum;
    using Square = typename TypeParam::Square;
    const LumRect rect{0, 0, 1, 1};
    const LumSize size{4, 1};
    IntegralImage<Sum> src(size, rect);
    IntegralImage<Square> sqr(size, rect);
    GuardedImage<typename TypeParam::Out> dst(4, 1, {.padding = 4});
    const int srcStep = 5 * static_cast<int>(sizeof(Sum));
    const int sqrStep = 5 * static_cast<int>(sizeof(Square));
    EXPECT_REFUSED(
        lumStatusStepError, dst,
        TypeParam::call(src.data(), srcStep + 2, sqr.data(), sqrStep - 1, dst.data(), 16, size, rect));
    EXPECT_REFUSED(lumStatusStepError, dst,
                   TypeParam::call(src.data(), srcStep, sqr.data(), sqrStep - 1, dst.data(), 18, size, rect));
    EXPECT_REFUSED(lumStatusStepError, dst,
                   TypeParam::call(src.data(), srcStep + 2, sqr.data(), sqrStep, dst.data(), 15, size, rect));
    EXPECT_REFUSED(lumStatusStepAlignmentError, dst,
                   TypeParam::call(src.data(), srcStep + 2, sqr.data(), sqrStep, dst.data(), 18, size, rect));
}
