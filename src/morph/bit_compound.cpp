#include "morph/bit_compound.h"

#include <algorithm>

#include "frame/instances.h"
#include "kernels/morph/bit_image.h"
#include "kernels/morph/bit_subtract.h"
#include "morph/bit_dilate_erode.h"
#include "morph/objects.h"
#include "morph/sizes.h"

namespace lum {
namespace {

using kernels::BitImage;
using kernels::MorphOp;
using kernels::OtherOperand;

/// One call, its arguments tested.
struct BitRun {
    BitImage<const Lum8u> src;
    BitImage<Lum8u> dst;
    LumSizeL roiSize;
    StageBorders borders;
    bool borderValue;
    const LumMorphBitState& first;
    const LumMorphBitState& second;
    Lum8u* buffer;

    template <class Byte>
    static BitImage<Byte> moved(BitImage<Byte> image, std::intptr_t rows, std::intptr_t columns) {
        return BitImage<Byte>::at(image.bytes.row(rows), image.bytes.step, image.bit + columns);
    }
    std::uintptr_t workBytes(LumSizeL size) const {
        const LumSizeL mask{first.width, first.height};
        return MorphSizes<std::uintptr_t>(size, mask).bitBufferBytes();
    }
    void stage(MorphOp op, BitImage<const Lum8u> from, BitImage<Lum8u> to, LumSizeL size,
               LumBorderType border, const LumMorphBitState& mask) const {
        const auto run =
            op == MorphOp::dilate ? runBitMorphology<MorphOp::dilate> : runBitMorphology<MorphOp::erode>;
        run(from, to, size, border, borderValue, mask, buffer);
    }
    void subtract(BitImage<const Lum8u> other, OtherOperand role) const {
        kernels::subtractBits(other, role, dst, roiSize.width, roiSize.height);
    }
};

/// Rows of whole bytes; the first pixel is bit 0 of the first.
BitImage<Lum8u> betweenStages(const BitRun& run, LumSizeL size, std::uintptr_t workBytes) {
    const auto step = roundedUp<std::intptr_t>((size.width + 7) >> 3, 32);
    return {{afterWorkArea(run.buffer, workBytes), step}, 0};
}

BitImage<const Lum8u> readable(BitImage<Lum8u> image) { return {image.bytes, image.bit}; }

void runInSuccession(const BitRun& run, const CompoundStages& stages) {
    const LumMorphBitState& mask = run.second;
    const StageMargins margins = marginsBetweenStages(
        run.borders.second, {mask.anchorY, mask.bottomReach, mask.anchorX, mask.rightReach});
    const LumSizeL size = widened(run.roiSize, margins);
    const auto between = betweenStages(run, size, std::max(run.workBytes(size), run.workBytes(run.roiSize)));
    run.stage(stages.first, BitRun::moved(run.src, -margins.top, -margins.left), between, size,
              run.borders.first, run.first);
    run.stage(stages.second, readable(BitRun::moved(between, margins.top, margins.left)), run.dst,
              run.roiSize, run.borders.second, run.second);
    if (stages.result == CompoundResult::sourceMinusSecond) run.subtract(run.src, OtherOperand::minuend);
    if (stages.result == CompoundResult::secondMinusSource) run.subtract(run.src, OtherOperand::subtrahend);
}

void runSideBySide(const BitRun& run, const CompoundStages& stages) {
    const auto between = betweenStages(run, run.roiSize, run.workBytes(run.roiSize));
    run.stage(stages.first, run.src, run.dst, run.roiSize, run.borders.first, run.first);
    run.stage(stages.second, run.src, between, run.roiSize, run.borders.second, run.second);
    run.subtract(readable(between), OtherOperand::subtrahend);
}

void runCompound(CompoundOp op, const BitRun& run) {
    const CompoundStages stages = stagesOf(op);
    if (stages.result == CompoundResult::firstMinusSecond)
        runSideBySide(run, stages);
    else
        runInSuccession(run, stages);
}

/// Offsets are tested with the sizes.
LumStatus checkImages(auto roiSize, auto srcStep, auto srcBitOffset, auto dstStep, auto dstBitOffset) {
    const std::int64_t bytesOfRow = (std::int64_t{roiSize.width} + 7) >> 3;
    return firstFailure(checkSize(roiSize), errorIf(srcBitOffset < 0 || dstBitOffset < 0, lumStatusSizeError),
                        checkStep(bytesOfRow, srcStep, dstStep));
}

/// The gradient dilates from the source to the destination.
LumStatus checkInPlace(CompoundOp op, const Lum8u* src, const Lum8u* dst) {
    return errorIf(op == CompoundOp::gradient && src == dst, lumStatusInPlaceNotSupported);
}

} // namespace

template <CompoundOp op>
LumStatus BitCompound<op>::border(const Lum8u* src, int srcStep, int srcBitOffset, Lum8u* dst, int dstStep,
                                  int dstBitOffset, LumSize roiSize, LumBorderType border, Lum8u borderValue,
                                  const LumMorphPairState* spec, Lum8u* buffer) {
    const bool isGradient = op == CompoundOp::gradient;
    const bool isKnownKind = isBitMorphKind(morphBorderKind(border));
    const StageBorders borders =
        isGradient ? gradientBorders(border, isKnownKind) : twoStageBorders(op, border, isKnownKind);
    if (auto s = firstFailure(checkNotNull(src, dst, spec, buffer),
                              checkImages(roiSize, srcStep, srcBitOffset, dstStep, dstBitOffset),
                              errorIf(!borders.accepted, lumStatusBorderError), checkInPlace(op, src, dst)))
        return s;
    const auto& first = *static_cast<const LumMorphBitState*>(spec->first);
    const auto& second = *static_cast<const LumMorphBitState*>(spec->second);
    runCompound(op, {BitImage<const Lum8u>::at(src, srcStep, srcBitOffset),
                     BitImage<Lum8u>::at(dst, dstStep, dstBitOffset),
                     {roiSize.width, roiSize.height},
                     borders,
                     borderValue != 0,
                     first,
                     isGradient ? first : second,
                     buffer});
    return lumStatusOk;
}

template <CompoundOp op>
LumStatus BitCompound<op>::borderLong(const Lum8u* src, std::intptr_t srcStep, std::intptr_t srcBitOffset,
                                      Lum8u* dst, std::intptr_t dstStep, std::intptr_t dstBitOffset,
                                      LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                      const LumMorphPairState* spec, Lum8u* buffer) {
    const StageBorders borders = longBorders(op, border, isBitMorphKind(morphBorderKind(border)));
    const LumStatus overflow = checkBelowLimit(roiSize, lumStatusSizeOverflow);
    const bool sizesFirst = op != CompoundOp::open && op != CompoundOp::close;
    if (auto s = firstFailure(sizesFirst ? overflow : LumStatus{lumStatusOk},
                              checkNotNull(src, dst, spec, buffer), constantMissing(border, borderValue),
                              checkImages(roiSize, srcStep, srcBitOffset, dstStep, dstBitOffset),
                              errorIf(!borders.accepted, lumStatusBorderError), overflow,
                              checkBelowLimit(roiSize, lumStatusSizeOverflow, srcStep, dstStep),
                              checkInPlace(op, src, dst)))
        return s;
    const auto& first = *static_cast<const LumMorphLongState*>(spec->first)->bitState;
    const auto& second = *static_cast<const LumMorphLongState*>(spec->second)->bitState;
    const bool isConstant = morphBorderKind(border) == lumBorderConstant;
    runCompound(op, {BitImage<const Lum8u>::at(src, srcStep, srcBitOffset),
                     BitImage<Lum8u>::at(dst, dstStep, dstBitOffset), roiSize, borders,
                     isConstant && *borderValue != 0, first, second, buffer});
    return lumStatusOk;
}

LUM_STRUCT_INSTANCES(BitCompound, (CompoundOp::open), (CompoundOp::close), (CompoundOp::tophat),
                     (CompoundOp::blackhat), (CompoundOp::gradient));

} // namespace lum
