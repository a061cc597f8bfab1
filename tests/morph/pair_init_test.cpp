#include <cstring>

#include "morph/masks.h"

using namespace support;

namespace {

constexpr LumSize region{20, 10};

Lum8u* bytesOf(void* pointer) { return static_cast<Lum8u*>(pointer); }

int recordBytes(const MorphMask& mask) {
    return mask.boxCells() + 96 + 2 * (2 * mask.boxWidth() + 2) * mask.boxHeight();
}

/// Cells of a record whose empty row and column lie before or after the given cells.
void expectCells(const LumMorphMaskRecord* record, const std::vector<Lum8u>& cells, LumSize size,
                 bool before) {
    const int width = size.width | 1, height = size.height | 1;
    ASSERT_EQ(width, record->width);
    ASSERT_EQ(height, record->height);
    ASSERT_EQ(width / 2, record->anchorX);
    ASSERT_EQ(height / 2, record->anchorY);
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column) {
            const int r = before ? row - (height - size.height) : row;
            const int c = before ? column - (width - size.width) : column;
            const bool inside = r >= 0 && r < size.height && c >= 0 && c < size.width;
            const bool set = inside && cells[static_cast<std::size_t>(r) * size.width + c] != 0;
            ASSERT_EQ(set ? 255 : 0, record->cells[row * width + column]) << row << "," << column;
        }
}

bool reflectsTheMaskAsGiven(const MorphObjectMember& member) {
    return member.type == lumType8u && member.channels != 3;
}

struct PairBlock {
    GuardedBlock object;
    GuardedBlock work;

    PairBlock(Lum32s specSize, Lum32s bufferSize, int spare = 0)
        : object(specSize, Guard::after, spare), work(bufferSize, Guard::after, spare) {}
    LumMorphPairState* get() { return object.as<LumMorphPairState>(); }
};

PairBlock blockFor(decltype(&lumiMorphAdvGetSize_1u_C1R) getSize, const MorphMask& mask,
                   LumSize roi = region) {
    Lum32s spec = 0, buffer = 0;
    EXPECT_STATUS(lumStatusOk, getSize(roi, mask.size(), &spec, &buffer));
    return {spec, buffer, 1};
}

struct LongPair {
    GuardedBlock object;

    explicit LongPair(const MorphMask& mask, LumSizeL roi = {20, 10}) : object(specSize(mask, roi)) {
        const std::vector<Lum8u> cells = mask.paddedCells(7);
        GuardedBlock array(cells.size());
        std::memcpy(array.as(), cells.data(), cells.size());
        EXPECT_STATUS(lumStatusOk, lumiMorphInit_L(roi, array.as(), mask.sizeL(), lumType8u, 1, get()));
    }
    LumMorphPairState* get() { return object.as<LumMorphPairState>(); }
    LumMorphPairState* operator->() { return get(); }

    static int specSize(const MorphMask& mask, LumSizeL roi) {
        Lum32s spec = 0;
        EXPECT_STATUS(lumStatusOk, lumiMorphGetSpecSize_L(roi, mask.sizeL(), lumType8u, 1, &spec));
        return spec;
    }
};

} // namespace

TEST(MorphPair, HoldsTheMaskAndItsReflection) {
    const MorphMask mask = MorphMask::of({"##.", "#..", "..."});
    for (const auto& member : morphObjectMembers()) {
        PairBlock block = blockFor(member.pairGetSize, mask);
        ASSERT_EQ(lumStatusOk,
                  member.pairInit(region, mask.cells.data(), mask.size(), block.get(), block.work.as()));
        expectCells(static_cast<LumMorphMaskRecord*>(block.get()->first), mask.cells, {3, 3}, true);
        expectCells(static_cast<LumMorphMaskRecord*>(block.get()->second),
                    MorphMask::of({"...", "..#", ".##"}).cells, {3, 3}, true);
    }
}

TEST(MorphPair, ElementsFollowTheHeaderASizeApart) {
    for (int width = 1; width <= 8; ++width)
        for (int height = 1; height <= 8; ++height) {
            const MorphMask mask = MorphMask::random(width, height, 5);
            const std::vector<Lum8u> cells = mask.paddedCells();
            for (const auto& member : morphObjectMembers()) {
                PairBlock block = blockFor(member.pairGetSize, mask);
                ASSERT_EQ(lumStatusOk,
                          member.pairInit(region, cells.data(), mask.size(), block.get(), block.work.as()));
                Lum8u* const first = block.object.as() + sizeof(LumMorphPairState);
                ASSERT_EQ(first, bytesOf(block.get()->first));
                ASSERT_EQ(first + recordBytes(mask), bytesOf(block.get()->second));
                ASSERT_EQ(block.get()->first,
                          static_cast<void*>(static_cast<LumMorphMaskRecord*>(block.get()->first)->cells -
                                             sizeof(LumMorphMaskRecord)));
            }
        }
}

TEST(MorphPair, ReflectionOfEvenMasksIsPaddedAfter) {
    for (int width = 1; width <= 8; ++width)
        for (int height = 1; height <= 8; ++height) {
            const MorphMask mask = MorphMask::random(width, height, 21);
            for (const auto& member : morphObjectMembers()) {
                if (!reflectsTheMaskAsGiven(member)) continue;
                PairBlock block = blockFor(member.pairGetSize, mask);
                // Not a byte beyond the mask is read.
                GuardedBlock array(mask.cells.size());
                std::memcpy(array.as(), mask.cells.data(), mask.cells.size());
                ASSERT_EQ(lumStatusOk,
                          member.pairInit(region, array.as(), mask.size(), block.get(), block.work.as()));
                expectCells(static_cast<LumMorphMaskRecord*>(block.get()->first), mask.cells, mask.size(),
                            true);
                expectCells(static_cast<LumMorphMaskRecord*>(block.get()->second), mask.reflected(),
                            mask.size(), false);
            }
        }
}

TEST(MorphPair, OtherTypesReflectTheBytesOfTheOddBox) {
    for (const auto& member : morphObjectMembers()) {
        if (reflectsTheMaskAsGiven(member)) continue;
        for (int width = 1; width <= 6; ++width)
            for (int height = 1; height <= 6; ++height) {
                const MorphMask mask = MorphMask::random(width, height, 31);
                std::vector<Lum8u> cells = mask.paddedCells();
                for (std::size_t i = mask.cells.size(); i < cells.size(); ++i) cells[i] = i % 2 == 0;
                PairBlock block = blockFor(member.pairGetSize, mask);
                ASSERT_EQ(lumStatusOk,
                          member.pairInit(region, cells.data(), mask.size(), block.get(), block.work.as()));
                expectCells(static_cast<LumMorphMaskRecord*>(block.get()->first), mask.cells, mask.size(),
                            true);
                const std::vector<Lum8u> reflected(cells.rbegin(), cells.rend());
                expectCells(static_cast<LumMorphMaskRecord*>(block.get()->second), reflected, mask.size(),
                            false);
            }
    }
}

TEST(MorphPair, InitLeavesOtherFieldsAndTheBuffer) {
    const MorphMask mask = MorphMask::full(3, 3);
    for (const auto& member : morphObjectMembers()) {
        PairBlock block = blockFor(member.pairGetSize, mask);
        const LumMorphPairState before = *block.get();
        const std::vector<Lum8u> work(block.work.as(), block.work.as() + block.work.size());
        ASSERT_EQ(lumStatusOk,
                  member.pairInit(region, mask.cells.data(), mask.size(), block.get(), block.work.as()));
        EXPECT_EQ(before.bitBuffer, block.get()->bitBuffer);
        EXPECT_EQ(before.reflected, block.get()->reflected);
        EXPECT_EQ(Lum32s{before.keepNegative}, Lum32s{block.get()->keepNegative});
        EXPECT_EQ(0, std::memcmp(work.data(), block.work.as(), work.size()));
    }
}

TEST(MorphBitPair, AnchorsOfTheReflectionAreReflected) {
    for (int width = 1; width <= 8; ++width)
        for (int height = 1; height <= 8; ++height) {
            MorphMask mask = MorphMask::random(width, height, 41);
            mask.cells[0] = 9;
            PairBlock block = blockFor(lumiMorphAdvGetSize_1u_C1R, mask);
            GuardedBlock array(mask.cells.size());
            std::memcpy(array.as(), mask.cells.data(), mask.cells.size());
            ASSERT_EQ(lumStatusOk,
                      lumiMorphAdvInit_1u_C1R(region, array.as(), mask.size(), block.get(), block.work.as()));
            auto* first = static_cast<LumMorphBitState*>(block.get()->first);
            auto* second = static_cast<LumMorphBitState*>(block.get()->second);
            Lum8u* const start = block.object.as() + sizeof(LumMorphPairState);
            ASSERT_EQ(start, bytesOf(first));
            ASSERT_EQ(start + (width * height + 15) / 16 * 16 + 96, bytesOf(second));
            ASSERT_EQ(0, std::memcmp(first->cells, mask.cells.data(), mask.cells.size()));
            ASSERT_EQ(0, std::memcmp(second->cells, mask.reflected().data(), mask.cells.size()));
            ASSERT_EQ((width - 1) / 2, first->anchorX);
            ASSERT_EQ((height - 1) / 2, first->anchorY);
            ASSERT_EQ(width / 2, second->anchorX);
            ASSERT_EQ(height / 2, second->anchorY);
            ASSERT_EQ(width - 1 - width / 2, second->rightReach);
            ASSERT_EQ(region.width + width - 1, first->roiWidth);
            ASSERT_EQ(region.width, second->roiWidth);
            ASSERT_EQ(block.get()->second, block.get()->reflected);
            ASSERT_EQ(0, block.get()->keepNegative);
        }
}

TEST(MorphBitPair, EmptyMaskHasTwoStatesOfKindThree) {
    const MorphMask mask = MorphMask::empty(4, 3);
    PairBlock block = blockFor(lumiMorphAdvGetSize_1u_C1R, mask);
    ASSERT_EQ(lumStatusOk,
              lumiMorphAdvInit_1u_C1R(region, mask.cells.data(), mask.size(), block.get(), block.work.as()));
    for (void* element : {block.get()->first, block.get()->second}) {
        EXPECT_EQ(3, static_cast<LumMorphBitState*>(element)->kind);
        EXPECT_EQ(0, static_cast<LumMorphBitState*>(element)->anchorX);
    }
}

TEST(MorphBitPair, ClearsAndKeepsTheThirdPartOfTheBuffer) {
    for (LumSize roi : {LumSize{20, 10}, LumSize{1, 1}, LumSize{33, 4}})
        for (int width : {1, 2, 5, 32})
            for (int height : {1, 4, 7}) {
                const MorphMask mask = MorphMask::full(width, height);
                Lum32s spec = 0, run = 0;
                ASSERT_EQ(lumStatusOk, lumiMorphologyBorderGetSize_1u_C1R(roi, mask.size(), &spec, &run));
                PairBlock block = blockFor(lumiMorphAdvGetSize_1u_C1R, mask, roi);
                const Lum8u pattern = block.work.as()[0];
                ASSERT_EQ(lumStatusOk, lumiMorphAdvInit_1u_C1R(roi, mask.cells.data(), mask.size(),
                                                               block.get(), block.work.as()));
                ASSERT_EQ(block.work.as() + 2 * run, block.get()->bitBuffer);
                ASSERT_EQ(run, block.get()->bitScratchBytes);
                const int bytes = (roi.height + height - 1) * ((roi.width + width + 30) / 32 * 32);
                ASSERT_EQ(bytes, block.get()->bitBufferBytes);
                for (std::size_t i = 0; i < block.work.size(); ++i) {
                    const bool cleared = i >= 2U * run && i < 2U * run + bytes;
                    ASSERT_EQ(cleared ? 0 : pattern, block.work.as()[i]) << i;
                }
            }
}

TEST(MorphLongPair, OddMasksHaveTheMaskAndItsReflection) {
    for (int width = 1; width <= 9; width += 2)
        for (int height = 1; height <= 9; height += 2) {
            MorphMask mask = MorphMask::random(width, height, 51);
            mask.cells[0] = 5;
            LongPair pair(mask);
            auto* first = static_cast<LumMorphLongState*>(pair->first);
            auto* second = static_cast<LumMorphLongState*>(pair->second);
            expectCells(first->maskRecord, mask.cells, mask.size(), true);
            expectCells(second->maskRecord, mask.reflected(), mask.size(), true);
            for (auto* state : {first, second}) {
                ASSERT_EQ(width, state->bitState->width);
                ASSERT_EQ(width / 2, state->bitState->anchorX);
                ASSERT_EQ(height / 2, state->bitState->anchorY);
                ASSERT_EQ(20 + width - 1, state->bitState->roiWidth);
            }
            ASSERT_EQ(0, std::memcmp(first->bitState->cells, mask.cells.data(), mask.cells.size()));
            ASSERT_EQ(0, std::memcmp(second->bitState->cells, mask.reflected().data(), mask.cells.size()));
            ASSERT_EQ(pair->second, pair->reflected);
            ASSERT_EQ(0, pair->keepNegative);
        }
}

TEST(MorphLongPair, ElementsLieTheSizeOfOneStageApart) {
    const MorphMask mask = MorphMask::full(5, 3);
    LongPair pair(mask);
    Lum32s element = 0;
    ASSERT_EQ(lumStatusOk, lumiErodeGetSpecSize_L({20 + 4, 10 + 2}, mask.sizeL(), &element));
    EXPECT_EQ(pair.object.as() + sizeof(LumMorphPairState), bytesOf(pair->first));
    EXPECT_EQ(bytesOf(pair->first) + element, bytesOf(pair->second));
}

TEST(MorphLongPair, EvenMaskIsReadWithOddSides) {
    for (int width = 1; width <= 6; ++width)
        for (int height = 1; height <= 6; ++height) {
            const MorphMask mask = MorphMask::random(width, height, 61);
            LongPair pair(mask);
            const MorphMask box{mask.boxWidth(), mask.boxHeight(), mask.paddedCells(7)};
            auto* first = static_cast<LumMorphLongState*>(pair->first);
            auto* second = static_cast<LumMorphLongState*>(pair->second);
            expectCells(first->maskRecord, box.cells, box.size(), true);
            ASSERT_EQ(box.width, first->bitState->width);
            expectCells(second->maskRecord, mask.reflected(), mask.size(), true);
            ASSERT_EQ(width, second->bitState->width);
            ASSERT_EQ(height, second->bitState->height);
        }
}

TEST(MorphLongPair, TypeAndChannelsAreTestedAfterSizes) {
    const MorphMask mask = MorphMask::full(3, 3);
    GuardedImage<Lum8u> object(4000, 1);
    auto* spec = reinterpret_cast<LumMorphPairState*>(object.data());
    const Lum8u* cells = mask.cells.data();
    EXPECT_REFUSED(lumStatusNullPointer, object, lumiMorphInit_L({0, 0}, nullptr, {0, 0}, 2, 2, spec));
    EXPECT_REFUSED(lumStatusNullPointer, object, lumiMorphInit_L({0, 0}, cells, {0, 0}, 2, 2, nullptr));
    for (int side = 0; side < 4; ++side) {
        int sides[4] = {20, 10, 3, 3};
        sides[side] = 0;
        EXPECT_REFUSED(lumStatusSizeError, object,
                       lumiMorphInit_L({sides[0], sides[1]}, cells, {sides[2], sides[3]}, 2, 2, spec));
    }
    for (LumDataType type : {-1, 2, 11, 19})
        EXPECT_REFUSED(lumStatusDataTypeError, object,
                       lumiMorphInit_L({20, 10}, cells, {3, 3}, type, 2, spec));
    for (int channels : {-1, 0, 2, 5})
        EXPECT_REFUSED(lumStatusChannelCountError, object,
                       lumiMorphInit_L({20, 10}, cells, {3, 3}, lumType16s, channels, spec));
}

TEST(MorphLongPair, TypeAndChannelsDoNotChangeTheObject) {
    const MorphMask mask = MorphMask::random(5, 5, 3);
    LongPair model(mask);
    for (LumDataType type : {lumType1u, lumType8u, lumType16u, lumType16s, lumType32f})
        for (int channels : {1, 3, 4}) {
            LongPair pair(mask);
            ASSERT_EQ(lumStatusOk,
                      lumiMorphInit_L({20, 10}, mask.cells.data(), mask.sizeL(), type, channels, pair.get()));
            const auto* a = static_cast<LumMorphLongState*>(model->second)->maskRecord;
            const auto* b = static_cast<LumMorphLongState*>(pair->second)->maskRecord;
            EXPECT_EQ(0, std::memcmp(a->cells, b->cells, 25));
        }
}

TEST(MorphPair, InitTestsNullThenSizes) {
    const MorphMask mask = MorphMask::full(3, 3);
    GuardedImage<Lum8u> object(1000, 1);
    auto* spec = reinterpret_cast<LumMorphPairState*>(object.data());
    const Lum8u* cells = mask.cells.data();
    Lum8u buffer = 0;
    std::vector<decltype(&lumiMorphAdvInit_1u_C1R)> inits = {lumiMorphAdvInit_1u_C1R};
    for (const auto& member : morphObjectMembers()) inits.push_back(member.pairInit);
    for (auto init : inits) {
        EXPECT_REFUSED(lumStatusNullPointer, object, init({0, 0}, nullptr, {0, 0}, spec, &buffer));
        EXPECT_REFUSED(lumStatusNullPointer, object, init({0, 0}, cells, {0, 0}, nullptr, &buffer));
        EXPECT_REFUSED(lumStatusNullPointer, object, init({0, 0}, cells, {0, 0}, spec, nullptr));
        for (int side = 0; side < 4; ++side) {
            int sides[4] = {20, 10, 3, 3};
            sides[side] = 0;
            EXPECT_REFUSED(lumStatusSizeError, object,
                           init({sides[0], sides[1]}, cells, {sides[2], sides[3]}, spec, &buffer));
        }
    }
}

TEST(MorphMode, BitsSelectTheSecondElementAndSigns) {
    LongPair pair(MorphMask::of({"##.", "...", "..."}));
    void* const first = pair->first;
    void* const second = pair->second;
    for (auto setMode : {lumiMorphSetMode, lumiMorphSetMode_L})
        for (int mode : {1, 4, 5, 0, 4, 1, 0}) {
            ASSERT_EQ(lumStatusOk, setMode(mode, pair.get()));
            EXPECT_EQ(mode % 2 == 1 ? first : second, pair->second);
            EXPECT_EQ(mode >= 4, pair->keepNegative);
            EXPECT_EQ(first, pair->first);
            EXPECT_EQ(second, pair->reflected);
        }
}

TEST(MorphMode, OtherModesChangeNothing) {
    LongPair pair(MorphMask::full(3, 3));
    const std::vector<Lum8u> before(pair.object.as(), pair.object.as() + pair.object.size());
    for (int mode : {2, 3, 6, 7, 8, -1, 1 << 31, 0x7FFFFFFF}) {
        EXPECT_STATUS(lumStatusModeError, lumiMorphSetMode(mode, pair.get()));
        EXPECT_STATUS(lumStatusNullPointer, lumiMorphSetMode_L(mode, nullptr));
        EXPECT_EQ(0, std::memcmp(before.data(), pair.object.as(), before.size()));
    }
}
