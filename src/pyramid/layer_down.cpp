#include "pyramid/layer_down.h"

#include <algorithm>
#include <type_traits>

#include "frame/convert.h"
#include "frame/instances.h"
#include "kernels/pyramid/halve.h"
#include "kernels/pyramid/halve_float.h"
#include "kernels/pyramid/interpolate.h"
#include "kernels/pyramid/split.h"
#include "kernels/pyramid/weighted_rows.h"
#include "kernels/to_floats.h"
#include "pyramid/layer_run.h"

namespace lum {
namespace {

using kernels::PixelPlace;

/// Rows that the window of the kernel holds.
template <class T> int ringRows(const LayerRun<T>& run) {
    return std::min(run.kernelSize, run.srcRoi.height);
}

/// The part of a stretch of a row that lies inside the row; what lies before and after it is reflected.
struct Inside {
    int begin;
    int end;

    Inside(int first, int count, int width)
        : begin(std::min(std::max(0, -first), count)), end(std::max(begin, std::min(count, width - first))) {}
};

/// The pixels begin .. end - 1 of a stretch that starts at pixel `first` of the row, all of them outside, as floats;
/// pixel i goes to place(i).
template <int channels, class T, class Place>
void copyReflected(const T* row, int width, int first, int begin, int end, Place place) {
    for (int i = begin; i < end; ++i) {
        const T* pixel = row + elements<channels>(borderIndex(first + i, width, mirroredAxis));
        std::copy_n(pixel, channels, place(i));
    }
}

// ---- rate 2: the results are pixels of the smoothed image, and only they are made

template <class T, int channels> void halveStrip(const LayerRun<T>& run, int firstPixel, int pixels) {
    const int radius = run.radius();
    const std::ptrdiff_t count = elements<channels>(pixels);
    const std::ptrdiff_t splitLength = workRow(count + elements<channels>(radius));
    float* split[2] = {run.stage.work, run.stage.work + splitLength};
    RowRing<float> ring(run.stage.work + 2 * splitLength, workRow(count), ringRows(run));
    const float** rows = run.stage.rows;

    const int first = 2 * firstPixel - radius;
    const int taken = 2 * (pixels - 1) + run.kernelSize;
    const int width = run.srcRoi.width;
    const Inside inside(first, taken, width);
    const auto placeOf = [&](int i) { return split[i % 2] + elements<channels>(i / 2); };
    const auto makeRow = [&](int y, float* slot) {
        const T* row = run.src.row(y);
        copyReflected<channels>(row, width, first, 0, inside.begin, placeOf);
        copyReflected<channels>(row, width, first, inside.end, taken, placeOf);
        // The first pixel inside may be of odd index in the stretch.
        kernels::splitPixels<T, channels>(row + elements<channels>(first + inside.begin),
                                          inside.end - inside.begin, placeOf(inside.begin),
                                          placeOf(inside.begin + 1));
        for (int k = 0; k < run.kernelSize; ++k) rows[k] = placeOf(k);
        kernels::weightedRows(rows, run.stage.weights, radius, count, slot);
    };
    for (int y = 0; y < run.dstRoi.height; ++y) {
        fillWindow(ring, 2 * y, radius, run.srcRoi.height, makeRow);
        pointAtWindow(ring, 2 * y, radius, run.srcRoi.height, rows);
        kernels::weightedRows(rows, run.stage.weights, radius, count,
                              run.dst.row(y) + elements<channels>(firstPixel));
    }
}

/// Both directions of 1 4 6 4 1 on 8-bit pixels, in integers.
template <int channels> struct BinomialStage {
    using Element = Lum16u;
    using T = Lum8u;

    explicit BinomialStage(const PyramidRowStage& stage) : ring(reinterpret_cast<Lum16u*>(stage.work)) {}

    static void oneAlongRow(const Lum8u* src, Lum16u* dst) { kernels::halveRowScalar<channels>(src, 1, dst); }
    static void alongRow(const Lum8u* src, int pixels, Lum16u* dst) {
        kernels::halveRow<channels>(src, pixels, dst);
    }
    static void downColumns(const Lum16u* const* rows, std::ptrdiff_t count, Lum8u* dst) {
        kernels::halveColumn(rows, count, dst);
    }

    Lum16u* ring;
};

/// Both directions of any five taps, in floats.
template <class Source, int channels> struct FiveTapStage {
    using Element = float;
    using T = Source;

    explicit FiveTapStage(const PyramidRowStage& stage) : weights(stage.weights), ring(stage.work) {}

    void oneAlongRow(const T* src, float* dst) const {
        kernels::halveFiveScalar<T, channels>(src, weights, 1, dst);
    }
    void alongRow(const T* src, int pixels, float* dst) const {
        kernels::halveFive<T, channels>(src, weights, pixels, dst);
    }
    void downColumns(const float* const* rows, std::ptrdiff_t count, T* dst) const {
        kernels::weightedRows(rows, weights, 2, count, dst);
    }

    const float* weights;
    float* ring;
};

/// Five taps, from the rows of the source where they are.
template <class Stage, int channels, class T = typename Stage::T>
void halveFiveStrip(const LayerRun<T>& run, int firstPixel, int pixels) {
    using Element = typename Stage::Element;
    const Stage stage(run.stage);
    const std::ptrdiff_t count = elements<channels>(pixels);
    RowRing<Element> ring(stage.ring, workRow(count), ringRows(run));
    const int width = run.srcRoi.width;
    // Results whose five pixels are all in the row.
    const int begin = std::clamp(1, firstPixel, firstPixel + pixels);
    const int end = std::clamp((width - 1) / 2, begin, firstPixel + pixels);
    const auto makeRow = [&](int y, Element* slot) {
        const T* row = run.src.row(y);
        const auto slotAt = [&](int x) { return slot + elements<channels>(x - firstPixel); };
        const auto atBorder = [&](int x) {
            T window[5 * channels];
            for (int k = 0; k < 5; ++k)
                std::copy_n(row + elements<channels>(borderIndex(2 * x - 2 + k, width, mirroredAxis)),
                            channels, window + k * channels);
            stage.oneAlongRow(window + 2 * channels, slotAt(x));
        };
        for (int x = firstPixel; x < begin; ++x) atBorder(x);
        if (begin < end) stage.alongRow(row + elements<channels>(2 * begin), end - begin, slotAt(begin));
        for (int x = end; x < firstPixel + pixels; ++x) atBorder(x);
    };
    const Element* rows[5];
    for (int y = 0; y < run.dstRoi.height; ++y) {
        fillWindow(ring, 2 * y, 2, run.srcRoi.height, makeRow);
        pointAtWindow(ring, 2 * y, 2, run.srcRoi.height, rows);
        stage.downColumns(rows, count, run.dst.row(y) + elements<channels>(firstPixel));
    }
}

// ---- other rates: between the pixels of the smoothed image

/// Where result i lies along an axis of `length` pixels. With a rate taken for 2 it is a pixel, the last one where the
/// rate leads past it.
PixelPlace placeBelow(int i, Lum32f rate, int length) {
    if (isRateTwo(rate)) {
        const auto pixel = static_cast<int>(std::min<std::int64_t>(std::int64_t{2} * i, length - 1));
        return {pixel, pixel, 0, 1};
    }
    const float position = static_cast<float>(i) * rate;
    const int pixel = std::min(truncatedTo32s(static_cast<double>(position)), length - 1);
    const bool isLast = pixel + 1 == length;
    return {pixel, isLast ? pixel : pixel + 1, position - static_cast<float>(pixel), isLast};
}

template <class T, int channels> void interpolateStrip(const LayerRun<T>& run, int firstPixel, int pixels) {
    const int radius = run.radius();
    const int width = run.srcRoi.width;
    const std::ptrdiff_t count = elements<channels>(pixels);
    const int first = placeBelow(firstPixel, run.rate, width).first;
    const int span = placeBelow(firstPixel + pixels - 1, run.rate, width).second - first + 1;
    const std::ptrdiff_t spanCount = elements<channels>(span);

    Arena arena(run.stage.work);
    float* extended = arena.allocate<float>(workRow(spanCount + elements<channels>(2 * radius)));
    RowRing<float> ring(arena.allocate<float>(workRow(spanCount) * ringRows(run)), workRow(spanCount),
                        ringRows(run));
    float* smoothed = arena.allocate<float>(workRow(spanCount));
    float* kept = arena.allocate<float>(2 * workRow(count));
    KeptRows reduced(kept, kept + workRow(count));
    auto* places = arena.allocate<PixelPlace>(pixels);
    for (int i = 0; i < pixels; ++i) {
        places[i] = placeBelow(firstPixel + i, run.rate, width);
        places[i].first -= first;
        places[i].second -= first;
    }

    const float** rows = run.stage.rows;
    const int taken = span + 2 * radius;
    const Inside inside(first - radius, taken, width);
    const auto placeOf = [&](int i) { return extended + elements<channels>(i); };
    const auto makeRow = [&](int y, float* slot) {
        const T* row = run.src.row(y);
        copyReflected<channels>(row, width, first - radius, 0, inside.begin, placeOf);
        kernels::toFloats(row + elements<channels>(first - radius + inside.begin),
                          elements<channels>(inside.end - inside.begin), placeOf(inside.begin));
        copyReflected<channels>(row, width, first - radius, inside.end, taken, placeOf);
        for (int k = 0; k < run.kernelSize; ++k) rows[k] = placeOf(k);
        kernels::weightedRows(rows, run.stage.weights, radius, spanCount, slot);
    };
    const auto reduceRow = [&](int y, float* out) {
        fillWindow(ring, y, radius, run.srcRoi.height, makeRow);
        pointAtWindow(ring, y, radius, run.srcRoi.height, rows);
        kernels::weightedRows(rows, run.stage.weights, radius, spanCount, smoothed);
        kernels::interpolatePixels<float, channels>(smoothed, places, pixels, out);
    };
    for (int y = 0; y < run.dstRoi.height; ++y) {
        const PixelPlace place = placeBelow(y, run.rate, run.srcRoi.height);
        T* dst = run.dst.row(y) + elements<channels>(firstPixel);
        const float* above = reduced.row(place.first, reduceRow);
        if (place.isCopied)
            kernels::storeRow(above, count, dst);
        else
            kernels::blendRows(above, reduced.row(place.second, reduceRow), place.fraction, count, dst);
    }
}

/// The size that the table of the state names, or the rule.
LumSize expectedSize(const LumPyramidLayerDownState& state, LumSize srcRoi) {
    for (int i = 0; state.sizes != nullptr && i < state.sizeCount - 1; ++i)
        if (isSameSize(state.sizes[i], srcRoi)) return state.sizes[i + 1];
    return sizeBelow(srcRoi, state.rate);
}

template <class T, int channels> void runLayerDown(const LayerRun<T>& run) {
    const auto halved = [&](int pixels) {
        return floatsOfHalvedStrip(pixels, run.kernelSize, channels, ringRows(run));
    };
    const auto interpolated = [&](int pixels) {
        return floatsOfInterpolatedStrip(pixels, run.srcRoi, run.rate, run.kernelSize, channels,
                                         ringRows(run));
    };
    const auto isInside = [](int length, int results) { return results <= (length + std::int64_t{1}) / 2; };
    const bool isHalf = isRateTwo(run.rate) && isInside(run.srcRoi.width, run.dstRoi.width) &&
                        isInside(run.srcRoi.height, run.dstRoi.height);
    if (!isHalf) return inStrips(run, run.dstRoi.width, interpolated, interpolateStrip<T, channels>);
    const auto inHalvedStrips = [&](void (*strip)(const LayerRun<T>&, int, int)) {
        inStrips(run, run.dstRoi.width, halved, strip);
    };
    if (run.kernelSize != 5) return inHalvedStrips(halveStrip<T, channels>);
    if constexpr (std::is_same_v<T, Lum8u>)
        if (isBinomial(run.stage.weights, run.kernelSize))
            return inHalvedStrips(halveFiveStrip<BinomialStage<channels>, channels>);
    inHalvedStrips(halveFiveStrip<FiveTapStage<T, channels>, channels>);
}

/// The tests of a run and the run, with plain and with pointer-wide steps.
template <class T, int channels, class Step>
LumStatus layerDown(const T* src, Step srcStep, LumSize srcRoi, T* dst, Step dstStep, LumSize dstRoi,
                    LumPyramidLayerDownState* state) {
    if (auto s = checkLayerRun<T, channels>(src, srcStep, srcRoi, dst, dstStep, dstRoi, state)) return s;
    if (auto s = firstFailure(errorIf(!isSameSize(dstRoi, expectedSize(*state, srcRoi)), lumStatusSizeError),
                              errorIf(state->ready != 1, lumStatusBadArgument)))
        return s;
    runLayerDown<T, channels>(
        {{src, srcStep}, srcRoi, {dst, dstStep}, dstRoi, state->stage, state->kernelSize, state->rate});
    return lumStatusOk;
}

} // namespace

template <class T, int channels>
LumStatus pyramidLayerDown(const T* src, int srcStep, LumSize srcRoi, T* dst, int dstStep, LumSize dstRoi,
                           LumPyramidLayerDownState* state) {
    return layerDown<T, channels>(src, srcStep, srcRoi, dst, dstStep, dstRoi, state);
}

LumStatus pyramidLayerDownL(const Lum32f* src, intptr_t srcStep, LumSizeL srcRoi, Lum32f* dst,
                            intptr_t dstStep, LumSizeL dstRoi, LumPyramidLayerDownState* state) {
    if (auto s = firstFailure(checkNotNull(src, dst, state), checkSize(srcRoi, dstRoi),
                              checkSizeIn32Bits(srcRoi), checkSizeIn32Bits(dstRoi)))
        return s;
    return layerDown<Lum32f, 1>(src, srcStep, in32Bits(srcRoi), dst, dstStep, in32Bits(dstRoi), state);
}

LUM_INSTANCES(pyramidLayerDown, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1), (Lum32f, 3));

} // namespace lum
