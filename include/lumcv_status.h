/**
 * @file
 * The name and the meaning of a status as text, for messages. Header only; nothing else includes it.
 */
#ifndef LUMCV_STATUS_TEXT_H
#define LUMCV_STATUS_TEXT_H

#include "lumcv/status.h"

/**
 * @defgroup status_text Texts of statuses
 * The name and the meaning of a status as text.
 *
 * @code
 * LumStatus status = lumiAbsDiff_8u_C1R(a, aStep, b, bStep, dst, dstStep, size);
 * if (status < 0) fprintf(stderr, "%s: %s\n", lumStatusName(status), lumStatusSentence(status));
 * @endcode
 * @{
 */

/** Calls X(status, sentence) for every status. */
#define LUM_EACH_STATUS(X)                                                                                   \
    X(lumStatusOk, "The operation finished.")                                                                \
    X(lumStatusEmptyMask, "Warning: the mask selects no pixel, and the outputs are 0.")                      \
    X(lumStatusZeroDenominator, "Warning: a relative norm is divided by 0.")                                 \
    X(lumStatusBufferTooLarge, "Warning: the work buffer would exceed 2147483647 bytes.")                    \
    X(lumStatusResultTruncated, "Warning: there are more results than the list holds.")                      \
    X(lumStatusKernelNotSymmetric, "Warning: the kernel is not symmetric about its centre.")                 \
    X(lumStatusRegionClipped, "Warning: the tile was cut to the image, or lies outside it.")                 \
    X(lumStatusBadValue, "The number of samples along the line is too large.")                               \
    X(lumStatusBadArgument, "A value lies outside what the function defines.")                               \
    X(lumStatusSizeError, "A width, a height or another size is below 1 or too large.")                      \
    X(lumStatusEmptyRange, "The upper bound of a range is below its lower bound.")                           \
    X(lumStatusNullPointer, "A required pointer is null.")                                                   \
    X(lumStatusZeroSigma, "The sigma of a Gaussian is 0.")                                                   \
    X(lumStatusOutOfRange, "A point outside the image, or a number outside its range.")                      \
    X(lumStatusContextMismatch, "The object is not one that its Init has built.")                            \
    X(lumStatusModeError, "The function does not accept this mode.")                                         \
    X(lumStatusStepError, "A step is below the bytes of its row.")                                           \
    X(lumStatusThresholdError, "A threshold is negative.")                                                   \
    X(lumStatusAxisError, "No flip has this axis.")                                                          \
    X(lumStatusMaskSizeError, "The function does not accept this size of the mask.")                         \
    X(lumStatusAnchorError, "The anchor lies outside the kernel.")                                           \
    X(lumStatusChannelCountError, "The function does not accept this number of channels.")                   \
    X(lumStatusDivisorError, "A divisor is 0.")                                                              \
    X(lumStatusChannelOfInterestError, "The channel of interest is not 1, 2 or 3.")                          \
    X(lumStatusCountError, "The function works on one channel only.")                                        \
    X(lumStatusMetricError, "A weight of the distance is not above 0.")                                      \
    X(lumStatusDataTypeError, "The function does not accept this type of elements.")                         \
    X(lumStatusStepAlignmentError, "A step is not a multiple of the element's size.")                        \
    X(lumStatusBorderError, "The function does not accept this border.")                                     \
    X(lumStatusNormError, "The function does not accept this norm.")                                         \
    X(lumStatusAlgorithmError, "The function does not accept this filter.")                                  \
    X(lumStatusSizeOverflow, "A size is 2147483647 or more.")                                                \
    X(lumStatusInPlaceNotSupported, "Source and destination must not be the same image.")

/** The name of a status as in status.h, such as "lumStatusStepError"; "unknown" for a value that is none. */
static inline const char* lumStatusName(LumStatus status) {
    switch (status) {
#define LUM_STATUS_CASE(name, sentence)                                                                      \
case name:                                                                                                   \
    return #name;
        LUM_EACH_STATUS(LUM_STATUS_CASE)
#undef LUM_STATUS_CASE
    default:
        return "unknown";
    }
}

/** What a status says, as a sentence of English. */
static inline const char* lumStatusSentence(LumStatus status) {
    switch (status) {
#define LUM_STATUS_CASE(name, sentence)                                                                      \
case name:                                                                                                   \
    return sentence;
        LUM_EACH_STATUS(LUM_STATUS_CASE)
#undef LUM_STATUS_CASE
    default:
        return "This is no status of the library.";
    }
}

/** @} */

#endif
