/**
 * @file
 * Labels for connected regions, and the marking of small ones.
 */
#ifndef LUMCV_LABEL_H
#define LUMCV_LABEL_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup label Labelling and speckles
 * Labels for the connected regions of a picture, and the marking of regions that are too small to be true.
 *
 * @code
 * LumSize size = {width, height};
 * Lum32s bytes, count;
 * lumiLabelMarkersGetBufferSize_8u32s_C1R(size, &bytes);
 * Lum8u* buffer = malloc(bytes);
 * lumiLabelMarkers_8u32s_C1R(mask, maskStep, labels, labelsStep, size, 1, 1000000, lumSpatialNormInf, &count, buffer);
 * @endcode
 * @{
 */

/** @name Size of the buffer of labelling */
/**@{*/
/**
 * 6 x width x height + 32 bytes, of which the low 32 bits are kept: that of lumiFloodFillGetSize().
 *
 * @param roiSize size of the region in pixels
 * @param size the result
 * @retval lumStatusNullPointer size is null
 * @retval lumStatusSizeError width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiLabelMarkersGetBufferSize_8u_C1R(LumSize roiSize, Lum32s* size);
LUM_API LumStatus lumiLabelMarkersGetBufferSize_16u_C1R(LumSize roiSize, Lum32s* size);
LUM_API LumStatus lumiLabelMarkersGetBufferSize_8u32s_C1R(LumSize roiSize, Lum32s* size);
/**@}*/

/** @name Labels of connected regions */
/**@{*/
/**
 * Every connected region of pixels other than 0 gets a label of its own, in the raster order of the regions' first
 * pixels: minLabel, minLabel + 1, ..., maxLabel, and then minLabel again. Pixels of 0 stay 0. Regions are those of the
 * exact fill (lumiFloodFill_4Con_8u_C1IR() and its like), found from runs of pixels and their contacts (Rosenfeld and
 * Pfaltz, Sequential operations in digital picture processing, Journal of the ACM 13, 1966).
 *
 * @param srcDst first pixel of the region, whose values become labels
 * @param srcDstStep bytes between rows of `srcDst`
 * @param roiSize size of the region in pixels
 * @param minLabel first label, at least 1
 * @param maxLabel last label, below 255 in 8u, 65535 in 16u and 0x7FFFFFFF in 8u32s
 * @param norm #lumSpatialNormInf connects a pixel to its eight neighbours, #lumSpatialNormL1 to the four
 * @param numberOfLabels the number of regions, which may be more than there are labels
 * @param buffer work memory of lumiLabelMarkersGetBufferSize_8u_C1R() bytes
 * @retval lumStatusNullPointer an image, buffer or numberOfLabels is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below its row's bytes
 * @retval lumStatusStepAlignmentError 16u: srcDstStep is odd; 8u32s: dstStep is not a multiple of 4
 * @retval lumStatusBadArgument minLabel below 1 or above maxLabel, maxLabel too large, or another norm
 * @return lumStatusOk
 */
LUM_API LumStatus lumiLabelMarkers_8u_C1IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize, Lum32s minLabel,
                                           Lum32s maxLabel, LumSpatialNorm norm, Lum32s* numberOfLabels,
                                           Lum8u* buffer);
LUM_API LumStatus lumiLabelMarkers_16u_C1IR(Lum16u* srcDst, int srcDstStep, LumSize roiSize, Lum32s minLabel,
                                            Lum32s maxLabel, LumSpatialNorm norm, Lum32s* numberOfLabels,
                                            Lum8u* buffer);
/**@}*/

/** @name Labels of connected regions, in another image */
/**@{*/
/**
 * As lumiLabelMarkers_8u_C1IR(), with `src`, `srcStep`, `dst` and `dstStep`, without `srcDst` and `srcDstStep`.
 *
 * @param src first pixel of the source region
 * @param dst first label of the result
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param roiSize size of the region in pixels
 * @param minLabel first label, at least 1
 * @param maxLabel last label, below 255 in 8u, 65535 in 16u and 0x7FFFFFFF in 8u32s
 * @param norm #lumSpatialNormInf connects a pixel to its eight neighbours, #lumSpatialNormL1 to the four
 * @param numberOfLabels the number of regions, which may be more than there are labels
 * @param buffer work memory of lumiLabelMarkersGetBufferSize_8u_C1R() bytes
 * @retval lumStatusNullPointer an image, buffer or numberOfLabels is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below its row's bytes
 * @retval lumStatusStepAlignmentError 16u: srcDstStep is odd; 8u32s: dstStep is not a multiple of 4
 * @retval lumStatusBadArgument minLabel below 1 or above maxLabel, maxLabel too large, or another norm
 * @return lumStatusOk
 */
LUM_API LumStatus lumiLabelMarkers_8u32s_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep,
                                             LumSize roiSize, Lum32s minLabel, Lum32s maxLabel,
                                             LumSpatialNorm norm, Lum32s* numberOfLabels, Lum8u* buffer);
/**@}*/

/**
 * Size in bytes of the buffer of lumiMarkSpeckles_*: 13 x width x height + 64, in wrapping 32-bit arithmetic.
 *
 * @param roiSize size of the region in pixels
 * @param dataType #lumType8u, #lumType16u, #lumType16s or #lumType32f
 * @param channels 1
 * @param size the result
 * @retval lumStatusNullPointer size is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusDataTypeError another dataType
 * @retval lumStatusCountError channels other than 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMarkSpecklesGetBufferSize(LumSize roiSize, LumDataType dataType, int channels,
                                                Lum32s* size);

/** @name Speckles */
/**@{*/
/**
 * Writes speckleValue over every region of at most maxSpeckleSize pixels. Two pixels that share an edge are in one
 * region where |a - b| <= maxDifference, exact in integers and in single precision in 32f. A pixel that equals
 * speckleValue is in no region, nor is NaN; both stay as they are. As for disparity maps after matching (Hirschmueller,
 * Stereo processing by semiglobal matching and mutual information, IEEE PAMI 30, 2008).
 *
 * The step is not tested: rows may lie in any order.
 *
 * @param srcDst first pixel of the region, cleaned in place
 * @param srcDstStep bytes between rows
 * @param roiSize size of the region in pixels
 * @param speckleValue the value written over speckles
 * @param maxSpeckleSize largest number of pixels of a speckle
 * @param maxDifference largest difference between neighbours of a region; where it is negative no two pixels are in
 *        one region
 * @param norm #lumNormInf
 * @param buffer work memory of lumiMarkSpecklesGetBufferSize() bytes
 * @retval lumStatusNullPointer srcDst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusNormError another norm
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMarkSpeckles_8u_C1IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize, Lum8u speckleValue,
                                           Lum32s maxSpeckleSize, Lum8u maxDifference, LumNormKind norm,
                                           Lum8u* buffer);
LUM_API LumStatus lumiMarkSpeckles_16u_C1IR(Lum16u* srcDst, int srcDstStep, LumSize roiSize,
                                            Lum16u speckleValue, Lum32s maxSpeckleSize, Lum16u maxDifference,
                                            LumNormKind norm, Lum8u* buffer);
LUM_API LumStatus lumiMarkSpeckles_16s_C1IR(Lum16s* srcDst, int srcDstStep, LumSize roiSize,
                                            Lum16s speckleValue, Lum32s maxSpeckleSize, Lum16s maxDifference,
                                            LumNormKind norm, Lum8u* buffer);
LUM_API LumStatus lumiMarkSpeckles_32f_C1IR(Lum32f* srcDst, int srcDstStep, LumSize roiSize,
                                            Lum32f speckleValue, Lum32s maxSpeckleSize, Lum32f maxDifference,
                                            LumNormKind norm, Lum8u* buffer);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
