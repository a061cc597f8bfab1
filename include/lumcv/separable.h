/**
 * @file
 * Filters of a row kernel and a column kernel over whole images.
 */
#ifndef LUMCV_SEPARABLE_H
#define LUMCV_SEPARABLE_H

#include "border.h"
#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup separable Separable filter
 * Filters of a row kernel and a column kernel over whole images.
 *
 * @code
 * Lum32s specBytes, bufferBytes;
 * lumiFilterSeparableGetSpecSize(kernelSize, lumType32f, 1, &specBytes);
 * lumiFilterSeparableGetBufferSize(size, kernelSize, lumType8u, lumType32f, 1, &bufferBytes);
 * LumFilterSeparableSpec* spec = (LumFilterSeparableSpec*)malloc(specBytes);
 * lumiFilterSeparableInit_32f(rowKernel, columnKernel, kernelSize, lumType8u, 1, spec);
 * lumiFilterSeparable_8u_C1R(src, srcStep, dst, dstStep, size, lumBorderReplicate, 0, spec, buffer);
 * @endcode
 * @{
 */

/**
 * The kernels of a separable filter, in a block of the caller's that lumiFilterSeparableInit_*() fills. It
 * holds pointers into itself, so a block is neither moved nor copied; runs only read it, and may share it.
 */
typedef struct LumFilterSeparableSpec LumFilterSeparableSpec;

/** @name Separable filter: sizes */
/**@{*/
/**
 * Bytes of the spec and of the work buffer of lumiFilterSeparable_*(). With w and h the width and height of the
 * kernel, W the width of the region, C the channels, E the bytes of a kernel element (2 for #lumType16s, 4 for
 * #lumType32f):
 *
 *     spec    (w + h) * E + 127
 *     buffer  ((E * w + (W + w - 1) * h) * C + h) * 4 + 64
 *
 * in wrapping 32-bit arithmetic. The height of the region plays no part. A block may have any alignment. In a
 * 64-bit build the h row pointers of the buffer take 8 bytes each instead of 4.
 *
 * @param roiSize size of the largest region that is to be filtered, in pixels
 * @param kernelSize taps of the row kernel (width) and of the column kernel (height)
 * @param dataType element of the source: #lumType8u, #lumType16u, #lumType16s or #lumType32f
 * @param kernelType element of the kernels: #lumType16s or #lumType32f
 * @param numChannels 1, 3 or 4
 * @param size receives the bytes; written on success only
 * @retval lumStatusNullPointer size is null (the _L functions test this after the sizes)
 * @retval lumStatusSizeError a width or height, of the region or of the kernel, below 1 or, in a 64-bit build,
 *         above 2147483647
 * @retval lumStatusDataTypeError dataType, then kernelType, is none of those above
 * @retval lumStatusChannelCountError numChannels is none of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterSeparableGetBufferSize(LumSize roiSize, LumSize kernelSize, LumDataType dataType,
                                                   LumDataType kernelType, int numChannels, Lum32s* size);
LUM_API LumStatus lumiFilterSeparableGetBufferSize_L(LumSizeL roiSize, LumSizeL kernelSize,
                                                     LumDataType dataType, LumDataType kernelType,
                                                     int numChannels, Lum32s* size);
/**@}*/

/** @name Separable filter: size of the spec */
/**@{*/
/**
 * As lumiFilterSeparableGetBufferSize(), without `roiSize` and `dataType`.
 *
 * @param kernelSize taps of the row kernel (width) and of the column kernel (height)
 * @param kernelType element of the kernels: #lumType16s or #lumType32f
 * @param numChannels 1, 3 or 4
 * @param size receives the bytes; written on success only
 * @retval lumStatusNullPointer size is null (the _L functions test this after the sizes)
 * @retval lumStatusSizeError a width or height, of the region or of the kernel, below 1 or, in a 64-bit build,
 *         above 2147483647
 * @retval lumStatusDataTypeError dataType, then kernelType, is none of those above
 * @retval lumStatusChannelCountError numChannels is none of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterSeparableGetSpecSize(LumSize kernelSize, LumDataType kernelType, int numChannels,
                                                 Lum32s* size);
LUM_API LumStatus lumiFilterSeparableGetSpecSize_L(LumSizeL kernelSize, LumDataType kernelType,
                                                   int numChannels, Lum32s* size);
/**@}*/

/** @name Separable filter: kernels */
/**@{*/
/**
 * Copies a row kernel and a column kernel into a spec. Kernels of 16s serve the runs of 8u, 8u16s and 16s,
 * kernels of 32f those of 16u and 32f; a run does not test which it was given.
 *
 * @param kernelX row kernel, kernelSize.width elements
 * @param kernelY column kernel, kernelSize.height elements
 * @param kernelSize taps of the two kernels
 * @param divisor 16s: each of the two stages of a run multiplies its sums by 1 / divisor
 * @param scale 16s: kept in the spec; no run reads it
 * @param dataType element of the source: 16s kernels #lumType16s, #lumType8u (for 8u and 8u16s runs); 32f
 *        kernels #lumType8u, #lumType16u, #lumType32f
 * @param numChannels 1, 3 or 4
 * @param spec block of the size that lumiFilterSeparableGetSpecSize() reports
 * @retval lumStatusNullPointer kernelX, kernelY or spec is null
 * @retval lumStatusSizeError a width or height of the kernel below 1 or, in a 64-bit build, above 2147483647
 * @retval lumStatusDataTypeError dataType is none of those above
 * @retval lumStatusChannelCountError numChannels is none of those above
 * @retval lumStatusDivisorError 16s: divisor is 0
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterSeparableInit_16s(const Lum16s* kernelX, const Lum16s* kernelY,
                                              LumSize kernelSize, int divisor, int scale,
                                              LumDataType dataType, int numChannels,
                                              LumFilterSeparableSpec* spec);
LUM_API LumStatus lumiFilterSeparableInit_16s_L(const Lum16s* kernelX, const Lum16s* kernelY,
                                                LumSizeL kernelSize, int divisor, int scale,
                                                LumDataType dataType, int numChannels,
                                                LumFilterSeparableSpec* spec);
/**@}*/

/** @name Separable filter: kernels of floats */
/**@{*/
/**
 * As lumiFilterSeparableInit_16s(), without `divisor` and `scale`.
 *
 * @param kernelX row kernel, kernelSize.width elements
 * @param kernelY column kernel, kernelSize.height elements
 * @param kernelSize taps of the two kernels
 * @param dataType element of the source: 16s kernels #lumType16s, #lumType8u (for 8u and 8u16s runs); 32f
 *        kernels #lumType8u, #lumType16u, #lumType32f
 * @param numChannels 1, 3 or 4
 * @param spec block of the size that lumiFilterSeparableGetSpecSize() reports
 * @retval lumStatusNullPointer kernelX, kernelY or spec is null
 * @retval lumStatusSizeError a width or height of the kernel below 1 or, in a 64-bit build, above 2147483647
 * @retval lumStatusDataTypeError dataType is none of those above
 * @retval lumStatusChannelCountError numChannels is none of those above
 * @retval lumStatusDivisorError 16s: divisor is 0
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterSeparableInit_32f(const Lum32f* kernelX, const Lum32f* kernelY,
                                              LumSize kernelSize, LumDataType dataType, int numChannels,
                                              LumFilterSeparableSpec* spec);
LUM_API LumStatus lumiFilterSeparableInit_32f_L(const Lum32f* kernelX, const Lum32f* kernelY,
                                                LumSizeL kernelSize, LumDataType dataType, int numChannels,
                                                LumFilterSeparableSpec* spec);
/**@}*/

/** @name Separable filter: runs */
/**@{*/
/**
 * With w and h the taps of the two kernels, ax = (w - 1) >> 1 and ay = (h - 1) >> 1 (an even kernel has one
 * more tap to the right and below), and ext the source extended by the border:
 *
 *     R(x, j)   = sum over i of kernelX[i] * ext(x - ax + i, j), times 1 / divisor
 *     dst(x, y) = sum over k of kernelY[k] * R(x, y - ay + k), times 1 / divisor
 *
 * All in single precision, in order of i and k; R is not rounded to integers. A caller whose kernels sum to S
 * each passes divisor S. An integer result is clamped to the range of its type and truncated toward zero: 2.9
 * becomes 2, -2.9 becomes -2. Neither kernel is reversed.
 *
 * The border follows the rule of the row pipelines along both axes: a side whose flag is set is read from
 * memory, and else #lumBorderReplicate, #lumBorderMirror (which goes on reflecting inside the region when it is
 * smaller than the border) or #lumBorderConstant. A row outside a constant border is not filtered: R is the
 * borderValue times the sum of kernelX, times 1 / divisor, all along the row. Regions smaller than the kernel
 * are valid.
 *
 * The denormal-operand exception is masked while a run works. Where that changed the mask, or the run raised the
 * denormal flag, the SSE control word is put back as it was found; otherwise the other exception flags that a
 * run raises stay.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result; it may not overlap the source
 * @param roiSize size of the region in pixels
 * @param border #lumBorderInMemory, or #lumBorderReplicate, #lumBorderMirror or #lumBorderConstant with any
 *        flags
 * @param borderValue read for #lumBorderConstant: C1 one value, C3 and C4 one value a channel
 * @param spec kernels of the type that suits the run
 * @param buffer work memory of the size that lumiFilterSeparableGetBufferSize() reports; overwritten
 * @retval lumStatusNullPointer src, dst, spec or buffer is null
 * @retval lumStatusSizeError width or height below 1 or, in a 64-bit build, above 2147483647
 * @retval lumStatusNullPointer C3, C4: borderValue is null, whatever the border
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError the step of 16-bit or 32-bit elements is not a multiple of their size
 * @retval lumStatusBorderError border is none of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterSeparable_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                             LumSize roiSize, LumBorderType border, Lum8u borderValue,
                                             const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u_C3R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                             LumSize roiSize, LumBorderType border, const Lum8u* borderValue,
                                             const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u_C4R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                             LumSize roiSize, LumBorderType border, const Lum8u* borderValue,
                                             const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u16s_C1R(const Lum8u* src, int srcStep, Lum16s* dst, int dstStep,
                                                LumSize roiSize, LumBorderType border, Lum8u borderValue,
                                                const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u16s_C3R(const Lum8u* src, int srcStep, Lum16s* dst, int dstStep,
                                                LumSize roiSize, LumBorderType border,
                                                const Lum8u* borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u16s_C4R(const Lum8u* src, int srcStep, Lum16s* dst, int dstStep,
                                                LumSize roiSize, LumBorderType border,
                                                const Lum8u* borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16s_C1R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border, Lum16s borderValue,
                                              const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16s_C3R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border,
                                              const Lum16s* borderValue, const LumFilterSeparableSpec* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16s_C4R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border,
                                              const Lum16s* borderValue, const LumFilterSeparableSpec* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border, Lum16u borderValue,
                                              const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16u_C3R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border,
                                              const Lum16u* borderValue, const LumFilterSeparableSpec* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16u_C4R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border,
                                              const Lum16u* borderValue, const LumFilterSeparableSpec* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border, Lum32f borderValue,
                                              const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_32f_C3R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border,
                                              const Lum32f* borderValue, const LumFilterSeparableSpec* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_32f_C4R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border,
                                              const Lum32f* borderValue, const LumFilterSeparableSpec* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u_C1R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst,
                                               intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                               Lum8u borderValue, const LumFilterSeparableSpec* spec,
                                               Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u_C3R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst,
                                               intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                               const Lum8u* borderValue, const LumFilterSeparableSpec* spec,
                                               Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u_C4R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst,
                                               intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                               const Lum8u* borderValue, const LumFilterSeparableSpec* spec,
                                               Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u16s_C1R_L(const Lum8u* src, intptr_t srcStep, Lum16s* dst,
                                                  intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                  Lum8u borderValue, const LumFilterSeparableSpec* spec,
                                                  Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u16s_C3R_L(const Lum8u* src, intptr_t srcStep, Lum16s* dst,
                                                  intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                  const Lum8u* borderValue,
                                                  const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u16s_C4R_L(const Lum8u* src, intptr_t srcStep, Lum16s* dst,
                                                  intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                  const Lum8u* borderValue,
                                                  const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16s_C1R_L(const Lum16s* src, intptr_t srcStep, Lum16s* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                Lum16s borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16s_C3R_L(const Lum16s* src, intptr_t srcStep, Lum16s* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                const Lum16s* borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16s_C4R_L(const Lum16s* src, intptr_t srcStep, Lum16s* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                const Lum16s* borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16u_C1R_L(const Lum16u* src, intptr_t srcStep, Lum16u* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                Lum16u borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16u_C3R_L(const Lum16u* src, intptr_t srcStep, Lum16u* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                const Lum16u* borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16u_C4R_L(const Lum16u* src, intptr_t srcStep, Lum16u* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                const Lum16u* borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_32f_C1R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                Lum32f borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_32f_C3R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                const Lum32f* borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_32f_C4R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                const Lum32f* borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
