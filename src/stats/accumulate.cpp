#include "stats/accumulate.h"

#include <cstdint>
#include <type_traits>

#include "frame/check.h"
#include "frame/image.h"
#include "frame/instances.h"
#include "frame/stores.h"
#include "kernels/stats/accumulate.h"
#include "kernels/stats/accumulate_weighted.h"

namespace lum {
namespace {

using kernels::AccumulateProducts;
using kernels::AccumulateSquares;
using kernels::AccumulateSum;
using kernels::AccumulateWeighted;

/// Bytes a pixel that the choice of stores counts: those of all images. The weighted sum of 8u counts
/// 5, though it streams 6. Other members have ordinary stores only.
template <class Rule, class T> constexpr int streamedBytes = 0;
template <> constexpr int streamedBytes<AccumulateProducts, Lum8u> = 7;
template <> constexpr int streamedBytes<AccumulateProducts, Lum16u> = 9;
template <> constexpr int streamedBytes<AccumulateProducts, Lum32f> = 13;
template <> constexpr int streamedBytes<AccumulateWeighted, Lum8u> = 5;
template <> constexpr int streamedBytes<AccumulateWeighted, Lum16u> = 7;
template <> constexpr int streamedBytes<AccumulateWeighted, Lum32f> = 9;

template <class Rule, class T> Stores chosenStores(LumSize roiSize) {
    if constexpr (streamedBytes<Rule, T> == 0)
        return Stores::ordinary;
    else
        return storesForBytes(wrappedBytes(streamedBytes<Rule, T>, roiSize));
}

constexpr LumStatus noMask = lumStatusOk;

LumStatus maskStepBelow(LumSize roiSize, int maskStep) {
    return checkStep(rowBytes<Lum8u>(roiSize.width), maskStep);
}

/// The tests of the steps: integer sources first, then the mask and the accumulator; with floats all
/// lengths, then all alignments.
template <class T>
LumStatus stepsFailure(LumSize roiSize, LumStatus ofMaskStep, int srcDstStep, auto... srcSteps) {
    const LumStatus shortSources = checkStep(rowBytes<T>(roiSize.width), srcSteps...);
    const LumStatus shortOthers =
        firstFailure(ofMaskStep, checkStep(rowBytes<Lum32f>(roiSize.width), srcDstStep));
    if constexpr (std::is_same_v<T, Lum32f>)
        return firstFailure(shortSources, shortOthers, checkStepAlignment<Lum32f>(srcSteps..., srcDstStep));
    else
        return firstFailure(shortSources, checkStepAlignment<T>(srcSteps...), shortOthers,
                            checkStepAlignment<Lum32f>(srcDstStep));
}

// Checks and work of all members of one source.

template <class Rule, class T>
LumStatus accumulated(Rule rule, const T* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumSize roiSize) {
    if (auto s = firstFailure(checkNotNull(src, srcDst), checkSize(roiSize),
                              stepsFailure<T>(roiSize, noMask, srcDstStep, srcStep)))
        return s;
    kernels::Accumulate<Rule, T>::vectors(rule, Image<const T>{src, srcStep}, {srcDst, srcDstStep}, roiSize);
    return lumStatusOk;
}

template <class Rule, class T>
LumStatus accumulatedMasked(Rule rule, const T* src, int srcStep, const Lum8u* mask, int maskStep,
                            Lum32f* srcDst, int srcDstStep, LumSize roiSize) {
    if (auto s =
            firstFailure(checkNotNull(src, mask, srcDst), checkSize(roiSize),
                         stepsFailure<T>(roiSize, maskStepBelow(roiSize, maskStep), srcDstStep, srcStep)))
        return s;
    kernels::Accumulate<Rule, T>::masked(rule, Image<const T>{src, srcStep}, {mask, maskStep},
                                         {srcDst, srcDstStep}, roiSize, chosenStores<Rule, T>(roiSize));
    return lumStatusOk;
}

} // namespace

template <class T> LumStatus add(const T* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumSize roiSize) {
    return accumulated(AccumulateSum{}, src, srcStep, srcDst, srcDstStep, roiSize);
}

template <class T>
LumStatus addMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                    int srcDstStep, LumSize roiSize) {
    return accumulatedMasked(AccumulateSum{}, src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize);
}

template <class T>
LumStatus addSquare(const T* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumSize roiSize) {
    return accumulated(AccumulateSquares{}, src, srcStep, srcDst, srcDstStep, roiSize);
}

template <class T>
LumStatus addSquareMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                          int srcDstStep, LumSize roiSize) {
    return accumulatedMasked(AccumulateSquares{}, src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize);
}

template <class T>
LumStatus addProduct(const T* src1, int src1Step, const T* src2, int src2Step, Lum32f* srcDst, int srcDstStep,
                     LumSize roiSize) {
    if (auto s = firstFailure(checkNotNull(src1, src2, srcDst), checkSize(roiSize),
                              stepsFailure<T>(roiSize, noMask, srcDstStep, src1Step, src2Step)))
        return s;
    kernels::Accumulate<AccumulateProducts, T>::vectors({}, {{src1, src1Step}, {src2, src2Step}},
                                                        {srcDst, srcDstStep}, roiSize);
    return lumStatusOk;
}

template <class T>
LumStatus addProductMasked(const T* src1, int src1Step, const T* src2, int src2Step, const Lum8u* mask,
                           int maskStep, Lum32f* srcDst, int srcDstStep, LumSize roiSize) {
    if (auto s = firstFailure(
            checkNotNull(src1, src2, mask, srcDst), checkSize(roiSize),
            stepsFailure<T>(roiSize, maskStepBelow(roiSize, maskStep), srcDstStep, src1Step, src2Step)))
        return s;
    kernels::Accumulate<AccumulateProducts, T>::masked({}, {{src1, src1Step}, {src2, src2Step}},
                                                       {mask, maskStep}, {srcDst, srcDstStep}, roiSize,
                                                       chosenStores<AccumulateProducts, T>(roiSize));
    return lumStatusOk;
}

template <class T>
LumStatus addWeighted(const T* src, int srcStep, Lum32f* srcDst, int srcDstStep, LumSize roiSize,
                      Lum32f alpha) {
    return accumulated(AccumulateWeighted{alpha}, src, srcStep, srcDst, srcDstStep, roiSize);
}

template <class T>
LumStatus addWeightedMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                            int srcDstStep, LumSize roiSize, Lum32f alpha) {
    return accumulatedMasked(AccumulateWeighted{alpha}, src, srcStep, mask, maskStep, srcDst, srcDstStep,
                             roiSize);
}

LumStatus addWeightedOutOfPlace(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                Lum32f* dst, int dstStep, LumSize roiSize, Lum32f alpha) {
    if (auto s = firstFailure(checkNotNull(src1, src2, dst), checkSize(roiSize),
                              checkStep(rowBytes<Lum32f>(roiSize.width), src1Step, src2Step, dstStep),
                              checkStepAlignment<Lum32f>(src1Step, src2Step, dstStep)))
        return s;
    kernels::weightedSum({src1, src1Step}, {src2, src2Step}, {dst, dstStep}, roiSize, alpha);
    return lumStatusOk;
}

LUM_INSTANCES(add, (Lum8u), (Lum16u));
LUM_INSTANCES(addMasked, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(addSquare, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(addSquareMasked, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(addProduct, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(addProductMasked, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(addWeighted, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(addWeightedMasked, (Lum8u), (Lum16u), (Lum32f));

} // namespace lum
