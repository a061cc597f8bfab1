#include "frame/lanes_running.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "support/guarded_image.h"

using namespace lum;

namespace {

/// A byte, then `count` bytes that have sums before them, then the end of readable memory.
struct Row {
    support::GuardedBlock memory;
    Lum8u* bytes;
    int count;

    explicit Row(int bytesAfterTheFirst)
        : memory(static_cast<std::size_t>(bytesAfterTheFirst) + 1, support::Guard::after),
          bytes(memory.as<Lum8u>()),
          count(bytesAfterTheFirst) {}

    /// Sums before bytes 1, 2, ... in 32 bits.
    template <SumOf of> std::vector<Lum32s> sumsFrom(Lum32s before) const {
        std::vector<Lum32s> sums;
        auto sum = static_cast<unsigned>(before);
        for (int i = 0; i < count; ++i) {
            const unsigned value = bytes[i];
            sum += of == SumOf::bytes ? value : value * value;
            sums.push_back(static_cast<Lum32s>(sum));
        }
        return sums;
    }
};

/// The sums before N bytes at a time, and that before the last byte at the end.
template <int N, class Sums> std::vector<Lum32s> sumsInBlocks(const Row& row, Sums sums, Lum32s& beforeLast) {
    std::vector<Lum32s> result(static_cast<std::size_t>(row.count));
    for (int x = 0; x < row.count; x += N)
        sums.template next<N>(row.bytes + 1 + x,
                              [&]<int n>(Block<Lum32s, n> part, int i) { store(part, &result[x + i]); });
    beforeLast = sums.before();
    return result;
}

template <int N, SumOf of> void expectSums() {
    std::mt19937 random(7);
    for (int blocks : {1, 2, 5, 40}) {
        Row row(N * blocks);
        for (int i = 0; i <= row.count; ++i) row.bytes[i] = static_cast<Lum8u>(random() % 4 ? random() : 255);
        for (Lum32s before : {0, 0x7FFFFF00}) {
            Lum32s last = 0;
            const auto expected = row.sumsFrom<of>(before);
            EXPECT_EQ(expected, (sumsInBlocks<N>(row, RunningSums<of>(before), last))) << blocks;
            EXPECT_EQ(expected.back(), last);
        }
    }
}

} // namespace

TEST(RunningSums, AreThoseBeforeEachByteWithItsPredecessor) {
    Row row(8);
    for (int i = 0; i <= 8; ++i) row.bytes[i] = static_cast<Lum8u>(i + 1);
    Lum32s last = 0;
    EXPECT_EQ((std::vector<Lum32s>{101, 103, 106, 110, 115, 121, 128, 136}),
              (sumsInBlocks<8>(row, RunningSums<SumOf::bytes>(100), last)));
    EXPECT_EQ(136, last);
    EXPECT_EQ((std::vector<Lum32s>{1, 5, 14, 30, 55, 91, 140, 204}),
              (sumsInBlocks<8>(row, RunningSums<SumOf::squares>(0), last)));
    EXPECT_EQ(204, last);
}

TEST(RunningSums, WrapAndStayWithinTheBytesInBlocksOfAnySize) {
    expectSums<8, SumOf::bytes>();
    expectSums<16, SumOf::bytes>();
    expectSums<32, SumOf::bytes>();
    expectSums<8, SumOf::squares>();
    expectSums<16, SumOf::squares>();
    expectSums<32, SumOf::squares>();
}

TEST(RunningSums, FromAPlaceOnAreTheSame) {
    Row row(32 * 70);
    for (int value : {255, 0, 1}) {
        for (int i = 0; i <= row.count; ++i) row.bytes[i] = static_cast<Lum8u>(i % 3 ? value : 255 - value);
        Lum32s last = 0;
        const auto bytes = row.sumsFrom<SumOf::bytes>(0);
        EXPECT_EQ(bytes, (sumsInBlocks<32>(row, runningSumsFrom<SumOf::bytes>(row.bytes + 1), last)));
        EXPECT_EQ(bytes.back(), last);
        const auto squares = row.sumsFrom<SumOf::squares>(0);
        EXPECT_EQ(squares, (sumsInBlocks<32>(row, runningSumsFrom<SumOf::squares>(row.bytes + 1), last)));
        EXPECT_EQ(squares.back(), last);
    }
}
