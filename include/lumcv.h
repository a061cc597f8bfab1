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

/* ------------------------------------------------------------------------------------------------------------
 * Linear filters: separable
 * --------------------------------------------------------------------------------------------------------- */

/**
 * The kernels of a separable filter, in a block of the caller's that lumiFilterSeparableInit_*() fills. It
 * holds pointers into itself, so a block is neither moved nor copied; runs only read it, and may share it.
 */
typedef struct LumFilterSeparableSpec LumFilterSeparableSpec;

/**
 * @name Separable filter: sizes
 *
 * Bytes of the spec and of the work buffer of lumiFilterSeparable_*(). With w and h the width and height of the
 * kernel, W the width of the region, C the channels, E the bytes of a kernel element (2 for #lumType16s, 4 for
 * #lumType32f):
 *
 *     spec    (w + h) * E + 127
 *     buffer  ((E * w + (W + w - 1) * h) * C + h) * 4 + 64
 *
 * in wrapping 32-bit arithmetic. The height of the region plays no part. A block may have any alignment. In a
 * 64-bit build the h row pointers of the buffer take 8 bytes each instead of 4.
 *
 * @param roiSize size of the largest region that is to be filtered, in pixels
 * @param kernelSize taps of the row kernel (width) and of the column kernel (height)
 * @param dataType element of the source: #lumType8u, #lumType16u, #lumType16s or #lumType32f
 * @param kernelType element of the kernels: #lumType16s or #lumType32f
 * @param numChannels 1, 3 or 4
 * @param size receives the bytes; written on success only
 * @retval lumStatusNullPointer size is null (the _L functions test this behind the sizes)
 * @retval lumStatusSizeError a width or height, of the region or of the kernel, below 1 or, in a 64-bit build,
 *         above 2147483647
 * @retval lumStatusDataTypeError dataType, then kernelType, is none of those above
 * @retval lumStatusChannelCountError numChannels is none of those above
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiFilterSeparableGetBufferSize(LumSize roiSize, LumSize kernelSize, LumDataType dataType,
                                                   LumDataType kernelType, int numChannels, Lum32s* size);
LUM_API LumStatus lumiFilterSeparableGetBufferSize_L(LumSizeL roiSize, LumSizeL kernelSize,
                                                     LumDataType dataType, LumDataType kernelType,
                                                     int numChannels, Lum32s* size);
LUM_API LumStatus lumiFilterSeparableGetSpecSize(LumSize kernelSize, LumDataType kernelType, int numChannels,
                                                 Lum32s* size);
LUM_API LumStatus lumiFilterSeparableGetSpecSize_L(LumSizeL kernelSize, LumDataType kernelType,
                                                   int numChannels, Lum32s* size);
/**@}*/

/**
 * @name Separable filter: kernels
 *
 * Copies a row kernel and a column kernel into a spec. Kernels of 16s serve the runs of 8u, 8u16s and 16s,
 * kernels of 32f those of 16u and 32f; a run does not test which it was given.
 *
 * @param kernelX row kernel, kernelSize.width elements
 * @param kernelY column kernel, kernelSize.height elements
 * @param kernelSize taps of the two kernels
 * @param divisor each of the two stages of a run multiplies its sums by 1 / divisor
 * @param scale kept in the spec; no run reads it
 * @param dataType element of the source: 16s kernels #lumType16s, #lumType8u (for 8u and 8u16s runs); 32f
 *        kernels #lumType8u, #lumType16u, #lumType32f
 * @param numChannels 1, 3 or 4
 * @param spec block of the size that lumiFilterSeparableGetSpecSize() reports
 * @retval lumStatusNullPointer kernelX, kernelY or spec is null
 * @retval lumStatusSizeError a width or height of the kernel below 1 or, in a 64-bit build, above 2147483647
 * @retval lumStatusDataTypeError dataType is none of those above
 * @retval lumStatusChannelCountError numChannels is none of those above
 * @retval lumStatusDivisorError divisor is 0
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiFilterSeparableInit_16s(const Lum16s* kernelX, const Lum16s* kernelY,
                                              LumSize kernelSize, int divisor, int scale,
                                              LumDataType dataType, int numChannels,
                                              LumFilterSeparableSpec* spec);
LUM_API LumStatus lumiFilterSeparableInit_16s_L(const Lum16s* kernelX, const Lum16s* kernelY,
                                                LumSizeL kernelSize, int divisor, int scale,
                                                LumDataType dataType, int numChannels,
                                                LumFilterSeparableSpec* spec);
LUM_API LumStatus lumiFilterSeparableInit_32f(const Lum32f* kernelX, const Lum32f* kernelY,
                                              LumSize kernelSize, LumDataType dataType, int numChannels,
                                              LumFilterSeparableSpec* spec);
LUM_API LumStatus lumiFilterSeparableInit_32f_L(const Lum32f* kernelX, const Lum32f* kernelY,
                                                LumSizeL kernelSize, LumDataType dataType, int numChannels,
                                                LumFilterSeparableSpec* spec);
/**@}*/

/**
 * @name Separable filter: runs
 *
 * With w and h the taps of the two kernels, ax = (w - 1) >> 1 and ay = (h - 1) >> 1 (an even kernel has one
 * more tap to the right and below), and ext the source extended by the border:
 *
 *     R(x, j)   = sum over i of kernelX[i] * ext(x - ax + i, j), times 1 / divisor
 *     dst(x, y) = sum over k of kernelY[k] * R(x, y - ay + k), times 1 / divisor
 *
 * All in single precision, in order of i and k; R is not rounded to integers. A caller whose kernels sum to S
 * each passes divisor S. An integer result is clamped to the range of its type and truncated toward zero: 2.9
 * becomes 2, -2.9 becomes -2. Neither kernel is reversed.
 *
 * The border follows the rule of the row pipelines along both axes: a side whose flag is set is read from
 * memory, and else #lumBorderReplicate, #lumBorderMirror (which goes on reflecting inside the region when it is
 * smaller than the border) or #lumBorderConstant. A row outside a constant border is not filtered: R is the
 * borderValue times the sum of kernelX, times 1 / divisor, all along the row. Regions smaller than the kernel
 * are valid.
 *
 * The denormal-operand exception is masked while a run works, and the SSE control word restored when it leaves.
 *
 * @param src first pixel of the source region
 * @param srcStep,dstStep bytes between rows
 * @param dst first pixel of the result; it may not overlap the source
 * @param roiSize size of the region in pixels
 * @param border #lumBorderInMemory, or #lumBorderReplicate, #lumBorderMirror or #lumBorderConstant with any
 *        flags
 * @param borderValue read for #lumBorderConstant: C1 one value, C3 and C4 one value a channel
 * @param spec kernels of the type that suits the run
 * @param buffer work memory of the size that lumiFilterSeparableGetBufferSize() reports; overwritten
 * @retval lumStatusNullPointer src, dst, spec or buffer is null
 * @retval lumStatusSizeError width or height below 1 or, in a 64-bit build, above 2147483647
 * @retval lumStatusNullPointer C3, C4: borderValue is null, whatever the border
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError the step of 16-bit or 32-bit elements is not a multiple of their size
 * @retval lumStatusBorderError border is none of those above
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiFilterSeparable_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                             LumSize roiSize, LumBorderType border, Lum8u borderValue,
                                             const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u_C3R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                             LumSize roiSize, LumBorderType border, const Lum8u* borderValue,
                                             const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u_C4R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                             LumSize roiSize, LumBorderType border, const Lum8u* borderValue,
                                             const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u16s_C1R(const Lum8u* src, int srcStep, Lum16s* dst, int dstStep,
                                                LumSize roiSize, LumBorderType border, Lum8u borderValue,
                                                const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u16s_C3R(const Lum8u* src, int srcStep, Lum16s* dst, int dstStep,
                                                LumSize roiSize, LumBorderType border,
                                                const Lum8u* borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u16s_C4R(const Lum8u* src, int srcStep, Lum16s* dst, int dstStep,
                                                LumSize roiSize, LumBorderType border,
                                                const Lum8u* borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16s_C1R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border, Lum16s borderValue,
                                              const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16s_C3R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border,
                                              const Lum16s* borderValue, const LumFilterSeparableSpec* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16s_C4R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border,
                                              const Lum16s* borderValue, const LumFilterSeparableSpec* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border, Lum16u borderValue,
                                              const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16u_C3R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border,
                                              const Lum16u* borderValue, const LumFilterSeparableSpec* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16u_C4R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border,
                                              const Lum16u* borderValue, const LumFilterSeparableSpec* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border, Lum32f borderValue,
                                              const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_32f_C3R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border,
                                              const Lum32f* borderValue, const LumFilterSeparableSpec* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_32f_C4R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border,
                                              const Lum32f* borderValue, const LumFilterSeparableSpec* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u_C1R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst,
                                               intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                               Lum8u borderValue, const LumFilterSeparableSpec* spec,
                                               Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u_C3R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst,
                                               intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                               const Lum8u* borderValue, const LumFilterSeparableSpec* spec,
                                               Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u_C4R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst,
                                               intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                               const Lum8u* borderValue, const LumFilterSeparableSpec* spec,
                                               Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u16s_C1R_L(const Lum8u* src, intptr_t srcStep, Lum16s* dst,
                                                  intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                  Lum8u borderValue, const LumFilterSeparableSpec* spec,
                                                  Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u16s_C3R_L(const Lum8u* src, intptr_t srcStep, Lum16s* dst,
                                                  intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                  const Lum8u* borderValue,
                                                  const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_8u16s_C4R_L(const Lum8u* src, intptr_t srcStep, Lum16s* dst,
                                                  intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                  const Lum8u* borderValue,
                                                  const LumFilterSeparableSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16s_C1R_L(const Lum16s* src, intptr_t srcStep, Lum16s* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                Lum16s borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16s_C3R_L(const Lum16s* src, intptr_t srcStep, Lum16s* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                const Lum16s* borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16s_C4R_L(const Lum16s* src, intptr_t srcStep, Lum16s* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                const Lum16s* borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16u_C1R_L(const Lum16u* src, intptr_t srcStep, Lum16u* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                Lum16u borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16u_C3R_L(const Lum16u* src, intptr_t srcStep, Lum16u* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                const Lum16u* borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_16u_C4R_L(const Lum16u* src, intptr_t srcStep, Lum16u* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                const Lum16u* borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_32f_C1R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                Lum32f borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_32f_C3R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                const Lum32f* borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiFilterSeparable_32f_C4R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                                intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                                const Lum32f* borderValue, const LumFilterSeparableSpec* spec,
                                                Lum8u* buffer);
/**@}*/

/* ------------------------------------------------------------------------------------------------------------
 * Linear filters: Gaussian
 * --------------------------------------------------------------------------------------------------------- */

/* ------------------------------------------------------------------------------------------------------------
 * Linear filters: fixed kernels and colour gradients
 * --------------------------------------------------------------------------------------------------------- */

/**
 * @name Derivative kernels
 *
 * The kernel of kernelSize taps for the derivative of order derivativeOrder: a single 1, smoothed with {1, 1}
 * kernelSize - derivativeOrder - 1 times and differenced with {-1, 1} derivativeOrder times. Order 0 gives the
 * row of binomial coefficients, {1, 2, 1} for three taps; order 1 of three taps gives {-1, 0, 1}. In 16s the
 * elements wrap beyond 16 bits. (I. Sobel, G. Feldman, "A 3x3 isotropic gradient operator for image
 * processing", 1968; in this general form P.-E. Danielsson, O. Seger, "Generalized and separable Sobel
 * operators", 1990.)
 *
 * @param kernel receives kernelSize elements
 * @param kernelSize taps: odd, above derivativeOrder
 * @param derivativeOrder 0 or above
 * @param sign below 0: all elements are negated
 * @retval lumStatusNullPointer kernel is null
 * @retval lumStatusSizeError kernelSize below 1 or even, derivativeOrder below 0, or kernelSize not above it
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiGenSobelKernel_16s(Lum16s* kernel, int kernelSize, int derivativeOrder, int sign);
LUM_API LumStatus lumiGenSobelKernel_32f(Lum32f* kernel, int kernelSize, int derivativeOrder, int sign);
/**@}*/

/**
 * @name Filters with built-in kernels: sizes of the work buffer
 *
 * With B = (roiSize.width + 15) >> 4, K = 3 or 5 the taps, T = 21 for #lumMask3x3 and 25 for #lumMask5x5, and R
 * and C the sizes of a row and a column pipeline of K taps (8u: those of 8u16s rows and 16s columns; 32f: those
 * of 32f), in wrapping 32-bit arithmetic:
 *
 *     cross derivative 8u16s   32 * B * T + 12 * K + 248 + R + C
 *     cross derivative 32f     64 * B * T + 12 * K + 248 + R + C
 *     Laplacian 8u16s          64 * B * T + 24 * K + 336 + R + C
 *     Laplacian 32f           128 * B * T + 24 * K + 336 + R + C
 *     low-pass 8u              32 * B * T + 12 * K + 248 + R + C
 *     low-pass 32f             64 * B * T + 12 * K + 184 + R + C
 *
 * @param roiSize size of the region in pixels
 * @param maskSize #lumMask3x3 or #lumMask5x5
 * @param bufferSize receives the bytes; written on success only
 * @retval lumStatusNullPointer bufferSize is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusMaskSizeError maskSize is none of those above
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiFilterSobelCrossGetBufferSize_8u16s_C1R(LumSize roiSize, LumMaskSize maskSize,
                                                              Lum32s* bufferSize);
LUM_API LumStatus lumiFilterSobelCrossGetBufferSize_32f_C1R(LumSize roiSize, LumMaskSize maskSize,
                                                            Lum32s* bufferSize);
LUM_API LumStatus lumiFilterLaplacianGetBufferSize_8u16s_C1R(LumSize roiSize, LumMaskSize maskSize,
                                                             Lum32s* bufferSize);
LUM_API LumStatus lumiFilterLaplacianGetBufferSize_32f_C1R(LumSize roiSize, LumMaskSize maskSize,
                                                           Lum32s* bufferSize);
LUM_API LumStatus lumiFilterLowpassGetBufferSize_8u_C1R(LumSize roiSize, LumMaskSize maskSize,
                                                        Lum32s* bufferSize);
LUM_API LumStatus lumiFilterLowpassGetBufferSize_32f_C1R(LumSize roiSize, LumMaskSize maskSize,
                                                         Lum32s* bufferSize);
/**@}*/

/**
 * @name Cross derivative
 *
 * dst = the source filtered along the rows and down the columns with {1, 0, -1} (#lumMask3x3) or {1, 2, 0, -2,
 * -1} (#lumMask5x5), not scaled. Exact in 8u16s. A flat image gives 0 exactly.
 *
 * @param src first pixel of the source region
 * @param srcStep,dstStep bytes between rows
 * @param dst first pixel of the result; it may not overlap the source
 * @param roiSize size of the region in pixels
 * @param maskSize #lumMask3x3 or #lumMask5x5
 * @param border #lumBorderInMemory, or #lumBorderReplicate, #lumBorderMirror or #lumBorderConstant with any
 *        flags, by the rule of the row pipelines along both axes
 * @param borderValue read for #lumBorderConstant
 * @param buffer work memory of the size that the query of the same filter and types reports; overwritten
 * @retval lumStatusNullPointer src, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError the step of 16-bit or 32-bit elements is not a multiple of their size
 * @retval lumStatusBorderError border is none of those above
 * @retval lumStatusMaskSizeError maskSize is none of those above
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiFilterSobelCrossBorder_8u16s_C1R(const Lum8u* src, int srcStep, Lum16s* dst,
                                                       int dstStep, LumSize roiSize, LumMaskSize maskSize,
                                                       LumBorderType border, Lum8u borderValue,
                                                       Lum8u* buffer);
LUM_API LumStatus lumiFilterSobelCrossBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                     LumSize roiSize, LumMaskSize maskSize,
                                                     LumBorderType border, Lum32f borderValue, Lum8u* buffer);
/**@}*/

/**
 * @name Laplacian
 *
 * #lumMask3x3 is the mask
 *
 *     2  0  2
 *     0 -8  0
 *     2  0  2
 *
 * and #lumMask5x5 the sum of two separable filters: {1, 4, 6, 4, 1} along the rows with {1, 0, -2, 0, 1} down
 * the columns, and the two the other way round. Not scaled; exact in 8u16s, where no sum passes the range of
 * the result. A flat image gives 0 exactly.
 *
 * @param src first pixel of the source region
 * @param srcStep,dstStep bytes between rows
 * @param dst first pixel of the result; it may not overlap the source
 * @param roiSize size of the region in pixels
 * @param maskSize #lumMask3x3 or #lumMask5x5
 * @param border #lumBorderInMemory, or #lumBorderReplicate, #lumBorderMirror or #lumBorderConstant with any
 *        flags, by the rule of the row pipelines along both axes
 * @param borderValue read for #lumBorderConstant
 * @param buffer work memory of the size that the query of the same filter and types reports; overwritten
 * @retval lumStatusNullPointer src, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError the step of 16-bit or 32-bit elements is not a multiple of their size
 * @retval lumStatusBorderError border is none of those above
 * @retval lumStatusMaskSizeError maskSize is none of those above
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiFilterLaplacianBorder_8u16s_C1R(const Lum8u* src, int srcStep, Lum16s* dst, int dstStep,
                                                      LumSize roiSize, LumMaskSize maskSize,
                                                      LumBorderType border, Lum8u borderValue, Lum8u* buffer);
LUM_API LumStatus lumiFilterLaplacianBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                    LumSize roiSize, LumMaskSize maskSize,
                                                    LumBorderType border, Lum32f borderValue, Lum8u* buffer);
/**@}*/

/**
 * @name Low-pass filter
 *
 * The mean of three by three or five by five pixels. With S the sum of the pixels:
 *
 *     8u   #lumMask3x3  ((S + 5) x 7280) >> 16
 *          #lumMask5x5  (S x 2622) >> 16
 *     32f  S, along the rows in order and then down the columns, times 1/9 or 1/25 in single precision
 *
 * A flat image of v gives v back: in 8u every v, in 32f every v whose sum is exact, as those of whole numbers
 * are.
 *
 * @param src first pixel of the source region
 * @param srcStep,dstStep bytes between rows
 * @param dst first pixel of the result; it may not overlap the source
 * @param roiSize size of the region in pixels
 * @param maskSize #lumMask3x3 or #lumMask5x5
 * @param border #lumBorderInMemory, or #lumBorderReplicate, #lumBorderMirror or #lumBorderConstant with any
 *        flags, by the rule of the row pipelines along both axes
 * @param borderValue read for #lumBorderConstant
 * @param buffer work memory of the size that the query of the same filter and types reports; overwritten
 * @retval lumStatusNullPointer src, dst or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError the step of 16-bit or 32-bit elements is not a multiple of their size
 * @retval lumStatusBorderError border is none of those above
 * @retval lumStatusMaskSizeError maskSize is none of those above
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiFilterLowpassBorder_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                                 LumSize roiSize, LumMaskSize maskSize, LumBorderType border,
                                                 Lum8u borderValue, Lum8u* buffer);
LUM_API LumStatus lumiFilterLowpassBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                  LumSize roiSize, LumMaskSize maskSize, LumBorderType border,
                                                  Lum32f borderValue, Lum8u* buffer);
/**@}*/

/**
 * @name Colour gradient to grey
 *
 * Reduces the three channels of a gradient to one:
 *
 *     #lumSpatialNormInf   the largest channel
 *     #lumSpatialNormL1    the mean: 8u   ((r + g + b) * 1365 + 2048) >> 12
 *                                    16u  (r + g + b + 1) / 3 in integers
 *                                    32f  (r + g + b) * 1/3 in single precision
 *     #lumSpatialNormL2    sqrt(r * r + g * g + b * b) * 0.57735026 in single precision; integers are rounded to
 *                          nearest, ties to even, and saturated
 *
 * White stays white in every norm.
 *
 * @param src first pixel of the source region, three channels
 * @param srcStep,dstStep bytes between rows
 * @param dst first pixel of the result, one channel
 * @param roiSize size of the region in pixels
 * @param norm as above
 * @retval lumStatusNullPointer src or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a step that is not a multiple of the element size
 * @retval lumStatusBadArgument norm is none of those above
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiGradientColorToGray_8u_C3C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                                   LumSize roiSize, LumSpatialNorm norm);
LUM_API LumStatus lumiGradientColorToGray_16u_C3C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                                    LumSize roiSize, LumSpatialNorm norm);
LUM_API LumStatus lumiGradientColorToGray_32f_C3C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                    LumSize roiSize, LumSpatialNorm norm);
/**@}*/

/* ------------------------------------------------------------------------------------------------------------
 * Lens geometry
 * --------------------------------------------------------------------------------------------------------- */

#ifdef __cplusplus
}
#endif

#endif
