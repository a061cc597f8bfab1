// The kernels of a separable filter in caller memory, and the sizes of its spec and its work buffer.
#pragma once

#include <cstddef>
#include <limits>

#include "frame/arena.h"
#include "frame/check.h"
#include "lumcv/separable.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Lies at the first 64-byte boundary of the caller's block. The row kernel begins with the 64th byte, the
/// column kernel at once after it.
struct SeparableSpec {
    Lum32s kernelTag;
    Lum32s kernelWidth;
    Lum32s kernelHeight;
    Lum32s divisor;
    Lum32s scale;
    const void* rowKernel;
    const void* secondRowKernel;
    const void* columnKernel;
    const void* secondColumnKernel;
    Lum32s channels;
};

inline constexpr std::size_t separableSpecAlignment = 64;
inline constexpr std::size_t separableKernelOffset = 64;

static_assert(sizeof(SeparableSpec) <= separableKernelOffset, "the kernels lie after the fields");
static_assert(sizeof(void*) != 4 ||
              (sizeof(SeparableSpec) == 40 && offsetof(SeparableSpec, kernelWidth) == 4 &&
               offsetof(SeparableSpec, kernelHeight) == 8 && offsetof(SeparableSpec, divisor) == 12 &&
               offsetof(SeparableSpec, scale) == 16 && offsetof(SeparableSpec, rowKernel) == 20 &&
               offsetof(SeparableSpec, secondRowKernel) == 24 &&
               offsetof(SeparableSpec, columnKernel) == 28 &&
               offsetof(SeparableSpec, secondColumnKernel) == 32 && offsetof(SeparableSpec, channels) == 36));

inline const SeparableSpec& separableSpecIn(const LumFilterSeparableSpec* block) {
    return *reinterpret_cast<const SeparableSpec*>(alignedUp(block, separableSpecAlignment));
}

/// Images and kernels are walked with 32-bit indices. Pointer-wide sizes can exceed them in a 64-bit build
/// only.
constexpr LumStatus sizeAboveIndices(auto... sizes) {
    constexpr auto largest = std::numeric_limits<Lum32s>::max();
    return errorIf(((sizes.width > largest || sizes.height > largest) || ...), lumStatusSizeError);
}

constexpr LumSize narrowed(LumSizeL size) {
    return {static_cast<Lum32s>(size.width), static_cast<Lum32s>(size.height)};
}

constexpr LumSizeL widened(LumSize size) { return {size.width, size.height}; }

LumStatus separableBufferSize(LumSize roiSize, LumSize kernelSize, LumDataType dataType,
                              LumDataType kernelType, int numChannels, Lum32s* size);
LumStatus separableBufferSizeL(LumSizeL roiSize, LumSizeL kernelSize, LumDataType dataType,
                               LumDataType kernelType, int numChannels, Lum32s* size);
LumStatus separableSpecSize(LumSize kernelSize, LumDataType kernelType, int numChannels, Lum32s* size);
LumStatus separableSpecSizeL(LumSizeL kernelSize, LumDataType kernelType, int numChannels, Lum32s* size);

LumStatus separableInit16s(const Lum16s* kernelX, const Lum16s* kernelY, LumSize kernelSize, int divisor,
                           int scale, LumDataType dataType, int numChannels, LumFilterSeparableSpec* spec);
LumStatus separableInit16sL(const Lum16s* kernelX, const Lum16s* kernelY, LumSizeL kernelSize, int divisor,
                            int scale, LumDataType dataType, int numChannels, LumFilterSeparableSpec* spec);
LumStatus separableInit32f(const Lum32f* kernelX, const Lum32f* kernelY, LumSize kernelSize,
                           LumDataType dataType, int numChannels, LumFilterSeparableSpec* spec);
LumStatus separableInit32fL(const Lum32f* kernelX, const Lum32f* kernelY, LumSizeL kernelSize,
                            LumDataType dataType, int numChannels, LumFilterSeparableSpec* spec);

} // namespace lum
