#include <vector>

#include "filter/border.h"
#include "support/guarded_image.h"

using namespace lum;

namespace {

constexpr LumBorderType kinds[] = {lumBorderReplicate, lumBorderMirror, lumBorderConstant};

/// The reflection one step at a time, turning at both ends.
int walkedMirror(int i, int length) {
    if (length == 1) return 0;
    int place = i < 0 ? 0 : length - 1;
    int direction = i < 0 ? 1 : -1;
    for (int steps = i < 0 ? -i : i - (length - 1); steps > 0; --steps) {
        place += direction;
        if (place == 0 || place == length - 1) direction = -direction;
    }
    return place;
}

int walkedElement(int i, int length, AxisBorder border) {
    if (i >= 0 && i < length) return i;
    if (i < 0 && border.memoryBefore) return i;
    if (i >= length && border.memoryAfter) return i;
    switch (border.kind) {
    case lumBorderConstant:
        return constantElement;
    case lumBorderMirror:
        return walkedMirror(i, length);
    default:
        return i < 0 ? 0 : length - 1;
    }
}

} // namespace

TEST(Border, EveryElementOfEveryKindFlagAndLength) {
    for (LumBorderType kind : kinds)
        for (bool before : {false, true})
            for (bool after : {false, true})
                for (int length = 1; length <= 9; ++length)
                    for (int i = -40; i < length + 40; ++i) {
                        const AxisBorder border{kind, before, after};
                        ASSERT_EQ(walkedElement(i, length, border), elementAt(i, length, border))
                            << "kind " << kind << " length " << length << " i " << i;
                    }
}

TEST(Border, MirrorOfThreePixelsGoesBackAndForth) {
    const AxisBorder border = horizontalBorder(lumBorderMirror);
    const int outward[] = {1, 2, 1, 0, 1, 2};
    for (int i = 1; i <= 6; ++i) EXPECT_EQ(outward[i - 1], elementAt(-i, 3, border));
}

TEST(Border, MirrorOfOnePixelRepeatsItAlsoBesideMemory) {
    EXPECT_EQ(0, elementAt(-3, 1, horizontalBorder(lumBorderMirror)));
    EXPECT_EQ(0, elementAt(2, 1, horizontalBorder(lumBorderMirror | lumBorderInMemoryLeft)));
    EXPECT_EQ(-3, elementAt(-3, 1, horizontalBorder(lumBorderMirror | lumBorderInMemoryLeft)));
}

TEST(Border, InMemoryAloneReadsEverySide) {
    EXPECT_EQ(-2, elementAt(-2, 3, horizontalBorder(lumBorderInMemory)));
    EXPECT_EQ(5, elementAt(5, 3, horizontalBorder(lumBorderInMemory)));
    EXPECT_EQ(-2, elementAt(-2, 3, verticalBorder(lumBorderInMemory)));
    EXPECT_EQ(5, elementAt(5, 3, verticalBorder(lumBorderInMemory)));
}

TEST(Border, FlagsBelongToTheirAxis) {
    const LumBorderType topRight = lumBorderReplicate | lumBorderInMemoryTop | lumBorderInMemoryRight;
    EXPECT_EQ(0, elementAt(-2, 3, horizontalBorder(topRight)));
    EXPECT_EQ(4, elementAt(4, 3, horizontalBorder(topRight)));
    EXPECT_EQ(-2, elementAt(-2, 3, verticalBorder(topRight)));
    EXPECT_EQ(2, elementAt(4, 3, verticalBorder(topRight)));
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

TEST(Border, ExtendedRowsReadMemoryOnlyWhereItExists) {
    const int border = 12;
    const Lum16s constant[3] = {-1, -2, -3};
    for (int channels : {1, 3})
        for (LumBorderType kind : kinds)
            for (int width = 1; width <= 5; ++width) {
                support::GuardedImage<Lum16s> row(width, 1, {.channels = channels});
                row.fill([](int x, int, int c) { return 10 * x + c; });
                std::vector<Lum16s> out((width + 2 * border) * channels, 99);
                const AxisBorder axis = horizontalBorder(kind);
                copyExtended(row.data(), width, channels, axis, constant, -border, width + 2 * border,
                             out.data());
                for (int i = -border; i < width + border; ++i)
                    for (int c = 0; c < channels; ++c) {
                        const int x = walkedElement(i, width, axis);
                        const int expected = x == constantElement ? constant[c] : 10 * x + c;
                        ASSERT_EQ(expected, out[(i + border) * channels + c]);
                    }
            }
}

TEST(Border, ExtendedRowsReadTheNeighbouringMemoryOfFlaggedSides) {
    support::GuardedImage<Lum32f> row(4, 1, {.channels = 3, .margin = 5});
    row.fill([](int x, int, int c) { return 10 * x + c; });
    std::vector<Lum32f> out(14 * 3);
    copyExtended<Lum32f>(row.data(), 4, 3, horizontalBorder(lumBorderInMemory), nullptr, -5, 14, out.data());
    for (int i = 0; i < 14; ++i)
        for (int c = 0; c < 3; ++c) EXPECT_EQ(10.0F * (i - 5) + c, out[i * 3 + c]);
}
