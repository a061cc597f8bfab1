/**
 * @file
 * Regions grown by the differences between neighbouring pixels, and boundaries between finished regions.
 */
#ifndef LUMCV_SEGMENT_GRADIENT_H
#define LUMCV_SEGMENT_GRADIENT_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup segment_gradient Gradient segmentation
 * Grows the regions that the caller has marked over a picture, the most similar neighbours first, and draws boundaries
 * between regions.
 *
 * @code
 * LumSize size = {width, height};
 * Lum32s bytes;
 * lumiSegmentGradientGetBufferSize_8u_C3R(size, &bytes);
 * lumiSegmentGradient_8u_C3IR(picture, step, markers, markersStep, size, lumSpatialNormL1, lumSegmentBorder8,
 *                             malloc(bytes));
 * @endcode
 * @{
 */

/** @name Size of the buffer of gradient segmentation */
/**@{*/
/**
 * 13 x width x height + 103 bytes, in wrapping 32-bit arithmetic.
 *
 * @param roiSize size of the region in pixels
 * @param size the result
 * @retval lumStatusNullPointer size is null
 * @retval lumStatusSizeError width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiSegmentGradientGetBufferSize_8u_C1R(LumSize roiSize, Lum32s* size);
LUM_API LumStatus lumiSegmentGradientGetBufferSize_8u_C3R(LumSize roiSize, Lum32s* size);
/**@}*/

/** @name Gradient segmentation */
/**@{*/
/**
 * Seeded region growing (Adams and Bischof, Seeded region growing, IEEE PAMI 16, 1994) on the picture itself. The
 * difference of two pixels is the largest absolute difference of their channels. There is a queue a difference, 0 to 255,
 * first in, first out.
 *
 * The outermost pixels take no part: seeds on them are lost. Unlabelled inner pixels beside a label enter, in raster
 * order, the queue of their smallest difference to one. From the lowest queue that is not empty a pixel is popped and
 * takes the label of its most similar labelled neighbour (in the order left, right, up, down and then the corners from
 * the top left; of the same difference the last one counts whose label is below 254). Then each unlabelled neighbour
 * enters the queue of its difference to the pixel.
 *
 * With boundaries, a pixel beside another label from 1 to 253 than its own becomes 254, which counts as a label for
 * the pixels after it. #lumSegmentBorder8 looks at eight neighbours, #lumSegmentBorder4 alone at four.
 *
 * Where no unlabelled inner pixel is beside a label the markers stay as they are. Otherwise their outermost pixels are
 * 255 after the call, as is what no label reaches and was 255 before.
 *
 * @param src first pixel of the picture
 * @param srcStep bytes between rows of `src`
 * @param markersStep bytes between rows of `markers`
 * @param markers first pixel of the markers: 0 is unlabelled, 1 to 254 are labels; labelled in place
 * @param roiSize size of both regions in pixels
 * @param norm #lumSpatialNormInf for eight neighbours, #lumSpatialNormL1 for four
 * @param flags #lumSegmentBorder4, #lumSegmentBorder8 or 0; other bits are ignored
 * @param buffer work memory of lumiSegmentGradientGetBufferSize_8u_C1R() bytes
 * @retval lumStatusNullPointer src, markers or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below its row's bytes
 * @retval lumStatusBadArgument another norm
 * @return lumStatusOk
 */
LUM_API LumStatus lumiSegmentGradient_8u_C1IR(const Lum8u* src, int srcStep, Lum8u* markers, int markersStep,
                                              LumSize roiSize, LumSpatialNorm norm, Lum32s flags,
                                              Lum8u* buffer);
LUM_API LumStatus lumiSegmentGradient_8u_C3IR(const Lum8u* src, int srcStep, Lum8u* markers, int markersStep,
                                              LumSize roiSize, LumSpatialNorm norm, Lum32s flags,
                                              Lum8u* buffer);
/**@}*/

/** @name Boundaries between regions */
/**@{*/
/**
 * In raster order, in place: a pixel becomes borderValue where a neighbour that comes before it is neither borderValue
 * nor equal to the pixel. These neighbours are left and up, with #lumSpatialNormInf also the corners up-left and
 * up-right; those outside the region count for nothing. A neighbour that has become borderValue counts no more.
 *
 * @param srcDst first label of the region
 * @param srcDstStep bytes between rows
 * @param roiSize size of the region in pixels
 * @param borderValue the value of boundaries
 * @param norm #lumSpatialNormInf or #lumSpatialNormL1
 * @retval lumStatusNullPointer srcDst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcDstStep below the row's bytes
 * @retval lumStatusStepAlignmentError 16u: srcDstStep is odd
 * @retval lumStatusBadArgument another norm
 * @return lumStatusOk
 */
LUM_API LumStatus lumiBoundSegments_8u_C1IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize, Lum8u borderValue,
                                            LumSpatialNorm norm);
LUM_API LumStatus lumiBoundSegments_16u_C1IR(Lum16u* srcDst, int srcDstStep, LumSize roiSize,
                                             Lum16u borderValue, LumSpatialNorm norm);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
