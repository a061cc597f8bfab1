#include "stats/accumulate_members.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;
using namespace accumulators;

namespace {

template <class MemberType> class AccumulatorChecks {
  public:
    using Family = typename MemberType::Family;
    using Source = typename MemberType::Source;

    AccumulatorChecks() : scene(8, 1, {.padding = 16}, {.padding = 16}) { scene.fillRandom(1); }

    /// The call with some arguments changed is refused, and leaves the accumulator.
    template <class Change> void expectRefused(LumStatus status, bool masked, Change change) {
        if (!masked && !Family::template hasPlain<Source>) return;
        Arguments<Source> arguments = scene.arguments();
        change(arguments);
        SCOPED_TRACE(masked ? "masked" : "plain");
        EXPECT_REFUSED(status, scene.srcDst, call<Family>(masked, arguments));
    }

    template <class Change> void expectOk(bool masked, Change change) {
        Arguments<Source> arguments = scene.arguments();
        change(arguments);
        EXPECT_STATUS(lumStatusOk, call<Family>(masked, arguments));
        scene.fillRandom(1);
    }

    Scene<Source> scene;
};
MEMBER_TEST_SUITE(AccumulatorChecks, Members);

} // namespace

MEMBER_TEST(AccumulatorChecks, NullPointersComeBeforeSizes) {
    AccumulatorChecks<TypeParam> checks;
    using A = Arguments<typename TypeParam::Source>;
    for (LumSize size : {LumSize{8, 1}, LumSize{0, -1}})
        for (bool masked : {false, true}) {
            checks.expectRefused(lumStatusNullPointer, masked,
                                 [&](A& a) { a.size = size, a.src1 = nullptr; });
            checks.expectRefused(lumStatusNullPointer, masked,
                                 [&](A& a) { a.size = size, a.srcDst = nullptr; });
            if (TypeParam::Family::twoSources)
                checks.expectRefused(lumStatusNullPointer, masked,
                                     [&](A& a) { a.size = size, a.src2 = nullptr; });
            if (masked)
                checks.expectRefused(lumStatusNullPointer, masked,
                                     [&](A& a) { a.size = size, a.mask = nullptr; });
        }
}

MEMBER_TEST(AccumulatorChecks, EmptyRegionIsSizeErrorBeforeSteps) {
    AccumulatorChecks<TypeParam> checks;
    using A = Arguments<typename TypeParam::Source>;
    for (LumSize size : {LumSize{0, 1}, LumSize{8, 0}, LumSize{-8, 1}, LumSize{8, -1}})
        for (bool masked : {false, true}) {
            checks.expectRefused(lumStatusSizeError, masked, [&](A& a) { a.size = size; });
            checks.expectRefused(lumStatusSizeError, masked, [&](A& a) { a.size = size, a.src1Step = -1; });
            checks.expectRefused(lumStatusSizeError, masked, [&](A& a) { a.size = size, a.srcDstStep = 3; });
        }
}

MEMBER_TEST(AccumulatorChecks, StepOfTheRowPassesAndOneByteLessIsStepError) {
    AccumulatorChecks<TypeParam> checks;
    using T = typename TypeParam::Source;
    using A = Arguments<T>;
    constexpr int row = 8 * sizeof(T);
    for (bool masked : {false, true}) {
        for (int step : {row - 1, 0, -row, static_cast<int>(0x80000000)}) {
            checks.expectRefused(lumStatusStepError, masked, [&](A& a) { a.src1Step = step; });
            if (TypeParam::Family::twoSources)
                checks.expectRefused(lumStatusStepError, masked, [&](A& a) { a.src2Step = step; });
        }
        for (int step : {31, 0, -32})
            checks.expectRefused(lumStatusStepError, masked, [&](A& a) { a.srcDstStep = step; });
        if (masked)
            for (int step : {7, 0, -8})
                checks.expectRefused(lumStatusStepError, masked, [&](A& a) { a.maskStep = step; });
        checks.expectOk(masked,
                        [](A& a) { a.src1Step = a.src2Step = row, a.maskStep = 8, a.srcDstStep = 32; });
    }
}

MEMBER_TEST(AccumulatorChecks, StepOffTheElementIsStepAlignmentError) {
    AccumulatorChecks<TypeParam> checks;
    using T = typename TypeParam::Source;
    using A = Arguments<T>;
    for (bool masked : {false, true}) {
        for (int beyond : {1, 2, 3})
            checks.expectRefused(lumStatusStepAlignmentError, masked, [&](A& a) { a.srcDstStep += beyond; });
        if (sizeof(T) > 1) {
            checks.expectRefused(lumStatusStepAlignmentError, masked, [](A& a) { a.src1Step += 1; });
            if (TypeParam::Family::twoSources)
                checks.expectRefused(lumStatusStepAlignmentError, masked, [](A& a) { a.src2Step += 1; });
        } else {
            checks.expectOk(masked, [](A& a) { a.src1Step += 1, a.src2Step += 1; });
        }
    }
}

MEMBER_TEST(AccumulatorChecks, OddMaskStepIsAccepted) {
    AccumulatorChecks<TypeParam> checks;
    using A = Arguments<typename TypeParam::Source>;
    for (int step : {9, 11, 13}) checks.expectOk(true, [&](A& a) { a.maskStep = step; });
}

MEMBER_TEST(AccumulatorChecks, SixteenBitSourcesComeBeforeTheOtherSteps) {
    AccumulatorChecks<TypeParam> checks;
    using T = typename TypeParam::Source;
    using A = Arguments<T>;
    const LumStatus expected = sizeof(T) == 2 ? lumStatusStepAlignmentError : lumStatusStepError;
    for (bool masked : {false, true}) {
        checks.expectRefused(expected, masked, [](A& a) { a.src1Step += 1, a.srcDstStep = 31; });
        if (masked) checks.expectRefused(expected, masked, [](A& a) { a.src1Step += 1, a.maskStep = 7; });
        if (TypeParam::Family::twoSources) {
            checks.expectRefused(expected, masked, [](A& a) { a.src2Step += 1, a.srcDstStep = 31; });
            checks.expectRefused(lumStatusStepError, masked,
                                 [](A& a) { a.src1Step += 1, a.src2Step = 8 * sizeof(T) - 1; });
        }
        // the accumulator's alignment comes last of all
        if (masked)
            checks.expectRefused(lumStatusStepError, masked, [](A& a) { a.srcDstStep += 2, a.maskStep = 7; });
        checks.expectRefused(lumStatusStepError, masked, [](A& a) { a.srcDstStep += 2, a.src1Step = 0; });
    }
}

MEMBER_TEST(AccumulatorChecks, HugeWidthIsStepErrorAndNotWrapped) {
    AccumulatorChecks<TypeParam> checks;
    using A = Arguments<typename TypeParam::Source>;
    for (bool masked : {false, true})
        for (int width : {0x7FFFFFFF, 0x40000000, 0x40000001})
            checks.expectRefused(lumStatusStepError, masked, [&](A& a) {
                a.size = {width, 1};
                a.src1Step = a.src2Step = a.srcDstStep = 0x7FFFFFFC;
                a.maskStep = 0x7FFFFFFF;
            });
}

TEST(Add_8u32f_C1IR, AlignmentIsThatOfTheAccumulatorStepAlone) {
    GuardedImage<Lum8u> src(1, 1);
    GuardedImage<Lum32f> sum(1, 1);
    EXPECT_REFUSED(lumStatusStepAlignmentError, sum,
                   lumiAdd_8u32f_C1IR(src.data(), 3, sum.data(), 6, {1, 1}));
    EXPECT_STATUS(lumStatusOk, lumiAdd_8u32f_C1IR(src.data(), 3, sum.data(), 8, {1, 1}));
}
