// The state of a layer-up operator: its fields, the bytes it takes, and its initialiser.
#pragma once

#include <cstddef>

#include "lumcv/pyramid_layer.h"
#include "pyramid/layer_kernel.h"
#include "pyramid/row_stage.h"

struct LumPyramidLayerUpState {
    lum::PyramidRowStage stage;
    Lum32s kernelSize;
    LumDataType dataType;
    Lum32s width;
    Lum32s height;
    Lum32s mode;
    Lum32f rate;
    Lum32s ready;
};

namespace lum {

/// Floats of the work memory that a strip of `pixels` results takes, with the given number of rows in its ring.
std::int64_t floatsOfExpandedStrip(std::int64_t pixels, int kernelSize, int channels, int slots);
/// The same with rate 2 and the kernel 1 4 6 4 1; pixels are those of the source.
std::int64_t floatsOfDoubledStrip(std::int64_t pixels, int channels);

/// The queries and initialisers; T is Lum8u, Lum16u or Lum32f, with one or three channels.
template <class T, int channels>
LumStatus pyramidLayerUpGetSize(LumSize srcRoi, Lum32f rate, int kernelSize, Lum32s* stateSize,
                                Lum32s* bufferSize);
LumStatus pyramidLayerUpGetSizeL(LumSizeL srcRoi, Lum32f rate, int kernelSize, Lum32s* stateSize,
                                 Lum32s* bufferSize);

template <class T, int channels>
LumStatus pyramidLayerUpInit(LumPyramidLayerUpState** state, LumSize srcRoi, Lum32f rate,
                             const PyramidTap<T>* kernel, int kernelSize, int mode, Lum8u* memory,
                             Lum8u* buffer);
LumStatus pyramidLayerUpInitL(LumPyramidLayerUpState** state, LumSizeL srcRoi, Lum32f rate,
                              const Lum32f* kernel, int kernelSize, int mode, Lum8u* memory, Lum8u* buffer);

} // namespace lum
