/**
 * @file
 * A model of the background of a video: a mixture of Gaussian colour modes at each pixel.
 */
#ifndef LUMCV_BACKGROUND_H
#define LUMCV_BACKGROUND_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup background Background mixture model
 * An adaptive mixture of spherical Gaussian colour modes at each pixel of a three-channel video, which tells the
 * foreground and shadows of each frame from its background (Z. Zivkovic and F. van der Heijden, Efficient Adaptive
 * Density Estimation per Image Pixel for the Task of Background Subtraction, Pattern Recognition Letters 27, 2006).
 *
 * @code
 * Lum32s bytes;
 * lumiFGMMGetBufferSize_8u_C3R(size, 5, &bytes);
 * LumFGMMState* state = malloc(bytes);
 * lumiFGMMInit_8u_C3R(size, 5, &params, state);
 * while (readFrame(frame))
 *     lumiFGMMForeground_8u_C3R(frame, 3 * size.width, mask, size.width, size, state, NULL, -1.0);
 * @endcode
 * @{
 */

/** Parameters of the model. There are no default values. */
typedef struct LumFGMMParams {
    uint32_t history;       /**< frames of the learning window; bounds the automatic learning rate */
    Lum32s mixtures;        /**< modes of a pixel in this call; read by the frame call only */
    Lum32f varInit;         /**< variance of a new mode */
    Lum32f varMin;          /**< lower limit of a mode's variance */
    Lum32f varMax;          /**< upper limit of a mode's variance */
    Lum32f matchBackground; /**< Tb: squared distance, in variances, below which a mode explains a pixel */
    Lum32f backgroundRatio; /**< R: total weight of the modes that make up the background */
    Lum32f matchGenerate;   /**< Tg: squared distance, in variances, below which a pixel matches a mode */
    Lum32f complexityPrior; /**< C: decay of weights per unit of the learning rate */
    Lum8u shadowValue;      /**< what the result holds at a shadow */
    Lum8u shadowEnabled;    /**< other than 0: shadows are looked for */
    Lum32f shadowRatio;     /**< tau: the least brightness of a shadow, relative to the background's */
} LumFGMMParams;

/** The model of a video, in a block of the caller's. */
typedef struct LumFGMMState LumFGMMState;

/**
 * The bytes of a model. With w, h the region's size, n = maxMixtures, and align32(x) = x rounded up to a multiple of 32, in
 * wrapping 32-bit arithmetic:
 *
 *     size = align32(w h) + 128 + align32(12 w n) + align32(12 w h n) + align32(8 w h n) + 256
 *
 * @param roiSize size of the video's frames in pixels
 * @param maxMixtures largest number of modes of a pixel; more than 255 serve as 255
 * @param size receives the bytes of the model
 * @retval lumStatusNullPointer size is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusBadArgument maxMixtures below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFGMMGetBufferSize_8u_C3R(LumSize roiSize, Lum32s maxMixtures, Lum32s* size);

/**
 * Clears every byte of the model's block, and copies the parameters but for `mixtures`, for which maxMixtures is taken. The
 * block may lie at any address, and is neither moved nor copied afterwards.
 *
 * @param roiSize size of the video's frames in pixels
 * @param maxMixtures as for the size
 * @param params the parameters
 * @param state the block
 * @retval lumStatusNullPointer params or state is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusBadArgument maxMixtures below 1
 * @return lumStatusOk
 *
 * @par Layout
 * From the first multiple of 32 at or after the start of the block: frameCount (32-bit unsigned); pointers to a row of
 * floats, to the means (three Lum32f a mode), to weights and variances (a pair of Lum32f a mode) and to the numbers of
 * modes (a byte a pixel); history, varInit, varMin, varMax, matchBackground, backgroundRatio, matchGenerate,
 * complexityPrior and mixtures of the parameters; shadowValue and shadowEnabled; shadowRatio; maxMixtures. The four arrays
 * follow from byte 96 on, each at a multiple of 32. Pixels are row-major; a pixel has maxMixtures modes, in order of
 * falling weight.
 */
LUM_API LumStatus lumiFGMMInit_8u_C3R(LumSize roiSize, Lum32s maxMixtures, const LumFGMMParams* params,
                                      LumFGMMState* state);

/**
 * Classifies the pixels of a frame as background (0), shadow (shadowValue) and foreground (255), and updates the model.
 * All arithmetic is in single precision, but for a and d, which are formed in double precision and rounded.
 *
 * The learning rate a is learningRate, or 1 / min(2 f, history) where it is negative and in the first frame; f counts the
 * frames, and a history of 0 acts as 1. The decay is d = a C.
 *
 * For a pixel p with m modes, k = 0, 1, ... while k < c, where c starts at m:
 *
 *     w = weight[k] (1 - a) - d
 *     until a mode has matched, with D = |p - mean[k]|^2:
 *         D < Tb variance[k], and the weights before k sum to less than R: background
 *         D < Tg variance[k]: the mode matches: w += a, q = a / w (0 where w is 0),
 *             mean[k] -= q (mean[k] - p), variance[k] += q (D - variance[k]) within varMin and varMax,
 *             and the mode moves up, in front of modes that have no greater weight
 *     w < d: w becomes 0, and c decreases by 1: the last mode of the list is left out in this frame
 *
 * The c weights are divided by their sum unless that is 0. Where no mode has matched a new one with mean p and variance
 * varInit takes the next free place, or the last one where `mixtures` modes are in use; its weight is 1 if it is the only
 * one, else a, while all others are multiplied by 1 - a; and it moves up in the same way.
 *
 * A pixel that is not background is a shadow if shadows are looked for and, for one of the modes in their order,
 * num = p . mean and den = mean . mean fulfil tau den <= num <= den and |r mean - p|^2 < Tb variance r^2 with r = num / den.
 * The search ends without success at a mode whose den is 0, and after the one that makes the weights sum to more than R.
 *
 * @param src first pixel of the frame, three interleaved channels
 * @param srcStep bytes between rows of `src`; only its sign is tested
 * @param dst first pixel of the result, one channel
 * @param dstStep bytes between rows of `dst`; only its sign is tested
 * @param roiSize the size given to Init
 * @param state the model
 * @param params new parameters for this and later frames; null to keep those of the state
 * @param learningRate share of this frame in the model, 0 to 1; negative for the automatic one
 * @retval lumStatusNullPointer src, dst or state is null
 * @retval lumStatusStepError srcStep or dstStep below 1 (tested before the sizes)
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusBadArgument params is given with mixtures below 1 or above the state's maxMixtures
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFGMMForeground_8u_C3R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                            LumSize roiSize, LumFGMMState* state, const LumFGMMParams* params,
                                            Lum64f learningRate);

/**
 * The background: at each pixel the mean of its first modes by weight, up to the one that makes the weights sum to more
 * than backgroundRatio, rounded to nearest, ties to even. A pixel whose weights sum to 0 is 0.
 *
 * @param dst first pixel of the result, three interleaved channels
 * @param dstStep bytes between rows; only its sign is tested
 * @param roiSize the size given to Init
 * @param state the model
 * @retval lumStatusNullPointer dst or state is null
 * @retval lumStatusStepError dstStep below 1 (tested before the sizes)
 * @retval lumStatusSizeError width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFGMMBackground_8u_C3R(Lum8u* dst, int dstStep, LumSize roiSize, LumFGMMState* state);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
