/**
 * @file
 * Patches of an image at fractional positions, by bilinear interpolation.
 */
#ifndef LUMCV_SUBPIX_H
#define LUMCV_SUBPIX_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup subpix Subpixel sampling
 * Patches of an image at fractional positions, by bilinear interpolation.
 *
 * @code
 * Lum8u patch[31 * 31];
 * LumPoint first, last;
 * lumiCopySubpixIntersect_8u_C1R(image, step, size, patch, 31, (LumSize){31, 31}, (LumPoint32f){12.25F, 7.5F},
 *                                &first, &last);
 * int columnsInside = last.x - first.x + 1;
 * @endcode
 * @{
 */

/** @name Patch inside the source */
/**@{*/
/**
 * With fx and fy the fractions of dx and dy above the next lower integer (-0.25 has the fraction 0.75),
 *
 *     dst(x, y) = w00 src(x, y) + w01 src(x + 1, y) + w10 src(x, y + 1) + w11 src(x + 1, y + 1)
 *
 * The source holds one column and one row more than the patch, which are read whatever the fractions are.
 *
 * 16u and 32f results: w00 = (1 - fx)(1 - fy), w01 = fx (1 - fy), w10 = (1 - fx) fy, w11 = fx fy; weights, products and
 * their sum from left to right in single precision. For 32f results fx is at least 1e-6 and fy at least 1e-9 (1e-6 where
 * the source is 32f too). 16u rounds to nearest, ties to even, and saturates.
 *
 * 8u results: with ax = trunc(16384 fx + 0.5), bx = 16384 - ax and the same for y, w00 = (bx by + 16384) >> 14 and so on.
 * Where the four sum to more than 16384, the excess is taken from the largest; of equal ones w00 comes first, then w10,
 * w01, w11. The result is (sum + 8192) >> 14.
 *
 * dst must not overlap src.
 *
 * @param src pixel of the source below or at the position of the patch's top-left pixel
 * @param srcStep bytes between rows of `src`
 * @param dst first pixel of the patch
 * @param dstStep bytes between rows of `dst`
 * @param roiSize size of the patch in pixels
 * @param dx horizontal position; only its fraction counts
 * @param dy vertical position; only its fraction counts
 * @retval lumStatusNullPointer src or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the bytes of `width` elements
 * @retval lumStatusStepAlignmentError a step that is not a multiple of its element size
 * @return lumStatusOk
 */
LUM_API LumStatus lumiCopySubpix_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                        LumSize roiSize, Lum32f dx, Lum32f dy);
LUM_API LumStatus lumiCopySubpix_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                         LumSize roiSize, Lum32f dx, Lum32f dy);
LUM_API LumStatus lumiCopySubpix_8u32f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                           LumSize roiSize, Lum32f dx, Lum32f dy);
LUM_API LumStatus lumiCopySubpix_16u32f_C1R(const Lum16u* src, int srcStep, Lum32f* dst, int dstStep,
                                            LumSize roiSize, Lum32f dx, Lum32f dy);
LUM_API LumStatus lumiCopySubpix_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                         LumSize roiSize, Lum32f dx, Lum32f dy);
/**@}*/

/**
 * As lumiCopySubpix_8u_C1R(), with more bits: (sum + (1 << (scaleFactor + 13))) >> (scaleFactor + 14), saturated to 16
 * bits. The shifts are not checked; they are taken modulo 32.
 *
 * @param src pixel of the source below or at the position of the patch's top-left pixel
 * @param srcStep bytes between rows of `src`
 * @param dst first pixel of the patch
 * @param dstStep bytes between rows of `dst`
 * @param roiSize size of the patch in pixels
 * @param dx horizontal position; only its fraction counts
 * @param dy vertical position; only its fraction counts
 * @param scaleFactor the result is multiplied by 2 to the power of -scaleFactor, from -13 to 17
 * @retval lumStatusNullPointer src or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the bytes of `width` elements
 * @retval lumStatusStepAlignmentError dstStep is not a multiple of 2
 * @return lumStatusOk
 */
LUM_API LumStatus lumiCopySubpix_8u16u_C1R_Sfs(const Lum8u* src, int srcStep, Lum16u* dst, int dstStep,
                                               LumSize roiSize, Lum32f dx, Lum32f dy, Lum32s scaleFactor);

/** @name Patch around a point, cut at the source's edges */
/**@{*/
/**
 * With (W, H) the source's size and (w, h) the patch's, in single precision:
 *
 *     cx = point.x - (w - 1) * 0.5      the patch's left column
 *     ix = trunc(w + cx) - w            the floor of cx, unless the patch lies further left than it is wide
 *     fx = cx - ix
 *
 * and the same for y. Positions outside the source take its nearest pixel, so that interpolation is along one direction
 * where the other one has left the source, with the weights 1 - fx and fx, or (16384 - ax) / 16384 and ax / 16384; in the
 * corners the pixel itself is taken, times (1 - fx) + fx in single precision. The arithmetic is that of the patch inside
 * the source, with no lower limit of the fractions.
 *
 * Columns pMin.x to pMax.x and rows pMin.y to pMax.y of the patch have all four of their pixels in the source:
 *
 *     pMin.x = min(max(-ix, 0), w)      0 where ix >= W
 *     pMax.x = w - 1 - max(ix + w - 1 - (W - 2), 0)      -1 where ix >= W or ix <= -w
 *
 * Where pMax lies below pMin in either direction no pixel is. dst must not overlap src.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param srcRoiSize size of the source region in pixels
 * @param dst first pixel of the patch
 * @param dstStep bytes between rows of `dst`
 * @param dstRoiSize size of the patch in pixels
 * @param point the centre of the patch in the source's coordinates; one that is not a number lies at the top left
 * @param pMin receives the first column and row of the part of the patch that is fully inside
 * @param pMax receives the last column and row of that part
 * @retval lumStatusNullPointer src, dst, pMin or pMax is null
 * @retval lumStatusSizeError a width or height below 1
 * @retval lumStatusStepError srcStep or dstStep below its row's bytes
 * @retval lumStatusStepAlignmentError a step that is not a multiple of its element size
 * @return lumStatusOk
 */
LUM_API LumStatus lumiCopySubpixIntersect_8u_C1R(const Lum8u* src, int srcStep, LumSize srcRoiSize,
                                                 Lum8u* dst, int dstStep, LumSize dstRoiSize,
                                                 LumPoint32f point, LumPoint* pMin, LumPoint* pMax);
LUM_API LumStatus lumiCopySubpixIntersect_16u_C1R(const Lum16u* src, int srcStep, LumSize srcRoiSize,
                                                  Lum16u* dst, int dstStep, LumSize dstRoiSize,
                                                  LumPoint32f point, LumPoint* pMin, LumPoint* pMax);
LUM_API LumStatus lumiCopySubpixIntersect_8u32f_C1R(const Lum8u* src, int srcStep, LumSize srcRoiSize,
                                                    Lum32f* dst, int dstStep, LumSize dstRoiSize,
                                                    LumPoint32f point, LumPoint* pMin, LumPoint* pMax);
LUM_API LumStatus lumiCopySubpixIntersect_16u32f_C1R(const Lum16u* src, int srcStep, LumSize srcRoiSize,
                                                     Lum32f* dst, int dstStep, LumSize dstRoiSize,
                                                     LumPoint32f point, LumPoint* pMin, LumPoint* pMax);
LUM_API LumStatus lumiCopySubpixIntersect_32f_C1R(const Lum32f* src, int srcStep, LumSize srcRoiSize,
                                                  Lum32f* dst, int dstStep, LumSize dstRoiSize,
                                                  LumPoint32f point, LumPoint* pMin, LumPoint* pMax);
/**@}*/

/**
 * As lumiCopySubpixIntersect_8u_C1R(), with the result of lumiCopySubpix_8u16u_C1R_Sfs(), at the edges too.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param srcRoiSize size of the source region in pixels
 * @param dst first pixel of the patch
 * @param dstStep bytes between rows of `dst`
 * @param dstRoiSize size of the patch in pixels
 * @param point the centre of the patch in the source's coordinates; one that is not a number lies at the top left
 * @param pMin receives the first column and row of the part of the patch that is fully inside
 * @param pMax receives the last column and row of that part
 * @param scaleFactor the result is multiplied by 2 to the power of -scaleFactor, from -13 to 17
 * @retval lumStatusNullPointer src, dst, pMin or pMax is null
 * @retval lumStatusSizeError a width or height below 1
 * @retval lumStatusStepError srcStep or dstStep below its row's bytes
 * @retval lumStatusStepAlignmentError dstStep is not a multiple of 2
 * @return lumStatusOk
 */
LUM_API LumStatus lumiCopySubpixIntersect_8u16u_C1R_Sfs(const Lum8u* src, int srcStep, LumSize srcRoiSize,
                                                        Lum16u* dst, int dstStep, LumSize dstRoiSize,
                                                        LumPoint32f point, LumPoint* pMin, LumPoint* pMax,
                                                        Lum32s scaleFactor);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
