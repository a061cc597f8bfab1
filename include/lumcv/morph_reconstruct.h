/**
 * @file
 * Morphological reconstruction.
 */
#ifndef LUMCV_MORPH_RECONSTRUCT_H
#define LUMCV_MORPH_RECONSTRUCT_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup morph_reconstruct Morphological reconstruction
 * A marker grows under the limit of a mask image until nothing changes.
 *
 * @code
 * lumiMorphReconstructGetBufferSize(roi, lumType8u, 1, &bufferSize);
 * Lum8u* buffer = malloc(bufferSize);
 * lumiErodeBorder_8u_C1R(picture, step, marker, step, roi, lumBorderReplicate, 0, spec, work);
 * lumiMorphReconstructDilate_8u_C1IR(picture, step, marker, step, roi, buffer, lumSpatialNormInf);
 * // marker: the picture without what the erosion has removed altogether
 * lumiAbsDiff_8u_C1R(picture, step, marker, step, details, step, roi);
 * @endcode
 * @{
 */

/**
 * Bytes of work memory for reconstruction; with w and h the region's width and height, and sums that wrap in 32 bits:
 * 8u 4w + h + 161, 16u 2(4w + h) + 322, 32f 16w + h + 164, 64f 32w + h + 168.
 *
 * @param roiSize size of the region in pixels
 * @param type lumType8u, lumType16u, lumType32f or lumType64f
 * @param numChannels 1
 * @param bufferSize receives bytes
 * @retval lumStatusNullPointer bufferSize is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusDataTypeError another data type
 * @retval lumStatusCountError numChannels not 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphReconstructGetBufferSize(LumSize roiSize, LumDataType type, int numChannels,
                                                    Lum32s* bufferSize);

/** @name Morphological reconstruction */
/**@{*/
/**
 * Reconstruction by dilation: every pixel of the marker becomes min(max of it and its neighbours, mask), again and again,
 * until no pixel changes. Where the marker begins above the mask it is first brought down to it. Reconstruction by
 * erosion is the dual, max(min of it and its neighbours, mask).
 *
 * In 32f and 64f a NaN spreads to no neighbour. A NaN of the mask becomes the pixel's result; a NaN of the marker becomes the mask's pixel.
 *
 * Sweeps go up and down through the image, as in Vincent, Morphological Grayscale Reconstruction in Image Analysis (IEEE
 * Transactions on Image Processing 2, 1993), and pass rows whose neighbours have not changed.
 *
 * @param src the mask image and the bytes between its rows
 * @param srcStep the mask image and the bytes between its rows
 * @param srcDst the marker, replaced by the result, and the bytes between its rows
 * @param srcDstStep the marker, replaced by the result, and the bytes between its rows
 * @param roiSize size of both in pixels
 * @param buffer work memory of the size that lumiMorphReconstructGetBufferSize() reports; its contents are lost
 * @param connectivity lumSpatialNormInf for eight neighbours, lumSpatialNormL1 for four
 * @retval lumStatusNullPointer src, srcDst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the bytes of a row
 * @retval lumStatusStepAlignmentError 16u, 32f, 64f: a step that is no multiple of the element size
 * @retval lumStatusBadArgument connectivity not 0 or 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphReconstructDilate_8u_C1IR(const Lum8u* src, int srcStep, Lum8u* srcDst,
                                                     int srcDstStep, LumSize roiSize, Lum8u* buffer,
                                                     LumSpatialNorm connectivity);
LUM_API LumStatus lumiMorphReconstructDilate_16u_C1IR(const Lum16u* src, int srcStep, Lum16u* srcDst,
                                                      int srcDstStep, LumSize roiSize, Lum8u* buffer,
                                                      LumSpatialNorm connectivity);
LUM_API LumStatus lumiMorphReconstructDilate_32f_C1IR(const Lum32f* src, int srcStep, Lum32f* srcDst,
                                                      int srcDstStep, LumSize roiSize, Lum8u* buffer,
                                                      LumSpatialNorm connectivity);
LUM_API LumStatus lumiMorphReconstructDilate_64f_C1IR(const Lum64f* src, int srcStep, Lum64f* srcDst,
                                                      int srcDstStep, LumSize roiSize, Lum8u* buffer,
                                                      LumSpatialNorm connectivity);
LUM_API LumStatus lumiMorphReconstructErode_8u_C1IR(const Lum8u* src, int srcStep, Lum8u* srcDst,
                                                    int srcDstStep, LumSize roiSize, Lum8u* buffer,
                                                    LumSpatialNorm connectivity);
LUM_API LumStatus lumiMorphReconstructErode_16u_C1IR(const Lum16u* src, int srcStep, Lum16u* srcDst,
                                                     int srcDstStep, LumSize roiSize, Lum8u* buffer,
                                                     LumSpatialNorm connectivity);
LUM_API LumStatus lumiMorphReconstructErode_32f_C1IR(const Lum32f* src, int srcStep, Lum32f* srcDst,
                                                     int srcDstStep, LumSize roiSize, Lum8u* buffer,
                                                     LumSpatialNorm connectivity);
LUM_API LumStatus lumiMorphReconstructErode_64f_C1IR(const Lum64f* src, int srcStep, Lum64f* srcDst,
                                                     int srcDstStep, LumSize roiSize, Lum8u* buffer,
                                                     LumSpatialNorm connectivity);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
