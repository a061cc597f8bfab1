#include "integral/haar_apply.h"

#include <cstdint>

#include "frame/check.h"
#include "integral/haar_object.h"
#include "kernels/integral/haar.h"

namespace lum {
namespace {

using kernels::HaarDensity;

/// The tests that all members share, up to the alignment of the steps.
LumStatus checkArguments(const void* src, int srcStep, const void* norm, int normStep, const void* mask,
                         int maskStep, LumSize roiSize, const Lum32s* positive,
                         const LumHaarClassifier* spec) {
    return firstFailure(checkNotNull(src, norm, mask, positive, spec), checkSize(roiSize),
                        checkStep(rowBytes<Lum32s>(roiSize.width), srcStep, normStep),
                        checkStep(rowBytes<Lum8u>(roiSize.width), maskStep),
                        checkStepAlignment<Lum32s>(srcStep, normStep));
}

/// By width x height / positive, in whole numbers. Only the first of the forms of 32f has one between the two.
HaarDensity densityOf(LumSize roiSize, Lum32s positive, bool withMiddle) {
    const std::int64_t area = static_cast<std::int64_t>(roiSize.width) * roiSize.height;
    if (positive < 0 || area < std::int64_t{4} * positive) return HaarDensity::dense;
    return withMiddle && area < std::int64_t{8} * positive ? HaarDensity::middle : HaarDensity::sparse;
}

} // namespace

LumStatus applyHaarClassifier(const Lum32f* src, int srcStep, const Lum32f* norm, int normStep, Lum8u* mask,
                              int maskStep, LumSize roiSize, Lum32s* positive, Lum32f threshold,
                              LumHaarClassifier* spec) {
    if (auto s = checkArguments(src, srcStep, norm, normStep, mask, maskStep, roiSize, positive, spec))
        return s;
    if (auto s = checkNotNull(spec->scratch)) return s;
    const kernels::HaarTables tables = rebuildHaarTables(*spec, srcStep);
    if (*positive == 0) return lumStatusOk;
    const kernels::HaarTableStage stage{{src, srcStep}, tables};
    const kernels::HaarRegion<Lum32f> region{{norm, normStep}, {mask, maskStep}, roiSize};
    const bool negated = spec->firstWeightMinusOne != 0;
    const HaarDensity density = densityOf(roiSize, *positive, negated);
    *positive = negated
                    ? kernels::applyHaar(kernels::HaarWithNegatedFirst{}, stage, region, threshold, density)
                    : kernels::applyHaar(kernels::HaarWithWeightedFirst{}, stage, region, threshold, density);
    return lumStatusOk;
}

LumStatus applyHaarClassifierToIntegers(const Lum32s* src, int srcStep, const Lum32f* norm, int normStep,
                                        Lum8u* mask, int maskStep, LumSize roiSize, Lum32s* positive,
                                        Lum32f threshold, LumHaarClassifier* spec) {
    if (auto s = checkArguments(src, srcStep, norm, normStep, mask, maskStep, roiSize, positive, spec))
        return s;
    if (auto s = checkNotNull(spec->scratch)) return s;
    const kernels::HaarOffsets* offsets = rebuildHaarOffsets(*spec, srcStep);
    if (*positive == 0) return lumStatusOk;
    const kernels::HaarRecordStage<Lum32f> stage{
        {src, srcStep}, spec->classifierCount, spec->classifiers, offsets};
    *positive = kernels::applyHaar(kernels::HaarUnorderedAbove{}, stage,
                                   {{norm, normStep}, {mask, maskStep}, roiSize}, threshold,
                                   densityOf(roiSize, *positive, false));
    return lumStatusOk;
}

LumStatus applyHaarClassifierScaled(const Lum32s* src, int srcStep, const Lum32s* norm, int normStep,
                                    Lum8u* mask, int maskStep, LumSize roiSize, Lum32s* positive,
                                    Lum32s threshold, LumHaarClassifier* spec, int scaleFactor) {
    if (auto s = firstFailure(
            checkArguments(src, srcStep, norm, normStep, mask, maskStep, roiSize, positive, spec),
            errorIf(scaleFactor > 0, lumStatusBadArgument)))
        return s;
    if (auto s = checkNotNull(spec->scratch)) return s;
    const kernels::HaarOffsets* offsets = rebuildHaarOffsets(*spec, srcStep);
    if (*positive == 0) return lumStatusOk;
    const kernels::HaarRecordStage<Lum32s> stage{
        {src, srcStep}, spec->classifierCount, spec->classifiers, offsets};
    *positive = kernels::applyHaar(kernels::HaarIntegers{haarShift(scaleFactor)}, stage,
                                   {{norm, normStep}, {mask, maskStep}, roiSize}, threshold,
                                   densityOf(roiSize, *positive, false));
    return lumStatusOk;
}

} // namespace lum
