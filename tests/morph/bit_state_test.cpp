#include <cstring>

#include "morph/masks.h"

using namespace support;

namespace {

/// What a state of a mask with set cells holds.
void expectState(const LumMorphBitState* state, const MorphMask& mask, int roiWidth, int anchorX,
                 int anchorY) {
    SCOPED_TRACE(testing::Message() << mask.width << "x" << mask.height << " region " << roiWidth);
    const auto* copy = reinterpret_cast<const Lum8u*>(state + 1);
    ASSERT_EQ(0, std::memcmp(copy, mask.cells.data(), mask.cells.size()));
    ASSERT_EQ(copy, state->cells);
    ASSERT_EQ(copy, state->cellsForRows);
    ASSERT_EQ(copy, state->cellsForColumns);
    ASSERT_EQ(nullptr, state->reserved0);
    ASSERT_EQ(nullptr, state->reserved1);
    ASSERT_EQ(mask.width, state->width);
    ASSERT_EQ(mask.height, state->height);
    ASSERT_EQ(anchorX, state->anchorX);
    ASSERT_EQ(anchorY, state->anchorY);
    ASSERT_EQ(mask.width - anchorX - 1, state->rightReach);
    ASSERT_EQ(mask.height - anchorY - 1, state->bottomReach);
    ASSERT_EQ((roiWidth + 15) / 16 * 16, state->bufferRowBytes);
    ASSERT_EQ(0, state->scratchBytes);
    ASSERT_EQ(0, state->reserved2);
    ASSERT_EQ(1, state->reserved3);
    ASSERT_EQ(roiWidth, state->roiWidth);
    ASSERT_EQ(-1, state->reserved4);
    ASSERT_EQ(0, state->kind);
}

void expectEmptyState(const LumMorphBitState* state, const MorphMask& mask, int roiWidth) {
    const auto* copy = reinterpret_cast<const Lum8u*>(state + 1);
    ASSERT_EQ(copy, state->cells);
    ASSERT_EQ(copy, state->reserved1);
    ASSERT_EQ(nullptr, state->cellsForRows);
    ASSERT_EQ(nullptr, state->cellsForColumns);
    ASSERT_EQ(nullptr, state->reserved0);
    for (int i = 0; i < mask.width * mask.height; ++i) ASSERT_EQ(0, copy[i]);
    ASSERT_EQ(mask.width, state->width);
    ASSERT_EQ(mask.height, state->height);
    ASSERT_EQ(0, state->anchorX);
    ASSERT_EQ(0, state->anchorY);
    ASSERT_EQ(0, state->rightReach);
    ASSERT_EQ(0, state->bottomReach);
    ASSERT_EQ((roiWidth + 15) / 16 * 16, state->bufferRowBytes);
    ASSERT_EQ(0, state->scratchBytes);
    ASSERT_EQ(0, state->reserved2);
    ASSERT_EQ(1, state->reserved3);
    ASSERT_EQ(roiWidth, state->roiWidth);
    ASSERT_EQ(-1, state->reserved4);
    ASSERT_EQ(3, state->kind);
}

/// Init of a plain and of a long object of exactly the queried sizes, at any address.
template <class Check> void forBothObjects(const MorphMask& mask, LumSize roi, int spare, Check check) {
    Lum32s spec = 0, buffer = 0;
    ASSERT_EQ(lumStatusOk, lumiMorphologyBorderGetSize_1u_C1R(roi, mask.size(), &spec, &buffer));
    GuardedBlock block(spec, Guard::after, spare), work(buffer);
    ASSERT_EQ(lumStatusOk, lumiMorphologyBorderInit_1u_C1R(roi, mask.cells.data(), mask.size(),
                                                           block.as<LumMorphBitState>(), work.as()));
    check(block.as<LumMorphBitState>());

    const LumSizeL roiL{roi.width, roi.height};
    ASSERT_EQ(lumStatusOk, lumiErodeGetSpecSize_L(roiL, mask.sizeL(), &spec));
    for (auto init : {lumiErodeInit_L, lumiDilateInit_L}) {
        GuardedBlock longBlock(spec, Guard::after, spare);
        auto* state = longBlock.as<LumMorphLongState>();
        ASSERT_EQ(lumStatusOk, init(roiL, mask.cells.data(), mask.sizeL(), state));
        Lum8u* const record = longBlock.as() + sizeof(LumMorphLongState);
        const int recordBytes = mask.boxCells() + 96 + 2 * (2 * mask.boxWidth() + 2) * mask.boxHeight();
        ASSERT_EQ(record, reinterpret_cast<Lum8u*>(state->maskRecord));
        ASSERT_EQ(record + recordBytes, reinterpret_cast<Lum8u*>(state->bitState));
        ASSERT_EQ(mask.boxWidth(), state->maskRecord->width);
        ASSERT_EQ(mask.boxHeight(), state->maskRecord->height);
        for (int row = 0; row < mask.height; ++row)
            for (int column = 0; column < mask.width; ++column)
                ASSERT_EQ(mask.isSet(row, column) ? 255 : 0,
                          state->maskRecord->cells[(row + 1 - mask.height % 2) * mask.boxWidth() + column +
                                                   1 - mask.width % 2]);
        check(state->bitState);
    }
}

} // namespace

TEST(BitState, OfFourByTwoByHand) {
    const MorphMask mask = MorphMask::of({"#.##", "...#"});
    forBothObjects(mask, {17, 5}, 0, [&](const LumMorphBitState* state) {
        EXPECT_EQ(1, state->anchorX);
        EXPECT_EQ(0, state->anchorY);
        EXPECT_EQ(2, state->rightReach);
        EXPECT_EQ(1, state->bottomReach);
        EXPECT_EQ(32, state->bufferRowBytes);
        EXPECT_EQ(0, state->kind);
    });
}

TEST(BitState, HoldsMasksOfAllSizes) {
    for (int width = 1; width <= 12; ++width)
        for (int height = 1; height <= 9; ++height) {
            MorphMask mask = MorphMask::random(width, height, 11, 3);
            mask.cells.back() = 200;
            for (int roiWidth : {1, 16, 33})
                forBothObjects(mask, {roiWidth, 1}, (width + height) % 4, [&](const LumMorphBitState* state) {
                    expectState(state, mask, roiWidth, (width - 1) / 2, (height - 1) / 2);
                });
        }
}

TEST(BitState, EmptyMaskIsOfKindThree) {
    for (int width = 1; width <= 6; ++width)
        for (int height = 1; height <= 6; ++height) {
            const MorphMask mask = MorphMask::empty(width, height);
            forBothObjects(mask, {21, 4}, 1,
                           [&](const LumMorphBitState* state) { expectEmptyState(state, mask, 21); });
        }
}

TEST(BitState, NullComesBeforeSize) {
    const MorphMask mask = MorphMask::full(3, 3);
    GuardedImage<Lum8u> object(2000, 1);
    auto* spec = reinterpret_cast<LumMorphBitState*>(object.data());
    auto* longSpec = reinterpret_cast<LumMorphLongState*>(object.data());
    const Lum8u* cells = mask.cells.data();
    Lum8u buffer = 0;
    EXPECT_REFUSED(lumStatusNullPointer, object,
                   lumiMorphologyBorderInit_1u_C1R({0, 0}, nullptr, {0, 0}, spec, &buffer));
    EXPECT_REFUSED(lumStatusNullPointer, object,
                   lumiMorphologyBorderInit_1u_C1R({0, 0}, cells, {0, 0}, nullptr, &buffer));
    EXPECT_REFUSED(lumStatusNullPointer, object,
                   lumiMorphologyBorderInit_1u_C1R({0, 0}, cells, {0, 0}, spec, nullptr));
    for (auto init : {lumiErodeInit_L, lumiDilateInit_L}) {
        EXPECT_REFUSED(lumStatusNullPointer, object, init({0, 0}, nullptr, {0, 0}, longSpec));
        EXPECT_REFUSED(lumStatusNullPointer, object, init({0, 0}, cells, {0, 0}, nullptr));
    }
}

TEST(BitState, AnySideBelowOneIsSizeError) {
    const MorphMask mask = MorphMask::full(3, 3);
    GuardedImage<Lum8u> object(2000, 1);
    Lum8u buffer = 0;
    for (int side = 0; side < 4; ++side) {
        int sides[4] = {20, 10, 3, 3};
        sides[side] = -1;
        EXPECT_REFUSED(
            lumStatusSizeError, object,
            lumiMorphologyBorderInit_1u_C1R({sides[0], sides[1]}, mask.cells.data(), {sides[2], sides[3]},
                                            reinterpret_cast<LumMorphBitState*>(object.data()), &buffer));
        for (auto init : {lumiErodeInit_L, lumiDilateInit_L})
            EXPECT_REFUSED(lumStatusSizeError, object,
                           init({sides[0], sides[1]}, mask.cells.data(), {sides[2], sides[3]},
                                reinterpret_cast<LumMorphLongState*>(object.data())));
    }
}
