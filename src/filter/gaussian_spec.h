// The objects of the Gaussian filter. Runs work on the core object alone, which holds half the kernel in single
// precision; the front object keeps the border of its runs and the whole kernel in fixed point, and has a core object
// directly after it.
#pragma once

#include <type_traits>

#include "filter/border.h"
#include "frame/arena.h"
#include "frame/check.h"
#include "lumcv/border.h"
#include "lumcv/gaussian.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

/// The core object, the half kernel after it.
struct LumFilterGaussianSpecL {
    Lum32s kernelSize;
    Lum32s kernelOffset;
    LumDataType dataType;
    Lum32s unused;
    Lum32s shift;
};

/// The front object, the whole kernel after it.
struct LumFilterGaussianSpec {
    Lum32s kernelSize;
    Lum32s kernelOffset;
    LumDataType dataType;
    LumBorderType border;
    Lum32s shift;
};

namespace lum {

/// The weights from the outermost to the centre: at the first 64-byte boundary after the fields. The place depends
/// on the block's address, so it is worked out on each call.
template <class Spec> auto* gaussianHalfKernel(Spec* coreSpec) {
    using Weight = std::conditional_t<std::is_const_v<Spec>, const Lum32f, Lum32f>;
    return alignedUp(reinterpret_cast<Weight*>(coreSpec + 1), 64);
}

/// Bytes of each object, in wrapping 32-bit arithmetic.
Lum32s gaussianCoreSpecBytes(Lum32s kernelSize);
Lum32s gaussianFrontSpecBytes(Lum32s kernelSize, LumDataType dataType);

/// The core object after a front object; its data type is one of the four.
const LumFilterGaussianSpecL* gaussianCoreSpec(const LumFilterGaussianSpec* spec);

/// Odd, and three taps at least.
constexpr LumStatus gaussianKernelSize(Lum32s kernelSize) {
    return errorIf(kernelSize < 3 || kernelSize % 2 == 0, lumStatusBadArgument);
}

/// What every query and initialiser tests in this order.
constexpr LumStatus gaussianParameters(Lum32s kernelSize, LumDataType dataType, Lum32s numChannels) {
    const bool known =
        dataType == lumType8u || dataType == lumType16u || dataType == lumType16s || dataType == lumType32f;
    return firstFailure(gaussianKernelSize(kernelSize), errorIf(!known, lumStatusDataTypeError),
                        errorIf(numChannels != 1 && numChannels != 3, lumStatusChannelCountError));
}

/// Whether all four sides are in memory; the core then asks for no kind, where the front asks for none at all.
constexpr bool allSidesInMemory(LumBorderType border) {
    return (border & lumBorderInMemory) == lumBorderInMemory;
}

constexpr LumStatus gaussianCoreBorder(LumBorderType border) {
    const bool accepted = border >= 0 && border <= 255 && (allSidesInMemory(border) || isLinearKind(border));
    return errorIf(!accepted, lumStatusBorderError);
}

LumStatus gaussianInitL(LumSizeL roiSize, Lum32s kernelSize, Lum32f sigma, LumBorderType border,
                        LumDataType dataType, Lum32s numChannels, LumFilterGaussianSpecL* spec,
                        Lum8u* buffer);

LumStatus gaussianInit(LumSize roiSize, Lum32s kernelSize, Lum32f sigma, LumBorderType border,
                       LumDataType dataType, Lum32s numChannels, LumFilterGaussianSpec* spec, Lum8u* buffer);

} // namespace lum
