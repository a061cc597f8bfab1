/**
 * @file
 * Running sums, sums of squares and of products, and weighted averages of frames.
 */
#ifndef LUMCV_ACCUMULATE_H
#define LUMCV_ACCUMULATE_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup accumulate Accumulators
 * Running sums, sums of squares and of products, and weighted averages of frames.
 *
 * @code
 * Lum8u frame[4] = {10, 20, 30, 40};
 * Lum32f sum[4] = {0, 0, 0, 0}, average[4] = {0, 0, 0, 0};
 * const LumSize size = {4, 1};
 * lumiAdd_8u32f_C1IR(frame, 4, sum, 16, size);                        // sum += frame
 * lumiAddWeighted_8u32f_C1IR(frame, 4, average, 16, size, 0.25F);     // average moves a quarter of the way
 * @endcode
 * @{
 */

/** @name Sums of frames */
/**@{*/
/**
 * srcDst(x, y) = srcDst(x, y) + src(x, y), in single precision; integers become floats first, which is
 * exact.
 *
 * With a mask, pixels whose mask byte is 0 keep their value: in scalar steps they are skipped; in whole
 * vectors a source of 0 is added whatever src holds, so that a -0.0 in the accumulator comes back as +0.0. In
 * each row the pixels before srcDst's first 16-byte boundary are scalar steps, then come vectors of 4, then 1
 * to 3 scalar steps; a row that never reaches a boundary is all scalar steps.
 *
 * @param src first pixel of the source region
 * @param srcDst first pixel of the accumulator, read and written
 * @param srcStep bytes between rows of `src`
 * @param srcDstStep bytes between rows of `srcDst`
 * @param roiSize size of the region in pixels
 * @retval lumStatusNullPointer src, mask or srcDst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError a step of 16u or 32f elements that is not a multiple of the element
 *     size. With 16u sources srcStep is tested entirely before the other two steps; otherwise all alignments
 *     come last.
 * @return lumStatusOk
 */
LUM_API LumStatus lumiAdd_8u32f_C1IR(const Lum8u* src, int srcStep, Lum32f* srcDst, int srcDstStep,
                                     LumSize roiSize);
LUM_API LumStatus lumiAdd_16u32f_C1IR(const Lum16u* src, int srcStep, Lum32f* srcDst, int srcDstStep,
                                      LumSize roiSize);
/**@}*/

/** @name Sums of frames under a mask */
/**@{*/
/**
 * As lumiAdd_8u32f_C1IR(), with `mask` and `maskStep`.
 *
 * @param src first pixel of the source region
 * @param mask first pixel of the mask, one byte a pixel
 * @param srcDst first pixel of the accumulator, read and written
 * @param srcStep bytes between rows of `src`
 * @param maskStep bytes between rows of `mask`; a mask's step may have any value of at least width
 * @param srcDstStep bytes between rows of `srcDst`
 * @param roiSize size of the region in pixels
 * @retval lumStatusNullPointer src, mask or srcDst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError a step of 16u or 32f elements that is not a multiple of the element
 *     size. With 16u sources srcStep is tested entirely before the other two steps; otherwise all alignments
 *     come last.
 * @return lumStatusOk
 */
LUM_API LumStatus lumiAdd_8u32f_C1IMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                      Lum32f* srcDst, int srcDstStep, LumSize roiSize);
LUM_API LumStatus lumiAdd_16u32f_C1IMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                       Lum32f* srcDst, int srcDstStep, LumSize roiSize);
LUM_API LumStatus lumiAdd_32f_C1IMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                    Lum32f* srcDst, int srcDstStep, LumSize roiSize);
/**@}*/

/** @name Sums of squared frames */
/**@{*/
/**
 * srcDst(x, y) = srcDst(x, y) + (src(x, y) x src(x, y)), the square and the sum each rounded to single
 * precision. Masks act as in the sums of frames.
 *
 * @param src first pixel of the source region
 * @param srcDst first pixel of the accumulator, read and written
 * @param srcStep bytes between rows of `src`
 * @param srcDstStep bytes between rows of `srcDst`
 * @param roiSize size of the region in pixels
 * @retval lumStatusNullPointer src, mask or srcDst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError as in the sums of frames
 * @return lumStatusOk
 */
LUM_API LumStatus lumiAddSquare_8u32f_C1IR(const Lum8u* src, int srcStep, Lum32f* srcDst, int srcDstStep,
                                           LumSize roiSize);
LUM_API LumStatus lumiAddSquare_16u32f_C1IR(const Lum16u* src, int srcStep, Lum32f* srcDst, int srcDstStep,
                                            LumSize roiSize);
LUM_API LumStatus lumiAddSquare_32f_C1IR(const Lum32f* src, int srcStep, Lum32f* srcDst, int srcDstStep,
                                         LumSize roiSize);
/**@}*/

/** @name Sums of squared frames under a mask */
/**@{*/
/**
 * As lumiAddSquare_8u32f_C1IR(), with `mask` and `maskStep`.
 *
 * @param src first pixel of the source region
 * @param mask first pixel of the mask, one byte a pixel
 * @param srcDst first pixel of the accumulator, read and written
 * @param srcStep bytes between rows of `src`
 * @param maskStep bytes between rows of `mask`; a mask's step may have any value of at least width
 * @param srcDstStep bytes between rows of `srcDst`
 * @param roiSize size of the region in pixels
 * @retval lumStatusNullPointer src, mask or srcDst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError as in the sums of frames
 * @return lumStatusOk
 */
LUM_API LumStatus lumiAddSquare_8u32f_C1IMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                            Lum32f* srcDst, int srcDstStep, LumSize roiSize);
LUM_API LumStatus lumiAddSquare_16u32f_C1IMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                             Lum32f* srcDst, int srcDstStep, LumSize roiSize);
LUM_API LumStatus lumiAddSquare_32f_C1IMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                          Lum32f* srcDst, int srcDstStep, LumSize roiSize);
/**@}*/

/** @name Sums of products of two frames */
/**@{*/
/**
 * srcDst(x, y) = srcDst(x, y) + (src1(x, y) x src2(x, y)), the product and the sum each rounded to single
 * precision.
 *
 * With a mask, pixels whose mask byte is 0 take a src1 of 0, and the formula runs: an infinity or a NaN in
 * src2 makes the accumulator NaN there. The first four pixels of an aligned row are stored past the cache
 * where the images fill the largest cache of the machine.
 *
 * @param src1 first pixels of the source regions
 * @param src2 first pixels of the source regions
 * @param srcDst first pixel of the accumulator, read and written
 * @param src1Step bytes between rows of `src1`
 * @param src2Step bytes between rows of `src2`
 * @param srcDstStep bytes between rows of `srcDst`
 * @param roiSize size of the region in pixels
 * @retval lumStatusNullPointer src1, src2, mask or srcDst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError a step of 16u or 32f elements that is not a multiple of the element
 *     size. With 16u sources their steps are tested entirely before the other two; otherwise all alignments
 *     come last.
 * @return lumStatusOk
 */
LUM_API LumStatus lumiAddProduct_8u32f_C1IR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                            Lum32f* srcDst, int srcDstStep, LumSize roiSize);
LUM_API LumStatus lumiAddProduct_16u32f_C1IR(const Lum16u* src1, int src1Step, const Lum16u* src2,
                                             int src2Step, Lum32f* srcDst, int srcDstStep, LumSize roiSize);
LUM_API LumStatus lumiAddProduct_32f_C1IR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                          Lum32f* srcDst, int srcDstStep, LumSize roiSize);
/**@}*/

/** @name Sums of products of two frames under a mask */
/**@{*/
/**
 * As lumiAddProduct_8u32f_C1IR(), with `mask` and `maskStep`.
 *
 * @param src1 first pixels of the source regions
 * @param src2 first pixels of the source regions
 * @param mask first pixel of the mask, one byte a pixel
 * @param srcDst first pixel of the accumulator, read and written
 * @param src1Step bytes between rows of `src1`
 * @param src2Step bytes between rows of `src2`
 * @param maskStep bytes between rows of `mask`; a mask's step may have any value of at least width
 * @param srcDstStep bytes between rows of `srcDst`
 * @param roiSize size of the region in pixels
 * @retval lumStatusNullPointer src1, src2, mask or srcDst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError a step of 16u or 32f elements that is not a multiple of the element
 *     size. With 16u sources their steps are tested entirely before the other two; otherwise all alignments
 *     come last.
 * @return lumStatusOk
 */
LUM_API LumStatus lumiAddProduct_8u32f_C1IMR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                             const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep,
                                             LumSize roiSize);
LUM_API LumStatus lumiAddProduct_16u32f_C1IMR(const Lum16u* src1, int src1Step, const Lum16u* src2,
                                              int src2Step, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                                              int srcDstStep, LumSize roiSize);
LUM_API LumStatus lumiAddProduct_32f_C1IMR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep,
                                           LumSize roiSize);
/**@}*/

/** @name Exponentially weighted averages of frames */
/**@{*/
/**
 * srcDst(x, y) = srcDst(x, y) + ((src(x, y) - srcDst(x, y)) x alpha): (1 - alpha) of the old value and alpha
 * of the new one, with one multiplication. Subtraction, multiplication and addition each round to single
 * precision.
 *
 * With a mask, pixels whose mask byte is 0 add +0.0 in place of the weighted difference, whatever src and
 * alpha are. Stores are those of the sums of products.
 *
 * @param src first pixel of the source region
 * @param srcDst first pixel of the accumulator, read and written
 * @param srcStep bytes between rows of `src`
 * @param srcDstStep bytes between rows of `srcDst`
 * @param roiSize size of the region in pixels
 * @param alpha the weight of src; any value
 * @retval lumStatusNullPointer src, mask or srcDst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError as in the sums of frames
 * @return lumStatusOk
 */
LUM_API LumStatus lumiAddWeighted_8u32f_C1IR(const Lum8u* src, int srcStep, Lum32f* srcDst, int srcDstStep,
                                             LumSize roiSize, Lum32f alpha);
LUM_API LumStatus lumiAddWeighted_16u32f_C1IR(const Lum16u* src, int srcStep, Lum32f* srcDst, int srcDstStep,
                                              LumSize roiSize, Lum32f alpha);
LUM_API LumStatus lumiAddWeighted_32f_C1IR(const Lum32f* src, int srcStep, Lum32f* srcDst, int srcDstStep,
                                           LumSize roiSize, Lum32f alpha);
/**@}*/

/** @name Exponentially weighted averages of frames under a mask */
/**@{*/
/**
 * As lumiAddWeighted_8u32f_C1IR(), with `mask` and `maskStep`.
 *
 * @param src first pixel of the source region
 * @param mask first pixel of the mask, one byte a pixel
 * @param srcDst first pixel of the accumulator, read and written
 * @param srcStep bytes between rows of `src`
 * @param maskStep bytes between rows of `mask`; a mask's step may have any value of at least width
 * @param srcDstStep bytes between rows of `srcDst`
 * @param roiSize size of the region in pixels
 * @param alpha the weight of src; any value
 * @retval lumStatusNullPointer src, mask or srcDst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError as in the sums of frames
 * @return lumStatusOk
 */
LUM_API LumStatus lumiAddWeighted_8u32f_C1IMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                              Lum32f* srcDst, int srcDstStep, LumSize roiSize, Lum32f alpha);
LUM_API LumStatus lumiAddWeighted_16u32f_C1IMR(const Lum16u* src, int srcStep, const Lum8u* mask,
                                               int maskStep, Lum32f* srcDst, int srcDstStep, LumSize roiSize,
                                               Lum32f alpha);
LUM_API LumStatus lumiAddWeighted_32f_C1IMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                            Lum32f* srcDst, int srcDstStep, LumSize roiSize, Lum32f alpha);
/**@}*/

/** @name Weighted average of two images */
/**@{*/
/**
 * dst(x, y) = src2(x, y) + ((src1(x, y) - src2(x, y)) x alpha), each operation rounded to single precision.
 * dst may be src1 or src2 itself (same pointer and step).
 *
 * @param src1 first pixels of the source regions
 * @param src2 first pixels of the source regions
 * @param dst first pixel of the result
 * @param src1Step bytes between rows of `src1`
 * @param src2Step bytes between rows of `src2`
 * @param dstStep bytes between rows of `dst`
 * @param roiSize size of the region in pixels
 * @param alpha the weight of src1; any value
 * @retval lumStatusNullPointer src1, src2 or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError a step that is not a multiple of 4
 * @return lumStatusOk
 */
LUM_API LumStatus lumiAddWeighted_32f_C1R(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                          Lum32f* dst, int dstStep, LumSize roiSize, Lum32f alpha);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
