// The objects of morphology as they lie in caller memory. They are packed, because nothing aligns them: an object
// begins where the caller's block begins, and what it holds follows byte after byte.
#pragma once

#include <cstddef>
#include <cstdint>

#include "lumcv/morph_object.h"
#include "lumcv/types.h"

#pragma pack(push, 1)

/// A mask in its odd box, for elements of one byte and more; the three arrays follow in the same block.
struct LumMorphMaskRecord {
    /// The box, row after row: 255 for a set cell, 0 for others.
    Lum8u* cells;
    Lum32s width, height;
    Lum32s anchorX, anchorY;
    Lum32s boxWidth, boxHeight;
    /// For each row width + 1 entries: the number of set cells, then their columns. Of any address.
    Lum16u* rowLists;
    Lum32s rowsAreRuns;
    /// For each row the number of set cells and the first of them. Of any address.
    Lum16u* rowRuns;
    std::uint32_t shapeFlags;
    Lum32s isCross;
    Lum32s isKnownShape;
};

/// A mask of bit images; a copy of its bytes follows in the same block.
struct LumMorphBitState {
    Lum8u* cells;
    Lum8u* cellsForRows;
    Lum8u* cellsForColumns;
    Lum8u* reserved0;
    Lum8u* reserved1;
    Lum32s width, height;
    Lum32s anchorX, anchorY;
    Lum32s rightReach, bottomReach;
    Lum32s bufferRowBytes;
    Lum32s scratchBytes;
    Lum32s reserved2, reserved3;
    Lum32s roiWidth;
    Lum32s reserved4;
    Lum32s kind;
};

/// Both forms of a mask, for the members with pointer-wide sizes.
struct LumMorphLongState {
    LumMorphMaskRecord* maskRecord;
    LumMorphBitState* bitState;
};

/// The elements of the two stages of a compound operator. Each is a LumMorphMaskRecord, a LumMorphBitState or a
/// LumMorphLongState, as its Init and its runs agree.
struct LumMorphPairState {
    void* first;
    void* second;
    Lum8u* bitBuffer;
    Lum32s bitBufferBytes;
    Lum32s bitScratchBytes;
    void* reflected;
    Lum32s keepNegative;
    Lum32s reserved;
};

/// A mask of weights, which follow in the same block: Lum32s or Lum32f.
struct LumMorphGrayState {
    void* cells;
    Lum32s width, height;
    Lum32s anchorX, anchorY;
    Lum32s roiWidth, roiHeight;
};

#pragma pack(pop)

static_assert(
    sizeof(void*) != 4 ||
    (sizeof(LumMorphMaskRecord) == 52 && offsetof(LumMorphMaskRecord, width) == 4 &&
     offsetof(LumMorphMaskRecord, anchorX) == 12 && offsetof(LumMorphMaskRecord, boxWidth) == 20 &&
     offsetof(LumMorphMaskRecord, rowLists) == 28 && offsetof(LumMorphMaskRecord, rowsAreRuns) == 32 &&
     offsetof(LumMorphMaskRecord, rowRuns) == 36 && offsetof(LumMorphMaskRecord, shapeFlags) == 40 &&
     offsetof(LumMorphMaskRecord, isCross) == 44 && offsetof(LumMorphMaskRecord, isKnownShape) == 48));
static_assert(sizeof(void*) != 4 ||
              (sizeof(LumMorphBitState) == 72 && offsetof(LumMorphBitState, cellsForRows) == 4 &&
               offsetof(LumMorphBitState, cellsForColumns) == 8 &&
               offsetof(LumMorphBitState, reserved0) == 12 && offsetof(LumMorphBitState, reserved1) == 16 &&
               offsetof(LumMorphBitState, width) == 20 && offsetof(LumMorphBitState, anchorX) == 28 &&
               offsetof(LumMorphBitState, rightReach) == 36 &&
               offsetof(LumMorphBitState, bufferRowBytes) == 44 &&
               offsetof(LumMorphBitState, scratchBytes) == 48 &&
               offsetof(LumMorphBitState, reserved2) == 52 && offsetof(LumMorphBitState, roiWidth) == 60 &&
               offsetof(LumMorphBitState, reserved4) == 64 && offsetof(LumMorphBitState, kind) == 68));
static_assert(sizeof(void*) != 4 ||
              (sizeof(LumMorphLongState) == 8 && offsetof(LumMorphLongState, bitState) == 4));
static_assert(
    sizeof(void*) != 4 ||
    (sizeof(LumMorphPairState) == 32 && offsetof(LumMorphPairState, second) == 4 &&
     offsetof(LumMorphPairState, bitBuffer) == 8 && offsetof(LumMorphPairState, bitBufferBytes) == 12 &&
     offsetof(LumMorphPairState, bitScratchBytes) == 16 && offsetof(LumMorphPairState, reflected) == 20 &&
     offsetof(LumMorphPairState, keepNegative) == 24 && offsetof(LumMorphPairState, reserved) == 28));
static_assert(sizeof(void*) != 4 ||
              (sizeof(LumMorphGrayState) == 28 && offsetof(LumMorphGrayState, width) == 4 &&
               offsetof(LumMorphGrayState, anchorX) == 12 && offsetof(LumMorphGrayState, roiWidth) == 20));

namespace lum {

/// The bits of LumMorphMaskRecord::shapeFlags.
inline constexpr std::uint32_t shapeFullRectangle = 0x002;
inline constexpr std::uint32_t shapeEmpty = 0x004;
inline constexpr std::uint32_t shapeEmptyEdge = 0x008;
inline constexpr std::uint32_t shapeRowsAreRuns = 0x010;
inline constexpr std::uint32_t shapeCross = 0x020;
inline constexpr std::uint32_t shapeKnown = 0x100;
inline constexpr std::uint32_t shapeCross3x3 = 0x100;
inline constexpr std::uint32_t shapeDiamond5x5 = 0x300;
inline constexpr std::uint32_t shapeDisc7x7 = 0x500;

/// The values of LumMorphBitState::kind that runs know.
inline constexpr Lum32s bitKindGeneral = 0;
inline constexpr Lum32s bitKindEmpty = 3;

} // namespace lum
