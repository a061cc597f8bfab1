/**
 * @file
 * Repair of the pixels that a mask selects, from those around them.
 */
#ifndef LUMCV_INPAINT_H
#define LUMCV_INPAINT_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup inpaint Inpainting
 * Fills the holes of a picture, from their edge inward.
 *
 * @code
 * lumiFastMarching_8u32f_C1R(mask, maskStep, distances, distancesStep, size, 0.0F, marchBuffer);
 * lumiInpaintGetSize(mask, maskStep, size, 5.0F, lumInpaintFront, 1, &stateSize, &bufferSize);
 * Lum8u *block = malloc(stateSize), *buffer = malloc(bufferSize);
 * LumInpaintState* state;
 * lumiInpaintInit_8u_C1R(&state, distances, distancesStep, mask, maskStep, size, 5.0F, lumInpaintFront, block, buffer);
 * lumiInpaint_8u_C1R(picture, step, repaired, repairedStep, size, state, buffer); // again for every picture
 * @endcode
 *
 * Pixels are repaired by ascending distance, and by rows among equal ones; each counts as known from then on. A pixel p
 * becomes a mean of the known pixels q with |q - p| <= radius, weighted by c, and is truncated to 8 bits after a half
 * is added. With v = p - q, d = |v|, in single precision:
 *
 * - lumInpaintFront (Telea, An image inpainting technique based on the fast marching method, Journal of Graphics Tools
 *   9, 2004): c = |(1 / 4096) / (|distances(q) - distances(p)| + 1) x (1 / d^3) x (T . v)| with T the gradient of the
 *   distances at p, times 4096 and truncated to 16 bits; T . v = 0 counts as 2.5e-25. The mean is corrected by (a + b)
 *   / (sqrt(a^2 + b^2) + 1e-20), where a = -sum(c vx Ix) and b = -sum(c vy Iy) with the picture's gradient (Ix, Iy) at
 *   q: 2 (I(x + 1) - I(x - 1)) between known pixels, the difference of two pixels beside an unknown one.
 * - lumInpaintIsophote (after Bertalmio et al., Image inpainting, SIGGRAPH 2000): c = 1 / (d (d^4 + 1)) x |vy Ix - vx
 *   Iy| / sqrt(Ix^2 + Iy^2), or 1e-6 in place of the last factor where it is 0. Here Ix = |I(x + 1) - I(x)| + |I(x) -
 *   I(x - 1)|, and twice the difference beside an unknown pixel. Each channel has its own weights.
 *
 * Where the weights sum to less than 0.0001 the four direct neighbours that are known join the sums, each with the
 * weight 255 (1 where the square of the radius around p is cut off by the region), and a = b = 0. There, radius is also
 * truncated to a whole number. A masked pixel whose distance is not above 0 stays as it is, and is never known.
 * An unmasked pixel whose distance is above 0, which marching with a radius gives, is repaired as well; where more pixels
 * have such a distance than are masked, as many as are masked are repaired, the first ones row by row.
 * @{
 */

/** What weighs the known pixels. */
enum {
    lumInpaintFront = 0,   /**< the gradient of the distances, with a correction by that of the picture */
    lumInpaintIsophote = 1 /**< the level lines of the picture */
};

/** The analysed mask. It lies in the caller's memory, and is written by its runs. */
typedef struct LumInpaintState LumInpaintState;

/**
 * Sizes in bytes of the state and of the buffers of a mask.
 *
 * @param mask first pixel of the mask; other than 0 selects a pixel to repair
 * @param maskStep bytes between its rows
 * @param roiSize size of the mask in pixels
 * @param radius radius in pixels of the disc around each pixel
 * @param method lumInpaintFront or lumInpaintIsophote
 * @param channels of the pictures to repair, 1 or 3
 * @param stateSize size of stateBuffer
 * @param bufferSize size of initBuffer and of the buffer of a run; 0 for an empty mask
 * @retval lumStatusNullPointer mask is null
 * @retval lumStatusStepError maskStep below the width
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusNullPointer stateSize or bufferSize is null
 * @retval lumStatusBadArgument radius below 1 or not a number, or another method
 * @retval lumStatusChannelCountError channels is neither 1 nor 3
 * @retval lumStatusBadArgument the mask is not empty, and radius is 4379 or more: its table alone exceeds 31 bits
 * @return lumStatusOk
 *
 * @par Layout
 * The working region is the bounding box of the mask grown by r + 1 = floor(radius) + 1 on each side and clipped to the
 * picture: W by H. With S1, B1 the sizes of lumiMorphologyBorderGetSize_8u_C1R() for this region and a mask of 2r + 1
 * by 2r + 1, S2, B2 those for a mask of 3 by 3, and n the number of masked pixels:
 *
 *     stateSize = up64(104 + up16(S1) + up16(S2)) + up64(28 (2r + 1)^2) + up64(8 n) + 2 up64(W) H + up64(4 W) H
 *                 + up64(4 channels W) H + (lumInpaintFront only: up64(4 W) H) + 64
 *     bufferSize = (2r + 1)^2 + B1 + B2
 *
 * where up16 and up64 round up to multiples of 16 and 64; in wrapping 32-bit arithmetic. An empty mask gives 128 and 0.
 * (104 and 28 are sizes of records with pointers; a build for 64 bits has larger ones, and gives 192 for an empty mask.)
 */
LUM_API LumStatus lumiInpaintGetSize(const Lum8u* mask, int maskStep, LumSize roiSize, Lum32f radius,
                                     Lum32s method, Lum32s channels, Lum32s* stateSize, Lum32s* bufferSize);

/** @name Analysis of a mask */
/**@{*/
/**
 * Builds the state for any number of pictures with the same hole.
 *
 * @param state receives stateBuffer
 * @param distances first pixel of the order of repair: the distance of each masked pixel from the hole's edge, as
 *        lumiFastMarching_8u32f_C1R() gives it; infinities and NaN are left out
 * @param distancesStep bytes between rows of `distances`
 * @param maskStep bytes between rows of `mask`
 * @param mask first pixel of the mask; other than 0 selects a pixel to repair
 * @param roiSize size of the mask in pixels
 * @param radius radius in pixels of the disc around each pixel
 * @param method lumInpaintFront or lumInpaintIsophote
 * @param stateBuffer memory of stateSize bytes, at any address
 * @param initBuffer work memory of bufferSize bytes; may be null for an empty mask
 * @retval lumStatusNullPointer mask is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError maskStep below the width
 * @retval lumStatusNullPointer distances or state is null
 * @retval lumStatusStepError distancesStep below width x 4
 * @retval lumStatusStepAlignmentError distancesStep is not a multiple of 4
 * @retval lumStatusNullPointer stateBuffer is null, or initBuffer where the mask is not empty
 * @retval lumStatusBadArgument radius or method as for lumiInpaintGetSize()
 * @return lumStatusOk
 */
LUM_API LumStatus lumiInpaintInit_8u_C1R(LumInpaintState** state, const Lum32f* distances, int distancesStep,
                                         const Lum8u* mask, int maskStep, LumSize roiSize, Lum32f radius,
                                         Lum32s method, Lum8u* stateBuffer, Lum8u* initBuffer);
LUM_API LumStatus lumiInpaintInit_8u_C3R(LumInpaintState** state, const Lum32f* distances, int distancesStep,
                                         const Lum8u* mask, int maskStep, LumSize roiSize, Lum32f radius,
                                         Lum32s method, Lum8u* stateBuffer, Lum8u* initBuffer);
/**@}*/

/** @name Repair of a picture */
/**@{*/
/**
 * dst = src, with the pixels of the state repaired. One run at a time uses a state.
 *
 * @param src first pixel of the picture
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result; may be src
 * @param roiSize size of the picture in pixels, that of the state
 * @param state a state of the same channel count
 * @param buffer work memory of bufferSize bytes; may be null where the state has no pixel to repair
 * @retval lumStatusNullPointer src, dst or state is null
 * @retval lumStatusSizeError width or height below 1, or not those of the state
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusNullPointer buffer is null, and the state has pixels to repair
 * @retval lumStatusBadArgument the state is for another channel count
 * @return lumStatusOk
 */
LUM_API LumStatus lumiInpaint_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumSize roiSize,
                                     LumInpaintState* state, Lum8u* buffer);
LUM_API LumStatus lumiInpaint_8u_C3R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumSize roiSize,
                                     LumInpaintState* state, Lum8u* buffer);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
