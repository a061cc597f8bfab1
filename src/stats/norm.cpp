#include "stats/norm.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "frame/check.h"
#include "frame/instances.h"

namespace lum {
namespace {

using kernels::MaskedTotals;
using kernels::NormKind;
using kernels::NormOf;
using kernels::NormTotals;
using kernels::Pixels;

/// The tests of every member: the steps of the images, their alignment, the step of the mask, and last the channel,
/// which in a single-channel member is the first.
template <class T, int channels>
LumStatus checkArguments(LumStatus pointers, LumSize roiSize, int maskStep, int coi, auto... imageSteps) {
    return firstFailure(pointers, checkSize(roiSize),
                        checkStep(rowBytes<T>(roiSize.width, channels), imageSteps...),
                        checkStepAlignment<T>(imageSteps...),
                        checkStep(rowBytes<Lum8u>(roiSize.width), maskStep), checkChannelOfInterest(coi));
}

/// The norm that a total is; a ratio of totals is the ratio of the norms.
template <NormKind kind> double normOfTotal(double total) {
    return kind == NormKind::l2 ? std::sqrt(total) : total;
}

/// The norm of the difference relative to that of the second image.
template <NormKind kind> LumStatus writeRelative(const NormTotals& totals, Lum64f* value) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double difference = totals.first;
    if (totals.second != 0) {
        *value = normOfTotal<kind>(difference / totals.second);
        return lumStatusOk;
    }
    if (difference > 0)
        *value = infinity;
    else if (difference < 0)
        *value = -infinity;
    else // 0, or NaN itself
        *value = std::bit_cast<double>(std::uint64_t{0xFFF8000000000000});
    return lumStatusZeroDenominator;
}

template <NormKind kind, int channels, class T>
LumStatus ofImage(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumSize roiSize, int coi,
                  Lum64f* value) {
    if (auto s = checkArguments<T, channels>(checkNotNull(src, mask, value), roiSize, maskStep, coi, srcStep))
        return s;
    const Pixels<T, channels> pixels{{src, srcStep}, coi - 1};
    const NormTotals totals =
        MaskedTotals<kind, T, channels>::vectors(NormOf::image, pixels, pixels, {mask, maskStep}, roiSize);
    *value = normOfTotal<kind>(totals.first);
    return lumStatusOk;
}

template <NormKind kind, NormOf of, int channels, class T>
LumStatus ofTwoImages(const T* src1, int src1Step, const T* src2, int src2Step, const Lum8u* mask,
                      int maskStep, LumSize roiSize, int coi, Lum64f* value) {
    if (auto s = checkArguments<T, channels>(checkNotNull(src1, src2, mask, value), roiSize, maskStep, coi,
                                             src1Step, src2Step))
        return s;
    const NormTotals totals = MaskedTotals<kind, T, channels>::vectors(
        of, {{src1, src1Step}, coi - 1}, {{src2, src2Step}, coi - 1}, {mask, maskStep}, roiSize);
    if constexpr (of == NormOf::differenceAndSecond) {
        return writeRelative<kind>(totals, value);
    } else {
        *value = normOfTotal<kind>(totals.first);
        return lumStatusOk;
    }
}

} // namespace

template <NormKind kind, class T>
LumStatus MaskedNorm<kind, T>::image(const T* src, int srcStep, const Lum8u* mask, int maskStep,
                                     LumSize roiSize, Lum64f* value) {
    return ofImage<kind, 1>(src, srcStep, mask, maskStep, roiSize, 1, value);
}

template <NormKind kind, class T>
LumStatus MaskedNorm<kind, T>::imageChannel(const T* src, int srcStep, const Lum8u* mask, int maskStep,
                                            LumSize roiSize, int coi, Lum64f* value) {
    return ofImage<kind, 3>(src, srcStep, mask, maskStep, roiSize, coi, value);
}

template <NormKind kind, class T>
LumStatus MaskedNorm<kind, T>::difference(const T* src1, int src1Step, const T* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value) {
    return ofTwoImages<kind, NormOf::difference, 1>(src1, src1Step, src2, src2Step, mask, maskStep, roiSize,
                                                    1, value);
}

template <NormKind kind, class T>
LumStatus MaskedNorm<kind, T>::differenceChannel(const T* src1, int src1Step, const T* src2, int src2Step,
                                                 const Lum8u* mask, int maskStep, LumSize roiSize, int coi,
                                                 Lum64f* value) {
    return ofTwoImages<kind, NormOf::difference, 3>(src1, src1Step, src2, src2Step, mask, maskStep, roiSize,
                                                    coi, value);
}

template <NormKind kind, class T>
LumStatus MaskedNorm<kind, T>::relative(const T* src1, int src1Step, const T* src2, int src2Step,
                                        const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value) {
    return ofTwoImages<kind, NormOf::differenceAndSecond, 1>(src1, src1Step, src2, src2Step, mask, maskStep,
                                                             roiSize, 1, value);
}

template <NormKind kind, class T>
LumStatus MaskedNorm<kind, T>::relativeChannel(const T* src1, int src1Step, const T* src2, int src2Step,
                                               const Lum8u* mask, int maskStep, LumSize roiSize, int coi,
                                               Lum64f* value) {
    return ofTwoImages<kind, NormOf::differenceAndSecond, 3>(src1, src1Step, src2, src2Step, mask, maskStep,
                                                             roiSize, coi, value);
}

LUM_STRUCT_INSTANCES(MaskedNorm, (NormKind::inf, Lum8u), (NormKind::inf, Lum16u), (NormKind::inf, Lum32f),
                     (NormKind::l1, Lum8u), (NormKind::l1, Lum16u), (NormKind::l1, Lum32f),
                     (NormKind::l2, Lum8u), (NormKind::l2, Lum16u), (NormKind::l2, Lum32f));

} // namespace lum
