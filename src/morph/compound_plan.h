// What the compound operators have in common: their stages, the borders of the stages, and where the image between
// them lies.
#pragma once

#include <cstdint>

#include "frame/arena.h"
#include "frame/check.h"
#include "kernels/morph/operation.h"
#include "lumcv/border.h"
#include "lumcv/status.h"
#include "lumcv/types.h"
#include "morph/border.h"
#include "morph/objects.h"

namespace lum {

enum class CompoundOp { open, close, tophat, blackhat, gradient };

/// What is written in the end, of the source and of the results of the stages.
enum class CompoundResult { second, sourceMinusSecond, secondMinusSource, firstMinusSecond };

/// The second stage works on the result of the first, or, if the two are subtracted, on the source too.
struct CompoundStages {
    kernels::MorphOp first;
    kernels::MorphOp second;
    CompoundResult result;
};

constexpr CompoundStages stagesOf(CompoundOp op) {
    using kernels::MorphOp;
    switch (op) {
    case CompoundOp::open:
        return {MorphOp::erode, MorphOp::dilate, CompoundResult::second};
    case CompoundOp::close:
        return {MorphOp::dilate, MorphOp::erode, CompoundResult::second};
    case CompoundOp::tophat:
        return {MorphOp::erode, MorphOp::dilate, CompoundResult::sourceMinusSecond};
    case CompoundOp::blackhat:
        return {MorphOp::dilate, MorphOp::erode, CompoundResult::secondMinusSource};
    default:
        return {MorphOp::dilate, MorphOp::erode, CompoundResult::firstMinusSecond};
    }
}

/// Pixels on each side of a region.
struct StageMargins {
    std::intptr_t top, bottom, left, right;
};

/// The words that the stages run with, first-stage flags folded, and whether a word is accepted at all.
struct StageBorders {
    bool accepted;
    LumBorderType first;
    LumBorderType second;
};

/// The forms without _L. Memory is read by the first stage only, and flags of the first stage by a dilation only; all
/// four flags need no kind.
constexpr StageBorders twoStageBorders(CompoundOp op, LumBorderType border, bool isKnownKind) {
    const bool folds = stagesOf(op).first == kernels::MorphOp::dilate;
    const LumBorderType whole = folds ? withStagesFolded(border) : border;
    const bool fourSides = (border & lumBorderInMemory) == lumBorderInMemory && whole == lumBorderInMemory;
    return {border >= 0 && border <= largestMorphBorder && (isKnownKind || fourSides), whole & 0xFF,
            isKnownKind ? morphBorderKind(border) : LumBorderType{lumBorderDefaultValue}};
}

constexpr StageBorders gradientBorders(LumBorderType border, bool isKnownKind) {
    const bool kindOfGradient = isKnownKind && morphBorderKind(border) != lumBorderDefaultValue;
    return {border >= 0 && border <= 255 && (border == lumBorderInMemory || kindOfGradient), border, border};
}

/// The forms with _L. A flag of the second stage holds for both, one of the first stage for that alone; the four flags of
/// the second stage need no kind.
constexpr StageBorders longBorders(CompoundOp op, LumBorderType border, bool isKnownKind) {
    const LumBorderType both = border & lumBorderInMemory;
    const LumBorderType firstOnly = ((border & 0xF00) >> 4) & ~both;
    const bool fourSides = both == lumBorderInMemory && firstOnly == 0;
    const bool isKind = isMorphKind(morphBorderKind(border));
    const LumBorderType kind = isKind ? morphBorderKind(border) : LumBorderType{lumBorderDefaultValue};
    const bool accepted = border >= 0 && border <= largestMorphBorder && (isKind ? isKnownKind : fourSides);
    const bool fromSource = stagesOf(op).result == CompoundResult::firstMinusSecond;
    return {accepted, kind | both | (fromSource ? 0 : firstOnly), kind | both};
}

/// The sides on which the first stage gives what the second reads beyond the region.
constexpr StageMargins marginsBetweenStages(LumBorderType border, StageMargins reach) {
    return {(border & lumBorderInMemoryTop) != 0 ? reach.top : 0,
            (border & lumBorderInMemoryBottom) != 0 ? reach.bottom : 0,
            (border & lumBorderInMemoryLeft) != 0 ? reach.left : 0,
            (border & lumBorderInMemoryRight) != 0 ? reach.right : 0};
}

constexpr LumSizeL widened(LumSizeL size, StageMargins margins) {
    return {size.width + margins.left + margins.right, size.height + margins.top + margins.bottom};
}

/// The image between the stages lies after the work area of one stage, in a block that has twice that area.
inline Lum8u* afterWorkArea(Lum8u* buffer, std::uintptr_t workBytes) {
    return Arena(buffer).skip(workBytes).align(64).allocate<Lum8u>(0);
}

} // namespace lum
