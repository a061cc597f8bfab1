#include <algorithm>
#include <string>

#include "support/status_checks.h"

using namespace support;

namespace {

constexpr LumDataType dataTypes[] = {lumType8u, lumType16u, lumType16s, lumType32f};
constexpr int kernelSizes[] = {3, 5, 7, 9, 11, 15, 31, 63};
constexpr int sides[] = {1, 2, 3, 4, 5, 15, 16, 17, 63, 64, 65, 640, 1920};

int roundedUp(int value, int multiple) { return (value + multiple - 1) / multiple * multiple; }

int ringBytes(int width, int K, int channels) {
    return 12 * K + (K + 1) * roundedUp(4 * channels * width, 64) + 64;
}

int frontBytes(int K, LumDataType type) {
    return type == lumType32f ? 32 + 16 * ((K + 3) / 4) : 36 + 8 * ((K + 3) / 4);
}

int coreBytes(int K) { return 4 * ((K + 1) / 2) + 128; }

/// The row and column stages that go with a data type.
int rowStageBytes(int K, LumDataType type, int channels) {
    const bool one = channels == 1;
    if (type == lumType8u) return one ? 36 * K + 144 : 60 * K + 144;
    if (type == lumType16u) return one ? 48 * K + 80 : 112 * K + 80;
    if (type == lumType16s) return one ? 48 * K + 112 : 40 * K + 96;
    return one ? 64 * K + 96 : 192 * K + 64;
}

int columnStageBytes(int width, LumDataType type, int channels) {
    if (type == lumType16u || type == lumType32f) return 32;
    return (channels == 1 ? 12 : 36) * roundedUp(width, 4) + 64;
}

/// The six terms, one after the other.
int frontBufferBytes(int width, int height, int K, LumDataType type, int channels) {
    const int u = roundedUp((K + width) * channels, 8);
    const int m = std::min(K, height);
    const bool single = type == lumType32f;
    int sum = 0;
    for (int twice = 0; twice < 2; ++twice) sum += single ? 16 + (u * 4 * K) / 2 : 16 + 2 * u * (K / 2);
    sum += 64 + (single ? 4 : 2) * u * (K + m);
    sum += 32 + rowStageBytes(K, type, channels);
    sum += 32 + columnStageBytes(width, type, channels);
    sum += 32 + 4 * (K + (single ? m : height));
    return sum;
}

int plainBuffer(LumSize size, int K, LumDataType type, int channels) {
    Lum32s spec = 0;
    Lum32s buffer = 0;
    EXPECT_STATUS(lumStatusOk, lumiFilterGaussianGetBufferSize(size, K, type, channels, &spec, &buffer));
    EXPECT_EQ(frontBytes(K, type) + coreBytes(K), spec);
    return buffer;
}

struct Results {
    Lum32s first = -77;
    Lum32s second = -77;
    bool untouched() const { return first == -77 && second == -77; }
};

} // namespace

TEST(FilterGaussianGetBufferSize, OneSizeByHand) {
    // u = 16: 2 * (16 + 32), 64 + 2 * 16 * 5, 32 + 252, 32 + 12 * 12 + 64, 32 + 4 * 5
    EXPECT_EQ(96 + 224 + 284 + 240 + 52, plainBuffer({11, 2}, 3, lumType8u, 1));
    // u = 16: 2 * (16 + 96), 64 + 4 * 16 * 5, 32 + 288, 32 + 32, 32 + 4 * 5
    EXPECT_EQ(224 + 384 + 320 + 64 + 52, plainBuffer({11, 2}, 3, lumType32f, 1));
}

TEST(FilterGaussianGetSpecSize, BothFormsReportTheCoreObjectAndItsInitBuffer) {
    for (auto query : {lumiFilterGaussianGetSpecSize, lumiFilterGaussianGetSpecSize_L})
        for (int K : kernelSizes)
            for (LumDataType type : dataTypes)
                for (int channels : {1, 3}) {
                    Results r;
                    EXPECT_STATUS(lumStatusOk, query(K, type, channels, &r.first, &r.second));
                    EXPECT_EQ(coreBytes(K), r.first);
                    EXPECT_EQ(64, r.second);
                }
}

TEST(FilterGaussianGetSpecSize, TestsInOrder) {
    for (auto query : {lumiFilterGaussianGetSpecSize, lumiFilterGaussianGetSpecSize_L}) {
        Results r;
        EXPECT_REFUSED(lumStatusNullPointer, r, query(4, 2, 2, nullptr, &r.second));
        EXPECT_REFUSED(lumStatusNullPointer, r, query(4, 2, 2, &r.first, nullptr));
        for (int K : {4, 1, 0, 2, -3, -4, 1000})
            EXPECT_REFUSED(lumStatusBadArgument, r, query(K, 2, 2, &r.first, &r.second));
        for (LumDataType type : {0, 2, 11, 19, -1})
            EXPECT_REFUSED(lumStatusDataTypeError, r, query(3, type, 2, &r.first, &r.second));
        for (int channels : {0, 2, 4, -1})
            EXPECT_REFUSED(lumStatusChannelCountError, r, query(3, lumType8u, channels, &r.first, &r.second));
    }
}

TEST(FilterGaussianGetBufferSize_L, RingOfRowsAndExtendedRow) {
    for (int K : kernelSizes)
        for (int width : sides)
            for (LumDataType type : dataTypes)
                for (int channels : {1, 3}) {
                    Lum32s bytes = 0;
                    EXPECT_STATUS(lumStatusOk,
                                  lumiFilterGaussianGetBufferSize_L({width, 9}, K, type, lumBorderReplicate,
                                                                    channels, &bytes));
                    EXPECT_EQ(ringBytes(width, K, channels), bytes);
                }
}

TEST(FilterGaussianGetBufferSize_L, SumWrapsIn32Bits) {
    Lum32s bytes = 0;
    EXPECT_STATUS(lumStatusOk, lumiFilterGaussianGetBufferSize_L({0x7FFFFFFF, 1}, 3, lumType8u,
                                                                 lumBorderReplicate, 3, &bytes));
    // 12 * 0x7FFFFFFF is -12 in 32 bits, and 0 when it is rounded up.
    EXPECT_EQ(12 * 3 + 64, bytes);
}

TEST(FilterGaussianGetBufferSize_L, TestsInOrder) {
    Results r;
    EXPECT_REFUSED(lumStatusNullPointer, r, lumiFilterGaussianGetBufferSize_L({0, 0}, 4, 2, 0, 2, nullptr));
    for (LumSizeL size : {LumSizeL{0, 5}, LumSizeL{5, 0}, LumSizeL{-1, 5}, LumSizeL{5, -1}})
        EXPECT_REFUSED(lumStatusSizeError, r, lumiFilterGaussianGetBufferSize_L(size, 4, 2, 0, 2, &r.first));
    const LumSizeL size{8, 8};
    EXPECT_REFUSED(lumStatusBadArgument, r, lumiFilterGaussianGetBufferSize_L(size, 4, 2, 0, 2, &r.first));
    EXPECT_REFUSED(lumStatusBadArgument, r, lumiFilterGaussianGetBufferSize_L(size, 1, 2, 0, 2, &r.first));
    EXPECT_REFUSED(lumStatusDataTypeError, r, lumiFilterGaussianGetBufferSize_L(size, 3, 2, 0, 2, &r.first));
    EXPECT_REFUSED(lumStatusChannelCountError, r,
                   lumiFilterGaussianGetBufferSize_L(size, 3, lumType16s, 0, 2, &r.first));
}

TEST(FilterGaussianGetBufferSize_L, BorderIsAKindWithFlagsOrAllFourFlagsWithAnyKind) {
    for (int border = -300; border < 600; ++border) {
        Results r;
        const int kind = border & 15;
        const bool accepted = border >= 0 && border <= 255 &&
                              (border >= 0xF0 || kind == lumBorderReplicate || kind == lumBorderMirror ||
                               kind == lumBorderConstant);
        const LumStatus status = lumiFilterGaussianGetBufferSize_L({8, 8}, 3, lumType8u, border, 1, &r.first);
        EXPECT_EQ(static_cast<LumStatus>(accepted ? lumStatusOk : lumStatusBorderError), status) << border;
        EXPECT_EQ(accepted, !r.untouched());
    }
}

TEST(FilterGaussianGetBufferSize, LargestOfTheStagesTheRingAnd64) {
    for (int K : kernelSizes)
        for (int width : sides)
            for (int height : sides)
                for (LumDataType type : dataTypes)
                    for (int channels : {1, 3})
                        ASSERT_EQ(std::max({frontBufferBytes(width, height, K, type, channels),
                                            ringBytes(width, K, channels), 64}),
                                  plainBuffer({width, height}, K, type, channels))
                            << width << " x " << height << ", " << K << " taps, type " << type << ", "
                            << channels << " channels";
}

TEST(FilterGaussianGetBufferSize, IntegersGrowWithEveryRowAndFloatsUpToTheKernelSize) {
    for (LumDataType type : {lumType8u, lumType16u, lumType16s}) {
        EXPECT_EQ(plainBuffer({1, 1000}, 3, type, 1) + 4, plainBuffer({1, 1001}, 3, type, 1));
        EXPECT_EQ(plainBuffer({1, 1000}, 3, type, 3) + 4, plainBuffer({1, 1001}, 3, type, 3));
    }
    EXPECT_EQ(plainBuffer({1, 1000}, 3, lumType32f, 1), plainBuffer({1, 1001}, 3, lumType32f, 1));
    EXPECT_LT(plainBuffer({100, 4}, 5, lumType32f, 1), plainBuffer({100, 5}, 5, lumType32f, 1));
    EXPECT_EQ(plainBuffer({100, 5}, 5, lumType32f, 1), plainBuffer({100, 6}, 5, lumType32f, 1));
}

// Both sums wrap below 0.
TEST(FilterGaussianGetBufferSize, IsNeverBelow64) {
    EXPECT_EQ(64, plainBuffer({0x0C000000, 3}, 3, lumType16u, 1));
}

TEST(FilterGaussianGetBufferSize, TestsInOrder) {
    Results r;
    const LumSize size{8, 8};
    EXPECT_REFUSED(lumStatusNullPointer, r,
                   lumiFilterGaussianGetBufferSize({0, 0}, 4, 2, 2, nullptr, &r.second));
    EXPECT_REFUSED(lumStatusNullPointer, r,
                   lumiFilterGaussianGetBufferSize({0, 0}, 4, 2, 2, &r.first, nullptr));
    for (LumSize empty : {LumSize{0, 5}, LumSize{5, 0}, LumSize{-1, 5}, LumSize{5, -1}})
        EXPECT_REFUSED(lumStatusSizeError, r,
                       lumiFilterGaussianGetBufferSize(empty, 4, 2, 2, &r.first, &r.second));
    for (int K : {4, 2, 1, 0, -5})
        EXPECT_REFUSED(lumStatusBadArgument, r,
                       lumiFilterGaussianGetBufferSize(size, K, 2, 2, &r.first, &r.second));
    EXPECT_REFUSED(lumStatusDataTypeError, r,
                   lumiFilterGaussianGetBufferSize(size, 3, 2, 2, &r.first, &r.second));
    EXPECT_REFUSED(lumStatusChannelCountError, r,
                   lumiFilterGaussianGetBufferSize(size, 3, lumType32f, 4, &r.first, &r.second));
}
