#include "motion/subpix.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "frame/check.h"
#include "kernels/motion/subpix.h"
#include "motion/subpix_placement.h"

namespace lum {
namespace {

using kernels::FixedScale;
using kernels::PairOf;
using kernels::QuadOf;
using kernels::sampledInFixedPoint;
using kernels::Sampling;

/// The weights of a position along each direction and along both.
template <class Source, class Result> struct Weights {
    PairOf<Source, Result> alongX;
    PairOf<Source, Result> alongY;
    QuadOf<Source, Result> both;
};

template <class Source, class Result>
Weights<Source, Result> weightsOf(float fx, float fy, Lum32s scaleFactor) {
    if constexpr (sampledInFixedPoint<Source, Result>) {
        const FixedScale scale(scaleFactor);
        const int ax = fixedFraction(fx);
        const int ay = fixedFraction(fy);
        return {{16384 - ax, ax, scale}, {16384 - ay, ay, scale}, fixedWeights(ax, ay, scale)};
    } else {
        return {{1 - fx, fx}, {1 - fy, fy}, floatWeights(fx, fy)};
    }
}

template <class Source, class Result>
LumStatus copyInside(const Source* src, int srcStep, Result* dst, int dstStep, LumSize roiSize, Lum32f dx,
                     Lum32f dy, Lum32s scaleFactor) {
    if (auto s = firstFailure(checkNotNull(src, dst), checkSize(roiSize),
                              checkStep(rowBytes<Source>(roiSize.width), srcStep),
                              checkStep(rowBytes<Result>(roiSize.width), dstStep),
                              checkStepAlignment<Source>(srcStep), checkStepAlignment<Result>(dstStep)))
        return s;
    float fx = fractionOf(dx);
    float fy = fractionOf(dy);
    if constexpr (std::is_same_v<Result, Lum32f>) {
        fx = std::max(fx, 1e-6F);
        fy = std::max(fy, std::is_same_v<Source, Lum32f> ? 1e-6F : 1e-9F);
    }
    const auto weights = weightsOf<Source, Result>(fx, fy, scaleFactor);
    Sampling<Source, Result>::patch({src, srcStep}, {dst, dstStep}, roiSize, weights.both);
    return lumStatusOk;
}

/// The patch's rows by what they are interpolated between, each in three pieces: left of the source, inside, right of it.
template <class Source, class Result> class CutPatch {
  public:
    CutPatch(Image<const Source> src, LumSize srcSize, Image<Result> dst, LumSize dstSize, PatchSpan x,
             PatchSpan y, const Weights<Source, Result>& weights)
        : src_(src), srcSize_(srcSize), dst_(dst), dstSize_(dstSize), x_(x), y_(y), weights_(weights) {}

    void draw() const {
        const std::int64_t afterX = std::max(x_.last + 1, x_.first);
        const std::int64_t afterY = std::max(y_.last + 1, y_.first);
        if (y_.first > 0) drawEqualRows(0, y_.first, 0);
        if (afterY > y_.first) {
            drawColumn(0, x_.first, 0);
            if (afterX > x_.first) drawInside(afterX, afterY);
            drawColumn(afterX, dstSize_.width, srcSize_.width - 1);
        }
        if (afterY < dstSize_.height) drawEqualRows(afterY, dstSize_.height, srcSize_.height - 1);
    }

  private:
    /// Rows above or below the source: one row of it, interpolated along x.
    void drawEqualRows(std::int64_t begin, std::int64_t end, std::ptrdiff_t sourceRow) const {
        const Source* row = src_.row(sourceRow);
        Result* first = dst_.row(begin);
        const std::int64_t afterX = std::max(x_.last + 1, x_.first);
        std::fill(first, first + x_.first, kernels::cornerOf<Result>(row[0], weights_.alongX));
        if (afterX > x_.first)
            Sampling<Source, Result>::row(row + (x_.start + x_.first), first + x_.first, afterX - x_.first,
                                          weights_.alongX);
        std::fill(first + afterX, first + dstSize_.width,
                  kernels::cornerOf<Result>(row[srcSize_.width - 1], weights_.alongX));
        for (std::int64_t y = begin + 1; y < end; ++y)
            std::memcpy(dst_.row(y), first, dstSize_.width * sizeof(Result));
    }

    /// Columns left or right of the source: one column of it, interpolated along y.
    void drawColumn(std::int64_t begin, std::int64_t end, std::ptrdiff_t sourceColumn) const {
        if (begin >= end) return;
        for (std::int64_t y = y_.first; y <= y_.last; ++y) {
            const Source* above = src_.row(y_.start + y) + sourceColumn;
            const Source* below = src_.row(y_.start + y + 1) + sourceColumn;
            Result* row = dst_.row(y);
            std::fill(row + begin, row + end, kernels::blended<Result>(*above, *below, weights_.alongY));
        }
    }

    void drawInside(std::int64_t afterX, std::int64_t afterY) const {
        const Image<const Source> src{src_.row(y_.start + y_.first) + (x_.start + x_.first), src_.step};
        const Image<Result> dst{dst_.row(y_.first) + x_.first, dst_.step};
        const LumSize size{static_cast<Lum32s>(afterX - x_.first), static_cast<Lum32s>(afterY - y_.first)};
        Sampling<Source, Result>::patch(src, dst, size, weights_.both);
    }

    Image<const Source> src_;
    LumSize srcSize_;
    Image<Result> dst_;
    LumSize dstSize_;
    PatchSpan x_;
    PatchSpan y_;
    const Weights<Source, Result>& weights_;
};

template <class Source, class Result>
LumStatus copyAround(const Source* src, int srcStep, LumSize srcRoiSize, Result* dst, int dstStep,
                     LumSize dstRoiSize, LumPoint32f point, LumPoint* pMin, LumPoint* pMax,
                     Lum32s scaleFactor) {
    if (auto s =
            firstFailure(checkNotNull(src, dst), checkNotNull(pMin, pMax), checkSize(srcRoiSize, dstRoiSize),
                         checkStep(rowBytes<Source>(srcRoiSize.width), srcStep),
                         checkStep(rowBytes<Result>(dstRoiSize.width), dstStep),
                         checkStepAlignment<Source>(srcStep), checkStepAlignment<Result>(dstStep)))
        return s;
    const PatchSpan x = placedPatch(srcRoiSize.width, dstRoiSize.width, point.x);
    const PatchSpan y = placedPatch(srcRoiSize.height, dstRoiSize.height, point.y);
    const auto weights = weightsOf<Source, Result>(x.fraction, y.fraction, scaleFactor);
    CutPatch<Source, Result>({src, srcStep}, srcRoiSize, {dst, dstStep}, dstRoiSize, x, y, weights).draw();
    *pMin = {static_cast<Lum32s>(x.first), static_cast<Lum32s>(y.first)};
    *pMax = {static_cast<Lum32s>(x.last), static_cast<Lum32s>(y.last)};
    return lumStatusOk;
}

} // namespace

template <class Source, class Result>
LumStatus copySubpix(const Source* src, int srcStep, Result* dst, int dstStep, LumSize roiSize, Lum32f dx,
                     Lum32f dy) {
    return copyInside(src, srcStep, dst, dstStep, roiSize, dx, dy, 0);
}

LumStatus copySubpixScaled(const Lum8u* src, int srcStep, Lum16u* dst, int dstStep, LumSize roiSize,
                           Lum32f dx, Lum32f dy, Lum32s scaleFactor) {
    return copyInside(src, srcStep, dst, dstStep, roiSize, dx, dy, scaleFactor);
}

template <class Source, class Result>
LumStatus copySubpixIntersect(const Source* src, int srcStep, LumSize srcRoiSize, Result* dst, int dstStep,
                              LumSize dstRoiSize, LumPoint32f point, LumPoint* pMin, LumPoint* pMax) {
    return copyAround(src, srcStep, srcRoiSize, dst, dstStep, dstRoiSize, point, pMin, pMax, 0);
}

LumStatus copySubpixIntersectScaled(const Lum8u* src, int srcStep, LumSize srcRoiSize, Lum16u* dst,
                                    int dstStep, LumSize dstRoiSize, LumPoint32f point, LumPoint* pMin,
                                    LumPoint* pMax, Lum32s scaleFactor) {
    return copyAround(src, srcStep, srcRoiSize, dst, dstStep, dstRoiSize, point, pMin, pMax, scaleFactor);
}

template <class Source>
void drawPlacedPatch(Image<const Source> src, LumSize srcSize, Image<Lum32f> dst, LumSize dstSize,
                     const PatchSpan& x, const PatchSpan& y) {
    const auto weights = weightsOf<Source, Lum32f>(x.fraction, y.fraction, 0);
    CutPatch<Source, Lum32f>(src, srcSize, dst, dstSize, x, y, weights).draw();
}

template LumStatus copySubpix(const Lum8u*, int, Lum8u*, int, LumSize, Lum32f, Lum32f);
template LumStatus copySubpix(const Lum16u*, int, Lum16u*, int, LumSize, Lum32f, Lum32f);
template LumStatus copySubpix(const Lum8u*, int, Lum32f*, int, LumSize, Lum32f, Lum32f);
template LumStatus copySubpix(const Lum16u*, int, Lum32f*, int, LumSize, Lum32f, Lum32f);
template LumStatus copySubpix(const Lum32f*, int, Lum32f*, int, LumSize, Lum32f, Lum32f);

template LumStatus copySubpixIntersect(const Lum8u*, int, LumSize, Lum8u*, int, LumSize, LumPoint32f,
                                       LumPoint*, LumPoint*);
template LumStatus copySubpixIntersect(const Lum16u*, int, LumSize, Lum16u*, int, LumSize, LumPoint32f,
                                       LumPoint*, LumPoint*);
template LumStatus copySubpixIntersect(const Lum8u*, int, LumSize, Lum32f*, int, LumSize, LumPoint32f,
                                       LumPoint*, LumPoint*);
template LumStatus copySubpixIntersect(const Lum16u*, int, LumSize, Lum32f*, int, LumSize, LumPoint32f,
                                       LumPoint*, LumPoint*);
template LumStatus copySubpixIntersect(const Lum32f*, int, LumSize, Lum32f*, int, LumSize, LumPoint32f,
                                       LumPoint*, LumPoint*);

template void drawPlacedPatch(Image<const Lum8u>, LumSize, Image<Lum32f>, LumSize, const PatchSpan&,
                              const PatchSpan&);
template void drawPlacedPatch(Image<const Lum16u>, LumSize, Image<Lum32f>, LumSize, const PatchSpan&,
                              const PatchSpan&);
template void drawPlacedPatch(Image<const Lum32f>, LumSize, Image<Lum32f>, LumSize, const PatchSpan&,
                              const PatchSpan&);

} // namespace lum
