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

/** @} */

#ifdef __cplusplus
}
#endif

#endif
