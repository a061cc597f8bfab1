#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "lumcv.h"
#include "support/guarded_image.h"
#include "support/status_checks.h"

using namespace support;

namespace {

struct Sizes {
    Lum32s pyramid = -1;
    Lum32s buffer = -1;
};
Sizes sizesOf(int level, LumSize roiSize, float rate) {
    Sizes plain;
    Sizes wide;
    EXPECT_STATUS(lumStatusOk, lumiPyramidGetSize(&plain.pyramid, &plain.buffer, level, roiSize, rate));
    EXPECT_STATUS(lumStatusOk, lumiPyramidGetSize_L(&wide.pyramid, &wide.buffer, level,
                                                    {roiSize.width, roiSize.height}, rate));
    EXPECT_EQ(plain.pyramid, wide.pyramid);
    EXPECT_EQ(plain.buffer, wide.buffer);
    return plain;
}

int stepsToOnePixel(LumSize size, float rate) {
    int steps = 0;
    for (; size.width > 1 || size.height > 1; ++steps) lumiGetPyramidDownROI(size, &size, rate);
    return steps;
}

/// What 64-bit pointers add.
int widerPointers(int level) {
    const int byPointer = static_cast<int>(sizeof(void*)) - 4;
    return static_cast<int>(sizeof(LumPyramid)) - 24 + byPointer * (level + 1);
}

/// A directory in memory of exactly the queried sizes, at an address off every alignment.
struct Directory {
    GuardedBlock memory;
    GuardedBlock buffer;
    LumPyramid* record = nullptr;

    Directory(int level, LumSize roiSize, float rate, std::size_t spare, bool wide)
        : memory(sizesOf(level, roiSize, rate).pyramid, Guard::after, spare),
          buffer(sizesOf(level, roiSize, rate).buffer, Guard::after, spare) {
        EXPECT_STATUS(lumStatusOk, wide ? lumiPyramidInit_L(&record, level, {roiSize.width, roiSize.height},
                                                            rate, memory.as<Lum8u>(), buffer.as<Lum8u>())
                                        : lumiPyramidInit(&record, level, roiSize, rate, memory.as<Lum8u>(),
                                                          buffer.as<Lum8u>()));
    }
};

std::ptrdiff_t bytesBetween(const void* from, const void* to) {
    return static_cast<const char*>(to) - static_cast<const char*>(from);
}

} // namespace

TEST(Pyramid, OnePixelHasOneLevel) {
    EXPECT_EQ(112 + widerPointers(0), sizesOf(5, {1, 1}, 2.0F).pyramid);
    EXPECT_EQ(8, sizesOf(5, {1, 1}, 2.0F).buffer);
    const Directory directory(5, {1, 1}, 2.0F, 0, false);
    EXPECT_EQ(0, directory.record->level);
    EXPECT_EQ(1, directory.record->rois[0].width);
    EXPECT_EQ(1, directory.record->rois[0].height);
}

TEST(Pyramid, LevelsHaveHalfTheSizeAtRateTwo) {
    const Directory directory(3, {20, 7}, 2.0F, 0, false);
    const LumPyramid& pyramid = *directory.record;
    ASSERT_EQ(3, pyramid.level);
    const LumSize expected[] = {{20, 7}, {10, 4}, {5, 2}, {3, 1}};
    const double rates[] = {1, 0.5, 0.25, 0.125};
    for (int i = 0; i <= 3; ++i) {
        EXPECT_EQ(expected[i].width, pyramid.rois[i].width) << i;
        EXPECT_EQ(expected[i].height, pyramid.rois[i].height) << i;
        EXPECT_EQ(rates[i], pyramid.rates[i]);
        EXPECT_EQ(nullptr, pyramid.images[i]);
        EXPECT_EQ(0, pyramid.steps[i]);
    }
    EXPECT_EQ(nullptr, pyramid.state);
}

TEST(Pyramid, TheLastLevelIsOnePixelAtTheLatest) {
    const Directory directory(100, {20, 7}, 2.0F, 0, false);
    ASSERT_EQ(5, directory.record->level); // 20, 10, 5, 3, 2, 1
    EXPECT_EQ(1, directory.record->rois[5].width);
}

TEST(Pyramid, SizesFollowTheFormula) {
    for (float rate : {1.0000001F, 1.1F, 1.5F, 2.0F, 3.0F, 10.0F})
        for (LumSize size :
             {LumSize{1, 1}, LumSize{2, 1}, LumSize{1, 9}, LumSize{64, 48}, LumSize{333, 1000}})
            for (int level : {1, 2, 3, 10, std::numeric_limits<int>::max()}) {
                const int last = std::min(stepsToOnePixel(size, rate), level);
                const Sizes sizes = sizesOf(level, size, rate);
                EXPECT_EQ(44 * last + 112 + widerPointers(last), sizes.pyramid) << rate << " " << level;
                EXPECT_EQ(8 * std::max(size.width, size.height), sizes.buffer);
            }
}

TEST(Pyramid, SizesBeyond32BitsEndThere) {
    EXPECT_EQ(std::numeric_limits<int>::max(), sizesOf(1, {1 << 29, 3}, 2.0F).buffer);
}

TEST(Pyramid, RatesAreMultipliedUpInDouble) {
    const float rate = 1.3F;
    const Directory directory(12, {900, 700}, rate, 0, false);
    double expected = 1;
    for (int i = 0; i <= 12; ++i) {
        EXPECT_EQ(expected, directory.record->rates[i]) << i;
        expected *= 1.0 / static_cast<double>(rate);
    }
}

TEST(Pyramid, ArraysLieInOrderWithTheirGaps) {
    for (std::size_t spare = 0; spare < 16; ++spare) {
        const Directory directory(4, {200, 100}, 2.0F, spare, false);
        const LumPyramid& pyramid = *directory.record;
        const int levels = pyramid.level + 1;
        ASSERT_EQ(5, levels);
        EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(&pyramid) % sizeof(void*));
        EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(pyramid.rois) % 8);
        EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(pyramid.rates) % 8);
        EXPECT_LT(bytesBetween(&pyramid + 1, pyramid.rois), 8);
        EXPECT_EQ(16, bytesBetween(pyramid.rois + levels, pyramid.images));
        const std::ptrdiff_t gap = bytesBetween(pyramid.images + levels, pyramid.rates);
        EXPECT_TRUE(gap >= 8 && gap < 16) << gap;
        EXPECT_EQ(16, bytesBetween(pyramid.rates + levels, pyramid.steps));
    }
}

TEST(Pyramid, EveryDirectoryFitsItsMemoryAndBuffer) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 engine(seed);
    for (int i = 0; i < 300; ++i) {
        const LumSize size{static_cast<int>(engine() % 120) + 1, static_cast<int>(engine() % 120) + 1};
        const float rate = 1.00001F + static_cast<float>(engine() % 9000) / 1000;
        const int level = static_cast<int>(engine() % 30) + 1;
        Directory directory(level, size, rate, engine() % 17, engine() % 2 == 0);
        const LumPyramid& pyramid = *directory.record;
        ASSERT_EQ(std::min(level, stepsToOnePixel(size, rate)), pyramid.level);
        LumSize expected = size;
        for (int k = 0; k <= pyramid.level; ++k) {
            ASSERT_EQ(expected.width, pyramid.rois[k].width);
            ASSERT_EQ(expected.height, pyramid.rois[k].height);
            ASSERT_EQ(nullptr, pyramid.images[k]);
            ASSERT_EQ(0, pyramid.steps[k]);
            ASSERT_LE(bytesBetween(directory.memory.as(), pyramid.steps + k + 1),
                      static_cast<std::ptrdiff_t>(directory.memory.size()));
            LumSize inBuffer;
            std::memcpy(&inBuffer, directory.buffer.as() + k * sizeof(LumSize), sizeof(LumSize));
            ASSERT_EQ(expected.width, inBuffer.width);
            ASSERT_EQ(expected.height, inBuffer.height);
            lumiGetPyramidDownROI(expected, &expected, rate);
        }
    }
}

TEST(Pyramid, RefusedQueriesInTheirOrder) {
    Lum32s a = -1;
    Lum32s b = -1;
    const struct {
        Lum32s* pyramidSize;
        Lum32s* bufferSize;
        LumSize size;
        int level;
        float rate;
        LumStatus status;
    } cases[] = {
        {nullptr, &b, {0, 0}, 0, 1.0F, lumStatusNullPointer},
        {&a, nullptr, {0, 0}, 0, 1.0F, lumStatusNullPointer},
        {&a, &b, {0, 5}, 0, 1.0F, lumStatusSizeError},
        {&a, &b, {5, 0}, 0, 1.0F, lumStatusSizeError},
        {&a, &b, {-3, 5}, 1, 2.0F, lumStatusSizeError},
        {&a, &b, {5, 5}, 0, 2.0F, lumStatusBadArgument},
        {&a, &b, {5, 5}, -1, 2.0F, lumStatusBadArgument},
        {&a, &b, {5, 5}, 1, 1.0F, lumStatusBadArgument},
        {&a, &b, {5, 5}, 1, 10.5F, lumStatusBadArgument},
    };
    for (const auto& c : cases) {
        EXPECT_STATUS(c.status, lumiPyramidGetSize(c.pyramidSize, c.bufferSize, c.level, c.size, c.rate));
        EXPECT_STATUS(c.status, lumiPyramidGetSize_L(c.pyramidSize, c.bufferSize, c.level,
                                                     {c.size.width, c.size.height}, c.rate));
    }
    EXPECT_EQ(-1, a);
    EXPECT_EQ(-1, b);
}

TEST(Pyramid, RefusedInitsInTheirOrder) {
    std::vector<Lum8u> memory(500, 0x5A);
    std::vector<Lum8u> buffer(500, 0x5A);
    LumPyramid* record = nullptr;
    const struct {
        LumPyramid** pyramid;
        Lum8u* memory;
        Lum8u* buffer;
        LumSize size;
        int level;
        float rate;
        LumStatus status;
    } cases[] = {
        {nullptr, memory.data(), buffer.data(), {0, 0}, 0, 1.0F, lumStatusNullPointer},
        {&record, nullptr, buffer.data(), {0, 0}, 0, 1.0F, lumStatusNullPointer},
        {&record, memory.data(), nullptr, {0, 0}, 0, 1.0F, lumStatusNullPointer},
        {&record, memory.data(), buffer.data(), {0, 5}, 0, 1.0F, lumStatusSizeError},
        {&record, memory.data(), buffer.data(), {5, -1}, 0, 1.0F, lumStatusSizeError},
        {&record, memory.data(), buffer.data(), {5, 5}, 0, 2.0F, lumStatusBadArgument},
        {&record, memory.data(), buffer.data(), {5, 5}, 1, 1.0F, lumStatusBadArgument},
        {&record, memory.data(), buffer.data(), {5, 5}, 1, 11.0F, lumStatusBadArgument},
    };
    for (const auto& c : cases) {
        EXPECT_STATUS(c.status, lumiPyramidInit(c.pyramid, c.level, c.size, c.rate, c.memory, c.buffer));
        EXPECT_STATUS(c.status, lumiPyramidInit_L(c.pyramid, c.level, {c.size.width, c.size.height}, c.rate,
                                                  c.memory, c.buffer));
    }
    EXPECT_EQ(nullptr, record);
    EXPECT_EQ(std::vector<Lum8u>(500, 0x5A), memory);
    EXPECT_EQ(std::vector<Lum8u>(500, 0x5A), buffer);
}
