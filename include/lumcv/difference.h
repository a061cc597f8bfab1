/**
 * @file
 * Absolute differences of two images, and of an image and a constant.
 */
#ifndef LUMCV_DIFFERENCE_H
#define LUMCV_DIFFERENCE_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup difference Pixel differences
 * Absolute differences of two images, and of an image and a constant.
 *
 * @code
 * Lum8u before[4] = {10, 20, 30, 40}, after[4] = {10, 25, 20, 40}, difference[4];
 * const LumSize size = {4, 1};
 * lumiAbsDiff_8u_C1R(before, 4, after, 4, difference, 4, size);   // 0 5 10 0
 * lumiAbsDiffC_8u_C1R(before, 4, difference, 4, size, 25);        // 15 5 5 15
 * @endcode
 * @{
 */

/** @name Absolute difference of two images */
/**@{*/
/**
 * dst(x, y) = |src1(x, y) - src2(x, y)|, exact for integers. In 32f the sign bit of the single-precision
 * difference is cleared: a NaN keeps its payload (of two NaNs, that of src1), and two equal infinities give NaN.
 * dst may be src1 or src2 itself (same pointer and step); other overlap is not supported.
 *
 * @param src1 first pixel of the first source region
 * @param src2 first pixel of the second source region
 * @param src1Step bytes between rows of `src1`
 * @param src2Step bytes between rows of `src2`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result
 * @param roiSize size of the region in pixels
 * @retval lumStatusNullPointer src1, src2 or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a step that is not a multiple of the element size
 * @return lumStatusOk
 *
 * In the C3 function the width of three channels is formed in wrapping 32-bit arithmetic.
 */
LUM_API LumStatus lumiAbsDiff_8u_C1R(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                     Lum8u* dst, int dstStep, LumSize roiSize);
LUM_API LumStatus lumiAbsDiff_8u_C3R(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                     Lum8u* dst, int dstStep, LumSize roiSize);
LUM_API LumStatus lumiAbsDiff_16u_C1R(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                      Lum16u* dst, int dstStep, LumSize roiSize);
LUM_API LumStatus lumiAbsDiff_32f_C1R(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                      Lum32f* dst, int dstStep, LumSize roiSize);
/**@}*/

/** @name Absolute difference of an image and a constant */
/**@{*/
/**
 * dst(x, y) = |src(x, y) - value|, with the arithmetic of the difference of two images. An integer constant is
 * clamped to the range of the element first: 300 acts as 255 in 8u. dst may be src itself.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result
 * @param roiSize size of the region in pixels
 * @param value the constant
 * @retval lumStatusNullPointer src or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a step that is not a multiple of the element size
 * @return lumStatusOk
 */
LUM_API LumStatus lumiAbsDiffC_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumSize roiSize,
                                      Lum32s value);
LUM_API LumStatus lumiAbsDiffC_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                       LumSize roiSize, Lum32s value);
LUM_API LumStatus lumiAbsDiffC_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                       LumSize roiSize, Lum32f value);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
