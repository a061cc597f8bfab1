// The state of a layer-down operator: its fields, the bytes it takes, and its initialiser.
#pragma once

#include <cstddef>

#include "lumcv/pyramid_layer.h"
#include "pyramid/layer_kernel.h"
#include "pyramid/row_stage.h"

struct LumPyramidLayerDownState {
    /// Work memory of the runs.
    void* work;
    /// Row pointers of the window.
    void* extended;
    /// kernelSize taps, normalised and symmetric: Lum32s with 12 bits after the binary point, or Lum32f.
    void* kernelCopy;
    /// The sizes of the levels from the region given to Init down to 1 x 1; null for a region that does not exceed the
    /// kernel.
    LumSize* sizes;
    Lum32s sizeCount;
    Lum32s kernelSize;
    LumDataType dataType;
    Lum32s width;
    Lum32s height;
    Lum32s mode;
    Lum32f rate;
    Lum32s ready;

    /// One of the values of FastCase.
    Lum32s fastCase;
    lum::PyramidRowStage stage;
};

namespace lum {

static_assert(sizeof(void*) != 4 || (offsetof(LumPyramidLayerDownState, sizeCount) == 16 &&
                                     offsetof(LumPyramidLayerDownState, ready) == 44 &&
                                     offsetof(LumPyramidLayerDownState, fastCase) == 48));

/// What a run may take for granted of the rate and the kernel.
enum FastCase : Lum32s {
    fastCaseNone = 0,
    fastCaseRateTwo = 1,
    /// The kernel as given has five taps and starts 1, 4, 6.
    fastCaseBinomial = 11
};

/// Whether rates are taken for 2.
constexpr bool isRateTwo(Lum32f rate) { return rate > 1.99998F && rate < 2.00002F; }

/// Floats of the work memory that a strip of `pixels` results takes, with the given number of rows in its ring. With rate 2 a row
/// is split into its even and odd pixels and its sums are made for the results alone.
std::int64_t floatsOfHalvedStrip(std::int64_t pixels, int kernelSize, int channels, int slots);
/// With other rates every pixel between the first and the last result is smoothed.
std::int64_t floatsOfInterpolatedStrip(std::int64_t pixels, LumSize srcRoi, Lum32f rate, int kernelSize,
                                       int channels, int slots);

/// The queries and initialisers; T is Lum8u, Lum16u or Lum32f, with one or three channels.
template <class T, int channels>
LumStatus pyramidLayerDownGetSize(LumSize srcRoi, Lum32f rate, int kernelSize, Lum32s* stateSize,
                                  Lum32s* bufferSize);
LumStatus pyramidLayerDownGetSizeL(LumSizeL srcRoi, Lum32f rate, int kernelSize, Lum32s* stateSize,
                                   Lum32s* bufferSize);

template <class T, int channels>
LumStatus pyramidLayerDownInit(LumPyramidLayerDownState** state, LumSize srcRoi, Lum32f rate,
                               const PyramidTap<T>* kernel, int kernelSize, int mode, Lum8u* memory,
                               Lum8u* buffer);
LumStatus pyramidLayerDownInitL(LumPyramidLayerDownState** state, LumSizeL srcRoi, Lum32f rate,
                                const Lum32f* kernel, int kernelSize, int mode, Lum8u* memory, Lum8u* buffer);

} // namespace lum
