#include "distance/chamfer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "frame/check.h"
#include "frame/instances.h"
#include "kernels/distance/chamfer.h"

namespace lum {
namespace {

using kernels::ChamferMetric;
using kernels::ChamferSteps;
using kernels::farthest;

/// Lengths are compared and added in 64 bits, which hold every sum, or as the floats that they are.
template <class Length> using Exact = std::conditional_t<std::is_integral_v<Length>, std::int64_t, Length>;

/// A length as the passes take it.
template <class T, class Sum> T asStep(Sum length) {
    if constexpr (std::is_integral_v<T>)
        return static_cast<T>(std::min<Sum>(length, farthest<T>));
    else
        return length;
}

/// How far a float comparison may miss, as a part of what is compared.
constexpr double tolerance = -1e-7;

/// A knight's move is never shorter than an axial and a diagonal step together.
bool knightIsUseless(std::int64_t a, std::int64_t d, std::int64_t c) { return a + d <= c; }
bool knightIsUseless(float a, float d, float c) {
    return static_cast<double>(c - a) - d > tolerance * std::fabs(static_cast<double>(a) + d);
}

/// No step is longer than another chain of steps that ends at the same pixel.
bool isRegular(std::int64_t a, std::int64_t d, std::int64_t c) { return d > a && c > 2 * a && 2 * c > 3 * d; }
bool isRegular(float a, float d, float c) {
    const double axial = a;
    const double diagonal = d;
    const double knight = c;
    const auto exceeds = [](double excess, double of) { return excess > tolerance * std::fabs(of); };
    return !exceeds(axial - diagonal, diagonal) && !exceeds(2 * axial - knight, knight) &&
           !exceeds(1.5 * diagonal - knight, knight);
}

template <class T, class Length>
void transform3x3(Image<const Lum8u> src, Image<T> dst, LumSize size, const Length* metrics) {
    const Exact<Length> a = metrics[0];
    const Exact<Length> b = metrics[1];
    ChamferMetric<T> metric{.steps = ChamferSteps::eight, .axial = asStep<T>(a), .diagonal = asStep<T>(b)};
    if (2 * a <= b) {
        metric.steps = ChamferSteps::axial;
    } else if (a > b && std::min(size.width, size.height) >= 2) {
        metric.doubleStepsInLastRow = true;
        metric.doubleAxial = asStep<T>(2 * b);
    }
    kernels::chamfer(src, dst, size, metric);
}

template <class T, class Length>
void transform5x5(Image<const Lum8u> src, Image<T> dst, LumSize size, const Length* metrics) {
    using Sum = Exact<Length>;
    const Sum a = metrics[0];
    const Sum d = std::min<Sum>(2 * a, metrics[1]);
    const Sum c = metrics[2];
    if (knightIsUseless(a, d, c)) return transform3x3(src, dst, size, metrics);

    ChamferMetric<T> metric{.steps = ChamferSteps::window,
                            .axial = asStep<T>(a),
                            .diagonal = asStep<T>(d),
                            .knight = asStep<T>(c),
                            .doubleAxial = asStep<T>(2 * a),
                            .doubleDiagonal = asStep<T>(2 * d)};
    const bool regular = isRegular(a, d, c);
    const bool small = std::min(size.width, size.height) < 4;
    if (small && !regular) return kernels::chamferRelaxed(src, dst, size, metric);
    if (!small && regular) metric.steps = ChamferSteps::knight;
    if (!small && !regular) {
        const Sum axial = std::min(a, 3 * c);
        const Sum diagonal = std::min(d, 2 * c);
        metric.axial = asStep<T>(axial);
        metric.diagonal = asStep<T>(diagonal);
        metric.doubleAxial = asStep<T>(std::min({2 * diagonal, 2 * axial, 2 * c}));
        metric.doubleDiagonal = asStep<T>(std::min(c + axial, 2 * diagonal));
    }
    kernels::chamfer(src, dst, size, metric);
}

/// By norm: infinity, L1, L2.
template <class Length> struct StandardLengths {
    Length ofThree[3][2];
    Length ofFive[3][3];
};
template <class Length> constexpr StandardLengths<Length> standardLengths;
template <>
constexpr StandardLengths<Lum32s> standardLengths<Lum32s>{{{1, 1}, {1, 2}, {2, 3}},
                                                          {{1, 1, 2}, {1, 2, 3}, {5, 7, 11}}};
template <>
constexpr StandardLengths<Lum32f> standardLengths<Lum32f>{{{1, 1}, {1, 2}, {0.955F, 1.3693F}},
                                                          {{1, 1, 2}, {1, 2, 3}, {1, 1.4F, 2.1969F}}};

} // namespace

template <int kernelSize, class T, class Length>
LumStatus ChamferDistance<kernelSize, T, Length>::transform(const Lum8u* src, int srcStep, T* dst,
                                                            int dstStep, LumSize roiSize,
                                                            const Length* metrics) {
    if (auto s = firstFailure(checkNotNull(src, dst, metrics), checkSize(roiSize),
                              checkStep(rowBytes<Lum8u>(roiSize.width), srcStep),
                              checkStep(rowBytes<T>(roiSize.width), dstStep), checkStepAlignment<T>(dstStep)))
        return s;
    constexpr int lengths = kernelSize == 3 ? 2 : 3;
    // A length that is not a number is not above 0 either.
    const bool positive = std::all_of(metrics, metrics + lengths, [](Length length) { return length > 0; });
    if (auto s = errorIf(!positive, lumStatusMetricError)) return s;

    const Image<const Lum8u> picture{src, srcStep};
    if constexpr (kernelSize == 3)
        transform3x3(picture, Image<T>{dst, dstStep}, roiSize, metrics);
    else
        transform5x5(picture, Image<T>{dst, dstStep}, roiSize, metrics);
    return lumStatusOk;
}

template <int kernelSize, class T, class Length>
LumStatus ChamferDistance<kernelSize, T, Length>::inPlace(T* srcDst, int srcDstStep, LumSize roiSize,
                                                          const Length* metrics) {
    static_assert(sizeof(T) == 1, "a picture and its distances share their pixels");
    return transform(srcDst, srcDstStep, srcDst, srcDstStep, roiSize, metrics);
}

template <class Length> LumStatus getDistanceTransformMask(Lum32s kernelSize, Lum32s norm, Length* metrics) {
    if (auto s = firstFailure(checkNotNull(metrics),
                              errorIf(kernelSize != 3 && kernelSize != 5, lumStatusSizeError),
                              errorIf(norm < 0 || norm > 2, lumStatusBadArgument)))
        return s;
    const auto& lengths = standardLengths<Length>;
    if (kernelSize == 3)
        std::copy_n(lengths.ofThree[norm], 2, metrics);
    else
        std::copy_n(lengths.ofFive[norm], 3, metrics);
    return lumStatusOk;
}

LumStatus getDistanceTransformMaskOfType(Lum32s maskType, Lum32f* metrics) {
    if (auto s = errorIf(maskType < 0 || maskType % 10 > 2, lumStatusBadArgument)) return s;
    return getDistanceTransformMask(maskType / 10, maskType % 10, metrics);
}

LUM_STRUCT_INSTANCES(ChamferDistance, (3, Lum8u, Lum32s), (5, Lum8u, Lum32s));
template LumStatus ChamferDistance<3, Lum16u, Lum32s>::transform(const Lum8u*, int, Lum16u*, int, LumSize,
                                                                 const Lum32s*);
template LumStatus ChamferDistance<5, Lum16u, Lum32s>::transform(const Lum8u*, int, Lum16u*, int, LumSize,
                                                                 const Lum32s*);
template LumStatus ChamferDistance<3, Lum32f, Lum32f>::transform(const Lum8u*, int, Lum32f*, int, LumSize,
                                                                 const Lum32f*);
template LumStatus ChamferDistance<5, Lum32f, Lum32f>::transform(const Lum8u*, int, Lum32f*, int, LumSize,
                                                                 const Lum32f*);
template LumStatus getDistanceTransformMask(Lum32s, Lum32s, Lum32s*);
template LumStatus getDistanceTransformMask(Lum32s, Lum32s, Lum32f*);

} // namespace lum
