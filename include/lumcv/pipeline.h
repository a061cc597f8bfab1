/**
 * @file
 * One-dimensional filter stages: rows with borders, columns over row pointers.
 */
#ifndef LUMCV_PIPELINE_H
#define LUMCV_PIPELINE_H

#include "border.h"
#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup pipeline Row and column pipelines
 * One-dimensional filter stages: rows with borders, columns over row pointers.
 *
 * @code
 * const Lum32f kernel[3] = {0.25F, 0.5F, 0.25F};
 * Lum32s bytes;
 * lumiFilterRowBorderPipelineGetBufferSize_32f_C1R(size, 3, &bytes);
 * Lum8u* buffer = (Lum8u*)malloc(bytes);
 * lumiFilterRowBorderPipeline_32f_C1R(src, srcStep, dstRows, size, kernel, 3, 1, lumBorderMirror, 0, buffer);
 * @endcode
 * @{
 */

/** @name Work memory of the row stage */
/**@{*/
/**
 * bufferSize = bytes that the row stage of the same name needs at `buffer`. K is kernelSize; neither width nor
 * height counts:
 *
 *     16s     C1 48 K + 112    C3  40 K +  96
 *     16u     C1 48 K +  80    C3 112 K +  80
 *     32f     C1 64 K +  96    C3 192 K +  64
 *     8u16s   C1 36 K + 144    C3  60 K + 144
 *     Low_16s C1 24 K +  96    C3 208 K +  96
 *
 * The block may lie at any address.
 *
 * @param roiSize size of the region in pixels
 * @param kernelSize taps of the kernel
 * @param bufferSize receives the bytes
 * @retval lumStatusNullPointer bufferSize is null
 * @retval lumStatusSizeError width, height or kernelSize below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_16s_C1R(LumSize roiSize, int kernelSize,
                                                                   Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_16s_C3R(LumSize roiSize, int kernelSize,
                                                                   Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_16u_C1R(LumSize roiSize, int kernelSize,
                                                                   Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_16u_C3R(LumSize roiSize, int kernelSize,
                                                                   Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_32f_C1R(LumSize roiSize, int kernelSize,
                                                                   Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_32f_C3R(LumSize roiSize, int kernelSize,
                                                                   Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R(LumSize roiSize, int kernelSize,
                                                                     Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R(LumSize roiSize, int kernelSize,
                                                                     Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R(LumSize roiSize, int kernelSize,
                                                                       Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R(LumSize roiSize, int kernelSize,
                                                                       Lum32s* bufferSize);
/**@}*/

/** @name Row stage of a filter, with borders */
/**@{*/
/**
 * Filters a region along its rows, each channel by itself, into rows that the caller points to. With ext(i)
 * the pixel of row y at i inside the region and what the border says outside,
 *
 *     dstRows[y][x] = (sum over k = 0 .. kernelSize - 1 of kernel[k] ext(x - xAnchor + k)) / divisor
 *
 * a correlation: kernel[xAnchor] meets the pixel at x. Column stages take the result rows as they are, so
 * that a separable filter runs in stripes over a ring of rows. The 32f functions have no divisor; in 16u
 * coefficients run from 0 to 65535.
 *
 * Border, at the left and at the right: a side with its in-memory flag reads the pixels that lie beside the
 * region; any other side repeats the edge pixel (#lumBorderReplicate), reflects about it, back and forth in
 * rows that are narrower than the border (#lumBorderMirror; one column repeats), or takes borderValue
 * (#lumBorderConstant). Accepted are these three kinds with any flags, and #lumBorderInMemory by itself. The
 * flags of top and bottom have no effect.
 *
 * Arithmetic and rounding. The `interior` of a row is its results whose window lies inside the row.
 * - 16s, 8u16s: in the interior, whole groups of eight elements from its start are rounded to nearest even;
 *   what remains of it, the border stretches and rows narrower than the kernel are truncated toward zero; all
 *   saturate. A kernel of other than 3 or 5 taps rounds so only where width - kernelSize is above 15, and
 *   truncates everywhere else. The rounded results are exact sums times 1 / (float)divisor, if the magnitudes
 *   of the kernel sum to less than 65535 (to 65535 at most, and without a coefficient of -32768, if it has
 *   other than 3 or 5 taps); all other results are sums in single precision of the pixels times
 *   (float)kernel[k] x (1 / (float)divisor), in order of k. 8u16s with three taps and a divisor of 1 is exact.
 * - 16u: sums in single precision as above, truncated and saturated, all results alike.
 * - 32f: sums in single precision, in order of k.
 * - Low_16s: for kernels whose sums fit in 16 bits. With a divisor of 1 the result is the sum, wrapped to 16
 *   bits. Else it is (sum x m) >> 14, m = trunc(16384 / divisor) in single precision: in the whole groups of
 *   eight elements from the interior's start the sum wraps to 16 bits and the result saturates, elsewhere the
 *   sum is of 32 bits and the result its low 16 bits. Five symmetric taps with a divisor of 16, xAnchor 2, a
 *   border of exactly #lumBorderReplicate and a width of 11 or more give the 16-bit sum >> 4 throughout; from
 *   0x80001 pixels on (the product wraps) these rows are stored past the cache.
 *
 * Rows of the result and the source may have any alignment; it never changes a result. No result row may
 * overlap the source.
 *
 * @param src first pixel of the region
 * @param srcStep bytes between rows of the source
 * @param dstRows roiSize.height pointers to result rows of roiSize.width pixels
 * @param roiSize size of the region in pixels
 * @param kernel kernelSize coefficients
 * @param kernelSize taps of the kernel
 * @param xAnchor tap that meets the pixel of the result, 0 .. kernelSize - 1
 * @param border what lies at the left and right of the region
 * @param borderValue value of a constant border; in C3 functions a pointer to three, one a channel
 * @param divisor divides the sums; a negative one negates the result. At least 1 in 16u
 * @param buffer work memory of the size that the query of the same name gives
 * @retval lumStatusNullPointer src, dstRows, kernel or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusNullPointer one of the pointers in dstRows is null; C3 but 16u: borderValue is null,
 *          whatever the border
 * @retval lumStatusSizeError kernelSize below 1
 * @retval lumStatusAnchorError xAnchor below 0, or kernelSize or above
 * @retval lumStatusStepError srcStep below the row's bytes
 * @retval lumStatusStepAlignmentError 16s, 16u, 32f, Low_16s: srcStep not a multiple of the element size
 * @retval lumStatusBadArgument 16s_C1R, Low_16s, 8u16s_C3R: divisor is 0; 16u: divisor below 1
 * @retval lumStatusBorderError border is not one of those above
 * @retval lumStatusNullPointer 16u_C3R: borderValue is null and the border constant
 * @retval lumStatusBadArgument 16s_C3R, 8u16s_C1R: divisor is 0
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterRowBorderPipeline_16s_C1R(const Lum16s* src, int srcStep, Lum16s* const* dstRows,
                                                      LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                      int xAnchor, LumBorderType border, Lum16s borderValue,
                                                      int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_16s_C3R(const Lum16s* src, int srcStep, Lum16s* const* dstRows,
                                                      LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                      int xAnchor, LumBorderType border,
                                                      const Lum16s* borderValue, int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_16u_C1R(const Lum16u* src, int srcStep, Lum16u* const* dstRows,
                                                      LumSize roiSize, const Lum16u* kernel, int kernelSize,
                                                      int xAnchor, LumBorderType border, Lum16u borderValue,
                                                      int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_16u_C3R(const Lum16u* src, int srcStep, Lum16u* const* dstRows,
                                                      LumSize roiSize, const Lum16u* kernel, int kernelSize,
                                                      int xAnchor, LumBorderType border,
                                                      const Lum16u* borderValue, int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_8u16s_C1R(const Lum8u* src, int srcStep, Lum16s* const* dstRows,
                                                        LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                        int xAnchor, LumBorderType border, Lum8u borderValue,
                                                        int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_8u16s_C3R(const Lum8u* src, int srcStep, Lum16s* const* dstRows,
                                                        LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                        int xAnchor, LumBorderType border,
                                                        const Lum8u* borderValue, int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_Low_16s_C1R(const Lum16s* src, int srcStep,
                                                          Lum16s* const* dstRows, LumSize roiSize,
                                                          const Lum16s* kernel, int kernelSize, int xAnchor,
                                                          LumBorderType border, Lum16s borderValue,
                                                          int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_Low_16s_C3R(const Lum16s* src, int srcStep,
                                                          Lum16s* const* dstRows, LumSize roiSize,
                                                          const Lum16s* kernel, int kernelSize, int xAnchor,
                                                          LumBorderType border, const Lum16s* borderValue,
                                                          int divisor, Lum8u* buffer);
/**@}*/

/** @name Row stage of a filter, with borders, without a divisor */
/**@{*/
/**
 * As lumiFilterRowBorderPipeline_16s_C1R(), without `divisor`.
 *
 * @param src first pixel of the region
 * @param srcStep bytes between rows of the source
 * @param dstRows roiSize.height pointers to result rows of roiSize.width pixels
 * @param roiSize size of the region in pixels
 * @param kernel kernelSize coefficients
 * @param kernelSize taps of the kernel
 * @param xAnchor tap that meets the pixel of the result, 0 .. kernelSize - 1
 * @param border what lies at the left and right of the region
 * @param borderValue value of a constant border; in C3 functions a pointer to three, one a channel
 * @param buffer work memory of the size that the query of the same name gives
 * @retval lumStatusNullPointer src, dstRows, kernel or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusNullPointer one of the pointers in dstRows is null; C3: borderValue is null, whatever the border
 * @retval lumStatusSizeError kernelSize below 1
 * @retval lumStatusAnchorError xAnchor below 0, or kernelSize or above
 * @retval lumStatusStepError srcStep below the row's bytes
 * @retval lumStatusStepAlignmentError srcStep not a multiple of the element size
 * @retval lumStatusBorderError border is not one of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterRowBorderPipeline_32f_C1R(const Lum32f* src, int srcStep, Lum32f* const* dstRows,
                                                      LumSize roiSize, const Lum32f* kernel, int kernelSize,
                                                      int xAnchor, LumBorderType border, Lum32f borderValue,
                                                      Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_32f_C3R(const Lum32f* src, int srcStep, Lum32f* const* dstRows,
                                                      LumSize roiSize, const Lum32f* kernel, int kernelSize,
                                                      int xAnchor, LumBorderType border,
                                                      const Lum32f* borderValue, Lum8u* buffer);
/**@}*/

/** @name Work memory of the column stage */
/**@{*/
/**
 * bufferSize = bytes that the column stage of the same name needs at `buffer`. W is roiSize.width; the
 * kernel's length does not count:
 *
 *     16s8s, 16s8u, 16s  C1 12 (W rounded up to a multiple of 4) + 64    C3 36 (the same) + 64
 *     16u, 32f           32
 *     Low_16s            C1 12 (W rounded up to a multiple of 8) + 64    C3 36 (the same) + 64
 *
 * formed in wrapping 32-bit arithmetic. The block may lie at any address.
 *
 * @param roiSize size of the region in pixels
 * @param kernelSize taps of the kernel
 * @param bufferSize receives the bytes
 * @retval lumStatusNullPointer bufferSize is null
 * @retval lumStatusSizeError width, height or kernelSize below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s8s_C1R(LumSize roiSize, int kernelSize,
                                                                  Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s8s_C3R(LumSize roiSize, int kernelSize,
                                                                  Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s8u_C1R(LumSize roiSize, int kernelSize,
                                                                  Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s8u_C3R(LumSize roiSize, int kernelSize,
                                                                  Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s_C1R(LumSize roiSize, int kernelSize,
                                                                Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s_C3R(LumSize roiSize, int kernelSize,
                                                                Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_16u_C1R(LumSize roiSize, int kernelSize,
                                                                Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_16u_C3R(LumSize roiSize, int kernelSize,
                                                                Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_32f_C1R(LumSize roiSize, int kernelSize,
                                                                Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_32f_C3R(LumSize roiSize, int kernelSize,
                                                                Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R(LumSize roiSize, int kernelSize,
                                                                    Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R(LumSize roiSize, int kernelSize,
                                                                    Lum32s* bufferSize);
/**@}*/

/** @name Column stage of a filter */
/**@{*/
/**
 * Filters down the columns of rows that the caller points to, into an image:
 *
 *     dst(x, y) = (sum over k = 0 .. kernelSize - 1 of kernel[k] srcRows[y + k][x]) / divisor
 *
 * for each channel by itself. A border above and below is whatever rows the pointers name: the same row may
 * appear many times. The 32f functions have no divisor; in 16u coefficients run from 0 to 65535.
 *
 * Arithmetic and rounding. Integer sums are formed in single precision from the elements times
 * (float)kernel[k] x (1 / (float)divisor), in order of k; in three symmetric taps over 16s rows the two outer
 * rows are added first.
 * - 16s8u, 16u: rounded to nearest even and saturated.
 * - 16s8s, 16s: the first 16 x floor(width x channels / 16) elements of each row are rounded to nearest even,
 *   the others truncated toward zero; all saturate.
 * - 32f: sums in single precision, in order of k.
 * - Low_16s: as in the row stage, with the whole groups of eight elements from the start of each row. Five
 *   symmetric taps with a divisor of 16 and a height of 3 or more give the 16-bit sum >> 4 throughout; from
 *   0x40001 pixels on (the product wraps) these rows are stored past the cache where all rows of the result
 *   are aligned to a vector (16 bytes in 32-bit builds).
 *
 * Rows may have any alignment; it never changes a result. The result may not overlap the source.
 *
 * @param srcRows roiSize.height + kernelSize - 1 pointers to rows of roiSize.width pixels
 * @param dst first pixel of the result
 * @param dstStep bytes between rows of the result
 * @param roiSize size of the result in pixels
 * @param kernel kernelSize coefficients
 * @param kernelSize taps of the kernel
 * @param divisor divides the sums; a negative one negates the result
 * @param buffer work memory of the size that the query of the same name gives
 * @retval lumStatusNullPointer srcRows, dst or kernel is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusNullPointer one of the first roiSize.height + kernelSize - 1 pointers in srcRows is null
 * @retval lumStatusSizeError kernelSize below 1
 * @retval lumStatusStepError dstStep below the row's bytes; Low_16s_C3R compares it with the bytes of one
 *          channel
 * @retval lumStatusStepAlignmentError 16s, 16u, 32f, Low_16s: dstStep not a multiple of the element size
 * @retval lumStatusNullPointer buffer is null, also in the functions that use none of it
 * @retval lumStatusBadArgument divisor is 0
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterColumnPipeline_16s8s_C1R(const Lum16s* const* srcRows, Lum8s* dst, int dstStep,
                                                     LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                     int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_16s8s_C3R(const Lum16s* const* srcRows, Lum8s* dst, int dstStep,
                                                     LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                     int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_16s8u_C1R(const Lum16s* const* srcRows, Lum8u* dst, int dstStep,
                                                     LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                     int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_16s8u_C3R(const Lum16s* const* srcRows, Lum8u* dst, int dstStep,
                                                     LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                     int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_16s_C1R(const Lum16s* const* srcRows, Lum16s* dst, int dstStep,
                                                   LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                   int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_16s_C3R(const Lum16s* const* srcRows, Lum16s* dst, int dstStep,
                                                   LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                   int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_16u_C1R(const Lum16u* const* srcRows, Lum16u* dst, int dstStep,
                                                   LumSize roiSize, const Lum16u* kernel, int kernelSize,
                                                   int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_16u_C3R(const Lum16u* const* srcRows, Lum16u* dst, int dstStep,
                                                   LumSize roiSize, const Lum16u* kernel, int kernelSize,
                                                   int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_Low_16s_C1R(const Lum16s* const* srcRows, Lum16s* dst, int dstStep,
                                                       LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                       int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_Low_16s_C3R(const Lum16s* const* srcRows, Lum16s* dst, int dstStep,
                                                       LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                       int divisor, Lum8u* buffer);
/**@}*/

/** @name Column stage of a filter without a divisor */
/**@{*/
/**
 * As lumiFilterColumnPipeline_16s8s_C1R(), without `divisor`.
 *
 * @param srcRows roiSize.height + kernelSize - 1 pointers to rows of roiSize.width pixels
 * @param dst first pixel of the result
 * @param dstStep bytes between rows of the result
 * @param roiSize size of the result in pixels
 * @param kernel kernelSize coefficients
 * @param kernelSize taps of the kernel
 * @param buffer work memory of the size that the query of the same name gives
 * @retval lumStatusNullPointer srcRows, dst or kernel is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusNullPointer one of the first roiSize.height + kernelSize - 1 pointers in srcRows is null
 * @retval lumStatusSizeError kernelSize below 1
 * @retval lumStatusStepError dstStep below the row's bytes
 * @retval lumStatusStepAlignmentError dstStep not a multiple of the element size
 * @retval lumStatusNullPointer buffer is null, also in the functions that use none of it
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterColumnPipeline_32f_C1R(const Lum32f* const* srcRows, Lum32f* dst, int dstStep,
                                                   LumSize roiSize, const Lum32f* kernel, int kernelSize,
                                                   Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_32f_C3R(const Lum32f* const* srcRows, Lum32f* dst, int dstStep,
                                                   LumSize roiSize, const Lum32f* kernel, int kernelSize,
                                                   Lum8u* buffer);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
