#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "kernels/distance/true_distance.h"
#include "support/guarded_image.h"
#include "support/status_checks.h"

using namespace support;

namespace {

constexpr float largest = std::numeric_limits<float>::max();

std::size_t bufferSize(LumSize size) {
    Lum32s bytes = 0;
    EXPECT_EQ(lumStatusOk, lumiTrueDistanceTransformGetBufferSize_8u32f_C1R(size, &bytes));
    return static_cast<std::size_t>(bytes);
}

/// The call with a buffer of exactly the queried size, at an odd address.
LumStatus transform(const GuardedImage<Lum8u>& src, GuardedImage<Lum32f>& dst, std::size_t spare = 1) {
    GuardedBlock buffer(bufferSize(src.size()), Guard::after, spare);
    return lumiTrueDistanceTransform_8u32f_C1R(src.data(), src.step(), dst.data(), dst.step(), src.size(),
                                               buffer.as<>());
}

std::vector<Lum32f> distancesOf(const GuardedImage<Lum8u>& src) {
    GuardedImage<Lum32f> dst(src.size().width, src.size().height);
    EXPECT_EQ(lumStatusOk, transform(src, dst));
    return dst.pixels();
}

/// The two passes by their description, with the tables of squares and reciprocals.
std::vector<Lum32f> reference(const GuardedImage<Lum8u>& src) {
    const int w = src.size().width, h = src.size().height;
    std::vector<float> squares(2 * static_cast<std::size_t>(std::max(w, h)), largest);
    for (int i = 0; i < h; ++i) squares[i] = float(i) * float(i);
    std::vector<float> g(static_cast<std::size_t>(w) * h), out(g.size());
    for (int x = 0; x < w; ++x) {
        std::vector<int> below(h);
        int n = h - 1;
        for (int y = h - 1; y >= 0; --y) below[y] = n = src.at(x, y) == 0 ? 0 : n + 1;
        int m = h - 1;
        for (int y = 0; y < h; ++y) {
            m = std::min(m + 1, below[y]);
            g[static_cast<std::size_t>(y) * w + x] = squares[m];
        }
    }
    for (int i = 0; i < w; ++i) squares[i] = float(i) * float(i);
    for (int y = 0; y < h; ++y) {
        const float* row = g.data() + static_cast<std::size_t>(y) * w;
        std::vector<int> first{0};
        std::vector<float> bound{-largest, largest};
        for (int q = 1; q < w; ++q) {
            const float t = row[q] + float(q) * float(q);
            float s;
            while (true) {
                const int p = first.back();
                s = t - row[p];
                s = s - float(p) * float(p);
                s = s * (0.5F / float(q - p));
                if (s > bound[first.size() - 1]) break;
                first.pop_back();
                bound.pop_back();
            }
            first.push_back(q);
            bound.back() = s;
            bound.push_back(largest);
        }
        std::size_t k = 0;
        for (int x = 0; x < w; ++x) {
            while (float(x) > bound[k + 1]) ++k;
            const int p = first[k];
            out[static_cast<std::size_t>(y) * w + x] = std::sqrt(squares[std::abs(x - p)] + row[p]);
        }
    }
    return out;
}

/// The nearest 0 by trying all of them.
std::vector<Lum32f> nearest(const GuardedImage<Lum8u>& src) {
    std::vector<std::pair<int, int>> zeros;
    std::vector<Lum32f> out;
    for (int y = 0; y < src.size().height; ++y)
        for (int x = 0; x < src.size().width; ++x)
            if (src.at(x, y) == 0) zeros.push_back({x, y});
    for (int y = 0; y < src.size().height; ++y)
        for (int x = 0; x < src.size().width; ++x) {
            int best = std::numeric_limits<int>::max();
            for (const auto& [p, q] : zeros) best = std::min(best, (x - p) * (x - p) + (y - q) * (y - q));
            out.push_back(zeros.empty() ? std::sqrt(largest) : std::sqrt(static_cast<float>(best)));
        }
    return out;
}

} // namespace

TEST(TrueDistance, WorkedExample) {
    GuardedImage<Lum8u> src(4, 3);
    src.fill([](int x, int y, int) { return (x == 0 && y == 0) || (x == 3 && y == 2) ? 0 : 9; });
    const float five = std::sqrt(5.0F), two = std::sqrt(2.0F);
    EXPECT_EQ((std::vector<Lum32f>{0, 1, 2, 2, 1, two, two, 1, 2, 2, 1, 0}), distancesOf(src));
    src.fill([](int x, int y, int) { return x + y; });
    EXPECT_EQ((std::vector<Lum32f>{0, 1, 2, 3, 1, two, five, std::sqrt(10.0F), 2, five, std::sqrt(8.0F),
                                   std::sqrt(13.0F)}),
              distancesOf(src));
}

TEST(TrueDistance, NoZeroIsTheRootOfTheLargestFloat) {
    for (const auto& [width, height] : {std::pair{1, 1}, {7, 5}, {66, 3}}) {
        GuardedImage<Lum8u> src(width, height);
        src.fill([](int x, int y, int) { return 1 + x + y; });
        EXPECT_EQ(
            std::vector<Lum32f>(static_cast<std::size_t>(width) * height, std::bit_cast<float>(0x5F7FFFFFU)),
            distancesOf(src));
    }
}

TEST(TrueDistance, ZerosAreZero) {
    const GuardedImage<Lum8u> src(37, 6);
    EXPECT_EQ(std::vector<Lum32f>(37 * 6, 0.0F), distancesOf(src));
}

TEST(TrueDistance, OneZero) {
    GuardedImage<Lum8u> src(90, 40);
    src.fill([](int x, int y, int) { return x != 61 || y != 17; });
    EXPECT_EQ(nearest(src), distancesOf(src));
}

TEST(TrueDistance, OneColumnIsTheDistanceAlongIt) {
    GuardedImage<Lum8u> src(1, 9);
    src.fill([](int, int y, int) { return y != 2 && y != 7; });
    EXPECT_EQ((std::vector<Lum32f>{2, 1, 0, 1, 2, 2, 1, 0, 1}), distancesOf(src));
}

TEST(TrueDistance, ColumnsWithoutZeroTakeTheirNeighbours) {
    GuardedImage<Lum8u> src(9, 1);
    src.fill([](int x, int, int) { return x != 3 && x != 8; });
    EXPECT_EQ((std::vector<Lum32f>{3, 2, 1, 0, 1, 2, 2, 1, 0}), distancesOf(src));
}

TEST(TrueDistance, WidestAndTallestPictures) {
    // A lone zero at one end: indices of 20000 are squared in single precision.
    GuardedImage<Lum8u> wide(20001, 1), tall(1, 20001);
    wide.fill([](int x, int, int) { return x != 0; });
    tall.fill([](int, int y, int) { return y != 0; });
    const std::vector<Lum32f> along = distancesOf(wide), down = distancesOf(tall);
    for (int i = 0; i <= 20000; ++i) {
        const float root = std::sqrt(static_cast<float>(i) * static_cast<float>(i));
        ASSERT_EQ(root, along[i]);
        ASSERT_EQ(root, down[i]);
    }
}

TEST(TrueDistance, EverySizeAgreesWithTheNearestZero) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int width = 1; width <= 70; ++width)
        for (int height : {1, 2, 3, 5, 17}) {
            GuardedImage<Lum8u> src(width, height,
                                    {.padding = static_cast<int>(engine() % 4),
                                     .offset = static_cast<int>(engine() % 33),
                                     .guard = engine() % 2 == 0 ? Guard::after : Guard::before});
            GuardedImage<Lum32f> dst(width, height,
                                     {.padding = static_cast<int>(engine() % 4 * 4),
                                      .offset = static_cast<int>(engine() % 33),
                                      .guard = engine() % 2 == 0 ? Guard::after : Guard::before});
            const unsigned rarity = 1 + engine() % 300;
            src.fill([&](int, int, int) { return engine() % rarity == 0 ? 0U : 1 + engine() % 255; });
            ASSERT_EQ(lumStatusOk, transform(src, dst, engine() % 33));
            ASSERT_EQ(nearest(src), dst.pixels()) << width << " x " << height;
            ASSERT_TRUE(sameBits(reference(src), dst.pixels()));
            ASSERT_TRUE(src.untouched() && dst.outsideUntouched());
        }
}

TEST(TrueDistance, LargePicturesAgreeWithTheTwoPasses) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (const auto& [width, height] :
         {std::pair{1920, 60}, {2500, 37}, {2047, 30}, {5003, 12}, {300, 700}, {130, 2047}, {6100, 5}})
        for (unsigned rarity : {3U, 40U, 3000U, 100000U}) {
            GuardedImage<Lum8u> src(width, height);
            src.fill([&](int, int, int) { return engine() % rarity == 0 ? 0 : 1; });
            ASSERT_TRUE(sameBits(reference(src), distancesOf(src)))
                << width << " x " << height << ", " << rarity;
        }
}

TEST(TrueDistance, WidePicturesOfNearAndFarZeros) {
    // Zeros in bands of rows and columns: rows with a 0 near every pixel, columns with none, and columns whose nearest 0
    // is hundreds of rows away.
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (const auto& [width, height] :
         {std::pair{2048, 9}, {2049, 300}, {3840, 40}, {4080, 120}, {4095, 110}, {4096, 9}})
        for (unsigned rarity : {2U, 90U, 1500U})
            for (int emptyColumns : {0, 7, 90}) {
                GuardedImage<Lum8u> src(width, height);
                src.fill([&](int x, int y, int) {
                    const bool isEmpty = x % 200 < emptyColumns || (x % 11 == 3 && y > 2);
                    return isEmpty || engine() % rarity != 0 ? 1 : 0;
                });
                ASSERT_TRUE(sameBits(reference(src), distancesOf(src)))
                    << width << " x " << height << ", " << rarity << ", " << emptyColumns;
            }
}

TEST(TrueDistance, ScalarAgreesWithVectorBitForBit) {
    std::mt19937 engine(12);
    std::vector<int> widths{127, 128, 129, 143, 144, 500, 1921, 2047, 2048, 3001, 4095, 4096};
    for (int width = 1; width <= 70; ++width) widths.push_back(width);
    for (int width : widths)
        for (unsigned rarity : {2U, 50U, 5000U, 200000U}) {
            GuardedImage<Lum8u> src(width, 45);
            // Columns of many heights, with ties between them.
            src.fill([&](int x, int y, int) { return engine() % rarity == 0 || y == x * 7 % 1000 ? 0 : 1; });
            GuardedImage<Lum32f> scalar(width, 45);
            const auto count = static_cast<std::size_t>(width);
            std::vector<float> halfInverse(count), squared(count), bound(count + 1);
            std::vector<Lum32s> vertex(count), above(count);
            lum::kernels::trueDistanceScalar(
                {src.data(), src.step()}, {scalar.data(), scalar.step()}, src.size(),
                {halfInverse.data(), squared.data(), vertex.data(), bound.data(), above.data()});
            ASSERT_TRUE(sameBits(scalar.pixels(), distancesOf(src))) << "width " << width << ", " << rarity;
        }
}

TEST(TrueDistance, BufferSize) {
    EXPECT_EQ(52U * 4 + 84, bufferSize({1, 1}));
    EXPECT_EQ(52U * 4 + 84, bufferSize({4, 3}));
    EXPECT_EQ(52U * 8 + 84, bufferSize({5, 4}));
    EXPECT_EQ(52U * 12 + 84, bufferSize({5, 9}));
    EXPECT_EQ(52U * 1920 + 84, bufferSize({1920, 1080}));
    Lum32s bytes = -1;
    // Beyond 31 bits the sum wraps.
    EXPECT_STATUS(lumStatusOk, lumiTrueDistanceTransformGetBufferSize_8u32f_C1R({2147483647, 1}, &bytes));
    EXPECT_EQ(84, bytes);
}

TEST(TrueDistance, StatusesOfTheSizeQueryInTheirOrder) {
    Lum32s bytes = -1;
    EXPECT_STATUS(lumStatusNullPointer, lumiTrueDistanceTransformGetBufferSize_8u32f_C1R({0, 1}, nullptr));
    for (const LumSize size : {LumSize{0, 1}, {1, 0}, {-3, 4}, {4, -3}})
        EXPECT_STATUS(lumStatusSizeError, lumiTrueDistanceTransformGetBufferSize_8u32f_C1R(size, &bytes));
    EXPECT_EQ(-1, bytes);
}

TEST(TrueDistance, StatusesInTheirOrder) {
    GuardedImage<Lum8u> src(6, 5);
    GuardedImage<Lum32f> dst(6, 5);
    dst.fillRandom(3);
    GuardedBlock block(bufferSize(src.size()));
    struct Case {
        LumStatus status;
        bool src, dst, buffer;
        LumSize size;
        int srcStep, dstStep;
    };
    const LumSize size = src.size();
    const Case cases[] = {
        {lumStatusNullPointer, false, true, true, {0, 5}, 6, 24},
        {lumStatusNullPointer, true, false, true, size, 5, 24},
        {lumStatusNullPointer, true, true, false, {6, 0}, 6, 24},
        {lumStatusSizeError, true, true, true, {0, 5}, -1, 24},
        {lumStatusSizeError, true, true, true, {6, -5}, 6, 23},
        {lumStatusStepError, true, true, true, size, 5, 25},
        {lumStatusStepError, true, true, true, size, 6, 23},
        {lumStatusStepError, true, true, true, size, -6, 24},
        {lumStatusStepError, true, true, true, size, 6, -24},
        {lumStatusStepAlignmentError, true, true, true, size, 6, 26},
    };
    for (const Case& c : cases)
        EXPECT_REFUSED(c.status, dst,
                       lumiTrueDistanceTransform_8u32f_C1R(c.src ? src.data() : nullptr, c.srcStep,
                                                           c.dst ? dst.data() : nullptr, c.dstStep, c.size,
                                                           c.buffer ? block.as<>() : nullptr));
}
