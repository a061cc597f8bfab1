// What the runs of both layer operators begin with: their tests, and strips of columns.
#pragma once

#include <algorithm>

#include "frame/check.h"
#include "frame/image.h"
#include "pyramid/level_sizes.h"
#include "pyramid/row_stage.h"

namespace lum {

/// What the strips of a run share.
template <class T> struct LayerRun {
    Image<const T> src;
    LumSize srcRoi;
    Image<T> dst;
    LumSize dstRoi;
    const PyramidRowStage& stage;
    int kernelSize;
    Lum32f rate;

    int radius() const { return kernelSize / 2; }
};

/// The tests that come before the size of the result; steps are plain or pointer-wide.
template <class T, int channels, class Step, class State>
LumStatus checkLayerRun(const T* src, Step srcStep, LumSize srcRoi, const T* dst, Step dstStep,
                        LumSize dstRoi, const State* state) {
    if (auto s = firstFailure(checkNotNull(src, dst, state), checkSize(srcRoi, dstRoi),
                              checkStep(rowBytes<T>(srcRoi.width, channels), srcStep),
                              checkStep(rowBytes<T>(dstRoi.width, channels), dstStep),
                              checkStepAlignment<T>(srcStep, dstStep)))
        return s;
    return checkRate(state->rate);
}

/// Calls strip(run, x, pixels) for strips of `columns` columns, all alike, as wide as the work memory allows where
/// floatsOf(pixels) is what a strip takes. One pixel always fits.
template <class T, class FloatsOf>
void inStrips(const LayerRun<T>& run, int columns, FloatsOf floatsOf,
              void (*strip)(const LayerRun<T>&, int, int)) {
    int pixels = std::min(columns, longestStrip);
    while (pixels > 1 && floatsOf(pixels) > run.stage.workFloats) pixels -= pixels / 2;
    const int strips = (columns - 1) / pixels + 1;
    pixels = (columns - 1) / strips + 1;
    for (int x = 0; x < columns; x += pixels) strip(run, x, std::min(pixels, columns - x));
}

} // namespace lum
