// Bytes of objects and work areas for a region and a mask.
#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "frame/arena.h"
#include "frame/check.h"
#include "lumcv/types.h"

namespace lum {

/// All sizes that follow from a region and a mask, in arithmetic that wraps with Word. Size queries use 32 bits.
template <class Word> struct MorphSizes {
    Word roiWidth, roiHeight, maskWidth, maskHeight;

    /// For LumSize and LumSizeL.
    template <class Size>
    constexpr MorphSizes(Size roi, Size mask)
        : roiWidth(static_cast<Word>(roi.width)),
          roiHeight(static_cast<Word>(roi.height)),
          maskWidth(static_cast<Word>(mask.width)),
          maskHeight(static_cast<Word>(mask.height)) {}

    /// The mask rounded up to odd sides.
    constexpr Word boxWidth() const { return maskWidth | 1; }
    constexpr Word boxHeight() const { return maskHeight | 1; }
    constexpr Word boxCells() const { return boxWidth() * boxHeight(); }

    /// The same mask on a larger region.
    constexpr MorphSizes widened(Word columns, Word rows) const {
        MorphSizes wider = *this;
        wider.roiWidth += columns;
        wider.roiHeight += rows;
        return wider;
    }
    /// The region with the margins that one stage reads, and with those of two stages.
    constexpr MorphSizes forOneStage() const { return widened(boxWidth() - 1, boxHeight() - 1); }
    constexpr MorphSizes forTwoStages() const { return widened(2 * boxWidth() - 2, 2 * boxHeight() - 2); }
    /// The odd box as the mask.
    constexpr MorphSizes ofBox() const {
        MorphSizes odd = *this;
        odd.maskWidth = boxWidth();
        odd.maskHeight = boxHeight();
        return odd;
    }

    constexpr Word maskRecordBytes() const {
        return boxCells() + 96 + 2 * (2 * boxWidth() + 2) * boxHeight();
    }

    /// The ring of rows of a run over elements of 1, 2 or 4 bytes.
    constexpr Word kernelLineBytes(Word elementBytes, Word channels) const {
        const Word pixel = elementBytes * channels;
        const Word slack = elementBytes == 2 ? 32 : 16 * elementBytes;
        return lineBytes(roiWidth * pixel) * boxHeight() + lineBytes(boxWidth() * pixel) + slack;
    }

    /// The part of a region, with its margins, that a run extends at a time.
    constexpr Word extensionElements() const {
        const Word right = boxWidth() - ((maskWidth & ~Word{1}) >> 1) - 1;
        const Word bottom = boxHeight() - ((maskHeight & ~Word{1}) >> 1) - 1;
        const Word extendedWidth = roiWidth + boxWidth() - 1;
        const Word extendedHeight = roiHeight + boxHeight() - 1;
        if (!below(boxWidth(), roiWidth) || !below(boxHeight(), roiHeight))
            return extendedWidth * extendedHeight;
        Word elements = bottom >= 1 ? extendedWidth * (bottom + boxHeight() - 1) : 0;
        if (right >= 1) elements = larger(elements, extendedHeight * (boxWidth() + right - 1));
        return elements;
    }

    constexpr Word runBufferBytes(Word elementBytes, Word channels) const {
        return lineBytes(extensionElements() * elementBytes * channels) +
               kernelLineBytes(elementBytes, channels) + 64;
    }

    /// What every run buffer has that was queried for this region or a larger one. A region that exceeds the mask may be
    /// asked less for than one that does not.
    constexpr Word certainRunBytes(Word elementBytes, Word channels) const {
        MorphSizes exceeding = *this;
        exceeding.roiWidth = larger(roiWidth, boxWidth() + 1);
        exceeding.roiHeight = larger(roiHeight, boxHeight() + 1);
        const Word here = runBufferBytes(elementBytes, channels);
        const Word there = exceeding.runBufferBytes(elementBytes, channels);
        return below(here, there) ? here : there;
    }

    /// The object of bit images and their work area.
    constexpr Word bitStateBytes() const { return roundedUp<Word>(maskWidth * maskHeight, 16) + 96; }
    constexpr Word bitWorkBytes() const {
        const Word lines = lineBytes((roiWidth + maskWidth - 1) * maskHeight) +
                           lineBytes(roiWidth) * maskHeight + lineBytes(maskWidth) + 32;
        const Word tables = maskHeight * 20 + (maskHeight * maskHeight + 1) * (roiWidth + 32) + 36;
        return larger(lines, tables) + roundedUp<Word>(maskHeight * 24, 16) +
               roundedUp<Word>(maskWidth * maskHeight, 16) + ((maskHeight * 16 + 63) & ~Word{15});
    }
    /// The query for the object that serves all element types gives the same, longBitBytes().
    constexpr Word bitBufferBytes() const {
        return larger(2 * maskHeight * roundedUp<Word>((roiWidth + maskWidth) * 4, 16) + 16, bitWorkBytes());
    }

    /// The object that serves all element types: what follows its mask record, the whole, and the work area of runs.
    constexpr Word longBitBytes() const {
        return larger((((maskWidth + roiWidth) * 8 + 30) & ~Word{31}) * maskHeight + 16, bitWorkBytes());
    }
    constexpr Word longStateBytes() const { return maskRecordBytes() + longBitBytes() + 8; }
    constexpr Word longBufferBytes(Word elementBytes, Word channels) const {
        return larger(runBufferBytes(elementBytes, channels), longBitBytes());
    }

    /// The image between two stages, with the margins of the mask.
    constexpr Word betweenStagesBytes(Word elementBytes, Word channels) const {
        return ((maskHeight & ~Word{1}) + roiHeight) *
               lineBytes(((maskWidth & ~Word{1}) + roiWidth) * elementBytes * channels);
    }

    /// Objects of two elements of the given size; the reflected mask is the last of them.
    constexpr Word pairBytes(Word elementStateBytes) const { return 2 * elementStateBytes + 32 + boxCells(); }
    constexpr Word longPairBytes() const { return pairBytes(forTwoStages().ofBox().longStateBytes()); }
    constexpr Word longPairBufferBytes(Word elementBytes, Word channels) const {
        const Word run = larger(longBufferBytes(elementBytes, channels),
                                larger(forOneStage().longBufferBytes(elementBytes, channels),
                                       forTwoStages().longBufferBytes(elementBytes, channels)));
        const MorphSizes all = forTwoStages();
        return 2 * run + all.roiHeight * lineBytes(all.roiWidth * channels * elementBytes);
    }

  private:
    static constexpr Word lineBytes(Word bytes) { return roundedUp<Word>(bytes, 32); }
    /// Comparisons are those of signed numbers.
    static constexpr bool below(Word a, Word b) {
        return static_cast<std::make_signed_t<Word>>(a) < static_cast<std::make_signed_t<Word>>(b);
    }
    static constexpr Word larger(Word a, Word b) { return below(a, b) ? b : a; }
};

using QueriedMorphSizes = MorphSizes<std::uint32_t>;

/// Bytes of an element; lines of bit images are as wide as those of bytes.
constexpr int morphElementBytes(LumDataType type) {
    return type == lumType32f ? 4 : type == lumType16u || type == lumType16s ? 2 : 1;
}

constexpr LumStatus checkMorphElements(LumDataType type, Lum32s numChannels) {
    const bool known = type == lumType1u || type == lumType8u || type == lumType16u || type == lumType16s ||
                       type == lumType32f;
    return firstFailure(
        errorIf(!known, lumStatusDataTypeError),
        errorIf(numChannels != 1 && numChannels != 3 && numChannels != 4, lumStatusChannelCountError));
}

} // namespace lum
