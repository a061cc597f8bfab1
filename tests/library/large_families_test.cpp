// A member of each family on more than 2^31 bytes of one picture, in native builds: addresses are wide enough. The rows of
// the pictures repeat, so what a call gives in a far row is what it gives on a picture of a few rows. Differences,
// means, norms, extremes, filters, dilation and integrals are in large_counts_test.cpp.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <sys/mman.h>
#include <vector>

#include "lumcv.h"
#include "support/repeated_rows.h"

using support::RepeatedRows;

namespace {

constexpr bool isWide = sizeof(void*) > 4;
constexpr int period = 16;
constexpr int width = 50000;
/// Rows of `bytes` a pixel that take more than 2^31 bytes in all, in whole periods.
constexpr int rowsOf(int bytes) {
    return isWide ? (0x7FFFFFFF / (width * bytes) / period + 2) * period : period;
}

Lum8u valueAt(int x) { return static_cast<Lum8u>(x % 250 + 3); }

class LargeFamilies : public testing::Test {
  protected:
    void SetUp() override {
        if (!isWide) GTEST_SKIP() << "32 bits do not address such a picture";
        if (!picture.isThere()) GTEST_SKIP() << "the machine gives no such address space";
        for (int y = 0; y < period; ++y)
            for (int x = 0; x < width; ++x) picture.row(y)[x] = valueAt(x);
    }

    RepeatedRows picture{width, 1, rowsOf(1), period};
};

/// Memory that is zero, of which a test touches a small part.
class UntouchedBytes {
  public:
    explicit UntouchedBytes(std::size_t bytes) : size_(bytes) {
        void* all =
            mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (all != MAP_FAILED) memory_ = static_cast<Lum8u*>(all);
    }
    ~UntouchedBytes() {
        if (memory_ != nullptr) munmap(memory_, size_);
    }
    UntouchedBytes(const UntouchedBytes&) = delete;
    UntouchedBytes& operator=(const UntouchedBytes&) = delete;

    Lum8u* data() const { return memory_; }

  private:
    std::size_t size_;
    Lum8u* memory_ = nullptr;
};

} // namespace

// ---- stats

TEST_F(LargeFamilies, Accumulators) {
    constexpr LumSize size{width, rowsOf(4)};
    const RepeatedRows sums(width, 4, size.height, period);
    if (!sums.isThere()) GTEST_SKIP() << "the machine gives no such address space";
    ASSERT_EQ(lumStatusOk,
              lumiAdd_8u32f_C1IR(picture.row(), picture.step(), sums.row<Lum32f>(), sums.step(), size));
    // Each row of memory is so many rows of the picture.
    constexpr int times = size.height / period;
    for (int x = 0; x < width; ++x)
        ASSERT_EQ(static_cast<Lum32f>(times * valueAt(x)), sums.row<Lum32f>(size.height - 1)[x]) << x;
}

// ---- feature

TEST_F(LargeFamilies, CornerMeasures) {
    constexpr int floats = 6;
    constexpr LumSize size{width, rowsOf(floats * 4)};
    const RepeatedRows systems(width, floats * 4, size.height, period);
    if (!systems.isThere()) GTEST_SKIP() << "the machine gives no such address space";
    // Corners need rows that differ; the systems repeat as the rows do.
    for (int y = 0; y < period; ++y)
        for (int x = 0; x < width; ++x)
            picture.row(y)[x] = static_cast<Lum8u>((x / 5 * 7 + y / 4 * 91) % 251);
    const auto measure = [&](LumSize region, Lum32f* dst, int dstStep) {
        Lum32s bytes = 0;
        ASSERT_EQ(lumStatusOk, lumiEigenValsVecsGetBufferSize_8u32f_C1R(region, 3, 3, &bytes));
        std::vector<Lum8u> buffer(static_cast<std::size_t>(bytes));
        ASSERT_EQ(lumStatusOk, lumiEigenValsVecs_8u32f_C1R(picture.row(), picture.step(), dst, dstStep,
                                                           region, 0, 3, 3, buffer.data()));
    };
    constexpr int inside = 8;
    std::vector<Lum32f> few(static_cast<std::size_t>(width) * floats * 2 * period);
    measure({width, 2 * period}, few.data(), width * floats * 4);
    measure(size, systems.row<Lum32f>(), systems.step());
    const Lum32f* expected = few.data() + static_cast<std::size_t>(width) * floats * (period + inside);
    const Lum32f* far = systems.row<Lum32f>(size.height - period + inside);
    EXPECT_GT(std::count_if(expected, expected + width * floats, [](Lum32f v) { return v != 0; }), width);
    for (int i = 0; i < width * floats; ++i) ASSERT_EQ(expected[i], far[i]) << i;
}

// ---- pyramid

TEST_F(LargeFamilies, PyramidLayers) {
    constexpr LumSize size{width, rowsOf(1)};
    constexpr int taps = 5;
    constexpr Lum16s kernel[taps] = {1, 4, 6, 4, 1};
    LumSize half{}, fewHalf{};
    ASSERT_EQ(lumStatusOk, lumiGetPyramidDownROI(size, &half, 2));
    ASSERT_EQ(lumStatusOk, lumiGetPyramidDownROI({width, period}, &fewHalf, 2));
    const RepeatedRows result(width, 1, half.height, period);
    if (!result.isThere()) GTEST_SKIP() << "the machine gives no such address space";
    const auto reduce = [&](LumSize region, LumSize reduced, Lum8u* dst, int dstStep) {
        Lum32s stateBytes = 0, bufferBytes = 0;
        ASSERT_EQ(lumStatusOk,
                  lumiPyramidLayerDownGetSize_8u_C1R(region, 2, taps, &stateBytes, &bufferBytes));
        std::vector<Lum8u> memory(static_cast<std::size_t>(stateBytes)),
            buffer(static_cast<std::size_t>(bufferBytes));
        LumPyramidLayerDownState* state = nullptr;
        ASSERT_EQ(lumStatusOk, lumiPyramidLayerDownInit_8u_C1R(&state, region, 2, kernel, taps, 2,
                                                               memory.data(), buffer.data()));
        ASSERT_EQ(lumStatusOk, lumiPyramidLayerDown_8u_C1R(picture.row(), picture.step(), region, dst,
                                                           dstStep, reduced, state));
    };
    std::vector<Lum8u> few(static_cast<std::size_t>(fewHalf.width) * fewHalf.height);
    reduce({width, period}, fewHalf, few.data(), fewHalf.width);
    reduce(size, half, result.row(), result.step());
    for (int x = 0; x < half.width; ++x)
        ASSERT_EQ(few[static_cast<std::size_t>(x)], result.row(half.height - 1)[x]) << x;
}

// ---- motion

TEST_F(LargeFamilies, MotionHistory) {
    constexpr LumSize size{width, rowsOf(4)};
    const RepeatedRows history(width, 4, size.height, period);
    if (!history.isThere()) GTEST_SKIP() << "the machine gives no such address space";
    for (int y = 0; y < period; ++y)
        for (int x = 0; x < width; x += 3) picture.row(y)[x] = 0;
    ASSERT_EQ(lumStatusOk,
              lumiUpdateMotionHistory_8u32f_C1IR(picture.row(), picture.step(), history.row<Lum32f>(),
                                                 history.step(), size, 7, 2));
    for (int x = 0; x < width; ++x)
        ASSERT_EQ(x % 3 == 0 ? 0.0F : 7.0F, history.row<Lum32f>(size.height - 1)[x]) << x;
}

TEST_F(LargeFamilies, PatchesBetweenPixels) {
    constexpr LumSize size{width - 1, rowsOf(1) - 1};
    const RepeatedRows result(width, 1, size.height, period);
    if (!result.isThere()) GTEST_SKIP() << "the machine gives no such address space";
    std::vector<Lum8u> few(static_cast<std::size_t>(width) * period);
    ASSERT_EQ(lumStatusOk, lumiCopySubpix_8u_C1R(picture.row(), picture.step(), few.data(), width,
                                                 {size.width, period}, 0.25F, 0.5F));
    ASSERT_EQ(lumStatusOk, lumiCopySubpix_8u_C1R(picture.row(), picture.step(), result.row(), result.step(),
                                                 size, 0.25F, 0.5F));
    for (int x = 0; x < size.width; ++x)
        ASSERT_EQ(few[static_cast<std::size_t>(x)], result.row(size.height - 1)[x]) << x;
}

// ---- distance

TEST_F(LargeFamilies, Distances) {
    // Zeros in every row, so that the nearest one is in the row itself.
    constexpr int apart = 200;
    constexpr LumSize size{width, rowsOf(1)};
    const RepeatedRows distances(width, 1, size.height, period);
    if (!distances.isThere()) GTEST_SKIP() << "the machine gives no such address space";
    for (int y = 0; y < period; ++y)
        for (int x = 0; x < width; x += apart) picture.row(y)[x] = 0;
    constexpr Lum32s lengths[2] = {1, 2};
    ASSERT_EQ(lumStatusOk, lumiDistanceTransform_3x3_8u_C1R(picture.row(), picture.step(), distances.row(),
                                                            distances.step(), size, lengths));
    constexpr int lastZero = (width - 1) / apart * apart;
    for (int x = 0; x < width; ++x) {
        const int toLeft = x % apart;
        ASSERT_EQ(x > lastZero ? toLeft : std::min(toLeft, apart - toLeft), distances.row(size.height - 1)[x])
            << x;
    }
}

// ---- segment

TEST_F(LargeFamilies, FloodFillAtTheEnd) {
    // All is zero but one row near the end; the fill takes what is below it.
    constexpr LumSize size{width, rowsOf(1)};
    constexpr int wall = size.height - 4;
    const auto pixels = static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
    const UntouchedBytes image(pixels), buffer(6 * pixels + 32);
    if (image.data() == nullptr || buffer.data() == nullptr)
        GTEST_SKIP() << "the machine gives no such address space";
    const auto row = [&](int y) { return image.data() + static_cast<std::size_t>(y) * width; };
    std::fill_n(row(wall), width, Lum8u{1});
    LumFillRegion region{};
    ASSERT_EQ(lumStatusOk, lumiFloodFill_4Con_8u_C1IR(image.data(), width, size, {width - 1, size.height - 2},
                                                      9, &region, buffer.data()));
    EXPECT_EQ(3.0 * width, region.area);
    EXPECT_EQ(wall + 1, region.rect.y);
    EXPECT_EQ(3, region.rect.height);
    EXPECT_EQ(0, row(wall - 1)[0]);
    EXPECT_EQ(1, row(wall)[width / 2]);
    for (int y = wall + 1; y < size.height; ++y)
        EXPECT_EQ(width, std::count(row(y), row(y) + width, Lum8u{9})) << y;
}

// ---- geometry

TEST_F(LargeFamilies, SamplesOfADiagonal) {
    constexpr LumSize size{width, rowsOf(1)};
    static_assert(!isWide || size.height < width);
    std::vector<Lum8u> samples(width);
    ASSERT_EQ(lumStatusOk, lumiSampleLine_8u_C1R(picture.row(), picture.step(), size, samples.data(), {0, 0},
                                                 {width - 1, size.height - 1}));
    for (int x = 0; x < width; ++x) ASSERT_EQ(valueAt(x), samples[static_cast<std::size_t>(x)]) << x;
}
