/**
 * @file
 * Derivative, Laplacian and low-pass filters with built-in kernels, and the colour gradient.
 */
#ifndef LUMCV_FIXED_FILTER_H
#define LUMCV_FIXED_FILTER_H

#include "border.h"
#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup fixed_filter Filters with built-in kernels
 * Derivative, Laplacian and low-pass filters with built-in kernels, and the colour gradient.
 *
 * @code
 * Lum32s bytes;
 * lumiFilterLowpassGetBufferSize_8u_C1R(size, lumMask3x3, &bytes);
 * Lum8u* buffer = (Lum8u*)malloc(bytes);
 * lumiFilterLowpassBorder_8u_C1R(src, srcStep, dst, dstStep, size, lumMask3x3, lumBorderReplicate, 0, buffer);
 * @endcode
 * @{
 */

/** @name Derivative kernels */
/**@{*/
/**
 * The kernel of kernelSize taps for the derivative of order derivativeOrder: a single 1, smoothed with {1, 1}
 * kernelSize - derivativeOrder - 1 times and differenced with {-1, 1} derivativeOrder times. Order 0 gives the
 * row of binomial coefficients, {1, 2, 1} for three taps; order 1 of three taps gives {-1, 0, 1}. In 16s the
 * elements wrap beyond 16 bits. (I. Sobel, G. Feldman, "A 3x3 isotropic gradient operator for image
 * processing", 1968; in this general form P.-E. Danielsson, O. Seger, "Generalized and separable Sobel
 * operators", 1990.)
 *
 * @param kernel receives kernelSize elements
 * @param kernelSize taps: odd, above derivativeOrder
 * @param derivativeOrder 0 or above
 * @param sign below 0: all elements are negated
 * @retval lumStatusNullPointer kernel is null
 * @retval lumStatusSizeError kernelSize below 1 or even, derivativeOrder below 0, or kernelSize not above it
 * @return lumStatusOk
 */
LUM_API LumStatus lumiGenSobelKernel_16s(Lum16s* kernel, int kernelSize, int derivativeOrder, int sign);
LUM_API LumStatus lumiGenSobelKernel_32f(Lum32f* kernel, int kernelSize, int derivativeOrder, int sign);
/**@}*/

/** @name Filters with built-in kernels: sizes of the work buffer */
/**@{*/
/**
 * With B = (roiSize.width + 15) >> 4, K = 3 or 5 the taps, T = 21 for #lumMask3x3 and 25 for #lumMask5x5, and R
 * and C the sizes of a row and a column pipeline of K taps (8u: those of 8u16s rows and 16s columns; 32f: those
 * of 32f), in wrapping 32-bit arithmetic:
 *
 *     cross derivative 8u16s   32 * B * T + 12 * K + 248 + R + C
 *     cross derivative 32f     64 * B * T + 12 * K + 248 + R + C
 *     Laplacian 8u16s          64 * B * T + 24 * K + 336 + R + C
 *     Laplacian 32f           128 * B * T + 24 * K + 336 + R + C
 *     low-pass 8u              32 * B * T + 12 * K + 248 + R + C
 *     low-pass 32f             64 * B * T + 12 * K + 184 + R + C
 *
 * @param roiSize size of the region in pixels
 * @param maskSize #lumMask3x3 or #lumMask5x5
 * @param bufferSize receives the bytes; written on success only
 * @retval lumStatusNullPointer bufferSize is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusMaskSizeError maskSize is none of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterSobelCrossGetBufferSize_8u16s_C1R(LumSize roiSize, LumMaskSize maskSize,
                                                              Lum32s* bufferSize);
LUM_API LumStatus lumiFilterSobelCrossGetBufferSize_32f_C1R(LumSize roiSize, LumMaskSize maskSize,
                                                            Lum32s* bufferSize);
LUM_API LumStatus lumiFilterLaplacianGetBufferSize_8u16s_C1R(LumSize roiSize, LumMaskSize maskSize,
                                                             Lum32s* bufferSize);
LUM_API LumStatus lumiFilterLaplacianGetBufferSize_32f_C1R(LumSize roiSize, LumMaskSize maskSize,
                                                           Lum32s* bufferSize);
LUM_API LumStatus lumiFilterLowpassGetBufferSize_8u_C1R(LumSize roiSize, LumMaskSize maskSize,
                                                        Lum32s* bufferSize);
LUM_API LumStatus lumiFilterLowpassGetBufferSize_32f_C1R(LumSize roiSize, LumMaskSize maskSize,
                                                         Lum32s* bufferSize);
/**@}*/

/** @name Cross derivative */
/**@{*/
/**
 * dst = the source filtered along the rows and then down the columns with {1, 0, -1} (#lumMask3x3) or {1, 2, 0, -2,
 * -1} (#lumMask5x5), not scaled. Exact in 8u16s; 32f computes of the values v0, v1, ... under the taps, along the rows
 * and down the columns alike, each operation rounded to single precision:
 *
 *     #lumMask3x3  v0 - v2
 *     #lumMask5x5  (v0 - v4) + 2 * (v1 - v3)
 *
 * A flat image gives 0 exactly.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result; it may not overlap the source
 * @param roiSize size of the region in pixels
 * @param maskSize #lumMask3x3 or #lumMask5x5
 * @param border #lumBorderInMemory, or #lumBorderReplicate, #lumBorderMirror or #lumBorderConstant with any
 *        flags, by the rule of the row pipelines along both axes
 * @param borderValue read for #lumBorderConstant
 * @param buffer work memory of the size that the query of the same filter and types reports; overwritten
 * @retval lumStatusNullPointer src, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError the step of 16-bit or 32-bit elements is not a multiple of their size
 * @retval lumStatusBorderError border is none of those above
 * @retval lumStatusMaskSizeError maskSize is none of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterSobelCrossBorder_8u16s_C1R(const Lum8u* src, int srcStep, Lum16s* dst,
                                                       int dstStep, LumSize roiSize, LumMaskSize maskSize,
                                                       LumBorderType border, Lum8u borderValue,
                                                       Lum8u* buffer);
LUM_API LumStatus lumiFilterSobelCrossBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                     LumSize roiSize, LumMaskSize maskSize,
                                                     LumBorderType border, Lum32f borderValue, Lum8u* buffer);
/**@}*/

/** @name Laplacian */
/**@{*/
/**
 * #lumMask3x3 is the mask
 *
 *     2  0  2
 *     0 -8  0
 *     2  0  2
 *
 * and #lumMask5x5 the sum of two separable filters: {1, 4, 6, 4, 1} along the rows with {1, 0, -2, 0, 1} down
 * the columns, and the two the other way round. Not scaled; exact in 8u16s, where no sum passes the range of
 * the result. 32f computes, each operation rounded to single precision:
 *
 *     #lumMask3x3  2 * (a(x, y - 1) + a(x, y + 1)) - 8 * src(x, y), with a(x, y) = src(x - 1, y) + src(x + 1, y)
 *     #lumMask5x5  D down the columns of (S along the rows) + S down the columns of (D along the rows), where of five
 *                  values S = ((v0 + v4) + 4 * (v1 + v3)) + 6 * v2 and D = (v0 + v4) - 2 * v2
 *
 * A flat image gives 0 exactly.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result; it may not overlap the source
 * @param roiSize size of the region in pixels
 * @param maskSize #lumMask3x3 or #lumMask5x5
 * @param border #lumBorderInMemory, or #lumBorderReplicate, #lumBorderMirror or #lumBorderConstant with any
 *        flags, by the rule of the row pipelines along both axes
 * @param borderValue read for #lumBorderConstant
 * @param buffer work memory of the size that the query of the same filter and types reports; overwritten
 * @retval lumStatusNullPointer src, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError the step of 16-bit or 32-bit elements is not a multiple of their size
 * @retval lumStatusBorderError border is none of those above
 * @retval lumStatusMaskSizeError maskSize is none of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterLaplacianBorder_8u16s_C1R(const Lum8u* src, int srcStep, Lum16s* dst, int dstStep,
                                                      LumSize roiSize, LumMaskSize maskSize,
                                                      LumBorderType border, Lum8u borderValue, Lum8u* buffer);
LUM_API LumStatus lumiFilterLaplacianBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                    LumSize roiSize, LumMaskSize maskSize,
                                                    LumBorderType border, Lum32f borderValue, Lum8u* buffer);
/**@}*/

/** @name Low-pass filter */
/**@{*/
/**
 * The mean of three by three or five by five pixels. With S the sum of the pixels:
 *
 *     8u   #lumMask3x3  ((S + 5) x 7280) >> 16
 *          #lumMask5x5  (S x 2622) >> 16
 *     32f  S, along the rows in order and then down the columns, times 1/9 or 1/25 in single precision
 *
 * A flat image of v gives v back: in 8u every v, in 32f every v whose sum is exact, as those of whole numbers
 * up to 671088 are.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result; it may not overlap the source
 * @param roiSize size of the region in pixels
 * @param maskSize #lumMask3x3 or #lumMask5x5
 * @param border #lumBorderInMemory, or #lumBorderReplicate, #lumBorderMirror or #lumBorderConstant with any
 *        flags, by the rule of the row pipelines along both axes
 * @param borderValue read for #lumBorderConstant
 * @param buffer work memory of the size that the query of the same filter and types reports; overwritten
 * @retval lumStatusNullPointer src, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError the step of 16-bit or 32-bit elements is not a multiple of their size
 * @retval lumStatusBorderError border is none of those above
 * @retval lumStatusMaskSizeError maskSize is none of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterLowpassBorder_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                                 LumSize roiSize, LumMaskSize maskSize, LumBorderType border,
                                                 Lum8u borderValue, Lum8u* buffer);
LUM_API LumStatus lumiFilterLowpassBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                  LumSize roiSize, LumMaskSize maskSize, LumBorderType border,
                                                  Lum32f borderValue, Lum8u* buffer);
/**@}*/

/** @name Colour gradient to grey */
/**@{*/
/**
 * Reduces the three channels of a gradient to one:
 *
 *     #lumSpatialNormInf   the largest channel
 *     #lumSpatialNormL1    the mean: 8u   ((r + g + b) * 1365 + 2048) >> 12
 *                                    16u  (r + g + b + 1) / 3 in integers
 *                                    32f  (r + g + b) * 1/3 in single precision
 *     #lumSpatialNormL2    sqrt(r * r + g * g + b * b) * 0.57735026 in single precision; integers are rounded to
 *                          nearest, ties to even, and saturated
 *
 * Of integers, white stays white in every norm. Of 32f, equal channels come back in the first norm, and their magnitude
 * comes back in #lumSpatialNormL2 to within a rounding or two where the sum of their squares does not overflow and no
 * square falls below the normal floats. The largest channel of 32f is found from r to b; where one of two is a NaN, or
 * both are zeros, the later counts as the larger.
 *
 * @param src first pixel of the source region, three channels
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result, one channel; it may be src itself (same pointer and step), other overlap is not
 *        supported
 * @param roiSize size of the region in pixels
 * @param norm as above
 * @retval lumStatusNullPointer src or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a step that is not a multiple of the element size
 * @retval lumStatusBadArgument norm is none of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiGradientColorToGray_8u_C3C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                                   LumSize roiSize, LumSpatialNorm norm);
LUM_API LumStatus lumiGradientColorToGray_16u_C3C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                                    LumSize roiSize, LumSpatialNorm norm);
LUM_API LumStatus lumiGradientColorToGray_32f_C3C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                    LumSize roiSize, LumSpatialNorm norm);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
