#include "stats/norm.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "frame/check.h"

namespace lum {
namespace {

using kernels::NormKind;
using kernels::NormOf;
using kernels::NormTotals;
using kernels::Pixels;

/// The tests of every member but that of the channel: the steps of the images, their alignment, then the step of
/// the mask.
template <class T, int channels>
LumStatus failureOf(LumStatus pointers, LumSize roiSize, int maskStep, auto... imageSteps) {
    return firstFailure(
        pointers, sizeBelowOne(roiSize), stepBelow(rowBytes<T>(roiSize.width, channels), imageSteps...),
        stepMisaligned<T>(imageSteps...), stepBelow(rowBytes<Lum8u>(roiSize.width), maskStep));
}

/// The norm that a total stands for; a ratio of totals stands for the ratio of the norms.
template <NormKind kind> double normOfTotal(double total) {
    return kind == NormKind::l2 ? std::sqrt(total) : total;
}

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

template <NormKind kind, class T, int channels>
LumStatus writeNorm(const Pixels<T, channels>& src, Image<const Lum8u> mask, LumSize roiSize, Lum64f* value) {
    *value = normOfTotal<kind>(kernels::norm<kind>(NormOf::image, src, src, mask, roiSize).first);
    return lumStatusOk;
}

template <NormKind kind, class T, int channels>
LumStatus writeNormOfDifference(const Pixels<T, channels>& src1, const Pixels<T, channels>& src2,
                                Image<const Lum8u> mask, LumSize roiSize, Lum64f* value) {
    *value = normOfTotal<kind>(kernels::norm<kind>(NormOf::difference, src1, src2, mask, roiSize).first);
    return lumStatusOk;
}

template <NormKind kind, class T, int channels>
LumStatus writeRelativeNorm(const Pixels<T, channels>& src1, const Pixels<T, channels>& src2,
                            Image<const Lum8u> mask, LumSize roiSize, Lum64f* value) {
    return writeRelative<kind>(kernels::norm<kind>(NormOf::differenceAndSecond, src1, src2, mask, roiSize),
                               value);
}

} // namespace

template <NormKind kind, class T>
LumStatus MaskedNorm<kind, T>::image(const T* src, int srcStep, const Lum8u* mask, int maskStep,
                                     LumSize roiSize, Lum64f* value) {
    if (auto s = failureOf<T, 1>(nullPointer(src, mask, value), roiSize, maskStep, srcStep)) return s;
    return writeNorm<kind>(Pixels<T, 1>{{src, srcStep}}, {mask, maskStep}, roiSize, value);
}

template <NormKind kind, class T>
LumStatus MaskedNorm<kind, T>::imageChannel(const T* src, int srcStep, const Lum8u* mask, int maskStep,
                                            LumSize roiSize, int coi, Lum64f* value) {
    if (auto s = firstFailure(failureOf<T, 3>(nullPointer(src, mask, value), roiSize, maskStep, srcStep),
                              channelOutsideThree(coi)))
        return s;
    return writeNorm<kind>(Pixels<T, 3>{{src, srcStep}, coi - 1}, {mask, maskStep}, roiSize, value);
}

template <NormKind kind, class T>
LumStatus MaskedNorm<kind, T>::difference(const T* src1, int src1Step, const T* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value) {
    if (auto s = failureOf<T, 1>(nullPointer(src1, src2, mask, value), roiSize, maskStep, src1Step, src2Step))
        return s;
    return writeNormOfDifference<kind>(Pixels<T, 1>{{src1, src1Step}}, Pixels<T, 1>{{src2, src2Step}},
                                       {mask, maskStep}, roiSize, value);
}

template <NormKind kind, class T>
LumStatus MaskedNorm<kind, T>::differenceChannel(const T* src1, int src1Step, const T* src2, int src2Step,
                                                 const Lum8u* mask, int maskStep, LumSize roiSize, int coi,
                                                 Lum64f* value) {
    if (auto s = firstFailure(
            failureOf<T, 3>(nullPointer(src1, src2, mask, value), roiSize, maskStep, src1Step, src2Step),
            channelOutsideThree(coi)))
        return s;
    return writeNormOfDifference<kind>(Pixels<T, 3>{{src1, src1Step}, coi - 1},
                                       Pixels<T, 3>{{src2, src2Step}, coi - 1}, {mask, maskStep}, roiSize,
                                       value);
}

template <NormKind kind, class T>
LumStatus MaskedNorm<kind, T>::relative(const T* src1, int src1Step, const T* src2, int src2Step,
                                        const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value) {
    if (auto s = failureOf<T, 1>(nullPointer(src1, src2, mask, value), roiSize, maskStep, src1Step, src2Step))
        return s;
    return writeRelativeNorm<kind>(Pixels<T, 1>{{src1, src1Step}}, Pixels<T, 1>{{src2, src2Step}},
                                   {mask, maskStep}, roiSize, value);
}

template <NormKind kind, class T>
LumStatus MaskedNorm<kind, T>::relativeChannel(const T* src1, int src1Step, const T* src2, int src2Step,
                                               const Lum8u* mask, int maskStep, LumSize roiSize, int coi,
                                               Lum64f* value) {
    if (auto s = firstFailure(
            failureOf<T, 3>(nullPointer(src1, src2, mask, value), roiSize, maskStep, src1Step, src2Step),
            channelOutsideThree(coi)))
        return s;
    return writeRelativeNorm<kind>(Pixels<T, 3>{{src1, src1Step}, coi - 1},
                                   Pixels<T, 3>{{src2, src2Step}, coi - 1}, {mask, maskStep}, roiSize, value);
}

template struct MaskedNorm<NormKind::inf, Lum8u>;
template struct MaskedNorm<NormKind::inf, Lum16u>;
template struct MaskedNorm<NormKind::inf, Lum32f>;
template struct MaskedNorm<NormKind::l1, Lum8u>;
template struct MaskedNorm<NormKind::l1, Lum16u>;
template struct MaskedNorm<NormKind::l1, Lum32f>;
template struct MaskedNorm<NormKind::l2, Lum8u>;
template struct MaskedNorm<NormKind::l2, Lum16u>;
template struct MaskedNorm<NormKind::l2, Lum32f>;

} // namespace lum
