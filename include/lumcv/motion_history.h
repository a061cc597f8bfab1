/**
 * @file
 * The time of each pixel's last motion.
 */
#ifndef LUMCV_MOTION_HISTORY_H
#define LUMCV_MOTION_HISTORY_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup motion_history Motion history
 * The time of each pixel's last motion (A. F. Bobick and J. W. Davis, The Recognition of Human Movement Using Temporal
 * Templates, IEEE Transactions on Pattern Analysis and Machine Intelligence 23(3), 2001).
 *
 * @code
 * for (int frame = 0; frame < frames; ++frame) {
 *     findMotion(frame, silhouette);
 *     lumiUpdateMotionHistory_8u32f_C1IR(silhouette, width, history, 4 * width, (LumSize){width, height},
 *                                        0.04F * frame, 2.0F);
 * }
 * @endcode
 * @{
 */

/** @name Update of a motion history image */
/**@{*/
/**
 *     mhi(x, y) = timestamp     where silhouette(x, y) != 0
 *                 0.0           elsewhere, where mhi(x, y) < timestamp - duration
 *                 mhi(x, y)     elsewhere
 *
 * timestamp - duration is formed once, in single precision. A NaN in mhi stays; in a 32f silhouette -0.0 is zero and a
 * NaN is not.
 *
 * @param silhouette first pixel of the silhouette: other than 0 where there is motion now
 * @param silhouetteStep bytes between rows of `silhouette`
 * @param mhi first pixel of the motion history, read and written
 * @param mhiStep bytes between rows of `mhi`
 * @param roiSize size of the region in pixels
 * @param timestamp the time of this silhouette, in any unit
 * @param duration how long a motion is remembered, in the same unit, 0 or more
 * @retval lumStatusNullPointer silhouette or mhi is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below its row's bytes
 * @retval lumStatusStepAlignmentError a step that is not a multiple of its element size
 * @retval lumStatusOutOfRange duration below 0
 * @return lumStatusOk
 */
LUM_API LumStatus lumiUpdateMotionHistory_8u32f_C1IR(const Lum8u* silhouette, int silhouetteStep, Lum32f* mhi,
                                                     int mhiStep, LumSize roiSize, Lum32f timestamp,
                                                     Lum32f duration);
LUM_API LumStatus lumiUpdateMotionHistory_16u32f_C1IR(const Lum16u* silhouette, int silhouetteStep,
                                                      Lum32f* mhi, int mhiStep, LumSize roiSize,
                                                      Lum32f timestamp, Lum32f duration);
LUM_API LumStatus lumiUpdateMotionHistory_32f_C1IR(const Lum32f* silhouette, int silhouetteStep, Lum32f* mhi,
                                                   int mhiStep, LumSize roiSize, Lum32f timestamp,
                                                   Lum32f duration);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
