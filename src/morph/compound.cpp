#include "morph/compound.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <type_traits>

#include "frame/image.h"
#include "frame/instances.h"
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
    /// Rows top .. end - 1 of the destination.
    void subtract(Image<const T> minuend, Image<const T> subtrahend, std::intptr_t top,
                  std::intptr_t end) const {
        kernels::Subtraction<T>::vectors(moved(minuend, top, 0), moved(subtrahend, top, 0),
                                         moved(dst, top, 0), roiSize.width * channels, end - top, negatives);
    }
};

/// The image between the stages: rows begin at multiples of 32 bytes.
template <class T>
Image<T> betweenStages(const CompoundRun<T>& run, LumSizeL size, std::uintptr_t workBytes) {
    const auto rowBytes = size.width * run.channels * static_cast<std::intptr_t>(sizeof(T));
    return {reinterpret_cast<T*>(afterWorkArea(run.buffer, workBytes)),
            roundedUp<std::intptr_t>(rowBytes, 32)};
}

/// The rows of a band: what both stages touch of it stays in a cache of the second level. Each stage begins a band with as
/// many extra rows as its mask is high, so a band is several times that; where it cannot be, all rows are one band.
std::intptr_t rowsOfBand(std::intptr_t rowBytes, std::intptr_t rows, std::intptr_t reach) {
    constexpr std::intptr_t cacheBytes = 0x60000;
    constexpr std::intptr_t masksPerBand = 4;
    const std::intptr_t band = cacheBytes / rowBytes;
    return band >= 2 * reach * masksPerBand && band >= 8 && rows >= 2 * band ? band : rows;
}

/// The band that begins at a row; the last one takes what would be less than a band.
std::intptr_t endOfBand(std::intptr_t first, std::intptr_t band, std::intptr_t rows) {
    return rows - first < 2 * band ? rows : first + band;
}

/// The border of rows first .. last - 1 out of `rows`: their neighbours are in memory.
LumBorderType borderOfRows(LumBorderType border, std::intptr_t first, std::intptr_t last,
                           std::intptr_t rows) {
    return border | (first > 0 ? lumBorderInMemoryTop : 0) | (last < rows ? lumBorderInMemoryBottom : 0);
}

/// How far a mask reaches around a pixel.
StageMargins reachOf(const LumMorphMaskRecord& mask) {
    return {mask.anchorY, mask.height - mask.anchorY - 1, mask.anchorX, mask.width - mask.anchorX - 1};
}

/// Whether rows of dst may be written before the last row of src is read: they are apart, or the same image, of which the
/// first stage is ahead by the reach of the second. `size` pixels from `src` on are what the first stage gives.
template <class T> bool mayWriteEarly(const CompoundRun<T>& run, Image<const T> src, LumSizeL size) {
    if (run.src.first == run.dst.first && run.src.step == run.dst.step)
        return run.first.height <= run.second.height;
    const StageMargins read = marginsBetweenStages(run.borders.first, reachOf(run.first));
    const T* const srcBegin = run.moved(src, -read.top, -read.left).first;
    const T* const srcEnd = run.moved(src, size.height - 1 + read.bottom, size.width + read.right).first;
    const T* const dstEnd = run.moved(run.dst, run.roiSize.height - 1, run.roiSize.width).first;
    return !(std::less<>()(srcBegin, dstEnd) && std::less<>()(run.dst.first, srcEnd));
}

/// The first stage gives the region and what the second reads beyond it.
template <class T> void runInSuccession(const CompoundRun<T>& run, const CompoundStages& stages) {
    const StageMargins ofSecond = reachOf(run.second);
    const StageMargins margins = marginsBetweenStages(run.borders.second, ofSecond);
    const LumSizeL size = widened(run.roiSize, margins);
    const Image<T> between =
        betweenStages(run, size, std::max(run.workBytes(size), run.workBytes(run.roiSize)));
    const Image<const T> src = run.moved(run.src, -margins.top, -margins.left);

    // Rows of the wider image are counted from its own first row. The image between the stages holds those from `held` on.
    const std::intptr_t rows = run.roiSize.height;
    const std::intptr_t reach = std::max(run.first.anchorY, run.second.anchorY);
    const std::intptr_t band = mayWriteEarly(run, src, size) ? rowsOfBand(between.step, rows, reach) : rows;
    std::intptr_t held = 0, done = 0;
    for (std::intptr_t y = 0; y < rows;) {
        const std::intptr_t end = endOfBand(y, band, rows);
        const std::intptr_t needed = end == rows ? size.height : margins.top + end + ofSecond.bottom;
        run.stage(stages.first, run.moved(src, done, 0), run.moved(between, done - held, 0),
                  {size.width, needed - done}, borderOfRows(run.borders.first, done, needed, size.height),
                  run.first);
        done = needed;
        run.stage(stages.second, run.moved(between, margins.top + y - held, margins.left),
                  run.moved(run.dst, y, 0), {run.roiSize.width, end - y},
                  borderOfRows(run.borders.second, y, end, rows), run.second);
        if (stages.result == CompoundResult::sourceMinusSecond) run.subtract(run.src, run.dst, y, end);
        if (stages.result == CompoundResult::secondMinusSource) run.subtract(run.dst, run.src, y, end);
        // The next band reads rows above it again.
        if (end < rows) {
            const std::intptr_t kept = margins.top + end - ofSecond.top;
            for (std::intptr_t row = kept; row < done; ++row)
                std::memcpy(between.row(row - kept), between.row(row - held),
                            static_cast<std::size_t>(between.step));
            held = kept;
        }
        y = end;
    }
}

/// Both stages read the source.
template <class T> void runSideBySide(const CompoundRun<T>& run, const CompoundStages& stages) {
    const Image<T> between = betweenStages(run, run.roiSize, run.workBytes(run.roiSize));
    const std::intptr_t rows = run.roiSize.height;
    const std::intptr_t band =
        rowsOfBand(between.step, rows, std::max(run.first.anchorY, run.second.anchorY));
    for (std::intptr_t y = 0; y < rows;) {
        const std::intptr_t end = endOfBand(y, band, rows);
        const LumSizeL size{run.roiSize.width, end - y};
        const Image<const T> src = run.moved(run.src, y, 0);
        run.stage(stages.first, src, run.moved(run.dst, y, 0), size,
                  borderOfRows(run.borders.first, y, end, rows), run.first);
        run.stage(stages.second, src, between, size, borderOfRows(run.borders.second, y, end, rows),
                  run.second);
        run.subtract(run.dst, run.moved(between, -y, 0), y, end);
        y = end;
    }
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

LUM_STRUCT_INSTANCES(SingleChannelCompound, (CompoundOp::open, Lum8u), (CompoundOp::open, Lum16u),
                     (CompoundOp::open, Lum16s), (CompoundOp::open, Lum32f), (CompoundOp::close, Lum8u),
                     (CompoundOp::close, Lum16u), (CompoundOp::close, Lum16s), (CompoundOp::close, Lum32f),
                     (CompoundOp::tophat, Lum8u), (CompoundOp::tophat, Lum16u), (CompoundOp::tophat, Lum16s),
                     (CompoundOp::tophat, Lum32f), (CompoundOp::blackhat, Lum8u),
                     (CompoundOp::blackhat, Lum16u), (CompoundOp::blackhat, Lum16s),
                     (CompoundOp::blackhat, Lum32f), (CompoundOp::gradient, Lum8u),
                     (CompoundOp::gradient, Lum16u), (CompoundOp::gradient, Lum16s),
                     (CompoundOp::gradient, Lum32f));
LUM_STRUCT_INSTANCES(ColourCompound, (CompoundOp::open, Lum8u, 3), (CompoundOp::open, Lum8u, 4),
                     (CompoundOp::open, Lum32f, 3), (CompoundOp::open, Lum32f, 4),
                     (CompoundOp::close, Lum8u, 3), (CompoundOp::close, Lum8u, 4),
                     (CompoundOp::close, Lum32f, 3), (CompoundOp::close, Lum32f, 4),
                     (CompoundOp::tophat, Lum8u, 3), (CompoundOp::tophat, Lum8u, 4),
                     (CompoundOp::tophat, Lum32f, 3), (CompoundOp::tophat, Lum32f, 4),
                     (CompoundOp::blackhat, Lum8u, 3), (CompoundOp::blackhat, Lum8u, 4),
                     (CompoundOp::blackhat, Lum32f, 3), (CompoundOp::blackhat, Lum32f, 4),
                     (CompoundOp::gradient, Lum8u, 3), (CompoundOp::gradient, Lum8u, 4),
                     (CompoundOp::gradient, Lum32f, 3), (CompoundOp::gradient, Lum32f, 4));

} // namespace lum
