#include "pyramid/layer_up_state.h"

#include <algorithm>

#include "frame/instances.h"
#include "kernels/pyramid/interpolate.h"
#include "pyramid/level_sizes.h"
#include "pyramid/reported_bytes.h"

namespace lum {
namespace {

/// The state and what goes with it, before the work memory.
std::int64_t bytesBeforeWork(int kernelSize) {
    constexpr std::int64_t alignment = 64 + alignof(LumPyramidLayerUpState);
    return alignment + std::int64_t{sizeof(LumPyramidLayerUpState)} +
           std::int64_t{sizeof(float*)} * kernelSize + std::int64_t{sizeof(Lum32f)} * kernelSize;
}

template <int channels> Lum32s stateBytes(LumSize srcRoi, Lum32f rate, int kernelSize) {
    const std::int64_t width = std::min<std::int64_t>(lengthsAbove(srcRoi.width, rate).most, longestStrip);
    const std::int64_t floats = std::max(floatsOfExpandedStrip(width, kernelSize, channels, kernelSize),
                                         floatsOfDoubledStrip((width + 1) / 2, channels));
    return reportedBytes(bytesBeforeWork(kernelSize) + std::int64_t{sizeof(float)} * floats);
}

LumStatus checkUpSize(LumSize srcRoi, Lum32f rate, int kernelSize) {
    return firstFailure(checkSize(srcRoi), checkRate(rate), checkKernelSize(kernelSize));
}

/// In single precision for all elements; a sum of integers may be 0, and they are then taken as they are.
template <class Tap> void normaliseUp(const Tap* kernel, int kernelSize, Lum32f* normalised) {
    if (std::is_integral_v<Tap> && sumOfKernel<std::int64_t>(kernel, kernelSize) == 0)
        std::copy_n(kernel, kernelSize / 2 + 1, normalised);
    else
        normaliseFloat(kernel, kernelSize, normalised);
}

} // namespace

std::int64_t floatsOfExpandedStrip(std::int64_t pixels, int kernelSize, int channels, int slots) {
    constexpr std::int64_t floatsOfPlace = sizeof(kernels::PixelPlace) / sizeof(float);
    const std::int64_t extended = pixels + kernelSize - 1;
    return floatsOfPlace * extended + 3 * workRow(extended * channels) + slots * workRow(pixels * channels);
}

std::int64_t floatsOfDoubledStrip(std::int64_t pixels, int channels) {
    return 3 * workRow(2 * pixels * channels + 2 * channels);
}

template <class T, int channels>
LumStatus pyramidLayerUpGetSize(LumSize srcRoi, Lum32f rate, int kernelSize, Lum32s* stateSize,
                                Lum32s* bufferSize) {
    if (auto s = firstFailure(checkUpSize(srcRoi, rate, kernelSize), checkNotNull(stateSize, bufferSize)))
        return s;
    *stateSize = stateBytes<channels>(srcRoi, rate, kernelSize);
    *bufferSize = reportedBytes(std::int64_t{8} * std::max(srcRoi.width, srcRoi.height));
    return lumStatusOk;
}

LumStatus pyramidLayerUpGetSizeL(LumSizeL srcRoi, Lum32f rate, int kernelSize, Lum32s* stateSize,
                                 Lum32s* bufferSize) {
    if (auto s = firstFailure(checkSize(srcRoi), checkSizeIn32Bits(srcRoi))) return s;
    return pyramidLayerUpGetSize<Lum32f, 1>(in32Bits(srcRoi), rate, kernelSize, stateSize, bufferSize);
}

template <class T, int channels>
LumStatus pyramidLayerUpInit(LumPyramidLayerUpState** state, LumSize srcRoi, Lum32f rate,
                             const PyramidTap<T>* kernel, int kernelSize, int mode, Lum8u* memory,
                             Lum8u* buffer) {
    if (auto s =
            firstFailure(checkUpSize(srcRoi, rate, kernelSize), checkNotNull(state, kernel, memory, buffer),
                         errorIf(mode != pyramidMode, lumStatusBadArgument)))
        return s;
    Arena arena(memory);
    auto* object = arena.align(alignof(LumPyramidLayerUpState)).template allocate<LumPyramidLayerUpState>();
    auto* rows = arena.template allocate<const float*>(kernelSize);
    auto* weights = arena.template allocate<Lum32f>(kernelSize);
    normaliseUp(kernel, kernelSize, weights);
    auto* work = arena.align(64).template allocate<float>(0);
    const auto bytes = static_cast<std::size_t>(stateBytes<channels>(srcRoi, rate, kernelSize));
    object->stage = {weights, rows, work,
                     static_cast<std::ptrdiff_t>((bytes - arena.used()) / sizeof(float))};
    object->kernelSize = kernelSize;
    object->dataType = pyramidDataType<T>;
    object->width = srcRoi.width;
    object->height = srcRoi.height;
    object->mode = mode;
    object->rate = rate;
    object->ready = 1;
    *state = object;
    return symmetryOf(kernel, kernelSize);
}

LumStatus pyramidLayerUpInitL(LumPyramidLayerUpState** state, LumSizeL srcRoi, Lum32f rate,
                              const Lum32f* kernel, int kernelSize, int mode, Lum8u* memory, Lum8u* buffer) {
    if (auto s = firstFailure(checkSize(srcRoi), checkSizeIn32Bits(srcRoi))) return s;
    return pyramidLayerUpInit<Lum32f, 1>(state, in32Bits(srcRoi), rate, kernel, kernelSize, mode, memory,
                                         buffer);
}

LUM_INSTANCES(pyramidLayerUpGetSize, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1),
              (Lum32f, 3));
LUM_INSTANCES(pyramidLayerUpInit, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1), (Lum32f, 3));

} // namespace lum
