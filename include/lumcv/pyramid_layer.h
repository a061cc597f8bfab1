/**
 * @file
 * Operators between neighbouring levels of an image pyramid.
 */
#ifndef LUMCV_PYRAMID_LAYER_H
#define LUMCV_PYRAMID_LAYER_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup pyramid_layer Pyramid layers
 * A level of a pyramid from its neighbour: smoothed and reduced going down, expanded and smoothed going up (Burt and
 * Adelson, The Laplacian Pyramid as a Compact Image Code, 1983).
 *
 * @code
 * const Lum16s kernel[] = {1, 4, 6, 4, 1};
 * lumiPyramidLayerDownGetSize_8u_C1R(size, 2.0f, 5, &stateBytes, &bufferBytes); // then allocate memory and buffer
 * lumiPyramidLayerDownInit_8u_C1R(&state, size, 2.0f, kernel, 5, 2, memory, buffer);
 * lumiGetPyramidDownROI(size, &halfSize, 2.0f);
 * lumiPyramidLayerDown_8u_C1R(image, step, size, half, halfStep, halfSize, state); // and so on for smaller levels
 * @endcode
 *
 * A state serves runs of one element type and channel count, with one rate and kernel. It holds the work memory of its
 * runs: it may be used by one running call at a time, and is neither moved nor copied. Nothing of an image stays in it.
 * Runs are best for regions that are not larger than the one given to Init, and any region may be run.
 * @{
 */

/** The state of a layer-down operator; its fields are given under Layout below. */
typedef struct LumPyramidLayerDownState LumPyramidLayerDownState;
/** The state of a layer-up operator. */
typedef struct LumPyramidLayerUpState LumPyramidLayerUpState;

/** @name Layer down: sizes */
/**@{*/
/**
 * Bytes of the memory and of the buffer of lumiPyramidLayerDownInit_*(). No block need be aligned.
 *
 * @param srcRoi size of the largest source region
 * @param rate above 1 and up to 10
 * @param kernelSize taps of the kernel, odd, 3 or more
 * @param stateSize receives the bytes of the memory
 * @param bufferSize receives the bytes of the buffer, 8 * max(width, height)
 * @retval lumStatusNullPointer stateSize or bufferSize is null
 * @retval lumStatusSizeError width or height below 1 or, in a 64-bit build, above 2147483647
 * @retval lumStatusBadArgument rate at or below 1 or above 10, or kernelSize below 3 or even
 * @return lumStatusOk
 */
LUM_API LumStatus lumiPyramidLayerDownGetSize_8u_C1R(LumSize srcRoi, Lum32f rate, int kernelSize,
                                                     Lum32s* stateSize, Lum32s* bufferSize);
LUM_API LumStatus lumiPyramidLayerDownGetSize_8u_C3R(LumSize srcRoi, Lum32f rate, int kernelSize,
                                                     Lum32s* stateSize, Lum32s* bufferSize);
LUM_API LumStatus lumiPyramidLayerDownGetSize_16u_C1R(LumSize srcRoi, Lum32f rate, int kernelSize,
                                                      Lum32s* stateSize, Lum32s* bufferSize);
LUM_API LumStatus lumiPyramidLayerDownGetSize_16u_C3R(LumSize srcRoi, Lum32f rate, int kernelSize,
                                                      Lum32s* stateSize, Lum32s* bufferSize);
LUM_API LumStatus lumiPyramidLayerDownGetSize_32f_C1R(LumSize srcRoi, Lum32f rate, int kernelSize,
                                                      Lum32s* stateSize, Lum32s* bufferSize);
LUM_API LumStatus lumiPyramidLayerDownGetSize_32f_C3R(LumSize srcRoi, Lum32f rate, int kernelSize,
                                                      Lum32s* stateSize, Lum32s* bufferSize);
LUM_API LumStatus lumiPyramidLayerDownGetSize_32f_C1R_L(LumSizeL srcRoi, Lum32f rate, int kernelSize,
                                                        Lum32s* stateSize, Lum32s* bufferSize);
/**@}*/

/** @name Layer down: states */
/**@{*/
/**
 * Normalises a kernel k of K = kernelSize taps with the middle a = K / 2, and keeps it. Its sum is
 * k[a] + 2 * k[0] + ... + 2 * k[a - 1]: the half after the middle plays no part, and is replaced by the mirrored
 * half before it. Integers become ((k[i] << 14) / sum) >> 2, with a truncating division, in units of 1 / 4096; with a
 * sum of 0 they keep their values, in the same units. Floats are divided by the sum.
 *
 * @param state receives the pointer to the state in memory
 * @param srcRoi as given to the size query
 * @param rate as given to the size query
 * @param kernel kernelSize taps, the same in both directions
 * @param kernelSize as given to the size query
 * @param mode 2
 * @param memory of the size that the query reports as stateSize
 * @param buffer of the size that the query reports as bufferSize; left untouched. May be null where kernelSize is not
 *        below both the width and the height.
 * @retval lumStatusBadArgument mode is not 2
 * @retval lumStatusNullPointer state, kernel or memory is null, or buffer where it may not be
 * @retval lumStatusSizeError width or height below 1 or, in a 64-bit build, above 2147483647
 * @retval lumStatusBadArgument rate at or below 1 or above 10, or kernelSize below 3 or even
 * @retval lumStatusKernelNotSymmetric two taps at the same distance from the middle differ, floats by more than the
 *         smallest normal one; the state is valid
 * @return lumStatusOk
 */
LUM_API LumStatus lumiPyramidLayerDownInit_8u_C1R(LumPyramidLayerDownState** state, LumSize srcRoi,
                                                  Lum32f rate, const Lum16s* kernel, int kernelSize, int mode,
                                                  Lum8u* memory, Lum8u* buffer);
LUM_API LumStatus lumiPyramidLayerDownInit_8u_C3R(LumPyramidLayerDownState** state, LumSize srcRoi,
                                                  Lum32f rate, const Lum16s* kernel, int kernelSize, int mode,
                                                  Lum8u* memory, Lum8u* buffer);
LUM_API LumStatus lumiPyramidLayerDownInit_16u_C1R(LumPyramidLayerDownState** state, LumSize srcRoi,
                                                   Lum32f rate, const Lum16s* kernel, int kernelSize,
                                                   int mode, Lum8u* memory, Lum8u* buffer);
LUM_API LumStatus lumiPyramidLayerDownInit_16u_C3R(LumPyramidLayerDownState** state, LumSize srcRoi,
                                                   Lum32f rate, const Lum16s* kernel, int kernelSize,
                                                   int mode, Lum8u* memory, Lum8u* buffer);
LUM_API LumStatus lumiPyramidLayerDownInit_32f_C1R(LumPyramidLayerDownState** state, LumSize srcRoi,
                                                   Lum32f rate, const Lum32f* kernel, int kernelSize,
                                                   int mode, Lum8u* memory, Lum8u* buffer);
LUM_API LumStatus lumiPyramidLayerDownInit_32f_C3R(LumPyramidLayerDownState** state, LumSize srcRoi,
                                                   Lum32f rate, const Lum32f* kernel, int kernelSize,
                                                   int mode, Lum8u* memory, Lum8u* buffer);
LUM_API LumStatus lumiPyramidLayerDownInit_32f_C1R_L(LumPyramidLayerDownState** state, LumSizeL srcRoi,
                                                     Lum32f rate, const Lum32f* kernel, int kernelSize,
                                                     int mode, Lum8u* memory, Lum8u* buffer);
/**@}*/

/** @name Layer down */
/**@{*/
/**
 * Smooths the source with the kernel along the rows and then down the columns, in single precision, and takes the
 * result at every rate-th pixel. With the weights w[0] .. w[K - 1], a = K / 2, in each channel:
 *
 *     r(x, y) = sum over j = 0 .. a - 1 of (src(x - a + j, y) + src(x + a - j, y)) * w[j], then + src(x, y) * w[a]
 *     t(x, y) = sum over j = 0 .. a - 1 of (r(x, y - a + j) + r(x, y + a - j)) * w[j], then + r(x, y) * w[a]
 *
 * Outside of the source its pixels reflect about the edge pixel, which is not repeated, back and forth where the
 * source is smaller than the kernel.
 *
 * A rate between 1.99998 and 2.00002 gives dst(x, y) = t(2 * x, 2 * y), at the end of a very long axis t of its last
 * pixel. Any other rate interpolates along the rows and then down the columns. Result i of an axis lies at p = i * rate,
 * and with j = trunc(p), f = p - j it is t[j + 1] * f + (1 - f) * t[j], or t[j] where j is the last element.
 *
 * Integers are rounded once, at the end: to nearest, ties to even, and saturated.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of the source
 * @param srcRoi size of the source region
 * @param dst first pixel of the result, which does not overlap the source
 * @param dstStep bytes between rows of the result
 * @param dstRoi size of the result, exactly that of lumiGetPyramidDownROI()
 * @param state a state of the same element type and channels
 * @retval lumStatusNullPointer src, dst or state is null
 * @retval lumStatusSizeError a width or height below 1 or, in a 64-bit build, above 2147483647
 * @retval lumStatusStepError a step below its row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a step that is not a multiple of the element size
 * @retval lumStatusBadArgument the rate in the state is at or below 1 or above 10
 * @retval lumStatusSizeError dstRoi is not the size below srcRoi
 * @retval lumStatusBadArgument the state is not ready
 * @return lumStatusOk
 */
LUM_API LumStatus lumiPyramidLayerDown_8u_C1R(const Lum8u* src, int srcStep, LumSize srcRoi, Lum8u* dst,
                                              int dstStep, LumSize dstRoi, LumPyramidLayerDownState* state);
LUM_API LumStatus lumiPyramidLayerDown_8u_C3R(const Lum8u* src, int srcStep, LumSize srcRoi, Lum8u* dst,
                                              int dstStep, LumSize dstRoi, LumPyramidLayerDownState* state);
LUM_API LumStatus lumiPyramidLayerDown_16u_C1R(const Lum16u* src, int srcStep, LumSize srcRoi, Lum16u* dst,
                                               int dstStep, LumSize dstRoi, LumPyramidLayerDownState* state);
LUM_API LumStatus lumiPyramidLayerDown_16u_C3R(const Lum16u* src, int srcStep, LumSize srcRoi, Lum16u* dst,
                                               int dstStep, LumSize dstRoi, LumPyramidLayerDownState* state);
LUM_API LumStatus lumiPyramidLayerDown_32f_C1R(const Lum32f* src, int srcStep, LumSize srcRoi, Lum32f* dst,
                                               int dstStep, LumSize dstRoi, LumPyramidLayerDownState* state);
LUM_API LumStatus lumiPyramidLayerDown_32f_C3R(const Lum32f* src, int srcStep, LumSize srcRoi, Lum32f* dst,
                                               int dstStep, LumSize dstRoi, LumPyramidLayerDownState* state);
LUM_API LumStatus lumiPyramidLayerDown_32f_C1R_L(const Lum32f* src, intptr_t srcStep, LumSizeL srcRoi,
                                                 Lum32f* dst, intptr_t dstStep, LumSizeL dstRoi,
                                                 LumPyramidLayerDownState* state);
/**@}*/

/** @name Layer up: sizes */
/**@{*/
/**
 * Bytes of the memory and of the buffer of lumiPyramidLayerUpInit_*(). No block need be aligned.
 *
 * @param srcRoi size of the largest source region
 * @param rate above 1 and up to 10
 * @param kernelSize taps of the kernel, odd, 3 or more
 * @param stateSize receives the bytes of the memory
 * @param bufferSize receives the bytes of the buffer, 8 * max(width, height)
 * @retval lumStatusSizeError width or height below 1 or, in a 64-bit build, above 2147483647
 * @retval lumStatusBadArgument rate at or below 1 or above 10, or kernelSize below 3 or even
 * @retval lumStatusNullPointer stateSize or bufferSize is null
 * @return lumStatusOk
 */
LUM_API LumStatus lumiPyramidLayerUpGetSize_8u_C1R(LumSize srcRoi, Lum32f rate, int kernelSize,
                                                   Lum32s* stateSize, Lum32s* bufferSize);
LUM_API LumStatus lumiPyramidLayerUpGetSize_8u_C3R(LumSize srcRoi, Lum32f rate, int kernelSize,
                                                   Lum32s* stateSize, Lum32s* bufferSize);
LUM_API LumStatus lumiPyramidLayerUpGetSize_16u_C1R(LumSize srcRoi, Lum32f rate, int kernelSize,
                                                    Lum32s* stateSize, Lum32s* bufferSize);
LUM_API LumStatus lumiPyramidLayerUpGetSize_16u_C3R(LumSize srcRoi, Lum32f rate, int kernelSize,
                                                    Lum32s* stateSize, Lum32s* bufferSize);
LUM_API LumStatus lumiPyramidLayerUpGetSize_32f_C1R(LumSize srcRoi, Lum32f rate, int kernelSize,
                                                    Lum32s* stateSize, Lum32s* bufferSize);
LUM_API LumStatus lumiPyramidLayerUpGetSize_32f_C3R(LumSize srcRoi, Lum32f rate, int kernelSize,
                                                    Lum32s* stateSize, Lum32s* bufferSize);
LUM_API LumStatus lumiPyramidLayerUpGetSize_32f_C1R_L(LumSizeL srcRoi, Lum32f rate, int kernelSize,
                                                      Lum32s* stateSize, Lum32s* bufferSize);
/**@}*/

/** @name Layer up: states */
/**@{*/
/**
 * Normalises a kernel and keeps it. The sum is that of a layer-down state, and the half after the middle is replaced by
 * the mirrored half before it; integers and floats alike are divided by the sum in single precision. Integers with a
 * sum of 0 keep their values.
 *
 * @param state receives the pointer to the state in memory
 * @param srcRoi as given to the size query
 * @param rate as given to the size query
 * @param kernel kernelSize taps, the same in both directions
 * @param kernelSize as given to the size query
 * @param mode 2
 * @param memory of the size that the query reports as stateSize
 * @param buffer of the size that the query reports as bufferSize; left untouched
 * @retval lumStatusSizeError width or height below 1 or, in a 64-bit build, above 2147483647
 * @retval lumStatusBadArgument rate at or below 1 or above 10, or kernelSize below 3 or even
 * @retval lumStatusNullPointer state, kernel, memory or buffer is null
 * @retval lumStatusBadArgument mode is not 2
 * @retval lumStatusKernelNotSymmetric two taps at the same distance from the middle differ, floats by more than the
 *         smallest normal one; the state is valid
 * @return lumStatusOk
 */
LUM_API LumStatus lumiPyramidLayerUpInit_8u_C1R(LumPyramidLayerUpState** state, LumSize srcRoi, Lum32f rate,
                                                const Lum16s* kernel, int kernelSize, int mode, Lum8u* memory,
                                                Lum8u* buffer);
LUM_API LumStatus lumiPyramidLayerUpInit_8u_C3R(LumPyramidLayerUpState** state, LumSize srcRoi, Lum32f rate,
                                                const Lum16s* kernel, int kernelSize, int mode, Lum8u* memory,
                                                Lum8u* buffer);
LUM_API LumStatus lumiPyramidLayerUpInit_16u_C1R(LumPyramidLayerUpState** state, LumSize srcRoi, Lum32f rate,
                                                 const Lum16s* kernel, int kernelSize, int mode,
                                                 Lum8u* memory, Lum8u* buffer);
LUM_API LumStatus lumiPyramidLayerUpInit_16u_C3R(LumPyramidLayerUpState** state, LumSize srcRoi, Lum32f rate,
                                                 const Lum16s* kernel, int kernelSize, int mode,
                                                 Lum8u* memory, Lum8u* buffer);
LUM_API LumStatus lumiPyramidLayerUpInit_32f_C1R(LumPyramidLayerUpState** state, LumSize srcRoi, Lum32f rate,
                                                 const Lum32f* kernel, int kernelSize, int mode,
                                                 Lum8u* memory, Lum8u* buffer);
LUM_API LumStatus lumiPyramidLayerUpInit_32f_C3R(LumPyramidLayerUpState** state, LumSize srcRoi, Lum32f rate,
                                                 const Lum32f* kernel, int kernelSize, int mode,
                                                 Lum8u* memory, Lum8u* buffer);
LUM_API LumStatus lumiPyramidLayerUpInit_32f_C1R_L(LumPyramidLayerUpState** state, LumSizeL srcRoi,
                                                   Lum32f rate, const Lum32f* kernel, int kernelSize,
                                                   int mode, Lum8u* memory, Lum8u* buffer);
/**@}*/

/** @name Layer up */
/**@{*/
/**
 * Expands the source to the size of the result by linear interpolation, along the rows and then down the columns, and
 * smooths it with the kernel as the layer-down operator does, in single precision throughout. Result i of an axis lies
 * at p = i / rate, and with n = trunc(p + 100) - 100, f = p - n it is s[n] where f is within 1e-5 of 0, and otherwise
 * (1 - f) * s[n] + f * s[n + 1]; the pixel after the last one reflects.
 *
 * A rate of exactly 2 with a kernel that is 1 4 6 4 1 divided by its sum has along each axis, rows first,
 *
 *     even results   (6 * s[i] + s[i - 1] + s[i + 1]) * 0.125    at both ends (6 * s[i] + 2 * n) * 0.125
 *     odd results    (s[i] + s[i + 1]) * 4 * 0.125               at the far end (s[i] + n) * 4 * 0.125
 *
 * where n is the only neighbour, or the pixel itself where it is the only one.
 *
 * Integers are rounded once, at the end: to nearest, ties to even, and saturated.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of the source
 * @param srcRoi size of the source region
 * @param dst first pixel of the result, which does not overlap the source
 * @param dstStep bytes between rows of the result
 * @param dstRoi size of the result, within the range of lumiGetPyramidUpROI() in both directions
 * @param state a state of the same element type and channels
 * @retval lumStatusNullPointer src, dst or state is null
 * @retval lumStatusSizeError a width or height below 1 or, in a 64-bit build, above 2147483647
 * @retval lumStatusStepError a step below its row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a step that is not a multiple of the element size
 * @retval lumStatusBadArgument the rate in the state is at or below 1 or above 10
 * @retval lumStatusSizeError dstRoi is outside of the range
 * @retval lumStatusBadArgument the state is not ready
 * @return lumStatusOk
 */
LUM_API LumStatus lumiPyramidLayerUp_8u_C1R(const Lum8u* src, int srcStep, LumSize srcRoi, Lum8u* dst,
                                            int dstStep, LumSize dstRoi, LumPyramidLayerUpState* state);
LUM_API LumStatus lumiPyramidLayerUp_8u_C3R(const Lum8u* src, int srcStep, LumSize srcRoi, Lum8u* dst,
                                            int dstStep, LumSize dstRoi, LumPyramidLayerUpState* state);
LUM_API LumStatus lumiPyramidLayerUp_16u_C1R(const Lum16u* src, int srcStep, LumSize srcRoi, Lum16u* dst,
                                             int dstStep, LumSize dstRoi, LumPyramidLayerUpState* state);
LUM_API LumStatus lumiPyramidLayerUp_16u_C3R(const Lum16u* src, int srcStep, LumSize srcRoi, Lum16u* dst,
                                             int dstStep, LumSize dstRoi, LumPyramidLayerUpState* state);
LUM_API LumStatus lumiPyramidLayerUp_32f_C1R(const Lum32f* src, int srcStep, LumSize srcRoi, Lum32f* dst,
                                             int dstStep, LumSize dstRoi, LumPyramidLayerUpState* state);
LUM_API LumStatus lumiPyramidLayerUp_32f_C3R(const Lum32f* src, int srcStep, LumSize srcRoi, Lum32f* dst,
                                             int dstStep, LumSize dstRoi, LumPyramidLayerUpState* state);
LUM_API LumStatus lumiPyramidLayerUp_32f_C1R_L(const Lum32f* src, intptr_t srcStep, LumSizeL srcRoi,
                                               Lum32f* dst, intptr_t dstStep, LumSizeL dstRoi,
                                               LumPyramidLayerUpState* state);
/**@}*/

/**
 * @par Layout
 * A layer-down state lies at the first address of its memory that is aligned for a pointer. Its fields, in order: work
 * (pointer), extended (pointer), kernelCopy (pointer to the K normalised taps: Lum32s in units of 1 / 4096, or Lum32f),
 * sizes (pointer to the sizes of the levels from srcRoi down to 1 x 1, or null where K is not below both width and
 * height), sizeCount (Lum32s, entries of that table), kernelSize (Lum32s), dataType (Lum32s), width and height (Lum32s,
 * of srcRoi), mode (Lum32s, 2), rate (Lum32f), ready (Lum32s, 1), and a marker (Lum32s): 0, 1 for a rate between 1.99998
 * and 2.00002, 11 if the kernel then has five taps and starts 1, 4, 6.
 *
 * @par Sizes
 * stateSize of lumiPyramidLayerDownGetSize_16u_C1R() in 32-bit builds, with W and H the width and height,
 * K = kernelSize, a = K / 2 in whole numbers, n the steps of lumiGetPyramidDownROI() that lead to 1 x 1:
 *
 *     K below W and H   P = max(W, 2 * K) rounded up to a multiple of 4, Q = max(H, 2 * K),
 *                       ((K + a + P) * 4 + 110) * K + 4 * P * Q + 4 * max(P, Q) + 96 * a + 8 * n + 352
 *     otherwise         V = W rounded up to a multiple of 8,
 *                       ((K + H) * (K + V) + max(V, H)) * 4 + (K + (a + K) * 2 * K) * 2 + 248 + (4 * V + 52) * K
 *
 * The other members report what they use: a ring of K rows of results and a few rows more. A size above 2147483647 is
 * reported as 2147483647.
 */

/** @} */

#ifdef __cplusplus
}
#endif

#endif
