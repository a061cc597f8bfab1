/**
 * @file
 * The exact Euclidean distance transform.
 */
#ifndef LUMCV_TRUE_DISTANCE_H
#define LUMCV_TRUE_DISTANCE_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup true_distance Exact distances
 * The Euclidean distance of every pixel from the nearest pixel of value 0.
 *
 * @code
 * Lum32s bytes;
 * LumStatus status = lumiTrueDistanceTransformGetBufferSize_8u32f_C1R(roiSize, &bytes);
 * Lum8u* buffer = malloc(bytes);
 * if (status == lumStatusOk)
 *     status = lumiTrueDistanceTransform_8u32f_C1R(picture, pictureStep, distances, distancesStep,
 *                                                  roiSize, buffer);
 * @endcode
 * @{
 */

/**
 * Size in bytes of the buffer of lumiTrueDistanceTransform_8u32f_C1R(): 52 x the larger of width and height, each
 * rounded up to a multiple of 4, plus 84; in wrapping 32-bit arithmetic.
 *
 * @param roiSize size of the region in pixels
 * @param size the result
 * @retval lumStatusNullPointer size is null
 * @retval lumStatusSizeError width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiTrueDistanceTransformGetBufferSize_8u32f_C1R(LumSize roiSize, Lum32s* size);

/**
 * dst(x, y) = sqrt(min((x - p)^2 + (y - q)^2)) over the pixels (p, q) of src that are 0; in a picture that has none,
 * the root of the largest finite float everywhere.
 *
 * A pass along the columns gives g(x, y), the squared distance to the nearest 0 of the column, or the largest finite
 * float where it has none. A pass along the rows takes the lower envelope of the parabolas g(p, y) + (x - p)^2
 * (Felzenszwalb and Huttenlocher, Distance transforms of sampled functions, Theory of Computing 8, 2012), in single
 * precision: parabolas p < q meet at
 *
 *     s = (((g(q) + q q) - g(p)) - p p) (0.5 / (q - p))
 *
 * and p leaves the envelope where its successor would start at or before its own start. At the pixel where two
 * parabolas meet, the left one counts.
 *
 * @param src first pixel of the picture: a pixel that is 0 has the distance 0
 * @param srcStep,dstStep bytes between rows
 * @param dst first pixel of the distances
 * @param roiSize size of the region in pixels
 * @param buffer work memory of lumiTrueDistanceTransformGetBufferSize_8u32f_C1R() bytes, at any address
 * @retval lumStatusNullPointer src, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the width, or dstStep below width x 4
 * @retval lumStatusStepAlignmentError dstStep is not a multiple of 4
 * @return lumStatusOk
 */
LUM_API LumStatus lumiTrueDistanceTransform_8u32f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                                      LumSize roiSize, Lum8u* buffer);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
