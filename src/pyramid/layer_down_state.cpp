#include "pyramid/layer_down_state.h"

#include <algorithm>
#include <type_traits>

#include "frame/convert.h"
#include "frame/instances.h"
#include "kernels/pyramid/interpolate.h"
#include "pyramid/level_sizes.h"
#include "pyramid/reported_bytes.h"

namespace lum {
namespace {

/// Regions that exceed the kernel in both directions keep a table of the level sizes.
constexpr bool hasTable(LumSize srcRoi, int kernelSize) {
    return kernelSize < srcRoi.width && kernelSize < srcRoi.height;
}

/// Bytes of a state whose size is that of its pieces: the sum in 64 bits, since a query may name any kernel.
std::int64_t bytesOfPieces(int kernelSize, std::int64_t sizeCount, std::int64_t workFloats) {
    constexpr std::int64_t alignment = 64 + alignof(LumPyramidLayerDownState);
    constexpr std::int64_t bytesOfTap = sizeof(Lum32f) + sizeof(float*);
    return alignment + std::int64_t{sizeof(LumPyramidLayerDownState)} + bytesOfTap * kernelSize +
           std::int64_t{sizeof(Lum32f)} * (kernelSize / 2 + 1) + std::int64_t{sizeof(LumSize)} * sizeCount +
           std::int64_t{sizeof(float)} * workFloats;
}

/// The size of the state of 16u and one channel, whose formula callers know. In double precision, which no region and
/// kernel exceed; 64-bit pointers are counted in.
double bytesOf16uC1(LumSize srcRoi, int kernelSize, int levels) {
    constexpr double bytesOfFields32 = 48 + 4 + 16;
    const double K = kernelSize;
    const int halfKernel = kernelSize / 2;
    const double a = halfKernel;
    const double widerPointers =
        sizeof(void*) == 4 ? 0 : sizeof(LumPyramidLayerDownState) - bytesOfFields32 + 4 * K;
    if (hasTable(srcRoi, kernelSize)) {
        const auto P =
            static_cast<double>(roundedUp<std::int64_t>(std::max(srcRoi.width, 2 * kernelSize), 4));
        const double Q = std::max(srcRoi.height, 2 * kernelSize);
        return ((K + a + P) * 4 + 110) * K + 4 * P * Q + 4 * std::max(P, Q) + 96 * a + 8.0 * levels + 352 +
               widerPointers;
    }
    const auto V = static_cast<double>(roundedUp<std::int64_t>(srcRoi.width, 8));
    const double H = srcRoi.height;
    return ((K + H) * (K + V) + std::max(V, H)) * 4 + (K + (a + K) * 2 * K) * 2 + 248 + (4 * V + 52) * K +
           widerPointers;
}

template <class T, int channels> Lum32s stateBytes(LumSize srcRoi, Lum32f rate, int kernelSize) {
    const int levels = hasTable(srcRoi, kernelSize) ? levelsBelow(srcRoi, rate) : 0;
    if constexpr (std::is_same_v<T, Lum16u> && channels == 1)
        return truncatedTo32s(bytesOf16uC1(srcRoi, kernelSize, levels));
    const std::int64_t width = std::min<std::int64_t>(lengthBelow(srcRoi.width, rate), longestStrip);
    // A larger region than this one runs in narrow strips, of one pixel at least.
    std::int64_t floats = floatsOfInterpolatedStrip(1, {2, 2}, rate, kernelSize, channels, kernelSize);
    floats = std::max(floats, isRateTwo(rate) ? floatsOfHalvedStrip(width, kernelSize, channels, kernelSize)
                                              : floatsOfInterpolatedStrip(width, srcRoi, rate, kernelSize,
                                                                          channels, kernelSize));
    return reportedBytes(bytesOfPieces(kernelSize, hasTable(srcRoi, kernelSize) ? levels + 1 : 0, floats));
}

template <class Tap> FastCase fastCaseOf(Lum32f rate, const Tap* kernel, int kernelSize) {
    if (!isRateTwo(rate)) return fastCaseNone;
    return kernelSize == 5 && kernel[0] == 1 && kernel[1] == 4 && kernel[2] == 6 ? fastCaseBinomial
                                                                                 : fastCaseRateTwo;
}

} // namespace

std::int64_t floatsOfHalvedStrip(std::int64_t pixels, int kernelSize, int channels, int slots) {
    return 2 * workRow((pixels + kernelSize / 2) * channels) + slots * workRow(pixels * channels);
}

std::int64_t floatsOfInterpolatedStrip(std::int64_t pixels, LumSize srcRoi, Lum32f rate, int kernelSize,
                                       int channels, int slots) {
    constexpr std::int64_t floatsOfPlace = sizeof(kernels::PixelPlace) / sizeof(float);
    // From the first pixel of the first result to the second one of the last, with what single precision may add.
    const std::int64_t reach =
        pixels == 1 ? 2
                    : truncatedTo32s(static_cast<double>(pixels - 1) * static_cast<double>(rate)) +
                          std::int64_t{4} + (srcRoi.width >> 22);
    const std::int64_t span = std::min<std::int64_t>(srcRoi.width, reach);
    return workRow((span + kernelSize - 1) * channels) +
           (slots + std::int64_t{1}) * workRow(span * channels) + 2 * workRow(pixels * channels) +
           floatsOfPlace * pixels;
}

template <class T, int channels>
LumStatus pyramidLayerDownGetSize(LumSize srcRoi, Lum32f rate, int kernelSize, Lum32s* stateSize,
                                  Lum32s* bufferSize) {
    if (auto s = firstFailure(checkNotNull(stateSize, bufferSize), checkSize(srcRoi), checkRate(rate),
                              checkKernelSize(kernelSize)))
        return s;
    *stateSize = stateBytes<T, channels>(srcRoi, rate, kernelSize);
    *bufferSize = reportedBytes(std::int64_t{8} * std::max(srcRoi.width, srcRoi.height));
    return lumStatusOk;
}

LumStatus pyramidLayerDownGetSizeL(LumSizeL srcRoi, Lum32f rate, int kernelSize, Lum32s* stateSize,
                                   Lum32s* bufferSize) {
    if (auto s =
            firstFailure(checkNotNull(stateSize, bufferSize), checkSize(srcRoi), checkSizeIn32Bits(srcRoi)))
        return s;
    return pyramidLayerDownGetSize<Lum32f, 1>(in32Bits(srcRoi), rate, kernelSize, stateSize, bufferSize);
}

template <class T, int channels>
LumStatus pyramidLayerDownInit(LumPyramidLayerDownState** state, LumSize srcRoi, Lum32f rate,
                               const PyramidTap<T>* kernel, int kernelSize, int mode, Lum8u* memory,
                               Lum8u* buffer) {
    const bool withTable = hasTable(srcRoi, kernelSize);
    if (auto s = firstFailure(errorIf(mode != pyramidMode, lumStatusBadArgument),
                              checkNotNull(state, kernel, memory),
                              errorIf(withTable && buffer == nullptr, lumStatusNullPointer),
                              checkSize(srcRoi), checkRate(rate), checkKernelSize(kernelSize)))
        return s;
    Arena arena(memory);
    auto* object =
        arena.align(alignof(LumPyramidLayerDownState)).template allocate<LumPyramidLayerDownState>();
    auto* rows = arena.template allocate<const float*>(kernelSize);
    object->sizes = nullptr;
    object->sizeCount = 0;
    if (withTable) {
        object->sizeCount = levelsBelow(srcRoi, rate) + 1;
        object->sizes = arena.template allocate<LumSize>(object->sizeCount);
        LumSize size = srcRoi;
        for (int i = 0; i < object->sizeCount; ++i, size = sizeBelow(size, rate)) object->sizes[i] = size;
    }
    auto* weights = arena.template allocate<Lum32f>(kernelSize / 2 + 1);
    if constexpr (std::is_integral_v<T>) {
        auto* taps = arena.template allocate<Lum32s>(kernelSize);
        normaliseFixed(kernel, kernelSize, taps);
        for (int i = 0; i <= kernelSize / 2; ++i)
            weights[i] = static_cast<Lum32f>(taps[i]) / (1 << kernelFractionBits);
        object->kernelCopy = taps;
    } else {
        auto* taps = arena.template allocate<Lum32f>(kernelSize);
        normaliseFloat(kernel, kernelSize, taps);
        std::copy_n(taps, kernelSize / 2 + 1, weights);
        object->kernelCopy = taps;
    }
    auto* work = arena.align(64).template allocate<float>(0);
    const std::size_t bytes = static_cast<std::size_t>(stateBytes<T, channels>(srcRoi, rate, kernelSize));
    object->stage = {weights, rows, work,
                     static_cast<std::ptrdiff_t>((bytes - arena.used()) / sizeof(float))};
    object->work = work;
    object->extended = rows;
    object->kernelSize = kernelSize;
    object->dataType = pyramidDataType<T>;
    object->width = srcRoi.width;
    object->height = srcRoi.height;
    object->mode = mode;
    object->rate = rate;
    object->fastCase = fastCaseOf(rate, kernel, kernelSize);
    object->ready = 1;
    *state = object;
    return symmetryOf(kernel, kernelSize);
}

LumStatus pyramidLayerDownInitL(LumPyramidLayerDownState** state, LumSizeL srcRoi, Lum32f rate,
                                const Lum32f* kernel, int kernelSize, int mode, Lum8u* memory,
                                Lum8u* buffer) {
    if (auto s = firstFailure(
            errorIf(mode != pyramidMode, lumStatusBadArgument), checkNotNull(state, kernel, memory),
            errorIf(kernelSize < srcRoi.width && kernelSize < srcRoi.height && buffer == nullptr,
                    lumStatusNullPointer),
            checkSize(srcRoi), checkSizeIn32Bits(srcRoi)))
        return s;
    return pyramidLayerDownInit<Lum32f, 1>(state, in32Bits(srcRoi), rate, kernel, kernelSize, mode, memory,
                                           buffer);
}

LUM_INSTANCES(pyramidLayerDownGetSize, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1),
              (Lum32f, 3));
LUM_INSTANCES(pyramidLayerDownInit, (Lum8u, 1), (Lum8u, 3), (Lum16u, 1), (Lum16u, 3), (Lum32f, 1),
              (Lum32f, 3));

} // namespace lum
