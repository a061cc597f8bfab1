#include "integral/haar_mixed.h"

#include "frame/check.h"
#include "frame/instances.h"
#include "integral/haar_apply.h"
#include "integral/haar_object.h"
#include "kernels/integral/haar.h"

namespace lum {
namespace {

/// The tests that all members share.
LumStatus checkArguments(const void* src, int srcStep, const void* tilt, int tiltStep, const void* norm,
                         int normStep, const void* mask, int maskStep, LumSize roiSize,
                         const Lum32s* positive, const LumHaarClassifier* spec) {
    return firstFailure(checkNotNull(src, tilt, norm, mask, positive, spec), checkSize(roiSize),
                        checkStep(rowBytes<Lum32s>(roiSize.width), srcStep, tiltStep, normStep),
                        checkStep(rowBytes<Lum8u>(roiSize.width), maskStep),
                        checkStepAlignment<Lum32s>(srcStep, tiltStep, normStep));
}

} // namespace

template <class Element>
LumStatus applyMixedHaarClassifier(const Element* src, int srcStep, const Element* tilt, int tiltStep,
                                   const Lum32f* norm, int normStep, Lum8u* mask, int maskStep,
                                   LumSize roiSize, Lum32s* positive, Lum32f threshold,
                                   const LumHaarClassifier* spec) {
    if (auto s = checkArguments(src, srcStep, tilt, tiltStep, norm, normStep, mask, maskStep, roiSize,
                                positive, spec))
        return s;
    const kernels::HaarMixedStage<Element, Lum32f> stage{
        {src, srcStep}, {tilt, tiltStep}, spec->classifierCount, spec->classifiers};
    *positive = kernels::applyHaar(kernels::HaarUnorderedAbove{}, stage,
                                   {{norm, normStep}, {mask, maskStep}, roiSize}, threshold,
                                   kernels::HaarDensity::unknown);
    return lumStatusOk;
}

LumStatus applyMixedHaarClassifierScaled(const Lum32s* src, int srcStep, const Lum32s* tilt, int tiltStep,
                                         const Lum32s* norm, int normStep, Lum8u* mask, int maskStep,
                                         LumSize roiSize, Lum32s* positive, Lum32s threshold,
                                         const LumHaarClassifier* spec, int scaleFactor) {
    if (auto s = firstFailure(checkArguments(src, srcStep, tilt, tiltStep, norm, normStep, mask, maskStep,
                                             roiSize, positive, spec),
                              errorIf(scaleFactor > 0, lumStatusBadArgument)))
        return s;
    const kernels::HaarMixedStage<Lum32s, Lum32s> stage{
        {src, srcStep}, {tilt, tiltStep}, spec->classifierCount, spec->classifiers};
    *positive = kernels::applyHaar(kernels::HaarIntegers{haarShift(scaleFactor)}, stage,
                                   {{norm, normStep}, {mask, maskStep}, roiSize}, threshold,
                                   kernels::HaarDensity::unknown);
    return lumStatusOk;
}

LUM_INSTANCES(applyMixedHaarClassifier, (Lum32f), (Lum32s));

} // namespace lum
