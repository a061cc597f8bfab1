#include <utility>
#include <vector>

#include "filter/bordered_row.h"
#include "filter/slide_window.h"
#include "support/border_walk.h"
#include "support/guarded_image.h"

using namespace lum;

namespace {

/// The long way, in the words of the rule under test.
int walkedElement(int i, int length, AxisBorder border) {
    const int place = support::borderWalk(i, length, border.kind, border.memoryBefore, border.memoryAfter);
    return place == INT_MAX ? outsideConstant : place;
}

} // namespace

TEST(Border, MirrorOfThreePixelsGoesBackAndForth) {
    const AxisBorder border = horizontalBorder(lumBorderMirror);
    const int outward[] = {1, 2, 1, 0, 1, 2};
    for (int i = 1; i <= 6; ++i) EXPECT_EQ(outward[i - 1], borderIndex(-i, 3, border));
}

TEST(Border, EveryElementOfEveryKindFlagAndLength) {
    for (LumBorderType kind : support::borderKinds)
        for (bool before : {false, true})
            for (bool after : {false, true})
                for (int length = 1; length <= 9; ++length)
                    for (int i = -40; i < length + 40; ++i) {
                        const AxisBorder border{kind, before, after};
                        ASSERT_EQ(walkedElement(i, length, border), borderIndex(i, length, border))
                            << "kind " << kind << " length " << length << " i " << i;
                    }
}

TEST(Border, MirrorOfOnePixelRepeatsItAlsoBesideMemory) {
    EXPECT_EQ(0, borderIndex(-3, 1, horizontalBorder(lumBorderMirror)));
    EXPECT_EQ(0, borderIndex(2, 1, horizontalBorder(lumBorderMirror | lumBorderInMemoryLeft)));
    EXPECT_EQ(-3, borderIndex(-3, 1, horizontalBorder(lumBorderMirror | lumBorderInMemoryLeft)));
}

TEST(Border, InMemoryAloneReadsEverySide) {
    EXPECT_EQ(-2, borderIndex(-2, 3, horizontalBorder(lumBorderInMemory)));
    EXPECT_EQ(5, borderIndex(5, 3, horizontalBorder(lumBorderInMemory)));
    EXPECT_EQ(-2, borderIndex(-2, 3, verticalBorder(lumBorderInMemory)));
    EXPECT_EQ(5, borderIndex(5, 3, verticalBorder(lumBorderInMemory)));
}

TEST(Border, FlagsBelongToTheirAxis) {
    const LumBorderType topRight = lumBorderReplicate | lumBorderInMemoryTop | lumBorderInMemoryRight;
    EXPECT_EQ(0, borderIndex(-2, 3, horizontalBorder(topRight)));
    EXPECT_EQ(4, borderIndex(4, 3, horizontalBorder(topRight)));
    EXPECT_EQ(-2, borderIndex(-2, 3, verticalBorder(topRight)));
    EXPECT_EQ(2, borderIndex(4, 3, verticalBorder(topRight)));
}

TEST(Border, AcceptsItsKindsWithAnyFlagsAndInMemoryAlone) {
    for (LumBorderType word = -300; word < 0x1100; ++word) {
        const int kind = word & 15;
        const bool accepted =
            word == 0xF0 || (word >= 0 && word < 256 && (kind == 1 || kind == 3 || kind == 6));
        EXPECT_EQ(accepted ? lumStatusOk : lumStatusBorderError, linearBorder(word)) << word;
    }
}

TEST(Border, OnlyAConstantBorderNeedsItsValue) {
    const int value = 7;
    const int* none = nullptr;
    EXPECT_EQ(lumStatusNullPointer, borderValueMissing(lumBorderConstant | lumBorderInMemoryTop, none));
    EXPECT_EQ(lumStatusOk, borderValueMissing(lumBorderConstant, &value));
    EXPECT_EQ(lumStatusOk, borderValueMissing(lumBorderMirror, none));
}

namespace {

/// Stretches of rows: whole ones, and one that leaves columns out on both sides.
struct Columns {
    int rowWidth;
    int first;
    int width;
};

template <class E> void expectBorderedRow(const Columns& columns, int channels, LumBorderType kind) {
    const int before = 12;
    const int after = 9;
    const Lum16s constant[3] = {-1, -2, -3};
    support::GuardedImage<Lum16s> row(columns.rowWidth, 1, {.channels = channels});
    row.fill([](int x, int, int c) { return 10 * x + c; });
    const AxisBorder axis = horizontalBorder(kind);
    const BorderedRow<Lum16s> bordered({columns.rowWidth, columns.first, columns.width, before, after},
                                       channels, axis, constant);
    for (const auto& [from, to] :
         {std::pair(-before, columns.width + after), {-3, 1}, {0, columns.width}, {1, 1}}) {
        std::vector<E> out((to - from) * channels + 1, 99);
        bordered.write(row.data() + columns.first * channels, from, to, out.data());
        for (int i = from; i < to; ++i)
            for (int c = 0; c < channels; ++c) {
                const int x = walkedElement(columns.first + i, columns.rowWidth, axis);
                const int expected = x == outsideConstant ? constant[c] : 10 * x + c;
                ASSERT_EQ(expected, out[(i - from) * channels + c]);
            }
        ASSERT_EQ(99, out.back());
    }
}

} // namespace

TEST(BorderedRow, ReadsMemoryOnlyWhereItExists) {
    for (int channels : {1, 3})
        for (LumBorderType kind : support::borderKinds) {
            for (int width = 1; width <= 5; ++width)
                expectBorderedRow<Lum16s>({width, 0, width}, channels, kind);
            expectBorderedRow<Lum16s>({40, 20, 4}, channels, kind);
            expectBorderedRow<Lum32f>({7, 2, 4}, channels, kind);
            expectBorderedRow<Lum32f>({70, 0, 70}, channels, kind);
        }
}

TEST(BorderedRow, ReadsTheNeighbouringMemoryOfFlaggedSides) {
    support::GuardedImage<Lum32f> row(4, 1, {.channels = 3, .margin = 5});
    row.fill([](int x, int, int c) { return 10 * x + c; });
    std::vector<Lum32f> out(14 * 3);
    const BorderedRow<Lum32f> bordered({4, 0, 4, 5, 5}, 3, horizontalBorder(lumBorderInMemory), nullptr);
    EXPECT_EQ(-5, bordered.begin());
    EXPECT_EQ(9, bordered.end());
    bordered.write(row.data(), -5, 9, out.data());
    for (int i = 0; i < 14; ++i)
        for (int c = 0; c < 3; ++c) EXPECT_EQ(10.0F * (i - 5) + c, out[i * 3 + c]);
}

TEST(SlideWindow, LoadsEachRowOnceBeforeItsFirstUse) {
    std::vector<int> walk;
    slideWindow(
        3, 1, 2, [&](int y) { walk.push_back(y); }, [&](int y) { walk.push_back(100 + y); });
    EXPECT_EQ((std::vector<int>{-1, 0, 1, 2, 100, 3, 101, 4, 102}), walk);
}
