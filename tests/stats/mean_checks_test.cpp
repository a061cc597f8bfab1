#include <algorithm>

#include "stats/mean_members.h"
#include "support/member_test.h"
#include "support/status_checks.h"

using namespace support;
using namespace means;

namespace {

enum class Form { mean, all, masked };
constexpr Form forms[] = {Form::mean, Form::all, Form::masked};

template <class MemberOf> class MeanChecks {
  public:
    using Element = typename MemberOf::T;
    static constexpr int rowOf4 = 4 * MemberOf::channels * sizeof(Element);

    MeanChecks() : scene(4, 1, {.padding = 16}) {}

    LumStatus call(Form form, const Arguments<Element>& arguments) {
        if (form == Form::mean) return MemberOf::mean(arguments);
        return form == Form::all ? MemberOf::meanStdDev(arguments) : MemberOf::meanStdDevMasked(arguments);
    }

    /// The status with some arguments changed; the outputs stay.
    template <class Change> void expectRefused(LumStatus status, Form form, Change change) {
        Arguments<Element> arguments = scene.arguments();
        change(arguments);
        EXPECT_EQ(status, call(form, arguments)) << "form " << static_cast<int>(form);
        EXPECT_EQ(-1.0, scene.mean);
        EXPECT_EQ(-1.0, scene.stdDev);
    }

    Scene<MemberOf> scene;
};
MEMBER_TEST_SUITE(MeanChecks, Members);

} // namespace

MEMBER_TEST(MeanChecks, NullPointersComeBeforeSizes) {
    MeanChecks<TypeParam> checks;
    using A = Arguments<typename TypeParam::T>;
    for (LumSize size : {LumSize{4, 2}, LumSize{0, -1}})
        for (auto form : forms) {
            checks.expectRefused(lumStatusNullPointer, form, [&](A& a) { a.size = size, a.src = nullptr; });
            if (form != Form::all)
                checks.expectRefused(lumStatusNullPointer, form,
                                     [&](A& a) { a.size = size, a.mask = nullptr; });
            if (form == Form::mean)
                checks.expectRefused(lumStatusNullPointer, form,
                                     [&](A& a) { a.size = size, a.mean = nullptr; });
        }
}

MEMBER_TEST(MeanChecks, CallThatAsksForNothingIsRefusedAlike) {
    MeanChecks<TypeParam> checks;
    using A = Arguments<typename TypeParam::T>;
    const auto nothing = [](A& a) { a.mean = nullptr, a.stdDev = nullptr; };
    for (auto form : {Form::all, Form::masked}) {
        checks.expectRefused(lumStatusNullPointer, form, [&](A& a) { nothing(a), a.src = nullptr; });
        checks.expectRefused(lumStatusSizeError, form, [&](A& a) { nothing(a), a.size = {0, 1}; });
        checks.expectRefused(lumStatusStepError, form, [&](A& a) { nothing(a), a.srcStep = 1; });
        checks.expectRefused(lumStatusOk, form, nothing);
    }
}

MEMBER_TEST(MeanChecks, EmptyRegionIsSizeErrorBeforeSteps) {
    MeanChecks<TypeParam> checks;
    using A = Arguments<typename TypeParam::T>;
    for (LumSize size : {LumSize{0, 2}, LumSize{4, 0}, LumSize{-4, 2}, LumSize{4, -2}})
        for (auto form : forms)
            for (int step : {checks.scene.src.step(), -1, 1})
                checks.expectRefused(lumStatusSizeError, form,
                                     [&](A& a) { a.size = size, a.srcStep = step, a.coi = 0; });
}

MEMBER_TEST(MeanChecks, StepOfTheRowPassesAndOneByteLessIsStepError) {
    MeanChecks<TypeParam> checks;
    using A = Arguments<typename TypeParam::T>;
    constexpr int row = MeanChecks<TypeParam>::rowOf4;
    for (auto form : forms) {
        for (int step : {row - 1, 0, -row})
            checks.expectRefused(lumStatusStepError, form, [&](A& a) { a.srcStep = step, a.coi = 0; });
        if (form != Form::all)
            for (int step : {3, 0, -4})
                checks.expectRefused(lumStatusStepError, form, [&](A& a) { a.maskStep = step, a.coi = 0; });
    }
    for (auto form : forms) {
        auto arguments = checks.scene.arguments();
        arguments.srcStep = row;
        arguments.maskStep = 4;
        EXPECT_STATUS(lumStatusOk, checks.call(form, arguments));
    }
}

MEMBER_TEST(MeanChecks, AlignmentIsThatOfTheSourceStepAlone) {
    MeanChecks<TypeParam> checks;
    using T = typename TypeParam::T;
    using A = Arguments<T>;
    for (auto form : forms) {
        if (sizeof(T) > 1)
            checks.expectRefused(lumStatusStepAlignmentError, form, [](A& a) { a.srcStep += 1, a.coi = 0; });
        if (sizeof(T) == 4)
            checks.expectRefused(lumStatusStepAlignmentError, form, [](A& a) { a.srcStep += 2, a.coi = 0; });
    }
    for (auto form : forms) {
        auto arguments = checks.scene.arguments();
        arguments.maskStep = 5;
        if (sizeof(T) == 1) arguments.srcStep += 1;
        EXPECT_STATUS(lumStatusOk, checks.call(form, arguments));
    }
}

MEMBER_TEST(MeanChecks, AlignmentComesBeforeTheMaskStepButInMean_32f_C1MR) {
    MeanChecks<TypeParam> checks;
    using T = typename TypeParam::T;
    using A = Arguments<T>;
    for (auto form : {Form::mean, Form::masked}) {
        const bool exception = sizeof(T) == 4 && TypeParam::channels == 1 && form == Form::mean;
        const LumStatus expected =
            sizeof(T) == 1 || exception ? lumStatusStepError : lumStatusStepAlignmentError;
        checks.expectRefused(expected, form, [](A& a) { a.srcStep += 1, a.maskStep = 3; });
    }
}

MEMBER_TEST(MeanChecks, ChannelOutsideThreeIsRefusedAfterTheSteps) {
    MeanChecks<TypeParam> checks;
    using A = Arguments<typename TypeParam::T>;
    if (TypeParam::channels == 1) {
        // no such argument
        EXPECT_STATUS(lumStatusOk, TypeParam::mean(checks.scene.arguments()));
        return;
    }
    for (auto form : forms)
        for (int coi : {0, 4, -1, 0x7FFFFFFF, static_cast<int>(0x80000000)}) {
            checks.expectRefused(lumStatusChannelOfInterestError, form, [&](A& a) { a.coi = coi; });
            checks.expectRefused(lumStatusStepError, form, [&](A& a) { a.coi = coi, a.srcStep = 1; });
        }
}

MEMBER_TEST(MeanChecks, HugeWidthIsStepErrorAndNotWrapped) {
    MeanChecks<TypeParam> checks;
    using T = typename TypeParam::T;
    using A = Arguments<T>;
    if (sizeof(T) * TypeParam::channels == 1) {
        for (auto form : forms)
            checks.expectRefused(lumStatusStepError, form, [](A& a) {
                a.size = {0x7FFFFFFF, 1}, a.srcStep = 0x7FFFFFFE;
            });
        return;
    }
    // the second width's bytes reaches a few where 32 bits wrap
    const auto bytesOfPixel = static_cast<std::int64_t>(sizeof(T) * TypeParam::channels);
    const auto wrapping = std::min<std::int64_t>(0x7FFFFFFF, 0x100000000 / bytesOfPixel + 1);
    for (auto form : forms)
        for (int width : {0x7FFFFFFF, static_cast<int>(wrapping)})
            checks.expectRefused(lumStatusStepError, form, [&](A& a) {
                a.size = {width, 1};
                a.srcStep = 0x7FFFFFFC;
                a.maskStep = 0x7FFFFFFF;
            });
}

TEST(Mean_StdDev_8u_C1R, BothOutputsNullSucceedsAndWritesNothing) {
    GuardedImage<Lum8u> image(4, 2);
    EXPECT_REFUSED(lumStatusOk, image, lumiMean_StdDev_8u_C1R(image.data(), 4, {4, 2}, nullptr, nullptr));
    EXPECT_STATUS(lumStatusStepError, lumiMean_StdDev_8u_C1R(image.data(), 3, {4, 2}, nullptr, nullptr));
}
