/**
 * @file
 * Peaks of score images, and the suppression of features along lines.
 */
#ifndef LUMCV_PEAK_H
#define LUMCV_PEAK_H

#include "border.h"
#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup peak Peaks and line suppression
 * Lists the local extremes of a score image, and clears features that lie along lines.
 *
 * @code
 * Lum32s bytes;
 * lumiFindPeaks3x3GetBufferSize_32f_C1R(size.width, &bytes);
 * Lum8u* buffer = malloc(bytes);
 * LumPoint corners[100];
 * int count;
 * lumiFindPeaks3x3_32f_C1R(response, step, size, 0.5f, corners, 100, &count, lumSpatialNormInf, 1, buffer);
 * @endcode
 * @{
 */

/** @name Peaks: size of the work buffer */
/**@{*/
/**
 * @param width of the region in pixels
 * @param size receives the bytes, ((5 + width) >> 2 << 7) | 32; written on success only
 * @retval lumStatusNullPointer size is null
 * @retval lumStatusSizeError width below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFindPeaks3x3GetBufferSize_32f_C1R(int width, Lum32s* size);
LUM_API LumStatus lumiFindPeaks3x3GetBufferSize_32s_C1R(int width, Lum32s* size);
/**@}*/

/** @name Peaks */
/**@{*/
/**
 * Lists the pixels v with |v| > threshold that equal the largest of themselves and their neighbours if v > 0, the
 * smallest if v <= 0, row by row and from left to right. Every pixel of a plateau is one. In 32f two values are equal
 * where their difference is not above 1.1754944e-38, so an infinite value is no peak, and a neighbour that is a NaN does
 * not count. The search ends when the list is full; the status is lumStatusOk all the same.
 *
 * @param src first pixel of the scores
 * @param srcStep bytes between rows
 * @param roiSize size of the region in pixels
 * @param threshold magnitudes not above it are no peaks
 * @param peaks receives the places; room for maxPeakCount
 * @param maxPeakCount 1 or above
 * @param peakCount receives the number of places
 * @param norm #lumSpatialNormInf: eight neighbours, #lumSpatialNormL1: four
 * @param border columns and rows left out at each side: 1 to half the smaller side
 * @param buffer work memory of the size that the query reports
 * @retval lumStatusNullPointer src, peaks, peakCount or buffer is null
 * @retval lumStatusSizeError width, height, maxPeakCount or border below 1
 * @retval lumStatusSizeError border above half the width or half the height, in single precision
 * @retval lumStatusStepError srcStep / 4 below the width
 * @retval lumStatusStepAlignmentError srcStep is not a multiple of 4
 * @retval lumStatusBadArgument norm is none of those above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFindPeaks3x3_32f_C1R(const Lum32f* src, int srcStep, LumSize roiSize, Lum32f threshold,
                                           LumPoint* peaks, int maxPeakCount, int* peakCount,
                                           LumSpatialNorm norm, int border, Lum8u* buffer);
LUM_API LumStatus lumiFindPeaks3x3_32s_C1R(const Lum32s* src, int srcStep, LumSize roiSize, Lum32s threshold,
                                           LumPoint* peaks, int maxPeakCount, int* peakCount,
                                           LumSpatialNorm norm, int border, Lum8u* buffer);
/**@}*/

/**
 * Clears features that lie along lines of the source. With a, b and c the exact sums of dx * dx, dx * dy and dy * dy
 * over the window, as the Harris response has it, dst is the feature where in double precision
 *
 *     (a * c - b * b) * (255 + threshold)^2 >= 255 * threshold * (a + c)^2
 *
 * that is, where the smaller eigenvalue is at least threshold / 255 of the larger, and 0 elsewhere. A threshold of 0
 * keeps all, and so does a flat window.
 *
 * @param src first pixel of the source region
 * @param feature first pixel of the features
 * @param dst first pixel of the result; it may overlap neither the source nor the features
 * @param srcStep bytes between rows of `src`; only negative ones are refused
 * @param featureStep bytes between rows of `feature`; only negative ones are refused
 * @param dstStep bytes between rows of `dst`; only negative ones are refused
 * @param roiSize size of the region in pixels
 * @param filter derivative: 2: Sobel, 5: Scharr, 8: central differences
 * @param maskSize #lumMask3x3; with filter 2 also #lumMask5x5
 * @param avgWindow side of the window: 1 or above
 * @param threshold least share of the eigenvalues, in parts of 255
 * @param border #lumBorderInMemory, or #lumBorderReplicate or #lumBorderConstant with any flags
 * @param borderValue read for #lumBorderConstant
 * @param buffer work memory of the size that lumiLineSuppressionGetBufferSize() reports for #lumType8u; overwritten
 * @retval lumStatusNullPointer src, feature, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusAlgorithmError filter is none of those above
 * @retval lumStatusMaskSizeError maskSize is none of those of the filter
 * @retval lumStatusBorderError border is none of those above
 * @retval lumStatusSizeError avgWindow below 1
 * @retval lumStatusStepError a step below 0
 * @retval lumStatusInPlaceNotSupported dst is feature
 * @return lumStatusOk
 */
LUM_API LumStatus lumiLineSuppression_8u_C1R(const Lum8u* src, int srcStep, const Lum8u* feature,
                                             int featureStep, Lum8u* dst, int dstStep, LumSize roiSize,
                                             int filter, LumMaskSize maskSize, int avgWindow, Lum8u threshold,
                                             LumBorderType border, Lum8u borderValue, Lum8u* buffer);

/**
 * Size of the work buffer of lumiLineSuppression_8u_C1R(): that of lumiHarrisCornerGetBufferSize() for the same
 * arguments.
 *
 * @param roiSize size of the region in pixels
 * @param filterMask #lumMask3x3 or #lumMask5x5
 * @param avgWindow side of the window: 1 or above
 * @param type #lumType8u or #lumType32f
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
LUM_API LumStatus lumiLineSuppressionGetBufferSize(LumSize roiSize, LumMaskSize filterMask, int avgWindow,
                                                   LumDataType type, int numChannels, Lum32s* bufferSize);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
