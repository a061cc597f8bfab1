/**
 * @file
 * Directories of image pyramids: the sizes of the levels for any rate, and the record that keeps track of them.
 */
#ifndef LUMCV_PYRAMID_H
#define LUMCV_PYRAMID_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup pyramid Image pyramids
 * A pyramid is a picture and ever smaller versions of it (Burt and Adelson, The Laplacian Pyramid as a Compact Image
 * Code, 1983). Two neighbouring levels differ in size by any rate above 1 and up to 10.
 *
 * @code
 * LumPyramid* pyramid; // memory and scratch have the sizes that lumiPyramidGetSize() reports
 * lumiPyramidInit(&pyramid, levels, size, 2.0f, memory, scratch);
 * for (int i = 0; i <= pyramid->level; ++i) pyramid->images[i] = levelMemory[i], pyramid->steps[i] = levelStep[i];
 * for (int i = 0; i < pyramid->level; ++i)
 *     lumiPyramidLayerDown_8u_C1R(pyramid->images[i], pyramid->steps[i], pyramid->rois[i], pyramid->images[i + 1],
 *                                 pyramid->steps[i + 1], pyramid->rois[i + 1], layerState);
 * @endcode
 * @{
 */

/**
 * The directory of a pyramid, built by lumiPyramidInit() in memory of the caller's. It knows the size, the rate and
 * the place of each level; the images are the caller's. Every array has level + 1 elements, level 0 first.
 *
 * @par Layout
 * The record is at the first address of the memory that is aligned for a pointer, and the arrays follow it: rois from
 * the first multiple of 8, images 16 bytes after the end of rois, rates from the first multiple of 8 that is at least
 * 8 bytes after the end of images, steps 16 bytes after the end of rates.
 */
typedef struct LumPyramid {
    void** images; /**< first pixel of each level; null after lumiPyramidInit(), the caller fills them */
    LumSize* rois; /**< size of each level in pixels */
    Lum64f* rates; /**< (1 / rate) to the power of the level: pixels of the level for one pixel of level 0 */
    Lum32s* steps; /**< bytes between rows of each level; 0 after lumiPyramidInit(), the caller fills them */
    void* state;   /**< null after lumiPyramidInit(); for the caller to keep a layer state in */
    Lum32s level;  /**< index of the last level */
} LumPyramid;

/** @name Size of the level below */
/**@{*/
/**
 * The size of the next smaller level. From W pixels with the rate r the width starts at max(1, trunc(W / r + 0.5)), in
 * single precision. It is then decreased while W is below the least width that lumiGetPyramidUpROI() gives for it, and
 * increased while W is above the most, so that a level going down and the same level going up fit each other. Heights
 * follow the same rule.
 *
 * @param srcRoi size of the level
 * @param dstRoi receives the size of the level below
 * @param rate above 1 and up to 10
 * @retval lumStatusNullPointer dstRoi is null
 * @retval lumStatusSizeError width or height below 1 or, in a 64-bit build, above 2147483647
 * @retval lumStatusBadArgument rate at or below 1 or above 10
 * @return lumStatusOk
 */
LUM_API LumStatus lumiGetPyramidDownROI(LumSize srcRoi, LumSize* dstRoi, Lum32f rate);
LUM_API LumStatus lumiGetPyramidDownROI_L(LumSizeL srcRoi, LumSizeL* dstRoi, Lum32f rate);
/**@}*/

/** @name Sizes of the level above */
/**@{*/
/**
 * The sizes that the next larger level may have. Above w x h pixels with the rate r, in single precision, truncated to
 * integers:
 *
 *     least width    w == 1 ? 1 : max(trunc((w - 1) * r) + 1, w + 1)
 *     most width     max(trunc(w * r), w + 1)
 *
 * Heights follow the same rule. A length above 2147483647 ends there.
 *
 * @param srcRoi size of the level
 * @param dstRoiMin receives the least width and height of the level above
 * @param dstRoiMax receives the most
 * @param rate above 1 and up to 10
 * @retval lumStatusNullPointer dstRoiMin or dstRoiMax is null
 * @retval lumStatusSizeError width or height below 1 or, in a 64-bit build, above 2147483647
 * @retval lumStatusBadArgument rate at or below 1 or above 10
 * @return lumStatusOk
 */
LUM_API LumStatus lumiGetPyramidUpROI(LumSize srcRoi, LumSize* dstRoiMin, LumSize* dstRoiMax, Lum32f rate);
LUM_API LumStatus lumiGetPyramidUpROI_L(LumSizeL srcRoi, LumSizeL* dstRoiMin, LumSizeL* dstRoiMax,
                                        Lum32f rate);
/**@}*/

/** @name Directory: sizes */
/**@{*/
/**
 * Bytes of the memory and of the buffer of lumiPyramidInit(). With n the steps of lumiGetPyramidDownROI() that lead
 * from roiSize to 1 x 1, 32-bit builds report
 *
 *     *pyramidSize = 44 * min(n, level) + 112
 *     *bufferSize  = 8 * max(width, height)
 *
 * and 64-bit builds as many bytes more for the memory as their pointers take. No block need be aligned. A size above
 * 2147483647 is reported as 2147483647.
 *
 * @param pyramidSize receives the bytes of the memory
 * @param bufferSize receives the bytes of the buffer
 * @param level levels wanted below the first, 1 or more
 * @param roiSize size of level 0
 * @param rate above 1 and up to 10
 * @retval lumStatusNullPointer pyramidSize or bufferSize is null
 * @retval lumStatusSizeError width or height below 1 or, in a 64-bit build, above 2147483647
 * @retval lumStatusBadArgument level below 1, or rate at or below 1 or above 10
 * @return lumStatusOk
 */
LUM_API LumStatus lumiPyramidGetSize(Lum32s* pyramidSize, Lum32s* bufferSize, int level, LumSize roiSize,
                                     Lum32f rate);
LUM_API LumStatus lumiPyramidGetSize_L(Lum32s* pyramidSize, Lum32s* bufferSize, int level, LumSizeL roiSize,
                                       Lum32f rate);
/**@}*/

/** @name Directory */
/**@{*/
/**
 * Builds a #LumPyramid in memory of the caller's. Its level is the smaller of the level wanted and of the steps n of the size query; rates[0]
 * is 1, and each further rate is the last one times 1.0 / rate, in double precision.
 *
 * @param pyramid receives the pointer to the record in memory
 * @param level as given to the size query
 * @param roiSize as given to the size query
 * @param rate as given to the size query
 * @param memory of the size that the query reports as pyramidSize
 * @param buffer of the size that the query reports as bufferSize; receives the LumSize of each level down to 1 x 1, and
 *        is not needed after the call
 * @retval lumStatusNullPointer pyramid, memory or buffer is null
 * @retval lumStatusSizeError width or height below 1 or, in a 64-bit build, above 2147483647
 * @retval lumStatusBadArgument level below 1, or rate at or below 1 or above 10
 * @return lumStatusOk
 */
LUM_API LumStatus lumiPyramidInit(LumPyramid** pyramid, int level, LumSize roiSize, Lum32f rate,
                                  Lum8u* memory, Lum8u* buffer);
LUM_API LumStatus lumiPyramidInit_L(LumPyramid** pyramid, int level, LumSizeL roiSize, Lum32f rate,
                                    Lum8u* memory, Lum8u* buffer);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
