#include "filter/pipeline_members.h"
#include "support/member_test.h"

#include <bit>

using namespace pipelines;

namespace {

using Members = testing::Types<Row16sC1, Row16sC3, Row16uC1, Row16uC3, Row32fC1, Row32fC3, Row8u16sC1,
                               Row8u16sC3, RowLowC1, RowLowC3>;
MEMBER_TEST_SUITE(RowPipeline, Members);

using SaturatingMembers =
    testing::Types<Row16sC1, Row16sC3, Row16uC1, Row16uC3, Row32fC1, Row32fC3, Row8u16sC1, Row8u16sC3>;
MEMBER_TEST_SUITE(SaturatingRowPipeline, SaturatingMembers);

using WordMembers = testing::Types<Row16sC1, Row16sC3, Row8u16sC1, Row8u16sC3>;
MEMBER_TEST_SUITE(WordRowPipeline, WordMembers);

/// The definition of a result, for the members that saturate.
template <class Member>
typename Member::Result expectedResult(const typename Member::Source* row, int x, int c, int width,
                                       const std::vector<typename Member::Kernel>& kernel, int anchor,
                                       LumBorderType border, const typename Member::Source* value,
                                       int divisor) {
    using S = typename Member::Source;
    using R = typename Member::Result;
    const int taps = static_cast<int>(kernel.size());
    const auto pixel = [&](int k) {
        return extended(row, x - anchor + k, c, width, Member::channels, border, value);
    };
    const auto scaled = scaledKernel(kernel, divisor);
    float sum = static_cast<float>(pixel(0)) * scaled[0];
    for (int k = 1; k < taps; ++k) sum += static_cast<float>(pixel(k)) * scaled[k];

    if constexpr (std::is_same_v<R, Lum16s>) {
        std::int64_t exact = 0;
        for (int k = 0; k < taps; ++k) exact += static_cast<std::int64_t>(pixel(k)) * kernel[k];
        const bool bytesUndivided = std::is_same_v<S, Lum8u> && taps == 3 && divisor == 1;
        if (bytesUndivided) return static_cast<R>(std::clamp<std::int64_t>(exact, -32768, 32767));

        const bool special = taps == 3 || taps == 5;
        const int inside = (width - taps + 1) * Member::channels;
        const int element = (x - anchor) * Member::channels + c;
        const bool vectors = special || width - taps > 15;
        if (width < taps || !vectors || element < 0 || element >= inside / 8 * 8)
            return result<R>(sum, Rounded::truncated);
        const bool lowest = std::find(kernel.begin(), kernel.end(), -32768) != kernel.end();
        const bool pairs = special ? magnitudes(kernel) < 65535 : magnitudes(kernel) <= 65535 && !lowest;
        if (pairs) sum = static_cast<float>(exact) * (1.0F / static_cast<float>(divisor));
        return result<R>(sum, Rounded::nearestEven);
    }
    return result<R>(sum, Rounded::truncated);
}

/// How a call's images are laid out.
struct Layout {
    Guard guard = Guard::after;
    int srcOffset = 0;
    int dstOffset = 0;
    int padding = 0;
    /// Spare bytes between the work memory and its guard, which shift its alignment.
    int bufferShift = 0;
};

/// One call on random pixels, against the definition. Sides in memory have exactly the pixels that the kernel
/// reaches.
template <class Member>
void expectDefinition(LumSize size, const std::vector<typename Member::Kernel>& kernel, int anchor,
                      LumBorderType border, int divisor, unsigned seed, const Layout& layout) {
    using S = typename Member::Source;
    using R = typename Member::Result;
    constexpr int channels = Member::channels;
    const int taps = static_cast<int>(kernel.size());
    const int before = (border & lumBorderInMemoryLeft) != 0 ? anchor : 0;
    const int after = (border & lumBorderInMemoryRight) != 0 ? taps - 1 - anchor : 0;
    GuardedImage<S> src(
        size.width + before + after, size.height,
        {.channels = channels, .padding = layout.padding, .offset = layout.srcOffset, .guard = layout.guard});
    src.fillRandom(seed);
    GuardedImage<R> dst(
        size.width, size.height,
        {.channels = channels, .padding = 12, .offset = layout.dstOffset, .guard = layout.guard});
    std::vector<R*> dstRows;
    for (int y = 0; y < size.height; ++y) dstRows.push_back(dst.row(size.height - 1 - y));
    const S value[3] = {S(7), S(200), S(99)};
    GuardedBlock block(Member::bytes(taps), layout.guard, layout.bufferShift);

    ASSERT_EQ(lumStatusOk, Member::call({src.data() + before * channels, src.step(), dstRows.data(), size,
                                         kernel.data(), taps, anchor, border, value, divisor, block.as()}));
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            for (int c = 0; c < channels; ++c) {
                const R expected = expectedResult<Member>(src.row(y) + before * channels, x, c, size.width,
                                                          kernel, anchor, border, value, divisor);
                ASSERT_EQ(expected, dstRows[y][x * channels + c])
                    << "seed " << seed << " x " << x << " y " << y << " c " << c << " width " << size.width
                    << " taps " << taps << " anchor " << anchor << " border " << border << " divisor "
                    << divisor;
            }
    ASSERT_TRUE(dst.outsideUntouched());
    ASSERT_TRUE(src.untouched());
}

constexpr LumBorderType borders[] = {lumBorderReplicate,
                                     lumBorderMirror,
                                     lumBorderConstant,
                                     lumBorderInMemory,
                                     lumBorderReplicate | lumBorderInMemoryLeft,
                                     lumBorderMirror | lumBorderInMemoryRight,
                                     lumBorderMirror | lumBorderInMemoryLeft,
                                     lumBorderConstant | lumBorderInMemoryLeft,
                                     lumBorderConstant | lumBorderInMemoryRight,
                                     lumBorderMirror | lumBorderInMemory,
                                     lumBorderReplicate | lumBorderInMemoryTop | lumBorderInMemoryBottom};

constexpr int divisors[] = {1, 2, 3, 16, 49, 256, 100000, -1, -7, 0x7FFFFFFF};

/// Divisors of the kernels without negative coefficients are positive.
template <class Member> int divisorFrom(std::mt19937& engine) {
    const int divisor = divisors[engine() % std::size(divisors)];
    return std::is_same_v<typename Member::Source, Lum16u> ? std::abs(divisor) : divisor;
}

/// One row of one channel through a member.
template <class Member>
std::vector<typename Member::Result>
filtered(const std::vector<typename Member::Source>& row, const std::vector<typename Member::Kernel>& kernel,
         int anchor, LumBorderType border, int divisor = 1, typename Member::Source value = {}) {
    const int width = static_cast<int>(row.size()) / Member::channels;
    std::vector<typename Member::Result> dst(row.size());
    typename Member::Result* dstRow = dst.data();
    std::vector<Lum8u> buffer(Member::bytes(static_cast<int>(kernel.size())));
    const typename Member::Source values[3] = {value, value, value};
    EXPECT_STATUS(lumStatusOk, Member::call({row.data(),
                                             static_cast<int>(row.size() * sizeof(row[0])),
                                             &dstRow,
                                             {width, 1},
                                             kernel.data(),
                                             static_cast<int>(kernel.size()),
                                             anchor,
                                             border,
                                             values,
                                             divisor,
                                             buffer.data()}));
    return dst;
}

/// Arguments that pass, over one image of its own; tests spoil one at a time.
template <class Member> struct Passing {
    using S = typename Member::Source;
    using R = typename Member::Result;
    GuardedImage<S> src{6, 2, {.channels = Member::channels, .padding = 16}};
    GuardedImage<R> dst{6, 2, {.channels = Member::channels}};
    R* dstRows[2] = {dst.row(0), dst.row(1)};
    R kernel[3] = {1, 2, 1};
    S value[3] = {};
    std::vector<Lum8u> buffer = std::vector<Lum8u>(Member::bytes(3));
    RowCall<S, R> call{src.data(), src.step(),      dstRows, {6, 2}, kernel,       3,
                       1,          lumBorderMirror, value,   4,      buffer.data()};
};

} // namespace

TEST(RowPipelineRules, KernelIsNotReversedAndItsAnchorMeetsThePixel) {
    EXPECT_EQ((std::vector<Lum32f>{7, 1, 2, 3}),
              filtered<Row32fC1>({1, 2, 3, 4}, {1, 0, 0}, 1, lumBorderConstant, 1, 7));
    EXPECT_EQ((std::vector<Lum32f>{2, 3, 4, 7}),
              filtered<Row32fC1>({1, 2, 3, 4}, {0, 1}, 0, lumBorderConstant, 1, 7));
}

TEST(RowPipelineBufferSize, EachFormula) {
    const auto expect = [](LumStatus (*query)(LumSize, int, Lum32s*), int perTap, int constantBytes) {
        for (int taps : {1, 2, 3, 5, 11, 1000})
            for (LumSize size : {LumSize{1, 1}, LumSize{1920, 1080}, LumSize{0x7FFFFFFF, 0x7FFFFFFF}}) {
                Lum32s bytes = -1;
                EXPECT_STATUS(lumStatusOk, query(size, taps, &bytes));
                EXPECT_EQ(perTap * taps + constantBytes, bytes);
            }
    };
    expect(lumiFilterRowBorderPipelineGetBufferSize_16s_C1R, 48, 112);
    expect(lumiFilterRowBorderPipelineGetBufferSize_16s_C3R, 40, 96);
    expect(lumiFilterRowBorderPipelineGetBufferSize_16u_C1R, 48, 80);
    expect(lumiFilterRowBorderPipelineGetBufferSize_16u_C3R, 112, 80);
    expect(lumiFilterRowBorderPipelineGetBufferSize_32f_C1R, 64, 96);
    expect(lumiFilterRowBorderPipelineGetBufferSize_32f_C3R, 192, 64);
    expect(lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R, 36, 144);
    expect(lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R, 60, 144);
    expect(lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R, 24, 96);
    expect(lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R, 208, 96);
}

MEMBER_TEST(RowPipeline, BufferSizeTestsItsPointerThenItsSizes) {
    Lum32s bytes = 77;
    EXPECT_STATUS(lumStatusNullPointer, TypeParam::bufferSize({0, 0}, 0, nullptr));
    EXPECT_STATUS(lumStatusNullPointer, TypeParam::bufferSize({4, 4}, 3, nullptr));
    EXPECT_STATUS(lumStatusSizeError, TypeParam::bufferSize({0, 4}, 3, &bytes));
    EXPECT_STATUS(lumStatusSizeError, TypeParam::bufferSize({4, -1}, 3, &bytes));
    EXPECT_STATUS(lumStatusSizeError, TypeParam::bufferSize({4, 4}, 0, &bytes));
    EXPECT_EQ(77, bytes);
}

MEMBER_TEST(SaturatingRowPipeline, DefinitionOnEveryWidth) {
    std::mt19937 engine(20);
    for (int taps : {1, 2, 3, 4, 5, 7, 11, 20})
        for (int width = 1; width <= 70; ++width) {
            const auto kernel = randomKernel<typename TypeParam::Kernel>(taps, engine);
            const Layout layout{.guard = width % 2 == 0 ? Guard::after : Guard::before};
            expectDefinition<TypeParam>({width, 2}, kernel, static_cast<int>(engine() % taps),
                                        borders[engine() % std::size(borders)],
                                        divisorFrom<TypeParam>(engine), engine(), layout);
            if (testing::Test::HasFatalFailure()) return;
        }
}

MEMBER_TEST(SaturatingRowPipeline, DefinitionOnEveryBorderAndAnchor) {
    std::mt19937 engine(21);
    for (int taps : {1, 3, 5, 6})
        for (int anchor = 0; anchor < taps; ++anchor)
            for (LumBorderType border : borders)
                for (int width : {1, 2, 3, 4, 5, 6, 9, 40}) {
                    const auto kernel = randomKernel<typename TypeParam::Kernel>(taps, engine);
                    expectDefinition<TypeParam>({width, 2}, kernel, anchor, border,
                                                divisorFrom<TypeParam>(engine), engine(),
                                                {.guard = anchor % 2 == 0 ? Guard::after : Guard::before});
                    if (testing::Test::HasFatalFailure()) return;
                }
}

MEMBER_TEST(SaturatingRowPipeline, DefinitionOnEveryAlignment) {
    std::mt19937 engine(22);
    for (int shift = 0; shift < 32; ++shift)
        for (int taps : {3, 5, 8}) {
            const auto kernel = randomKernel<typename TypeParam::Kernel>(taps, engine);
            expectDefinition<TypeParam>({45, 3}, kernel, 1, lumBorderMirror, divisorFrom<TypeParam>(engine),
                                        engine(),
                                        {.guard = shift % 2 == 0 ? Guard::after : Guard::before,
                                         .srcOffset = shift,
                                         .dstOffset = 31 - shift,
                                         .padding = 8 * (shift % 3),
                                         .bufferShift = shift});
            if (testing::Test::HasFatalFailure()) return;
        }
}

MEMBER_TEST(SaturatingRowPipeline, DefinitionOnRandomCalls) {
    const unsigned seed = 2301;
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int round = 0; round < 400; ++round) {
        const int taps = 1 + static_cast<int>(engine() % 24);
        const auto kernel = randomKernel<typename TypeParam::Kernel>(taps, engine);
        expectDefinition<TypeParam>(
            {1 + static_cast<int>(engine() % 150), 1 + static_cast<int>(engine() % 3)}, kernel,
            static_cast<int>(engine() % taps), borders[engine() % std::size(borders)],
            divisorFrom<TypeParam>(engine), engine(),
            {.guard = round % 2 == 0 ? Guard::after : Guard::before});
        if (testing::Test::HasFatalFailure()) return;
    }
}

MEMBER_TEST(RowPipeline, NullPointersComeFirst) {
    for (bool emptyToo : {false, true}) {
        const auto refused = [&](auto spoil) {
            Passing<TypeParam> passing;
            if (emptyToo) passing.call.roiSize = {0, -1};
            spoil(passing.call);
            EXPECT_REFUSED(lumStatusNullPointer, passing.dst, TypeParam::call(passing.call));
        };
        refused([](auto& call) { call.src = nullptr; });
        refused([](auto& call) { call.dstRows = nullptr; });
        refused([](auto& call) { call.kernel = nullptr; });
        refused([](auto& call) { call.buffer = nullptr; });
    }
}

MEMBER_TEST(RowPipeline, EachTestComesBeforeAllLaterOnes) {
    constexpr bool late = std::is_same_v<TypeParam, Row16sC3> || std::is_same_v<TypeParam, Row8u16sC1>;
    constexpr bool divided = !std::is_same_v<typename TypeParam::Source, Lum32f>;
    constexpr bool wide = sizeof(typename TypeParam::Source) > 1;
    constexpr bool valueEarly =
        TypeParam::channels == 3 && !std::is_same_v<typename TypeParam::Source, Lum16u>;
    constexpr int rowBytes = 6 * TypeParam::channels * sizeof(typename TypeParam::Source);
    Passing<TypeParam> passing;
    auto& call = passing.call;
    const auto expect = [&](LumStatus status) { EXPECT_REFUSED(status, passing.dst, TypeParam::call(call)); };
    // Everything is wrong at first, and is put right from the front.
    call.roiSize = {0, 2};
    passing.dstRows[1] = nullptr;
    call.borderValue = nullptr;
    call.kernelSize = 0;
    call.xAnchor = 0;
    call.srcStep = rowBytes - 1;
    call.divisor = 0;
    call.border = lumBorderConstant | 0x100;
    expect(lumStatusSizeError);
    call.roiSize = {6, 0};
    expect(lumStatusSizeError);
    call.roiSize = {6, 2};
    expect(lumStatusNullPointer);
    passing.dstRows[1] = passing.dst.row(1);
    if (valueEarly) expect(lumStatusNullPointer);
    if (valueEarly) call.borderValue = passing.value;
    expect(lumStatusSizeError);
    call.kernelSize = 3;
    for (int anchor : {-1, 3, 0x7FFFFFFF}) {
        call.xAnchor = anchor;
        expect(lumStatusAnchorError);
    }
    call.xAnchor = 2;
    expect(lumStatusStepError);
    call.srcStep = -rowBytes;
    expect(lumStatusStepError);
    call.srcStep = rowBytes + 1;
    if (wide) expect(lumStatusStepAlignmentError);
    if (wide) call.srcStep = rowBytes;
    if (divided && !late) expect(lumStatusBadArgument);
    if (divided && !late) call.divisor = 4;
    for (LumBorderType border : {0, 0x10, 0x70, 2, 4, 5, 7, 0x106, 0x1F0, -1, lumBorderDefaultValue | 0xF0}) {
        call.border = border;
        expect(lumStatusBorderError);
    }
    call.border = lumBorderConstant;
    if (TypeParam::channels == 3) {
        call.borderValue = nullptr;
        expect(lumStatusNullPointer);
    }
    call.borderValue = passing.value;
    if (late) expect(lumStatusBadArgument);
    call.divisor = 4;
    EXPECT_STATUS(lumStatusOk, TypeParam::call(call));
}

MEMBER_TEST(RowPipeline, StepOfTheRowPasses) {
    using S = typename TypeParam::Source;
    Passing<TypeParam> passing;
    passing.call.srcStep = 6 * TypeParam::channels * sizeof(S);
    EXPECT_STATUS(lumStatusOk, TypeParam::call(passing.call));
    passing.call.roiSize.width = 0x7FFFFFFF;
    EXPECT_REFUSED(
        lumStatusStepError, passing.dst,
        (passing.dst.fillRandom(1), passing.call.srcStep = 0x7FFFFFF0, TypeParam::call(passing.call)));
}

MEMBER_TEST(RowPipeline, NegativeDivisorIsRefusedByUnsignedKernelsOnly) {
    Passing<TypeParam> passing;
    passing.call.divisor = -1;
    constexpr bool isUnsigned = std::is_same_v<typename TypeParam::Source, Lum16u>;
    EXPECT_STATUS(isUnsigned ? lumStatusBadArgument : lumStatusOk, TypeParam::call(passing.call));
}

MEMBER_TEST(RowPipeline, InMemoryAloneAndEveryFlagPass) {
    for (LumBorderType border = 0; border < 256; ++border) {
        const int kind = border & 15;
        if (border != lumBorderInMemory && kind != 1 && kind != 3 && kind != 6) continue;
        Passing<TypeParam> passing;
        passing.call.border = border;
        passing.call.src += TypeParam::channels;
        passing.call.roiSize = {4, 2};
        EXPECT_STATUS(lumStatusOk, TypeParam::call(passing.call)) << border;
    }
}

TEST(RowPipeline_16u_C3R, NullBorderValuePassesUnlessTheBorderIsConstant) {
    Passing<Row16uC3> passing;
    passing.call.borderValue = nullptr;
    passing.call.border = lumBorderReplicate;
    EXPECT_STATUS(lumStatusOk, Row16uC3::call(passing.call));
    passing.call.border = lumBorderConstant | lumBorderInMemory;
    EXPECT_STATUS(lumStatusNullPointer, Row16uC3::call(passing.call));
}

TEST(RowPipelineRules, OneColumnOfAMirrorIsReplicated) {
    EXPECT_EQ((std::vector<Lum16s>{60}), filtered<Row16sC1>({10}, {1, 2, 3}, 1, lumBorderMirror));
    EXPECT_EQ((std::vector<Lum16s>{32}), filtered<Row16sC1>({10}, {1, 2, 3}, 1, lumBorderConstant, 1, 3));
}

TEST(RowPipelineRules, MirrorOfThreeColumnsGoesBackAndForth) {
    // Going outward from the left: src[1], src[2], src[1], src[0], src[1].
    const std::vector<Lum16s> row = {100, 200, 300};
    const Lum16s outward[] = {200, 300, 200, 100, 200};
    for (int distance = 1; distance <= 5; ++distance) {
        std::vector<Lum16s> kernel(6);
        kernel[5 - distance] = 1;
        EXPECT_EQ(outward[distance - 1], filtered<Row16sC1>(row, kernel, 5, lumBorderMirror)[0]);
    }
}

TEST(RowPipelineRules, ConstantBesideMemoryFillsTheOtherSide) {
    const Lum16s memory[] = {5, 10, 20, 30};
    Lum16s dst[3];
    Lum16s* dstRow = dst;
    const Lum16s kernel[3] = {1, 10, 100};
    std::vector<Lum8u> buffer(Row16sC1::bytes(3));
    const LumBorderType border = lumBorderConstant | lumBorderInMemoryLeft;
    EXPECT_STATUS(lumStatusOk, lumiFilterRowBorderPipeline_16s_C1R(memory + 1, 6, &dstRow, {3, 1}, kernel, 3,
                                                                   1, border, -1, 1, buffer.data()));
    EXPECT_EQ(5 + 100 + 2000, dst[0]);
    EXPECT_EQ(20 + 300 - 100, dst[2]);
}

TEST(RowPipelineRules, OneTapCopiesTheRow) {
    std::vector<Lum16s> row(67);
    for (int x = 0; x < 67; ++x) row[x] = static_cast<Lum16s>(997 * x - 32768);
    EXPECT_EQ(row, filtered<Row16sC1>(row, {1}, 0, lumBorderReplicate));
}

MEMBER_TEST(WordRowPipeline, HalvesRoundToEvenInsideAndTruncateElsewhere) {
    // One tap of 5 or 7 over 2: 2.5 and 3.5 everywhere.
    for (int taps : {3, 5, 4})
        for (int value : {5, 7, -5, -7}) {
            if (value < 0 && std::is_same_v<typename TypeParam::Source, Lum8u>) continue;
            const int width = 40;
            std::vector<typename TypeParam::Source> row(width * TypeParam::channels,
                                                        static_cast<typename TypeParam::Source>(value));
            std::vector<Lum16s> kernel(taps);
            kernel[1] = 1;
            const auto dst = filtered<TypeParam>(row, kernel, 1, lumBorderReplicate, 2);
            const int inside = (width - taps + 1) * TypeParam::channels;
            const int first = TypeParam::channels;
            for (int i = 0; i < width * TypeParam::channels; ++i) {
                const bool rounded = i >= first && i < first + inside / 8 * 8;
                const int expected = rounded ? static_cast<int>(std::nearbyint(value / 2.0)) : value / 2;
                ASSERT_EQ(expected, dst[i]) << "taps " << taps << " element " << i;
            }
        }
}

MEMBER_TEST(WordRowPipeline, GeneralKernelsRoundFromSixteenPixelsBeyondThem) {
    const std::vector<Lum16s> kernel = {0, 1, 0, 0};
    for (int width : {19, 20}) {
        const std::vector<typename TypeParam::Source> row(width * TypeParam::channels, 7);
        const auto dst = filtered<TypeParam>(row, kernel, 1, lumBorderReplicate, 2);
        EXPECT_EQ(width == 19 ? 3 : 4, dst[TypeParam::channels]);
        EXPECT_EQ(3, dst[0]);
    }
}

MEMBER_TEST(WordRowPipeline, LowestCoefficientRoundsInsideToo) {
    const std::vector<typename TypeParam::Source> row(50 * TypeParam::channels, 7);
    const auto dst = filtered<TypeParam>(row, {-32768, 1, 0, 0}, 1, lumBorderReplicate, -65536);
    // 7 x 32767 / 65536 = 3.49989..., so that it is the sum that counts; and 3.5 for the coefficient alone.
    EXPECT_EQ(3, dst[TypeParam::channels]);
    const auto half = filtered<TypeParam>(row, {-32768, 0, 0, 0}, 1, lumBorderReplicate, -65536);
    EXPECT_EQ(3, half[0]);
    EXPECT_EQ(4, half[TypeParam::channels]);
}

TEST(RowPipeline_16s, LowestCoefficientsDoNotOverflowThePairs) {
    const std::vector<Lum16s> row(60, -32768);
    for (const std::vector<Lum16s>& kernel :
         {std::vector<Lum16s>{-32768, -32768, 0}, {-32768, -32768, 0, 0, 0}, {-32768, -32768, 0, 0}})
        for (Lum16s value : filtered<Row16sC1>(row, kernel, 0, lumBorderReplicate, 65536))
            EXPECT_EQ(32767, value);
}

TEST(RowPipeline_16s, SumsBeyondThirtyTwoBitsSaturate) {
    const std::vector<Lum16s> low(60, -32768);
    const std::vector<Lum16s> high(60, 32767);
    for (int taps : {3, 5, 9}) {
        const std::vector<Lum16s> kernel(taps, 32767);
        for (Lum16s value : filtered<Row16sC1>(low, kernel, 1, lumBorderReplicate)) EXPECT_EQ(-32768, value);
        for (Lum16s value : filtered<Row16sC1>(high, kernel, 1, lumBorderReplicate)) EXPECT_EQ(32767, value);
        for (Lum16s value : filtered<Row16sC1>(low, kernel, 1, lumBorderReplicate, -1))
            EXPECT_EQ(32767, value);
    }
}

TEST(RowPipeline_16s, KernelsWhoseMagnitudesPassThirtyTwoBitsHaveNoPairs) {
    // 65540 x 32767 lies above 2^31. Sixteen results do not touch the border.
    constexpr int taps = 65540;
    constexpr int width = taps + 16;
    std::mt19937 engine(23);
    std::vector<Lum16s> kernel(taps);
    for (Lum16s& k : kernel) k = engine() % 2 == 0 ? 32767 : -32767;
    std::vector<Lum16s> row(width);
    for (Lum16s& value : row) value = static_cast<Lum16s>(engine());
    const auto dst = filtered<Row16sC1>(row, kernel, 0, lumBorderReplicate, 0x7FFFFFFF);
    for (int x = 0; x < 16; ++x)
        EXPECT_EQ((expectedResult<Row16sC1>(row.data(), x, 0, width, kernel, 0, lumBorderReplicate, nullptr,
                                            0x7FFFFFFF)),
                  dst[x])
            << x;
}

TEST(RowPipeline_16s, DivisorsAreFloatsBeforeTheirReciprocalIsTaken) {
    // 16777217 is 2^24 as a float: 256 x -98304 over it is the tie -1.5, and over the integer lies above it.
    const std::vector<Lum16s> row(40, -32768);
    const auto dst = filtered<Row16sC1>(row, {256, 256, 256}, 1, lumBorderReplicate, 16777217);
    for (int x = 1; x <= 32; ++x) EXPECT_EQ(-2, dst[x]) << x;
}

TEST(RowPipeline_16s, MagnitudesAtTheLimitAreExactOnBothSidesOfIt) {
    // 65534 + 0, + 1 and + 2: 3 and 5 taps leave the exact sums at 65535, other lengths after it. The sum of
    // 2 x 32767 x 32767 and a small product shows whether it was formed exactly.
    for (int extra : {0, 1, 2})
        for (int taps : {3, 5, 6}) {
            std::vector<Lum16s> kernel(taps);
            kernel[0] = 32767;
            kernel[1] = 32767;
            kernel[2] = static_cast<Lum16s>(extra);
            std::mt19937 engine(extra);
            expectDefinition<Row16sC1>({60, 4}, kernel, 1, lumBorderMirror, 65536, 900 + extra, {});
            expectDefinition<Row16sC3>({60, 4}, kernel, 1, lumBorderMirror, 65536, 900 + extra, {});
        }
}

TEST(RowPipeline_8u16s, ThreeTapsUndividedAreExactIntegers) {
    for (const std::vector<Lum16s>& kernel : {std::vector<Lum16s>{1, 2, 1},
                                              {32767, 32767, -32768},
                                              {-32768, -32768, -32768},
                                              {-32767, 32767, 1}}) {
        expectDefinition<Row8u16sC1>({70, 3}, kernel, 1, lumBorderReplicate, 1, 5, {});
        expectDefinition<Row8u16sC3>({70, 3}, kernel, 2, lumBorderConstant, 1, 6, {});
    }
}

TEST(RowPipeline_16u, KernelIsUnsignedAndEveryResultTruncates) {
    const std::vector<Lum16u> row(50, 7);
    for (Lum16u value : filtered<Row16uC1>(row, {0, 65535, 0}, 1, lumBorderReplicate, 65535))
        EXPECT_EQ(7, value);
    for (Lum16u value : filtered<Row16uC1>(row, {0, 65535, 0}, 1, lumBorderReplicate, 1))
        EXPECT_EQ(65535, value);
    for (Lum16u value : filtered<Row16uC1>(row, {0, 1, 0}, 1, lumBorderReplicate, 2)) EXPECT_EQ(3, value);
    for (Lum16u value : filtered<Row16uC1>(row, {0, 1, 0, 0, 0, 0}, 1, lumBorderReplicate, 2))
        EXPECT_EQ(3, value);
}

TEST(RowPipeline_16u, EachSumOfSinglePrecisionIsRounded) {
    // 300 x 65000 + 29 = 2^10 x 19043 - 3 lies above 2^24, where only even numbers are floats: it becomes that less 4,
    // and none of the ones after it moves it. The exact sum is 2^10 x 19043.
    std::vector<Lum16u> row(40, 1);
    row[10] = 65000;
    row[11] = 29;
    EXPECT_EQ(19042, filtered<Row16uC1>(row, {300, 1, 1, 1, 1, 0}, 0, lumBorderReplicate, 1024)[10]);
}

TEST(RowPipeline_16u, DivisorsAreFloatsBeforeTheirReciprocalIsTaken) {
    // 256 x 65536 is 2^24, which 16777217 is as a float.
    const std::vector<Lum16u> row(40, 32768);
    for (Lum16u value : filtered<Row16uC1>(row, {256, 0, 256}, 1, lumBorderReplicate, 16777217))
        EXPECT_EQ(1, value);
}

TEST(RowPipeline_16u, OtherDivisorsScaleEachCoefficientBeforeTheSum) {
    // Quotients at and around whole numbers in plenty: runs of one value, from 0 upward.
    std::vector<Lum16u> row(16384);
    for (std::size_t x = 0; x < row.size(); ++x) row[x] = static_cast<Lum16u>(x / 8);
    for (int divisor : {3, 5, 10, 49}) {
        const std::vector<Lum16u> kernel(5, 1);
        const auto dst = filtered<Row16uC1>(row, kernel, 2, lumBorderReplicate, divisor);
        for (int x = 0; x < 16384; ++x)
            ASSERT_EQ((expectedResult<Row16uC1>(row.data(), x, 0, 16384, kernel, 2, lumBorderReplicate,
                                                nullptr, divisor)),
                      dst[x])
                << "x " << x << " divisor " << divisor;
    }
}

TEST(RowPipeline_32f, InfinitiesNaNAndZerosPassThroughTheSum) {
    const float infinity = std::numeric_limits<float>::infinity();
    std::vector<float> row(40, -0.0F);
    row[20] = infinity;
    const auto sums = filtered<Row32fC1>(row, {1, 2, 1}, 1, lumBorderReplicate);
    EXPECT_EQ(0x80000000U, std::bit_cast<unsigned>(sums[5]));
    EXPECT_EQ(infinity, sums[19]);
    const auto differences = filtered<Row32fC1>(row, {1, 0, -1}, 1, lumBorderReplicate);
    EXPECT_TRUE(std::isnan(differences[20]));
    EXPECT_EQ(-infinity, differences[19]);
}
