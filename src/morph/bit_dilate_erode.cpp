#include "morph/bit_dilate_erode.h"

#include "frame/check.h"
#include "frame/instances.h"
#include "kernels/morph/bit_mask.h"
#include "morph/border.h"
#include "morph/objects.h"
#include "morph/sizes.h"

namespace lum {
namespace {

using kernels::BitImage;
using kernels::MorphOp;

/// The bytes that every work area has which was queried for this region or a larger one, by either query.
std::size_t certainBytes(LumSizeL roiSize, LumSizeL mask) {
    return static_cast<std::size_t>(MorphSizes<std::uint64_t>(roiSize, mask).bitBufferBytes());
}

LumStatus checkGeometry(auto roiSize, LumBorderType border, bool folds, auto srcStep, auto srcBitOffset,
                        auto dstStep, auto dstBitOffset) {
    const std::int64_t rowBytes = (static_cast<std::int64_t>(roiSize.width) + 7) >> 3;
    return firstFailure(checkSize(roiSize), errorIf(srcBitOffset < 0 || dstBitOffset < 0, lumStatusSizeError),
                        checkStep(rowBytes, srcStep, dstStep),
                        checkMorphBorder(border, folds ? withStagesFolded(border) : border,
                                         isBitMorphKind(morphBorderKind(border))));
}

} // namespace

template <MorphOp op>
void runBitMorphology(BitImage<const Lum8u> src, BitImage<Lum8u> dst, LumSizeL roiSize, LumBorderType border,
                      bool borderValue, const LumMorphBitState& mask, Lum8u* buffer) {
    if (mask.kind == bitKindEmpty) return kernels::copyBits(src, dst, roiSize.width, roiSize.height, buffer);
    if (mask.kind != bitKindGeneral) return;

    const LumBorderType kind = morphBorderKind(border);
    const Lum8u* const cells = op == MorphOp::dilate ? mask.cellsForColumns : mask.cellsForRows;
    kernels::joinUnderMask<op>(
        {src,
         dst,
         roiSize.width,
         roiSize.height,
         {cells, mask.width, mask.height, mask.anchorX, mask.anchorY},
         readableMargins(border, mask.anchorY, mask.bottomReach, mask.anchorX, mask.rightReach),
         kind == lumBorderReplicate ? kernels::Outside::repeat : kernels::Outside::fill,
         kind == lumBorderConstant ? borderValue : op == MorphOp::erode,
         buffer,
         certainBytes(roiSize, {mask.width, mask.height})});
}

template <MorphOp op>
LumStatus BitMorphology<op>::border(const Lum8u* src, int srcStep, int srcBitOffset, Lum8u* dst, int dstStep,
                                    int dstBitOffset, LumSize roiSize, LumBorderType border,
                                    Lum8u borderValue, const LumMorphBitState* spec, Lum8u* buffer) {
    constexpr bool folds = op == MorphOp::dilate;
    if (auto s =
            firstFailure(checkNotNull(src, dst, spec, buffer),
                         checkGeometry(roiSize, border, folds, srcStep, srcBitOffset, dstStep, dstBitOffset),
                         errorIf(src == dst, lumStatusInPlaceNotSupported)))
        return s;
    runBitMorphology<op>(BitImage<const Lum8u>::at(src, srcStep, srcBitOffset),
                         BitImage<Lum8u>::at(dst, dstStep, dstBitOffset), {roiSize.width, roiSize.height},
                         folds ? withStagesFolded(border) : border, borderValue != 0, *spec, buffer);
    return lumStatusOk;
}

template <MorphOp op>
LumStatus BitMorphology<op>::borderLong(const Lum8u* src, std::intptr_t srcStep, std::intptr_t srcBitOffset,
                                        Lum8u* dst, std::intptr_t dstStep, std::intptr_t dstBitOffset,
                                        LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                        const LumMorphLongState* spec, Lum8u* buffer) {
    if (auto s =
            firstFailure(checkNotNull(src, dst, spec, buffer),
                         checkGeometry(roiSize, border, true, srcStep, srcBitOffset, dstStep, dstBitOffset),
                         constantMissing(border, borderValue),
                         checkBelowLimit(roiSize, lumStatusSizeOverflow, srcStep, dstStep),
                         errorIf(src == dst, lumStatusInPlaceNotSupported)))
        return s;
    const bool isConstant = morphBorderKind(border) == lumBorderConstant;
    runBitMorphology<op>(BitImage<const Lum8u>::at(src, srcStep, srcBitOffset),
                         BitImage<Lum8u>::at(dst, dstStep, dstBitOffset), roiSize, withStagesFolded(border),
                         isConstant && *borderValue != 0, *spec->bitState, buffer);
    return lumStatusOk;
}

LUM_STRUCT_INSTANCES(BitMorphology, (MorphOp::dilate), (MorphOp::erode));

} // namespace lum
