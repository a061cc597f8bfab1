/**
 * @file
 * Straight lines and segments in binary images.
 */
#ifndef LUMCV_HOUGH_H
#define LUMCV_HOUGH_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup hough Hough lines
 * Straight lines and segments in binary images.
 *
 * @code
 * LumPoint32f delta = {1, 3.14159F / 180};
 * lumiHoughLineGetSize_8u_C1R(size, delta, 50, &bytes);
 * lumiHoughLine_8u32f_C1R(edges, edgesStep, size, delta, 200, lines, 50, &lineCount, buffer);
 * for (int i = 0; i < lineCount; ++i)
 *     printf("%g pixels from the first pixel, the normal at %g radians\n", lines[i].x, lines[i].y);
 * @endcode
 *
 * A line is the set of points with x cos(theta) + y sin(theta) = rho. `delta` is the step of the accumulator: x in
 * rho, in pixels, y in theta, in radians. With PI the single-precision 3.14159:
 *
 * - rhoCount = (2 (width + height) + 1) / delta.x, one single-precision division, truncated
 * - thetaCount = PI / delta.y in double precision, truncated, plus 1
 * - halfRho = (rhoCount - 1) / 2, truncated
 *
 * R. O. Duda, P. E. Hart: Use of the Hough transformation to detect lines and curves in pictures (CACM 15, 1972);
 * segments: J. Matas, C. Galambos, J. Kittler: Robust detection of lines using the progressive probabilistic Hough
 * transform (CVIU 78, 2000).
 * @{
 */

/**
 * Bytes of the work buffer of lumiHoughLine_8u32f_C1R() and lumiHoughLine_Region_8u32f_C1R():
 * 16 rhoCount + 16 maxLineCount + 256 + 8 thetaCount + (4 width + 48) height, in wrapping 32-bit arithmetic.
 *
 * @param roiSize size of the region in pixels
 * @param delta steps of rho and theta
 * @param maxLineCount lines that the list is to hold
 * @param size receives the bytes
 * @retval lumStatusNullPointer size is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusBadArgument a step not above 0
 * @retval lumStatusBufferTooLarge warning: the need, in double precision, exceeds 2147483647 bytes; the size that was
 *         written is not to be used. The need is 4 (2 thetaCount + rhoCount + 4) + height (4 (width + 8) + 16) + 96 +
 *         16 maxLineCount + 3 (4 (rhoCount + 4) + 32).
 * @return lumStatusOk
 */
LUM_API LumStatus lumiHoughLineGetSize_8u_C1R(LumSize roiSize, LumPoint32f delta, int maxLineCount,
                                              Lum32s* size);

/**
 * Lines of a binary image. All pixels that are not 0 vote, and the strongest peaks are the lines.
 *
 * Angles are single-precision numbers: 0, then each the one before it plus delta.y. With scale = 1024 / delta.x in
 * double precision, c and s are cos and sin of the angle times scale, truncated to integers. A pixel votes, for each
 * angle, for the index ((round(x c + y s) + 512) >> 10) + halfRho, in single precision with each product and sum
 * rounded. Votes for an index beyond 0 .. rhoCount - 1 go to cells beside the row, which are neighbours but no lines.
 *
 * A cell is a peak if its votes exceed the threshold, those of its left neighbour and those of the cell at the angle
 * before, and are at least those of its right neighbour and of the cell at the angle after. Before the first angle and
 * after the last all cells count 0. The list is sorted by decreasing votes; of equal ones the first found, by angle
 * and then by rho, is first. A line is ((index - halfRho) x delta.x, index of the angle x delta.y) in single precision.
 *
 * @param src first pixel of the region
 * @param srcStep bytes between rows; not compared with the width
 * @param roiSize size of the region in pixels
 * @param delta steps of rho and theta
 * @param threshold votes that a line must exceed
 * @param lines room for maxLineCount lines: rho in x, theta in y
 * @param maxLineCount lines that the list holds
 * @param lineCount receives the number of lines
 * @param buffer work memory of lumiHoughLineGetSize_8u_C1R() bytes
 * @retval lumStatusNullPointer a pointer is null
 * @retval lumStatusStepError srcStep below 1
 * @retval lumStatusSizeError width, height or maxLineCount below 1
 * @retval lumStatusBadArgument delta.x not above 0 or above width + height; delta.y not above 0 or above PI; threshold
 *         below 1
 * @retval lumStatusResultTruncated warning: there are more peaks than maxLineCount; the list holds the strongest
 * @return lumStatusOk
 */
LUM_API LumStatus lumiHoughLine_8u32f_C1R(const Lum8u* src, int srcStep, LumSize roiSize, LumPoint32f delta,
                                          int threshold, LumPoint32f* lines, int maxLineCount, int* lineCount,
                                          Lum8u* buffer);

/**
 * Lines of a binary image in a window of rho and theta, as lumiHoughLine_8u32f_C1R() finds them. Only votes in the
 * window count, so a cell beside it counts 0, and only lines from dstRange[0] to dstRange[1], both included, are found.
 * The bounds of theta are clamped to 0 .. PI first, and written back.
 *
 * @param src first pixel of the region
 * @param srcStep bytes between rows; not compared with the width
 * @param roiSize size of the region in pixels
 * @param lines room for maxLineCount lines: rho in x, theta in y
 * @param dstRange lowest and highest rho and theta
 * @param maxLineCount lines that the list holds
 * @param lineCount receives the number of lines
 * @param delta steps of rho and theta
 * @param threshold votes that a line must exceed
 * @param buffer work memory of lumiHoughLineGetSize_8u_C1R() bytes
 * @retval lumStatusNullPointer a pointer is null
 * @retval lumStatusStepError srcStep below 1
 * @retval lumStatusSizeError width, height or maxLineCount below 1
 * @retval lumStatusBadArgument delta.x not above 0 or above width + height; delta.y not above 0 or above PI; threshold
 *         below 1
 * @retval lumStatusEmptyRange a high bound below its low bound; lineCount is set to 0
 * @retval lumStatusResultTruncated warning: there are more peaks than maxLineCount; the list holds the strongest
 * @return lumStatusOk
 */
LUM_API LumStatus lumiHoughLine_Region_8u32f_C1R(const Lum8u* src, int srcStep, LumSize roiSize,
                                                 LumPoint32f* lines, LumPoint32f dstRange[2],
                                                 int maxLineCount, int* lineCount, LumPoint32f delta,
                                                 int threshold, Lum8u* buffer);

/**
 * The angles of lumiHoughProbLine_8u32f_C1R(), built in the caller's memory by lumiHoughProbLineInit_8u32f_C1R().
 *
 * The object holds no pointers, needs no alignment and is only read by runs.
 *
 * @par Layout
 * delta.x and delta.y (Lum32f), the hint, then for each angle cos(angle) / delta.x and sin(angle) / delta.x: double
 * products with 1 / delta.x, rounded to Lum32f.
 */
typedef struct LumHoughProbSpec LumHoughProbSpec;

/**
 * Bytes of the object, 8 thetaCount + 12, and of the work buffer of lumiHoughProbLine_8u32f_C1R(),
 * 9 width height + 4 rhoCount thetaCount, in wrapping 32-bit arithmetic.
 *
 * @param roiSize size of the region in pixels
 * @param delta steps of rho and theta
 * @param specSize receives the bytes of the object
 * @param bufferSize receives the bytes of the work buffer
 * @retval lumStatusNullPointer specSize or bufferSize is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusBadArgument a step not above 0
 * @return lumStatusOk
 */
LUM_API LumStatus lumiHoughProbLineGetSize_8u_C1R(LumSize roiSize, LumPoint32f delta, Lum32s* specSize,
                                                  Lum32s* bufferSize);

/**
 * Builds the object.
 *
 * @param roiSize size of the region in pixels
 * @param delta steps of rho and theta
 * @param hint stored, never read
 * @param spec block of the bytes that lumiHoughProbLineGetSize_8u_C1R() gives
 * @retval lumStatusNullPointer spec is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusBadArgument a step not above 0
 * @return lumStatusOk
 */
LUM_API LumStatus lumiHoughProbLineInit_8u32f_C1R(LumSize roiSize, LumPoint32f delta, LumHint hint,
                                                  LumHoughProbSpec* spec);

/**
 * Segments of lines, by votes of pixels drawn at random.
 *
 * Pixels are drawn one after the other; the source of random numbers begins anew in each call, so the same picture
 * gives the same segments. A pixel that no segment has taken yet votes for each angle, at trunc(x c + y s) + halfRho,
 * in single precision. Where a cell reaches the threshold, the line of the cell with the most votes, of equal ones
 * that of the lowest angle, is followed from the pixel in both directions, until more than lineGap pixels in sequence
 * are missing. What it has met is taken. A segment that is at least lineLength long in x or in y enters the list, and
 * the votes of its pixels are taken back, those of pixels that have not voted yet too.
 *
 * The random numbers are those of a multiply-with-carry generator: of the 64-bit number lo x 4164903690 + hi the lower
 * half is the new lo and the random number, the upper half the new hi; both begin as 0xFFFFFFFF. Of n pixels left, in
 * raster order at first, the number modulo n is drawn, and the last one takes its place.
 *
 * @param src first pixel of the region
 * @param srcStep bytes between rows; not tested
 * @param roiSize size of the region in pixels, that of the object
 * @param threshold votes at which a line is followed
 * @param lineLength length of a segment in pixels, along its longer axis
 * @param lineGap missing pixels that a segment may bridge
 * @param lines room for maxLineCount segments of four integers: x0, y0, x1, y1
 * @param maxLineCount segments that the list holds
 * @param lineCount receives the number of segments
 * @param buffer work memory of lumiHoughProbLineGetSize_8u_C1R() bytes
 * @param spec the object
 * @retval lumStatusNullPointer a pointer is null
 * @retval lumStatusSizeError width, height or maxLineCount below 1
 * @retval lumStatusBadArgument threshold below 1, lineLength or lineGap below 0
 * @retval lumStatusResultTruncated warning: there are more segments than maxLineCount; the list holds the first ones
 * @return lumStatusOk
 */
LUM_API LumStatus lumiHoughProbLine_8u32f_C1R(const Lum8u* src, int srcStep, LumSize roiSize, int threshold,
                                              int lineLength, int lineGap, Lum32s* lines, int maxLineCount,
                                              int* lineCount, Lum8u* buffer, const LumHoughProbSpec* spec);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
