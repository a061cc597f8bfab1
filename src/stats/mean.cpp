#include "stats/mean.h"

#include <cmath>
#include <cstdint>
#include <type_traits>

#include "frame/check.h"
#include "frame/convert.h"
#include "frame/image.h"
#include "frame/instances.h"
#include "kernels/stats/mean.h"

namespace lum {
namespace {

using kernels::DeviationsOf;
using kernels::Pixels;
using kernels::RegionSums;
using kernels::SumsOf;

/// Of no pixels, 0.
Lum64f quotient(Lum64f total, std::int64_t count) {
    return count == 0 ? 0.0 : total / static_cast<Lum64f>(count);
}

template <class T> Lum64f meanOf(const RegionSums<T>& region) {
    return quotient(static_cast<Lum64f>(region.sum), region.count);
}

/// The sum of p x p. The squares of 16u are those of p - 32768, and become others while they are integers:
/// terms may exceed 63 bits where the result does not.
template <class T> Lum64f squaresOf(const RegionSums<T>& region) {
    if constexpr (std::is_same_v<T, Lum16u>) {
        const auto squares = static_cast<std::uint64_t>(region.squares);
        const auto sum = static_cast<std::uint64_t>(region.sum);
        const auto count = static_cast<std::uint64_t>(region.count);
        return static_cast<Lum64f>(static_cast<std::int64_t>(squares + (sum << 16) - (count << 30)));
    } else {
        return static_cast<Lum64f>(region.squares);
    }
}

/// Whether a variance is so small beside the squared mean that the difference which gave it has cancelled.
bool hasCancelled(Lum64f variance, Lum64f mean) { return 0.05 * mean * mean > variance; }

/// Writes what is asked for. Of floats, deviations(centre) gives the sum of their squared distances to a
/// centre.
template <class T, class Deviations>
void writeMeanStdDev(const RegionSums<T>& region, Lum64f* mean, Lum64f* stdDev, Deviations deviations) {
    const Lum64f average = meanOf(region);
    if (mean != nullptr) *mean = average;
    if (stdDev == nullptr) return;

    // Rounding may make the difference slightly negative.
    const Lum64f difference = quotient(squaresOf(region), region.count) - average * average;
    Lum64f deviation = std::sqrt(std::fabs(difference));
    if constexpr (std::is_same_v<T, Lum32f>) {
        if (hasCancelled(deviation * deviation, average))
            deviation = std::sqrt(quotient(deviations(nearestFloat(average)), region.count));
    }
    *stdDev = deviation;
}

/// All checks have passed.
template <class T, int channels>
LumStatus findMeanStdDev(const Pixels<T, channels>& src, LumSize roiSize, Lum64f* mean, Lum64f* stdDev) {
    if (mean == nullptr && stdDev == nullptr) return lumStatusOk;
    RegionSums<T> region = SumsOf<T, channels>::vectors(src, roiSize);
    // The count is a product as wide as a pointer: of 32 bits it wraps, which the sums do not.
    region.count = static_cast<std::ptrdiff_t>(static_cast<std::size_t>(roiSize.width) * roiSize.height);
    writeMeanStdDev(region, mean, stdDev, [&](Lum32f centre) {
        if constexpr (std::is_same_v<T, Lum32f>) return DeviationsOf<channels>::vectors(src, roiSize, centre);
    });
    return lumStatusOk;
}

template <class T, int channels>
LumStatus findMeanStdDev(const Pixels<T, channels>& src, Image<const Lum8u> mask, LumSize roiSize,
                         Lum64f* mean, Lum64f* stdDev) {
    if (mean == nullptr && stdDev == nullptr) return lumStatusOk;
    writeMeanStdDev(SumsOf<T, channels>::masked(src, mask, roiSize), mean, stdDev, [&](Lum32f centre) {
        if constexpr (std::is_same_v<T, Lum32f>)
            return DeviationsOf<channels>::masked(src, mask, roiSize, centre);
    });
    return lumStatusOk;
}

} // namespace

template <class T>
LumStatus meanMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumSize roiSize,
                     Lum64f* mean) {
    const auto shortSource = checkStep(rowBytes<T>(roiSize.width), srcStep);
    const auto shortMask = checkStep(rowBytes<Lum8u>(roiSize.width), maskStep);
    const auto misaligned = checkStepAlignment<T>(srcStep);
    // 32f tests the alignment last, the others each image by itself.
    const auto steps = std::is_same_v<T, Lum32f> ? firstFailure(shortSource, shortMask, misaligned)
                                                 : firstFailure(shortSource, misaligned, shortMask);
    if (auto s = firstFailure(checkNotNull(src, mask, mean), checkSize(roiSize), steps)) return s;
    *mean = meanOf(SumsOf<T, 1>::maskedWithoutSquares({{src, srcStep}}, {mask, maskStep}, roiSize));
    return lumStatusOk;
}

template <class T>
LumStatus meanOfChannelMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumSize roiSize,
                              Lum32s coi, Lum64f* mean) {
    if (auto s =
            firstFailure(checkNotNull(src, mask, mean), checkSize(roiSize),
                         checkStep(rowBytes<T>(roiSize.width, 3), srcStep), checkStepAlignment<T>(srcStep),
                         checkStep(rowBytes<Lum8u>(roiSize.width), maskStep), checkChannelOfInterest(coi)))
        return s;
    *mean = meanOf(SumsOf<T, 3>::maskedWithoutSquares({{src, srcStep}, coi - 1}, {mask, maskStep}, roiSize));
    return lumStatusOk;
}

template <class T>
LumStatus meanStdDev(const T* src, int srcStep, LumSize roiSize, Lum64f* mean, Lum64f* stdDev) {
    if (auto s = firstFailure(checkNotNull(src), checkSize(roiSize),
                              checkStep(rowBytes<T>(roiSize.width), srcStep), checkStepAlignment<T>(srcStep)))
        return s;
    return findMeanStdDev(Pixels<T, 1>{{src, srcStep}}, roiSize, mean, stdDev);
}

template <class T>
LumStatus meanStdDevMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep, LumSize roiSize,
                           Lum64f* mean, Lum64f* stdDev) {
    if (auto s = firstFailure(checkNotNull(src, mask), checkSize(roiSize),
                              checkStep(rowBytes<T>(roiSize.width), srcStep), checkStepAlignment<T>(srcStep),
                              checkStep(rowBytes<Lum8u>(roiSize.width), maskStep)))
        return s;
    return findMeanStdDev(Pixels<T, 1>{{src, srcStep}}, {mask, maskStep}, roiSize, mean, stdDev);
}

template <class T>
LumStatus meanStdDevOfChannel(const T* src, int srcStep, LumSize roiSize, Lum32s coi, Lum64f* mean,
                              Lum64f* stdDev) {
    if (auto s = firstFailure(checkNotNull(src), checkSize(roiSize),
                              checkStep(rowBytes<T>(roiSize.width, 3), srcStep),
                              checkStepAlignment<T>(srcStep), checkChannelOfInterest(coi)))
        return s;
    return findMeanStdDev(Pixels<T, 3>{{src, srcStep}, coi - 1}, roiSize, mean, stdDev);
}

template <class T>
LumStatus meanStdDevOfChannelMasked(const T* src, int srcStep, const Lum8u* mask, int maskStep,
                                    LumSize roiSize, Lum32s coi, Lum64f* mean, Lum64f* stdDev) {
    if (auto s =
            firstFailure(checkNotNull(src, mask), checkSize(roiSize),
                         checkStep(rowBytes<T>(roiSize.width, 3), srcStep), checkStepAlignment<T>(srcStep),
                         checkStep(rowBytes<Lum8u>(roiSize.width), maskStep), checkChannelOfInterest(coi)))
        return s;
    return findMeanStdDev(Pixels<T, 3>{{src, srcStep}, coi - 1}, {mask, maskStep}, roiSize, mean, stdDev);
}

LUM_INSTANCES(meanMasked, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(meanOfChannelMasked, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(meanStdDev, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(meanStdDevMasked, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(meanStdDevOfChannel, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(meanStdDevOfChannelMasked, (Lum8u), (Lum16u), (Lum32f));

} // namespace lum
