#include "morph/pair_init.h"

#include <cstring>
#include <type_traits>

#include "frame/arena.h"
#include "frame/check.h"
#include "frame/instances.h"
#include "morph/elements.h"
#include "morph/objects.h"
#include "morph/single_init.h"
#include "morph/sizes.h"

namespace lum {
namespace {

using Sizes = MorphSizes<std::uintptr_t>;

/// Where the pieces of an object lie: the elements after the header, at equal distances, and the reflected mask in the
/// last bytes, which are those after the second element wherever pointers take 4 bytes.
template <class Element> struct PairParts {
    Element* first;
    Element* second;
    Lum8u* reflectedMask;

    PairParts(LumMorphPairState* spec, const Sizes& sizes, std::size_t elementBytes) {
        first = reinterpret_cast<Element*>(spec + 1);
        second = reinterpret_cast<Element*>(Arena(first).skip(elementBytes).template allocate<Lum8u>(0));
        reflectedMask =
            Arena(spec).skip(sizes.pairBytes(elementBytes) - sizes.boxCells()).template allocate<Lum8u>(0);
    }
};

void reflectMask(const Lum8u* mask, std::size_t count, Lum8u* reflected) {
    for (std::size_t i = 0; i < count; ++i) reflected[i] = mask[count - 1 - i];
}

LumStatus checkInit(LumSize roiSize, const Lum8u* mask, LumSize maskSize, const LumMorphPairState* spec,
                    const Lum8u* buffer) {
    return firstFailure(checkNotNull(mask, spec, buffer), checkSize(roiSize, maskSize));
}

} // namespace

template <class T, int channels>
LumStatus AdvancedMorphology<T, channels>::getSize(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                                   Lum32s* bufferSize) {
    if (auto s = firstFailure(checkNotNull(specSize, bufferSize), checkSize(roiSize, maskSize))) return s;
    const QueriedMorphSizes sizes(roiSize, maskSize);
    *specSize = static_cast<Lum32s>(sizes.pairBytes(sizes.maskRecordBytes()));
    *bufferSize = static_cast<Lum32s>(2 * sizes.runBufferBytes(sizeof(T), channels) +
                                      sizes.betweenStagesBytes(sizeof(T), channels));
    return lumStatusOk;
}

template <class T, int channels>
LumStatus AdvancedMorphology<T, channels>::init(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                                LumMorphPairState* spec, Lum8u* buffer) {
    if (auto s = checkInit(roiSize, mask, maskSize, spec, buffer)) return s;
    const Sizes sizes(roiSize, maskSize);
    const LumSizeL size{maskSize.width, maskSize.height};
    // The bytes that are reflected: for most types those of the odd box, so that a mask of even size is read beyond
    // its end.
    constexpr bool ofMaskAsGiven = std::is_same_v<T, Lum8u> && channels != 3;
    const std::size_t count = ofMaskAsGiven ? sizes.maskWidth * sizes.maskHeight : sizes.boxCells();
    const PairParts<LumMorphMaskRecord> parts(spec, sizes, sizes.maskRecordBytes());
    buildMaskRecord(parts.first, mask, size, MaskPadding::before);
    reflectMask(mask, count, parts.reflectedMask);
    buildMaskRecord(parts.second, parts.reflectedMask, size, MaskPadding::after);
    spec->first = parts.first;
    spec->second = parts.second;
    return lumStatusOk;
}

LumStatus AdvancedBitMorphology::getSize(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                         Lum32s* bufferSize) {
    if (auto s = firstFailure(checkNotNull(specSize, bufferSize), checkSize(roiSize, maskSize))) return s;
    const QueriedMorphSizes sizes(roiSize, maskSize);
    *specSize = static_cast<Lum32s>(sizes.pairBytes(sizes.bitStateBytes()));
    *bufferSize = static_cast<Lum32s>(2 * sizes.bitBufferBytes() + sizes.betweenStagesBytes(1, 1));
    return lumStatusOk;
}

LumStatus AdvancedBitMorphology::init(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                      LumMorphPairState* spec, Lum8u* buffer) {
    if (auto s = checkInit(roiSize, mask, maskSize, spec, buffer)) return s;
    const Sizes sizes(roiSize, maskSize);
    const LumSizeL size{maskSize.width, maskSize.height};
    const PairParts<LumMorphBitState> parts(spec, sizes, sizes.bitStateBytes());
    const std::uintptr_t extendedWidth = sizes.roiWidth + sizes.maskWidth - 1;
    buildBitState(parts.first, mask, size, upperLeftMiddle(size), static_cast<std::intptr_t>(extendedWidth));
    const LumPointL anchor{size.width - 1 - parts.first->anchorX, size.height - 1 - parts.first->anchorY};
    reflectMask(mask, sizes.maskWidth * sizes.maskHeight, parts.reflectedMask);
    buildBitState(parts.second, parts.reflectedMask, size, anchor, roiSize.width);
    spec->first = parts.first;
    spec->second = spec->reflected = parts.second;
    spec->keepNegative = 0;

    const std::uintptr_t rowBytes = (extendedWidth + 31) & ~std::uintptr_t{31};
    const std::uintptr_t bitBytes = (sizes.roiHeight + sizes.maskHeight - 1) * rowBytes;
    const std::uintptr_t stageBytes = sizes.bitBufferBytes();
    spec->bitBuffer = Arena(buffer).skip(2 * stageBytes).allocate<Lum8u>(0);
    spec->bitBufferBytes = static_cast<Lum32s>(bitBytes);
    spec->bitScratchBytes = static_cast<Lum32s>(stageBytes);
    std::memset(spec->bitBuffer, 0, bitBytes);
    return lumStatusOk;
}

LumStatus morphGetSpecSizeL(LumSizeL roiSize, LumSizeL maskSize, LumDataType type, int numChannels,
                            Lum32s* specSize) {
    if (auto s = firstFailure(checkNotNull(specSize), checkSize(roiSize, maskSize),
                              checkMorphElements(type, numChannels)))
        return s;
    *specSize = static_cast<Lum32s>(QueriedMorphSizes(roiSize, maskSize).longPairBytes());
    return lumStatusOk;
}

LumStatus morphGetBufferSizeL(LumSizeL roiSize, LumSizeL maskSize, LumDataType type, int numChannels,
                              Lum32s* bufferSize) {
    if (auto s = firstFailure(checkNotNull(bufferSize), checkSize(roiSize, maskSize),
                              checkMorphElements(type, numChannels)))
        return s;
    const auto elementBytes = static_cast<std::uint32_t>(morphElementBytes(type));
    *bufferSize =
        static_cast<Lum32s>(QueriedMorphSizes(roiSize, maskSize)
                                .longPairBufferBytes(elementBytes, static_cast<std::uint32_t>(numChannels)));
    return lumStatusOk;
}

LumStatus morphInitL(LumSizeL roiSize, const Lum8u* mask, LumSizeL maskSize, LumDataType type,
                     int numChannels, LumMorphPairState* spec) {
    if (auto s = firstFailure(checkNotNull(mask, spec), checkSize(roiSize, maskSize),
                              checkMorphElements(type, numChannels)))
        return s;
    // The query has room for elements on the region with the margins of two stages; those of one stage are enough.
    const Sizes sizes = Sizes(roiSize, maskSize).forOneStage().ofBox();
    const LumSizeL box{maskSize.width | 1, maskSize.height | 1};
    const auto stageWidth = static_cast<std::intptr_t>(sizes.roiWidth);
    const PairParts<LumMorphLongState> parts(spec, sizes, sizes.longStateBytes());
    buildLongState(parts.first, mask, box, stageWidth);
    const auto count = static_cast<std::size_t>(maskSize.width * maskSize.height);
    reflectMask(mask, count, parts.reflectedMask);
    buildLongState(parts.second, parts.reflectedMask, maskSize, stageWidth);
    spec->first = parts.first;
    spec->second = spec->reflected = parts.second;
    spec->keepNegative = 0;
    return lumStatusOk;
}

LumStatus morphSetMode(int mode, LumMorphPairState* spec) {
    constexpr int sameForBoth = 1, keepNegative = 4;
    const bool known = (mode & ~(sameForBoth | keepNegative)) == 0;
    if (auto s = firstFailure(checkNotNull(spec), errorIf(!known, lumStatusModeError))) return s;
    spec->second = (mode & sameForBoth) != 0 ? spec->first : spec->reflected;
    spec->keepNegative = (mode & keepNegative) != 0;
    return lumStatusOk;
}

LUM_STRUCT_INSTANCES(AdvancedMorphology, (Lum8u, 1), (Lum8u, 3), (Lum8u, 4), (Lum16u, 1), (Lum16s, 1),
                     (Lum32f, 1), (Lum32f, 3), (Lum32f, 4));

} // namespace lum
