/**
 * @file
 * Chamfer distance transforms, and the weights of their steps.
 */
#ifndef LUMCV_DISTANCE_H
#define LUMCV_DISTANCE_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup distance Chamfer distances
 * How far every pixel is from the nearest pixel of value 0, along chains of steps of given lengths.
 *
 * @code
 * Lum32f metrics[3];
 * LumStatus status = lumiGetDistanceTransformMask_32f(5, 2, metrics);
 * if (status == lumStatusOk)
 *     status = lumiDistanceTransform_5x5_8u32f_C1R(picture, pictureStep, distances, distancesStep,
 *                                                  roiSize, metrics);
 * // distances now approximates the Euclidean distance to the nearest 0 of the picture
 * @endcode
 * @{
 */

/**
 * @name Chamfer distance transforms
 *
 * dst(x, y) = 0 where src(x, y) is 0, and elsewhere the length of the shortest chain of steps to a pixel that is 0,
 * limited to MAX: 255 in 8u, 65535 in 16u, the largest finite float in 32f. Steps have the length metrics[0] along
 * an axis (a), metrics[1] along a diagonal (b), and in the 5x5 members metrics[2] along a knight's move (c). The
 * chains are those that two passes over the picture find (Borgefors, Distance transformations in digital images,
 * Computer Vision, Graphics, and Image Processing 34, 1986): the first pass, from the first row to the last and from
 * left to right, takes
 *
 *     dst(x, y) = min(MAX, dst(x - 1, y) + a, dst(x - 1, y - 1) + b, dst(x, y - 1) + a, dst(x + 1, y - 1) + b)
 *
 * and the second pass, in the opposite order, the smallest of dst(x, y) and the mirrored sums. Neighbours outside
 * the region are left out. Integer sums are exact, so no chain wraps; float sums are rounded one step at a time.
 *
 * 3x3:
 * - 2a <= b: the diagonals are left out of both passes.
 * - a > b, in a region of at least two rows and columns: in the last row alone, the first pass also takes dst(x - 2,
 *   y) + 2b and the second dst(x + 2, y) + 2b.
 *
 * 5x5, with d = min(2a, b):
 * - a + d <= c: the result is that of the 3x3 member with the same a and b. 32f: (c - a) - d > -1e-7 |a + d|, with
 *   c - a in single and the rest in double precision.
 * - Otherwise, where d > a, c > 2a and 2c > 3d, the first pass takes the steps (-1, 0) at a; (0, -1) at a, (-1, -1) and
 *   (1, -1) at d, (-2, -1) and (2, -1) at c; (-1, -2) and (1, -2) at c. 32f: where none of a - d > -1e-7 |d|, 2a - c >
 *   -1e-7 |c| and 1.5d - c > -1e-7 |c| holds in double precision.
 * - Otherwise the steps are (-1, 0) and (0, -1) at A = min(a, 3c); (-2, 0) and (0, -2) at T = min(2D, 2A, 2c); (-1, -1)
 *   and (1, -1) at D = min(d, 2c); (-2, -1), (2, -1), (-1, -2) and (1, -2) at c; (-2, -2) and (2, -2) at E = min(c + A,
 *   2D).
 * - Where the width or the height is below 4, all these twelve steps are taken, with the lengths a, 2a, d, c and 2d in
 *   the place of A, T, D, c and E; and where the second condition does not hold, both passes are repeated until none
 *   of them changes a pixel.
 *
 * In place (C1IR) the picture is replaced by its distances; dst may be src in the 8u_C1R members, too.
 *
 * @param src first pixel of the picture: a pixel that is 0 has the distance 0, any other value is measured
 * @param srcStep,dstStep,srcDstStep bytes between rows
 * @param dst,srcDst first pixel of the distances
 * @param roiSize size of the region in pixels
 * @param metrics lengths of the steps: a and b in 3x3 members; a, b and c in 5x5 members
 * @retval lumStatusNullPointer src, dst or metrics is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the width, or dstStep below the row's bytes
 * @retval lumStatusStepAlignmentError 8u16u, 8u32f: dstStep is not a multiple of the element size
 * @retval lumStatusMetricError a length below 1, or in 32f not above 0
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiDistanceTransform_3x3_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                                   LumSize roiSize, const Lum32s* metrics);
LUM_API LumStatus lumiDistanceTransform_3x3_8u_C1IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize,
                                                    const Lum32s* metrics);
LUM_API LumStatus lumiDistanceTransform_3x3_8u16u_C1R(const Lum8u* src, int srcStep, Lum16u* dst, int dstStep,
                                                      LumSize roiSize, const Lum32s* metrics);
LUM_API LumStatus lumiDistanceTransform_3x3_8u32f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                                      LumSize roiSize, const Lum32f* metrics);
LUM_API LumStatus lumiDistanceTransform_5x5_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                                   LumSize roiSize, const Lum32s* metrics);
LUM_API LumStatus lumiDistanceTransform_5x5_8u_C1IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize,
                                                    const Lum32s* metrics);
LUM_API LumStatus lumiDistanceTransform_5x5_8u16u_C1R(const Lum8u* src, int srcStep, Lum16u* dst, int dstStep,
                                                      LumSize roiSize, const Lum32s* metrics);
LUM_API LumStatus lumiDistanceTransform_5x5_8u32f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                                      LumSize roiSize, const Lum32f* metrics);
/**@}*/

/**
 * @name Standard lengths of the steps
 *
 * | kernelSize | norm | 32s | 32f |
 * |---|---|---|---|
 * | 3 | 0, infinity | 1, 1 | 1, 1 |
 * | 3 | 1, L1 | 1, 2 | 1, 2 |
 * | 3 | 2, L2 | 2, 3 | 0.955, 1.3693 |
 * | 5 | 0, infinity | 1, 1, 2 | 1, 1, 2 |
 * | 5 | 1, L1 | 1, 2, 3 | 1, 2, 3 |
 * | 5 | 2, L2 | 5, 7, 11 | 1, 1.4, 2.1969 |
 *
 * The L2 lengths of 3x3 in floats are the optimal ones of Borgefors (1986); those in integers are in units of
 * their own, so the two sets are not multiples of each other.
 *
 * @param kernelSize 3 or 5
 * @param norm 0 infinity, 1 L1, 2 L2
 * @param metrics the result: two lengths for 3, three for 5
 * @retval lumStatusNullPointer metrics is null
 * @retval lumStatusSizeError kernelSize is neither 3 nor 5
 * @retval lumStatusBadArgument norm is none of 0, 1, 2
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiGetDistanceTransformMask_32f(Lum32s kernelSize, Lum32s norm, Lum32f* metrics);
LUM_API LumStatus lumiGetDistanceTransformMask_32s(Lum32s kernelSize, Lum32s norm, Lum32s* metrics);
/**@}*/

/**
 * The lengths of lumiGetDistanceTransformMask_32f() by one number.
 *
 * @param maskType 10 x kernelSize + norm: 30, 31, 32, 50, 51 or 52
 * @param metrics the result: two lengths for 3, three for 5
 * @retval lumStatusBadArgument maskType is below 0, or its last decimal digit is none of 0, 1, 2
 * @retval lumStatusNullPointer metrics is null
 * @retval lumStatusSizeError maskType / 10 is neither 3 nor 5
 * @return lumStatusOk
 */
LUM_API LumStatus lumiGetDistanceTransformMask(Lum32s maskType, Lum32f* metrics);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
