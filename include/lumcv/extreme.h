/**
 * @file
 * Smallest and largest value of a region with their places.
 */
#ifndef LUMCV_EXTREME_H
#define LUMCV_EXTREME_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup extreme Extreme values
 * Smallest and largest value of a region with their places.
 *
 * @code
 * const Lum8u image[4] = {10, 40, 5, 40};
 * const LumSize size = {4, 1};
 * Lum32f smallest, largest;
 * LumPoint where, peak;
 * lumiMinMaxIndx_8u_C1R(image, 4, size, &smallest, &largest, &where, &peak);  // 5 at (2, 0), 40 at (1, 0)
 * @endcode
 * @{
 */

/** @name Smallest and largest value with their places */
/**@{*/
/**
 * minVal = min of src(x, y), maxVal = max of src(x, y), over the pixels of the region, or over those with a mask
 * byte other than 0. minIndex and maxIndex are the first occurrences in scan order: the topmost row that holds the
 * value and in it the leftmost (selected) pixel, counted from the region's first pixel. In 32f NaN is never an
 * extreme: where there is nothing else, minVal is +infinity, maxVal -infinity, and both places are (-1, 0).
 * Where one side only is asked for and no pixel equals the value found, its place is (-1, 0).
 *
 * @param src first pixel of the region
 * @param srcStep bytes between rows
 * @param roiSize size of the region in pixels
 * @param minVal the values, in floats for every element type; either may be null
 * @param maxVal the values, in floats for every element type; either may be null
 * @param minIndex the places; either may be null. Nothing is computed for an output that is null.
 * @param maxIndex the places; either may be null. Nothing is computed for an output that is null.
 * @retval lumStatusNullPointer src or mask is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: srcStep is not a multiple of the element size
 * @retval lumStatusStepError maskStep below the width (tested after the alignment of srcStep)
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @retval lumStatusEmptyMask M, a warning: the mask selects no pixel, and every output given holds 0 or (0, 0);
 *         also whenever all four outputs are null, whatever the mask holds
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMinMaxIndx_8u_C1R(const Lum8u* src, int srcStep, LumSize roiSize, Lum32f* minVal,
                                        Lum32f* maxVal, LumPoint* minIndex, LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_16u_C1R(const Lum16u* src, int srcStep, LumSize roiSize, Lum32f* minVal,
                                         Lum32f* maxVal, LumPoint* minIndex, LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_32f_C1R(const Lum32f* src, int srcStep, LumSize roiSize, Lum32f* minVal,
                                         Lum32f* maxVal, LumPoint* minIndex, LumPoint* maxIndex);
/**@}*/

/** @name Smallest and largest value with their places under a mask */
/**@{*/
/**
 * As lumiMinMaxIndx_8u_C1R(), with `mask` and `maskStep`.
 *
 * @param src first pixel of the region
 * @param srcStep bytes between rows of `src`
 * @param maskStep bytes between rows of `mask`
 * @param mask first byte of the mask, one byte a pixel; 0 excludes the pixel
 * @param roiSize size of the region in pixels
 * @param minVal the values, in floats for every element type; either may be null
 * @param maxVal the values, in floats for every element type; either may be null
 * @param minIndex the places; either may be null. Nothing is computed for an output that is null.
 * @param maxIndex the places; either may be null. Nothing is computed for an output that is null.
 * @retval lumStatusNullPointer src or mask is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: srcStep is not a multiple of the element size
 * @retval lumStatusStepError maskStep below the width (tested after the alignment of srcStep)
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @retval lumStatusEmptyMask M, a warning: the mask selects no pixel, and every output given holds 0 or (0, 0);
 *         also whenever all four outputs are null, whatever the mask holds
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMinMaxIndx_8u_C1MR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                         LumSize roiSize, Lum32f* minVal, Lum32f* maxVal, LumPoint* minIndex,
                                         LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_16u_C1MR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                          LumSize roiSize, Lum32f* minVal, Lum32f* maxVal, LumPoint* minIndex,
                                          LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_32f_C1MR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                          LumSize roiSize, Lum32f* minVal, Lum32f* maxVal, LumPoint* minIndex,
                                          LumPoint* maxIndex);
/**@}*/

/** @name Smallest and largest value with their places of one channel */
/**@{*/
/**
 * As lumiMinMaxIndx_8u_C1R(), with `coi`.
 *
 * @param src first pixel of the region
 * @param srcStep bytes between rows
 * @param roiSize size of the region in pixels
 * @param coi C3C: the channel looked at, 1 to 3, of three interleaved channels
 * @param minVal the values, in floats for every element type; either may be null
 * @param maxVal the values, in floats for every element type; either may be null
 * @param minIndex the places; either may be null. Nothing is computed for an output that is null.
 * @param maxIndex the places; either may be null. Nothing is computed for an output that is null.
 * @retval lumStatusNullPointer src or mask is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: srcStep is not a multiple of the element size
 * @retval lumStatusStepError maskStep below the width (tested after the alignment of srcStep)
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @retval lumStatusEmptyMask M, a warning: the mask selects no pixel, and every output given holds 0 or (0, 0);
 *         also whenever all four outputs are null, whatever the mask holds
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMinMaxIndx_8u_C3CR(const Lum8u* src, int srcStep, LumSize roiSize, Lum32s coi,
                                         Lum32f* minVal, Lum32f* maxVal, LumPoint* minIndex,
                                         LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_16u_C3CR(const Lum16u* src, int srcStep, LumSize roiSize, Lum32s coi,
                                          Lum32f* minVal, Lum32f* maxVal, LumPoint* minIndex,
                                          LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_32f_C3CR(const Lum32f* src, int srcStep, LumSize roiSize, Lum32s coi,
                                          Lum32f* minVal, Lum32f* maxVal, LumPoint* minIndex,
                                          LumPoint* maxIndex);
/**@}*/

/** @name Smallest and largest value with their places under a mask */
/**@{*/
/**
 * As lumiMinMaxIndx_8u_C1R(), with `mask`, `maskStep` and `coi`.
 *
 * @param src first pixel of the region
 * @param srcStep bytes between rows of `src`
 * @param maskStep bytes between rows of `mask`
 * @param mask first byte of the mask, one byte a pixel; 0 excludes the pixel
 * @param roiSize size of the region in pixels
 * @param coi C3C: the channel looked at, 1 to 3, of three interleaved channels
 * @param minVal the values, in floats for every element type; either may be null
 * @param maxVal the values, in floats for every element type; either may be null
 * @param minIndex the places; either may be null. Nothing is computed for an output that is null.
 * @param maxIndex the places; either may be null. Nothing is computed for an output that is null.
 * @retval lumStatusNullPointer src or mask is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: srcStep is not a multiple of the element size
 * @retval lumStatusStepError maskStep below the width (tested after the alignment of srcStep)
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @retval lumStatusEmptyMask M, a warning: the mask selects no pixel, and every output given holds 0 or (0, 0);
 *         also whenever all four outputs are null, whatever the mask holds
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMinMaxIndx_8u_C3CMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                          LumSize roiSize, Lum32s coi, Lum32f* minVal, Lum32f* maxVal,
                                          LumPoint* minIndex, LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_16u_C3CMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                           LumSize roiSize, Lum32s coi, Lum32f* minVal, Lum32f* maxVal,
                                           LumPoint* minIndex, LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_32f_C3CMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                           LumSize roiSize, Lum32s coi, Lum32f* minVal, Lum32f* maxVal,
                                           LumPoint* minIndex, LumPoint* maxIndex);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
