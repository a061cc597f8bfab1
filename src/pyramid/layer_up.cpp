#include "pyramid/layer_up.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

#include "frame/convert.h"
#include "frame/instances.h"
#include "kernels/pyramid/double.h"
#include "kernels/pyramid/double_8u.h"
#include "kernels/pyramid/interpolate.h"
#include "kernels/pyramid/weighted_rows.h"
#include "pyramid/layer_run.h"

namespace lum {
namespace {

using kernels::PixelPlace;

/// Rows that the window of the kernel holds.
template <class T> int ringRows(const LayerRun<T>& run) {
    return std::min(run.kernelSize, run.dstRoi.height);
}

// ---- rate 2 and the kernel 1 4 6 4 1: pixels, and pixels between them

/// The neighbours of an element of an axis, reflected at its ends.
struct Neighbours {
    int before;
    int after;

    Neighbours(int i, int length)
        : before(borderIndex(i - 1, length, mirroredAxis)), after(borderIndex(i + 1, length, mirroredAxis)) {}
};

/// A strip of pixels of the source.
template <class T, int channels> void doubleStrip(const LayerRun<T>& run, int firstPixel, int pixels) {
    const int width = run.srcRoi.width;
    const int height = run.srcRoi.height;
    const int end = firstPixel + pixels;
    const std::ptrdiff_t count = elements<channels>(std::min(2 * pixels, run.dstRoi.width - 2 * firstPixel));
    RowRing<float> ring(run.stage.work, workRow(elements<channels>(2 * pixels)), 3);
    const auto makeRow = [&](int y, float* slot) {
        const T* row = run.src.row(y);
        const auto atEnd = [&](int x, int neighbour) {
            kernels::doubleEndPixel(row + elements<channels>(x), row + elements<channels>(neighbour),
                                    channels, slot + elements<channels>(2 * (x - firstPixel)));
        };
        const int inner = std::max(firstPixel, 1);
        const int innerEnd = std::min(end, width - 1);
        if (inner < innerEnd)
            kernels::doubleRow<T, channels>(row + elements<channels>(inner), innerEnd - inner,
                                            slot + elements<channels>(2 * (inner - firstPixel)));
        if (firstPixel == 0) atEnd(0, Neighbours(0, width).after);
        if (end == width) atEnd(width - 1, Neighbours(width - 1, width).before);
    };
    for (int y = 0; y < height; ++y) {
        const Neighbours neighbours(y, height);
        fillWindow(ring, y, 1, height, makeRow);
        const kernels::DoubledRows rows{ring.row(neighbours.before), ring.row(y), ring.row(neighbours.after)};
        const auto resultRow = [&](int i) { return run.dst.row(i) + elements<channels>(2 * firstPixel); };
        const auto make = [&](auto kernel, int i) {
            if (i < run.dstRoi.height)
                kernel(rows, count, resultRow(i), resultRow(std::min(i + 2, run.dstRoi.height - 1)));
        };
        make(kernels::doubleEvenRow<T>, 2 * y);
        make(kernels::doubleOddRow<T>, 2 * y + 1);
    }
}

/// The same of 8-bit pixels in integers, where the order of the directions makes no difference: down the columns first.
template <int channels> void doubleStrip8u(const LayerRun<Lum8u>& run, int firstPixel, int pixels) {
    const int width = run.srcRoi.width;
    const int height = run.srcRoi.height;
    const int end = firstPixel + pixels;
    // With the pixel before the strip and the one after it.
    const int first = std::max(firstPixel - 1, 0);
    const int last = std::min(end, width - 1);
    const std::ptrdiff_t length = elements<channels>(pixels + 2);
    auto* words = reinterpret_cast<Lum16u*>(run.stage.work) + channels;
    Lum16u* const sums[2] = {words, words + length};
    const auto sumsAt = [&](int parity, int x) { return sums[parity] + elements<channels>(x - firstPixel); };
    // The last pair of results may lie half outside.
    const bool isCut = 2 * end > run.dstRoi.width;
    const int whole = isCut ? pixels - 1 : pixels;
    for (int y = 0; y < height; ++y) {
        const Neighbours rows(y, height);
        const auto rowAt = [&](int row) { return run.src.row(row) + elements<channels>(first); };
        kernels::doubleColumn8u(rowAt(rows.before), rowAt(y), rowAt(rows.after),
                                elements<channels>(last - first + 1), sumsAt(0, first), sumsAt(1, first));
        for (int parity = 0; parity < 2 && 2 * y + parity < run.dstRoi.height; ++parity) {
            if (firstPixel == 0)
                std::copy_n(sumsAt(parity, Neighbours(0, width).after), channels, sumsAt(parity, -1));
            if (end == width)
                std::copy_n(sumsAt(parity, Neighbours(width - 1, width).before), channels,
                            sumsAt(parity, width));
            Lum8u* dst = run.dst.row(2 * y + parity) + elements<channels>(2 * firstPixel);
            kernels::doubleRow8u<channels>(sums[parity], whole, dst);
            if (isCut) {
                Lum8u pair[2 * channels];
                kernels::doubleRow8uScalar<channels>(sumsAt(parity, end - 1), 1, pair);
                std::copy_n(pair, channels, dst + elements<channels>(2 * whole));
            }
        }
    }
}

// ---- general case: an expansion by linear interpolation, then the kernel

/// How near to a pixel a place is taken for the pixel: above what adding 100 takes from places in small images.
constexpr float wholeTolerance = 1e-5F;

/// Where result i lies along an axis of `length` pixels; one pixel past its end is a reflection.
PixelPlace placeAbove(int i, Lum32f rate, int length) {
    const float position = static_cast<float>(i) / rate;
    const int pixel = truncatedTo32s(static_cast<double>(position + 100.0F)) - 100;
    const float fraction = position - static_cast<float>(pixel);
    return {borderIndex(pixel, length, mirroredAxis), borderIndex(pixel + 1, length, mirroredAxis), fraction,
            std::fabs(fraction) <= wholeTolerance};
}

/// The places from `begin` to before `end`, in pairs: a pixel, and half way from it to the next, of one pixel after
/// another. With rate 2 all inside the image are.
struct PairsOfPlaces {
    int begin = 0;
    int end;

    PairsOfPlaces(const PixelPlace* places, int count) {
        const auto isPair = [places](int i, int pixel) {
            const PixelPlace& half = places[i + 1];
            return places[i].isCopied && places[i].first == pixel && !half.isCopied && half.first == pixel &&
                   half.second == pixel + 1 && half.fraction == 0.5F;
        };
        while (begin < count - 1 && !isPair(begin, places[begin].first)) ++begin;
        end = begin;
        while (end < count - 1 && isPair(end, places[begin].first + (end - begin) / 2)) end += 2;
    }
};

template <class T, int channels> void expandStrip(const LayerRun<T>& run, int firstPixel, int pixels) {
    const int radius = run.radius();
    const int height = run.dstRoi.height;
    const int taken = pixels + 2 * radius;
    const std::ptrdiff_t count = elements<channels>(pixels);
    const std::ptrdiff_t takenCount = elements<channels>(taken);

    Arena arena(run.stage.work);
    auto* places = arena.allocate<PixelPlace>(taken);
    for (int i = 0; i < taken; ++i)
        places[i] = placeAbove(borderIndex(firstPixel - radius + i, run.dstRoi.width, mirroredAxis), run.rate,
                               run.srcRoi.width);
    const PairsOfPlaces pairs(places, taken);
    float* kept = arena.allocate<float>(2 * workRow(takenCount));
    KeptRows expanded(kept, kept + workRow(takenCount));
    float* between = arena.allocate<float>(workRow(takenCount));
    RowRing<float> ring(arena.allocate<float>(ringRows(run) * workRow(count)), workRow(count), ringRows(run));

    const float** rows = run.stage.rows;
    const auto expandRow = [&](int y, float* out) {
        const T* row = run.src.row(y);
        const auto interpolate = [&](int begin, int end) {
            kernels::interpolatePixels<T, channels>(row, places + begin, end - begin,
                                                    out + elements<channels>(begin));
        };
        interpolate(0, pairs.begin);
        if (pairs.begin < pairs.end)
            kernels::interpolateHalves<T, channels>(row + elements<channels>(places[pairs.begin].first),
                                                    (pairs.end - pairs.begin) / 2,
                                                    out + elements<channels>(pairs.begin));
        interpolate(pairs.end, taken);
    };
    const auto makeRow = [&](int y, float* slot) {
        const PixelPlace place = placeAbove(y, run.rate, run.srcRoi.height);
        const float* row = expanded.row(place.first, expandRow);
        if (!place.isCopied) {
            kernels::blendRows(row, expanded.row(place.second, expandRow), place.fraction, takenCount,
                               between);
            row = between;
        }
        for (int k = 0; k < run.kernelSize; ++k) rows[k] = row + elements<channels>(k);
        kernels::weightedRows(rows, run.stage.weights, radius, count, slot);
    };
    for (int y = 0; y < height; ++y) {
        fillWindow(ring, y, radius, height, makeRow);
        pointAtWindow(ring, y, radius, height, rows);
        kernels::weightedRows(rows, run.stage.weights, radius, count,
                              run.dst.row(y) + elements<channels>(firstPixel));
    }
}

template <class T, int channels> void runLayerUp(const LayerRun<T>& run) {
    if (run.rate == 2 && isBinomial(run.stage.weights, run.kernelSize)) {
        const auto floatsOf = [](int pixels) { return floatsOfDoubledStrip(pixels, channels); };
        if constexpr (std::is_same_v<T, Lum8u>)
            inStrips(run, run.srcRoi.width, floatsOf, doubleStrip8u<channels>);
        else
            inStrips(run, run.srcRoi.width, floatsOf, doubleStrip<T, channels>);
        return;
    }
    const auto floatsOf = [&](int pixels) {
        return floatsOfExpandedStrip(pixels, run.kernelSize, channels, ringRows(run));
    };
    inStrips(run, run.dstRoi.width, floatsOf, expandStrip<T, channels>);
}

/// The tests of a run and the run, with plain and with pointer-wide steps.
template <class T, int channels, class Step>
LumStatus layerUp(const T* src, Step srcStep, LumSize srcRoi, T* dst, Step dstStep, LumSize dstRoi,
                  LumPyramidLayerUpState* state) {
    if (auto s = checkLayerRun<T, channels>(src, srcStep, srcRoi, dst, dstStep, dstRoi, state)) return s;
    if (auto s = firstFailure(errorIf(!fitsAbove(dstRoi, srcRoi, state->rate), lumStatusSizeError),
                              errorIf(state->ready != 1, lumStatusBadArgument)))
        return s;
    runLayerUp<T, channels>(
        {{src, srcStep}, srcRoi, {dst, dstStep}, dstRoi, state->stage, state->kernelSize, state->rate});
    return lumStatusOk;
}

} // namespace

template <class T, int channels>
LumStatus pyramidLayerUp(const T* src, int srcStep, LumSize srcRoi, T* dst, int dstStep, LumSize dstRoi,
                         LumPyramidLayerUpState* state) {
    return layerUp<T, channels>(src, srcStep, srcRoi, dst, dstStep, dstRoi, state);
}

LumStatus pyramidLayerUpL(const Lum32f* src, intptr_t srcStep, LumSizeL srcRoi, Lum32f* dst, intptr_t dstStep,
                          LumSizeL dstRoi, LumPyramidLayerUpState* state) {
    if (auto s = firstFailure(checkNotNull(src, dst, state), checkSize(srcRoi, dstRoi),
                              checkSizeIn32Bits(srcRoi), checkSizeIn32Bits(dstRoi)))
        return s;
    return layerUp<Lum32f, 1>(src, srcStep, in32Bits(srcRoi), dst, dstStep, in32Bits(dstRoi), state);
}

LUM_INSTANCES(pyramidLayerUp, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1), (Lum32f, 3));

} // namespace lum
