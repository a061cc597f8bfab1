#include "frame/lanes_truncate.h"

#include <gtest/gtest.h>
#include <limits>

#include "frame/convert.h"

using namespace lum;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double values[] = {0.0,           -0.75,    2.5,       -7.99,     254.5,        255.49,
                             -32768.9,      32767.4,  65534.5,   65535.5,   2147483646.5, 2147483648.0,
                             -2147483649.0, infinity, -infinity, notANumber};
constexpr int count = 16;

template <class T, int N> void expectHalfUp() {
    for (int start = 0; start < count; start += N) {
        float floats[N];
        for (int i = 0; i < N; ++i) floats[i] = static_cast<float>(values[start + i]);
        Lum32s results[N];
        store(halfUpTruncated<T>(load<N>(floats)), results);
        for (int i = 0; i < N; ++i) EXPECT_EQ(halfUpTruncated<T>(floats[i]), results[i]) << floats[i];
    }
}

template <int N> void expectTruncated() {
    for (int start = 0; start < count; start += N) {
        Lum32s results[N];
        store(truncatedTo32s(load<N>(values + start)), results);
        for (int i = 0; i < N; ++i)
            EXPECT_EQ(truncatedTo32s(values[start + i]), results[i]) << values[start + i];
    }
}

} // namespace

TEST(LanesTruncate, DoublesClampToTheRangeOf32Bits) {
    expectTruncated<4>();
    expectTruncated<8>();
    expectTruncated<16>();
}

TEST(LanesTruncate, WhatIsOutOfRangeIsTheLowestWithoutAClamp) {
    const double outside[] = {2147483648.0, -2147483649.0, infinity, -2.75};
    Lum32s results[4];
    store(truncated(load<4>(outside)), results);
    constexpr Lum32s lowest = std::numeric_limits<Lum32s>::min();
    EXPECT_EQ(lowest, results[0]);
    EXPECT_EQ(lowest, results[1]);
    EXPECT_EQ(lowest, results[2]);
    EXPECT_EQ(-2, results[3]);
}

TEST(LanesTruncate, AHalfIsAddedBeforeTheClamp) {
    expectHalfUp<Lum8u, 4>();
    expectHalfUp<Lum8u, 16>();
    expectHalfUp<Lum16u, 8>();
    expectHalfUp<Lum16u, 16>();
}
