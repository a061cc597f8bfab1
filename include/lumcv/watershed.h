/**
 * @file
 * Watersheds grown from markers over a relief.
 */
#ifndef LUMCV_WATERSHED_H
#define LUMCV_WATERSHED_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup watershed Watershed segmentation
 * Grows the regions that the caller has marked over a relief, usually the magnitude of a gradient, until every pixel
 * belongs to one.
 *
 * @code
 * LumSize size = {width, height};
 * Lum32s bytes;
 * lumiSegmentWatershedGetBufferSize_8u_C1R(size, &bytes);
 * lumiSegmentWatershed_8u_C1IR(gradient, gradientStep, markers, markersStep, size, lumSpatialNormInf,
 *                              lumSegmentQueue | lumSegmentBorder8, malloc(bytes));
 * @endcode
 *
 * The flags choose one of two engines, which share a plateau of the relief out in different ways: by the order of
 * queues, or by distance.
 *
 * **Flooding** (#lumSegmentQueue; Meyer, Color image segmentation, IEE Conference on Image Processing and its
 * Applications 1992; Vincent and Soille, Watersheds in digital spaces, IEEE PAMI 13, 1991). There is a queue a grey
 * level, first in, first out. The markers that touch an unlabelled pixel enter the queues of their levels in
 * raster order. From the lowest queue that is not empty a pixel is popped; its unlabelled neighbours, in the order
 * left, right, up, down and then the corners from the top left, take its label and enter the queue of their own level, or
 * of the level being flooded where that is higher.
 *
 * With boundaries, a pixel takes a label only where it is the only one (other than 0 and the boundary value) of the
 * pixel that it is reached from and of its four (#lumSegmentBorder4) or eight (#lumSegmentBorder8, alone)
 * neighbours; where several meet, or none, it becomes a boundary. Before, in the same scan that fills the queues,
 * a marker with another label among its neighbours (eight with #lumSegmentBorder8, else four) becomes a
 * boundary, so that of two markers that touch those pixels do which are met first.
 *
 * **Raster** (#lumSegmentDistance; Danielsson, Euclidean distance mapping, Computer Graphics and Image Processing 14,
 * 1980). Every pixel takes the label of the marker that it reaches at the lowest cost, which is the highest level on the
 * way and then the length of the way since it was reached: norm 0 counts a hop to each of the eight neighbours as 1,
 * norm 1 one to each of the four, norm 2 a hop to the eight as 11 or 15, and norm 3 solves the eikonal equation of the
 * two lower neighbours, with 64 (32f: 256) for a hop. The image is swept down and up, each row to the right and to the
 * left, until nothing changes. Integer reliefs: the cost is one signed 32-bit word, level x 2^23 + length. An
 * image one pixel wide runs as norm 1.
 *
 * With boundaries, a last pass in raster order turns of two neighbours with different labels the one of the higher cost
 * into a boundary, and where the costs are the same the one to the right or below. Where both flags are set, integer
 * reliefs compare four neighbours and 32f eight; an image one pixel wide always has four. With eight, the right
 * neighbour is compared in the first row only.
 *
 * The largest marker value (255 or 65535) is that of boundaries: where it is there before the call it stays, labels no
 * pixel, and is passed by no label.
 * @{
 */

/** Flags of lumiSegmentWatershed_*, and of lumiSegmentGradient_*, which has the last two only. */
enum {
    lumSegmentQueue = 1,    /**< the flooding engine */
    lumSegmentDistance = 2, /**< the raster engine, where #lumSegmentQueue is not set */
    lumSegmentBorder4 = 64, /**< boundaries between the four neighbours */
    lumSegmentBorder8 = 128 /**< boundaries between the eight neighbours */
};

/** @name Size of the buffer of watersheds */
/**@{*/
/**
 * In wrapping 32-bit arithmetic, w and h the width and height, the largest as a signed number:
 *
 * - 8u: 12wh + (w + 2)(h + 2) + 36 or (6h + 2) x (w rounded up to a multiple of 32) + h + 66
 * - 8u16u: 12wh + 2(w + 2)(h + 2) + 36 or (6h + 2) x (2w rounded up to a multiple of 32) + h + 66
 * - 32f16u: (w rounded up to a multiple of 4) x 9h + h + 66
 *
 * @param roiSize size of the region in pixels
 * @param size the result
 * @retval lumStatusNullPointer size is null
 * @retval lumStatusSizeError width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiSegmentWatershedGetBufferSize_8u_C1R(LumSize roiSize, Lum32s* size);
LUM_API LumStatus lumiSegmentWatershedGetBufferSize_8u16u_C1R(LumSize roiSize, Lum32s* size);
LUM_API LumStatus lumiSegmentWatershedGetBufferSize_32f16u_C1R(LumSize roiSize, Lum32s* size);
/**@}*/

/** @name Watershed */
/**@{*/
/**
 * @param src first pixel of the relief
 * @param srcStep bytes between rows of `src`
 * @param markersStep bytes between rows of `markers`
 * @param markers first pixel of the markers: 0 is unlabelled, the largest value is a boundary, all others are
 *        labels; labelled in place
 * @param roiSize size of both regions in pixels
 * @param norm flooding: 0 for eight neighbours, 1 for four; raster: 0 to 3 as above
 * @param flags #lumSegmentQueue or #lumSegmentDistance, and one or both of #lumSegmentBorder4 and #lumSegmentBorder8
 * @param buffer work memory of lumiSegmentWatershedGetBufferSize_8u_C1R() bytes, or those of the other members
 * @retval lumStatusNullPointer src, markers or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below its row's bytes
 * @retval lumStatusStepAlignmentError 16u markers: markersStep is odd; 32f: srcStep is not a multiple of 4
 * @retval lumStatusModeError 32f: #lumSegmentQueue
 * @retval lumStatusBadArgument neither engine; raster: norm outside 0 to 3; flooding: norm outside 0 and 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiSegmentWatershed_8u_C1IR(const Lum8u* src, int srcStep, Lum8u* markers, int markersStep,
                                               LumSize roiSize, Lum32s norm, Lum32s flags, Lum8u* buffer);
LUM_API LumStatus lumiSegmentWatershed_8u16u_C1IR(const Lum8u* src, int srcStep, Lum16u* markers,
                                                  int markersStep, LumSize roiSize, Lum32s norm, Lum32s flags,
                                                  Lum8u* buffer);
LUM_API LumStatus lumiSegmentWatershed_32f16u_C1IR(const Lum32f* src, int srcStep, Lum16u* markers,
                                                   int markersStep, LumSize roiSize, Lum32s norm,
                                                   Lum32s flags, Lum8u* buffer);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
