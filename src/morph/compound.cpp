#include "morph/compound.h"

#include <algorithm>
#include <type_traits>

#include "frame/image.h"
#include "kernels/morph/subtract.h"
#include "morph/dilate_erode.h"
#include "morph/objects.h"
#include "morph/sizes.h"

namespace lum {
namespace {

using kernels::MorphOp;
using kernels::Negatives;

/// One call, its arguments tested.
template <class T> struct CompoundRun {
    Image<const T> src;
    Image<T> dst;
    LumSizeL roiSize;
    int channels;
    StageBorders borders;
    const T* borderValue;
    const LumMorphMaskRecord& first;
    const LumMorphMaskRecord& second;
    Negatives negatives;
    Lum8u* buffer;

    template <class Pixel>
    Image<Pixel> moved(Image<Pixel> image, std::intptr_t rows, std::intptr_t columns) const {
        return Image<Pixel>{image.row(rows), image.step}.shifted(columns * channels);
    }
    std::uintptr_t workBytes(LumSizeL size) const {
        const LumSizeL box{first.width, first.height};
        return MorphSizes<std::uintptr_t>(size, box).certainRunBytes(sizeof(T),
                                                                     static_cast<std::uintptr_t>(channels));
    }
    void stage(MorphOp op, Image<const T> from, Image<T> to, LumSizeL size, LumBorderType border,
               const LumMorphMaskRecord& mask) const {
        const auto run =
            op == MorphOp::dilate ? runMorphology<MorphOp::dilate, T> : runMorphology<MorphOp::erode, T>;
        run(from, to, size, channels, border, borderValue, mask, buffer);
    }
    void subtract(Image<const T> minuend, Image<const T> subtrahend) const {
        kernels::Subtraction<T>::vectors(minuend, subtrahend, dst, roiSize.width * channels, roiSize.height,
                                         negatives);
    }
};

/// Temporary rows begin at multiples of 32 bytes.
template <class T>
Image<T> betweenStages(const CompoundRun<T>& run, LumSizeL size, std::uintptr_t workBytes) {
    const auto step =
        roundedUp<std::intptr_t>(size.width * run.channels * static_cast<std::intptr_t>(sizeof(T)), 32);
    return {reinterpret_cast<T*>(afterWorkArea(run.buffer, workBytes)), step};
}

/// The first stage gives the region and what the second reads beyond it.
template <class T> void runInSuccession(const CompoundRun<T>& run, const CompoundStages& stages) {
    const std::intptr_t right = run.second.width - run.second.anchorX - 1;
    const std::intptr_t bottom = run.second.height - run.second.anchorY - 1;
    const StageMargins margins =
        marginsBetweenStages(run.borders.second, {run.second.anchorY, bottom, run.second.anchorX, right});
    const LumSizeL size = widened(run.roiSize, margins);
    const Image<T> between =
        betweenStages(run, size, std::max(run.workBytes(size), run.workBytes(run.roiSize)));
    run.stage(stages.first, run.moved(run.src, -margins.top, -margins.left), between, size, run.borders.first,
              run.first);
    run.stage(stages.second, run.moved(between, margins.top, margins.left), run.dst, run.roiSize,
              run.borders.second, run.second);
    if (stages.result == CompoundResult::sourceMinusSecond) run.subtract(run.src, run.dst);
    if (stages.result == CompoundResult::secondMinusSource) run.subtract(run.dst, run.src);
}

/// Both stages read the source.
template <class T> void runSideBySide(const CompoundRun<T>& run, const CompoundStages& stages) {
    const Image<T> between = betweenStages(run, run.roiSize, run.workBytes(run.roiSize));
    run.stage(stages.first, run.src, run.dst, run.roiSize, run.borders.first, run.first);
    run.stage(stages.second, run.src, between, run.roiSize, run.borders.second, run.second);
    run.subtract(run.dst, between);
}

template <class T> void runCompound(CompoundOp op, const CompoundRun<T>& run) {
    const CompoundStages stages = stagesOf(op);
    if (stages.result == CompoundResult::firstMinusSecond)
        runSideBySide(run, stages);
    else
        runInSuccession(run, stages);
}

template <class T> LumStatus checkImages(auto roiSize, int channels, auto... steps) {
    return firstFailure(checkSize(roiSize), checkStep(rowBytes<T>(roiSize.width, channels), steps...),
                        checkStepAlignment<T>(steps...));
}

/// The gradient dilates from the source to the destination, which in this type are two images.
template <class T> LumStatus checkInPlace(CompoundOp op, const T* src, const T* dst) {
    return errorIf(op == CompoundOp::gradient && std::is_same_v<T, Lum16s> && src == dst,
                   lumStatusInPlaceNotSupported);
}

template <class T>
LumStatus runPlain(CompoundOp op, const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                   int channels, LumBorderType border, const T* borderValue, const LumMorphPairState* spec,
                   Lum8u* buffer) {
    const bool isGradient = op == CompoundOp::gradient;
    const bool isKnownKind = isMorphKind(morphBorderKind(border));
    const StageBorders borders =
        isGradient ? gradientBorders(border, isKnownKind) : twoStageBorders(op, border, isKnownKind);
    if (auto s = firstFailure(checkNotNull(src, dst, spec, buffer),
                              checkImages<T>(roiSize, channels, srcStep, dstStep),
                              errorIf(!borders.accepted, lumStatusBorderError),
                              constantMissing(border, borderValue), checkInPlace(op, src, dst)))
        return s;
    const auto& first = *static_cast<const LumMorphMaskRecord*>(spec->first);
    const auto& second = *static_cast<const LumMorphMaskRecord*>(spec->second);
    const Negatives negatives = std::is_same_v<T, Lum32f> ? Negatives::clear : Negatives::keep;
    runCompound<T>(op, {{src, srcStep},
                        {dst, dstStep},
                        {roiSize.width, roiSize.height},
                        channels,
                        borders,
                        borderValue,
                        first,
                        isGradient ? first : second,
                        negatives,
                        buffer});
    return lumStatusOk;
}

template <class T>
LumStatus runLong(CompoundOp op, const T* src, std::intptr_t srcStep, T* dst, std::intptr_t dstStep,
                  LumSizeL roiSize, int channels, LumBorderType border, const T* borderValue,
                  const LumMorphPairState* spec, Lum8u* buffer) {
    const StageBorders borders = longBorders(op, border, isMorphKind(morphBorderKind(border)));
    const LumStatus overflow = checkBelowLimit(roiSize, lumStatusSizeOverflow);
    const bool sizesFirst = op != CompoundOp::open && op != CompoundOp::close;
    if (auto s = firstFailure(
            sizesFirst ? overflow : LumStatus{lumStatusOk}, checkNotNull(src, dst, spec, buffer),
            constantMissing(border, borderValue), checkImages<T>(roiSize, channels, srcStep, dstStep),
            errorIf(!borders.accepted, lumStatusBorderError), overflow,
            checkBelowLimit(roiSize, lumStatusSizeOverflow, srcStep, dstStep), checkInPlace(op, src, dst)))
        return s;
    const auto& first = *static_cast<const LumMorphLongState*>(spec->first)->maskRecord;
    const auto& second = *static_cast<const LumMorphLongState*>(spec->second)->maskRecord;
    const bool floatGradient = op == CompoundOp::gradient && std::is_same_v<T, Lum32f>;
    const Negatives negatives = spec->keepNegative || floatGradient ? Negatives::keep : Negatives::clear;
    runCompound<T>(op, {{src, srcStep},
                        {dst, dstStep},
                        roiSize,
                        channels,
                        borders,
                        borderValue,
                        first,
                        second,
                        negatives,
                        buffer});
    return lumStatusOk;
}

} // namespace

template <CompoundOp op, class T>
LumStatus SingleChannelCompound<op, T>::border(const T* src, int srcStep, T* dst, int dstStep,
                                               LumSize roiSize, LumBorderType border, T borderValue,
                                               const LumMorphPairState* spec, Lum8u* buffer) {
    return runPlain(op, src, srcStep, dst, dstStep, roiSize, 1, border, &borderValue, spec, buffer);
}

template <CompoundOp op, class T>
LumStatus SingleChannelCompound<op, T>::borderLong(const T* src, std::intptr_t srcStep, T* dst,
                                                   std::intptr_t dstStep, LumSizeL roiSize,
                                                   LumBorderType border, const T* borderValue,
                                                   const LumMorphPairState* spec, Lum8u* buffer) {
    return runLong(op, src, srcStep, dst, dstStep, roiSize, 1, border, borderValue, spec, buffer);
}

template <CompoundOp op, class T, int channels>
LumStatus ColourCompound<op, T, channels>::border(const T* src, int srcStep, T* dst, int dstStep,
                                                  LumSize roiSize, LumBorderType border, const T* borderValue,
                                                  const LumMorphPairState* spec, Lum8u* buffer) {
    return runPlain(op, src, srcStep, dst, dstStep, roiSize, channels, border, borderValue, spec, buffer);
}

template <CompoundOp op, class T, int channels>
LumStatus ColourCompound<op, T, channels>::borderLong(const T* src, std::intptr_t srcStep, T* dst,
                                                      std::intptr_t dstStep, LumSizeL roiSize,
                                                      LumBorderType border, const T* borderValue,
                                                      const LumMorphPairState* spec, Lum8u* buffer) {
    return runLong(op, src, srcStep, dst, dstStep, roiSize, channels, border, borderValue, spec, buffer);
}

template struct SingleChannelCompound<CompoundOp::open, Lum8u>;
template struct SingleChannelCompound<CompoundOp::open, Lum16u>;
template struct SingleChannelCompound<CompoundOp::open, Lum16s>;
template struct SingleChannelCompound<CompoundOp::open, Lum32f>;
template struct SingleChannelCompound<CompoundOp::close, Lum8u>;
template struct SingleChannelCompound<CompoundOp::close, Lum16u>;
template struct SingleChannelCompound<CompoundOp::close, Lum16s>;
template struct SingleChannelCompound<CompoundOp::close, Lum32f>;
template struct SingleChannelCompound<CompoundOp::tophat, Lum8u>;
template struct SingleChannelCompound<CompoundOp::tophat, Lum16u>;
template struct SingleChannelCompound<CompoundOp::tophat, Lum16s>;
template struct SingleChannelCompound<CompoundOp::tophat, Lum32f>;
template struct SingleChannelCompound<CompoundOp::blackhat, Lum8u>;
template struct SingleChannelCompound<CompoundOp::blackhat, Lum16u>;
template struct SingleChannelCompound<CompoundOp::blackhat, Lum16s>;
template struct SingleChannelCompound<CompoundOp::blackhat, Lum32f>;
template struct SingleChannelCompound<CompoundOp::gradient, Lum8u>;
template struct SingleChannelCompound<CompoundOp::gradient, Lum16u>;
template struct SingleChannelCompound<CompoundOp::gradient, Lum16s>;
template struct SingleChannelCompound<CompoundOp::gradient, Lum32f>;
template struct ColourCompound<CompoundOp::open, Lum8u, 3>;
template struct ColourCompound<CompoundOp::open, Lum8u, 4>;
template struct ColourCompound<CompoundOp::open, Lum32f, 3>;
template struct ColourCompound<CompoundOp::open, Lum32f, 4>;
template struct ColourCompound<CompoundOp::close, Lum8u, 3>;
template struct ColourCompound<CompoundOp::close, Lum8u, 4>;
template struct ColourCompound<CompoundOp::close, Lum32f, 3>;
template struct ColourCompound<CompoundOp::close, Lum32f, 4>;
template struct ColourCompound<CompoundOp::tophat, Lum8u, 3>;
template struct ColourCompound<CompoundOp::tophat, Lum8u, 4>;
template struct ColourCompound<CompoundOp::tophat, Lum32f, 3>;
template struct ColourCompound<CompoundOp::tophat, Lum32f, 4>;
template struct ColourCompound<CompoundOp::blackhat, Lum8u, 3>;
template struct ColourCompound<CompoundOp::blackhat, Lum8u, 4>;
template struct ColourCompound<CompoundOp::blackhat, Lum32f, 3>;
template struct ColourCompound<CompoundOp::blackhat, Lum32f, 4>;
template struct ColourCompound<CompoundOp::gradient, Lum8u, 3>;
template struct ColourCompound<CompoundOp::gradient, Lum8u, 4>;
template struct ColourCompound<CompoundOp::gradient, Lum32f, 3>;
template struct ColourCompound<CompoundOp::gradient, Lum32f, 4>;

} // namespace lum
