/**
 * @file
 * Boosted stages of rectangle features on integral images.
 */
#ifndef LUMCV_HAAR_H
#define LUMCV_HAAR_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup haar Haar cascades
 * Boosted stages of rectangle features on integral images.
 *
 * @code
 * Lum32s bytes;
 * lumiHaarClassifierGetSize(lumType32f, windows, rectangles, classifiers, &bytes);
 * LumHaarClassifier* stage = (LumHaarClassifier*)malloc(bytes);
 * lumiHaarClassifierInit_32f(stage, rects, weights, thresholds, val1, val2, rectangles, classifiers);
 * // mask keeps the windows that pass
 * lumiApplyHaarClassifier_32f_C1R(sums, sumStep, deviations, devStep, mask, maskStep, windows, &positive, limit, stage);
 * @endcode
 * @{
 */

/**
 * One stage of a boosted cascade, built in the caller's memory by lumiHaarClassifierInit_32f() and its siblings.
 *
 * A stage is a list of weak classifiers; a classifier is a few weighted rectangles, a threshold and two values. On
 * an integral image, the classifier's sum at a pixel is compared with its threshold times the pixel's deviation,
 * and one of the two values is added to the pixel's total. A pixel whose total does not reach the threshold of the
 * stage leaves the mask, and the next stage skips it. The integral images are those of lumiIntegral_32f_C1R() and
 * its siblings, the deviations those of lumiRectStdDev_32f_C1R() and its siblings, both over the window.
 *
 * P. Viola, M. Jones: Rapid Object Detection using a Boosted Cascade of Simple Features (CVPR 2001); tilted
 * rectangles: R. Lienhart, J. Maydt: An Extended Set of Haar-like Features for Rapid Object Detection (ICIP 2002).
 *
 * The object holds pointers into itself: it is neither moved nor copied. It needs no alignment.
 */
typedef struct LumHaarClassifier LumHaarClassifier;

/**
 * Bytes of a stage.
 *
 * With L = length and N the sum of num, in 32 bits: 24 L + 36 N + 52 + 16 N + 64 for #lumType32s, and
 * 24 L + 36 N + 52 + (12 L + 24 N + 384) + 64 for #lumType32f, in wrapping arithmetic. Where pointers are wider the
 * number is larger.
 *
 * @param dataType #lumType32s or #lumType32f: the Init that is to follow
 * @param roiSize size of the region; has no effect on the number
 * @param num rectangles of each classifier
 * @param length number of classifiers
 * @param size receives the bytes
 * @retval lumStatusNullPointer num or size is null
 * @retval lumStatusSizeError length, a side of roiSize, or an entry of num below 1
 * @retval lumStatusDataTypeError another dataType
 * @return lumStatusOk
 */
LUM_API LumStatus lumiHaarClassifierGetSize(LumDataType dataType, LumSize roiSize, const Lum32s* num,
                                            int length, Lum32s* size);

/** @name Building a stage */
/**@{*/
/**
 * A rectangle's sum at a place p of an integral image I is I(p + A) - I(p + B) - I(p + C) + I(p + D). Its corners,
 * with x, y, w, h as given:
 *
 *     upright  A = (x + w, y + h)          B = (x, y + h)      C = (x + w, y)      D = (x, y)
 *     tilted   A = (x + w - h, y + w + h)  B = (x - h, y + h)  C = (x + w, y + w)  D = (x, y)
 *
 * The upright Init orders the classifiers anew: first those of 2 rectangles, then those of 3, then the rest, in the
 * caller's order within each; totals are summed in that order. The tilted Init keeps the caller's order.
 *
 * @param spec block of the bytes that lumiHaarClassifierGetSize() gives
 * @param rects the rectangles of all classifiers, one classifier's after the other's
 * @param weights weight of each rectangle
 * @param thresholds threshold of each classifier
 * @param val1 of each classifier, the value added where its sum is below threshold x deviation
 * @param val2 of each classifier, the value added elsewhere
 * @param num rectangles of each classifier
 * @param length number of classifiers
 * @retval lumStatusNullPointer a pointer is null
 * @retval lumStatusSizeError length or an entry of num below 1
 * @retval lumStatusBadArgument a rectangle with x or y below 0 or a side below 1, or, tilted, with h above x + 1:
 * the object is left partly built, and is to be discarded
 * @return lumStatusOk
 */
LUM_API LumStatus lumiHaarClassifierInit_32f(LumHaarClassifier* spec, const LumRect* rects,
                                             const Lum32f* weights, const Lum32f* thresholds,
                                             const Lum32f* val1, const Lum32f* val2, const Lum32s* num,
                                             int length);
LUM_API LumStatus lumiHaarClassifierInit_32s(LumHaarClassifier* spec, const LumRect* rects,
                                             const Lum32s* weights, const Lum32s* thresholds,
                                             const Lum32s* val1, const Lum32s* val2, const Lum32s* num,
                                             int length);
LUM_API LumStatus lumiTiltedHaarClassifierInit_32f(LumHaarClassifier* spec, const LumRect* rects,
                                                   const Lum32f* weights, const Lum32f* thresholds,
                                                   const Lum32f* val1, const Lum32f* val2, const Lum32s* num,
                                                   int length);
LUM_API LumStatus lumiTiltedHaarClassifierInit_32s(LumHaarClassifier* spec, const LumRect* rects,
                                                   const Lum32s* weights, const Lum32s* thresholds,
                                                   const Lum32s* val1, const Lum32s* val2, const Lum32s* num,
                                                   int length);
/**@}*/

/** @name Window of a stage */
/**@{*/
/**
 * The largest x of the corners C and the largest y of the corners A: how far to the right and downward the
 * rectangles reach from a pixel. The two names are one function.
 *
 * @param spec the stage
 * @param size receives the window's width and height
 * @retval lumStatusNullPointer spec or size is null
 * @return lumStatusOk
 */
LUM_API LumStatus lumiGetHaarClassifierSize_32f(const LumHaarClassifier* spec, LumSize* size);
LUM_API LumStatus lumiGetHaarClassifierSize_32s(const LumHaarClassifier* spec, LumSize* size);
/**@}*/

/** @name Tilting part of a stage */
/**@{*/
/**
 * Turns chosen classifiers of an upright stage into tilted ones, for the mixed apply functions. With w and h the
 * sides of a rectangle at (x, y), flag 0 turns it about its lower left corner: A = (x, y + h), B = (x - h, y),
 * C = (x + w, y + h - w), D = (x + w - h, y - w); any other flag gives the corners of
 * lumiTiltedHaarClassifierInit_32f(). A stage is tilted once only; a mask without a set byte changes nothing.
 *
 * @param mask a byte for each classifier, in the caller's order: not 0 tilts it
 * @param flag the form of the tilted rectangles
 * @param spec the stage
 * @retval lumStatusNullPointer mask or spec is null
 * @retval lumStatusBadArgument the stage has tilted classifiers already
 * @return lumStatusOk
 */
LUM_API LumStatus lumiTiltHaarFeatures_32f(const Lum8u* mask, Lum32s flag, LumHaarClassifier* spec);
LUM_API LumStatus lumiTiltHaarFeatures_32s(const Lum8u* mask, Lum32s flag, LumHaarClassifier* spec);
/**@}*/

/** @name Applying a stage */
/**@{*/
/**
 * At each pixel with a mask byte that is not 0: from a total of 0, for each classifier, t is the sum of its
 * rectangles' sums times their weights, and val1 is added to the total where t is below threshold x norm, else val2.
 * Pixels whose total is below the call's threshold have their mask byte set to 0; all other bytes stay as they are.
 *
 * - 32f: single precision. Where the first weight of all classifiers truncates to -1 it is taken for -1. A NaN in t
 *   or norm takes val1; a total that is NaN clears the pixel.
 * - 32s32f: rectangle sums wrap in 32 bits and are converted to single precision. A NaN takes val2; a total that is
 *   NaN keeps the pixel.
 * - 32s_C1RSfs: rectangle sums wrap in 32 bits; products and their sum have 64 bits, the sum is shifted left by
 *   -scaleFactor (64 and more leave 0) and compared with the 64-bit product of threshold and norm; totals wrap.
 *
 * Objects of lumiHaarClassifierInit_32f() serve 32f and 32s32f, those of lumiHaarClassifierInit_32s() serve 32s.
 * The rectangles of all pixels of the region must lie in the integral image; nothing tests it. The call writes into
 * the object, so one object serves one call at a time.
 *
 * @param src place of the region's first pixel in the integral image
 * @param srcStep bytes between rows of `src`
 * @param normStep bytes between rows of `norm`
 * @param maskStep bytes between rows of `mask`
 * @param norm deviations, one a pixel of the region
 * @param mask one byte a pixel; read and written
 * @param roiSize size of the region in pixels
 * @param positive in: pixels set in the mask, by which the call chooses its way; with 0 the mask stays as it is. Out:
 * pixels that are still set
 * @param threshold threshold of the stage
 * @param spec the stage
 * @retval lumStatusNullPointer src, norm, mask, positive or spec is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep or normStep below 4 x width, or maskStep below width
 * @retval lumStatusStepAlignmentError srcStep or normStep is no multiple of 4
 * @retval lumStatusBadArgument 32s_C1RSfs: scaleFactor above 0
 * @retval lumStatusNullPointer the object has no table area
 * @return lumStatusOk
 */
LUM_API LumStatus lumiApplyHaarClassifier_32f_C1R(const Lum32f* src, int srcStep, const Lum32f* norm,
                                                  int normStep, Lum8u* mask, int maskStep, LumSize roiSize,
                                                  Lum32s* positive, Lum32f threshold,
                                                  LumHaarClassifier* spec);
LUM_API LumStatus lumiApplyHaarClassifier_32s32f_C1R(const Lum32s* src, int srcStep, const Lum32f* norm,
                                                     int normStep, Lum8u* mask, int maskStep, LumSize roiSize,
                                                     Lum32s* positive, Lum32f threshold,
                                                     LumHaarClassifier* spec);
/**@}*/

/** @name Applying a stage in integers */
/**@{*/
/**
 * As lumiApplyHaarClassifier_32f_C1R(), with `scaleFactor`.
 *
 * @param src place of the region's first pixel in the integral image
 * @param srcStep bytes between rows of `src`
 * @param normStep bytes between rows of `norm`
 * @param maskStep bytes between rows of `mask`
 * @param norm deviations, one a pixel of the region
 * @param mask one byte a pixel; read and written
 * @param roiSize size of the region in pixels
 * @param positive in: pixels set in the mask, by which the call chooses its way; with 0 the mask stays as it is. Out:
 * pixels that are still set
 * @param threshold threshold of the stage
 * @param spec the stage
 * @param scaleFactor minus the shift of the sums, at most 0
 * @retval lumStatusNullPointer src, norm, mask, positive or spec is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep or normStep below 4 x width, or maskStep below width
 * @retval lumStatusStepAlignmentError srcStep or normStep is no multiple of 4
 * @retval lumStatusBadArgument 32s_C1RSfs: scaleFactor above 0
 * @retval lumStatusNullPointer the object has no table area
 * @return lumStatusOk
 */
LUM_API LumStatus lumiApplyHaarClassifier_32s_C1RSfs(const Lum32s* src, int srcStep, const Lum32s* norm,
                                                     int normStep, Lum8u* mask, int maskStep, LumSize roiSize,
                                                     Lum32s* positive, Lum32s threshold,
                                                     LumHaarClassifier* spec, int scaleFactor);
/**@}*/

/** @name Applying a stage with upright and tilted classifiers */
/**@{*/
/**
 * As the plain functions, on two integral images: tilted classifiers read tilt, from one row below and one element
 * to the right of the pixel's place, all others read src. Every weight is multiplied. In 32f and 32s32f a NaN takes
 * val2, and a total that is NaN keeps the pixel. The object is only read: calls may share it.
 *
 * @param src place of the region's first pixel in the integral image
 * @param tilt place of the region's first pixel in the tilted integral image
 * @param srcStep bytes between rows of `src`
 * @param tiltStep bytes between rows of `tilt`
 * @param normStep bytes between rows of `norm`
 * @param maskStep bytes between rows of `mask`
 * @param norm deviations, one a pixel of the region
 * @param mask one byte a pixel; read and written
 * @param roiSize size of the region in pixels
 * @param positive out: pixels that are still set in the mask
 * @param threshold threshold of the stage
 * @param spec the stage
 * @retval lumStatusNullPointer src, tilt, norm, mask, positive or spec is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep, tiltStep or normStep below 4 x width, or maskStep below width
 * @retval lumStatusStepAlignmentError srcStep, tiltStep or normStep is no multiple of 4
 * @retval lumStatusBadArgument 32s_C1RSfs: scaleFactor above 0
 * @return lumStatusOk
 */
LUM_API LumStatus lumiApplyMixedHaarClassifier_32f_C1R(const Lum32f* src, int srcStep, const Lum32f* tilt,
                                                       int tiltStep, const Lum32f* norm, int normStep,
                                                       Lum8u* mask, int maskStep, LumSize roiSize,
                                                       Lum32s* positive, Lum32f threshold,
                                                       const LumHaarClassifier* spec);
LUM_API LumStatus lumiApplyMixedHaarClassifier_32s32f_C1R(const Lum32s* src, int srcStep, const Lum32s* tilt,
                                                          int tiltStep, const Lum32f* norm, int normStep,
                                                          Lum8u* mask, int maskStep, LumSize roiSize,
                                                          Lum32s* positive, Lum32f threshold,
                                                          const LumHaarClassifier* spec);
/**@}*/

/** @name Applying a stage of both kinds of classifiers in integers */
/**@{*/
/**
 * As lumiApplyMixedHaarClassifier_32f_C1R(), with `scaleFactor`.
 *
 * @param src place of the region's first pixel in the integral image
 * @param tilt place of the region's first pixel in the tilted integral image
 * @param srcStep bytes between rows of `src`
 * @param tiltStep bytes between rows of `tilt`
 * @param normStep bytes between rows of `norm`
 * @param maskStep bytes between rows of `mask`
 * @param norm deviations, one a pixel of the region
 * @param mask one byte a pixel; read and written
 * @param roiSize size of the region in pixels
 * @param positive out: pixels that are still set in the mask
 * @param threshold threshold of the stage
 * @param spec the stage
 * @param scaleFactor minus the shift of the sums, at most 0
 * @retval lumStatusNullPointer src, tilt, norm, mask, positive or spec is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep, tiltStep or normStep below 4 x width, or maskStep below width
 * @retval lumStatusStepAlignmentError srcStep, tiltStep or normStep is no multiple of 4
 * @retval lumStatusBadArgument 32s_C1RSfs: scaleFactor above 0
 * @return lumStatusOk
 */
LUM_API LumStatus lumiApplyMixedHaarClassifier_32s_C1RSfs(const Lum32s* src, int srcStep, const Lum32s* tilt,
                                                          int tiltStep, const Lum32s* norm, int normStep,
                                                          Lum8u* mask, int maskStep, LumSize roiSize,
                                                          Lum32s* positive, Lum32s threshold,
                                                          const LumHaarClassifier* spec, int scaleFactor);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
