/**
 * @file
 * Points followed from one picture to the next.
 */
#ifndef LUMCV_OPTICAL_FLOW_H
#define LUMCV_OPTICAL_FLOW_H

#include "pyramid.h"
#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup optical_flow Pyramidal optical flow
 * Points followed from one picture to the next by the iterative method of Lucas and Kanade on image pyramids (B. D. Lucas
 * and T. Kanade, An Iterative Image Registration Technique with an Application to Stereo Vision, 1981; J.-Y. Bouguet,
 * Pyramidal Implementation of the Lucas Kanade Feature Tracker, 2000).
 *
 * @code
 * Lum32s bytes;
 * LumOpticalFlowState* state;
 * lumiOpticalFlowPyrLKGetSize(21, size, lumType8u, 0, &bytes);
 * lumiOpticalFlowPyrLKInit_8u_C1R(&state, size, 21, 0, malloc(bytes));
 * lumiOpticalFlowPyrLK_8u_C1R(before, after, points, moved, status, error, count, 21, 3, 20, 0.01F, state);
 * @endcode
 * @{
 */

/** The work memory of a tracker, in a block of the caller's. */
typedef struct LumOpticalFlowState LumOpticalFlowState;

/**
 * The bytes of a tracker's state. With W = width + 5, H = height + 5, and B = 2 W, in wrapping 32-bit arithmetic:
 *
 *     8u:  (40 winSize + 120)(winSize + 3) + 2 (B + 2 W H) + 90
 *     16u: 4 (B + 3 W H + (12 winSize + 36)(winSize + 3)) + 84
 *     32f: 4 (B + 2 W H + (12 winSize + 36)(winSize + 3)) + 84
 *
 * @param winSize side of the tracking window in pixels
 * @param roiSize levels smaller than this in both directions are differentiated as a whole
 * @param dataType lumType8u, lumType16u or lumType32f
 * @param hint any value
 * @param size receives the bytes of the state
 * @retval lumStatusSizeError winSize, width or height below 1
 * @retval lumStatusDataTypeError dataType is none of the three
 * @retval lumStatusNullPointer size is null (tested last)
 * @return lumStatusOk
 */
LUM_API LumStatus lumiOpticalFlowPyrLKGetSize(int winSize, LumSize roiSize, LumDataType dataType,
                                              LumHint hint, Lum32s* size);

/** @name Optical flow: state */
/**@{*/
/**
 * Lays the state out in a block of the size that lumiOpticalFlowPyrLKGetSize() reports for the type. The block may lie at
 * any address, and is neither moved nor copied afterwards.
 *
 * @param state receives the address of the state, inside the block
 * @param roiSize levels smaller than this in both directions are differentiated as a whole
 * @param winSize side of the tracking window in pixels
 * @param hint any value
 * @param memory the block
 * @retval lumStatusSizeError winSize, width or height below 1
 * @retval lumStatusNullPointer state or memory is null (tested after the sizes)
 * @return lumStatusOk
 *
 * @par Layout
 * From the first multiple of 16 at or after the start of the block, 32 bits each: width, height, 1, data type, a word that
 * is not written, hint, winSize, and the address of the work area, a multiple of 16.
 */
LUM_API LumStatus lumiOpticalFlowPyrLKInit_8u_C1R(LumOpticalFlowState** state, LumSize roiSize, int winSize,
                                                  LumHint hint, Lum8u* memory);
LUM_API LumStatus lumiOpticalFlowPyrLKInit_16u_C1R(LumOpticalFlowState** state, LumSize roiSize, int winSize,
                                                   LumHint hint, Lum8u* memory);
LUM_API LumStatus lumiOpticalFlowPyrLKInit_32f_C1R(LumOpticalFlowState** state, LumSize roiSize, int winSize,
                                                   LumHint hint, Lum8u* memory);
/**@}*/

/** @name Optical flow */
/**@{*/
/**
 * For each point the displacement v of a window around it is found on the coarsest level and refined down to level 0. On
 * level k the points are scaled by rates[k], in single precision. With I the window of winSize x winSize around the point
 * in pyramid1, J that around the guess p2 in pyramid2, both sampled as by lumiCopySubpixIntersect_8u32f_C1R(), and Ix and Iy
 * the derivatives of I by the 3x3 stencil with the weights 3, 10, 3 across and -1, 0, 1 along, over 32, an iteration solves
 *
 *     [ sum Ix Ix  sum Ix Iy ]       [ sum Ix (I - J) ]
 *     [ sum Ix Iy  sum Iy Iy ] v  =  [ sum Iy (I - J) ]         p2 += v
 *
 * in double precision. The sums are taken over the columns and rows of the window that lie fully inside both pictures; I and
 * the derivatives need one more pixel around the window. Iterations end when |v| is below threshold; when v takes back
 * the step before it to within sqrt(2^-23) in each direction, whereupon half of v is taken back; or after maxIterations.
 *
 * Levels that are narrower and lower than the region given to Init, from the coarsest one on, are differentiated as a whole,
 * with edges replicated, and the derivatives are sampled as by lumiCopySubpix_32f_C1R(). On all others the window of I is
 * differentiated, around one point after the other.
 *
 * status[i] is 0 for a point that was followed down to level 0. Otherwise it is 1 plus the level at which the point was
 * lost: the determinant of the matrix is below 2.22e-16, no pixel of the window is left in both pictures, or the level of
 * pyramid2 has no image of sufficient step. Its error is then 0, and nextPoints[i] is what the level above has found, or,
 * where no pixel is left, the guess that lost them. Where a level of pyramid1 has no image of sufficient step, the first
 * point to reach it keeps that level as its status, 0 on level 0, and the points after it keep what the level above has
 * left; where points are followed one after the other, that ends the loop over the points.
 *
 * error[i] is the root of the mean of (I - J)^2 over those columns and rows but the last ones, with the J that was sampled
 * last.
 *
 * @param pyramid1 pyramid of the first picture; images and steps are filled in
 * @param pyramid2 pyramid of the second picture, of the same structure
 * @param prevPoints points in the first picture, in coordinates of level 0
 * @param nextPoints on entry a guess for each point in the second picture, on return the result
 * @param status receives a byte for each point
 * @param error receives the remaining difference of the windows
 * @param numPoints number of points
 * @param winSize side of the window, as given to Init
 * @param maxLevel the coarsest level used
 * @param maxIterations limit of iterations on a level, at least 1
 * @param threshold length of a step, in pixels of the level, below which iterations end
 * @param state the state; its work area serves one running call at a time
 * @retval lumStatusNullPointer a pointer is null
 * @retval lumStatusSizeError numPoints or winSize below 1, or winSize is not that of the state
 * @retval lumStatusBadArgument maxLevel negative or above the level of a pyramid, maxIterations below 1, or threshold
 *     negative
 * @return lumStatusOk, also where points are lost
 */
LUM_API LumStatus lumiOpticalFlowPyrLK_8u_C1R(const LumPyramid* pyramid1, const LumPyramid* pyramid2,
                                              const LumPoint32f* prevPoints, LumPoint32f* nextPoints,
                                              Lum8s* status, Lum32f* error, int numPoints, int winSize,
                                              int maxLevel, int maxIterations, Lum32f threshold,
                                              LumOpticalFlowState* state);
LUM_API LumStatus lumiOpticalFlowPyrLK_16u_C1R(const LumPyramid* pyramid1, const LumPyramid* pyramid2,
                                               const LumPoint32f* prevPoints, LumPoint32f* nextPoints,
                                               Lum8s* status, Lum32f* error, int numPoints, int winSize,
                                               int maxLevel, int maxIterations, Lum32f threshold,
                                               LumOpticalFlowState* state);
LUM_API LumStatus lumiOpticalFlowPyrLK_32f_C1R(const LumPyramid* pyramid1, const LumPyramid* pyramid2,
                                               const LumPoint32f* prevPoints, LumPoint32f* nextPoints,
                                               Lum8s* status, Lum32f* error, int numPoints, int winSize,
                                               int maxLevel, int maxIterations, Lum32f threshold,
                                               LumOpticalFlowState* state);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
