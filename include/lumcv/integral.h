/**
 * @file
 * Summed-area images, upright and tilted, and the standard deviation of rectangles.
 */
#ifndef LUMCV_INTEGRAL_H
#define LUMCV_INTEGRAL_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup integral Integral images
 * Summed-area images, upright and tilted, and the standard deviation of rectangles.
 *
 * @code
 * const Lum8u image[4] = {1, 2, 3, 4};                            // 2 x 2
 * Lum32s sums[9];                                                 // 3 x 3
 * const LumSize size = {2, 2};
 * lumiIntegral_8u32s_C1R(image, 2, sums, 12, size, 0);        // 0 0 0, 0 1 3, 0 4 10
 * const Lum32s whole = sums[8] - sums[6] - sums[2] + sums[0];     // 10
 * @endcode
 * @{
 */

/** @name Integral image */
/**@{*/
/**
 * dst(x + 1, y + 1) = value + the sum of src(i, j) over i <= x, j <= y; row 0 and column 0 hold `value`. The
 * sum over any rectangle is then four reads (Crow, Summed-area tables for texture mapping, SIGGRAPH 1984).
 * Each row is scanned from the left with a running sum r: r = r + src(x, y), dst(x + 1, y + 1) = dst(x + 1,
 * y) + r.
 *
 * - 8u32s: integers that wrap modulo 2 to the 32.
 * - 8u32f: r is an exact integer; it is rounded to single precision and added to the row above in single
 *   precision.
 * - 32f: r is in single precision and rounds at each pixel; the start value is 0.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first element of the result: roiSize.width + 1 columns, roiSize.height + 1 rows
 * @param roiSize size of the source region in pixels
 * @param value start value
 * @retval lumStatusNullPointer src or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the source's row, or dstStep below width + 1 elements
 * @retval lumStatusStepAlignmentError dstStep, and srcStep in 32f, not a multiple of the element size
 * @return lumStatusOk
 */
LUM_API LumStatus lumiIntegral_8u32s_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep,
                                         LumSize roiSize, Lum32s value);
LUM_API LumStatus lumiIntegral_8u32f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                         LumSize roiSize, Lum32f value);
/**@}*/

/** @name Integral image of floats */
/**@{*/
/**
 * As lumiIntegral_8u32s_C1R(), without `value`.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first element of the result: roiSize.width + 1 columns, roiSize.height + 1 rows
 * @param roiSize size of the source region in pixels
 * @retval lumStatusNullPointer src or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the source's row, or dstStep below width + 1 elements
 * @retval lumStatusStepAlignmentError dstStep, and srcStep in 32f, not a multiple of the element size
 * @return lumStatusOk
 */
LUM_API LumStatus lumiIntegral_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                       LumSize roiSize);
/**@}*/

/** @name Integral images of pixels and of their squares */
/**@{*/
/**
 * dst as from the integral image of the same types, and sqr by the same scan over the squares of the pixels,
 * from `sqrValue`. Squares in 32s wrap modulo 2 to the 32; in 64f they are exact below 2 to the 53.
 *
 * For local deviations take 8u32s64f, with lumiRectStdDev_32s32f_C1R(): a rectangle's sums are then exact. In 8u32f64f
 * they are so only while the sum of the whole picture is below 2 to the 24, some 256 x 256 pixels; in larger ones
 * deviations are off by whole tones.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param sqrStep bytes between rows of `sqr`
 * @param dst first elements of the results: roiSize.width + 1 columns, roiSize.height + 1 rows each
 * @param sqr first elements of the results: roiSize.width + 1 columns, roiSize.height + 1 rows each
 * @param roiSize size of the source region in pixels
 * @param value start values
 * @param sqrValue start values
 * @retval lumStatusNullPointer src, dst or sqr is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the source's row, or dstStep or sqrStep below width + 1 elements
 * @retval lumStatusStepAlignmentError dstStep or sqrStep not a multiple of its element size
 * @return lumStatusOk
 */
LUM_API LumStatus lumiSqrIntegral_8u32s_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep,
                                            Lum32s* sqr, int sqrStep, LumSize roiSize, Lum32s value,
                                            Lum32s sqrValue);
LUM_API LumStatus lumiSqrIntegral_8u32s64f_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep,
                                               Lum64f* sqr, int sqrStep, LumSize roiSize, Lum32s value,
                                               Lum64f sqrValue);
LUM_API LumStatus lumiSqrIntegral_8u32f64f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                               Lum64f* sqr, int sqrStep, LumSize roiSize, Lum32f value,
                                               Lum64f sqrValue);
/**@}*/

/** @name Integral image of tilted rectangles */
/**@{*/
/**
 * T(x, y) belongs to the 45-degree cone of pixels that opens upward (Lienhart and Maydt, An extended set of
 * Haar-like features for rapid object detection, ICIP 2002). Rows 0 and 1 hold `value`. Each source row s =
 * src(., y) gives a row C = T(., y + 2) from A = T(., y) and B = T(., y + 1):
 *
 * - C(0) = B(1)
 * - C(x) = s(x - 1) + s(x) + B(x - 1) - (A(x) - B(x + 1)), for x from 1 to width - 1
 * - C(width) = s(width - 1) + B(width - 1) + (B(width + 1) - A(width))
 * - C(width + 1) = B(width)
 *
 * 8u32s wraps modulo 2 to the 32. In 8u32f the sum of the pixels is exact, then rounded to single precision,
 * and the rest is in single precision in the order given.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first element of the result: roiSize.width + 2 columns, roiSize.height + 2 rows
 * @param roiSize size of the source region in pixels
 * @param value start value
 * @retval lumStatusNullPointer src or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the source's row, or dstStep below width + 2 elements
 * @retval lumStatusStepAlignmentError dstStep not a multiple of the element size
 * @return lumStatusOk
 */
LUM_API LumStatus lumiTiltedIntegral_8u32s_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep,
                                               LumSize roiSize, Lum32s value);
LUM_API LumStatus lumiTiltedIntegral_8u32f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                               LumSize roiSize, Lum32f value);
/**@}*/

/** @name Integral images of tilted rectangles, of pixels and of their squares */
/**@{*/
/**
 * dst as from the tilted integral image of the same types, and sqr by the same four steps over the squares of
 * the pixels, from `sqrValue`. Squares in 32s wrap modulo 2 to the 32; in 64f they are combined in double
 * precision.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param sqrStep bytes between rows of `sqr`
 * @param dst first elements of the results: roiSize.width + 2 columns, roiSize.height + 2 rows each
 * @param sqr first elements of the results: roiSize.width + 2 columns, roiSize.height + 2 rows each
 * @param roiSize size of the source region in pixels
 * @param value start values
 * @param sqrValue start values
 * @retval lumStatusNullPointer src, dst or sqr is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the source's row, or dstStep or sqrStep below width + 2 elements
 * @retval lumStatusStepAlignmentError dstStep or sqrStep not a multiple of its element size
 * @return lumStatusOk
 */
LUM_API LumStatus lumiTiltedSqrIntegral_8u32s_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep,
                                                  Lum32s* sqr, int sqrStep, LumSize roiSize, Lum32s value,
                                                  Lum32s sqrValue);
LUM_API LumStatus lumiTiltedSqrIntegral_8u32s64f_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep,
                                                     Lum64f* sqr, int sqrStep, LumSize roiSize, Lum32s value,
                                                     Lum64f sqrValue);
LUM_API LumStatus lumiTiltedSqrIntegral_8u32f64f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                                     Lum64f* sqr, int sqrStep, LumSize roiSize, Lum32f value,
                                                     Lum64f sqrValue);
/**@}*/

/** @name Standard deviation of a rectangle at every pixel */
/**@{*/
/**
 * dst(i, j) is the standard deviation of the pixels in the rectangle `rect` moved by (i, j), from the
 * integral P of the pixels (src) and the integral of their squares (sqr). With w and h the rectangle's width
 * and height, N = w h, a = P(i + x + w, j + y + h), b = P(i + x + w, j + y), c = P(i + x, j + y), d = P(i +
 * x, j + y + h), S is a - b + c - d, and Q the same of the squares:
 *
 * - 32s Sfs: S and Q wrap. mean = S / N, var = Q / N - mean x mean, all in single precision; var below 0 is
 *   0. dst = sqrt(var) x 2^-scaleFactor + 0.5 in double precision, truncated toward zero and saturated. The
 *   power is made by a shift of a signed 32-bit 1 by |scaleFactor| modulo 32.
 * - 32s32f: S wraps, Q = ((a - b) + c) - d in double. mean = S / N in single precision; var = Q / N - mean
 *   x mean in double, rounded to single.
 * - 32f: S = (a - b) + (c - d) in single precision, Q in the same order in double. mean = S x (1 / N),
 *   var = Q x (1 / N) - mean x mean in double, rounded to single.
 *
 * In 32s32f and 32f a var not above 0 is 0, and dst is its single-precision square root. Of these two take 32s32f, on
 * lumiSqrIntegral_8u32s64f_C1R(): the sums of 32f, from 8u32f64f, lose whole tones in larger pictures.
 *
 * @param src first element of the integral image of the pixels
 * @param srcStep bytes between rows of `src`
 * @param sqrStep bytes between rows of `sqr`
 * @param dstStep bytes between rows of `dst`
 * @param sqr first element of the integral image of the squares
 * @param dst first element of the result
 * @param roiSize size of the result in pixels
 * @param rect the rectangle, where it lies for result (0, 0)
 * @param scaleFactor the deviation is multiplied by 2 to the power of minus this; any value
 * @retval lumStatusNullPointer src, sqr or dst is null
 * @retval lumStatusSizeError roiSize: width or height below 1
 * @retval lumStatusStepError srcStep or sqrStep below rect.x + roiSize.width + rect.width elements (a
 *         count in wrapping 32-bit arithmetic), or dstStep below the result's row
 * @retval lumStatusStepAlignmentError a step that is not a multiple of its element size
 * @retval lumStatusSizeError rect.x or rect.y below 0, rect.width or rect.height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiRectStdDev_32s_C1RSfs(const Lum32s* src, int srcStep, const Lum32s* sqr, int sqrStep,
                                            Lum32s* dst, int dstStep, LumSize roiSize, LumRect rect,
                                            int scaleFactor);
/**@}*/

/** @name Standard deviation of a rectangle in floats */
/**@{*/
/**
 * As lumiRectStdDev_32s_C1RSfs(), without `scaleFactor`.
 *
 * @param src first element of the integral image of the pixels
 * @param srcStep bytes between rows of `src`
 * @param sqrStep bytes between rows of `sqr`
 * @param dstStep bytes between rows of `dst`
 * @param sqr first element of the integral image of the squares
 * @param dst first element of the result
 * @param roiSize size of the result in pixels
 * @param rect the rectangle, where it lies for result (0, 0)
 * @retval lumStatusNullPointer src, sqr or dst is null
 * @retval lumStatusSizeError roiSize: width or height below 1
 * @retval lumStatusStepError srcStep or sqrStep below rect.x + roiSize.width + rect.width elements (a
 *         count in wrapping 32-bit arithmetic), or dstStep below the result's row
 * @retval lumStatusStepAlignmentError a step that is not a multiple of its element size
 * @retval lumStatusSizeError rect.x or rect.y below 0, rect.width or rect.height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiRectStdDev_32s32f_C1R(const Lum32s* src, int srcStep, const Lum64f* sqr, int sqrStep,
                                            Lum32f* dst, int dstStep, LumSize roiSize, LumRect rect);
LUM_API LumStatus lumiRectStdDev_32f_C1R(const Lum32f* src, int srcStep, const Lum64f* sqr, int sqrStep,
                                         Lum32f* dst, int dstStep, LumSize roiSize, LumRect rect);
/**@}*/

/** @name Standard deviation of a tilted rectangle at every pixel */
/**@{*/
/**
 * As for upright rectangles, on tilted integral images and with N = 2 w h. With r = rect.x + rect.y and
 * c = rect.x - rect.y the corners are read at A (c + i, r + j), B (c + i + w, r + j + w),
 * C (c + i + w - h, r + j + w + h) and D (c + i - h, r + j + h), each a column and a row. The column of D may
 * be negative: the pointers must lie so that all reads are within the integral images, which is not tested.
 *
 * - 32s Sfs: S = A + C - (B + D) and Q wrap. mean = S / N and Q / N in single precision; var = Q / N - mean
 *   x mean in double, rounded to single; below 0 it is 0. dst as for upright rectangles.
 * - 32s32f: S wraps, Q = (A + C) - (B + D) in double. mean = S / N in single precision; var = Q / N - mean
 *   x mean in double, rounded to single.
 * - 32f: S and Q are ((A - B) + C) - D, mean = S / N, var = Q / N - mean x mean, all in double; var is
 *   rounded to single.
 *
 * In 32s32f and 32f a var not above 0 is 0, and dst is its single-precision square root.
 *
 * @param src element (0, 0) of the tilted integral image of the pixels
 * @param srcStep bytes between rows of `src`
 * @param sqrStep bytes between rows of `sqr`
 * @param dstStep bytes between rows of `dst`
 * @param sqr element (0, 0) of the tilted integral image of the squares
 * @param dst first element of the result
 * @param roiSize size of the result in pixels
 * @param rect the rectangle, where it lies for result (0, 0)
 * @param scaleFactor the deviation is multiplied by 2 to the power of minus this; any value
 * @retval lumStatusNullPointer src, sqr or dst is null
 * @retval lumStatusSizeError roiSize: width or height below 1
 * @retval lumStatusStepError srcStep or sqrStep below
 *         rect.width + roiSize.width + rect.x + rect.y + rect.height - 1 elements (a count in wrapping 32-bit
 *         arithmetic), or dstStep below the result's row
 * @retval lumStatusStepAlignmentError a step that is not a multiple of its element size
 * @retval lumStatusSizeError rect.x or rect.y below 0, rect.width or rect.height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiTiltedRectStdDev_32s_C1RSfs(const Lum32s* src, int srcStep, const Lum32s* sqr,
                                                  int sqrStep, Lum32s* dst, int dstStep, LumSize roiSize,
                                                  LumRect rect, int scaleFactor);
/**@}*/

/** @name Standard deviation of a tilted rectangle in floats */
/**@{*/
/**
 * As lumiTiltedRectStdDev_32s_C1RSfs(), without `scaleFactor`.
 *
 * @param src element (0, 0) of the tilted integral image of the pixels
 * @param srcStep bytes between rows of `src`
 * @param sqrStep bytes between rows of `sqr`
 * @param dstStep bytes between rows of `dst`
 * @param sqr element (0, 0) of the tilted integral image of the squares
 * @param dst first element of the result
 * @param roiSize size of the result in pixels
 * @param rect the rectangle, where it lies for result (0, 0)
 * @retval lumStatusNullPointer src, sqr or dst is null
 * @retval lumStatusSizeError roiSize: width or height below 1
 * @retval lumStatusStepError srcStep or sqrStep below
 *         rect.width + roiSize.width + rect.x + rect.y + rect.height - 1 elements (a count in wrapping 32-bit
 *         arithmetic), or dstStep below the result's row
 * @retval lumStatusStepAlignmentError a step that is not a multiple of its element size
 * @retval lumStatusSizeError rect.x or rect.y below 0, rect.width or rect.height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiTiltedRectStdDev_32s32f_C1R(const Lum32s* src, int srcStep, const Lum64f* sqr,
                                                  int sqrStep, Lum32f* dst, int dstStep, LumSize roiSize,
                                                  LumRect rect);
LUM_API LumStatus lumiTiltedRectStdDev_32f_C1R(const Lum32f* src, int srcStep, const Lum64f* sqr, int sqrStep,
                                               Lum32f* dst, int dstStep, LumSize roiSize, LumRect rect);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
