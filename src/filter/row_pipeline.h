// The row stage: a one-dimensional filter along the rows of a region, with borders at the left and right, into
// rows that the caller points to.
#pragma once

#include <type_traits>

#include "filter/pipeline_sizes.h"
#include "frame/check.h"
#include "lumcv/border.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Each size query is one formula; those with one formula for all element types are one function.
template <const RowPipelineSize& size>
LumStatus rowPipelineBufferSize(LumSize roiSize, int kernelSize, Lum32s* bufferSize) {
    if (auto s = firstFailure(checkNotNull(bufferSize), checkSize(roiSize), checkCount(kernelSize))) return s;
    *bufferSize = size.bytes(kernelSize);
    return lumStatusOk;
}

/// One channel's value comes by itself, three as a pointer.
template <class T, int channels> using BorderValue = std::conditional_t<channels == 1, T, const T*>;

/// Lum8u and Lum16s to Lum16s, with a kernel of Lum16s; Lum16u with a kernel of its own type.
template <class S, class R, int channels>
LumStatus rowPipeline(const S* src, int srcStep, R* const* dstRows, LumSize roiSize, const R* kernel,
                      int kernelSize, int xAnchor, LumBorderType border, BorderValue<S, channels> borderValue,
                      int divisor, Lum8u* buffer);

/// Floats have no divisor.
template <int channels>
LumStatus rowPipelineOfFloats(const Lum32f* src, int srcStep, Lum32f* const* dstRows, LumSize roiSize,
                              const Lum32f* kernel, int kernelSize, int xAnchor, LumBorderType border,
                              BorderValue<Lum32f, channels> borderValue, Lum8u* buffer);

/// The low-precision form: sums in 16 bits.
template <int channels>
LumStatus rowPipelineLow(const Lum16s* src, int srcStep, Lum16s* const* dstRows, LumSize roiSize,
                         const Lum16s* kernel, int kernelSize, int xAnchor, LumBorderType border,
                         BorderValue<Lum16s, channels> borderValue, int divisor, Lum8u* buffer);

} // namespace lum
