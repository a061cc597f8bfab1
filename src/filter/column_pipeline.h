// The column stage: a one-dimensional filter down the columns of rows that the caller points to, into an image.
#pragma once

#include "filter/pipeline_sizes.h"
#include "frame/check.h"
#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Each size query is one formula; the element types and channel counts that share it need not share the
/// function.
template <const ColumnPipelineSize& size, int channels>
LumStatus columnPipelineBufferSize(LumSize roiSize, int kernelSize, Lum32s* bufferSize) {
    if (auto s = firstFailure(checkNotNull(bufferSize), checkSize(roiSize), checkCount(kernelSize))) return s;
    *bufferSize = size.bytes(roiSize.width);
    return lumStatusOk;
}

/// Lum16s to Lum8s, Lum8u and Lum16s; Lum16u.
template <class S, class R, int channels>
LumStatus columnPipeline(const S* const* srcRows, R* dst, int dstStep, LumSize roiSize, const S* kernel,
                         int kernelSize, int divisor, Lum8u* buffer);

/// Floats have no divisor.
template <int channels>
LumStatus columnPipelineOfFloats(const Lum32f* const* srcRows, Lum32f* dst, int dstStep, LumSize roiSize,
                                 const Lum32f* kernel, int kernelSize, Lum8u* buffer);

/// The low-precision form: sums in 16 bits.
template <int channels>
LumStatus columnPipelineLow(const Lum16s* const* srcRows, Lum16s* dst, int dstStep, LumSize roiSize,
                            const Lum16s* kernel, int kernelSize, int divisor, Lum8u* buffer);

} // namespace lum
