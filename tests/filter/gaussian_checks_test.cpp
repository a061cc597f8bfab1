#include "filter/gaussian_members.h"
#include "support/cache_report.h"

using namespace gaussian;

namespace {

template <class M> class FilterGaussianChecks : public testing::Test {};
TYPED_TEST_SUITE(FilterGaussianChecks, AllMembers);

/// A core filter with images for calls that are refused.
template <class M> struct Refusals {
    using T = typename M::Element;
    GuardedImage<T> src{8, 4, {.channels = M::channels, .padding = 16}};
    GuardedImage<T> dst{8, 4, {.channels = M::channels, .padding = 16}};
    CoreFilter<M> core{{8, 4}, 3, 1.0F};
    FrontFilter<M> front{{8, 4}, 3, 1.0F};
    T value[3] = {1, 2, 3};
    const int step = src.step();
    const int row = static_cast<int>(8 * M::channels * sizeof(T));

    LumStatus callL(intptr_t srcStep, intptr_t dstStep, LumSizeL size, int border = lumBorderReplicate) {
        return runL(M{}, src.data(), srcStep, dst.data(), dstStep, size, border, value, core.spec(),
                    core.buffer());
    }
    LumStatus callPlain(int srcStep, int dstStep, LumSize size, int border = lumBorderReplicate) {
        return runPlain(M{}, src.data(), srcStep, dst.data(), dstStep, size, border, value, front.spec(),
                        front.buffer());
    }
};

} // namespace

TYPED_TEST(FilterGaussianChecks, CacheIsAskedForFromHalfAMebibyteOfFloatsOn) {
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
        EXPECT_STATUS(lumStatusOk,
                      runL(TypeParam{}, src.data(), src.step(), dst.data(), dst.step(), {1024, rows},
                           lumBorderReplicate, nullptr, core.spec(), core.buffer()));
        return report.queries();
    };
    EXPECT_EQ(0, run(height - 1));
    EXPECT_EQ(1, run(height));
    EXPECT_EQ(2, run(height)) << "each run asks";
}

TYPED_TEST(FilterGaussianChecks, FailingCacheQueryIsNotReported) {
    using T = typename TypeParam::Element;
    CoreFilter<TypeParam> core({1024, 130}, 3, 0.05F);
    GuardedImage<T> src(1024, 130, {.channels = TypeParam::channels, .guard = Guard::before});
    GuardedImage<T> dst(1024, 130, {.channels = TypeParam::channels, .guard = Guard::before});
    src.fillRandom(1);
    CacheReport report(0, lumStatusOutOfRange);
    EXPECT_STATUS(lumStatusOk, runL(TypeParam{}, src.data(), src.step(), dst.data(), dst.step(), {1024, 130},
                                    lumBorderReplicate, nullptr, core.spec(), core.buffer()));
    EXPECT_EQ(1, report.queries());
    EXPECT_EQ(src.pixels(), dst.pixels());
}

TYPED_TEST(FilterGaussianChecks, NullPointersComeFirst) {
    Refusals<TypeParam> r;
    typename TypeParam::Element* none = nullptr;
    auto* src = r.src.data();
    auto* dst = r.dst.data();
    auto* core = r.core.spec();
    auto* front = r.front.spec();
    Lum8u* buffer = r.core.buffer();
    const TypeParam m;
    EXPECT_REFUSED(lumStatusNullPointer, r.dst, runL(m, none, 0, dst, 0, {0, 0}, 0, r.value, core, buffer));
    EXPECT_REFUSED(lumStatusNullPointer, r.dst, runL(m, src, 0, none, 0, {0, 0}, 0, r.value, core, buffer));
    EXPECT_REFUSED(lumStatusNullPointer, r.dst, runL(m, src, 0, dst, 0, {0, 0}, 0, r.value, nullptr, buffer));
    EXPECT_REFUSED(lumStatusNullPointer, r.dst, runL(m, src, 0, dst, 0, {0, 0}, 0, r.value, core, nullptr));
    EXPECT_REFUSED(lumStatusNullPointer, r.dst,
                   runPlain(m, none, 0, dst, 0, {0, 0}, 0, r.value, front, buffer));
    EXPECT_REFUSED(lumStatusNullPointer, r.dst,
                   runPlain(m, src, 0, none, 0, {0, 0}, 0, r.value, front, buffer));
    EXPECT_REFUSED(lumStatusNullPointer, r.dst,
                   runPlain(m, src, 0, dst, 0, {0, 0}, 0, r.value, nullptr, buffer));
    EXPECT_REFUSED(lumStatusNullPointer, r.dst,
                   runPlain(m, src, 0, dst, 0, {0, 0}, 0, r.value, front, nullptr));
    EXPECT_REFUSED(lumStatusNullPointer, r.dst,
                   runBorder(m, none, 0, dst, 0, {0, 0}, r.value, front, buffer));
    EXPECT_REFUSED(lumStatusNullPointer, r.dst,
                   runBorder(m, src, 0, none, 0, {0, 0}, r.value, front, buffer));
    EXPECT_REFUSED(lumStatusNullPointer, r.dst,
                   runBorder(m, src, 0, dst, 0, {0, 0}, r.value, nullptr, buffer));
    EXPECT_REFUSED(lumStatusNullPointer, r.dst,
                   runBorder(m, src, 0, dst, 0, {0, 0}, r.value, front, nullptr));
}

TYPED_TEST(FilterGaussianChecks, StepsBelowTheRowComeBeforeSizesInTheCore) {
    Refusals<TypeParam> r;
    for (intptr_t shortStep : {r.row - 1, 0, -r.step}) {
        EXPECT_REFUSED(lumStatusStepError, r.dst, r.callL(shortStep, r.step, {8, 0}, 0));
        EXPECT_REFUSED(lumStatusStepError, r.dst, r.callL(r.step, shortStep, {8, 0}, 0));
        EXPECT_REFUSED(lumStatusStepError, r.dst, r.callL(shortStep, r.step, {8, 4}, 0));
    }
    EXPECT_REFUSED(lumStatusStepError, r.dst, r.callL(0x7FFFFFFC, 0x7FFFFFFC, {0x7FFFFFFF, 4}, 0));
    for (LumSizeL size : {LumSizeL{8, 0}, LumSizeL{0, 4}, LumSizeL{-8, 4}, LumSizeL{8, -4}})
        EXPECT_REFUSED(lumStatusSizeError, r.dst, r.callL(r.step + 1, r.step + 1, size, 0));
    EXPECT_REFUSED(lumStatusStepError, r.dst, r.callL(-1, r.step, {0, 4}, 0));
    EXPECT_REFUSED(lumStatusSizeError, r.dst, r.callL(0, 0, {0, 4}, 0));
    EXPECT_STATUS(lumStatusOk, r.callL(r.row, r.row, {8, 4}));
}

TYPED_TEST(FilterGaussianChecks, PlainRunTestsStepsBelow1ThenTheQueryThenTheCore) {
    Refusals<TypeParam> r;
    Lum32s* fields = reinterpret_cast<Lum32s*>(r.front.spec());
    for (int step : {0, -1, -r.step}) {
        EXPECT_REFUSED(lumStatusStepError, r.dst, r.callPlain(step, r.step, {0, 0}, 0));
        EXPECT_REFUSED(lumStatusStepError, r.dst, r.callPlain(r.step, step, {0, 0}, 0));
    }
    fields[0] = 4;
    fields[2] = 2;
    for (LumSize size : {LumSize{8, 0}, LumSize{0, 4}, LumSize{-8, 4}, LumSize{8, -4}})
        EXPECT_REFUSED(lumStatusSizeError, r.dst, r.callPlain(1, 1, size, 0));
    EXPECT_REFUSED(lumStatusBadArgument, r.dst, r.callPlain(1, 1, {8, 4}, 0));
    fields[0] = 1;
    EXPECT_REFUSED(lumStatusBadArgument, r.dst, r.callPlain(1, 1, {8, 4}, 0));
    fields[0] = 3;
    EXPECT_REFUSED(lumStatusDataTypeError, r.dst, r.callPlain(1, 1, {8, 4}, 0));
    fields[2] = typeOf<typename TypeParam::Element>;
    EXPECT_REFUSED(lumStatusStepError, r.dst, r.callPlain(r.row - 1, r.step, {8, 4}, 0));
    EXPECT_REFUSED(lumStatusStepError, r.dst, r.callPlain(r.step, r.row - 1, {8, 4}, 0));
    EXPECT_REFUSED(lumStatusBorderError, r.dst, r.callPlain(r.row, r.row, {8, 4}, 0));
    EXPECT_STATUS(lumStatusOk, r.callPlain(r.row, r.row, {8, 4}));
}

TYPED_TEST(FilterGaussianChecks, StepOffTheElementComesBeforeTheBorder) {
    Refusals<TypeParam> r;
    constexpr bool bytes = sizeof(typename TypeParam::Element) == 1;
    for (int odd : {1, 3}) {
        EXPECT_STATUS(bytes ? lumStatusBorderError : lumStatusStepAlignmentError,
                      r.callL(r.row + odd, r.step, {8, 4}, 256));
        EXPECT_STATUS(bytes ? lumStatusBorderError : lumStatusStepAlignmentError,
                      r.callL(r.step, r.row + odd, {8, 4}, 256));
    }
    EXPECT_STATUS(bytes ? lumStatusOk : lumStatusStepAlignmentError, r.callL(r.row + 1, r.row + 1, {8, 4}));
    EXPECT_TRUE(bytes || r.dst.untouched());
}

TYPED_TEST(FilterGaussianChecks, BordersAndTheBorderValueInOrder) {
    Refusals<TypeParam> r;
    const TypeParam m;
    auto run = [&](int border, const typename TypeParam::Element* value) {
        return runL(m, r.src.data(), r.step, r.dst.data(), r.step, {8, 4}, border, value, r.core.spec(),
                    r.core.buffer());
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

TYPED_TEST(FilterGaussianChecks, KernelSizeOfTheObjectIsTestedLast) {
    Refusals<TypeParam> r;
    Lum32s* kernelSize = reinterpret_cast<Lum32s*>(r.core.spec());
    for (int K : {4, 2, 1, 0, -3}) {
        *kernelSize = K;
        EXPECT_REFUSED(lumStatusBorderError, r.dst, r.callL(r.step, r.step, {8, 4}, 0));
        EXPECT_REFUSED(lumStatusBadArgument, r.dst, r.callL(r.step, r.step, {8, 4}));
        EXPECT_REFUSED(lumStatusBadArgument, r.dst, r.callL(r.step, r.step, {8, 4}, 0xF7));
    }
}

TEST(FilterGaussianBorder, ThreeChannelsNeedAValueForAConstantBorderOnly) {
    GuardedImage<Lum8u> src(9, 9, {.channels = 3});
    GuardedImage<Lum8u> dst(9, 9, {.channels = 3});
    FrontFilter<Members<Lum8u, 3>> constant({9, 9}, 3, 1.0F, lumBorderConstant);
    FrontFilter<Members<Lum8u, 3>> mirror({9, 9}, 3, 1.0F, lumBorderMirror);
    EXPECT_REFUSED(lumStatusNullPointer, dst,
                   lumiFilterGaussianBorder_8u_C3R(src.data(), 27, dst.data(), 27, {9, 9}, nullptr,
                                                   constant.spec(), constant.buffer()));
    EXPECT_STATUS(lumStatusOk, lumiFilterGaussianBorder_8u_C3R(src.data(), 27, dst.data(), 27, {9, 9},
                                                               nullptr, mirror.spec(), mirror.buffer()));
}
