/**
 * @file
 * Norms of an image, of a difference, and of a difference relative to the second image, under a mask.
 */
#ifndef LUMCV_NORM_H
#define LUMCV_NORM_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup norm Norms
 * Norms of an image, of a difference, and of a difference relative to the second image, under a mask.
 *
 * @code
 * const Lum8u a[4] = {10, 20, 30, 40}, b[4] = {10, 24, 30, 37}, mask[4] = {1, 1, 1, 1};
 * const LumSize size = {4, 1};
 * Lum64f norm;
 * lumiNormDiff_L1_8u_C1MR(a, 4, b, 4, mask, 4, size, &norm);      // 7
 * lumiNormDiff_L2_8u_C1MR(a, 4, b, 4, mask, 4, size, &norm);      // 5
 * @endcode
 * @{
 */

/** @name Norm of an image under a mask */
/**@{*/
/**
 * Over the pixels with a mask byte other than 0: Inf is max |src(x, y)|, L1 is sum |src(x, y)|, L2 is
 * sqrt(sum src(x, y)^2). An empty mask gives 0.
 *
 * 8u and 16u: the maximum or sum is an exact integer, converted to double before the root. 32f: a row is summed in
 * single precision, in an order that depends on nothing but its width; rows are added in double, and the total is
 * rounded to a float before the root is taken in double. NaN is never the largest, but makes a sum NaN.
 *
 * @param src first pixel of the region
 * @param srcStep bytes between rows of `src`
 * @param maskStep bytes between rows of `mask`
 * @param mask first byte of the mask, one byte a pixel; 0 excludes the pixel
 * @param roiSize size of the region in pixels
 * @param value the result
 * @retval lumStatusNullPointer src, mask or value is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: srcStep is not a multiple of the element size
 * @retval lumStatusStepError maskStep below the width (tested after the alignment of the other steps)
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @return lumStatusOk
 */
LUM_API LumStatus lumiNorm_Inf_8u_C1MR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                       LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_Inf_16u_C1MR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                        LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_Inf_32f_C1MR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                        LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_L1_8u_C1MR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                      LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_L1_16u_C1MR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                       LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_L1_32f_C1MR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                       LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_L2_8u_C1MR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                      LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_L2_16u_C1MR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                       LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_L2_32f_C1MR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                       LumSize roiSize, Lum64f* value);
/**@}*/

/** @name Norm of an image under a mask of one channel */
/**@{*/
/**
 * As lumiNorm_Inf_8u_C1MR(), with `coi`.
 *
 * @param src first pixel of the region
 * @param srcStep bytes between rows of `src`
 * @param maskStep bytes between rows of `mask`
 * @param mask first byte of the mask, one byte a pixel; 0 excludes the pixel
 * @param roiSize size of the region in pixels
 * @param coi C3C: the channel looked at, 1 to 3, of three interleaved channels
 * @param value the result
 * @retval lumStatusNullPointer src, mask or value is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: srcStep is not a multiple of the element size
 * @retval lumStatusStepError maskStep below the width (tested after the alignment of the other steps)
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @return lumStatusOk
 */
LUM_API LumStatus lumiNorm_Inf_8u_C3CMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                        LumSize roiSize, Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNorm_Inf_16u_C3CMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                         LumSize roiSize, Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNorm_Inf_32f_C3CMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                         LumSize roiSize, Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNorm_L1_8u_C3CMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                       LumSize roiSize, Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNorm_L1_16u_C3CMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                        LumSize roiSize, Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNorm_L1_32f_C3CMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                        LumSize roiSize, Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNorm_L2_8u_C3CMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                       LumSize roiSize, Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNorm_L2_16u_C3CMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                        LumSize roiSize, Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNorm_L2_32f_C3CMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                        LumSize roiSize, Lum32s coi, Lum64f* value);
/**@}*/

/** @name Norm of the difference of two images under a mask */
/**@{*/
/**
 * The norm, as above, of src1(x, y) - src2(x, y). The difference is exact for integers, and rounded to single
 * precision in 32f.
 *
 * @param src1 first pixels of the two regions
 * @param src2 first pixels of the two regions
 * @param src1Step bytes between rows of `src1`
 * @param src2Step bytes between rows of `src2`
 * @param maskStep bytes between rows of `mask`
 * @param mask first byte of the mask, one byte a pixel; 0 excludes the pixel
 * @param roiSize size of the region in pixels
 * @param value the result
 * @retval lumStatusNullPointer src1, src2, mask or value is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError src1Step or src2Step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: src1Step or src2Step is not a multiple of the element size
 * @retval lumStatusStepError maskStep below the width (tested after the alignment of the other steps)
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @return lumStatusOk
 */
LUM_API LumStatus lumiNormDiff_Inf_8u_C1MR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormDiff_Inf_16u_C1MR(const Lum16u* src1, int src1Step, const Lum16u* src2,
                                            int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                            Lum64f* value);
LUM_API LumStatus lumiNormDiff_Inf_32f_C1MR(const Lum32f* src1, int src1Step, const Lum32f* src2,
                                            int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                            Lum64f* value);
LUM_API LumStatus lumiNormDiff_L1_8u_C1MR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L1_16u_C1MR(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L1_32f_C1MR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L2_8u_C1MR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L2_16u_C1MR(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L2_32f_C1MR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
/**@}*/

/** @name Norm of the difference of two images under a mask of one channel */
/**@{*/
/**
 * As lumiNormDiff_Inf_8u_C1MR(), with `coi`.
 *
 * @param src1 first pixels of the two regions
 * @param src2 first pixels of the two regions
 * @param src1Step bytes between rows of `src1`
 * @param src2Step bytes between rows of `src2`
 * @param maskStep bytes between rows of `mask`
 * @param mask first byte of the mask, one byte a pixel; 0 excludes the pixel
 * @param roiSize size of the region in pixels
 * @param coi C3C: the channel looked at, 1 to 3, of three interleaved channels
 * @param value the result
 * @retval lumStatusNullPointer src1, src2, mask or value is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError src1Step or src2Step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: src1Step or src2Step is not a multiple of the element size
 * @retval lumStatusStepError maskStep below the width (tested after the alignment of the other steps)
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @return lumStatusOk
 */
LUM_API LumStatus lumiNormDiff_Inf_8u_C3CMR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                            const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                            Lum64f* value);
LUM_API LumStatus lumiNormDiff_Inf_16u_C3CMR(const Lum16u* src1, int src1Step, const Lum16u* src2,
                                             int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                             Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNormDiff_Inf_32f_C3CMR(const Lum32f* src1, int src1Step, const Lum32f* src2,
                                             int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                             Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L1_8u_C3CMR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* value);
LUM_API LumStatus lumiNormDiff_L1_16u_C3CMR(const Lum16u* src1, int src1Step, const Lum16u* src2,
                                            int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                            Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L1_32f_C3CMR(const Lum32f* src1, int src1Step, const Lum32f* src2,
                                            int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                            Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L2_8u_C3CMR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* value);
LUM_API LumStatus lumiNormDiff_L2_16u_C3CMR(const Lum16u* src1, int src1Step, const Lum16u* src2,
                                            int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                            Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L2_32f_C3CMR(const Lum32f* src1, int src1Step, const Lum32f* src2,
                                            int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                            Lum32s coi, Lum64f* value);
/**@}*/

/** @name Relative norm of the difference of two images under a mask */
/**@{*/
/**
 * The norm of src1(x, y) - src2(x, y) divided by the norm of src2(x, y), both over the selected pixels and in double
 * precision. L2 divides the two sums and takes one root. 32f: what is divided are the maxima or sums as rounded to
 * single precision.
 *
 * A denominator of 0 divides nothing: value is +infinity where the numerator is above 0, and the NaN with the bits
 * 0xFFF8000000000000 where it is 0 (so too for an empty mask) or NaN.
 *
 * @param src1 first pixels of the two regions
 * @param src2 first pixels of the two regions
 * @param src1Step bytes between rows of `src1`
 * @param src2Step bytes between rows of `src2`
 * @param maskStep bytes between rows of `mask`
 * @param mask first byte of the mask, one byte a pixel; 0 excludes the pixel
 * @param roiSize size of the region in pixels
 * @param value the result
 * @retval lumStatusNullPointer src1, src2, mask or value is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError src1Step or src2Step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: src1Step or src2Step is not a multiple of the element size
 * @retval lumStatusStepError maskStep below the width (tested after the alignment of the other steps)
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @retval lumStatusZeroDenominator a warning: the norm of src2 is 0
 * @return lumStatusOk
 */
LUM_API LumStatus lumiNormRel_Inf_8u_C1MR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_Inf_16u_C1MR(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_Inf_32f_C1MR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_L1_8u_C1MR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                         const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_L1_16u_C1MR(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_L1_32f_C1MR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_L2_8u_C1MR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                         const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_L2_16u_C1MR(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_L2_32f_C1MR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
/**@}*/

/** @name Relative norm of the difference of two images under a mask of one channel */
/**@{*/
/**
 * As lumiNormRel_Inf_8u_C1MR(), with `coi`.
 *
 * @param src1 first pixels of the two regions
 * @param src2 first pixels of the two regions
 * @param src1Step bytes between rows of `src1`
 * @param src2Step bytes between rows of `src2`
 * @param maskStep bytes between rows of `mask`
 * @param mask first byte of the mask, one byte a pixel; 0 excludes the pixel
 * @param roiSize size of the region in pixels
 * @param coi C3C: the channel looked at, 1 to 3, of three interleaved channels
 * @param value the result
 * @retval lumStatusNullPointer src1, src2, mask or value is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError src1Step or src2Step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: src1Step or src2Step is not a multiple of the element size
 * @retval lumStatusStepError maskStep below the width (tested after the alignment of the other steps)
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @retval lumStatusZeroDenominator a warning: the norm of src2 is 0
 * @return lumStatusOk
 */
LUM_API LumStatus lumiNormRel_Inf_8u_C3CMR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* value);
LUM_API LumStatus lumiNormRel_Inf_16u_C3CMR(const Lum16u* src1, int src1Step, const Lum16u* src2,
                                            int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                            Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNormRel_Inf_32f_C3CMR(const Lum32f* src1, int src1Step, const Lum32f* src2,
                                            int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                            Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNormRel_L1_8u_C3CMR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                          Lum64f* value);
LUM_API LumStatus lumiNormRel_L1_16u_C3CMR(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* value);
LUM_API LumStatus lumiNormRel_L1_32f_C3CMR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* value);
LUM_API LumStatus lumiNormRel_L2_8u_C3CMR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                          Lum64f* value);
LUM_API LumStatus lumiNormRel_L2_16u_C3CMR(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* value);
LUM_API LumStatus lumiNormRel_L2_32f_C3CMR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* value);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
