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

/* ------------------------------------------------------------------------------------------------------------
 * Linear filters: Gaussian
 * --------------------------------------------------------------------------------------------------------- */

/**
 * Half the kernel of a Gaussian filter, laid into memory of the caller's by lumiFilterGaussianInit_L(). Five 32-bit
 * fields: kernelSize, kernelOffset (64), dataType, one that is not written, shift (0). The (kernelSize + 1) / 2
 * weights follow as Lum32f from the first 64-byte boundary at or behind the 20th byte, the outermost first, the
 * centre last. Runs only read it. It is found by rounding its address, so a block is neither moved nor copied.
 */
typedef struct LumFilterGaussianSpecL LumFilterGaussianSpecL;

/**
 * The Gaussian filter of the functions without _L, laid by lumiFilterGaussianInit(). Five 32-bit fields:
 * kernelSize, kernelOffset (20), dataType, border, shift (12 for 8u, 15 for 16u and 16s, 0 for 32f). The kernelSize
 * weights of the whole kernel follow from the first 16-byte boundary at or behind the 20th byte: Lum16s for 8u and
 * 16s, Lum16u for 16u, with `shift` bits behind the binary point, Lum32f for 32f. Runs do not read them; they read
 * the #LumFilterGaussianSpecL that stands directly behind, at byte 36 + 8 * ((kernelSize + 3) >> 2), in 32f at byte
 * 32 + 16 * ((kernelSize + 3) >> 2).
 */
typedef struct LumFilterGaussianSpec LumFilterGaussianSpec;

/**
 * @name Gaussian filter: memory
 *
 * With K = kernelSize and R = 4 * numChannels * width rounded up to a multiple of 64:
 *
 * - GetSpecSize, in both forms: *specSize = 4 * ((K + 1) >> 1) + 128, the bytes of a #LumFilterGaussianSpecL, and
 *   *initBufferSize = 64.
 * - GetBufferSize_L: *bufferSize = 12 * K + (K + 1) * R + 64, the work memory of runs.
 * - GetBufferSize: *specSize receives the bytes of a #LumFilterGaussianSpec with the #LumFilterGaussianSpecL behind
 *   it; it, and not what GetSpecSize reports, is the size of the block for lumiFilterGaussianInit(). *bufferSize
 *   is the work memory of runs and the largest of 64, the size of GetBufferSize_L, and the memory of a row and a
 *   column stage in fixed point: with m = min(K, height), u = (K + width) * numChannels rounded up to a multiple of
 *   8, and the sizes `row` and `column` that lumiFilterRowBorderPipelineGetBufferSize (8u16s, 16u, 16s, 32f) and
 *   lumiFilterColumnPipelineGetBufferSize (16s8u, 16u, 16s, 32f) report for K taps,
 *       - 32f: 2 * (16 + u * 4 * K / 2) + 64 + 4 * u * (K + m) + 32 + row + 32 + column + 32 + 4 * (K + m)
 *       - others: 2 * (16 + 2 * u * (K >> 1)) + 64 + 2 * u * (K + m) + 32 + row + 32 + column + 32 + 4 * (K + height)
 *
 * Memory for a region serves smaller regions. No block need be aligned. Sums wrap in 32 bits.
 *
 * @param roiSize the largest region in pixels
 * @param kernelSize taps in each direction, odd, 3 or more
 * @param dataType lumType8u, lumType16u, lumType16s or lumType32f
 * @param border as that of the runs
 * @param numChannels 1 or 3
 * @param specSize,initBufferSize,bufferSize receive bytes
 * @retval lumStatusNullPointer a result pointer is null
 * @retval lumStatusSizeError GetBufferSize: width or height below 1
 * @retval lumStatusBadArgument kernelSize below 3 or even
 * @retval lumStatusDataTypeError another data type
 * @retval lumStatusChannelCountError numChannels not 1 or 3
 * @retval lumStatusBorderError GetBufferSize_L: border negative or above 255, or not all four sides in memory and a kind
 *         other than lumBorderConstant, lumBorderReplicate and lumBorderMirror
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiFilterGaussianGetSpecSize_L(int kernelSize, LumDataType dataType, int numChannels,
                                                  Lum32s* specSize, Lum32s* initBufferSize);
LUM_API LumStatus lumiFilterGaussianGetSpecSize(int kernelSize, LumDataType dataType, int numChannels,
                                                Lum32s* specSize, Lum32s* initBufferSize);
LUM_API LumStatus lumiFilterGaussianGetBufferSize_L(LumSizeL roiSize, int kernelSize, LumDataType dataType,
                                                    LumBorderType border, int numChannels,
                                                    Lum32s* bufferSize);
LUM_API LumStatus lumiFilterGaussianGetBufferSize(LumSize roiSize, int kernelSize, LumDataType dataType,
                                                  int numChannels, Lum32s* specSize, Lum32s* bufferSize);
/**@}*/

/**
 * @name Gaussian filter: initialisers
 *
 * Samples the Gaussian at whole distances r = 0 .. kernelSize / 2 from the centre, w(r) = exp(-r^2 / (2 * sigma^2)),
 * and divides by the sum over the whole kernel. The exponent is formed in single precision, its exponential in double,
 * and all else in single. In one dimension for both directions, since a Gaussian separates (Marr and Hildreth, Theory
 * of Edge Detection, 1980).
 *
 * A very small sigma gives the weight 1 at the centre and 0 elsewhere. The fixed-point weights of lumiFilterGaussianInit()
 * are the shares of the sum times 2^shift, a half added, truncated; a share of 1 in 16s wraps to -32768.
 *
 * @param roiSize size of the region in pixels; only tested
 * @param kernelSize taps in each direction, odd, 3 or more
 * @param sigma standard deviation in pixels, above 0
 * @param border what lies outside the region; kept by lumiFilterGaussianInit(), else only tested
 * @param dataType lumType8u, lumType16u, lumType16s or lumType32f
 * @param numChannels 1 or 3
 * @param spec memory of the size that GetSpecSize (Init_L) or GetBufferSize (Init) reports as specSize
 * @param buffer scratch of initBufferSize bytes; left untouched
 * @retval lumStatusNullPointer spec or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusBadArgument kernelSize below 3 or even
 * @retval lumStatusDataTypeError another data type
 * @retval lumStatusChannelCountError numChannels not 1 or 3
 * @retval lumStatusBadArgument sigma at or below 0
 * @retval lumStatusBorderError border negative or above 255, or a kind other than lumBorderConstant, lumBorderReplicate
 *         and lumBorderMirror; without one of these kinds, Init takes exactly lumBorderInMemory, and Init_L any
 *         border with the flags of all four sides
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiFilterGaussianInit_L(LumSizeL roiSize, int kernelSize, Lum32f sigma,
                                           LumBorderType border, LumDataType dataType, int numChannels,
                                           LumFilterGaussianSpecL* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussianInit(LumSize roiSize, int kernelSize, Lum32f sigma, LumBorderType border,
                                         LumDataType dataType, int numChannels, LumFilterGaussianSpec* spec,
                                         Lum8u* buffer);
/**@}*/

/**
 * @name Gaussian filter
 *
 * With the half kernel g[0] .. g[a] of the object, a = kernelSize / 2, in each channel and in single precision
 * throughout:
 *
 *     t(x, y) = sum over j = a .. 1 of (src(x - j, y) + src(x + j, y)) * g[a - j], then + src(x, y) * g[a]
 *     dst(x, y) = sum over i = 0 .. a - 1 of (t(x, y - a + i) + t(x, y + a - i)) * g[i], then + t(x, y) * g[a]
 *
 * each operation rounded, in this order. Integers are rounded once, at the end: to nearest, ties to even, and
 * saturated by value; 32f stores the sum. A flat region stays flat up to the last bit of single precision.
 *
 * Outside the region src is, side by side: memory where the side's in-memory flag is set; the nearest edge pixel
 * (lumBorderReplicate); the reflection about the edge pixel, back and forth in regions smaller than the border
 * (lumBorderMirror; a width or height of 1 repeats its one pixel); borderValue (lumBorderConstant), where rows above
 * and below hold t = borderValue. With the flags of all four sides any kind is lumBorderInMemory.
 *
 * From 0x80000 bytes of singles on, 4 * channels * width * height in wrapping 32-bit arithmetic, a run asks for the
 * size of the largest cache; where it is not larger than these bytes, rows of dst that are all aligned to 16 bytes
 * are written past the cache. dst must not overlap src.
 *
 * @param src first pixel of the source region
 * @param srcStep,dstStep bytes between rows
 * @param dst first pixel of the result
 * @param roiSize size of the region in pixels
 * @param border what lies outside the region
 * @param borderValue one value a channel; read for lumBorderConstant only, and may be null otherwise
 * @param spec the object of an initialiser
 * @param buffer work memory of the size that the form's GetBufferSize reports
 * @retval lumStatusNullPointer src, dst, buffer or spec is null
 * @retval lumStatusStepError without _L: a step below 1
 * @retval lumStatusSizeError without _L: width or height below 1
 * @retval lumStatusBadArgument without _L: kernelSize of the object below 3 or even
 * @retval lumStatusDataTypeError without _L: an unknown data type in the object
 * @retval lumStatusStepError a step below the row's bytes; ahead of the test of the size
 * @retval lumStatusSizeError width or height below 1; with 64-bit sizes, above 2^31 - 1 too, and then ahead of the steps
 * @retval lumStatusStepAlignmentError 16u, 16s, 32f: a step that is not a multiple of the element size
 * @retval lumStatusBorderError border negative or above 255
 * @retval lumStatusNullPointer lumBorderConstant, not all four sides in memory, and borderValue is null
 * @retval lumStatusBorderError not all four sides in memory, and another kind
 * @retval lumStatusBadArgument kernelSize of the object below 3 or even
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiFilterGaussian_8u_C1R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst,
                                              intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                              const Lum8u* borderValue, const LumFilterGaussianSpecL* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussian_8u_C3R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst,
                                              intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                              const Lum8u* borderValue, const LumFilterGaussianSpecL* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussian_16u_C1R_L(const Lum16u* src, intptr_t srcStep, Lum16u* dst,
                                               intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                               const Lum16u* borderValue, const LumFilterGaussianSpecL* spec,
                                               Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussian_16u_C3R_L(const Lum16u* src, intptr_t srcStep, Lum16u* dst,
                                               intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                               const Lum16u* borderValue, const LumFilterGaussianSpecL* spec,
                                               Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussian_16s_C1R_L(const Lum16s* src, intptr_t srcStep, Lum16s* dst,
                                               intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                               const Lum16s* borderValue, const LumFilterGaussianSpecL* spec,
                                               Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussian_16s_C3R_L(const Lum16s* src, intptr_t srcStep, Lum16s* dst,
                                               intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                               const Lum16s* borderValue, const LumFilterGaussianSpecL* spec,
                                               Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussian_32f_C1R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                               intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                               const Lum32f* borderValue, const LumFilterGaussianSpecL* spec,
                                               Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussian_32f_C3R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                               intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                               const Lum32f* borderValue, const LumFilterGaussianSpecL* spec,
                                               Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussian_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                            LumSize roiSize, LumBorderType border, const Lum8u* borderValue,
                                            const LumFilterGaussianSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussian_8u_C3R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                            LumSize roiSize, LumBorderType border, const Lum8u* borderValue,
                                            const LumFilterGaussianSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussian_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                             LumSize roiSize, LumBorderType border, const Lum16u* borderValue,
                                             const LumFilterGaussianSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussian_16u_C3R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                             LumSize roiSize, LumBorderType border, const Lum16u* borderValue,
                                             const LumFilterGaussianSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussian_16s_C1R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                             LumSize roiSize, LumBorderType border, const Lum16s* borderValue,
                                             const LumFilterGaussianSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussian_16s_C3R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                             LumSize roiSize, LumBorderType border, const Lum16s* borderValue,
                                             const LumFilterGaussianSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussian_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                             LumSize roiSize, LumBorderType border, const Lum32f* borderValue,
                                             const LumFilterGaussianSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussian_32f_C3R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                             LumSize roiSize, LumBorderType border, const Lum32f* borderValue,
                                             const LumFilterGaussianSpec* spec, Lum8u* buffer);
/**@}*/

/**
 * @name Gaussian filter with the border of its object
 *
 * The function without Border in its name, with the border that was given to lumiFilterGaussianInit(). borderValue is one
 * value with one channel, and points to three with three channels.
 *
 * @param src first pixel of the source region
 * @param srcStep,dstStep bytes between rows
 * @param dst first pixel of the result
 * @param roiSize size of the region in pixels
 * @param borderValue used for lumBorderConstant only; with three channels, may be null otherwise
 * @param spec the object of lumiFilterGaussianInit()
 * @param buffer work memory of the size that lumiFilterGaussianGetBufferSize() reports
 * @return as the function without Border in its name
 */
/**@{*/
LUM_API LumStatus lumiFilterGaussianBorder_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                                  LumSize roiSize, Lum8u borderValue,
                                                  const LumFilterGaussianSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussianBorder_8u_C3R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                                  LumSize roiSize, const Lum8u* borderValue,
                                                  const LumFilterGaussianSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussianBorder_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                                   LumSize roiSize, Lum16u borderValue,
                                                   const LumFilterGaussianSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussianBorder_16u_C3R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                                   LumSize roiSize, const Lum16u* borderValue,
                                                   const LumFilterGaussianSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussianBorder_16s_C1R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                                   LumSize roiSize, Lum16s borderValue,
                                                   const LumFilterGaussianSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussianBorder_16s_C3R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                                   LumSize roiSize, const Lum16s* borderValue,
                                                   const LumFilterGaussianSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussianBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                   LumSize roiSize, Lum32f borderValue,
                                                   const LumFilterGaussianSpec* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussianBorder_32f_C3R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                   LumSize roiSize, const Lum32f* borderValue,
                                                   const LumFilterGaussianSpec* spec, Lum8u* buffer);
/**@}*/

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
