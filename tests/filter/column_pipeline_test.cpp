#include "filter/pipeline_members.h"

#include "kernels/filter/column_pipeline_float.h"
#include "kernels/filter/column_pipeline_pairs.h"
#include "kernels/filter/column_pipeline_three.h"
#include "support/member_test.h"

using namespace pipelines;

namespace {

using Members =
    testing::Types<Column16s8sC1, Column16s8sC3, Column16s8uC1, Column16s8uC3, Column16sC1, Column16sC3,
                   Column16uC1, Column16uC3, Column32fC1, Column32fC3, ColumnLowC1, ColumnLowC3>;
MEMBER_TEST_SUITE(ColumnPipeline, Members);

using SaturatingMembers =
    testing::Types<Column16s8sC1, Column16s8sC3, Column16s8uC1, Column16s8uC3, Column16sC1, Column16sC3,
                   Column16uC1, Column16uC3, Column32fC1, Column32fC3>;
MEMBER_TEST_SUITE(SaturatingColumnPipeline, SaturatingMembers);

using WordMembers =
    testing::Types<Column16s8sC1, Column16s8sC3, Column16s8uC1, Column16s8uC3, Column16sC1, Column16sC3>;
MEMBER_TEST_SUITE(WordColumnPipeline, WordMembers);

/// The definition of a result, for the members that saturate; `element` counts those of a row.
template <class Member>
typename Member::Result expectedResult(const typename Member::Source* const* rows, int element, int width,
                                       const std::vector<typename Member::Kernel>& kernel, int divisor) {
    using S = typename Member::Source;
    using R = typename Member::Result;
    const int taps = static_cast<int>(kernel.size());
    const auto scaled = scaledKernel(kernel, divisor);
    const auto value = [&](int k) { return static_cast<float>(rows[k][element]); };
    float sum = value(0) * scaled[0];
    for (int k = 1; k < taps; ++k) sum += value(k) * scaled[k];
    if (std::is_same_v<S, Lum16s> && taps == 3 && kernel[0] == kernel[2])
        sum = (value(0) + value(2)) * scaled[0] + value(1) * scaled[1];
    const bool block = element < width * Member::channels / 16 * 16;
    const bool signedResult = std::is_same_v<R, Lum8s> || std::is_same_v<R, Lum16s>;
    return result<R>(sum, signedResult && !block ? Rounded::truncated : Rounded::nearestEven);
}

struct Layout {
    Guard guard = Guard::after;
    int srcOffset = 0;
    int dstOffset = 0;
    int bufferShift = 0;
};

/// One call on random rows in an order of their own, against the definition.
template <class Member>
void expectDefinition(LumSize size, const std::vector<typename Member::Kernel>& kernel, int divisor,
                      unsigned seed, const Layout& layout) {
    using S = typename Member::Source;
    using R = typename Member::Result;
    const int taps = static_cast<int>(kernel.size());
    const int rows = size.height + taps - 1;
    GuardedImage<S> src(size.width, rows,
                        {.channels = Member::channels,
                         .padding = 2 * sizeof(S),
                         .offset = layout.srcOffset,
                         .guard = layout.guard});
    src.fillRandom(seed);
    std::vector<const S*> srcRows(rows);
    for (int y = 0; y < rows; ++y) srcRows[y] = src.row(y * 7 % rows);
    GuardedImage<R> dst(size.width, size.height,
                        {.channels = Member::channels,
                         .padding = 3 * sizeof(R),
                         .offset = layout.dstOffset,
                         .guard = layout.guard});
    GuardedBlock block(Member::bytes(size.width), layout.guard, layout.bufferShift);
    ASSERT_EQ(lumStatusOk, Member::call({srcRows.data(), dst.data(), dst.step(), size, kernel.data(), taps,
                                         divisor, block.as()}));
    for (int y = 0; y < size.height; ++y)
        for (int i = 0; i < size.width * Member::channels; ++i) {
            const R expected = expectedResult<Member>(srcRows.data() + y, i, size.width, kernel, divisor);
            ASSERT_EQ(expected, dst.row(y)[i])
                << "seed " << seed << " element " << i << " y " << y << " width " << size.width << " taps "
                << taps << " divisor " << divisor;
        }
    ASSERT_TRUE(dst.outsideUntouched());
    ASSERT_TRUE(src.untouched());
}

constexpr int divisors[] = {1, 2, 3, 16, 49, 256, 100000, -1, -7, 0x7FFFFFFF};

/// Rows that all hold one value, through a member.
template <class Member>
std::vector<typename Member::Result> flat(typename Member::Source value, int width,
                                          const std::vector<typename Member::Kernel>& kernel, int divisor,
                                          int height = 1) {
    const int elements = width * Member::channels;
    const std::vector<typename Member::Source> row(elements, value);
    const std::vector<const typename Member::Source*> rows(height + kernel.size() - 1, row.data());
    std::vector<typename Member::Result> dst(elements * height);
    std::vector<Lum8u> buffer(Member::bytes(width));
    EXPECT_STATUS(lumStatusOk, Member::call({rows.data(),
                                             dst.data(),
                                             static_cast<int>(elements * sizeof(dst[0])),
                                             {width, height},
                                             kernel.data(),
                                             static_cast<int>(kernel.size()),
                                             divisor,
                                             buffer.data()}));
    return dst;
}

template <class Member> struct Passing {
    using S = typename Member::Source;
    using R = typename Member::Result;
    GuardedImage<S> src{6, 4, {.channels = Member::channels}};
    GuardedImage<R> dst{6, 2, {.channels = Member::channels, .padding = 16}};
    const S* srcRows[4] = {src.row(0), src.row(1), src.row(2), src.row(3)};
    S kernel[3] = {1, 2, 1};
    std::vector<Lum8u> buffer = std::vector<Lum8u>(Member::bytes(6));
    ColumnCall<S, R> call{srcRows, dst.data(), dst.step(), {6, 2}, kernel, 3, 4, buffer.data()};
};

} // namespace

TEST(ColumnPipeline_32f, KernelIsNotReversed) {
    const float rows[3] = {1, 10, 100};
    const float* pointers[3] = {&rows[0], &rows[1], &rows[2]};
    const float kernel[3] = {1, 2, 3};
    float dst = 0;
    Lum8u buffer[32];
    EXPECT_STATUS(lumStatusOk,
                  lumiFilterColumnPipeline_32f_C1R(pointers, &dst, 4, {1, 1}, kernel, 3, buffer));
    EXPECT_EQ(321.0F, dst);
}

TEST(ColumnPipelineBufferSize, EachFormula) {
    const auto expect = [](LumStatus (*query)(LumSize, int, Lum32s*), int perColumn, int group,
                           int constantBytes) {
        for (int width : {1, 3, 4, 5, 8, 9, 1920})
            for (int taps : {1, 3, 0x7FFFFFFF}) {
                Lum32s bytes = -1;
                EXPECT_STATUS(lumStatusOk, query({width, 0x7FFFFFFF}, taps, &bytes));
                EXPECT_EQ(perColumn * ((width + group - 1) / group * group) + constantBytes, bytes);
            }
    };
    expect(lumiFilterColumnPipelineGetBufferSize_16s8s_C1R, 12, 4, 64);
    expect(lumiFilterColumnPipelineGetBufferSize_16s8u_C1R, 12, 4, 64);
    expect(lumiFilterColumnPipelineGetBufferSize_16s_C1R, 12, 4, 64);
    expect(lumiFilterColumnPipelineGetBufferSize_16s8s_C3R, 36, 4, 64);
    expect(lumiFilterColumnPipelineGetBufferSize_16s8u_C3R, 36, 4, 64);
    expect(lumiFilterColumnPipelineGetBufferSize_16s_C3R, 36, 4, 64);
    expect(lumiFilterColumnPipelineGetBufferSize_16u_C1R, 0, 1, 32);
    expect(lumiFilterColumnPipelineGetBufferSize_16u_C3R, 0, 1, 32);
    expect(lumiFilterColumnPipelineGetBufferSize_32f_C1R, 0, 1, 32);
    expect(lumiFilterColumnPipelineGetBufferSize_32f_C3R, 0, 1, 32);
    expect(lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R, 12, 8, 64);
    expect(lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R, 36, 8, 64);
}

MEMBER_TEST(ColumnPipeline, BufferSizeTestsItsPointerThenItsSizes) {
    Lum32s bytes = 77;
    EXPECT_STATUS(lumStatusNullPointer, TypeParam::bufferSize({0, 0}, 0, nullptr));
    EXPECT_STATUS(lumStatusSizeError, TypeParam::bufferSize({0, 4}, 3, &bytes));
    EXPECT_STATUS(lumStatusSizeError, TypeParam::bufferSize({4, -1}, 3, &bytes));
    EXPECT_STATUS(lumStatusSizeError, TypeParam::bufferSize({4, 4}, 0, &bytes));
    EXPECT_EQ(77, bytes);
}

MEMBER_TEST(SaturatingColumnPipeline, DefinitionOnEveryWidth) {
    std::mt19937 engine(30);
    for (int taps : {1, 2, 3, 4, 5, 11})
        for (int width = 1; width <= 70; ++width) {
            const auto kernel = randomKernel<typename TypeParam::Kernel>(taps, engine);
            expectDefinition<TypeParam>({width, 1 + width % 4}, kernel,
                                        divisors[engine() % std::size(divisors)], engine(),
                                        {.guard = width % 2 == 0 ? Guard::after : Guard::before});
            if (testing::Test::HasFatalFailure()) return;
        }
}

MEMBER_TEST(SaturatingColumnPipeline, DefinitionOnEveryAlignment) {
    std::mt19937 engine(31);
    for (int shift = 0; shift < 32; ++shift)
        for (int taps : {3, 5, 8}) {
            const auto kernel = randomKernel<typename TypeParam::Kernel>(taps, engine);
            expectDefinition<TypeParam>({43, 3}, kernel, divisors[engine() % std::size(divisors)], engine(),
                                        {.guard = shift % 2 == 0 ? Guard::after : Guard::before,
                                         .srcOffset = shift,
                                         .dstOffset = 31 - shift,
                                         .bufferShift = shift});
            if (testing::Test::HasFatalFailure()) return;
        }
}

MEMBER_TEST(SaturatingColumnPipeline, DefinitionOnRandomCalls) {
    const unsigned seed = 2302;
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int round = 0; round < 300; ++round) {
        const int taps = 1 + static_cast<int>(engine() % 12);
        const auto kernel = randomKernel<typename TypeParam::Kernel>(taps, engine);
        expectDefinition<TypeParam>(
            {1 + static_cast<int>(engine() % 120), 1 + static_cast<int>(engine() % 6)}, kernel,
            divisors[engine() % std::size(divisors)], engine(),
            {.guard = round % 2 == 0 ? Guard::after : Guard::before});
        if (testing::Test::HasFatalFailure()) return;
    }
}

MEMBER_TEST(SaturatingColumnPipeline, DefinitionForSymmetricKernelsOfThreeTaps) {
    std::mt19937 engine(32);
    for (int round = 0; round < 60; ++round) {
        auto kernel = randomKernel<typename TypeParam::Kernel>(3, engine);
        kernel[2] = kernel[0];
        expectDefinition<TypeParam>({1 + round, 7}, kernel, divisors[engine() % std::size(divisors)],
                                    engine(), {});
        if (testing::Test::HasFatalFailure()) return;
    }
}

MEMBER_TEST(WordColumnPipeline, DefinitionForAntisymmetricKernelsOfThreeTaps) {
    std::mt19937 engine(34);
    for (int round = 0; round < 60; ++round) {
        auto kernel = randomKernel<Lum16s>(3, engine);
        kernel[2] = static_cast<Lum16s>(-kernel[0]);
        expectDefinition<TypeParam>({1 + round, 7}, kernel, divisors[engine() % std::size(divisors)],
                                    engine(), {});
        if (testing::Test::HasFatalFailure()) return;
    }
    expectDefinition<TypeParam>({37, 7}, {-1, 0, 1}, 1, 35, {});
}

MEMBER_TEST(SaturatingColumnPipeline, DefinitionForKernelsLongerThanAnyTable) {
    std::mt19937 engine(33);
    for (int taps : {63, 64, 65, 200})
        expectDefinition<TypeParam>({37, 2}, randomKernel<typename TypeParam::Kernel>(taps, engine), 4096,
                                    engine(), {});
}

MEMBER_TEST(SaturatingColumnPipeline, DefinitionAroundTheLimitOfExactSums) {
    using K = typename TypeParam::Kernel;
    const int limit = std::is_same_v<K, Lum16u> ? 256 : 512;
    for (int extra : {-1, 0, 1})
        for (int divisor : {1, 512, 0x40000000, -4, 511}) {
            std::vector<K> kernel = {K(1), K(limit / 2), K(3), K(limit / 2 + extra - 4)};
            expectDefinition<TypeParam>({60, 4}, kernel, divisor, 70 + extra, {});
            if (testing::Test::HasFatalFailure()) return;
        }
}

MEMBER_TEST(SaturatingColumnPipeline, OtherDivisorsScaleEachCoefficientBeforeTheSum) {
    // Ties and near ties in plenty: the same value in all rows, from 0 upward.
    using S = typename TypeParam::Source;
    using R = typename TypeParam::Result;
    constexpr int width = 2048;
    std::vector<S> row(width * TypeParam::channels);
    for (std::size_t i = 0; i < row.size(); ++i) row[i] = static_cast<S>(i);
    const std::vector<typename TypeParam::Kernel> kernel(5, 1);
    const std::vector<const S*> rows(5, row.data());
    std::vector<R> dst(row.size());
    std::vector<Lum8u> buffer(TypeParam::bytes(width));
    for (int divisor : {3, 6, 10, 12, 50}) {
        const int step = static_cast<int>(dst.size() * sizeof(R));
        EXPECT_STATUS(
            lumStatusOk,
            TypeParam::call(
                {rows.data(), dst.data(), step, {width, 1}, kernel.data(), 5, divisor, buffer.data()}));
        for (std::size_t i = 0; i < row.size(); ++i)
            ASSERT_EQ(expectedResult<TypeParam>(rows.data(), static_cast<int>(i), width, kernel, divisor),
                      dst[i])
                << "value " << i << " divisor " << divisor;
    }
}

MEMBER_TEST(ColumnPipeline, EachTestComesBeforeAllLaterOnes) {
    constexpr bool divided = !std::is_same_v<typename TypeParam::Source, Lum32f>;
    constexpr bool wide = sizeof(typename TypeParam::Result) > 1;
    constexpr int tested = TypeParam::low ? 1 : TypeParam::channels;
    constexpr int rowBytes = 6 * tested * sizeof(typename TypeParam::Result);
    Passing<TypeParam> passing;
    auto& call = passing.call;
    const auto expect = [&](LumStatus status) { EXPECT_REFUSED(status, passing.dst, TypeParam::call(call)); };
    const auto kept = call;
    // Everything is wrong at first, and is put right from the front.
    call.roiSize = {0, 0};
    passing.srcRows[1] = nullptr;
    call.kernelSize = 0;
    call.dstStep = rowBytes - 1;
    call.buffer = nullptr;
    call.divisor = 0;
    call.srcRows = nullptr;
    expect(lumStatusNullPointer);
    call.srcRows = kept.srcRows;
    call.dst = nullptr;
    expect(lumStatusNullPointer);
    call.dst = kept.dst;
    call.kernel = nullptr;
    expect(lumStatusNullPointer);
    call.kernel = kept.kernel;
    expect(lumStatusSizeError);
    call.roiSize = {6, 0};
    expect(lumStatusSizeError);
    call.roiSize = {6, 2};
    // Two rows and no tap walk one pointer; the second is null.
    expect(lumStatusSizeError);
    call.kernelSize = 1;
    expect(lumStatusNullPointer);
    passing.srcRows[1] = passing.src.row(1);
    call.kernelSize = 0;
    expect(lumStatusSizeError);
    call.kernelSize = -5;
    expect(lumStatusSizeError);
    call.kernelSize = 3;
    expect(lumStatusStepError);
    call.dstStep = -kept.dstStep;
    expect(lumStatusStepError);
    call.dstStep = rowBytes + 1;
    if (wide) expect(lumStatusStepAlignmentError);
    call.dstStep = kept.dstStep;
    expect(lumStatusNullPointer);
    call.buffer = kept.buffer;
    if (divided) expect(lumStatusBadArgument);
    call.divisor = -4;
    EXPECT_STATUS(lumStatusOk, TypeParam::call(call));
}

MEMBER_TEST(ColumnPipeline, WalkedPointersOfARefusedKernelSizeMayBeNull) {
    Passing<TypeParam> passing;
    passing.call.kernelSize = 0;
    passing.srcRows[0] = nullptr;
    EXPECT_REFUSED(lumStatusNullPointer, passing.dst, TypeParam::call(passing.call));
    passing.call.kernelSize = -1;
    EXPECT_REFUSED(lumStatusSizeError, passing.dst, TypeParam::call(passing.call));
    passing.call.kernelSize = static_cast<int>(0x80000000U);
    EXPECT_REFUSED(lumStatusSizeError, passing.dst, TypeParam::call(passing.call));
}

MEMBER_TEST(ColumnPipeline, EveryPointerOfTheWindowsIsTested) {
    for (int y = 0; y < 4; ++y) {
        Passing<TypeParam> passing;
        passing.srcRows[y] = nullptr;
        EXPECT_REFUSED(lumStatusNullPointer, passing.dst, TypeParam::call(passing.call));
    }
}

MEMBER_TEST(ColumnPipeline, StepOfTheRowPasses) {
    Passing<TypeParam> passing;
    passing.call.dstStep = 6 * TypeParam::channels * sizeof(typename TypeParam::Result);
    EXPECT_STATUS(lumStatusOk, TypeParam::call(passing.call));
}

MEMBER_TEST(ColumnPipeline, OneRowOfFiveTapsReadsExactlyFivePointers) {
    using S = typename TypeParam::Source;
    constexpr int elements = 9 * TypeParam::channels;
    const std::vector<S> row(elements, S{3});
    GuardedBlock pointers(5 * sizeof(const S*));
    auto* rows = pointers.as<const S*>();
    for (int k = 0; k < 5; ++k) rows[k] = row.data();
    const S kernel[5] = {1, 1, 1, 1, 1};
    GuardedImage<typename TypeParam::Result> dst(9, 1, {.channels = TypeParam::channels});
    GuardedBlock buffer(TypeParam::bytes(9));
    EXPECT_STATUS(
        lumStatusOk,
        TypeParam::call({rows, dst.data(), dst.step(), {9, 1}, kernel, 5, 1, buffer.template as<>()}));
    for (auto value : dst.pixels()) EXPECT_EQ(15, value);
}

MEMBER_TEST(WordColumnPipeline, HalvesRoundToEvenInSixteensAndTruncateAfterThem) {
    const bool bytes = std::is_same_v<typename TypeParam::Result, Lum8u>;
    for (const std::vector<Lum16s>& kernel :
         {std::vector<Lum16s>{0, 1, 0}, {1, 0, 0}, {0, 0, 1, 0, 0}, {1}, {0, 0, 0, 0, 0, 1}})
        for (int value : {5, 7, -5, -7}) {
            const int width = 41;
            const auto dst = flat<TypeParam>(static_cast<Lum16s>(value), width, kernel, 2, 3);
            const int elements = width * TypeParam::channels;
            for (int i = 0; i < 3 * elements; ++i) {
                const bool rounded = bytes || i % elements < elements / 16 * 16;
                const int half = rounded ? static_cast<int>(std::nearbyint(value / 2.0)) : value / 2;
                ASSERT_EQ(bytes ? std::max(half, 0) : half, dst[i]) << "element " << i << " value " << value;
            }
        }
}

MEMBER_TEST(WordColumnPipeline, SumsBeyondThirtyTwoBitsSaturate) {
    using R = typename TypeParam::Result;
    for (int taps : {3, 5, 9}) {
        const std::vector<Lum16s> kernel(taps, 32767);
        for (R value : flat<TypeParam>(-32768, 37, kernel, 1))
            EXPECT_EQ(std::numeric_limits<R>::min(), value);
        for (R value : flat<TypeParam>(32767, 37, kernel, 1)) EXPECT_EQ(std::numeric_limits<R>::max(), value);
        for (R value : flat<TypeParam>(-32768, 37, kernel, -1))
            EXPECT_EQ(std::numeric_limits<R>::max(), value);
    }
    // 2^31 itself, of a symmetric kernel and of another.
    for (const std::vector<Lum16s>& kernel : {std::vector<Lum16s>{-32768, 0, -32768}, {-32768, -32768, 0}})
        for (R value : flat<TypeParam>(-32768, 37, kernel, 1))
            EXPECT_EQ(std::numeric_limits<R>::max(), value);
}

TEST(ColumnPipelineRules, DivisorsAreFloatsBeforeTheirReciprocalIsTaken) {
    // 16777217 is 2^24 as a float: 256 x -98304 over it is the tie -1.5, and over the integer lies above it.
    const auto dst = flat<Column16sC1>(-32768, 37, {256, 256, 256}, 16777217);
    for (int x = 0; x < 32; ++x) EXPECT_EQ(-2, dst[x]) << x;
}

TEST(ColumnPipeline_16u, KernelIsUnsignedAndEveryResultRoundsToEven) {
    for (Lum16u value : flat<Column16uC1>(7, 37, {0, 65535, 0}, 65535)) EXPECT_EQ(7, value);
    for (Lum16u value : flat<Column16uC1>(2, 37, {0, 65535, 0}, 1)) EXPECT_EQ(65535, value);
    for (Lum16u value : flat<Column16uC1>(5, 37, {0, 1, 0}, 2)) EXPECT_EQ(2, value);
    for (Lum16u value : flat<Column16uC1>(7, 37, {0, 1, 0}, 2)) EXPECT_EQ(4, value);
    for (Lum16u value : flat<Column16uC1>(7, 37, {0, 1, 0}, -2)) EXPECT_EQ(0, value);
}

TEST(ColumnPipelineRules, EachSumOfSinglePrecisionIsRounded) {
    // The first two products add up to 2^10 m + 509 above 2^24, where only even numbers are floats: 508 is left, and
    // none of the ones after it moves it. The exact sum, 2^10 m + 513, would round up.
    const auto sumOf = [](auto first, auto second, int m, auto member) {
        using Member = decltype(member);
        using S = typename Member::Source;
        const std::vector<S> upper(20, first);
        const std::vector<S> next(20, second);
        const std::vector<S> ones(20, 1);
        const S* rows[6] = {upper.data(), next.data(), ones.data(), ones.data(), ones.data(), ones.data()};
        const S kernel[6] = {S(std::is_signed_v<S> ? 600 : 300), 1, 1, 1, 1, 1};
        EXPECT_EQ(1024 * m + 509, kernel[0] * first + second);
        S dst[20];
        std::vector<Lum8u> buffer(Member::bytes(20));
        EXPECT_STATUS(lumStatusOk, Member::call({rows, dst, 40, {20, 1}, kernel, 6, 1024, buffer.data()}));
        return static_cast<int>(dst[0]);
    };
    EXPECT_EQ(19160, sumOf(Lum16s(32700), Lum16s(349), 19160, Column16sC1{}));
    EXPECT_EQ(19043, sumOf(Lum16u(65000), Lum16u(541), 19043, Column16uC1{}));
}

namespace {

template <class S, class R> void expectColumnsAgree(int taps, lum::Rounding rest) {
    std::mt19937 engine(taps);
    const auto kernel = randomKernel<S>(taps, engine);
    for (int width = 1; width <= 70; ++width) {
        const Guard guard = width % 2 == 0 ? Guard::after : Guard::before;
        GuardedImage<S> src(width, taps + 1, {.offset = width % 5, .guard = guard});
        src.fillRandom(width);
        std::vector<const S*> rows;
        for (int y = 0; y <= taps; ++y) rows.push_back(src.row(y));
        GuardedImage<R> expected(width, 2, {.guard = guard});
        GuardedImage<R> actual(width, 2, {.offset = width % 7, .guard = guard});
        const lum::kernels::RowRounding rounded{width / 16 * 16, rest};
        const lum::kernels::Taps<S> all{kernel.data(), taps, 1.0F / 7};
        lum::kernels::weightedColumnsScalar<S, R>(rows.data(), {expected.data(), expected.step()}, {width, 2},
                                                  rounded, all);
        lum::kernels::weightedColumns<S, R>(rows.data(), {actual.data(), actual.step()}, {width, 2}, rounded,
                                            all);
        ASSERT_TRUE(sameBits(expected.pixels(), actual.pixels())) << "width " << width << " taps " << taps;
    }
}

/// Pairs against single precision, on kernels at the very limit of exact sums.
template <class S, class R> void expectPairedColumnsAgree(int taps, lum::Rounding rest, float scale) {
    std::mt19937 engine(taps);
    std::vector<S> kernel(taps);
    int left = std::is_signed_v<S> ? 512 : 256;
    for (S& k : kernel) {
        const int magnitude = static_cast<int>(engine() % (left + 1));
        left -= magnitude;
        k = static_cast<S>(std::is_signed_v<S> && engine() % 2 == 0 ? -magnitude : magnitude);
    }
    kernel[taps / 2] =
        static_cast<S>(kernel[taps / 2] < 0 ? kernel[taps / 2] - left : kernel[taps / 2] + left);
    for (int width = 1; width <= 70; ++width) {
        const Guard guard = width % 2 == 0 ? Guard::after : Guard::before;
        GuardedImage<S> src(width, taps + 1, {.offset = width % 5, .guard = guard});
        src.fillRandom(width);
        for (int y = 0; y <= taps; ++y)
            src.at(width / 2, y) = std::is_signed_v<S> ? static_cast<S>(-32768) : S(65535);
        std::vector<const S*> rows;
        for (int y = 0; y <= taps; ++y) rows.push_back(src.row(y));
        GuardedImage<R> expected(width, 2, {.guard = guard});
        GuardedImage<R> actual(width, 2, {.offset = width % 7, .guard = guard});
        const lum::kernels::RowRounding rounded{width / 16 * 16, rest};
        const lum::kernels::Taps<S> all{kernel.data(), taps, scale};
        lum::kernels::weightedColumnsScalar<S, R>(rows.data(), {expected.data(), expected.step()}, {width, 2},
                                                  rounded, all);
        lum::kernels::pairedColumns<S, R>(rows.data(), {actual.data(), actual.step()}, {width, 2}, rounded,
                                          all);
        ASSERT_TRUE(sameBits(expected.pixels(), actual.pixels())) << "width " << width << " taps " << taps;
        ASSERT_TRUE(actual.outsideUntouched());
    }
}

template <class R> void expectThreeTapsAgree(const lum::kernels::ThreeWeights& weights) {
    using lum::Rounding;
    for (int width = 1; width <= 70; ++width)
        for (Rounding rest : {Rounding::nearestEven, Rounding::truncated}) {
            GuardedImage<Lum16s> src(width, 7, {.offset = width % 5});
            src.fillRandom(width);
            std::vector<const Lum16s*> rows;
            for (int y = 0; y < 7; ++y) rows.push_back(src.row(y));
            GuardedImage<R> expected(width, 5);
            GuardedImage<R> actual(width, 5, {.offset = width % 7});
            const int elements = (width + 3) / 4 * 4;
            GuardedBlock block(3 * elements * sizeof(float));
            const lum::kernels::RingOfThree ring{block.as<float>(), elements};
            const lum::kernels::RowRounding rounded{width / 16 * 16, rest};
            lum::kernels::threeTapColumnsScalar<R>(rows.data(), {expected.data(), expected.step()},
                                                   {width, 5}, rounded, weights, ring);
            lum::kernels::threeTapColumns<R>(rows.data(), {actual.data(), actual.step()}, {width, 5}, rounded,
                                             weights, ring);
            ASSERT_TRUE(sameBits(expected.pixels(), actual.pixels())) << "width " << width;
        }
}

} // namespace

TEST(ColumnPipelineKernels, VectorAgreesWithScalar) {
    using lum::Rounding;
    for (int taps : {1, 2, 3, 5, 8, 70})
        for (Rounding rest : {Rounding::nearestEven, Rounding::truncated}) {
            expectColumnsAgree<Lum16s, Lum8s>(taps, rest);
            expectColumnsAgree<Lum16s, Lum8u>(taps, rest);
            expectColumnsAgree<Lum16s, Lum16s>(taps, rest);
            expectColumnsAgree<Lum16u, Lum16u>(taps, rest);
            expectColumnsAgree<Lum32f, Lum32f>(taps, rest);
        }
}

TEST(ColumnPipelineKernels, PairsAgreeWithSinglePrecision) {
    using lum::Rounding;
    for (int taps : {1, 2, 3, 5, 8, 63, 64, 65})
        for (Rounding rest : {Rounding::nearestEven, Rounding::truncated})
            for (float scale : {1.0F, 1.0F / 2, -1.0F / 256, 1.0F / 0x40000000}) {
                expectPairedColumnsAgree<Lum16s, Lum8s>(taps, rest, scale);
                expectPairedColumnsAgree<Lum16s, Lum8u>(taps, rest, scale);
                expectPairedColumnsAgree<Lum16s, Lum16s>(taps, rest, scale);
                expectPairedColumnsAgree<Lum16u, Lum16u>(taps, rest, scale);
            }
}

TEST(ColumnPipelineKernels, ThreeTapsInARingAgreeWithScalar) {
    for (bool symmetric : {false, true})
        for (bool isSmall : {false, true}) {
            const float first = isSmall ? 0.25F : 20000.0F;
            const lum::kernels::ThreeWeights weights{first, -0.7F, symmetric ? first : 0.3F, symmetric,
                                                     isSmall};
            expectThreeTapsAgree<Lum8s>(weights);
            expectThreeTapsAgree<Lum8u>(weights);
            expectThreeTapsAgree<Lum16s>(weights);
        }
}
