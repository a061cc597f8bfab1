/**
 * @file
 * Mean of the pixels that a mask selects; mean and standard deviation of a region.
 */
#ifndef LUMCV_MEAN_H
#define LUMCV_MEAN_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup mean Means and deviations
 * Mean of the pixels that a mask selects; mean and standard deviation of a region.
 *
 * @code
 * const Lum8u image[4] = {10, 20, 30, 40}, mask[4] = {0, 1, 1, 0};
 * const LumSize size = {4, 1};
 * Lum64f mean, deviation;
 * lumiMean_8u_C1MR(image, 4, mask, 4, size, &mean);               // 25
 * lumiMean_StdDev_8u_C1R(image, 4, size, &mean, &deviation);      // 25, 11.18...
 * @endcode
 * @{
 */

/** @name Mean of the pixels that a mask selects */
/**@{*/
/**
 * mean = S / n in double precision, for the sum S of the n pixels whose mask byte is not 0; 0.0 where there
 * are none, which is no warning. Integer sums are exact. Floats add up in single precision within stretches
 * of a row and in double across them, in an order that depends on the width alone. In the C3C functions the
 * pixels are those of one channel.
 *
 * @param src first pixel of the region; in C3C functions of three interleaved channels
 * @param mask first pixel of the mask, one byte a pixel
 * @param srcStep bytes between rows of `src`
 * @param maskStep bytes between rows of `mask`
 * @param roiSize size of the region in pixels
 * @param mean takes the mean
 * @retval lumStatusNullPointer src, mask or mean is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a srcStep that is not a multiple of the element size. It is
 *     tested between srcStep and maskStep, in lumiMean_32f_C1MR after both.
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMean_8u_C1MR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                   LumSize roiSize, Lum64f* mean);
LUM_API LumStatus lumiMean_16u_C1MR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                    LumSize roiSize, Lum64f* mean);
LUM_API LumStatus lumiMean_32f_C1MR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                    LumSize roiSize, Lum64f* mean);
/**@}*/

/** @name Mean of the pixels that a mask selects of one channel */
/**@{*/
/**
 * As lumiMean_8u_C1MR(), with `coi`.
 *
 * @param src first pixel of the region; in C3C functions of three interleaved channels
 * @param mask first pixel of the mask, one byte a pixel
 * @param srcStep bytes between rows of `src`
 * @param maskStep bytes between rows of `mask`
 * @param roiSize size of the region in pixels
 * @param coi the channel, 1 to 3
 * @param mean takes the mean
 * @retval lumStatusNullPointer src, mask or mean is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a srcStep that is not a multiple of the element size. It is
 *     tested between srcStep and maskStep, in lumiMean_32f_C1MR after both.
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMean_8u_C3CMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                    LumSize roiSize, Lum32s coi, Lum64f* mean);
LUM_API LumStatus lumiMean_16u_C3CMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                     LumSize roiSize, Lum32s coi, Lum64f* mean);
LUM_API LumStatus lumiMean_32f_C3CMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                     LumSize roiSize, Lum32s coi, Lum64f* mean);
/**@}*/

/** @name Mean and standard deviation of a region */
/**@{*/
/**
 * mean = S / n and stdDev = sqrt(|Q / n - mean x mean|) in double precision, for the sum S of n pixels and
 * the sum Q of their squares; both 0.0 where a mask selects none, which is no warning. Without a mask n is
 * width x height, in 32-bit builds in arithmetic that wraps. Integer sums are exact, floats add up as in the means.
 *
 * A difference of nearly equal numbers says little, so the deviation of floats is computed once more, as
 * sqrt(D / n) for the sum D of (p - m) x (p - m) with the mean m rounded to single precision, where 0.05 x
 * mean x mean > stdDev x stdDev. (Two passes: T. F. Chan, G. H. Golub, R. J. LeVeque, Algorithms for
 * Computing the Sample Variance, The American Statistician 37, 1983.)
 *
 * @param src first pixel of the region; in C3C functions of three interleaved channels
 * @param srcStep bytes between rows
 * @param roiSize size of the region in pixels
 * @param mean takes the mean; may be null
 * @param stdDev takes the standard deviation; may be null
 * @retval lumStatusNullPointer src or mask is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a srcStep that is not a multiple of the element size, tested
 *     before maskStep
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMean_StdDev_8u_C1R(const Lum8u* src, int srcStep, LumSize roiSize, Lum64f* mean,
                                         Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_16u_C1R(const Lum16u* src, int srcStep, LumSize roiSize, Lum64f* mean,
                                          Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_32f_C1R(const Lum32f* src, int srcStep, LumSize roiSize, Lum64f* mean,
                                          Lum64f* stdDev);
/**@}*/

/** @name Mean and standard deviation of a region under a mask */
/**@{*/
/**
 * As lumiMean_StdDev_8u_C1R(), with `mask` and `maskStep`.
 *
 * @param src first pixel of the region; in C3C functions of three interleaved channels
 * @param mask first pixel of the mask, one byte a pixel
 * @param srcStep bytes between rows of `src`
 * @param maskStep bytes between rows of `mask`
 * @param roiSize size of the region in pixels
 * @param mean takes the mean; may be null
 * @param stdDev takes the standard deviation; may be null
 * @retval lumStatusNullPointer src or mask is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a srcStep that is not a multiple of the element size, tested
 *     before maskStep
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMean_StdDev_8u_C1MR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                          LumSize roiSize, Lum64f* mean, Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_16u_C1MR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                           LumSize roiSize, Lum64f* mean, Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_32f_C1MR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                           LumSize roiSize, Lum64f* mean, Lum64f* stdDev);
/**@}*/

/** @name Mean and standard deviation of a region of one channel */
/**@{*/
/**
 * As lumiMean_StdDev_8u_C1R(), with `coi`.
 *
 * @param src first pixel of the region; in C3C functions of three interleaved channels
 * @param srcStep bytes between rows
 * @param roiSize size of the region in pixels
 * @param coi the channel, 1 to 3
 * @param mean takes the mean; may be null
 * @param stdDev takes the standard deviation; may be null
 * @retval lumStatusNullPointer src or mask is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a srcStep that is not a multiple of the element size, tested
 *     before maskStep
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMean_StdDev_8u_C3CR(const Lum8u* src, int srcStep, LumSize roiSize, Lum32s coi,
                                          Lum64f* mean, Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_16u_C3CR(const Lum16u* src, int srcStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* mean, Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_32f_C3CR(const Lum32f* src, int srcStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* mean, Lum64f* stdDev);
/**@}*/

/** @name Mean and standard deviation of a region under a mask */
/**@{*/
/**
 * As lumiMean_StdDev_8u_C1R(), with `mask`, `maskStep` and `coi`.
 *
 * @param src first pixel of the region; in C3C functions of three interleaved channels
 * @param mask first pixel of the mask, one byte a pixel
 * @param srcStep bytes between rows of `src`
 * @param maskStep bytes between rows of `mask`
 * @param roiSize size of the region in pixels
 * @param coi the channel, 1 to 3
 * @param mean takes the mean; may be null
 * @param stdDev takes the standard deviation; may be null
 * @retval lumStatusNullPointer src or mask is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a srcStep that is not a multiple of the element size, tested
 *     before maskStep
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMean_StdDev_8u_C3CMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                           LumSize roiSize, Lum32s coi, Lum64f* mean, Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_16u_C3CMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                            LumSize roiSize, Lum32s coi, Lum64f* mean, Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_32f_C3CMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                            LumSize roiSize, Lum32s coi, Lum64f* mean, Lum64f* stdDev);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
