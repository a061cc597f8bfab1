/**
 * @file
 * Correction of radial distortion, undistortion maps, and the pixels along a line.
 */
#ifndef LUMCV_GEOMETRY_H
#define LUMCV_GEOMETRY_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup geometry Lens geometry
 * Correction of radial distortion, undistortion maps, and the pixels along a line.
 *
 * @code
 * Lum32s bytes;
 * lumiUndistortGetSize(size, &bytes);
 * Lum8u* buffer = (Lum8u*)malloc(bytes);
 * lumiUndistortRadial_8u_C1R(src, srcStep, dst, dstStep, size, fx, fy, cx, cy, k1, k2, buffer);
 * @endcode
 * @{
 */

/**
 * Size in bytes of the buffer of lumiUndistortRadial_* and lumiCreateMapCameraUndistort_32f_C1R(): the width
 * rounded up to a multiple of 4, times 24, plus 32; in wrapping 32-bit arithmetic.
 *
 * @param roiSize size of the region in pixels
 * @param size the result
 * @retval lumStatusNullPointer size is null
 * @retval lumStatusSizeError width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiUndistortGetSize(LumSize roiSize, Lum32s* size);

/** @name Correction of radial distortion */
/**@{*/
/**
 * dst(x, y) = src(sx, sy), with the radial terms of Brown's model (Close-range camera calibration,
 * Photogrammetric Engineering 37, 1971). In single precision, x and y counted from the region's first pixel:
 *
 * - dx = x - cx, dy = y - cy
 * - a = (dx x dx) x (1 / (fx x fx)), b = (dy x dy) x (1 / (fy x fy))
 * - t = (k2 x a + k1) x a + (k2 x b + k1) x b + 2 x k2 x a x b
 * - sx = x + dx x t, sy = y + dy x t
 *
 * A pixel is written only where 0 <= sx < width - 1 and 0 <= sy < height - 1; all others keep what they hold.
 * With u and v the fractions of sx and sy over the pixel s00 at their truncated coordinates, s01 to its right
 * and s10 and s11 below these two, the result is (s00 x ((1 - u) x (1 - v)) + s01 x (u x (1 - v))) + (s10 x
 * ((1 - u) x v) + s11 x (u x v)); in 8u and 16u a half is added and the sum truncated. All arithmetic rounds to
 * nearest even, whatever mode the caller has set, and the caller's mode is back in place afterwards.
 *
 * The buffer is optional and does not change a bit of the result: with it, what depends on the column alone
 * is computed once and not in every row. It needs no alignment.
 *
 * @param src first pixel of the source region; nothing outside the region is read
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result, which is not src
 * @param roiSize size of both regions in pixels
 * @param fx focal lengths in pixels
 * @param fy focal lengths in pixels
 * @param cx optical centre in pixels
 * @param cy optical centre in pixels
 * @param k1 first and second radial coefficient
 * @param k2 first and second radial coefficient
 * @param buffer work memory of lumiUndistortGetSize() bytes, or null
 * @retval lumStatusNullPointer src or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a step that is not a multiple of the element size
 * @retval lumStatusBadArgument fx or fy is 0
 * @return lumStatusOk
 */
LUM_API LumStatus lumiUndistortRadial_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                             LumSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy,
                                             Lum32f k1, Lum32f k2, Lum8u* buffer);
LUM_API LumStatus lumiUndistortRadial_8u_C3R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                             LumSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy,
                                             Lum32f k1, Lum32f k2, Lum8u* buffer);
LUM_API LumStatus lumiUndistortRadial_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                              LumSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy,
                                              Lum32f k1, Lum32f k2, Lum8u* buffer);
LUM_API LumStatus lumiUndistortRadial_16u_C3R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                              LumSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy,
                                              Lum32f k1, Lum32f k2, Lum8u* buffer);
LUM_API LumStatus lumiUndistortRadial_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                              LumSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy,
                                              Lum32f k1, Lum32f k2, Lum8u* buffer);
LUM_API LumStatus lumiUndistortRadial_32f_C3R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                              LumSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy,
                                              Lum32f k1, Lum32f k2, Lum8u* buffer);
/**@}*/

/**
 * Coordinate maps of a lens correction, for a remapping of the caller's: xMap(x, y) and yMap(x, y) are the
 * place in the distorted picture of the corrected picture's pixel (x, y). No place is tested.
 *
 * Where p1 and p2 are both 0 the maps are sx and sy of the correction of radial distortion, bit by bit.
 * Otherwise, in single precision, with X = (x - cx) / fx, Y = (y - cy) / fy, r2 = X X + Y Y and R = 1 + k1 r2
 * + k2 r2 r2:
 *
 * - xMap = fx x (X R + 2 p1 X Y + p2 (r2 + 2 X X)) + cx
 * - yMap = fy x (Y R + p1 (r2 + 2 Y Y) + 2 p2 X Y) + cy
 *
 * All arithmetic rounds to nearest even, whatever mode the caller has set, and the caller's mode is back in place
 * afterwards. The buffer is optional and does not change a bit of the result.
 *
 * @param xMap first elements of the maps
 * @param yMap first elements of the maps
 * @param xStep bytes between rows of `x`
 * @param yStep bytes between rows of `y`
 * @param roiSize size of the region in pixels
 * @param fx focal lengths in pixels
 * @param fy focal lengths in pixels
 * @param cx optical centre in pixels
 * @param cy optical centre in pixels
 * @param k1 first and second radial coefficient
 * @param k2 first and second radial coefficient
 * @param p1 first and second tangential coefficient
 * @param p2 first and second tangential coefficient
 * @param buffer work memory of lumiUndistortGetSize() bytes, or null
 * @retval lumStatusNullPointer xMap or yMap is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below width x 4 bytes
 * @retval lumStatusStepAlignmentError a step that is not a multiple of 4
 * @retval lumStatusBadArgument fx or fy is 0
 * @return lumStatusOk
 */
LUM_API LumStatus lumiCreateMapCameraUndistort_32f_C1R(Lum32f* xMap, int xStep, Lum32f* yMap, int yStep,
                                                       LumSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx,
                                                       Lum32f cy, Lum32f k1, Lum32f k2, Lum32f p1, Lum32f p2,
                                                       Lum8u* buffer);

/** @name Pixels along a line */
/**@{*/
/**
 * Copies the pixels of the straight line from point1 to point2, both included, into a row (Bresenham,
 * Algorithm for computer control of a digital plotter, IBM Systems Journal 4, 1965). The major axis is the
 * longer one, y where both are equally long. With major and minor the lengths along the two axes and e =
 * major at first: copy a pixel; subtract 2 x minor from e; where e is below 0 now, step along the minor axis
 * and add 2 x major to e; step along the major axis.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows
 * @param roiSize size of the region in pixels
 * @param dst the row: max(|x2 - x1|, |y2 - y1|) + 1 pixels
 * @param point1 first and last pixel of the line; they may be the same
 * @param point2 first and last pixel of the line; they may be the same
 * @retval lumStatusNullPointer src or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: srcStep not a multiple of the element size
 * @retval lumStatusOutOfRange a point outside the region
 * @retval lumStatusBadValue the number of samples overflows a signed 32-bit value, which the points
 *         of no region make
 * @return lumStatusOk
 */
LUM_API LumStatus lumiSampleLine_8u_C1R(const Lum8u* src, int srcStep, LumSize roiSize, Lum8u* dst,
                                        LumPoint point1, LumPoint point2);
LUM_API LumStatus lumiSampleLine_8u_C3R(const Lum8u* src, int srcStep, LumSize roiSize, Lum8u* dst,
                                        LumPoint point1, LumPoint point2);
LUM_API LumStatus lumiSampleLine_16u_C1R(const Lum16u* src, int srcStep, LumSize roiSize, Lum16u* dst,
                                         LumPoint point1, LumPoint point2);
LUM_API LumStatus lumiSampleLine_16u_C3R(const Lum16u* src, int srcStep, LumSize roiSize, Lum16u* dst,
                                         LumPoint point1, LumPoint point2);
LUM_API LumStatus lumiSampleLine_32f_C1R(const Lum32f* src, int srcStep, LumSize roiSize, Lum32f* dst,
                                         LumPoint point1, LumPoint point2);
LUM_API LumStatus lumiSampleLine_32f_C3R(const Lum32f* src, int srcStep, LumSize roiSize, Lum32f* dst,
                                         LumPoint point1, LumPoint point2);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
