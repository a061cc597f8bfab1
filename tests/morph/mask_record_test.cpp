#include <cstring>

#include "morph/masks.h"

using namespace support;

namespace {

constexpr LumSize region{20, 10};
constexpr int recordBytes = sizeof(LumMorphMaskRecord);

/// A record in a block of exactly the queried size, at an odd address.
class BuiltRecord {
  public:
    explicit BuiltRecord(const MorphMask& mask)
        : block_(specSize(mask), Guard::after, mask.boxCells() % 2 == 0 ? 0 : 1) {
        Lum8u buffer = 99;
        EXPECT_STATUS(lumStatusOk, lumiMorphologyBorderInit_8u_C1R(region, mask.cells.data(), mask.size(),
                                                                   get(), &buffer));
        EXPECT_EQ(99, buffer);
    }
    LumMorphMaskRecord* get() { return block_.as<LumMorphMaskRecord>(); }
    LumMorphMaskRecord* operator->() { return get(); }

    int cell(int row, int column) { return get()->cells[row * get()->width + column]; }
    /// Number i of an array, wherever it lies.
    static int number(const Lum16u* numbers, int i) {
        Lum16u value;
        std::memcpy(&value, reinterpret_cast<const Lum8u*>(numbers) + 2 * i, sizeof value);
        return value;
    }
    int run(int i) { return number(get()->rowRuns, i); }
    int list(int row, int i) { return number(get()->rowLists, row * (get()->width + 1) + i); }

  private:
    static int specSize(const MorphMask& mask) {
        Lum32s spec = 0, buffer = 0;
        EXPECT_STATUS(lumStatusOk, lumiMorphologyBorderGetSize_8u_C1R(region, mask.size(), &spec, &buffer));
        return spec;
    }
    GuardedBlock block_;
};

constexpr int pattern16 = 0xA5A5;

/// The gap of a row: a set cell after an empty one after a set one.
bool hasGap(BuiltRecord& record, int row) {
    bool seen = false, ended = false;
    for (int column = 0; column < record->width; ++column) {
        const bool set = record.cell(row, column) != 0;
        if (set && ended) return true;
        if (!set && seen) ended = true;
        seen |= set;
    }
    return false;
}

/// Everything but the cross and known shapes, from the cells of the caller.
void expectRecord(const MorphMask& mask) {
    SCOPED_TRACE(testing::Message() << mask.width << "x" << mask.height);
    BuiltRecord record(mask);
    const int width = mask.boxWidth(), height = mask.boxHeight();
    ASSERT_EQ(width, record->width);
    ASSERT_EQ(height, record->height);
    ASSERT_EQ(width, record->boxWidth);
    ASSERT_EQ(height, record->boxHeight);
    ASSERT_EQ(width / 2, record->anchorX);
    ASSERT_EQ(height / 2, record->anchorY);
    Lum8u* const start = reinterpret_cast<Lum8u*>(record.get());
    ASSERT_EQ(start + recordBytes, record->cells);
    ASSERT_EQ(static_cast<void*>(record->cells + width * height), static_cast<void*>(record->rowLists));
    ASSERT_EQ(reinterpret_cast<Lum8u*>(record->rowLists) + (2 * width + 2) * height,
              reinterpret_cast<Lum8u*>(record->rowRuns));
    bool any = false, all = true, edges[4] = {};
    for (int row = 0; row < height; ++row) {
        int count = 0;
        for (int column = 0; column < width; ++column) {
            const int r = row - (height - mask.height), c = column - (width - mask.width);
            const bool set = r >= 0 && c >= 0 && mask.isSet(r, c);
            ASSERT_EQ(set ? 255 : 0, record.cell(row, column)) << row << "," << column;
            if (set) {
                ASSERT_EQ(column, record.list(row, ++count));
            }
            any |= set;
            all &= set;
            edges[0] |= set && row == 0;
            edges[1] |= set && row == height - 1;
            edges[2] |= set && column == 0;
            edges[3] |= set && column == width - 1;
        }
        ASSERT_EQ(count, record.list(row, 0));
    }
    int row = 0;
    for (bool gap = false; row < height && !gap; ++row) {
        gap = hasGap(record, row);
        if (row == 0 && record->isCross) continue;
        ASSERT_EQ(record.list(row, 0), record.run(2 * row));
        ASSERT_EQ(record.list(row, 0) == 0 ? 0xFFFF : record.list(row, 1), record.run(2 * row + 1));
        if (gap) {
            ASSERT_EQ(0, record->rowsAreRuns);
        }
    }
    if (row == height && !hasGap(record, row - 1)) {
        ASSERT_EQ(1, record->rowsAreRuns);
    }
    for (; row < height; ++row) ASSERT_EQ(pattern16, record.run(2 * row)) << row;
    ASSERT_EQ(all, (record->shapeFlags & 0x002) != 0);
    ASSERT_EQ(!any, (record->shapeFlags & 0x004) != 0);
    ASSERT_EQ(!(edges[0] && edges[1] && edges[2] && edges[3]), (record->shapeFlags & 0x008) != 0);
    ASSERT_EQ(record->rowsAreRuns != 0, (record->shapeFlags & 0x010) != 0);
    ASSERT_EQ(record->isCross != 0, (record->shapeFlags & 0x020) != 0);
    ASSERT_EQ(record->isKnownShape != 0, (record->shapeFlags & 0x700) != 0);
}

} // namespace

TEST(MaskRecord, ThreeByThreeCrossByHand) {
    BuiltRecord record(MorphMask::of({".#.", "###", ".#."}));
    EXPECT_EQ(0x130U, record->shapeFlags);
    EXPECT_EQ(1, record->isCross);
    EXPECT_EQ(1, record->isKnownShape);
    EXPECT_EQ(1, record->rowsAreRuns);
    const int runs[] = {1, 1, 3, 0, 1, 1};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(runs[i], record.run(i)) << i;
    const int cells[] = {0, 255, 0, 255, 255, 255, 0, 255, 0};
    for (int i = 0; i < 9; ++i) EXPECT_EQ(cells[i], record->cells[i]) << i;
    EXPECT_EQ(3, record.list(1, 0));
    EXPECT_EQ(0, record.list(1, 1));
    EXPECT_EQ(2, record.list(1, 3));
}

TEST(MaskRecord, HoldsRandomMasksOfAllSizes) {
    for (int width = 1; width <= 9; ++width)
        for (int height = 1; height <= 9; ++height)
            for (unsigned oneIn : {1U, 2U, 5U}) expectRecord(MorphMask::random(width, height, 7U, oneIn));
    expectRecord(MorphMask::random(70, 40, 8U));
}

TEST(MaskRecord, EmptyMaskHasFlagOfNoCell) {
    for (int side = 1; side <= 6; ++side) {
        expectRecord(MorphMask::empty(side, side));
        BuiltRecord record(MorphMask::empty(side, side));
        EXPECT_EQ(0x01CU, record->shapeFlags);
        EXPECT_EQ(0, record->isCross);
    }
}

TEST(MaskRecord, OneCellIsAFullRectangleAndNoCross) {
    BuiltRecord record(MorphMask::of({"#"}));
    EXPECT_EQ(0x012U, record->shapeFlags);
    EXPECT_EQ(0, record->anchorX);
    EXPECT_EQ(0, record->anchorY);
    EXPECT_EQ(0, record->isCross);
}

TEST(MaskRecord, FullMaskOfEvenSidesIsNoRectangle) {
    BuiltRecord record(MorphMask::full(4, 4));
    EXPECT_EQ(0x018U, record->shapeFlags);
    EXPECT_EQ(2, record->anchorX);
    EXPECT_EQ(2, record->anchorY);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(0, record.cell(0, i));
        EXPECT_EQ(0, record.cell(i, 0));
        EXPECT_EQ(i == 0 ? 0 : 255, record.cell(4, i));
    }
}

TEST(MaskRecord, ThreeFullRowsAreNoCross) {
    BuiltRecord record(MorphMask::full(3, 3));
    EXPECT_EQ(0x012U, record->shapeFlags);
}

TEST(MaskRecord, OneRowIsNoCross) {
    BuiltRecord record(MorphMask::full(3, 1));
    EXPECT_EQ(0x012U, record->shapeFlags);
    EXPECT_EQ(3, record.run(0));
    EXPECT_EQ(0, record.run(1));
}

TEST(MaskRecord, CrossesOfSquareMasksKeepTheirPlace) {
    const MorphMask mask = MorphMask::of({"...#.", "#####", "...#.", "...#.", "...#."});
    BuiltRecord record(mask);
    EXPECT_EQ(1, record->isCross);
    EXPECT_EQ(1, record.run(0));
    EXPECT_EQ(3, record.run(1));
    EXPECT_EQ(5, record.run(2));
    EXPECT_EQ(0, record->isKnownShape);
    EXPECT_EQ(0x030U, record->shapeFlags);
}

TEST(MaskRecord, CrossesOfOtherMasksAreNone) {
    for (const auto& mask :
         {MorphMask::of({"..#..", "#####", "..#.."}), MorphMask::of({".#.", ".#.", "###", ".#.", ".#."}),
          MorphMask::of({"..#..", ".###.", "..#.."}), MorphMask::of({".#.", "###", ".#.", ".#.", "..."})}) {
        BuiltRecord record(mask);
        EXPECT_EQ(0, record->isCross);
        expectRecord(mask);
    }
}

TEST(MaskRecord, CrossWithAnotherLineIsNone) {
    for (const auto& mask : {MorphMask::of({".#.", "###", ".##"}), MorphMask::of({".#.", "###", "###"}),
                             MorphMask::of({".#.", "##.", ".#."}), MorphMask::of({"#..", "###", "..#"}),
                             MorphMask::of({"##.", "###", ".#."})})
        EXPECT_EQ(0, BuiltRecord(mask)->isCross);
}

TEST(MaskRecord, CrossAtTheEdgeHoldsItsLinesInTheFirstPair) {
    BuiltRecord record(MorphMask::of({"#....", "#....", "#####", "#....", "#...."}));
    EXPECT_EQ(1, record->isCross);
    EXPECT_EQ(2, record.run(0));
    EXPECT_EQ(0, record.run(1));
}

TEST(MaskRecord, KnownShapesHaveTheirFlags) {
    const MorphMask diamond = MorphMask::of({"..#..", ".###.", "#####", ".###.", "..#.."});
    const MorphMask disc =
        MorphMask::of({"...#...", ".#####.", ".#####.", "#######", ".#####.", ".#####.", "...#..."});
    EXPECT_EQ(0x310U, BuiltRecord(diamond)->shapeFlags);
    EXPECT_EQ(0x510U, BuiltRecord(disc)->shapeFlags);
    for (MorphMask mask : {diamond, disc})
        for (auto& cell : mask.cells) {
            const Lum8u before = cell;
            cell = cell == 0 ? 3 : 0;
            EXPECT_EQ(0, BuiltRecord(mask)->isKnownShape);
            EXPECT_EQ(0U, BuiltRecord(mask)->shapeFlags & 0x700);
            cell = before;
        }
}

TEST(MaskRecord, WalkOfRunsEndsAtTheFirstGap) {
    BuiltRecord record(MorphMask::of({"###", "#.#", "###"}));
    EXPECT_EQ(0, record->rowsAreRuns);
    EXPECT_EQ(3, record.run(0));
    EXPECT_EQ(0, record.run(1));
    EXPECT_EQ(2, record.run(2));
    EXPECT_EQ(0, record.run(3));
    EXPECT_EQ(pattern16, record.run(4));
    EXPECT_EQ(pattern16, record.run(5));
    EXPECT_EQ(0U, record->shapeFlags);
}

TEST(MaskRecord, EveryInitBuildsTheSameRecord) {
    const MorphMask mask = MorphMask::random(6, 5, 99);
    for (const auto& member : morphObjectMembers()) {
        Lum32s spec = 0, buffer = 0;
        ASSERT_EQ(lumStatusOk, member.getSize(region, mask.size(), &spec, &buffer));
        GuardedBlock block(spec), work(buffer);
        const std::vector<Lum8u> before(work.as(), work.as() + work.size());
        auto* record = block.as<LumMorphMaskRecord>();
        ASSERT_EQ(lumStatusOk, member.init(region, mask.cells.data(), mask.size(), record, work.as()));
        EXPECT_EQ(0, std::memcmp(before.data(), work.as(), before.size()));
        BuiltRecord model(mask);
        EXPECT_EQ(model->shapeFlags, record->shapeFlags) << member.name;
        EXPECT_EQ(0, std::memcmp(model->cells, record->cells, mask.boxCells())) << member.name;
    }
}

TEST(MaskRecord, NullComesBeforeSize) {
    const MorphMask mask = MorphMask::full(3, 3);
    GuardedImage<Lum8u> object(200, 1);
    for (const auto& member : morphObjectMembers()) {
        auto* spec = reinterpret_cast<LumMorphMaskRecord*>(object.data());
        Lum8u buffer = 0;
        EXPECT_REFUSED(lumStatusNullPointer, object, member.init({0, 0}, nullptr, {0, 0}, spec, &buffer));
        EXPECT_REFUSED(lumStatusNullPointer, object,
                       member.init({0, 0}, mask.cells.data(), {0, 0}, nullptr, &buffer));
        EXPECT_REFUSED(lumStatusNullPointer, object,
                       member.init({0, 0}, mask.cells.data(), {0, 0}, spec, nullptr));
    }
}

TEST(MaskRecord, AnySideBelowOneIsSizeError) {
    const MorphMask mask = MorphMask::full(3, 3);
    GuardedImage<Lum8u> object(200, 1);
    auto* spec = reinterpret_cast<LumMorphMaskRecord*>(object.data());
    Lum8u buffer = 0;
    for (const auto& member : morphObjectMembers())
        for (int side = 0; side < 4; ++side) {
            int sides[4] = {20, 10, 3, 3};
            sides[side] = 0;
            EXPECT_REFUSED(
                lumStatusSizeError, object,
                member.init({sides[0], sides[1]}, mask.cells.data(), {sides[2], sides[3]}, spec, &buffer));
        }
}
