/**
 * @file
 * Distances by the eikonal equation.
 */
#ifndef LUMCV_FAST_MARCHING_H
#define LUMCV_FAST_MARCHING_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup fast_marching Marched distances
 * Distances inside a mask, and in a band around it, as solutions of the eikonal equation.
 *
 * @code
 * Lum32s bytes;
 * LumStatus status = lumiFastMarchingGetBufferSize_8u32f_C1R(roiSize, &bytes);
 * Lum8u* buffer = malloc(bytes);
 * if (status == lumStatusOk)
 *     status = lumiFastMarching_8u32f_C1R(mask, maskStep, distances, distancesStep, roiSize, 5.0F, buffer);
 * // distances is above 0 inside the mask, and below 0 in a band of 5 pixels around it
 * @endcode
 * @{
 */

/**
 * Size in bytes of the buffer of lumiFastMarching_8u32f_C1R(): (height + 34) x (the width rounded up to a multiple of
 * 32, plus 5) + 40, in wrapping 32-bit arithmetic.
 *
 * @param roiSize size of the region in pixels
 * @param size the result
 * @retval lumStatusNullPointer size is null
 * @retval lumStatusSizeError width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFastMarchingGetBufferSize_8u32f_C1R(LumSize roiSize, Lum32s* size);

/**
 * Solves |grad dst| = 1 with dst = 0 outside the mask by sweeps in alternating directions (Zhao, A fast sweeping
 * method for eikonal equations, Mathematics of Computation 74, 2005) of the two-neighbour upwind update (Sethian,
 * A fast marching level set method for monotonically advancing fronts, PNAS 93, 1996). In single precision, with a
 * the neighbour in the row before and b the neighbour in the same row:
 *
 * - inside the mask: (a + b + sqrt(2 - (a - b)^2)) / 2 where |a - b| < 1, else min(a, b) + 1; at the end of a row, where
 *   there is no b, a + 1. Values below 0 count as 0. A pixel only ever gets smaller.
 * - outside, radius 0: 0.
 * - outside, radius above 0: -1e-10 where a or b is above 0, which is the contour. Elsewhere, where a or b is below 0:
 *   min(a, b) - 1 if one of them is 0, else (a + b - sqrt(2 - (a - b)^2)) / 2 where |a - b| < 1, else max(a, b) - 1; at
 *   the end of a row a - 1. Values below -(radius + 1e-5) are not written. A pixel outside that no value has reached
 *   is 0.
 *
 * The pixel (0, 0) starts at 999999 where it is inside. Rows are swept from left to right and back, downward from
 * the first row, then upward, and so on until a sweep changes nothing; from the third sweep on, only pixels next to a
 * change are computed again. In a mask without a pixel that is 0 all distances are therefore 999999 and more.
 *
 * @param src first pixel of the mask: inside where it is not 0
 * @param srcStep,dstStep bytes between rows
 * @param dst first pixel of the distances; every pixel is written
 * @param roiSize size of the region in pixels
 * @param radius width in pixels of the band outside the mask that gets distances
 * @param buffer work memory of lumiFastMarchingGetBufferSize_8u32f_C1R() bytes, at any address
 * @retval lumStatusNullPointer src, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the width, or dstStep below width x 4
 * @retval lumStatusStepAlignmentError dstStep is not a multiple of 4
 * @retval lumStatusBadArgument radius below 0
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFastMarching_8u32f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                             LumSize roiSize, Lum32f radius, Lum8u* buffer);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
