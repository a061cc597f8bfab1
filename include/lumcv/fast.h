/**
 * @file
 * Corners by the segment test: marks, scores, orientations, and the list of them.
 */
#ifndef LUMCV_FAST_H
#define LUMCV_FAST_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup fast FAST corners
 * Corners by the segment test: marks, scores, orientations, and the list of them.
 *
 * @code
 * lumiFastNGetSize(size, 3, 9, 32, lumFastNCorners | lumFastNScore, lumType8u, 1, &bytes);
 * lumiFastNInit(size, 3, 9, 32, lumFastNCorners | lumFastNScore, 20, lumType8u, 1, spec);
 * lumiFastNGetBufferSize(spec, size, &bufferBytes);
 * lumiFastN_8u_C1R(src, srcStep, marks, marksStep, scores, scoresStep, &count, origin, size, spec, buffer);
 * lumiFastN2DToVec_8u(marks, marksStep, scores, scoresStep, list, size, maxCount, &count, spec);
 * printf("%d corners, the first at (%d, %d)\n", count, list[0].x, list[0].y);
 * @endcode
 *
 * A pixel is a corner if at least N contiguous pixels of a circle around it are all brighter, or all darker, than
 * the pixel by more than a threshold.
 *
 * E. Rosten, T. Drummond: Machine learning for high-speed corner detection (ECCV 2006); the score and the
 * suppression: E. Rosten, R. Porter, T. Drummond: Faster and better: a machine learning approach to corner detection
 * (IEEE PAMI 32, 2010).
 * @{
 */

/** What lumiFastN_8u_C1R() is to compute; bits of the `flags` of lumiFastNInit(). */
enum {
    /** An orientation bin for each corner; needs orientationBins from 1 to 64. */
    lumFastNOrientation = 1,
    /** Only the local maxima of the score over 3 x 3 pixels stay; needs #lumFastNScore. */
    lumFastNSuppression = 2,
    /** The image of corner marks; always set. */
    lumFastNCorners = 4,
    /** The image of scores. */
    lumFastNScore = 32
};

/**
 * The parameters of a corner search, built in the caller's memory by lumiFastNInit().
 *
 * The object holds no pointer into itself and may be moved. It needs no alignment. Runs only read it, so one object
 * serves several threads.
 *
 * @par Layout
 * The first byte of the block is the distance, 1 to 8, to the record, which starts at the next 8-byte boundary of
 * the address. Its fields have 32 bits each, the pointer as many as a pointer has: tag (0x4B617390), dataType (1),
 * channels (1), width and height of the source, circleRadius, arcLength, orientationBins, flags, a word that is not
 * written, threshold (Lum32f), the threshold truncated to an integer, a pointer to the constant table of the circle.
 * With #lumFastNOrientation follow the sines and the cosines of k x 2 pi / perimeter for each position k of the
 * circle, and orientationBins / (2 pi), all Lum32f.
 */
typedef struct LumFastNSpec LumFastNSpec;

/** One corner of the list that lumiFastN2DToVec_8u() makes. */
typedef struct LumFastNCorner {
    Lum32s x;     /**< column in the image of marks */
    Lum32s y;     /**< row in the image of marks */
    Lum32s type;  /**< 1 dark, 0 bright */
    Lum32s bin;   /**< orientation bin; -1 without orientation */
    Lum32f angle; /**< bin x 360 / orientationBins, in degrees; -1 without orientation */
    Lum32f score; /**< score; -1 without scores */
} LumFastNCorner;

/**
 * Bytes of the object: 8 x perimeter + 64, where pointers are wider a few more. The circles of radius 1, 2, 3, 5, 7
 * and 9 have a perimeter of 8, 12, 16, 28, 40 and 52 pixels.
 *
 * @param srcSize size of the whole source image in pixels
 * @param circleRadius 1, 2, 3, 5, 7 or 9
 * @param arcLength N, the contiguous pixels that make a corner: above half the perimeter, at most the perimeter
 * @param orientationBins number of directions, 1 to 64, with #lumFastNOrientation; else not used
 * @param flags what to compute
 * @param dataType #lumType8u
 * @param channels 1
 * @param size receives the bytes
 * @retval lumStatusNullPointer size is null
 * @retval lumStatusSizeError a side of srcSize below 1
 * @retval lumStatusDataTypeError another dataType
 * @retval lumStatusCountError channels is not 1
 * @retval lumStatusBadArgument flags without #lumFastNCorners, with an unknown bit, or with #lumFastNSuppression and
 *         without #lumFastNScore
 * @retval lumStatusOutOfRange with #lumFastNOrientation, orientationBins outside 1 to 64
 * @retval lumStatusBadArgument circleRadius is none of the six
 * @retval lumStatusOutOfRange arcLength not above half the perimeter, or above the perimeter
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFastNGetSize(LumSize srcSize, int circleRadius, int arcLength, int orientationBins,
                                   int flags, LumDataType dataType, int channels, Lum32s* size);

/**
 * Builds the object.
 *
 * @param srcSize size of the whole source image in pixels
 * @param circleRadius 1, 2, 3, 5, 7 or 9
 * @param arcLength N, the contiguous pixels that make a corner: above half the perimeter, at most the perimeter
 * @param orientationBins number of directions, 1 to 64, with #lumFastNOrientation; else not used
 * @param flags what to compute
 * @param threshold difference of tones, 0 or above, that a pixel of an arc must exceed; truncated to an integer
 * @param dataType #lumType8u
 * @param channels 1
 * @param spec block of the bytes that lumiFastNGetSize() gives
 * @retval lumStatusNullPointer spec is null
 * @retval lumStatusSizeError a side of srcSize below 1
 * @retval lumStatusThresholdError threshold below 0
 * @retval lumStatusDataTypeError another dataType
 * @retval lumStatusCountError channels is not 1
 * @retval lumStatusBadArgument flags without #lumFastNCorners, with an unknown bit, or with #lumFastNSuppression and
 *         without #lumFastNScore
 * @retval lumStatusOutOfRange with #lumFastNOrientation, orientationBins outside 1 to 64
 * @retval lumStatusBadArgument circleRadius is none of the six
 * @retval lumStatusOutOfRange arcLength not above half the perimeter, or above the perimeter
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFastNInit(LumSize srcSize, int circleRadius, int arcLength, int orientationBins,
                                int flags, Lum32f threshold, LumDataType dataType, int channels,
                                LumFastNSpec* spec);

/**
 * Bytes of the work buffer of lumiFastN_8u_C1R(): (width + 2) x 6 + 624, in wrapping 32-bit arithmetic.
 *
 * @param spec the object; not read
 * @param dstRoiSize size of the tile in pixels
 * @param size receives the bytes
 * @retval lumStatusNullPointer spec or size is null
 * @retval lumStatusSizeError a side of dstRoiSize below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFastNGetBufferSize(const LumFastNSpec* spec, LumSize dstRoiSize, Lum32s* size);

/**
 * Marks the corners of a tile of an image.
 *
 * With c the tone of a pixel, t the integer threshold and d(k) = p(k) - c for the P pixels p(k) of the circle, which
 * starts below the pixel and first goes to the left: the pixel is a bright corner if d(k) > t on an arc of at least N
 * positions, a dark one if d(k) < -t on such an arc; arcs run on from position P - 1 to position 0.
 *
 * A mark is 64 for a bright corner, 128 for a dark one, plus the orientation bin; 0 is no corner. The score is the
 * largest threshold plus one at which the pixel still is a corner: the largest, over all arcs of N positions, of the
 * smallest |d(k)| of the arc.
 *
 * The orientation is the angle of the vector (S1, S2) with S1 and S2 the sums of d(k) x sin and d(k) x cos of
 * k x 2 pi / P, in single precision and in order of k; it is scaled from 0 .. 2 pi to 0 .. orientationBins and
 * truncated; an angle just below 2 pi that rounds up to it is in bin 0. With P = 16 opposite positions are subtracted
 * first, and 1e-6 is added to S1.
 *
 * With suppression a corner stays if its score is not below that of any of its eight neighbours; of equal ones both
 * stay. Pixels beside the tile count as 0. The last row of a tile that ends above the image's last row is a neighbour
 * only: it is not written, and so tiles overlap by one row above and below.
 *
 * Images of results have the tile's size; a tile that reaches beyond the image is cut, and each result keeps its place
 * in the tile as given. Within the image all of the tile is written: no pixel closer to the image's edge than the
 * radius is a corner.
 *
 * @param src first pixel of the whole image
 * @param srcStep bytes between its rows; not tested
 * @param corners first pixel of the tile's marks
 * @param cornersStep bytes between its rows; not tested
 * @param scores first pixel of the tile's scores; may be null without #lumFastNScore
 * @param scoresStep bytes between its rows; not tested
 * @param cornerCount receives the number of marks written
 * @param srcRoiOffset the tile's place in the image; may be outside
 * @param dstRoiSize the tile's size in pixels
 * @param spec the object
 * @param buffer work memory of lumiFastNGetBufferSize() bytes
 * @retval lumStatusNullPointer a pointer other than scores is null
 * @retval lumStatusSizeError a side of dstRoiSize below 1
 * @retval lumStatusContextMismatch spec is not an object of lumiFastNInit()
 * @retval lumStatusDataTypeError, lumStatusCountError, lumStatusSizeError, lumStatusBadArgument, lumStatusOutOfRange
 *         a field of the object that lumiFastNInit() would have refused: type, channels, size, flags, bins
 * @retval lumStatusNullPointer scores is null with #lumFastNScore
 * @retval lumStatusBadArgument, lumStatusOutOfRange the object's radius, arc length
 * @retval lumStatusRegionClipped warning: the tile was cut to the image; or it lies outside, and nothing was written,
 *         not even cornerCount
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFastN_8u_C1R(const Lum8u* src, int srcStep, Lum8u* corners, int cornersStep,
                                   Lum8u* scores, int scoresStep, Lum32s* cornerCount, LumPoint srcRoiOffset,
                                   LumSize dstRoiSize, const LumFastNSpec* spec, Lum8u* buffer);

/**
 * The list of the corners of a tile, row by row, from its images.
 *
 * @param corners first pixel of the marks
 * @param cornersStep bytes between its rows; not tested
 * @param scores first pixel of the scores; may be null without #lumFastNScore
 * @param scoresStep bytes between its rows; not tested
 * @param list room for maxCount corners
 * @param dstRoiSize size of the tile in pixels
 * @param maxCount corners that the list holds; 0 counts only
 * @param cornerCount receives the number of all marks, which may be above maxCount
 * @param spec the object that the images were made with
 * @retval lumStatusNullPointer corners, list, cornerCount or spec is null
 * @retval lumStatusSizeError a side of dstRoiSize below 1, or maxCount below 0
 * @retval lumStatusContextMismatch spec is not an object of lumiFastNInit()
 * @retval lumStatusDataTypeError, lumStatusCountError, lumStatusSizeError, lumStatusBadArgument, lumStatusOutOfRange
 *         a field of the object that lumiFastNInit() would have refused: type, channels, size, flags, bins
 * @retval lumStatusNullPointer scores is null with #lumFastNScore
 * @retval lumStatusBadArgument, lumStatusOutOfRange the object's radius, arc length
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFastN2DToVec_8u(const Lum8u* corners, int cornersStep, const Lum8u* scores,
                                      int scoresStep, LumFastNCorner* list, LumSize dstRoiSize, int maxCount,
                                      Lum32s* cornerCount, const LumFastNSpec* spec);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
