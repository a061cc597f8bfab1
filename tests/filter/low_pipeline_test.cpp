#include "filter/pipeline_members.h"

#include "filter/pipeline_low.h"
#include "support/member_test.h"

using namespace pipelines;

namespace {

using RowMembers = testing::Types<RowLowC1, RowLowC3>;
MEMBER_TEST_SUITE(LowRowPipeline, RowMembers);

using ColumnMembers = testing::Types<ColumnLowC1, ColumnLowC3>;
MEMBER_TEST_SUITE(LowColumnPipeline, ColumnMembers);

Lum16s lowBits(std::int64_t value) { return static_cast<Lum16s>(static_cast<std::uint64_t>(value)); }

/// A result from its exact sum: in a block of eight, in what remains, or in a fast form.
enum class Form { block, rest, fast };

Lum16s lowResult(std::int64_t sum, int divisor, Form form) {
    if (form == Form::fast) return static_cast<Lum16s>(lowBits(sum) >> 4);
    if (divisor == 1) return lowBits(sum);
    const int m = static_cast<int>(16384.0F / static_cast<float>(divisor));
    if (form == Form::block) return static_cast<Lum16s>(std::clamp((lowBits(sum) * m) >> 14, -32768, 32767));
    const auto product =
        static_cast<std::uint32_t>(static_cast<std::uint64_t>(sum) * static_cast<std::uint64_t>(m));
    return lowBits(static_cast<std::int32_t>(product) >> 14);
}

bool isSymmetricOverSixteen(const std::vector<Lum16s>& kernel, int divisor) {
    return kernel.size() == 5 && kernel[0] == kernel[4] && kernel[1] == kernel[3] && divisor == 16;
}

/// A call on rows: the middle of five taps over 16 by default, where the fast form applies.
struct Rows {
    LumSize size;
    std::vector<Lum16s> kernel;
    int anchor = 2;
    LumBorderType border = lumBorderReplicate;
    int divisor = 16;
    Guard guard = Guard::after;
    int dstOffset = 0;
    int padding = 0;
};

template <class Member> void expectRows(const Rows& rows, unsigned seed) {
    const auto& [size, kernel, anchor, border, divisor, guard, dstOffset, padding] = rows;
    constexpr int channels = Member::channels;
    const int taps = static_cast<int>(kernel.size());
    const int before = (border & lumBorderInMemoryLeft) != 0 ? anchor : 0;
    const int after = (border & lumBorderInMemoryRight) != 0 ? taps - 1 - anchor : 0;
    GuardedImage<Lum16s> src(size.width + before + after, size.height,
                             {.channels = channels, .offset = dstOffset / 2, .guard = guard});
    src.fillRandom(seed);
    GuardedImage<Lum16s> dst(size.width, size.height,
                             {.channels = channels, .padding = padding, .offset = dstOffset, .guard = guard});
    std::vector<Lum16s*> dstRows;
    for (int y = 0; y < size.height; ++y) dstRows.push_back(dst.row(y));
    const Lum16s value[3] = {-32768, 200, 99};
    GuardedBlock buffer(Member::bytes(taps), guard);
    ASSERT_EQ(lumStatusOk, Member::call({src.data() + before * channels, src.step(), dstRows.data(), size,
                                         kernel.data(), taps, anchor, border, value, divisor, buffer.as()}));
    const bool fast = isSymmetricOverSixteen(kernel, divisor) && anchor == 2 &&
                      border == lumBorderReplicate && size.width >= 11;
    const int inside = std::max(0, size.width - taps + 1) * channels;
    for (int y = 0; y < size.height; ++y)
        for (int i = 0; i < size.width * channels; ++i) {
            const int x = i / channels;
            const int c = i % channels;
            std::int64_t sum = 0;
            for (int k = 0; k < taps; ++k)
                sum += kernel[k] * extended(src.row(y) + before * channels, x - anchor + k, c, size.width,
                                            channels, border, value);
            const int element = i - anchor * channels;
            const bool block = element >= 0 && element < inside / 8 * 8;
            const Lum16s expected = lowResult(sum, divisor,
                                              fast    ? Form::fast
                                              : block ? Form::block
                                                      : Form::rest);
            ASSERT_EQ(expected, dst.row(y)[i])
                << "seed " << seed << " element " << i << " width " << size.width << " taps " << taps
                << " divisor " << divisor << " border " << border;
        }
    ASSERT_TRUE(dst.outsideUntouched());
}

struct Layout {
    Guard guard = Guard::after;
    int srcOffset = 0;
    int srcPadding = 0;
    int dstOffset = 0;
    int dstPadding = 0;
};

template <class Member>
void expectColumns(LumSize size, const std::vector<Lum16s>& kernel, int divisor, unsigned seed,
                   const Layout& layout) {
    constexpr int channels = Member::channels;
    const int taps = static_cast<int>(kernel.size());
    const int rows = size.height + taps - 1;
    GuardedImage<Lum16s> src(size.width, rows,
                             {.channels = channels,
                              .padding = layout.srcPadding,
                              .offset = layout.srcOffset,
                              .guard = layout.guard});
    src.fillRandom(seed);
    std::vector<const Lum16s*> srcRows;
    for (int y = 0; y < rows; ++y) srcRows.push_back(src.row(y));
    GuardedImage<Lum16s> dst(size.width, size.height,
                             {.channels = channels,
                              .padding = layout.dstPadding,
                              .offset = layout.dstOffset,
                              .guard = layout.guard});
    GuardedBlock buffer(Member::bytes(size.width), layout.guard);
    ASSERT_EQ(lumStatusOk, Member::call({srcRows.data(), dst.data(), dst.step(), size, kernel.data(), taps,
                                         divisor, buffer.as()}));
    const bool fast = isSymmetricOverSixteen(kernel, divisor) && size.height >= 3;
    const int elements = size.width * channels;
    for (int y = 0; y < size.height; ++y)
        for (int i = 0; i < elements; ++i) {
            std::int64_t sum = 0;
            for (int k = 0; k < taps; ++k) sum += kernel[k] * srcRows[y + k][i];
            const Form form = fast ? Form::fast : i < elements / 8 * 8 ? Form::block : Form::rest;
            ASSERT_EQ(lowResult(sum, divisor, form), dst.row(y)[i])
                << "seed " << seed << " element " << i << " y " << y << " width " << size.width << " taps "
                << taps << " divisor " << divisor;
        }
    ASSERT_TRUE(dst.outsideUntouched());
}

std::vector<Lum16s> randomWords(int count, std::mt19937& engine) {
    std::vector<Lum16s> words(count);
    const bool full = engine() % 2 == 0;
    for (Lum16s& word : words)
        word = full ? static_cast<Lum16s>(engine()) : static_cast<Lum16s>(engine() % 21) - 10;
    return words;
}

constexpr int divisors[] = {1, 2, 3, 16, 100, 16384, 16385, -1, -2, -3, -100, -16384, 0x7FFFFFFF};
constexpr LumBorderType borders[] = {lumBorderReplicate,
                                     lumBorderMirror,
                                     lumBorderConstant,
                                     lumBorderInMemory,
                                     lumBorderReplicate | lumBorderInMemoryLeft,
                                     lumBorderConstant | lumBorderInMemoryRight};
const std::vector<Lum16s> binomial = {1, 4, 6, 4, 1};
const std::vector<Lum16s> wrapping = {-3000, 700, 31000, 700, -3000};
const std::vector<Lum16s> wrappingOfSeven = {-3000, 700, 31000, 700, -3000, 5, 0};

/// Flat rows of one channel through three taps of 1.
constexpr Lum16s flatPixel = 20000;
constexpr Lum16s ones[3] = {1, 1, 1};

std::vector<Lum16s> flatRow(int width, int divisor) {
    const std::vector<Lum16s> src(width, flatPixel);
    std::vector<Lum16s> dst(width);
    Lum16s* dstRow = dst.data();
    std::vector<Lum8u> buffer(RowLowC1::bytes(3));
    EXPECT_STATUS(lumStatusOk, RowLowC1::call({.src = src.data(),
                                               .srcStep = 2 * width,
                                               .dstRows = &dstRow,
                                               .roiSize = {width, 1},
                                               .kernel = ones,
                                               .kernelSize = 3,
                                               .xAnchor = 1,
                                               .border = lumBorderReplicate,
                                               .borderValue = nullptr,
                                               .divisor = divisor,
                                               .buffer = buffer.data()}));
    return dst;
}

std::vector<Lum16s> flatColumns(int width, int divisor) {
    const std::vector<Lum16s> row(width, flatPixel);
    const Lum16s* rows[3] = {row.data(), row.data(), row.data()};
    std::vector<Lum16s> dst(width);
    std::vector<Lum8u> buffer(ColumnLowC1::bytes(width));
    EXPECT_STATUS(lumStatusOk, ColumnLowC1::call({.srcRows = rows,
                                                  .dst = dst.data(),
                                                  .dstStep = 2 * width,
                                                  .roiSize = {width, 1},
                                                  .kernel = ones,
                                                  .kernelSize = 3,
                                                  .divisor = divisor,
                                                  .buffer = buffer.data()}));
    return dst;
}

} // namespace

TEST(LowRowPipelineSums, UndividedSumsWrap) {
    for (Lum16s value : flatRow(3, 1)) EXPECT_EQ(60000 - 65536, value);
}

TEST(LowRowPipelineSums, DividedSumsWrapInBlocksAndKeepLowBitsElsewhere) {
    // Three times 20000 over 2: 60000 wraps to -5536 in blocks, halved to -2768; elsewhere it is 30000.
    const auto dst = flatRow(20, 2);
    for (int x = 0; x < 20; ++x) EXPECT_EQ(x >= 1 && x < 17 ? -2768 : 30000, dst[x]) << x;
}

TEST(LowColumnPipelineSums, DividedSumsWrapInBlocksAndKeepLowBitsElsewhere) {
    const auto dst = flatColumns(13, 2);
    for (int x = 0; x < 13; ++x) EXPECT_EQ(x < 8 ? -2768 : 30000, dst[x]) << x;
}

MEMBER_TEST(LowRowPipeline, DefinitionOnEveryWidth) {
    std::mt19937 engine(40);
    for (int taps : {1, 2, 3, 5, 6, 11})
        for (int width = 1; width <= 70; ++width) {
            expectRows<TypeParam>({.size = {width, 2},
                                   .kernel = randomWords(taps, engine),
                                   .anchor = static_cast<int>(engine() % taps),
                                   .border = borders[engine() % std::size(borders)],
                                   .divisor = divisors[engine() % std::size(divisors)],
                                   .guard = width % 2 == 0 ? Guard::after : Guard::before},
                                  engine());
            if (testing::Test::HasFatalFailure()) return;
        }
}

MEMBER_TEST(LowRowPipeline, DefinitionOnEveryDivisorBorderAndAlignment) {
    std::mt19937 engine(41);
    for (int divisor : divisors)
        for (LumBorderType border : borders)
            for (int offset : {0, 1, 2, 7}) {
                expectRows<TypeParam>({.size = {29, 2},
                                       .kernel = randomWords(5, engine),
                                       .border = border,
                                       .divisor = divisor,
                                       .guard = Guard::before,
                                       .dstOffset = offset},
                                      engine());
                if (testing::Test::HasFatalFailure()) return;
            }
}

MEMBER_TEST(LowRowPipeline, FastFormOnEveryWidth) {
    for (int width = 1; width <= 70; ++width)
        for (const auto& kernel : {binomial, wrapping}) {
            expectRows<TypeParam>({.size = {width, 3},
                                   .kernel = kernel,
                                   .guard = width % 2 == 0 ? Guard::after : Guard::before,
                                   .dstOffset = width % 17},
                                  50 + width);
            if (testing::Test::HasFatalFailure()) return;
        }
}

MEMBER_TEST(LowRowPipeline, EachConditionOfTheFastFormCounts) {
    // A sum that wraps tells the forms apart; so does a width of 10 against 11.
    for (int width : {10, 11}) expectRows<TypeParam>({.size = {width, 2}, .kernel = wrapping}, 60);
    expectRows<TypeParam>({.size = {40, 2}, .kernel = wrapping, .anchor = 1}, 61);
    expectRows<TypeParam>({.size = {40, 2}, .kernel = wrapping, .border = lumBorderMirror}, 62);
    expectRows<TypeParam>(
        {.size = {40, 2}, .kernel = wrapping, .border = lumBorderReplicate | lumBorderInMemoryTop}, 63);
    expectRows<TypeParam>({.size = {40, 2}, .kernel = wrapping, .divisor = 32}, 64);
    for (int k = 0; k < 5; ++k) {
        auto kernel = wrapping;
        kernel[k] += 1;
        expectRows<TypeParam>({.size = {40, 2}, .kernel = kernel}, 65 + k);
    }
    expectRows<TypeParam>({.size = {40, 2}, .kernel = {-3000, 31000, -3000}}, 71);
    expectRows<TypeParam>({.size = {40, 2}, .kernel = wrappingOfSeven}, 72);
}

MEMBER_TEST(LowRowPipeline, StoresPastTheCacheGiveTheSameRows) {
    // 0x80000 pixels are stored ordinarily, 0x80001 past the cache; aligned rows, odd addresses and others
    // between.
    expectRows<TypeParam>({.size = {1024, 512}, .kernel = wrapping}, 80);
    for (int offset : {0, 1, 2, 14})
        expectRows<TypeParam>({.size = {1024, 513},
                               .kernel = wrapping,
                               .guard = Guard::before,
                               .dstOffset = offset,
                               .padding = 6},
                              81);
}

MEMBER_TEST(LowColumnPipeline, DefinitionOnEveryWidth) {
    std::mt19937 engine(42);
    for (int taps : {1, 2, 3, 5, 6, 11})
        for (int width = 1; width <= 70; ++width) {
            expectColumns<TypeParam>({width, 1 + width % 4}, randomWords(taps, engine),
                                     divisors[engine() % std::size(divisors)], engine(),
                                     {.guard = width % 2 == 0 ? Guard::after : Guard::before});
            if (testing::Test::HasFatalFailure()) return;
        }
}

MEMBER_TEST(LowColumnPipeline, DefinitionOnEveryDivisorAndAlignment) {
    std::mt19937 engine(43);
    for (int divisor : divisors)
        for (int offset = 0; offset < 16; ++offset) {
            expectColumns<TypeParam>({29, 3}, randomWords(5, engine), divisor, engine(),
                                     {.guard = Guard::before, .srcOffset = 15 - offset, .dstOffset = offset});
            if (testing::Test::HasFatalFailure()) return;
        }
}

MEMBER_TEST(LowColumnPipeline, DefinitionForKernelsLongerThanAnyTable) {
    std::mt19937 engine(44);
    for (int taps : {64, 65, 130})
        expectColumns<TypeParam>({37, 2}, randomWords(taps, engine), 16, engine(), {});
}

MEMBER_TEST(LowColumnPipeline, FastFormOnEveryWidthAndHeight) {
    for (int width = 1; width <= 40; ++width)
        for (int height : {2, 3, 4, 5})
            for (const auto& kernel : {binomial, wrapping}) {
                expectColumns<TypeParam>({width, height}, kernel, 16, 90 + width,
                                         {.guard = width % 2 == 0 ? Guard::after : Guard::before,
                                          .srcOffset = width % 3,
                                          .dstOffset = height});
                if (testing::Test::HasFatalFailure()) return;
            }
}

MEMBER_TEST(LowColumnPipeline, EachConditionOfTheFastFormCounts) {
    expectColumns<TypeParam>({40, 3}, wrapping, 32, 101, {});
    for (int k = 0; k < 5; ++k) {
        auto kernel = wrapping;
        kernel[k] += 1;
        expectColumns<TypeParam>({40, 3}, kernel, 16, 102 + k, {});
    }
    expectColumns<TypeParam>({40, 3}, wrappingOfSeven, 16, 107, {});
}

MEMBER_TEST(LowColumnPipeline, AlignedRowsAndStoresPastTheCacheGiveTheSameImage) {
    // 512 pixels of either channel count are a multiple of 16 bytes. 0x40000 pixels are stored ordinarily, more
    // past the cache; one row or step that is not aligned, and all are.
    for (int height : {512, 513}) {
        const Layout layouts[] = {{.guard = Guard::before},
                                  {.guard = Guard::before, .srcOffset = 2},
                                  {.guard = Guard::before, .srcPadding = 8},
                                  {.guard = Guard::before, .dstOffset = 2},
                                  {.guard = Guard::before, .dstPadding = 8},
                                  {.guard = Guard::before, .srcPadding = 32, .dstPadding = 16}};
        for (const Layout& layout : layouts)
            expectColumns<TypeParam>({512, height}, wrapping, 16, 110, layout);
    }
    // A tail after whole aligned vectors.
    expectColumns<TypeParam>({509, 517}, wrapping, 16, 111,
                             {.guard = Guard::before,
                              .srcPadding = 6 * TypeParam::channels,
                              .dstPadding = 6 * TypeParam::channels});
}

MEMBER_TEST(LowColumnPipeline, AnySingleRowMayLieOffTheAlignmentOfTheOthers) {
    constexpr int elements = 16 * TypeParam::channels;
    for (int height : {3, 4, 5})
        for (int odd = 0; odd < height + 4; ++odd) {
            // Aligned rows, but for one that begins an element later.
            GuardedImage<Lum16s> src(elements + 8, height + 4, {.guard = Guard::before});
            src.fillRandom(odd);
            std::vector<const Lum16s*> rows;
            for (int y = 0; y < height + 4; ++y) rows.push_back(src.row(y) + (y == odd ? 1 : 0));
            GuardedImage<Lum16s> dst(elements, height, {.guard = Guard::before});
            std::vector<Lum8u> buffer(TypeParam::bytes(16));
            EXPECT_STATUS(lumStatusOk, TypeParam::call({rows.data(),
                                                        dst.data(),
                                                        dst.step(),
                                                        {16, height},
                                                        binomial.data(),
                                                        5,
                                                        16,
                                                        buffer.data()}));
            for (int y = 0; y < height; ++y)
                for (int i = 0; i < elements; ++i) {
                    std::int64_t sum = 0;
                    for (int k = 0; k < 5; ++k) sum += binomial[k] * rows[y + k][i];
                    ASSERT_EQ(lowResult(sum, 16, Form::fast), dst.row(y)[i])
                        << "height " << height << " row " << odd << " element " << i << " y " << y;
                }
        }
}

TEST(LowColumnPipeline_C3R, StepOfOneChannelPassesAndLessIsStepError) {
    const Lum16s row[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const Lum16s* rows[1] = {row};
    const Lum16s kernel[1] = {1};
    Lum16s dst[12] = {};
    std::vector<Lum8u> buffer(ColumnLowC3::bytes(4));
    EXPECT_STATUS(lumStatusStepError,
                  lumiFilterColumnPipeline_Low_16s_C3R(rows, dst, 7, {4, 1}, kernel, 1, 1, buffer.data()));
    EXPECT_STATUS(lumStatusStepAlignmentError,
                  lumiFilterColumnPipeline_Low_16s_C3R(rows, dst, 9, {4, 1}, kernel, 1, 1, buffer.data()));
    EXPECT_EQ(0, dst[0]);
    EXPECT_STATUS(lumStatusOk,
                  lumiFilterColumnPipeline_Low_16s_C3R(rows, dst, 8, {4, 1}, kernel, 1, 1, buffer.data()));
    for (int i = 0; i < 12; ++i) EXPECT_EQ(row[i], dst[i]);
}

TEST(LowPipelineStores, FastFormsStreamFromAFixedNumberOfPixelsOn) {
    using lum::Stores;
    using lum::storesOfFastColumns;
    using lum::storesOfFastRows;
    EXPECT_EQ(Stores::ordinary, storesOfFastRows({1024, 512}));
    EXPECT_EQ(Stores::streaming, storesOfFastRows({0x80001, 1}));
    EXPECT_EQ(Stores::streaming, storesOfFastRows({1024, 513}));
    EXPECT_EQ(Stores::ordinary, storesOfFastColumns({512, 512}));
    EXPECT_EQ(Stores::streaming, storesOfFastColumns({1, 0x40001}));
    EXPECT_EQ(Stores::streaming, storesOfFastColumns({512, 513}));
    // Products that wrap, to 2^31 below 0 and to 0.
    for (LumSize wrapped : {LumSize{0x8000, 0x10000}, LumSize{0x10000, 0x10000}}) {
        EXPECT_EQ(Stores::ordinary, storesOfFastRows(wrapped));
        EXPECT_EQ(Stores::ordinary, storesOfFastColumns(wrapped));
    }
}

TEST(LowPipelineKernels, VectorAgreesWithScalar) {
    std::mt19937 engine(45);
    for (int taps : {1, 2, 3, 5, 7})
        for (int spacing : {1, 3})
            for (const lum::kernels::LowScale scale :
                 {lum::kernels::LowScale{true, 16384}, {false, 5461}, {false, -16384}})
                for (int count = 0; count <= 72; count += 8) {
                    const auto kernel = randomWords(taps, engine);
                    const lum::kernels::LowKernel low{kernel.data(), taps, scale};
                    GuardedImage<Lum16s> src(count + (taps - 1) * spacing + 1, 1, {.offset = count % 5});
                    src.fillRandom(count);
                    GuardedImage<Lum16s> expected(std::max(count, 1), 1);
                    GuardedImage<Lum16s> actual(std::max(count, 1), 1, {.offset = count % 7});
                    lum::kernels::lowRowScalar(src.data(), spacing, expected.data(), count, low);
                    lum::kernels::lowRow(src.data(), spacing, actual.data(), count, low);
                    ASSERT_TRUE(sameBits(expected.pixels(), actual.pixels()));

                    GuardedImage<Lum16s> columns(std::max(count, 1), taps + 2);
                    columns.fillRandom(count);
                    std::vector<const Lum16s*> rows;
                    for (int y = 0; y < taps + 2; ++y) rows.push_back(columns.row(y));
                    GuardedImage<Lum16s> expectedColumns(std::max(count, 1), 3);
                    GuardedImage<Lum16s> actualColumns(std::max(count, 1), 3);
                    const LumSize size{std::max(count, 1), 3};
                    lum::kernels::lowColumnsScalar(rows.data(),
                                                   {expectedColumns.data(), expectedColumns.step()}, size,
                                                   size.width / 8 * 8, low);
                    lum::kernels::lowColumns(rows.data(), {actualColumns.data(), actualColumns.step()}, size,
                                             size.width / 8 * 8, low);
                    ASSERT_TRUE(sameBits(expectedColumns.pixels(), actualColumns.pixels()));
                }
}

TEST(LowPipelineKernels, SymmetricVectorsAgreeWithScalar) {
    for (int count = 0; count <= 70; ++count)
        for (int offset = 0; offset < 16; ++offset)
            for (lum::Stores stores : {lum::Stores::ordinary, lum::Stores::streaming}) {
                GuardedImage<Lum16s> src(count + 12, 1, {.offset = offset / 2});
                src.fillRandom(count);
                GuardedImage<Lum16s> expected(std::max(count, 1), 1,
                                              {.offset = offset, .guard = Guard::before});
                GuardedImage<Lum16s> actual(std::max(count, 1), 1,
                                            {.offset = offset, .guard = Guard::before});
                lum::kernels::symmetricRowScalar(src.data(), 3, expected.data(), count, wrapping.data());
                lum::kernels::symmetricRow(src.data(), 3, actual.data(), count, wrapping.data(), stores);
                ASSERT_TRUE(sameBits(expected.pixels(), actual.pixels()));
                ASSERT_TRUE(actual.outsideUntouched());
            }
    for (lum::Stores stores : {lum::Stores::ordinary, lum::Stores::streaming})
        for (int height : {3, 4})
            for (int width : {8, 24, 29, 70})
                for (int offset : {0, 6}) {
                    const Placement placement{.padding = 128 - 2 * width % 64, .guard = Guard::before};
                    // Only what is stored past the cache begins on whole vectors.
                    const int dstOffset = stores == lum::Stores::streaming ? 0 : offset;
                    GuardedImage<Lum16s> src(width, height + 4, {.offset = offset});
                    src.fillRandom(width);
                    std::vector<const Lum16s*> rows;
                    for (int y = 0; y < height + 4; ++y) rows.push_back(src.row(y));
                    GuardedImage<Lum16s> expected(width, height, placement);
                    GuardedImage<Lum16s> actual(
                        width, height,
                        {.padding = placement.padding, .offset = dstOffset, .guard = Guard::before});
                    lum::kernels::symmetricColumnsScalar(rows.data(), {expected.data(), expected.step()},
                                                         {width, height}, wrapping.data());
                    lum::kernels::symmetricColumns(rows.data(), {actual.data(), actual.step()},
                                                   {width, height}, wrapping.data(), stores);
                    ASSERT_TRUE(sameBits(expected.pixels(), actual.pixels()));
                }
}
