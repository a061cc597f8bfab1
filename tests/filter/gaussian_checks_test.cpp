#include "filter/gaussian_members.h"
#include "support/cache_report.h"
#include "support/member_test.h"

using namespace gaussian;

namespace {

MEMBER_TEST_SUITE(FilterGaussianChecks, AllMembers);

/// Images and objects for calls that are refused. `core` and `plain` are calls that pass; tests spoil them.
template <class M> struct Refusals {
    using T = typename M::Element;
    GuardedImage<T> src{8, 4, {.channels = M::channels, .padding = 16}};
    GuardedImage<T> dst{8, 4, {.channels = M::channels, .padding = 16}};
    CoreFilter<M> coreFilter{{8, 4}, 3, 1.0F};
    FrontFilter<M> frontFilter{{8, 4}, 3, 1.0F};
    T value[3] = {1, 2, 3};
    const Call<T> core = coreFilter.call(src, dst, lumBorderReplicate, value);
    const Call<T> plain = frontFilter.call(src, dst, lumBorderReplicate, value);
    const int step = src.step();
    const int row = static_cast<int>(8 * M::channels * sizeof(T));
};

/// What a row of a table of refusals changes of a call that passes.
struct Change {
    LumStatus expected;
    std::intptr_t srcStep;
    std::intptr_t dstStep;
    LumSizeL size{8, 4};
    int border = lumBorderReplicate;

    template <class T> Call<T> of(Call<T> call) const {
        call.srcStep = srcStep;
        call.dstStep = dstStep;
        call.size = size;
        call.border = border;
        return call;
    }
};

} // namespace

MEMBER_TEST(FilterGaussianChecks, NullPointersComeFirst) {
    using T = typename TypeParam::Element;
    Refusals<TypeParam> r;
    struct Form {
        LumStatus (*run)(const Call<T>&);
        Call<T> call;
    };
    for (const Form& form :
         {Form{TypeParam::core, r.core}, Form{TypeParam::plain, r.plain}, Form{TypeParam::border, r.plain}}) {
        // Everything else that is tested is wrong as well.
        const Call<T> wrong = Change{lumStatusOk, 0, 0, {0, 0}, 0}.of(form.call);
        const auto refused = [&](auto spoil) {
            Call<T> call = wrong;
            spoil(call);
            EXPECT_REFUSED(lumStatusNullPointer, r.dst, form.run(call));
        };
        refused([](auto& call) { call.src = nullptr; });
        refused([](auto& call) { call.dst = nullptr; });
        refused([](auto& call) { call.spec = nullptr; });
        refused([](auto& call) { call.buffer = nullptr; });
    }
}

MEMBER_TEST(FilterGaussianChecks, StepsBelowTheRowComeBeforeSizesInTheCore) {
    Refusals<TypeParam> r;
    const std::intptr_t step = r.step;
    const std::intptr_t largest = 0x7FFFFFFC;
    std::vector<Change> changes;
    for (std::intptr_t shortStep : {r.row - 1, 0, -r.step}) {
        changes.push_back({lumStatusStepError, shortStep, step, {8, 0}, 0});
        changes.push_back({lumStatusStepError, step, shortStep, {8, 0}, 0});
        changes.push_back({lumStatusStepError, shortStep, step, {8, 4}, 0});
    }
    changes.push_back({lumStatusStepError, largest, largest, {0x7FFFFFFF, 4}, 0});
    for (LumSizeL empty : {LumSizeL{8, 0}, LumSizeL{0, 4}, LumSizeL{-8, 4}, LumSizeL{8, -4}})
        changes.push_back({lumStatusSizeError, step + 1, step + 1, empty, 0});
    changes.push_back({lumStatusStepError, -1, step, {0, 4}, 0});
    changes.push_back({lumStatusSizeError, 0, 0, {0, 4}, 0});
    for (const Change& change : changes)
        EXPECT_REFUSED(change.expected, r.dst, TypeParam::core(change.of(r.core)));
    EXPECT_STATUS(lumStatusOk, TypeParam::core(Change{lumStatusOk, r.row, r.row}.of(r.core)));
}

MEMBER_TEST(FilterGaussianChecks, PlainRunTestsStepsBelow1ThenTheQueryThenTheCore) {
    Refusals<TypeParam> r;
    struct Fields {
        Lum32s kernelSize;
        Lum32s weightsAt;
        Lum32s dataType;
    };
    auto* object = reinterpret_cast<Fields*>(r.frontFilter.spec());
    const auto expect = [&](const Change& change) {
        EXPECT_REFUSED(change.expected, r.dst, TypeParam::plain(change.of(r.plain)));
    };
    for (int step : {0, -1, -r.step}) {
        expect({lumStatusStepError, step, r.step, {0, 0}, 0});
        expect({lumStatusStepError, r.step, step, {0, 0}, 0});
    }
    // The object is wrong as well, and is put right from its first test on.
    object->kernelSize = 4;
    object->dataType = 2;
    for (LumSizeL empty : {LumSizeL{8, 0}, LumSizeL{0, 4}, LumSizeL{-8, 4}, LumSizeL{8, -4}})
        expect({lumStatusSizeError, 1, 1, empty, 0});
    expect({lumStatusBadArgument, 1, 1, {8, 4}, 0});
    object->kernelSize = 1;
    expect({lumStatusBadArgument, 1, 1, {8, 4}, 0});
    object->kernelSize = 3;
    expect({lumStatusDataTypeError, 1, 1, {8, 4}, 0});
    object->dataType = typeOf<typename TypeParam::Element>;
    expect({lumStatusStepError, r.row - 1, r.step, {8, 4}, 0});
    expect({lumStatusStepError, r.step, r.row - 1, {8, 4}, 0});
    expect({lumStatusBorderError, r.row, r.row, {8, 4}, 0});
    EXPECT_STATUS(lumStatusOk, TypeParam::plain(Change{lumStatusOk, r.row, r.row}.of(r.plain)));
}

MEMBER_TEST(FilterGaussianChecks, StepOffTheElementComesBeforeTheBorder) {
    Refusals<TypeParam> r;
    constexpr bool bytes = sizeof(typename TypeParam::Element) == 1;
    const LumStatus wrongBorder = bytes ? lumStatusBorderError : lumStatusStepAlignmentError;
    const LumStatus rightBorder = bytes ? lumStatusOk : lumStatusStepAlignmentError;
    const Change changes[] = {
        {wrongBorder, r.row + 1, r.step, {8, 4}, 256}, {wrongBorder, r.step, r.row + 1, {8, 4}, 256},
        {wrongBorder, r.row + 3, r.step, {8, 4}, 256}, {wrongBorder, r.step, r.row + 3, {8, 4}, 256},
        {rightBorder, r.row + 1, r.row + 1},
    };
    for (const Change& change : changes) EXPECT_STATUS(change.expected, TypeParam::core(change.of(r.core)));
    EXPECT_TRUE(bytes || r.dst.untouched());
}

MEMBER_TEST(FilterGaussianChecks, BordersAndTheBorderValueInOrder) {
    Refusals<TypeParam> r;
    const auto run = [&](int border, const typename TypeParam::Element* value) {
        return r.coreFilter.run(r.src, r.dst, border, value);
    };
    for (int border : {256, 0x106, 0x1F0, -1, -256})
        EXPECT_REFUSED(lumStatusBorderError, r.dst, run(border, nullptr));
    for (int border = 0; border < 0xF0; ++border) {
        const int kind = border & 15;
        if (kind == lumBorderConstant)
            EXPECT_REFUSED(lumStatusNullPointer, r.dst, run(border, nullptr));
        else if (kind != lumBorderReplicate && kind != lumBorderMirror)
            EXPECT_REFUSED(lumStatusBorderError, r.dst, run(border, r.value));
    }
    EXPECT_STATUS(lumStatusOk, run(lumBorderReplicate, nullptr));
    EXPECT_STATUS(lumStatusOk, run(lumBorderMirror, nullptr));
    EXPECT_STATUS(lumStatusOk, run(lumBorderConstant, r.value));
}

MEMBER_TEST(FilterGaussianChecks, KernelSizeOfTheObjectIsTestedLast) {
    Refusals<TypeParam> r;
    Lum32s* kernelSize = reinterpret_cast<Lum32s*>(r.coreFilter.spec());
    const Change changes[] = {
        {lumStatusBorderError, r.step, r.step, {8, 4}, 0},
        {lumStatusBadArgument, r.step, r.step},
        {lumStatusBadArgument, r.step, r.step, {8, 4}, 0xF7},
    };
    for (int K : {4, 2, 1, 0, -3}) {
        *kernelSize = K;
        for (const Change& change : changes)
            EXPECT_REFUSED(change.expected, r.dst, TypeParam::core(change.of(r.core)));
    }
}

TEST(FilterGaussianBorder, ThreeChannelsNeedAValueForAConstantBorderOnly) {
    using ThreeBytes = Members<Lum8u, 3>;
    GuardedImage<Lum8u> src(9, 9, {.channels = 3});
    GuardedImage<Lum8u> dst(9, 9, {.channels = 3});
    FrontFilter<ThreeBytes> constant({9, 9}, 3, 1.0F, lumBorderConstant);
    FrontFilter<ThreeBytes> mirror({9, 9}, 3, 1.0F, lumBorderMirror);
    EXPECT_REFUSED(lumStatusNullPointer, dst, ThreeBytes::border(constant.call(src, dst, 0, nullptr)));
    EXPECT_STATUS(lumStatusOk, ThreeBytes::border(mirror.call(src, dst, 0, nullptr)));
}

MEMBER_TEST(FilterGaussianChecks, CacheIsAskedForFromHalfAMebibyteOfFloatsOn) {
    using T = typename TypeParam::Element;
    constexpr int channels = TypeParam::channels;
    // 4 x 3 x 1024 bytes a row of three channels: 43 rows pass 0x80000 bytes by the last; one channel meets it.
    const int height = channels == 1 ? 128 : 43;
    CoreFilter<TypeParam> core({1024, height}, 3, 1.0F);
    GuardedImage<T> src(1024, height, {.channels = channels, .guard = Guard::before});
    // Rows that no vector store could stream make no difference.
    GuardedImage<T> dst(1024, height, {.channels = channels, .offset = 1, .guard = Guard::before});
    CacheReport report(hugeCache);
    auto run = [&](intptr_t rows) {
        Call<T> call = core.call(src, dst);
        call.size.height = rows;
        EXPECT_STATUS(lumStatusOk, TypeParam::core(call));
        return report.queries();
    };
    EXPECT_EQ(0, run(height - 1));
    EXPECT_EQ(1, run(height));
    EXPECT_EQ(2, run(height)) << "each run asks";
}

MEMBER_TEST(FilterGaussianChecks, FailingCacheQueryIsNotReported) {
    using T = typename TypeParam::Element;
    CoreFilter<TypeParam> core({1024, 130}, 3, 0.05F);
    GuardedImage<T> src(1024, 130, {.channels = TypeParam::channels, .guard = Guard::before});
    GuardedImage<T> dst(1024, 130, {.channels = TypeParam::channels, .guard = Guard::before});
    src.fillRandom(1);
    CacheReport report(0, lumStatusOutOfRange);
    EXPECT_STATUS(lumStatusOk, core.run(src, dst));
    EXPECT_EQ(1, report.queries());
    EXPECT_EQ(src.pixels(), dst.pixels());
}
