/**
 * @file
 * The status of a call.
 */
#ifndef LUMCV_STATUS_H
#define LUMCV_STATUS_H

#include <stdint.h>

/** Result of a call: 0 success, above 0 a warning, below 0 an error. */
typedef int32_t LumStatus;

/** The values of LumStatus: all that the library returns. */
enum {
    /** The operation finished. */
    lumStatusOk = 0,
    /** Warning: the mask selects no pixel, all outputs hold 0 (masked extremes). */
    lumStatusEmptyMask = 1,
    /** Warning: the denominator of a relative norm is 0; the result is an infinity or NaN. */
    lumStatusZeroDenominator = 2,
    /** Warning: the work buffer of the line detector would exceed 2147483647 bytes. */
    lumStatusBufferTooLarge = 12,
    /** Warning: more lines qualify than the caller's maximum; the list holds the first ones. */
    lumStatusResultTruncated = 33,
    /** Warning: the pyramid kernel is not symmetric about its centre; the object is valid. */
    lumStatusKernelNotSymmetric = 38,
    /** Warning: the requested tile was cut to the image or lies outside it (FAST corners). */
    lumStatusRegionClipped = 48,
    /** The number of samples along a line overflows a signed 32-bit value. */
    lumStatusBadValue = -2,
    /** A plain value argument lies outside what the operation defines. */
    lumStatusBadArgument = -5,
    /** A width or height below 1, or another count of elements below 1 that is used as a size. */
    lumStatusSizeError = -6,
    /** The range rectangle of the line detector has an upper bound below its lower bound. */
    lumStatusEmptyRange = -7,
    /** A required pointer is null. */
    lumStatusNullPointer = -8,
    /** Between internal routines only: a Gaussian with a sigma of 0. */
    lumStatusZeroSigma = -10,
    /** A point outside the image, or an argument outside a closed numeric range. */
    lumStatusOutOfRange = -11,
    /** The object's tag word is not the one that its Init writes (FAST corners). */
    lumStatusContextMismatch = -13,
    /** A mode that the family does not accept. */
    lumStatusModeError = -14,
    /** A row step smaller than the row that it must hold. */
    lumStatusStepError = -16,
    /** A negative threshold (FAST corners). */
    lumStatusThresholdError = -19,
    /** Between internal routines only: an axis that no flip has. */
    lumStatusAxisError = -22,
    /** A #LumMaskSize that the family does not accept. */
    lumStatusMaskSizeError = -33,
    /** An anchor outside the kernel. */
    lumStatusAnchorError = -34,
    /** A channel count outside 1, 3 and, where allowed, 4. */
    lumStatusChannelCountError = -47,
    /** A divisor of 0 in a separable filter. */
    lumStatusDivisorError = -51,
    /** A channel of interest outside 1 to 3. */
    lumStatusChannelOfInterestError = -52,
    /** A channel count other than 1 in a family with a single channel. */
    lumStatusCountError = -53,
    /** A weight of a distance metric that is not above 0. */
    lumStatusMetricError = -56,
    /** A #LumDataType that the family does not accept. */
    lumStatusDataTypeError = -59,
    /** A step that is not a multiple of the element size. */
    lumStatusStepAlignmentError = -108,
    /** A #LumBorderType that the family does not accept. */
    lumStatusBorderError = -225,
    /** A #LumNormKind that the family does not accept. */
    lumStatusNormError = -229,
    /** A filter selector that the family does not accept. */
    lumStatusAlgorithmError = -230,
    /** A size of 0x7FFFFFFF or above in a morphology _L function. */
    lumStatusSizeOverflow = -232,
    /** Source and destination are the same image in a function that cannot work in place. */
    lumStatusInPlaceNotSupported = -9998
};

#endif
