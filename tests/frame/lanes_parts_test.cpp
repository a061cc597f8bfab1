#include "frame/lanes_parts.h"

#include <array>
#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <vector>

#include "support/guarded_image.h"

using namespace lum;

namespace {

/// The elements of a block.
template <class T, int N> std::array<T, N> elementsOf(Block<T, N> block) {
    std::array<T, N> elements;
    store(block, elements.data());
    return elements;
}

/// first, first + 1, ...
template <class T, int N> std::array<T, N> counted(T first) {
    std::array<T, N> elements;
    std::iota(elements.begin(), elements.end(), first);
    return elements;
}

template <class T, int n, int N> void expectMasksOfParts(std::uint32_t bits) {
    std::array<std::int8_t, N> bytes;
    for (int i = 0; i < N; ++i) bytes[i] = (bits >> i & 1) != 0 ? -1 : 0;
    forParts<n, N>([&](int first) LUM_INLINED {
        const auto mask = elementsOf(widenMask<T, n>(load<N>(bytes.data()), first));
        for (int i = 0; i < n; ++i)
            EXPECT_EQ(bytes[first + i], mask[i]) << "element " << first + i << " of " << N;
    });
}

template <class T, int N> void expectUnits() {
    constexpr int ofUnit = 16 / sizeof(T);
    constexpr int distance = 3 * ofUnit;
    constexpr int units = N / ofUnit;
    // An unreadable page follows the last unit.
    support::GuardedBlock memory(((units - 1) * distance + ofUnit) * sizeof(T), support::Guard::after);
    T* const place = memory.as<T>();
    std::iota(place, place + (units - 1) * distance + ofUnit, T{});
    const auto elements = elementsOf(loadUnits<N>(static_cast<const T*>(place), distance));
    for (int i = 0; i < N; ++i) EXPECT_EQ(place[i / ofUnit * distance + i % ofUnit], elements[i]) << i;
}

} // namespace

TEST(LanesParts, PartsAreTheElementsInOrder) {
    const auto bytes = load<64>(counted<Lum8u, 64>(7).data());
    forParts<16, 64>([&](int first) LUM_INLINED {
        EXPECT_EQ((counted<Lum8u, 16>(static_cast<Lum8u>(7 + first))), elementsOf(part<16>(bytes, first)));
    });
    forParts<8, 64>([&](int first) LUM_INLINED {
        EXPECT_EQ((counted<Lum8u, 8>(static_cast<Lum8u>(7 + first))), elementsOf(part<8>(bytes, first)));
    });
    const auto floats = load<16>(counted<float, 16>(1).data());
    forParts<4, 16>([&](int first) LUM_INLINED {
        EXPECT_EQ((counted<float, 4>(static_cast<float>(1 + first))), elementsOf(part<4>(floats, first)));
    });
}

TEST(LanesParts, BytesAreKeptWhereTheMaskIsSet) {
    const auto expectKept = []<int N>() {
        const auto bytes = counted<Lum8u, N>(1);
        std::array<Lum8u, N> mask;
        for (int i = 0; i < N; ++i) mask[i] = static_cast<Lum8u>(i % 3 == 0 ? 0 : i % 3 == 1 ? 1 : 0x80);
        const auto kept = elementsOf(whereSet(load<N>(mask.data()), load<N>(bytes.data())));
        for (int i = 0; i < N; ++i) EXPECT_EQ(i % 3 == 0 ? 0 : bytes[i], kept[i]) << i;
    };
    expectKept.operator()<16>();
    expectKept.operator()<32>();
    expectKept.operator()<64>();
    expectKept.operator()<128>();
}

TEST(LanesParts, PartsOfALoopCoverItOnce) {
    std::vector<int> firsts;
    forParts<8, 32>([&](int first) { firsts.push_back(first); });
    EXPECT_EQ((std::vector<int>{0, 8, 16, 24}), firsts);
}

TEST(LanesParts, FirstElementsAreReplaced) {
    const auto block = load<64>(counted<Lum8u, 64>(100).data());
    const auto replaced = elementsOf(replaceFirst(block, load<8>(counted<Lum8u, 8>(1).data())));
    for (int i = 0; i < 64; ++i) EXPECT_EQ(i < 8 ? 1 + i : 100 + i, replaced[i]);
    EXPECT_EQ((std::array<float, 8>{1, 2, 3, 4, 0, 0, 0, 0}),
              elementsOf(replaceFirst(zeros<float, 8>(), load<4>(counted<float, 4>(1).data()))));
}

TEST(LanesParts, MasksOfBytesBecomeMasksOfElements) {
    std::mt19937 engine(5);
    for (int round = 0; round < 50; ++round) {
        expectMasksOfParts<Lum8u, 16, 16>(engine());
        expectMasksOfParts<Lum16u, 8, 8>(engine());
        expectMasksOfParts<Lum16u, 8, 16>(engine());
        expectMasksOfParts<Lum16u, 16, 32>(engine());
        expectMasksOfParts<Lum32f, 4, 4>(engine());
        expectMasksOfParts<Lum32f, 4, 8>(engine());
        expectMasksOfParts<Lum32f, 4, 16>(engine());
        expectMasksOfParts<Lum32f, 8, 32>(engine());
        expectMasksOfParts<Lum32f, 16, 16>(engine());
    }
}

TEST(LanesParts, PartsBecomeFloats) {
    const auto expectFloats = []<class T, int n, int N>() {
        const auto elements = counted<T, N>(static_cast<T>(sizeof(T) == 1 ? 200 : 60000));
        forParts<n, N>([&](int first) LUM_INLINED {
            const auto floats = elementsOf(toFloatPart<n>(load<N>(elements.data()), first));
            for (int i = 0; i < n; ++i) EXPECT_EQ(static_cast<float>(elements[first + i]), floats[i]);
        });
    };
    expectFloats.operator()<Lum8u, 4, 4>();
    expectFloats.operator()<Lum8u, 4, 16>();
    expectFloats.operator()<Lum8u, 16, 32>();
    expectFloats.operator()<Lum16u, 4, 4>();
    expectFloats.operator()<Lum16u, 4, 8>();
    expectFloats.operator()<Lum16u, 4, 16>();
    expectFloats.operator()<Lum16u, 8, 16>();
    expectFloats.operator()<Lum32f, 4, 16>();
}

TEST(LanesParts, UnitsComeFromWhereTheyLie) {
    expectUnits<Lum8u, 16>();
    expectUnits<Lum8u, 64>();
    expectUnits<Lum16u, 16>();
    expectUnits<Lum32f, 8>();
    expectUnits<Lum32f, 16>();
}

TEST(LanesParts, SumsTakeBlocksOfAnySize) {
    BlockSum<std::uint32_t> sum;
    sum.add(load<4>(counted<std::uint32_t, 4>(1).data()));
    sum.add(load<32>(counted<std::uint32_t, 32>(0xFFFFFFF0).data()));
    EXPECT_EQ(10 + 32 * 31 / 2 - 32 * 16, static_cast<std::int32_t>(sum.total()));

    // What is added up to 32 bits per lane keeps all its bits in 64.
    BlockSum<std::uint32_t> narrow;
    narrow.add(broadcast<16>(0xFFFFFFFF / 16));
    BlockSum<std::uint64_t> wide;
    for (int i = 0; i < 100; ++i) wide.add(narrow);
    EXPECT_EQ(100 * 16 * std::uint64_t{0xFFFFFFFF / 16}, wide.total());

    BlockSum<std::int32_t> negative;
    negative.add(broadcast<4>(-5));
    BlockSum<std::int64_t> wideNegative;
    wideNegative.add(negative);
    EXPECT_EQ(-20, wideNegative.total());
}
