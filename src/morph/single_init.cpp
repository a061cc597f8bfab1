#include "morph/single_init.h"

#include "frame/arena.h"
#include "frame/check.h"
#include "frame/instances.h"
#include "morph/elements.h"
#include "morph/objects.h"
#include "morph/sizes.h"

namespace lum {

template <class T, int channels>
LumStatus morphologyBorderGetSize(LumSize roiSize, LumSize maskSize, Lum32s* specSize, Lum32s* bufferSize) {
    if (auto s = firstFailure(checkNotNull(specSize, bufferSize), checkSize(roiSize, maskSize))) return s;
    const QueriedMorphSizes sizes(roiSize, maskSize);
    *specSize = static_cast<Lum32s>(sizes.maskRecordBytes());
    *bufferSize = static_cast<Lum32s>(sizes.runBufferBytes(sizeof(T), channels));
    return lumStatusOk;
}

LumStatus morphologyBorderInit(LumSize roiSize, const Lum8u* mask, LumSize maskSize, LumMorphMaskRecord* spec,
                               Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(mask, spec, buffer), checkSize(roiSize, maskSize))) return s;
    buildMaskRecord(spec, mask, {maskSize.width, maskSize.height}, MaskPadding::before);
    return lumStatusOk;
}

LumStatus bitMorphologyBorderGetSize(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                     Lum32s* bufferSize) {
    if (auto s = firstFailure(checkNotNull(specSize, bufferSize), checkSize(roiSize, maskSize))) return s;
    const QueriedMorphSizes sizes(roiSize, maskSize);
    *specSize = static_cast<Lum32s>(sizes.bitStateBytes());
    *bufferSize = static_cast<Lum32s>(sizes.bitBufferBytes());
    return lumStatusOk;
}

LumStatus bitMorphologyBorderInit(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                  LumMorphBitState* spec, Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(mask, spec, buffer), checkSize(roiSize, maskSize))) return s;
    const LumSizeL size{maskSize.width, maskSize.height};
    buildBitState(spec, mask, size, upperLeftMiddle(size), roiSize.width);
    return lumStatusOk;
}

LumStatus erodeGetSpecSizeL(LumSizeL roiSize, LumSizeL maskSize, Lum32s* specSize) {
    if (auto s = firstFailure(checkNotNull(specSize), checkSize(roiSize, maskSize))) return s;
    *specSize = static_cast<Lum32s>(QueriedMorphSizes(roiSize, maskSize).longStateBytes());
    return lumStatusOk;
}

LumStatus erodeGetBufferSizeL(LumSizeL roiSize, LumSizeL maskSize, LumDataType type, int numChannels,
                              Lum32s* bufferSize) {
    if (auto s = firstFailure(checkNotNull(bufferSize), checkSize(roiSize, maskSize),
                              checkMorphElements(type, numChannels)))
        return s;
    const auto elementBytes = static_cast<std::uint32_t>(morphElementBytes(type));
    *bufferSize =
        static_cast<Lum32s>(QueriedMorphSizes(roiSize, maskSize)
                                .longBufferBytes(elementBytes, static_cast<std::uint32_t>(numChannels)));
    return lumStatusOk;
}

void buildLongState(LumMorphLongState* state, const Lum8u* mask, LumSizeL maskSize, std::intptr_t roiWidth) {
    Arena arena(state + 1);
    const MorphSizes<std::uintptr_t> sizes(LumSizeL{roiWidth, 1}, maskSize);
    state->maskRecord = arena.allocate<LumMorphMaskRecord>();
    state->bitState = reinterpret_cast<LumMorphBitState*>(
        Arena(state->maskRecord).skip(sizes.maskRecordBytes()).allocate<Lum8u>(0));
    buildMaskRecord(state->maskRecord, mask, maskSize, MaskPadding::before);
    buildBitState(state->bitState, mask, maskSize, upperLeftMiddle(maskSize), roiWidth);
}

LumStatus erodeInitL(LumSizeL roiSize, const Lum8u* mask, LumSizeL maskSize, LumMorphLongState* spec) {
    if (auto s = firstFailure(checkNotNull(mask, spec), checkSize(roiSize, maskSize))) return s;
    buildLongState(spec, mask, maskSize, roiSize.width);
    return lumStatusOk;
}

LumStatus dilateGetSpecSizeL(LumSizeL roiSize, LumSizeL maskSize, Lum32s* specSize) {
    return erodeGetSpecSizeL(roiSize, maskSize, specSize);
}

LumStatus dilateGetBufferSizeL(LumSizeL roiSize, LumSizeL maskSize, LumDataType type, int numChannels,
                               Lum32s* bufferSize) {
    return erodeGetBufferSizeL(roiSize, maskSize, type, numChannels, bufferSize);
}

LumStatus dilateInitL(LumSizeL roiSize, const Lum8u* mask, LumSizeL maskSize, LumMorphLongState* spec) {
    return erodeInitL(roiSize, mask, maskSize, spec);
}

LUM_INSTANCES(morphologyBorderGetSize, (Lum8u, 1), (Lum8u, 3), (Lum8u, 4), (Lum16u, 1), (Lum16s, 1),
              (Lum32f, 1), (Lum32f, 3), (Lum32f, 4));

} // namespace lum
