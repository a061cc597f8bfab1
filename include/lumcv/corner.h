/**
 * @file
 * Corner measures from the covariance of gradients.
 */
#ifndef LUMCV_CORNER_H
#define LUMCV_CORNER_H

#include "border.h"
#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup corner Corner measures
 * The smaller eigenvalue, both eigenvalues with their vectors, and the Harris response of each pixel.
 *
 * @code
 * Lum32s bytes;
 * lumiHarrisCornerGetBufferSize(size, lumMask3x3, 3, lumType8u, 1, &bytes);
 * Lum8u* buffer = malloc(bytes);
 * lumiHarrisCorner_8u32f_C1R(image, step, response, responseStep, size, 2, lumMask3x3, 3, 0.04f, 1.0f,
 *                            lumBorderReplicate, 0, buffer);
 * // response: large and positive at corners, negative along edges, small on flat ground
 * @endcode
 *
 * All measures begin alike. Each pixel has derivatives dx and dy: of bytes exact, of floats with the columns first, in
 * single precision. Masks and their stages over the values v0, v1, ... under the taps:
 *
 *     Sobel 3     (v0 + v2) + 2 * v1                  across  v2 - v0
 *     Sobel 5     ((v0 + v4) + 4 * (v1 + v3)) + 6 * v2  across  (v4 - v0) + 2 * (v3 - v1)
 *     Scharr 3    3 * (v0 + v2) + 10 * v1             across  v2 - v0
 *     central 3   v1                                  across  v2 - v0
 *
 * a, b and c are the means of dx * dx, dx * dy and dy * dy over a square window: products in single precision, summed in
 * order along the row and then down the columns, times 1 / (number of pixels).
 * @{
 */

/** @name Eigenvalues and eigenvectors: size of the work buffer */
/**@{*/
/**
 * One size for the smaller eigenvalue and for eigenvalues with vectors.
 *
 * @param roiSize size of the region in pixels
 * @param apertureSize 3 or 5
 * @param blockSize 3 or 5
 * @param bufferSize receives the bytes; written on success only
 * @retval lumStatusNullPointer bufferSize is null
 * @retval lumStatusSizeError width or height below 1, apertureSize or blockSize none of those above
 * @return lumStatusOk
 *
 * @par Layout
 * With w the width rounded up to a multiple of 16 and h the height, at most 2147483647: 20 * h * w + M + 224, where M is
 * the larger of what a run takes and the size of the low-pass filter of 32f and the block's mask.
 */
LUM_API LumStatus lumiEigenValsVecsGetBufferSize_8u32f_C1R(LumSize roiSize, int apertureSize, int blockSize,
                                                           Lum32s* bufferSize);
LUM_API LumStatus lumiEigenValsVecsGetBufferSize_32f_C1R(LumSize roiSize, int apertureSize, int blockSize,
                                                         Lum32s* bufferSize);
LUM_API LumStatus lumiMinEigenValGetBufferSize_8u32f_C1R(LumSize roiSize, int apertureSize, int blockSize,
                                                         Lum32s* bufferSize);
LUM_API LumStatus lumiMinEigenValGetBufferSize_32f_C1R(LumSize roiSize, int apertureSize, int blockSize,
                                                       Lum32s* bufferSize);
/**@}*/

/** @name Smaller eigenvalue */
/**@{*/
/**
 *     dst = ((a + c) - sqrt((a - c) * (a - c) + 4 * (b * b))) * (s * 0.5)
 *
 * in single precision, with s = 1 / 4080 for apertureSize 3 and 1 / 65280 for 5, times 0.6125 for kernelKind 1. The
 * forms without Border replicate the edge. With Border, the border is that of the derivatives, and a flag of either stage
 * counts; the products outside the region are those of its kind alone, with 0 for #lumBorderConstant. The kind
 * #lumBorderDefaultValue takes 0 for pixels and products. (J. Shi, C. Tomasi, "Good features to track", IEEE Conference
 * on Computer Vision and Pattern Recognition, 1994.)
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result; it may not overlap the source
 * @param roiSize size of the region in pixels
 * @param kernelKind 0 or 2: Sobel, left minus right along x; 1: Scharr, right minus left; all below minus above along y
 * @param apertureSize 3 or 5; with kernelKind 1 3 only
 * @param blockSize side of the window: 3 or 5
 * @param buffer work memory of the size that the query of the same source type reports; overwritten
 * @retval lumStatusNullPointer src, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the row's bytes, or dstStep below 4 * width
 * @retval lumStatusStepAlignmentError a step of 32f elements is not a multiple of 4
 * @retval lumStatusBadArgument kernelKind is none of those above
 * @retval lumStatusSizeError apertureSize or blockSize is none of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMinEigenVal_8u32f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                            LumSize roiSize, int kernelKind, int apertureSize, int blockSize,
                                            Lum8u* buffer);
LUM_API LumStatus lumiMinEigenVal_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                          LumSize roiSize, int kernelKind, int apertureSize, int blockSize,
                                          Lum8u* buffer);
/**@}*/

/** @name Smaller eigenvalue, with a border */
/**@{*/
/**
 * As lumiMinEigenVal_8u32f_C1R(), with `border` and `borderValue`.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result; it may not overlap the source
 * @param roiSize size of the region in pixels
 * @param kernelKind 0 or 2: Sobel, left minus right along x; 1: Scharr, right minus left; all below minus above along y
 * @param apertureSize 3 or 5; with kernelKind 1 3 only
 * @param blockSize side of the window: 3 or 5
 * @param border #lumBorderReplicate, #lumBorderMirror, #lumBorderDefaultValue or #lumBorderConstant with any flags, or
 *        any other kind with all four of #lumBorderInMemory, which is then taken as #lumBorderMirror
 * @param borderValue read for #lumBorderConstant
 * @param buffer work memory of the size that the query of the same source type reports; overwritten
 * @retval lumStatusNullPointer src, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the row's bytes, or dstStep below 4 * width
 * @retval lumStatusStepAlignmentError a step of 32f elements is not a multiple of 4
 * @retval lumStatusBadArgument kernelKind is none of those above
 * @retval lumStatusSizeError apertureSize or blockSize is none of those above
 * @retval lumStatusBorderError border is none of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMinEigenValBorder_8u32f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                                  LumSize roiSize, int kernelKind, int apertureSize,
                                                  int blockSize, LumBorderType border, Lum8u borderValue,
                                                  Lum8u* buffer);
LUM_API LumStatus lumiMinEigenValBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                LumSize roiSize, int kernelKind, int apertureSize,
                                                int blockSize, LumBorderType border, Lum32f borderValue,
                                                Lum8u* buffer);
/**@}*/

/** @name Eigenvalues and eigenvectors */
/**@{*/
/**
 * Six floats per pixel: the larger eigenvalue l1, the smaller l2, and their vectors (x1, y1) and (x2, y2), which point
 * along the image's own axes. In single precision, with a, b and c times s of the smaller eigenvalue's formula, sign = 1
 * for kernelKind 1 and -1 otherwise:
 *
 *     t = a + c, d = a - c, r = sqrt(4 * b * b + d * d), l1 = (t + r) * 0.5, l2 = (t - r) * 0.5
 *     e = max(a, c) * 0.001
 *     e > min(a, c) or e > a * c - b * b    all six are 0
 *     otherwise e > |b|                     l1, l2, 0, 1, 1, 0
 *     otherwise                             l1, l2, p * n1, q1 * n1, p * n2, q2 * n2
 *
 * where p = b * sign, q1 = l1 - a, q2 = l2 - a and n = 1 / (sqrt(q * q + p * p) + 1.1920929e-07) for each q.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result, six elements per pixel; it may not overlap the source
 * @param roiSize size of the region in pixels
 * @param kernelKind 0 or 2: Sobel, left minus right along x; 1: Scharr, right minus left; all below minus above along y
 * @param apertureSize 3 or 5; with kernelKind 1 3 only
 * @param blockSize side of the window: 3 or 5
 * @param buffer work memory of the size that the query of the same source type reports; overwritten
 * @retval lumStatusNullPointer src, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the row's bytes, or dstStep below 4 * width, though a row takes 24 * width
 * @retval lumStatusStepAlignmentError a step of 32f elements is not a multiple of 4
 * @retval lumStatusBadArgument kernelKind is none of those above
 * @retval lumStatusSizeError apertureSize or blockSize is none of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiEigenValsVecs_8u32f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                              LumSize roiSize, int kernelKind, int apertureSize,
                                              int blockSize, Lum8u* buffer);
LUM_API LumStatus lumiEigenValsVecs_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                            LumSize roiSize, int kernelKind, int apertureSize, int blockSize,
                                            Lum8u* buffer);
/**@}*/

/** @name Eigenvalues and eigenvectors, with a border */
/**@{*/
/**
 * As lumiEigenValsVecs_8u32f_C1R(), with `border` and `borderValue`.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result, six elements per pixel; it may not overlap the source
 * @param roiSize size of the region in pixels
 * @param kernelKind 0 or 2: Sobel, left minus right along x; 1: Scharr, right minus left; all below minus above along y
 * @param apertureSize 3 or 5; with kernelKind 1 3 only
 * @param blockSize side of the window: 3 or 5
 * @param border as for the smaller eigenvalue
 * @param borderValue read for #lumBorderConstant
 * @param buffer work memory of the size that the query of the same source type reports; overwritten
 * @retval lumStatusNullPointer src, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the row's bytes, or dstStep below 4 * width, though a row takes 24 * width
 * @retval lumStatusStepAlignmentError a step of 32f elements is not a multiple of 4
 * @retval lumStatusBadArgument kernelKind is none of those above
 * @retval lumStatusSizeError apertureSize or blockSize is none of those above
 * @retval lumStatusBorderError border is none of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiEigenValsVecsBorder_8u32f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                                    LumSize roiSize, int kernelKind, int apertureSize,
                                                    int blockSize, LumBorderType border, Lum8u borderValue,
                                                    Lum8u* buffer);
LUM_API LumStatus lumiEigenValsVecsBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                  LumSize roiSize, int kernelKind, int apertureSize,
                                                  int blockSize, LumBorderType border, Lum32f borderValue,
                                                  Lum8u* buffer);
/**@}*/

/** @name Harris response */
/**@{*/
/**
 *     dst = ((a * c - b * b) - (a + c) * (k * (a + c))) * f
 *
 * in single precision, with f = avgWindow^4 * scale, a product in double precision rounded to single: the response of the
 * sums instead of the means, times scale. Derivatives and products outside the region are formed of what lies outside by
 * the border. An even window reaches further up and to the left: one of 4 two pixels above and left, one below and right.
 * (C. Harris, M. Stephens, "A combined corner and edge detector", 4th Alvey Vision Conference, 1988.)
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`; only negative ones are refused
 * @param dstStep bytes between rows of `dst`; only negative ones are refused
 * @param dst first pixel of the result; it may not overlap the source
 * @param roiSize size of the region in pixels
 * @param filterKind 2: Sobel, 5: Scharr, 8: central differences
 * @param filterMask #lumMask3x3; with filterKind 2 also #lumMask5x5
 * @param avgWindow side of the window: 1 or above
 * @param k usually 0.04 to 0.06
 * @param scale factor of the response
 * @param border #lumBorderInMemory, or #lumBorderReplicate, #lumBorderMirror or #lumBorderConstant with any flags
 * @param borderValue read for #lumBorderConstant
 * @param buffer work memory of the size that lumiHarrisCornerGetBufferSize() reports; overwritten
 * @retval lumStatusNullPointer src, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepAlignmentError 32f: a step that is not a multiple of 4
 * @retval lumStatusAlgorithmError filterKind is none of those above
 * @retval lumStatusMaskSizeError filterMask is none of those of filterKind
 * @retval lumStatusBorderError border is none of those above
 * @retval lumStatusSizeError avgWindow below 1
 * @retval lumStatusStepError a step below 0
 * @retval lumStatusInPlaceNotSupported dst is src
 * @return lumStatusOk
 */
LUM_API LumStatus lumiHarrisCorner_8u32f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                             LumSize roiSize, int filterKind, LumMaskSize filterMask,
                                             int avgWindow, Lum32f k, Lum32f scale, LumBorderType border,
                                             Lum8u borderValue, Lum8u* buffer);
LUM_API LumStatus lumiHarrisCorner_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                           LumSize roiSize, int filterKind, LumMaskSize filterMask,
                                           int avgWindow, Lum32f k, Lum32f scale, LumBorderType border,
                                           Lum32f borderValue, Lum8u* buffer);
/**@}*/

/**
 * Size of the work buffer of the Harris response: a ring of avgWindow rows of three sums, and the rows of its stages; at
 * most 2147483647.
 *
 * @param roiSize size of the region in pixels
 * @param filterMask #lumMask3x3 or #lumMask5x5
 * @param avgWindow side of the window: 1 or above
 * @param type of the source: #lumType8u or #lumType32f
 * @param numChannels 1
 * @param bufferSize receives the bytes; written on success only
 * @retval lumStatusNullPointer bufferSize is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusMaskSizeError filterMask is none of those above
 * @retval lumStatusDataTypeError type is none of those above
 * @retval lumStatusCountError numChannels is not 1
 * @retval lumStatusSizeError avgWindow below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiHarrisCornerGetBufferSize(LumSize roiSize, LumMaskSize filterMask, int avgWindow,
                                                LumDataType type, int numChannels, Lum32s* bufferSize);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
