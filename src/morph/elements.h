// Building structuring elements: the mask record and the bit state, of which all objects of morphology consist.
#pragma once

#include "lumcv/types.h"
#include "morph/objects.h"

namespace lum {

/// The side on which a mask of even width or height gains an empty column or row.
enum class MaskPadding { before, after };

/// Analyses a mask of `size` cells into the record and the arrays that follow it.
void buildMaskRecord(LumMorphMaskRecord* record, const Lum8u* mask, LumSizeL size, MaskPadding padding);

/// Copies a mask of `size` cells to the bytes that follow the state; they may overlap it.
void buildBitState(LumMorphBitState* state, const Lum8u* mask, LumSizeL size, LumPointL anchor,
                   std::intptr_t roiWidth);

/// The middle cell of a mask, the upper left one of those nearest to it.
constexpr LumPointL upperLeftMiddle(LumSizeL size) { return {(size.width - 1) >> 1, (size.height - 1) >> 1}; }

} // namespace lum
