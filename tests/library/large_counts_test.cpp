// Regions of more than 2^31 pixels in native builds: counts, sums and indices are wide enough. The memory of such a picture
// is a few rows, mapped over and over.
#include <algorithm>
#include <cmath>
#include <vector>

#include "lumcv.h"
#include "support/repeated_rows.h"

using support::RepeatedRows;

namespace {

constexpr int width = 50000;
constexpr bool isWide = sizeof(void*) > 4;
constexpr int height = isWide ? 46000 : 16;
constexpr LumSize size{width, height};
constexpr double pixels = static_cast<double>(width) * height;

Lum8u valueAt(int x) { return static_cast<Lum8u>(x % 250 + 3); }

class LargeCounts : public testing::Test {
  protected:
    void SetUp() override {
        if (!isWide) GTEST_SKIP() << "32 bits do not address such a picture";
        if (!picture.isThere() || !result.isThere())
            GTEST_SKIP() << "the machine gives no such address space";
        for (int y = 0; y < period; ++y)
            for (int x = 0; x < width; ++x) picture.row(y)[x] = valueAt(x);
        for (int y = 0; y < period; ++y) std::fill_n(result.row(y), width, Lum8u{1});
    }
    /// The mean of value(x) over a row.
    template <class Value> static double meanOverRow(Value value) {
        double sum = 0;
        for (int x = 0; x < width; ++x) sum += value(static_cast<double>(valueAt(x)));
        return sum / width;
    }

    static constexpr int period = 16;
    RepeatedRows picture{width, 1, height, period};
    RepeatedRows result{width, 1, height, period};
};

} // namespace

TEST_F(LargeCounts, MeanAndDeviation) {
    Lum64f mean = 0;
    Lum64f deviation = 0;
    ASSERT_EQ(lumStatusOk, lumiMean_StdDev_8u_C1R(picture.row(), picture.step(), size, &mean, &deviation));
    const double expected = meanOverRow([](double v) { return v; });
    EXPECT_NEAR(expected, mean, 1e-9);
    EXPECT_NEAR(std::sqrt(meanOverRow([](double v) { return v * v; }) - expected * expected), deviation,
                1e-6);
}

TEST_F(LargeCounts, MeanUnderAMask) {
    Lum64f mean = 0;
    ASSERT_EQ(lumStatusOk,
              lumiMean_8u_C1MR(picture.row(), picture.step(), result.row(), result.step(), size, &mean));
    EXPECT_NEAR(meanOverRow([](double v) { return v; }), mean, 1e-9);
}

TEST_F(LargeCounts, Norms) {
    Lum64f norm = 0;
    ASSERT_EQ(lumStatusOk,
              lumiNorm_L1_8u_C1MR(picture.row(), picture.step(), result.row(), result.step(), size, &norm));
    EXPECT_EQ(pixels * meanOverRow([](double v) { return v; }), norm);
    ASSERT_EQ(lumStatusOk,
              lumiNorm_L2_8u_C1MR(picture.row(), picture.step(), result.row(), result.step(), size, &norm));
    EXPECT_NEAR(std::sqrt(pixels * meanOverRow([](double v) { return v * v; })), norm, 1e-6);
}

TEST_F(LargeCounts, Extremes) {
    Lum32f least = -1, most = -1;
    LumPoint leastAt{-1, -1}, mostAt{-1, -1};
    ASSERT_EQ(lumStatusOk,
              lumiMinMaxIndx_8u_C1R(picture.row(), picture.step(), size, &least, &most, &leastAt, &mostAt));
    EXPECT_EQ(3, least);
    EXPECT_EQ(252, most);
    EXPECT_EQ(0, leastAt.x + leastAt.y + mostAt.y);
    EXPECT_EQ(249, mostAt.x);
}

TEST_F(LargeCounts, Differences) {
    ASSERT_EQ(lumStatusOk,
              lumiAbsDiffC_8u_C1R(picture.row(), picture.step(), result.row(), result.step(), size, 100));
    for (int x = 0; x < width; ++x) ASSERT_EQ(std::abs(valueAt(x) - 100), result.row(height - 1)[x]) << x;
}

TEST_F(LargeCounts, BoxFilter) {
    Lum32s bytes = 0;
    ASSERT_EQ(lumStatusOk, lumiFilterLowpassGetBufferSize_8u_C1R(size, lumMask3x3, &bytes));
    std::vector<Lum8u> buffer(bytes);
    ASSERT_EQ(lumStatusOk,
              lumiFilterLowpassBorder_8u_C1R(picture.row(), picture.step(), result.row(), result.step(), size,
                                             lumMask3x3, lumBorderReplicate, 0, buffer.data()));
    // Three equal values a column, whose mean is between them.
    EXPECT_EQ(valueAt(100), result.row(height - 1)[100]);
    EXPECT_EQ(valueAt(width - 2), result.row(height - 1)[width - 2]);
}

TEST_F(LargeCounts, GaussianFilter) {
    Lum32s specBytes = 0, bytes = 0;
    ASSERT_EQ(lumStatusOk, lumiFilterGaussianGetBufferSize(size, 3, lumType8u, 1, &specBytes, &bytes));
    std::vector<Lum8u> spec(specBytes), buffer(bytes);
    auto* object = reinterpret_cast<LumFilterGaussianSpec*>(spec.data());
    ASSERT_EQ(lumStatusOk,
              lumiFilterGaussianInit(size, 3, 1.0F, lumBorderReplicate, lumType8u, 1, object, buffer.data()));
    ASSERT_EQ(lumStatusOk, lumiFilterGaussianBorder_8u_C1R(picture.row(), picture.step(), result.row(),
                                                           result.step(), size, 0, object, buffer.data()));
    EXPECT_EQ(valueAt(100), result.row(height - 1)[100]);
    EXPECT_EQ(valueAt(width - 2), result.row(height - 1)[width - 2]);
}

TEST_F(LargeCounts, Dilation) {
    Lum32s specBytes = 0, bytes = 0;
    const LumSize maskSize{3, 3};
    const std::vector<Lum8u> mask(9, 1);
    ASSERT_EQ(lumStatusOk, lumiMorphologyBorderGetSize_8u_C1R(size, maskSize, &specBytes, &bytes));
    std::vector<Lum8u> spec(specBytes), buffer(bytes);
    auto* object = reinterpret_cast<LumMorphMaskRecord*>(spec.data());
    ASSERT_EQ(lumStatusOk,
              lumiMorphologyBorderInit_8u_C1R(size, mask.data(), maskSize, object, buffer.data()));
    ASSERT_EQ(lumStatusOk, lumiDilateBorder_8u_C1R(picture.row(), picture.step(), result.row(), result.step(),
                                                   size, lumBorderReplicate, 0, object, buffer.data()));
    EXPECT_EQ(valueAt(101), result.row(height - 1)[100]);
    EXPECT_EQ(252, result.row(height - 1)[249]);
}

TEST_F(LargeCounts, IntegralsWrap) {
    RepeatedRows sums(width, 4, height + 1, period);
    if (!sums.isThere()) GTEST_SKIP() << "the machine gives no such address space";
    ASSERT_EQ(lumStatusOk, lumiIntegral_8u32s_C1R(picture.row(), picture.step(), sums.row<Lum32s>(),
                                                  sums.step(), size, 0));
    std::uint32_t row = 0;
    for (int x = 0; x < width; ++x) row += valueAt(x);
    EXPECT_EQ(row * static_cast<std::uint32_t>(height),
              static_cast<std::uint32_t>(sums.row<Lum32s>(height)[width]));
}
