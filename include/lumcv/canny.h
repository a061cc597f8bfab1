/**
 * @file
 * The Canny edge detector.
 */
#ifndef LUMCV_CANNY_H
#define LUMCV_CANNY_H

#include "border.h"
#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup canny Canny edge detector
 * Edges one pixel wide: ridges of the gradient's magnitude that are strong, or connected to strong ones.
 *
 * @code
 * Lum32s bytes;
 * lumiCannyBorderGetSize(size, 2, lumMask3x3, lumType8u, &bytes);
 * Lum8u* buffer = malloc(bytes);
 * lumiCannyBorder_8u_C1R(image, step, edges, edgesStep, size, 2, lumMask3x3, lumBorderReplicate, 0,
 *                        40, 100, lumNormL2, buffer);
 * // edges: 255 on edges, 0 elsewhere
 * @endcode
 *
 * Each pixel has a gradient (dx, dy) and a magnitude m, which becomes 0 where it does not exceed the lower threshold;
 * outside the region magnitudes are 0. With adx = |dx|, ady = |dy| and the constants t = 0.41421357 and u = 2.4142137
 * in single precision, a pixel of m other than 0 is a ridge if
 *
 *     ady < adx * t        (horizontal)  m is above its left neighbour and not below its right one
 *     ady > adx * u        (vertical)    m is above the neighbour above and not below the one below
 *     otherwise, dx and dy of one sign   m is above the neighbours above left and below right
 *     otherwise                          m is above the neighbours above right and below left
 *
 * Ridges above the upper threshold are edges, and so is every ridge that an edge touches in one of eight directions.
 * (J. Canny, "A computational approach to edge detection", IEEE Transactions on Pattern Analysis and Machine
 * Intelligence 8(6), 1986.)
 * @{
 */

/** @name Edges from derivatives */
/**@{*/
/**
 * The forms and their magnitudes, with low and high the thresholds:
 *
 *     16s              |dx| + |dy|, at most 65535             kept above low
 *     32f              |dx| + |dy|                            kept unless below low
 *     16s_L, 32f_L     #lumNormL1: |dx| + |dy| (16s: at most 65535), kept above low
 *                      #lumNormL2: dx * dx + dy * dy, kept above low * low; an edge is above high * high
 *
 * 16s computes in integers and compares with the integral part of a threshold, that is, of its square in single
 * precision for #lumNormL2. 32f computes in single precision. Steps and sizes of the _L functions are pointer-wide.
 *
 * @param dx first pixels of the derivatives: right minus left, below minus above
 * @param dy first pixels of the derivatives: right minus left, below minus above
 * @param dxStep bytes between rows of `dx`
 * @param dyStep bytes between rows of `dy`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result, 255 on edges and 0 elsewhere; written after everything has been read
 * @param roiSize size of the region in pixels
 * @param lowThreshold 0 or above
 * @param highThreshold not below lowThreshold
 * @param buffer work memory of the size that lumiCannyGetSize() reports; overwritten
 * @retval lumStatusNullPointer dx, dy, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError dxStep or dyStep is not a multiple of the element size
 * @retval lumStatusBadArgument lowThreshold below 0 or above highThreshold
 * @retval lumStatusNormError norm is none of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiCanny_16s8u_C1R(const Lum16s* dx, int dxStep, const Lum16s* dy, int dyStep, Lum8u* dst,
                                      int dstStep, LumSize roiSize, Lum32f lowThreshold, Lum32f highThreshold,
                                      Lum8u* buffer);
LUM_API LumStatus lumiCanny_32f8u_C1R(const Lum32f* dx, int dxStep, const Lum32f* dy, int dyStep, Lum8u* dst,
                                      int dstStep, LumSize roiSize, Lum32f lowThreshold, Lum32f highThreshold,
                                      Lum8u* buffer);
/**@}*/

/** @name Edges from derivatives, with a norm */
/**@{*/
/**
 * As lumiCanny_16s8u_C1R(), with `norm`.
 *
 * @param dx first pixels of the derivatives: right minus left, below minus above
 * @param dy first pixels of the derivatives: right minus left, below minus above
 * @param dxStep bytes between rows of `dx`
 * @param dyStep bytes between rows of `dy`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result, 255 on edges and 0 elsewhere; written after everything has been read
 * @param roiSize size of the region in pixels
 * @param lowThreshold 0 or above
 * @param highThreshold not below lowThreshold
 * @param norm #lumNormL1 or #lumNormL2
 * @param buffer work memory of the size that lumiCannyGetSize() reports; overwritten
 * @retval lumStatusNullPointer dx, dy, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError dxStep or dyStep is not a multiple of the element size
 * @retval lumStatusBadArgument lowThreshold below 0 or above highThreshold
 * @retval lumStatusNormError norm is none of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiCanny_16s8u_C1R_L(const Lum16s* dx, intptr_t dxStep, const Lum16s* dy, intptr_t dyStep,
                                        Lum8u* dst, intptr_t dstStep, LumSizeL roiSize, Lum32f lowThreshold,
                                        Lum32f highThreshold, LumNormKind norm, Lum8u* buffer);
LUM_API LumStatus lumiCanny_32f8u_C1R_L(const Lum32f* dx, intptr_t dxStep, const Lum32f* dy, intptr_t dyStep,
                                        Lum8u* dst, intptr_t dstStep, LumSizeL roiSize, Lum32f lowThreshold,
                                        Lum32f highThreshold, LumNormKind norm, Lum8u* buffer);
/**@}*/

/** @name Edges from derivatives: size of the work buffer */
/**@{*/
/**
 * @param roiSize size of the region in pixels
 * @param bufferSize receives the bytes; written on success only
 * @retval lumStatusNullPointer bufferSize is null
 * @retval lumStatusSizeError width or height below 1
 * @return lumStatusOk
 *
 * @par Layout
 * With w and h the region's width and height, in wrapping 32-bit arithmetic:
 *
 *     w and h below 65533    (5 * h + 10) * (w + 2) + 16 * w + 160
 *     otherwise              (9 * h + 18) * (w + 2) + 16 * w + 160
 */
LUM_API LumStatus lumiCannyGetSize(LumSize roiSize, Lum32s* bufferSize);
LUM_API LumStatus lumiCannyGetSize_L(LumSizeL roiSize, Lum32s* bufferSize);
/**@}*/

/**
 * Edges of an 8-bit image. The derivatives are those of the Sobel masks, {1, 2, 1} across {-1, 0, 1} (#lumMask3x3) and
 * {1, 4, 6, 4, 1} across {-1, -2, 0, 2, 1} (#lumMask5x5), or of the Scharr mask, {3, 10, 3} across {-1, 0, 1}: right
 * minus left and below minus above. The magnitude, kept above lowThreshold, is
 *
 *     #lumNormL1   |dx| + |dy|
 *     #lumNormL2   sqrt(dx * dx + dy * dy), of the integer in single precision
 *
 * and a gradient is vertical if ady > (adx + adx) + adx * t. Where the smaller side of the region is below that of the
 * mask, the direction is that of a = atan2(dy, dx) in double precision, plus pi if negative: horizontal below 0.3926991
 * and above 2.7488937, the diagonal of one sign up to 1.1780972, vertical below 1.9634955, else the other diagonal.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result, 255 on edges and 0 elsewhere; written after everything has been read
 * @param roiSize size of the region in pixels
 * @param filterKind 2: Sobel; 5: Scharr, with #lumMask3x3 only
 * @param mask #lumMask3x3 or #lumMask5x5
 * @param border #lumBorderInMemory, or #lumBorderReplicate or #lumBorderConstant with any flags
 * @param borderValue read for #lumBorderConstant
 * @param lowThreshold 0 or above
 * @param highThreshold not below lowThreshold
 * @param norm #lumNormL1 or #lumNormL2
 * @param buffer work memory of the size that lumiCannyBorderGetSize() reports; overwritten
 * @retval lumStatusMaskSizeError mask is none of those above, or #lumMask5x5 with filterKind 5
 * @retval lumStatusNullPointer src, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusBadArgument filterKind or norm is none of those above, or lowThreshold below 0 or above highThreshold
 * @retval lumStatusBorderError border is none of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiCannyBorder_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                         LumSize roiSize, int filterKind, LumMaskSize mask,
                                         LumBorderType border, Lum8u borderValue, Lum32f lowThreshold,
                                         Lum32f highThreshold, LumNormKind norm, Lum8u* buffer);

/**
 * Size of the work buffer of lumiCannyBorder_8u_C1R().
 *
 * @param roiSize size of the region in pixels
 * @param filterKind not read
 * @param mask #lumMask3x3 or #lumMask5x5
 * @param type not read
 * @param bufferSize receives the bytes; written on success only
 * @retval lumStatusNullPointer bufferSize is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusMaskSizeError mask is none of those above
 * @return lumStatusOk
 *
 * @par Layout
 * With k = 3 or 5 the side of the mask, a = width + k - 1, b = height + k - 1 and A(n) = (n + 31) & ~31, in wrapping
 * 32-bit arithmetic: A(16 * a) + A(a * b) + A(4 * a * b) + 64, and A(a * b) once more if width or height is below k.
 */
LUM_API LumStatus lumiCannyBorderGetSize(LumSize roiSize, int filterKind, LumMaskSize mask, LumDataType type,
                                         Lum32s* bufferSize);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
