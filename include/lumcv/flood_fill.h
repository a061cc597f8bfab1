/**
 * @file
 * Filling of the connected region around a seed pixel.
 */
#ifndef LUMCV_FLOOD_FILL_H
#define LUMCV_FLOOD_FILL_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup flood_fill Flood fill
 * Fills the connected region around a seed pixel with a new value, and tells its area and bounding box.
 *
 * @code
 * LumSize size = {width, height};
 * LumPoint seed = {x, y};
 * Lum32s bytes;
 * LumFillRegion region;
 * lumiFloodFillGetSize(size, &bytes);
 * lumiFloodFill_Range4Con_8u_C1IR(picture, step, size, seed, 255, 10, 10, &region, malloc(bytes));
 * @endcode
 *
 * Three rules say which pixels belong to the region; a pixel of three channels must satisfy its rule in each of
 * them. 4Con connects a pixel to the four pixels that share an edge with it, 8Con to the eight around it.
 *
 * All rules work on runs of neighbouring pixels of a row (Smith, Tint fill, Computer Graphics 13, 1979). A run
 * is popped from a stack; the row away from the run that found it (its parent) is searched below or above
 * the whole run, then the parent's own row where the parent did not cover it; with 8Con one column further on both
 * sides. Each member that is met grows to a run of its own, to the left and then to the right, and is pushed.
 *
 * No alignment is asked of the buffer. Two calls that run at once need two buffers.
 * @{
 */

/** What a fill has done. */
typedef struct LumFillRegion {
    Lum64f area;     /**< pixels of all runs found: one that is filled again counts again */
    Lum64f value[3]; /**< the new value, a channel each; 0 in the channels that the image does not have */
    LumRect rect;    /**< bounding box of the filled runs */
} LumFillRegion;

/**
 * Size in bytes of the buffer of the exact and the fixed-range members: 6 x width x height + 32, of which the low 32
 * bits are kept.
 *
 * @param roiSize size of the region in pixels
 * @param size the result
 * @retval lumStatusNullPointer size is null
 * @retval lumStatusSizeError width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFloodFillGetSize(LumSize roiSize, Lum32s* size);

/**
 * Size in bytes of the buffer of the floating-range members: 16 x width x height + (width + 2) x (height + 2) +
 * 64, of which the low 32 bits are kept.
 *
 * @param roiSize size of the region in pixels
 * @param size the result
 * @retval lumStatusNullPointer size is null
 * @retval lumStatusSizeError width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFloodFillGetSize_Grad(LumSize roiSize, Lum32s* size);

/** @name Exact fill */
/**@{*/
/**
 * The region of the pixels that equal the seed's pixel, as it was before the call. Floats are compared as IEEE
 * numbers: -0 equals 0, and NaN equals nothing, so that a seed of NaN is filled alone. Where the new value equals the
 * seed's pixel nothing is done: the image and the record stay as they are.
 *
 * @param srcDst first pixel of the region, filled in place
 * @param srcDstStep bytes between rows
 * @param roiSize size of the region in pixels
 * @param seed a pixel of the region
 * @param newVal the new value; with three channels, a pointer to three
 * @param region what was filled; written on success, unless the new value equals the seed's pixel
 * @param buffer work memory of lumiFloodFillGetSize() bytes
 * @retval lumStatusNullPointer a pointer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcDstStep below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32s, 32f: srcDstStep not a multiple of the element size
 * @retval lumStatusOutOfRange seed outside the region
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFloodFill_4Con_8u_C1IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed,
                                             Lum8u newVal, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_4Con_8u_C3IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed,
                                             const Lum8u* newVal, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_4Con_16u_C1IR(Lum16u* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed,
                                              Lum16u newVal, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_4Con_16u_C3IR(Lum16u* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed,
                                              const Lum16u* newVal, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_4Con_32s_C1IR(Lum32s* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed,
                                              Lum32s newVal, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_4Con_32f_C1IR(Lum32f* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed,
                                              Lum32f newVal, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_4Con_32f_C3IR(Lum32f* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed,
                                              const Lum32f* newVal, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_8Con_8u_C1IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed,
                                             Lum8u newVal, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_8Con_8u_C3IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed,
                                             const Lum8u* newVal, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_8Con_16u_C1IR(Lum16u* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed,
                                              Lum16u newVal, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_8Con_16u_C3IR(Lum16u* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed,
                                              const Lum16u* newVal, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_8Con_32s_C1IR(Lum32s* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed,
                                              Lum32s newVal, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_8Con_32f_C1IR(Lum32f* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed,
                                              Lum32f newVal, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_8Con_32f_C3IR(Lum32f* srcDst, int srcDstStep, LumSize roiSize, LumPoint seed,
                                              const Lum32f* newVal, LumFillRegion* region, Lum8u* buffer);
/**@}*/

/** @name Fixed-range fill */
/**@{*/
/**
 * The region of the pixels v with low <= v <= high, where low = seed - minDelta and high = seed + maxDelta, of the
 * seed's pixel as it was before the call. In integers both stay in the range of the type; in 32f they are single
 * precision without limits, and NaN is never a member. The seed itself is always filled.
 *
 * The new value may be a member itself, and filled pixels are found again then. The fill is cut off when the stack
 * holds width x height / 4 runs (where that is at least 1), and, for such a new value, when the runs found reach
 * width x height: all pending runs are dropped, and the fill ends with the run in hand. What was found until
 * then is filled and counted; the bounding box holds the first run and the runs popped. On a region of 4 to 7
 * pixels only the first run is filled.
 *
 * @param srcDst first pixel of the region, filled in place
 * @param srcDstStep bytes between rows
 * @param roiSize size of the region in pixels
 * @param seed a pixel of the region
 * @param newVal the new value; with three channels, a pointer to three
 * @param minDelta how far a pixel may lie below and above the seed's; with three channels, pointers to three
 * @param maxDelta how far a pixel may lie below and above the seed's; with three channels, pointers to three
 * @param region what was filled; written on success
 * @param buffer work memory of lumiFloodFillGetSize() bytes
 * @retval lumStatusNullPointer a pointer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcDstStep below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: srcDstStep not a multiple of the element size
 * @retval lumStatusOutOfRange seed outside the region
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFloodFill_Range4Con_8u_C1IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize,
                                                  LumPoint seed, Lum8u newVal, Lum8u minDelta, Lum8u maxDelta,
                                                  LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Range4Con_8u_C3IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize,
                                                  LumPoint seed, const Lum8u* newVal, const Lum8u* minDelta,
                                                  const Lum8u* maxDelta, LumFillRegion* region,
                                                  Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Range4Con_16u_C1IR(Lum16u* srcDst, int srcDstStep, LumSize roiSize,
                                                   LumPoint seed, Lum16u newVal, Lum16u minDelta,
                                                   Lum16u maxDelta, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Range4Con_16u_C3IR(Lum16u* srcDst, int srcDstStep, LumSize roiSize,
                                                   LumPoint seed, const Lum16u* newVal,
                                                   const Lum16u* minDelta, const Lum16u* maxDelta,
                                                   LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Range4Con_32f_C1IR(Lum32f* srcDst, int srcDstStep, LumSize roiSize,
                                                   LumPoint seed, Lum32f newVal, Lum32f minDelta,
                                                   Lum32f maxDelta, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Range4Con_32f_C3IR(Lum32f* srcDst, int srcDstStep, LumSize roiSize,
                                                   LumPoint seed, const Lum32f* newVal,
                                                   const Lum32f* minDelta, const Lum32f* maxDelta,
                                                   LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Range8Con_8u_C1IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize,
                                                  LumPoint seed, Lum8u newVal, Lum8u minDelta, Lum8u maxDelta,
                                                  LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Range8Con_8u_C3IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize,
                                                  LumPoint seed, const Lum8u* newVal, const Lum8u* minDelta,
                                                  const Lum8u* maxDelta, LumFillRegion* region,
                                                  Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Range8Con_16u_C1IR(Lum16u* srcDst, int srcDstStep, LumSize roiSize,
                                                   LumPoint seed, Lum16u newVal, Lum16u minDelta,
                                                   Lum16u maxDelta, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Range8Con_16u_C3IR(Lum16u* srcDst, int srcDstStep, LumSize roiSize,
                                                   LumPoint seed, const Lum16u* newVal,
                                                   const Lum16u* minDelta, const Lum16u* maxDelta,
                                                   LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Range8Con_32f_C1IR(Lum32f* srcDst, int srcDstStep, LumSize roiSize,
                                                   LumPoint seed, Lum32f newVal, Lum32f minDelta,
                                                   Lum32f maxDelta, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Range8Con_32f_C3IR(Lum32f* srcDst, int srcDstStep, LumSize roiSize,
                                                   LumPoint seed, const Lum32f* newVal,
                                                   const Lum32f* minDelta, const Lum32f* maxDelta,
                                                   LumFillRegion* region, Lum8u* buffer);
/**@}*/

/** @name Floating-range fill */
/**@{*/
/**
 * The region grows from pixel to pixel: a candidate c joins next to a pixel r of the region where r - minDelta <= c
 * <= r + maxDelta, both as they were before the call. In integers that is the unsigned 32-bit test c + minDelta -
 * r <= minDelta + maxDelta; in 32f it is |c + (minDelta - maxDelta) x 0.5 - r| <= (minDelta + maxDelta) x 0.5 in
 * single precision, which no NaN passes.
 *
 * A pixel that starts a run is compared with the popped run: with the pixel in its own column, or, with 8Con, with
 * those of the columns x - 1, x and x + 1 that the popped run has. A run grows to the left by
 * comparison with the neighbour on its own row only, and to the right also with the popped run by the rule of a
 * start. The result depends on this order where minDelta and maxDelta differ.
 *
 * @param srcDst first pixel of the region, filled in place
 * @param srcDstStep bytes between rows
 * @param roiSize size of the region in pixels
 * @param seed a pixel of the region
 * @param newVal the new value; with three channels, a pointer to three
 * @param minDelta how far a pixel may lie below and above its neighbour; with three channels, pointers to three
 * @param maxDelta how far a pixel may lie below and above its neighbour; with three channels, pointers to three
 * @param region what was filled; written on success
 * @param buffer work memory of lumiFloodFillGetSize_Grad() bytes
 * @retval lumStatusNullPointer a pointer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcDstStep below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: srcDstStep not a multiple of the element size
 * @retval lumStatusOutOfRange seed outside the region; 32f: minDelta or maxDelta negative
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFloodFill_Grad4Con_8u_C1IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize,
                                                 LumPoint seed, Lum8u newVal, Lum8u minDelta, Lum8u maxDelta,
                                                 LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Grad4Con_8u_C3IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize,
                                                 LumPoint seed, const Lum8u* newVal, const Lum8u* minDelta,
                                                 const Lum8u* maxDelta, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Grad4Con_16u_C1IR(Lum16u* srcDst, int srcDstStep, LumSize roiSize,
                                                  LumPoint seed, Lum16u newVal, Lum16u minDelta,
                                                  Lum16u maxDelta, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Grad4Con_16u_C3IR(Lum16u* srcDst, int srcDstStep, LumSize roiSize,
                                                  LumPoint seed, const Lum16u* newVal, const Lum16u* minDelta,
                                                  const Lum16u* maxDelta, LumFillRegion* region,
                                                  Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Grad4Con_32f_C1IR(Lum32f* srcDst, int srcDstStep, LumSize roiSize,
                                                  LumPoint seed, Lum32f newVal, Lum32f minDelta,
                                                  Lum32f maxDelta, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Grad4Con_32f_C3IR(Lum32f* srcDst, int srcDstStep, LumSize roiSize,
                                                  LumPoint seed, const Lum32f* newVal, const Lum32f* minDelta,
                                                  const Lum32f* maxDelta, LumFillRegion* region,
                                                  Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Grad8Con_8u_C1IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize,
                                                 LumPoint seed, Lum8u newVal, Lum8u minDelta, Lum8u maxDelta,
                                                 LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Grad8Con_8u_C3IR(Lum8u* srcDst, int srcDstStep, LumSize roiSize,
                                                 LumPoint seed, const Lum8u* newVal, const Lum8u* minDelta,
                                                 const Lum8u* maxDelta, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Grad8Con_16u_C1IR(Lum16u* srcDst, int srcDstStep, LumSize roiSize,
                                                  LumPoint seed, Lum16u newVal, Lum16u minDelta,
                                                  Lum16u maxDelta, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Grad8Con_16u_C3IR(Lum16u* srcDst, int srcDstStep, LumSize roiSize,
                                                  LumPoint seed, const Lum16u* newVal, const Lum16u* minDelta,
                                                  const Lum16u* maxDelta, LumFillRegion* region,
                                                  Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Grad8Con_32f_C1IR(Lum32f* srcDst, int srcDstStep, LumSize roiSize,
                                                  LumPoint seed, Lum32f newVal, Lum32f minDelta,
                                                  Lum32f maxDelta, LumFillRegion* region, Lum8u* buffer);
LUM_API LumStatus lumiFloodFill_Grad8Con_32f_C3IR(Lum32f* srcDst, int srcDstStep, LumSize roiSize,
                                                  LumPoint seed, const Lum32f* newVal, const Lum32f* minDelta,
                                                  const Lum32f* maxDelta, LumFillRegion* region,
                                                  Lum8u* buffer);
/**@}*/

/**
 * @par Layout
 * The buffer of the exact and the fixed-range members holds, from the first multiple of 8 bytes, the stack of
 * run records: six signed 32-bit words y, left, right, parentLeft, parentRight, dir; the parent's row is y + dir. The
 * floating-range members keep a byte map of (width + 2) x (height + 2) of the pixels taken at the start of the buffer
 * and the stack after it. Where the next record of six words would not fit, the records that the stack holds are
 * shortened to three words (the parent only saves searching).
 *
 * @}
 */

#ifdef __cplusplus
}
#endif

#endif
