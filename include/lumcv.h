/**
 * @file
 * lumCV: computer-vision primitives on image regions that stay in the caller's memory.
 *
 * The library keeps no state between calls, allocates nothing and starts no threads. An image is never an
 * object: it is a pointer to the first pixel of a region, a step (signed bytes between the starts of two
 * neighbouring rows) and a size, passed with each call. Every function but lumcvGetLibVersion() returns a
 * LumStatus: 0 is success, a positive value a warning (the outputs are valid), a negative value an error
 * (nothing was written, unless the function says otherwise).
 *
 * Arguments are tested in one order, and the first failure is returned: required pointers, width and height,
 * steps against their rows, alignment of the steps, then what is particular to the function. Where a function
 * departs from it, its own list of statuses says so.
 *
 * The header is C99 and C++. Names: lumi + operation + type tokens (source, then destination) + layout: C1, C3,
 * C4 the channels, C3C three channels with a channel of interest, I in place, M with a mask, R on a region, Sfs
 * with a scale factor; _L with pointer-wide sizes and steps.
 */
#ifndef LUMCV_H
#define LUMCV_H

#include <stdint.h>

#if defined(__GNUC__) && !defined(_WIN32)
#    define LUM_API __attribute__((visibility("default")))
#else
#    define LUM_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** @name Elements */
/**@{*/
typedef int8_t Lum8s;    /**< signed 8-bit element */
typedef uint8_t Lum8u;   /**< unsigned 8-bit element; also masks and, eight pixels to a byte, bit images */
typedef uint16_t Lum16u; /**< unsigned 16-bit element */
typedef int16_t Lum16s;  /**< signed 16-bit element */
typedef int32_t Lum32s;  /**< signed 32-bit element */
typedef float Lum32f;    /**< IEEE single-precision element */
typedef double Lum64f;   /**< IEEE double-precision element */
/**@}*/

/** @name Plain records, passed by value */
/**@{*/
/** Width and height of a region in pixels. */
typedef struct LumSize {
    Lum32s width;
    Lum32s height;
} LumSize;

/** A place in a region: x to the right, y downward. */
typedef struct LumPoint {
    Lum32s x;
    Lum32s y;
} LumPoint;

/** A place between pixels. */
typedef struct LumPoint32f {
    Lum32f x;
    Lum32f y;
} LumPoint32f;

/** A rectangle: its top-left corner and its size. */
typedef struct LumRect {
    Lum32s x;
    Lum32s y;
    Lum32s width;
    Lum32s height;
} LumRect;

/** Width and height in pointer-wide integers, for the _L functions. */
typedef struct LumSizeL {
    intptr_t width;
    intptr_t height;
} LumSizeL;

/** A place in pointer-wide integers, for the _L functions. */
typedef struct LumPointL {
    intptr_t x;
    intptr_t y;
} LumPointL;
/**@}*/

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
    /** A size or step of 0x7FFFFFFF or above in a morphology _L function. */
    lumStatusSizeOverflow = -232,
    /** Source and destination are the same image in a function that cannot work in place. */
    lumStatusInPlaceNotSupported = -9998
};

/** What lies outside a region: one kind in bits 0 to 3, with flags for the sides that exist in memory. */
typedef int32_t LumBorderType;

/** The kinds and flags of #LumBorderType. */
enum {
    lumBorderReplicate = 1,    /**< pixels outside take the nearest edge pixel */
    lumBorderMirror = 3,       /**< pixels outside reflect about the edge pixel, which is not repeated */
    lumBorderDefaultValue = 5, /**< morphology: the value that cannot affect the result */
    lumBorderConstant = 6,     /**< pixels outside take the caller's borderValue */

    lumBorderInMemoryTop = 0x10,    /**< the rows above the region exist in memory and are read */
    lumBorderInMemoryBottom = 0x20, /**< the rows below the region exist in memory and are read */
    lumBorderInMemoryLeft = 0x40,   /**< the columns at the left exist in memory and are read */
    lumBorderInMemoryRight = 0x80,  /**< the columns at the right exist in memory and are read */
    lumBorderInMemory = 0xF0,       /**< all four sides exist in memory; needs no kind */

    lumBorderFirstStageInMemoryTop = 0x100,    /**< top side, first stage of two-stage morphology */
    lumBorderFirstStageInMemoryBottom = 0x200, /**< bottom side, first stage of two-stage morphology */
    lumBorderFirstStageInMemoryLeft = 0x400,   /**< left side, first stage of two-stage morphology */
    lumBorderFirstStageInMemoryRight = 0x800   /**< right side, first stage of two-stage morphology */
};

/** Element type, for size queries and initialisers. */
typedef int32_t LumDataType;

/** The values of #LumDataType; each family accepts a subset. */
enum {
    lumType1u = 0,
    lumType8u = 1,
    lumType16u = 5,
    lumType16s = 7,
    lumType32s = 11,
    lumType32f = 13,
    lumType64f = 19
};

/** Size of a built-in kernel: its digits are the kernel's width and height. */
typedef int32_t LumMaskSize;

/** The values of #LumMaskSize. */
enum { lumMask3x3 = 33, lumMask5x5 = 55 };

/** Norm of a gradient or difference. */
typedef int32_t LumNormKind;

/** The values of #LumNormKind. */
enum { lumNormInf = 1, lumNormL1 = 2, lumNormL2 = 4 };

/** Hint on accuracy against speed; stored, never read. */
typedef int32_t LumHint;

/** Norm of a neighbourhood or of a pixel's channels. */
typedef int32_t LumSpatialNorm;

/** The values of #LumSpatialNorm: as a neighbourhood, Inf is the eight neighbours and L1 the four. */
enum { lumSpatialNormInf = 0, lumSpatialNormL1 = 1, lumSpatialNormL2 = 2 };

/** The identity of the library. */
typedef struct LumLibraryVersion {
    int32_t major;         /**< major version */
    int32_t minor;         /**< minor version */
    int32_t majorBuild;    /**< build within the minor version */
    uint32_t build;        /**< source revision */
    char targetCpu[4];     /**< label of the processor class, padded with NUL */
    const char* name;      /**< name of the library and its build */
    const char* version;   /**< version as text */
    const char* buildDate; /**< date of the release */
} LumLibraryVersion;

/**
 * The identity record of the library: a constant that lives as long as the library is loaded. Never fails, and
 * returns the same pointer on every call.
 */
LUM_API const LumLibraryVersion* lumcvGetLibVersion(void);

/* ------------------------------------------------------------------------------------------------------------
 * Frame: pixel differences
 * --------------------------------------------------------------------------------------------------------- */

/**
 * @name Absolute difference of two images
 *
 * dst(x, y) = |src1(x, y) - src2(x, y)|, exact for integers. In 32f the sign bit of the single-precision
 * difference is cleared: a NaN keeps its payload (of two NaNs, that of src1), and two equal infinities give NaN.
 * dst may be src1 or src2 itself (same pointer and step); other overlap is not supported.
 *
 * @param src1,src2 first pixels of the two source regions
 * @param src1Step,src2Step,dstStep bytes between rows
 * @param dst first pixel of the result
 * @param roiSize size of the region in pixels
 * @retval lumStatusNullPointer src1, src2 or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a step that is not a multiple of the element size
 * @return lumStatusOk
 *
 * In the C3 function the width of three channels is formed in wrapping 32-bit arithmetic.
 */
/**@{*/
LUM_API LumStatus lumiAbsDiff_8u_C1R(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                     Lum8u* dst, int dstStep, LumSize roiSize);
LUM_API LumStatus lumiAbsDiff_8u_C3R(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                     Lum8u* dst, int dstStep, LumSize roiSize);
LUM_API LumStatus lumiAbsDiff_16u_C1R(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                      Lum16u* dst, int dstStep, LumSize roiSize);
LUM_API LumStatus lumiAbsDiff_32f_C1R(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                      Lum32f* dst, int dstStep, LumSize roiSize);
/**@}*/

/**
 * @name Absolute difference of an image and a constant
 *
 * dst(x, y) = |src(x, y) - value|, with the arithmetic of the difference of two images. An integer constant is
 * clamped to the range of the element first: 300 acts as 255 in 8u. dst may be src itself.
 *
 * @param src first pixel of the source region
 * @param srcStep,dstStep bytes between rows
 * @param dst first pixel of the result
 * @param roiSize size of the region in pixels
 * @param value the constant
 * @retval lumStatusNullPointer src or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a step that is not a multiple of the element size
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiAbsDiffC_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumSize roiSize,
                                      Lum32s value);
LUM_API LumStatus lumiAbsDiffC_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                       LumSize roiSize, Lum32s value);
LUM_API LumStatus lumiAbsDiffC_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                       LumSize roiSize, Lum32f value);
/**@}*/

/* ------------------------------------------------------------------------------------------------------------
 * Statistics: accumulators
 * --------------------------------------------------------------------------------------------------------- */

/* ------------------------------------------------------------------------------------------------------------
 * Statistics: means and deviations
 * --------------------------------------------------------------------------------------------------------- */

/* ------------------------------------------------------------------------------------------------------------
 * Statistics: extreme values
 * --------------------------------------------------------------------------------------------------------- */

/* ------------------------------------------------------------------------------------------------------------
 * Statistics: norms
 * --------------------------------------------------------------------------------------------------------- */

/* ------------------------------------------------------------------------------------------------------------
 * Integral images and the deviation of rectangles
 * --------------------------------------------------------------------------------------------------------- */

/* ------------------------------------------------------------------------------------------------------------
 * Haar cascades
 * --------------------------------------------------------------------------------------------------------- */

/* ------------------------------------------------------------------------------------------------------------
 * Linear filters: row and column pipelines
 * --------------------------------------------------------------------------------------------------------- */

/**
 * @name Work memory of the row stage
 *
 * bufferSize = bytes that the row stage of the same name needs at `buffer`. K is kernelSize; neither width nor
 * height counts:
 *
 *     16s     C1 48 K + 112    C3  40 K +  96
 *     16u     C1 48 K +  80    C3 112 K +  80
 *     32f     C1 64 K +  96    C3 192 K +  64
 *     8u16s   C1 36 K + 144    C3  60 K + 144
 *     Low_16s C1 24 K +  96    C3 208 K +  96
 *
 * The block may lie at any address.
 *
 * @param roiSize size of the region in pixels
 * @param kernelSize taps of the kernel
 * @param bufferSize receives the bytes
 * @retval lumStatusNullPointer bufferSize is null
 * @retval lumStatusSizeError width, height or kernelSize below 1
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_16s_C1R(LumSize roiSize, int kernelSize,
                                                                   Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_16s_C3R(LumSize roiSize, int kernelSize,
                                                                   Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_16u_C1R(LumSize roiSize, int kernelSize,
                                                                   Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_16u_C3R(LumSize roiSize, int kernelSize,
                                                                   Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_32f_C1R(LumSize roiSize, int kernelSize,
                                                                   Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_32f_C3R(LumSize roiSize, int kernelSize,
                                                                   Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R(LumSize roiSize, int kernelSize,
                                                                     Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R(LumSize roiSize, int kernelSize,
                                                                     Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R(LumSize roiSize, int kernelSize,
                                                                       Lum32s* bufferSize);
LUM_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R(LumSize roiSize, int kernelSize,
                                                                       Lum32s* bufferSize);
/**@}*/

/**
 * @name Row stage of a filter, with borders
 *
 * Filters a region along its rows, each channel by itself, into rows that the caller points to. With ext(i)
 * the pixel of row y at i inside the region and what the border says outside,
 *
 *     dstRows[y][x] = (sum over k = 0 .. kernelSize - 1 of kernel[k] ext(x - xAnchor + k)) / divisor
 *
 * a correlation: kernel[xAnchor] meets the pixel at x. Column stages take the result rows as they stand, so
 * that a separable filter runs in stripes over a ring of rows. The 32f functions have no divisor; in 16u
 * coefficients run from 0 to 65535.
 *
 * Border, at the left and at the right: a side with its in-memory flag reads the pixels that lie beside the
 * region; any other side repeats the edge pixel (#lumBorderReplicate), reflects about it, back and forth in
 * rows that are narrower than the border (#lumBorderMirror; one column repeats), or takes borderValue
 * (#lumBorderConstant). Accepted are these three kinds with any flags, and #lumBorderInMemory by itself. The
 * flags of top and bottom have no effect.
 *
 * Arithmetic and rounding. The `interior` of a row is its results whose window lies inside the row.
 * - 16s, 8u16s: in the interior, whole groups of eight elements from its start are rounded to nearest even;
 *   what remains of it, the border stretches and rows narrower than the kernel are truncated toward zero; all
 *   saturate. A kernel of other than 3 or 5 taps rounds so only where width - kernelSize is above 15, and
 *   truncates everywhere else. The rounded results are exact sums times 1 / (float)divisor, if the magnitudes
 *   of the kernel sum to less than 65535 (to 65535 at most, and without a coefficient of -32768, if it has
 *   other than 3 or 5 taps); all other results are sums in single precision of the pixels times
 *   (float)kernel[k] x (1 / (float)divisor), in order of k. 8u16s with three taps and a divisor of 1 is exact.
 * - 16u: sums in single precision as above, truncated and saturated, all results alike.
 * - 32f: sums in single precision, in order of k.
 * - Low_16s: for kernels whose sums fit in 16 bits. With a divisor of 1 the result is the sum, wrapped to 16
 *   bits. Else it is (sum x m) >> 14, m = trunc(16384 / divisor) in single precision: in the whole groups of
 *   eight elements from the interior's start the sum wraps to 16 bits and the result saturates, elsewhere the
 *   sum is of 32 bits and the result its low 16 bits. Five symmetric taps with a divisor of 16, xAnchor 2, a
 *   border of exactly #lumBorderReplicate and a width of 11 or more give the 16-bit sum >> 4 throughout; from
 *   0x80001 pixels on (the product wraps) these rows are stored past the cache.
 *
 * Rows of the result and the source may have any alignment; it never changes a result. No result row may
 * overlap the source.
 *
 * @param src first pixel of the region
 * @param srcStep bytes between rows of the source
 * @param dstRows roiSize.height pointers to result rows of roiSize.width pixels
 * @param roiSize size of the region in pixels
 * @param kernel kernelSize coefficients
 * @param kernelSize taps of the kernel
 * @param xAnchor tap that meets the pixel of the result, 0 .. kernelSize - 1
 * @param border what lies at the left and right of the region
 * @param borderValue value of a constant border; in C3 functions a pointer to three, one a channel
 * @param divisor divides the sums; a negative one negates the result. At least 1 in 16u
 * @param buffer work memory of the size that the query of the same name gives
 * @retval lumStatusNullPointer src, dstRows, kernel or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusNullPointer one of the pointers in dstRows is null; C3 but 16u: borderValue is null,
 *          whatever the border
 * @retval lumStatusSizeError kernelSize below 1
 * @retval lumStatusAnchorError xAnchor below 0, or kernelSize or above
 * @retval lumStatusStepError srcStep below the row's bytes
 * @retval lumStatusStepAlignmentError 16s, 16u, 32f, Low_16s: srcStep not a multiple of the element size
 * @retval lumStatusBadArgument 16s_C1R, Low_16s, 8u16s_C3R: divisor is 0; 16u: divisor below 1
 * @retval lumStatusBorderError border is not one of those above
 * @retval lumStatusNullPointer 16u_C3R: borderValue is null and the border constant
 * @retval lumStatusBadArgument 16s_C3R, 8u16s_C1R: divisor is 0
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiFilterRowBorderPipeline_16s_C1R(const Lum16s* src, int srcStep, Lum16s* const* dstRows,
                                                      LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                      int xAnchor, LumBorderType border, Lum16s borderValue,
                                                      int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_16s_C3R(const Lum16s* src, int srcStep, Lum16s* const* dstRows,
                                                      LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                      int xAnchor, LumBorderType border,
                                                      const Lum16s* borderValue, int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_16u_C1R(const Lum16u* src, int srcStep, Lum16u* const* dstRows,
                                                      LumSize roiSize, const Lum16u* kernel, int kernelSize,
                                                      int xAnchor, LumBorderType border, Lum16u borderValue,
                                                      int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_16u_C3R(const Lum16u* src, int srcStep, Lum16u* const* dstRows,
                                                      LumSize roiSize, const Lum16u* kernel, int kernelSize,
                                                      int xAnchor, LumBorderType border,
                                                      const Lum16u* borderValue, int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_32f_C1R(const Lum32f* src, int srcStep, Lum32f* const* dstRows,
                                                      LumSize roiSize, const Lum32f* kernel, int kernelSize,
                                                      int xAnchor, LumBorderType border, Lum32f borderValue,
                                                      Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_32f_C3R(const Lum32f* src, int srcStep, Lum32f* const* dstRows,
                                                      LumSize roiSize, const Lum32f* kernel, int kernelSize,
                                                      int xAnchor, LumBorderType border,
                                                      const Lum32f* borderValue, Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_8u16s_C1R(const Lum8u* src, int srcStep, Lum16s* const* dstRows,
                                                        LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                        int xAnchor, LumBorderType border, Lum8u borderValue,
                                                        int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_8u16s_C3R(const Lum8u* src, int srcStep, Lum16s* const* dstRows,
                                                        LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                        int xAnchor, LumBorderType border,
                                                        const Lum8u* borderValue, int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_Low_16s_C1R(const Lum16s* src, int srcStep,
                                                          Lum16s* const* dstRows, LumSize roiSize,
                                                          const Lum16s* kernel, int kernelSize, int xAnchor,
                                                          LumBorderType border, Lum16s borderValue,
                                                          int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterRowBorderPipeline_Low_16s_C3R(const Lum16s* src, int srcStep,
                                                          Lum16s* const* dstRows, LumSize roiSize,
                                                          const Lum16s* kernel, int kernelSize, int xAnchor,
                                                          LumBorderType border, const Lum16s* borderValue,
                                                          int divisor, Lum8u* buffer);
/**@}*/

/**
 * @name Work memory of the column stage
 *
 * bufferSize = bytes that the column stage of the same name needs at `buffer`. W is roiSize.width; the
 * kernel's length does not count:
 *
 *     16s8s, 16s8u, 16s  C1 12 (W rounded up to a multiple of 4) + 64    C3 36 (the same) + 64
 *     16u, 32f           32
 *     Low_16s            C1 12 (W rounded up to a multiple of 8) + 64    C3 36 (the same) + 64
 *
 * formed in wrapping 32-bit arithmetic. The block may lie at any address.
 *
 * @param roiSize size of the region in pixels
 * @param kernelSize taps of the kernel
 * @param bufferSize receives the bytes
 * @retval lumStatusNullPointer bufferSize is null
 * @retval lumStatusSizeError width, height or kernelSize below 1
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s8s_C1R(LumSize roiSize, int kernelSize,
                                                                  Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s8s_C3R(LumSize roiSize, int kernelSize,
                                                                  Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s8u_C1R(LumSize roiSize, int kernelSize,
                                                                  Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s8u_C3R(LumSize roiSize, int kernelSize,
                                                                  Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s_C1R(LumSize roiSize, int kernelSize,
                                                                Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s_C3R(LumSize roiSize, int kernelSize,
                                                                Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_16u_C1R(LumSize roiSize, int kernelSize,
                                                                Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_16u_C3R(LumSize roiSize, int kernelSize,
                                                                Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_32f_C1R(LumSize roiSize, int kernelSize,
                                                                Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_32f_C3R(LumSize roiSize, int kernelSize,
                                                                Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R(LumSize roiSize, int kernelSize,
                                                                    Lum32s* bufferSize);
LUM_API LumStatus lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R(LumSize roiSize, int kernelSize,
                                                                    Lum32s* bufferSize);
/**@}*/

/**
 * @name Column stage of a filter
 *
 * Filters down the columns of rows that the caller points to, into an image:
 *
 *     dst(x, y) = (sum over k = 0 .. kernelSize - 1 of kernel[k] srcRows[y + k][x]) / divisor
 *
 * for each channel by itself. A border above and below is whatever rows the pointers name: the same row may
 * stand many times. The 32f functions have no divisor; in 16u coefficients run from 0 to 65535.
 *
 * Arithmetic and rounding. Integer sums are formed in single precision from the elements times
 * (float)kernel[k] x (1 / (float)divisor), in order of k; in three symmetric taps over 16s rows the two outer
 * rows are added first.
 * - 16s8u, 16u: rounded to nearest even and saturated.
 * - 16s8s, 16s: the first 16 x floor(width x channels / 16) elements of each row are rounded to nearest even,
 *   the others truncated toward zero; all saturate.
 * - 32f: sums in single precision, in order of k.
 * - Low_16s: as in the row stage, with the whole groups of eight elements from the start of each row. Five
 *   symmetric taps with a divisor of 16 and a height of 3 or more give the 16-bit sum >> 4 throughout; from
 *   0x40001 pixels on (the product wraps) these rows are stored past the cache where all rows, of source and
 *   result, lie on multiples of 16.
 *
 * Rows may have any alignment; it never changes a result. The result may not overlap the source.
 *
 * @param srcRows roiSize.height + kernelSize - 1 pointers to rows of roiSize.width pixels
 * @param dst first pixel of the result
 * @param dstStep bytes between rows of the result
 * @param roiSize size of the result in pixels
 * @param kernel kernelSize coefficients
 * @param kernelSize taps of the kernel
 * @param divisor divides the sums; a negative one negates the result
 * @param buffer work memory of the size that the query of the same name gives
 * @retval lumStatusNullPointer srcRows, dst or kernel is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusNullPointer one of the first roiSize.height + kernelSize - 1 pointers in srcRows is null
 * @retval lumStatusSizeError kernelSize below 1
 * @retval lumStatusStepError dstStep below the row's bytes; Low_16s_C3R compares it with the bytes of one
 *          channel
 * @retval lumStatusStepAlignmentError 16s, 16u, 32f, Low_16s: dstStep not a multiple of the element size
 * @retval lumStatusNullPointer buffer is null, also in the functions that use none of it
 * @retval lumStatusBadArgument divisor is 0
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiFilterColumnPipeline_16s8s_C1R(const Lum16s* const* srcRows, Lum8s* dst, int dstStep,
                                                     LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                     int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_16s8s_C3R(const Lum16s* const* srcRows, Lum8s* dst, int dstStep,
                                                     LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                     int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_16s8u_C1R(const Lum16s* const* srcRows, Lum8u* dst, int dstStep,
                                                     LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                     int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_16s8u_C3R(const Lum16s* const* srcRows, Lum8u* dst, int dstStep,
                                                     LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                     int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_16s_C1R(const Lum16s* const* srcRows, Lum16s* dst, int dstStep,
                                                   LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                   int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_16s_C3R(const Lum16s* const* srcRows, Lum16s* dst, int dstStep,
                                                   LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                   int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_16u_C1R(const Lum16u* const* srcRows, Lum16u* dst, int dstStep,
                                                   LumSize roiSize, const Lum16u* kernel, int kernelSize,
                                                   int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_16u_C3R(const Lum16u* const* srcRows, Lum16u* dst, int dstStep,
                                                   LumSize roiSize, const Lum16u* kernel, int kernelSize,
                                                   int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_32f_C1R(const Lum32f* const* srcRows, Lum32f* dst, int dstStep,
                                                   LumSize roiSize, const Lum32f* kernel, int kernelSize,
                                                   Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_32f_C3R(const Lum32f* const* srcRows, Lum32f* dst, int dstStep,
                                                   LumSize roiSize, const Lum32f* kernel, int kernelSize,
                                                   Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_Low_16s_C1R(const Lum16s* const* srcRows, Lum16s* dst, int dstStep,
                                                       LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                       int divisor, Lum8u* buffer);
LUM_API LumStatus lumiFilterColumnPipeline_Low_16s_C3R(const Lum16s* const* srcRows, Lum16s* dst, int dstStep,
                                                       LumSize roiSize, const Lum16s* kernel, int kernelSize,
                                                       int divisor, Lum8u* buffer);
/**@}*/

/* ------------------------------------------------------------------------------------------------------------
 * Linear filters: separable
 * --------------------------------------------------------------------------------------------------------- */

/* ------------------------------------------------------------------------------------------------------------
 * Linear filters: Gaussian
 * --------------------------------------------------------------------------------------------------------- */

/* ------------------------------------------------------------------------------------------------------------
 * Linear filters: fixed kernels and colour gradients
 * --------------------------------------------------------------------------------------------------------- */

/* ------------------------------------------------------------------------------------------------------------
 * Lens geometry
 * --------------------------------------------------------------------------------------------------------- */

#ifdef __cplusplus
}
#endif

#endif
