#include "filter/gaussian_spec.h"

#include <cmath>
#include <cstddef>

#include "frame/convert.h"

namespace lum {
namespace {

static_assert(sizeof(LumFilterGaussianSpecL) == 20 && sizeof(LumFilterGaussianSpec) == 20);
static_assert(offsetof(LumFilterGaussianSpecL, kernelSize) == 0);
static_assert(offsetof(LumFilterGaussianSpecL, kernelOffset) == 4);
static_assert(offsetof(LumFilterGaussianSpecL, dataType) == 8);
static_assert(offsetof(LumFilterGaussianSpecL, unused) == 12);
static_assert(offsetof(LumFilterGaussianSpecL, shift) == 16);
static_assert(offsetof(LumFilterGaussianSpec, kernelSize) == 0);
static_assert(offsetof(LumFilterGaussianSpec, kernelOffset) == 4);
static_assert(offsetof(LumFilterGaussianSpec, dataType) == 8);
static_assert(offsetof(LumFilterGaussianSpec, border) == 12);
static_assert(offsetof(LumFilterGaussianSpec, shift) == 16);

/// exp(-r^2 / (2 sigma^2)): the exponent in single precision, its exponential in double. At the centre it is 1, also
/// where the square of sigma vanishes.
float weightAt(float r, float sigma) {
    if (r == 0) return 1;
    const float exponent = -(r * r) / ((sigma + sigma) * sigma);
    // Smaller than the least double. Not every C runtime gives 0 there: Wine's is wrong from -1024 on.
    if (exponent < -750) return 0;
    return static_cast<float>(std::exp(static_cast<double>(exponent)));
}

/// Half a kernel whose whole sums to 1.
void fillHalfKernel(float* half, int kernelSize, float sigma) {
    const int radius = kernelSize >> 1;
    float sum = 0;
    for (int i = 0; i < radius; ++i) {
        half[i] = weightAt(static_cast<float>(radius - i), sigma);
        sum += half[i] + half[i];
    }
    sum += 1;
    half[radius] = 1;
    const float scale = 1 / sum;
    for (int i = 0; i <= radius; ++i) half[i] *= scale;
}

/// The whole kernel as T: shares of `one` for integers, of which 32768 as Lum16s wraps, and of 1 for floats.
template <class T> void fillFullKernel(void* place, int kernelSize, float sigma, float one) {
    const int radius = kernelSize / 2;
    float sum = 0;
    for (int i = 0; i < kernelSize; ++i) sum += weightAt(static_cast<float>(i - radius), sigma);
    T* full = alignedUp(static_cast<T*>(place), 16);
    for (int i = 0; i < kernelSize; ++i) {
        const float share = weightAt(static_cast<float>(i - radius), sigma) / sum;
        if constexpr (std::is_integral_v<T>)
            full[i] = halfUpTruncatedWrapping<T>(share * one);
        else
            full[i] = share;
    }
}

/// Bits after the binary point of the whole kernel.
int fixedPointShift(LumDataType dataType) {
    switch (dataType) {
    case lumType8u:
        return 12;
    case lumType16u:
    case lumType16s:
        return 15;
    default:
        return 0;
    }
}

template <class Pointer> Pointer after(const LumFilterGaussianSpec* spec, Lum32s bytes) {
    return reinterpret_cast<Pointer>(reinterpret_cast<std::uintptr_t>(spec) + static_cast<unsigned>(bytes));
}

} // namespace

Lum32s gaussianCoreSpecBytes(Lum32s kernelSize) {
    const Lum32s weights = static_cast<Lum32s>(static_cast<unsigned>(kernelSize) + 1) >> 1;
    return static_cast<Lum32s>(sizeof(Lum32f) * static_cast<unsigned>(weights) + 128);
}

Lum32s gaussianFrontSpecBytes(Lum32s kernelSize, LumDataType dataType) {
    const auto groups =
        static_cast<unsigned>(static_cast<Lum32s>(static_cast<unsigned>(kernelSize) + 3) >> 2);
    return static_cast<Lum32s>(dataType == lumType32f ? 32 + 16 * groups : 36 + 8 * groups);
}

const LumFilterGaussianSpecL* gaussianCoreSpec(const LumFilterGaussianSpec* spec) {
    return after<const LumFilterGaussianSpecL*>(spec,
                                                gaussianFrontSpecBytes(spec->kernelSize, spec->dataType));
}

LumStatus gaussianInitL(LumSizeL roiSize, Lum32s kernelSize, Lum32f sigma, LumBorderType border,
                        LumDataType dataType, Lum32s numChannels, LumFilterGaussianSpecL* spec,
                        Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(spec, buffer), checkSize(roiSize),
                              gaussianParameters(kernelSize, dataType, numChannels),
                              errorIf(sigma <= 0, lumStatusBadArgument), gaussianCoreBorder(border)))
        return s;
    spec->kernelSize = kernelSize;
    spec->kernelOffset = 64;
    spec->dataType = dataType;
    spec->shift = 0;
    fillHalfKernel(gaussianHalfKernel(spec), kernelSize, sigma);
    return lumStatusOk;
}

LumStatus gaussianInit(LumSize roiSize, Lum32s kernelSize, Lum32f sigma, LumBorderType border,
                       LumDataType dataType, Lum32s numChannels, LumFilterGaussianSpec* spec, Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(spec, buffer), checkSize(roiSize),
                              gaussianParameters(kernelSize, dataType, numChannels),
                              errorIf(sigma <= 0, lumStatusBadArgument), linearBorder(border)))
        return s;
    const int shift = fixedPointShift(dataType);
    const auto one = static_cast<float>(1 << shift);
    spec->kernelSize = kernelSize;
    spec->kernelOffset = sizeof(LumFilterGaussianSpec);
    spec->dataType = dataType;
    spec->border = border;
    spec->shift = shift;
    switch (dataType) {
    case lumType16u:
        fillFullKernel<Lum16u>(spec + 1, kernelSize, sigma, one);
        break;
    case lumType32f:
        fillFullKernel<Lum32f>(spec + 1, kernelSize, sigma, one);
        break;
    default:
        fillFullKernel<Lum16s>(spec + 1, kernelSize, sigma, one);
    }
    auto* core = after<LumFilterGaussianSpecL*>(spec, gaussianFrontSpecBytes(kernelSize, dataType));
    return gaussianInitL({roiSize.width, roiSize.height}, kernelSize, sigma, border, dataType, numChannels,
                         core, buffer);
}

} // namespace lum
