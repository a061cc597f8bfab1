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

/**
 * @name Sums of frames
 *
 * srcDst(x, y) = srcDst(x, y) + src(x, y), in single precision; integers become singles first, which is
 * exact.
 *
 * With a mask, pixels whose mask byte is 0 keep their value: in scalar steps they are skipped; in whole
 * vectors a source of 0 is added whatever src holds, so that a -0.0 in the accumulator comes back as +0.0. In
 * each row the pixels before srcDst's first 16-byte boundary are scalar steps, then come vectors of 4, then 1
 * to 3 scalar steps; a row that never comes to a boundary is all scalar steps.
 *
 * @param src first pixel of the source region
 * @param mask first pixel of the mask, one byte a pixel
 * @param srcDst first pixel of the accumulator, read and written
 * @param srcStep,maskStep,srcDstStep bytes between rows; a mask's step may have any value of at least width
 * @param roiSize size of the region in pixels
 * @retval lumStatusNullPointer src, mask or srcDst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError a step of 16u or 32f elements that is not a multiple of the element
 *     size. With 16u sources srcStep is tested entirely before the other two steps; otherwise all alignments
 *     come last.
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiAdd_8u32f_C1IR(const Lum8u* src, int srcStep, Lum32f* srcDst, int srcDstStep,
                                     LumSize roiSize);
LUM_API LumStatus lumiAdd_16u32f_C1IR(const Lum16u* src, int srcStep, Lum32f* srcDst, int srcDstStep,
                                      LumSize roiSize);
LUM_API LumStatus lumiAdd_8u32f_C1IMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                      Lum32f* srcDst, int srcDstStep, LumSize roiSize);
LUM_API LumStatus lumiAdd_16u32f_C1IMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                       Lum32f* srcDst, int srcDstStep, LumSize roiSize);
LUM_API LumStatus lumiAdd_32f_C1IMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                    Lum32f* srcDst, int srcDstStep, LumSize roiSize);
/**@}*/

/**
 * @name Sums of squared frames
 *
 * srcDst(x, y) = srcDst(x, y) + (src(x, y) x src(x, y)), the square and the sum each rounded to single
 * precision. Masks act as in the sums of frames.
 *
 * @param src first pixel of the source region
 * @param mask first pixel of the mask, one byte a pixel
 * @param srcDst first pixel of the accumulator, read and written
 * @param srcStep,maskStep,srcDstStep bytes between rows; a mask's step may have any value of at least width
 * @param roiSize size of the region in pixels
 * @retval lumStatusNullPointer src, mask or srcDst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError as in the sums of frames
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiAddSquare_8u32f_C1IR(const Lum8u* src, int srcStep, Lum32f* srcDst, int srcDstStep,
                                           LumSize roiSize);
LUM_API LumStatus lumiAddSquare_16u32f_C1IR(const Lum16u* src, int srcStep, Lum32f* srcDst, int srcDstStep,
                                            LumSize roiSize);
LUM_API LumStatus lumiAddSquare_32f_C1IR(const Lum32f* src, int srcStep, Lum32f* srcDst, int srcDstStep,
                                         LumSize roiSize);
LUM_API LumStatus lumiAddSquare_8u32f_C1IMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                            Lum32f* srcDst, int srcDstStep, LumSize roiSize);
LUM_API LumStatus lumiAddSquare_16u32f_C1IMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                             Lum32f* srcDst, int srcDstStep, LumSize roiSize);
LUM_API LumStatus lumiAddSquare_32f_C1IMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                          Lum32f* srcDst, int srcDstStep, LumSize roiSize);
/**@}*/

/**
 * @name Sums of products of two frames
 *
 * srcDst(x, y) = srcDst(x, y) + (src1(x, y) x src2(x, y)), the product and the sum each rounded to single
 * precision.
 *
 * With a mask, pixels whose mask byte is 0 take a src1 of 0, and the formula runs: an infinity or a NaN in
 * src2 makes the accumulator NaN there. The first four pixels of an aligned row are stored past the cache
 * where the images fill the largest cache of the machine.
 *
 * @param src1,src2 first pixels of the source regions
 * @param mask first pixel of the mask, one byte a pixel
 * @param srcDst first pixel of the accumulator, read and written
 * @param src1Step,src2Step,maskStep,srcDstStep bytes between rows; a mask's step may have any value of at
 *     least width
 * @param roiSize size of the region in pixels
 * @retval lumStatusNullPointer src1, src2, mask or srcDst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError a step of 16u or 32f elements that is not a multiple of the element
 *     size. With 16u sources their steps are tested entirely before the other two; otherwise all alignments
 *     come last.
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiAddProduct_8u32f_C1IR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                            Lum32f* srcDst, int srcDstStep, LumSize roiSize);
LUM_API LumStatus lumiAddProduct_16u32f_C1IR(const Lum16u* src1, int src1Step, const Lum16u* src2,
                                             int src2Step, Lum32f* srcDst, int srcDstStep, LumSize roiSize);
LUM_API LumStatus lumiAddProduct_32f_C1IR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                          Lum32f* srcDst, int srcDstStep, LumSize roiSize);
LUM_API LumStatus lumiAddProduct_8u32f_C1IMR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                             const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep,
                                             LumSize roiSize);
LUM_API LumStatus lumiAddProduct_16u32f_C1IMR(const Lum16u* src1, int src1Step, const Lum16u* src2,
                                              int src2Step, const Lum8u* mask, int maskStep, Lum32f* srcDst,
                                              int srcDstStep, LumSize roiSize);
LUM_API LumStatus lumiAddProduct_32f_C1IMR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, Lum32f* srcDst, int srcDstStep,
                                           LumSize roiSize);
/**@}*/

/**
 * @name Exponentially weighted averages of frames
 *
 * srcDst(x, y) = srcDst(x, y) + ((src(x, y) - srcDst(x, y)) x alpha): (1 - alpha) of the old value and alpha
 * of the new one, with one multiplication. Subtraction, multiplication and addition each round to single
 * precision.
 *
 * With a mask, pixels whose mask byte is 0 add +0.0 in place of the weighted difference, whatever src and
 * alpha are. Stores are those of the sums of products.
 *
 * @param src first pixel of the source region
 * @param mask first pixel of the mask, one byte a pixel
 * @param srcDst first pixel of the accumulator, read and written
 * @param srcStep,maskStep,srcDstStep bytes between rows; a mask's step may have any value of at least width
 * @param roiSize size of the region in pixels
 * @param alpha the weight of src; any value
 * @retval lumStatusNullPointer src, mask or srcDst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError as in the sums of frames
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiAddWeighted_8u32f_C1IR(const Lum8u* src, int srcStep, Lum32f* srcDst, int srcDstStep,
                                             LumSize roiSize, Lum32f alpha);
LUM_API LumStatus lumiAddWeighted_16u32f_C1IR(const Lum16u* src, int srcStep, Lum32f* srcDst, int srcDstStep,
                                              LumSize roiSize, Lum32f alpha);
LUM_API LumStatus lumiAddWeighted_32f_C1IR(const Lum32f* src, int srcStep, Lum32f* srcDst, int srcDstStep,
                                           LumSize roiSize, Lum32f alpha);
LUM_API LumStatus lumiAddWeighted_8u32f_C1IMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                              Lum32f* srcDst, int srcDstStep, LumSize roiSize, Lum32f alpha);
LUM_API LumStatus lumiAddWeighted_16u32f_C1IMR(const Lum16u* src, int srcStep, const Lum8u* mask,
                                               int maskStep, Lum32f* srcDst, int srcDstStep, LumSize roiSize,
                                               Lum32f alpha);
LUM_API LumStatus lumiAddWeighted_32f_C1IMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                            Lum32f* srcDst, int srcDstStep, LumSize roiSize, Lum32f alpha);
/**@}*/

/**
 * @name Weighted average of two images
 *
 * dst(x, y) = src2(x, y) + ((src1(x, y) - src2(x, y)) x alpha), each operation rounded to single precision.
 * dst may be src1 or src2 itself (same pointer and step).
 *
 * @param src1,src2 first pixels of the source regions
 * @param dst first pixel of the result
 * @param src1Step,src2Step,dstStep bytes between rows
 * @param roiSize size of the region in pixels
 * @param alpha the weight of src1; any value
 * @retval lumStatusNullPointer src1, src2 or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError a step that is not a multiple of 4
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiAddWeighted_32f_C1R(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                          Lum32f* dst, int dstStep, LumSize roiSize, Lum32f alpha);
/**@}*/

/* ------------------------------------------------------------------------------------------------------------
 * Statistics: means and deviations
 * --------------------------------------------------------------------------------------------------------- */

/**
 * @name Mean of the pixels that a mask selects
 *
 * mean = S / n in double precision, for the sum S of the n pixels whose mask byte is not 0; 0.0 where there
 * are none, which is no warning. Integer sums are exact. Singles add up in single precision within stretches
 * of a row and in double across them, in an order that depends on the width alone. In the C3C functions the
 * pixels are those of one channel.
 *
 * @param src first pixel of the region; in C3C functions of three interleaved channels
 * @param mask first pixel of the mask, one byte a pixel
 * @param srcStep,maskStep bytes between rows
 * @param roiSize size of the region in pixels
 * @param coi the channel, 1 to 3
 * @param mean takes the mean
 * @retval lumStatusNullPointer src, mask or mean is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a srcStep that is not a multiple of the element size. It is
 *     tested between srcStep and maskStep, in lumiMean_32f_C1MR after both.
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiMean_8u_C1MR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                   LumSize roiSize, Lum64f* mean);
LUM_API LumStatus lumiMean_16u_C1MR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                    LumSize roiSize, Lum64f* mean);
LUM_API LumStatus lumiMean_32f_C1MR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                    LumSize roiSize, Lum64f* mean);
LUM_API LumStatus lumiMean_8u_C3CMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                    LumSize roiSize, Lum32s coi, Lum64f* mean);
LUM_API LumStatus lumiMean_16u_C3CMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                     LumSize roiSize, Lum32s coi, Lum64f* mean);
LUM_API LumStatus lumiMean_32f_C3CMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                     LumSize roiSize, Lum32s coi, Lum64f* mean);
/**@}*/

/**
 * @name Mean and standard deviation of a region
 *
 * mean = S / n and stdDev = sqrt(|Q / n - mean x mean|) in double precision, for the sum S of n pixels and
 * the sum Q of their squares; both 0.0 where a mask selects none, which is no warning. Without a mask n is
 * width x height in 32-bit arithmetic. Integer sums are exact, singles add up as in the means.
 *
 * A difference of nearly equal numbers says little, so the deviation of singles is computed once more, as
 * sqrt(D / n) for the sum D of (p - m) x (p - m) with the mean m rounded to single precision, where 0.05 x
 * mean x mean > stdDev x stdDev. (Two passes: T. F. Chan, G. H. Golub, R. J. LeVeque, Algorithms for
 * Computing the Sample Variance, The American Statistician 37, 1983.)
 *
 * @param src first pixel of the region; in C3C functions of three interleaved channels
 * @param mask first pixel of the mask, one byte a pixel
 * @param srcStep,maskStep bytes between rows
 * @param roiSize size of the region in pixels
 * @param coi the channel, 1 to 3
 * @param mean takes the mean; may be null
 * @param stdDev takes the standard deviation; may be null
 * @retval lumStatusNullPointer src or mask is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a srcStep that is not a multiple of the element size, tested
 *     before maskStep
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiMean_StdDev_8u_C1R(const Lum8u* src, int srcStep, LumSize roiSize, Lum64f* mean,
                                         Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_16u_C1R(const Lum16u* src, int srcStep, LumSize roiSize, Lum64f* mean,
                                          Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_32f_C1R(const Lum32f* src, int srcStep, LumSize roiSize, Lum64f* mean,
                                          Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_8u_C1MR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                          LumSize roiSize, Lum64f* mean, Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_16u_C1MR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                           LumSize roiSize, Lum64f* mean, Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_32f_C1MR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                           LumSize roiSize, Lum64f* mean, Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_8u_C3CR(const Lum8u* src, int srcStep, LumSize roiSize, Lum32s coi,
                                          Lum64f* mean, Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_16u_C3CR(const Lum16u* src, int srcStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* mean, Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_32f_C3CR(const Lum32f* src, int srcStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* mean, Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_8u_C3CMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                           LumSize roiSize, Lum32s coi, Lum64f* mean, Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_16u_C3CMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                            LumSize roiSize, Lum32s coi, Lum64f* mean, Lum64f* stdDev);
LUM_API LumStatus lumiMean_StdDev_32f_C3CMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                            LumSize roiSize, Lum32s coi, Lum64f* mean, Lum64f* stdDev);
/**@}*/

/* ------------------------------------------------------------------------------------------------------------
 * Statistics: extreme values
 * --------------------------------------------------------------------------------------------------------- */

/**
 * @name Smallest and largest value with their places
 *
 * minVal = min of src(x, y), maxVal = max of src(x, y), over the pixels of the region, or over those with a mask
 * byte other than 0. minIndex and maxIndex are the first occurrences in scan order: the topmost row that holds the
 * value and in it the leftmost (selected) pixel, counted from the region's first pixel. In 32f NaN is never an
 * extreme: where there is nothing else, minVal is +infinity, maxVal -infinity, and both places are (-1, 0).
 * Where one side only is asked for and no pixel equals the value found, its place is (-1, 0).
 *
 * @param src first pixel of the region
 * @param srcStep,maskStep bytes between rows
 * @param mask first byte of the mask, one byte a pixel; 0 excludes the pixel
 * @param roiSize size of the region in pixels
 * @param coi C3C: the channel looked at, 1 to 3, of three interleaved channels
 * @param minVal,maxVal the values, in singles for every element type; either may be null
 * @param minIndex,maxIndex the places; either may be null. Nothing is computed for an output that is null.
 * @retval lumStatusNullPointer src or mask is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: srcStep is not a multiple of the element size
 * @retval lumStatusStepError maskStep below the width (tested behind the alignment of srcStep)
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @retval lumStatusEmptyMask M, a warning: the mask selects no pixel, and every output given holds 0 or (0, 0);
 *         also whenever all four outputs are null, whatever the mask holds
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiMinMaxIndx_8u_C1R(const Lum8u* src, int srcStep, LumSize roiSize, Lum32f* minVal,
                                        Lum32f* maxVal, LumPoint* minIndex, LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_16u_C1R(const Lum16u* src, int srcStep, LumSize roiSize, Lum32f* minVal,
                                         Lum32f* maxVal, LumPoint* minIndex, LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_32f_C1R(const Lum32f* src, int srcStep, LumSize roiSize, Lum32f* minVal,
                                         Lum32f* maxVal, LumPoint* minIndex, LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_8u_C1MR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                         LumSize roiSize, Lum32f* minVal, Lum32f* maxVal, LumPoint* minIndex,
                                         LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_16u_C1MR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                          LumSize roiSize, Lum32f* minVal, Lum32f* maxVal, LumPoint* minIndex,
                                          LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_32f_C1MR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                          LumSize roiSize, Lum32f* minVal, Lum32f* maxVal, LumPoint* minIndex,
                                          LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_8u_C3CR(const Lum8u* src, int srcStep, LumSize roiSize, Lum32s coi,
                                         Lum32f* minVal, Lum32f* maxVal, LumPoint* minIndex,
                                         LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_16u_C3CR(const Lum16u* src, int srcStep, LumSize roiSize, Lum32s coi,
                                          Lum32f* minVal, Lum32f* maxVal, LumPoint* minIndex,
                                          LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_32f_C3CR(const Lum32f* src, int srcStep, LumSize roiSize, Lum32s coi,
                                          Lum32f* minVal, Lum32f* maxVal, LumPoint* minIndex,
                                          LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_8u_C3CMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                          LumSize roiSize, Lum32s coi, Lum32f* minVal, Lum32f* maxVal,
                                          LumPoint* minIndex, LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_16u_C3CMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                           LumSize roiSize, Lum32s coi, Lum32f* minVal, Lum32f* maxVal,
                                           LumPoint* minIndex, LumPoint* maxIndex);
LUM_API LumStatus lumiMinMaxIndx_32f_C3CMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                           LumSize roiSize, Lum32s coi, Lum32f* minVal, Lum32f* maxVal,
                                           LumPoint* minIndex, LumPoint* maxIndex);
/**@}*/

/* ------------------------------------------------------------------------------------------------------------
 * Statistics: norms
 * --------------------------------------------------------------------------------------------------------- */

/**
 * @name Norm of an image under a mask
 *
 * Over the pixels with a mask byte other than 0: Inf is max |src(x, y)|, L1 is sum |src(x, y)|, L2 is
 * sqrt(sum src(x, y)^2). An empty mask gives 0.
 *
 * 8u and 16u: the maximum or sum is an exact integer, converted to double before the root. 32f: a row is summed in
 * single precision, in an order that depends on nothing but its width; rows are added in double, and the total is
 * rounded to single before the root is taken in double. NaN is never the largest, but makes a sum NaN.
 *
 * @param src first pixel of the region
 * @param srcStep,maskStep bytes between rows
 * @param mask first byte of the mask, one byte a pixel; 0 excludes the pixel
 * @param roiSize size of the region in pixels
 * @param coi C3C: the channel looked at, 1 to 3, of three interleaved channels
 * @param value the result
 * @retval lumStatusNullPointer src, mask or value is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: srcStep is not a multiple of the element size
 * @retval lumStatusStepError maskStep below the width (tested behind the alignment of the other steps)
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiNorm_Inf_8u_C1MR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                       LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_Inf_8u_C3CMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                        LumSize roiSize, Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNorm_Inf_16u_C1MR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                        LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_Inf_16u_C3CMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                         LumSize roiSize, Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNorm_Inf_32f_C1MR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                        LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_Inf_32f_C3CMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                         LumSize roiSize, Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNorm_L1_8u_C1MR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                      LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_L1_8u_C3CMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                       LumSize roiSize, Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNorm_L1_16u_C1MR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                       LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_L1_16u_C3CMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                        LumSize roiSize, Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNorm_L1_32f_C1MR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                       LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_L1_32f_C3CMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                        LumSize roiSize, Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNorm_L2_8u_C1MR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                      LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_L2_8u_C3CMR(const Lum8u* src, int srcStep, const Lum8u* mask, int maskStep,
                                       LumSize roiSize, Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNorm_L2_16u_C1MR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                       LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_L2_16u_C3CMR(const Lum16u* src, int srcStep, const Lum8u* mask, int maskStep,
                                        LumSize roiSize, Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNorm_L2_32f_C1MR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                       LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNorm_L2_32f_C3CMR(const Lum32f* src, int srcStep, const Lum8u* mask, int maskStep,
                                        LumSize roiSize, Lum32s coi, Lum64f* value);
/**@}*/

/**
 * @name Norm of the difference of two images under a mask
 *
 * The norm, as above, of src1(x, y) - src2(x, y). The difference is exact for integers, and rounded to single
 * precision in 32f.
 *
 * @param src1,src2 first pixels of the two regions
 * @param src1Step,src2Step,maskStep bytes between rows
 * @param mask first byte of the mask, one byte a pixel; 0 excludes the pixel
 * @param roiSize size of the region in pixels
 * @param coi C3C: the channel looked at, 1 to 3, of three interleaved channels
 * @param value the result
 * @retval lumStatusNullPointer src1, src2, mask or value is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError src1Step or src2Step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: src1Step or src2Step is not a multiple of the element size
 * @retval lumStatusStepError maskStep below the width (tested behind the alignment of the other steps)
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiNormDiff_Inf_8u_C1MR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormDiff_Inf_8u_C3CMR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                            const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                            Lum64f* value);
LUM_API LumStatus lumiNormDiff_Inf_16u_C1MR(const Lum16u* src1, int src1Step, const Lum16u* src2,
                                            int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                            Lum64f* value);
LUM_API LumStatus lumiNormDiff_Inf_16u_C3CMR(const Lum16u* src1, int src1Step, const Lum16u* src2,
                                             int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                             Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNormDiff_Inf_32f_C1MR(const Lum32f* src1, int src1Step, const Lum32f* src2,
                                            int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                            Lum64f* value);
LUM_API LumStatus lumiNormDiff_Inf_32f_C3CMR(const Lum32f* src1, int src1Step, const Lum32f* src2,
                                             int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                             Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L1_8u_C1MR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L1_8u_C3CMR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* value);
LUM_API LumStatus lumiNormDiff_L1_16u_C1MR(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L1_16u_C3CMR(const Lum16u* src1, int src1Step, const Lum16u* src2,
                                            int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                            Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L1_32f_C1MR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L1_32f_C3CMR(const Lum32f* src1, int src1Step, const Lum32f* src2,
                                            int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                            Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L2_8u_C1MR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L2_8u_C3CMR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* value);
LUM_API LumStatus lumiNormDiff_L2_16u_C1MR(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L2_16u_C3CMR(const Lum16u* src1, int src1Step, const Lum16u* src2,
                                            int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                            Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L2_32f_C1MR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormDiff_L2_32f_C3CMR(const Lum32f* src1, int src1Step, const Lum32f* src2,
                                            int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                            Lum32s coi, Lum64f* value);
/**@}*/

/**
 * @name Relative norm of the difference of two images under a mask
 *
 * The norm of src1(x, y) - src2(x, y) divided by the norm of src2(x, y), both over the selected pixels and in double
 * precision. L2 divides the two sums and takes one root. 32f: what is divided are the maxima or sums as rounded to
 * single precision.
 *
 * A denominator of 0 divides nothing: value is +infinity where the numerator is above 0, and the NaN with the bits
 * 0xFFF8000000000000 where it is 0 (so too for an empty mask) or NaN.
 *
 * @param src1,src2 first pixels of the two regions
 * @param src1Step,src2Step,maskStep bytes between rows
 * @param mask first byte of the mask, one byte a pixel; 0 excludes the pixel
 * @param roiSize size of the region in pixels
 * @param coi C3C: the channel looked at, 1 to 3, of three interleaved channels
 * @param value the result
 * @retval lumStatusNullPointer src1, src2, mask or value is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError src1Step or src2Step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: src1Step or src2Step is not a multiple of the element size
 * @retval lumStatusStepError maskStep below the width (tested behind the alignment of the other steps)
 * @retval lumStatusChannelOfInterestError coi outside 1 to 3
 * @retval lumStatusZeroDenominator a warning: the norm of src2 is 0
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiNormRel_Inf_8u_C1MR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_Inf_8u_C3CMR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* value);
LUM_API LumStatus lumiNormRel_Inf_16u_C1MR(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_Inf_16u_C3CMR(const Lum16u* src1, int src1Step, const Lum16u* src2,
                                            int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                            Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNormRel_Inf_32f_C1MR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_Inf_32f_C3CMR(const Lum32f* src1, int src1Step, const Lum32f* src2,
                                            int src2Step, const Lum8u* mask, int maskStep, LumSize roiSize,
                                            Lum32s coi, Lum64f* value);
LUM_API LumStatus lumiNormRel_L1_8u_C1MR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                         const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_L1_8u_C3CMR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                          Lum64f* value);
LUM_API LumStatus lumiNormRel_L1_16u_C1MR(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_L1_16u_C3CMR(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* value);
LUM_API LumStatus lumiNormRel_L1_32f_C1MR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_L1_32f_C3CMR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* value);
LUM_API LumStatus lumiNormRel_L2_8u_C1MR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                         const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_L2_8u_C3CMR(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                          Lum64f* value);
LUM_API LumStatus lumiNormRel_L2_16u_C1MR(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_L2_16u_C3CMR(const Lum16u* src1, int src1Step, const Lum16u* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* value);
LUM_API LumStatus lumiNormRel_L2_32f_C1MR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                          const Lum8u* mask, int maskStep, LumSize roiSize, Lum64f* value);
LUM_API LumStatus lumiNormRel_L2_32f_C3CMR(const Lum32f* src1, int src1Step, const Lum32f* src2, int src2Step,
                                           const Lum8u* mask, int maskStep, LumSize roiSize, Lum32s coi,
                                           Lum64f* value);
/**@}*/

/* ------------------------------------------------------------------------------------------------------------
 * Integral images and the deviation of rectangles
 * --------------------------------------------------------------------------------------------------------- */

/**
 * @name Integral image
 *
 * dst(x + 1, y + 1) = value + the sum of src(i, j) over i <= x, j <= y; row 0 and column 0 hold `value`. The
 * sum over any rectangle is then four reads (Crow, Summed-area tables for texture mapping, SIGGRAPH 1984).
 * Each row is scanned from the left with a running sum r: r = r + src(x, y), dst(x + 1, y + 1) = dst(x + 1,
 * y) + r.
 *
 * - 8u32s: integers that wrap modulo 2 to the 32.
 * - 8u32f: r is an exact integer; it is rounded to single precision and added to the row above in single
 *   precision.
 * - 32f: r is in single precision and rounds at each pixel; the start value is 0.
 *
 * @param src first pixel of the source region
 * @param srcStep,dstStep bytes between rows
 * @param dst first element of the result: roiSize.width + 1 columns, roiSize.height + 1 rows
 * @param roiSize size of the source region in pixels
 * @param value start value
 * @retval lumStatusNullPointer src or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the source's row, or dstStep below width + 1 elements
 * @retval lumStatusStepAlignmentError dstStep, and srcStep in 32f, not a multiple of the element size
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiIntegral_8u32s_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep,
                                         LumSize roiSize, Lum32s value);
LUM_API LumStatus lumiIntegral_8u32f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                         LumSize roiSize, Lum32f value);
LUM_API LumStatus lumiIntegral_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                       LumSize roiSize);
/**@}*/

/**
 * @name Integral images of pixels and of their squares
 *
 * dst as from the integral image of the same types, and sqr by the same scan over the squares of the pixels,
 * from `sqrValue`. Squares in 32s wrap modulo 2 to the 32; in 64f they are exact below 2 to the 53.
 *
 * @param src first pixel of the source region
 * @param srcStep,dstStep,sqrStep bytes between rows
 * @param dst,sqr first elements of the results: roiSize.width + 1 columns, roiSize.height + 1 rows each
 * @param roiSize size of the source region in pixels
 * @param value,sqrValue start values
 * @retval lumStatusNullPointer src, dst or sqr is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the source's row, or dstStep or sqrStep below width + 1 elements
 * @retval lumStatusStepAlignmentError dstStep or sqrStep not a multiple of its element size
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiSqrIntegral_8u32s_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep,
                                            Lum32s* sqr, int sqrStep, LumSize roiSize, Lum32s value,
                                            Lum32s sqrValue);
LUM_API LumStatus lumiSqrIntegral_8u32s64f_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep,
                                               Lum64f* sqr, int sqrStep, LumSize roiSize, Lum32s value,
                                               Lum64f sqrValue);
LUM_API LumStatus lumiSqrIntegral_8u32f64f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                               Lum64f* sqr, int sqrStep, LumSize roiSize, Lum32f value,
                                               Lum64f sqrValue);
/**@}*/

/**
 * @name Integral image of tilted rectangles
 *
 * T(x, y) belongs to the 45-degree cone of pixels that opens upward (Lienhart and Maydt, An extended set of
 * Haar-like features for rapid object detection, ICIP 2002). Rows 0 and 1 hold `value`. Each source row s =
 * src(., y) gives a row C = T(., y + 2) from A = T(., y) and B = T(., y + 1):
 *
 * - C(0) = B(1)
 * - C(x) = s(x - 1) + s(x) + B(x - 1) - (A(x) - B(x + 1)), for x from 1 to width - 1
 * - C(width) = s(width - 1) + B(width - 1) + (B(width + 1) - A(width))
 * - C(width + 1) = B(width)
 *
 * 8u32s wraps modulo 2 to the 32. In 8u32f the sum of the pixels is exact, then rounded to single precision,
 * and the rest is in single precision in the order given.
 *
 * @param src first pixel of the source region
 * @param srcStep,dstStep bytes between rows
 * @param dst first element of the result: roiSize.width + 2 columns, roiSize.height + 2 rows
 * @param roiSize size of the source region in pixels
 * @param value start value
 * @retval lumStatusNullPointer src or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the source's row, or dstStep below width + 2 elements
 * @retval lumStatusStepAlignmentError dstStep not a multiple of the element size
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiTiltedIntegral_8u32s_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep,
                                               LumSize roiSize, Lum32s value);
LUM_API LumStatus lumiTiltedIntegral_8u32f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                               LumSize roiSize, Lum32f value);
/**@}*/

/**
 * @name Integral images of tilted rectangles, of pixels and of their squares
 *
 * dst as from the tilted integral image of the same types, and sqr by the same four steps over the squares of
 * the pixels, from `sqrValue`. Squares in 32s wrap modulo 2 to the 32; in 64f they are combined in double
 * precision.
 *
 * @param src first pixel of the source region
 * @param srcStep,dstStep,sqrStep bytes between rows
 * @param dst,sqr first elements of the results: roiSize.width + 2 columns, roiSize.height + 2 rows each
 * @param roiSize size of the source region in pixels
 * @param value,sqrValue start values
 * @retval lumStatusNullPointer src, dst or sqr is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the source's row, or dstStep or sqrStep below width + 2 elements
 * @retval lumStatusStepAlignmentError dstStep or sqrStep not a multiple of its element size
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiTiltedSqrIntegral_8u32s_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep,
                                                  Lum32s* sqr, int sqrStep, LumSize roiSize, Lum32s value,
                                                  Lum32s sqrValue);
LUM_API LumStatus lumiTiltedSqrIntegral_8u32s64f_C1R(const Lum8u* src, int srcStep, Lum32s* dst, int dstStep,
                                                     Lum64f* sqr, int sqrStep, LumSize roiSize, Lum32s value,
                                                     Lum64f sqrValue);
LUM_API LumStatus lumiTiltedSqrIntegral_8u32f64f_C1R(const Lum8u* src, int srcStep, Lum32f* dst, int dstStep,
                                                     Lum64f* sqr, int sqrStep, LumSize roiSize, Lum32f value,
                                                     Lum64f sqrValue);
/**@}*/

/**
 * @name Standard deviation of a rectangle at every pixel
 *
 * dst(i, j) is the standard deviation of the pixels in the rectangle `rect` moved by (i, j), from the
 * integral P of the pixels (src) and the integral of their squares (sqr). With w and h the rectangle's width
 * and height, N = w h, a = P(i + x + w, j + y + h), b = P(i + x + w, j + y), c = P(i + x, j + y), d = P(i +
 * x, j + y + h), S is a - b + c - d, and Q the same of the squares:
 *
 * - 32s Sfs: S and Q wrap. mean = S / N, var = Q / N - mean x mean, all in single precision; var below 0 is
 *   0. dst = sqrt(var) x 2^-scaleFactor + 0.5 in double precision, truncated toward zero and saturated. The
 *   power is made by a shift of a signed 32-bit 1 by |scaleFactor| modulo 32.
 * - 32s32f: S wraps, Q = ((a - b) + c) - d in double. mean = S / N in single precision; var = Q / N - mean
 *   x mean in double, rounded to single.
 * - 32f: S = (a - b) + (c - d) in single precision, Q in the same order in double. mean = S x (1 / N),
 *   var = Q x (1 / N) - mean x mean in double, rounded to single.
 *
 * In 32s32f and 32f a var not above 0 is 0, and dst is its single-precision square root.
 *
 * @param src first element of the integral image of the pixels
 * @param srcStep,sqrStep,dstStep bytes between rows
 * @param sqr first element of the integral image of the squares
 * @param dst first element of the result
 * @param roiSize size of the result in pixels
 * @param rect the rectangle, where it lies for result (0, 0)
 * @param scaleFactor the deviation is multiplied by 2 to the power of minus this; any value
 * @retval lumStatusNullPointer src, sqr or dst is null
 * @retval lumStatusSizeError roiSize: width or height below 1
 * @retval lumStatusStepError srcStep or sqrStep below rect.x + roiSize.width + rect.width elements (a
 *         count in wrapping 32-bit arithmetic), or dstStep below the result's row
 * @retval lumStatusStepAlignmentError a step that is not a multiple of its element size
 * @retval lumStatusSizeError rect.x or rect.y below 0, rect.width or rect.height below 1
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiRectStdDev_32s_C1RSfs(const Lum32s* src, int srcStep, const Lum32s* sqr, int sqrStep,
                                            Lum32s* dst, int dstStep, LumSize roiSize, LumRect rect,
                                            int scaleFactor);
LUM_API LumStatus lumiRectStdDev_32s32f_C1R(const Lum32s* src, int srcStep, const Lum64f* sqr, int sqrStep,
                                            Lum32f* dst, int dstStep, LumSize roiSize, LumRect rect);
LUM_API LumStatus lumiRectStdDev_32f_C1R(const Lum32f* src, int srcStep, const Lum64f* sqr, int sqrStep,
                                         Lum32f* dst, int dstStep, LumSize roiSize, LumRect rect);
/**@}*/

/**
 * @name Standard deviation of a tilted rectangle at every pixel
 *
 * As for upright rectangles, on tilted integral images and with N = 2 w h. With r = rect.x + rect.y and
 * c = rect.x - rect.y the corners are read at A (c + i, r + j), B (c + i + w, r + j + w),
 * C (c + i + w - h, r + j + w + h) and D (c + i - h, r + j + h), each a column and a row. The column of D may
 * be negative: the pointers must lie so that all reads are within the integral images, which is not tested.
 *
 * - 32s Sfs: S = A + C - (B + D) and Q wrap. mean = S / N and Q / N in single precision; var = Q / N - mean
 *   x mean in double, rounded to single; below 0 it is 0. dst as for upright rectangles.
 * - 32s32f: S wraps, Q = (A + C) - (B + D) in double. mean = S / N in single precision; var = Q / N - mean
 *   x mean in double, rounded to single.
 * - 32f: S and Q are ((A - B) + C) - D, mean = S / N, var = Q / N - mean x mean, all in double; var is
 *   rounded to single.
 *
 * In 32s32f and 32f a var not above 0 is 0, and dst is its single-precision square root.
 *
 * @param src element (0, 0) of the tilted integral image of the pixels
 * @param srcStep,sqrStep,dstStep bytes between rows
 * @param sqr element (0, 0) of the tilted integral image of the squares
 * @param dst first element of the result
 * @param roiSize size of the result in pixels
 * @param rect the rectangle, where it lies for result (0, 0)
 * @param scaleFactor the deviation is multiplied by 2 to the power of minus this; any value
 * @retval lumStatusNullPointer src, sqr or dst is null
 * @retval lumStatusSizeError roiSize: width or height below 1
 * @retval lumStatusStepError srcStep or sqrStep below
 *         rect.width + roiSize.width + rect.x + rect.y + rect.height - 1 elements (a count in wrapping 32-bit
 *         arithmetic), or dstStep below the result's row
 * @retval lumStatusStepAlignmentError a step that is not a multiple of its element size
 * @retval lumStatusSizeError rect.x or rect.y below 0, rect.width or rect.height below 1
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiTiltedRectStdDev_32s_C1RSfs(const Lum32s* src, int srcStep, const Lum32s* sqr,
                                                  int sqrStep, Lum32s* dst, int dstStep, LumSize roiSize,
                                                  LumRect rect, int scaleFactor);
LUM_API LumStatus lumiTiltedRectStdDev_32s32f_C1R(const Lum32s* src, int srcStep, const Lum64f* sqr,
                                                  int sqrStep, Lum32f* dst, int dstStep, LumSize roiSize,
                                                  LumRect rect);
LUM_API LumStatus lumiTiltedRectStdDev_32f_C1R(const Lum32f* src, int srcStep, const Lum64f* sqr, int sqrStep,
                                               Lum32f* dst, int dstStep, LumSize roiSize, LumRect rect);
/**@}*/

/* ------------------------------------------------------------------------------------------------------------
 * Haar cascades
 * --------------------------------------------------------------------------------------------------------- */

/**
 * One stage of a boosted cascade, built in the caller's memory by lumiHaarClassifierInit_32f() and its siblings.
 *
 * A stage is a list of weak classifiers; a classifier is a few weighted rectangles, a threshold and two values. On
 * an integral image, the classifier's sum at a pixel is compared with its threshold times the pixel's deviation,
 * and one of the two values is added to the pixel's total. A pixel whose total does not reach the threshold of the
 * stage leaves the mask, and the next stage skips it. The integral images are those of lumiIntegral_32f_C1R() and
 * its siblings, the deviations those of lumiRectStdDev_32f_C1R() and its siblings, both over the window.
 *
 * P. Viola, M. Jones: Rapid Object Detection using a Boosted Cascade of Simple Features (CVPR 2001); tilted
 * rectangles: R. Lienhart, J. Maydt: An Extended Set of Haar-like Features for Rapid Object Detection (ICIP 2002).
 *
 * The object holds pointers into itself: it is neither moved nor copied. It needs no alignment.
 */
typedef struct LumHaarClassifier LumHaarClassifier;

/**
 * Bytes of a stage.
 *
 * With L = length and N the sum of num, in 32 bits: 24 L + 36 N + 52 + 16 N + 64 for #lumType32s, and
 * 24 L + 36 N + 52 + (12 L + 24 N + 384) + 64 for #lumType32f, in wrapping arithmetic. Where pointers are wider the
 * number is larger.
 *
 * @param dataType #lumType32s or #lumType32f: the Init that is to follow
 * @param roiSize size of the region; has no effect on the number
 * @param num rectangles of each classifier
 * @param length number of classifiers
 * @param size receives the bytes
 * @retval lumStatusNullPointer num or size is null
 * @retval lumStatusSizeError length, a side of roiSize, or an entry of num below 1
 * @retval lumStatusDataTypeError another dataType
 * @return lumStatusOk
 */
LUM_API LumStatus lumiHaarClassifierGetSize(LumDataType dataType, LumSize roiSize, const Lum32s* num,
                                            int length, Lum32s* size);

/**
 * @name Building a stage
 *
 * A rectangle's sum at a place p of an integral image I is I(p + A) - I(p + B) - I(p + C) + I(p + D). Its corners,
 * with x, y, w, h as given:
 *
 *     upright  A = (x + w, y + h)          B = (x, y + h)      C = (x + w, y)      D = (x, y)
 *     tilted   A = (x + w - h, y + w + h)  B = (x - h, y + h)  C = (x + w, y + w)  D = (x, y)
 *
 * The upright Init orders the classifiers anew: first those of 2 rectangles, then those of 3, then the rest, in the
 * caller's order within each; totals are summed in that order. The tilted Init keeps the caller's order.
 *
 * @param spec block of the bytes that lumiHaarClassifierGetSize() gives
 * @param rects the rectangles of all classifiers, one classifier's behind the other's
 * @param weights weight of each rectangle
 * @param thresholds threshold of each classifier
 * @param val1 of each classifier, the value added where its sum is below threshold x deviation
 * @param val2 of each classifier, the value added elsewhere
 * @param num rectangles of each classifier
 * @param length number of classifiers
 * @retval lumStatusNullPointer a pointer is null
 * @retval lumStatusSizeError length or an entry of num below 1
 * @retval lumStatusBadArgument a rectangle with x or y below 0 or a side below 1, or, tilted, with h above x + 1:
 * the object is left partly built, and is to be discarded
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiHaarClassifierInit_32f(LumHaarClassifier* spec, const LumRect* rects,
                                             const Lum32f* weights, const Lum32f* thresholds,
                                             const Lum32f* val1, const Lum32f* val2, const Lum32s* num,
                                             int length);
LUM_API LumStatus lumiHaarClassifierInit_32s(LumHaarClassifier* spec, const LumRect* rects,
                                             const Lum32s* weights, const Lum32s* thresholds,
                                             const Lum32s* val1, const Lum32s* val2, const Lum32s* num,
                                             int length);
LUM_API LumStatus lumiTiltedHaarClassifierInit_32f(LumHaarClassifier* spec, const LumRect* rects,
                                                   const Lum32f* weights, const Lum32f* thresholds,
                                                   const Lum32f* val1, const Lum32f* val2, const Lum32s* num,
                                                   int length);
LUM_API LumStatus lumiTiltedHaarClassifierInit_32s(LumHaarClassifier* spec, const LumRect* rects,
                                                   const Lum32s* weights, const Lum32s* thresholds,
                                                   const Lum32s* val1, const Lum32s* val2, const Lum32s* num,
                                                   int length);
/**@}*/

/**
 * @name Window of a stage
 *
 * The largest x of the corners C and the largest y of the corners A: how far to the right and downward the
 * rectangles reach from a pixel. The two names are one function.
 *
 * @param spec the stage
 * @param size receives the window's width and height
 * @retval lumStatusNullPointer spec or size is null
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiGetHaarClassifierSize_32f(const LumHaarClassifier* spec, LumSize* size);
LUM_API LumStatus lumiGetHaarClassifierSize_32s(const LumHaarClassifier* spec, LumSize* size);
/**@}*/

/**
 * @name Tilting part of a stage
 *
 * Turns chosen classifiers of an upright stage into tilted ones, for the mixed apply functions. With w and h the
 * sides of a rectangle at (x, y), flag 0 turns it about its lower left corner: A = (x, y + h), B = (x - h, y),
 * C = (x + w, y + h - w), D = (x + w - h, y - w); any other flag gives the corners of
 * lumiTiltedHaarClassifierInit_32f(). A stage is tilted once only; a mask without a set byte changes nothing.
 *
 * @param mask a byte for each classifier, in the caller's order: not 0 tilts it
 * @param flag the form of the tilted rectangles
 * @param spec the stage
 * @retval lumStatusNullPointer mask or spec is null
 * @retval lumStatusBadArgument the stage has tilted classifiers already
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiTiltHaarFeatures_32f(const Lum8u* mask, Lum32s flag, LumHaarClassifier* spec);
LUM_API LumStatus lumiTiltHaarFeatures_32s(const Lum8u* mask, Lum32s flag, LumHaarClassifier* spec);
/**@}*/

/**
 * @name Applying a stage
 *
 * At each pixel with a mask byte that is not 0: from a total of 0, for each classifier, t is the sum of its
 * rectangles' sums times their weights, and val1 is added to the total where t is below threshold x norm, else val2.
 * Pixels whose total is below the call's threshold have their mask byte set to 0; all other bytes stay as they are.
 *
 * - 32f: single precision. Where the first weight of all classifiers truncates to -1 it is taken for -1. A NaN in t
 *   or norm takes val1; a total that is NaN clears the pixel.
 * - 32s32f: rectangle sums wrap in 32 bits and are converted to single precision. A NaN takes val2; a total that is
 *   NaN keeps the pixel.
 * - 32s_C1RSfs: rectangle sums wrap in 32 bits; products and their sum have 64 bits, the sum is shifted left by
 *   -scaleFactor (64 and more leave 0) and compared with the 64-bit product of threshold and norm; totals wrap.
 *
 * Objects of lumiHaarClassifierInit_32f() serve 32f and 32s32f, those of lumiHaarClassifierInit_32s() serve 32s.
 * The rectangles of all pixels of the region must lie in the integral image; nothing tests it. The call writes into
 * the object, so one object serves one call at a time.
 *
 * @param src place of the region's first pixel in the integral image
 * @param srcStep,normStep,maskStep bytes between rows
 * @param norm deviations, one a pixel of the region
 * @param mask one byte a pixel; read and written
 * @param roiSize size of the region in pixels
 * @param positive in: pixels set in the mask, by which the call chooses its way; with 0 the mask stays as it is. Out:
 * pixels that are still set
 * @param threshold threshold of the stage
 * @param spec the stage
 * @param scaleFactor minus the shift of the sums, at most 0
 * @retval lumStatusNullPointer src, norm, mask, positive or spec is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep or normStep below 4 x width, or maskStep below width
 * @retval lumStatusStepAlignmentError srcStep or normStep is no multiple of 4
 * @retval lumStatusBadArgument 32s_C1RSfs: scaleFactor above 0
 * @retval lumStatusNullPointer the object has no table area
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiApplyHaarClassifier_32f_C1R(const Lum32f* src, int srcStep, const Lum32f* norm,
                                                  int normStep, Lum8u* mask, int maskStep, LumSize roiSize,
                                                  Lum32s* positive, Lum32f threshold,
                                                  LumHaarClassifier* spec);
LUM_API LumStatus lumiApplyHaarClassifier_32s32f_C1R(const Lum32s* src, int srcStep, const Lum32f* norm,
                                                     int normStep, Lum8u* mask, int maskStep, LumSize roiSize,
                                                     Lum32s* positive, Lum32f threshold,
                                                     LumHaarClassifier* spec);
LUM_API LumStatus lumiApplyHaarClassifier_32s_C1RSfs(const Lum32s* src, int srcStep, const Lum32s* norm,
                                                     int normStep, Lum8u* mask, int maskStep, LumSize roiSize,
                                                     Lum32s* positive, Lum32s threshold,
                                                     LumHaarClassifier* spec, int scaleFactor);
/**@}*/

/**
 * @name Applying a stage with upright and tilted classifiers
 *
 * As the plain functions, on two integral images: tilted classifiers read tilt, from one row below and one element
 * to the right of the pixel's place, all others read src. Every weight is multiplied. In 32f and 32s32f a NaN takes
 * val2, and a total that is NaN keeps the pixel. The object is only read: calls may share it.
 *
 * @param src place of the region's first pixel in the integral image
 * @param tilt place of the region's first pixel in the tilted integral image
 * @param srcStep,tiltStep,normStep,maskStep bytes between rows
 * @param norm deviations, one a pixel of the region
 * @param mask one byte a pixel; read and written
 * @param roiSize size of the region in pixels
 * @param positive out: pixels that are still set in the mask
 * @param threshold threshold of the stage
 * @param spec the stage
 * @param scaleFactor minus the shift of the sums, at most 0
 * @retval lumStatusNullPointer src, tilt, norm, mask, positive or spec is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep, tiltStep or normStep below 4 x width, or maskStep below width
 * @retval lumStatusStepAlignmentError srcStep, tiltStep or normStep is no multiple of 4
 * @retval lumStatusBadArgument 32s_C1RSfs: scaleFactor above 0
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiApplyMixedHaarClassifier_32f_C1R(const Lum32f* src, int srcStep, const Lum32f* tilt,
                                                       int tiltStep, const Lum32f* norm, int normStep,
                                                       Lum8u* mask, int maskStep, LumSize roiSize,
                                                       Lum32s* positive, Lum32f threshold,
                                                       const LumHaarClassifier* spec);
LUM_API LumStatus lumiApplyMixedHaarClassifier_32s32f_C1R(const Lum32s* src, int srcStep, const Lum32s* tilt,
                                                          int tiltStep, const Lum32f* norm, int normStep,
                                                          Lum8u* mask, int maskStep, LumSize roiSize,
                                                          Lum32s* positive, Lum32f threshold,
                                                          const LumHaarClassifier* spec);
LUM_API LumStatus lumiApplyMixedHaarClassifier_32s_C1RSfs(const Lum32s* src, int srcStep, const Lum32s* tilt,
                                                          int tiltStep, const Lum32s* norm, int normStep,
                                                          Lum8u* mask, int maskStep, LumSize roiSize,
                                                          Lum32s* positive, Lum32s threshold,
                                                          const LumHaarClassifier* spec, int scaleFactor);
/**@}*/

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
 * @param divisor 16s: each of the two stages of a run multiplies its sums by 1 / divisor
 * @param scale 16s: kept in the spec; no run reads it
 * @param dataType element of the source: 16s kernels #lumType16s, #lumType8u (for 8u and 8u16s runs); 32f
 *        kernels #lumType8u, #lumType16u, #lumType32f
 * @param numChannels 1, 3 or 4
 * @param spec block of the size that lumiFilterSeparableGetSpecSize() reports
 * @retval lumStatusNullPointer kernelX, kernelY or spec is null
 * @retval lumStatusSizeError a width or height of the kernel below 1 or, in a 64-bit build, above 2147483647
 * @retval lumStatusDataTypeError dataType is none of those above
 * @retval lumStatusChannelCountError numChannels is none of those above
 * @retval lumStatusDivisorError 16s: divisor is 0
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
 * The denormal-operand exception is masked while a run works. Where that changed the mask, or the run raised the
 * denormal flag, the SSE control word is put back as it was found; otherwise the other exception flags that a
 * run raises stay.
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
 * @retval lumStatusBorderError GetBufferSize_L: border negative or above 255, or not all four sides in memory and a
 *         kind other than lumBorderConstant, lumBorderReplicate and lumBorderMirror
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
 * A very small sigma gives the weight 1 at the centre and 0 elsewhere. The fixed-point weights of
 * lumiFilterGaussianInit() are the shares of the sum times 2^shift, a half added, truncated; a share of 1 in 16s wraps
 * to -32768.
 *
 * @param roiSize size of the region in pixels; only tested
 * @param kernelSize taps in each direction, odd, 3 or more
 * @param sigma standard deviation in pixels, above 0; a NaN is not refused, and the weights in single precision are
 *        then NaN
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
 * saturated by value; 32f stores the sum. A flat region stays flat up to the last few bits of single precision.
 *
 * Outside the region src is, side by side: memory where the side's in-memory flag is set; the nearest edge pixel
 * (lumBorderReplicate); the reflection about the edge pixel, back and forth in regions smaller than the border
 * (lumBorderMirror; a width or height of 1 repeats its one pixel); borderValue (lumBorderConstant), where rows above
 * and below hold t = borderValue. With the flags of all four sides any kind is lumBorderInMemory.
 *
 * From 0x80000 bytes of singles on, 4 * channels * width * height in wrapping 32-bit arithmetic, a run asks for the
 * size of the largest cache; where it is not larger than these bytes, rows of dst that are all aligned to 16 bytes
 * are written past the cache. dst may be src itself (same pointer and step) unless the border mirrors at the bottom;
 * other overlap is not supported.
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
 * @retval lumStatusSizeError width or height below 1; with 64-bit sizes, above 2^31 - 1 too, and then ahead of the
 *         steps
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
 * The function without Border in its name, with the border that was given to lumiFilterGaussianInit(). borderValue is
 * one value with one channel, and points to three with three channels.
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
 * dst = the source filtered along the rows and then down the columns with {1, 0, -1} (#lumMask3x3) or {1, 2, 0, -2,
 * -1} (#lumMask5x5), not scaled. Exact in 8u16s; 32f computes of the values v0, v1, ... under the taps, along the rows
 * and down the columns alike, each operation rounded to single precision:
 *
 *     #lumMask3x3  v0 - v2
 *     #lumMask5x5  (v0 - v4) + 2 * (v1 - v3)
 *
 * A flat image gives 0 exactly.
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
 * the result. 32f computes, each operation rounded to single precision:
 *
 *     #lumMask3x3  2 * (a(x, y - 1) + a(x, y + 1)) - 8 * src(x, y), with a(x, y) = src(x - 1, y) + src(x + 1, y)
 *     #lumMask5x5  D down the columns of (S along the rows) + S down the columns of (D along the rows), where of five
 *                  values S = ((v0 + v4) + 4 * (v1 + v3)) + 6 * v2 and D = (v0 + v4) - 2 * v2
 *
 * A flat image gives 0 exactly.
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
 * up to 671088 are.
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
 * Of integers, white stays white in every norm. Of 32f, equal channels come back in the first norm, and their magnitude
 * comes back in #lumSpatialNormL2 to within a rounding or two where the sum of their squares does not overflow and no
 * square falls below the normal singles. The largest channel of 32f is found from r to b; where one of two is a NaN, or
 * both are zeros, the later counts as the larger.
 *
 * @param src first pixel of the source region, three channels
 * @param srcStep,dstStep bytes between rows
 * @param dst first pixel of the result, one channel; it may be src itself (same pointer and step), other overlap is not
 *        supported
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

/**
 * Size in bytes of the buffer of lumiUndistortRadial_* and lumiCreateMapCameraUndistort_32f_C1R(): the width
 * rounded up to a multiple of 4, times 24, plus 32; in wrapping 32-bit arithmetic.
 *
 * @param roiSize size of the region in pixels
 * @param size the result
 * @retval lumStatusNullPointer size is null
 * @retval lumStatusSizeError width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiUndistortGetSize(LumSize roiSize, Lum32s* size);

/**
 * @name Correction of radial distortion
 *
 * dst(x, y) = src(sx, sy), with the radial terms of Brown's model (Close-range camera calibration,
 * Photogrammetric Engineering 37, 1971). In single precision, x and y counted from the region's first pixel:
 *
 * - dx = x - cx, dy = y - cy
 * - a = (dx x dx) x (1 / (fx x fx)), b = (dy x dy) x (1 / (fy x fy))
 * - t = (k2 x a + k1) x a + (k2 x b + k1) x b + 2 x k2 x a x b
 * - sx = x + dx x t, sy = y + dy x t
 *
 * A pixel is written only where 0 <= sx < width - 1 and 0 <= sy < height - 1; all others keep what they hold.
 * With u and v the fractions of sx and sy over the pixel s00 at their truncated coordinates, s01 to its right
 * and s10 and s11 below these two, the result is (s00 x ((1 - u) x (1 - v)) + s01 x (u x (1 - v))) + (s10 x
 * ((1 - u) x v) + s11 x (u x v)); in 8u and 16u a half is added and the sum truncated. All arithmetic rounds to
 * nearest even, whatever mode the caller has set, and the caller's mode is back in place afterwards.
 *
 * The buffer is optional and does not change a bit of the result: with it, what depends on the column alone
 * is computed once and not in every row. It needs no alignment.
 *
 * @param src first pixel of the source region; nothing outside the region is read
 * @param srcStep,dstStep bytes between rows
 * @param dst first pixel of the result, which is not src
 * @param roiSize size of both regions in pixels
 * @param fx,fy focal lengths in pixels
 * @param cx,cy optical centre in pixels
 * @param k1,k2 first and second radial coefficient
 * @param buffer work memory of lumiUndistortGetSize() bytes, or null
 * @retval lumStatusNullPointer src or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: a step that is not a multiple of the element size
 * @retval lumStatusBadArgument fx or fy is 0
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiUndistortRadial_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                             LumSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy,
                                             Lum32f k1, Lum32f k2, Lum8u* buffer);
LUM_API LumStatus lumiUndistortRadial_8u_C3R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                             LumSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy,
                                             Lum32f k1, Lum32f k2, Lum8u* buffer);
LUM_API LumStatus lumiUndistortRadial_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                              LumSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy,
                                              Lum32f k1, Lum32f k2, Lum8u* buffer);
LUM_API LumStatus lumiUndistortRadial_16u_C3R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                              LumSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy,
                                              Lum32f k1, Lum32f k2, Lum8u* buffer);
LUM_API LumStatus lumiUndistortRadial_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                              LumSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy,
                                              Lum32f k1, Lum32f k2, Lum8u* buffer);
LUM_API LumStatus lumiUndistortRadial_32f_C3R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                              LumSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy,
                                              Lum32f k1, Lum32f k2, Lum8u* buffer);
/**@}*/

/**
 * Coordinate maps of a lens correction, for a remapping of the caller's: xMap(x, y) and yMap(x, y) are the
 * place in the distorted picture of the corrected picture's pixel (x, y). No place is tested.
 *
 * Where p1 and p2 are both 0 the maps are sx and sy of the correction of radial distortion, bit by bit.
 * Otherwise, in single precision, with X = (x - cx) / fx, Y = (y - cy) / fy, r2 = X X + Y Y and R = 1 + k1 r2
 * + k2 r2 r2:
 *
 * - xMap = fx x (X R + 2 p1 X Y + p2 (r2 + 2 X X)) + cx
 * - yMap = fy x (Y R + p1 (r2 + 2 Y Y) + 2 p2 X Y) + cy
 *
 * All arithmetic rounds to nearest even, whatever mode the caller has set, and the caller's mode is back in place
 * afterwards. The buffer is optional and does not change a bit of the result.
 *
 * @param xMap,yMap first elements of the maps
 * @param xStep,yStep bytes between rows
 * @param roiSize size of the region in pixels
 * @param fx,fy focal lengths in pixels
 * @param cx,cy optical centre in pixels
 * @param k1,k2 first and second radial coefficient
 * @param p1,p2 first and second tangential coefficient
 * @param buffer work memory of lumiUndistortGetSize() bytes, or null
 * @retval lumStatusNullPointer xMap or yMap is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below width x 4 bytes
 * @retval lumStatusStepAlignmentError a step that is not a multiple of 4
 * @retval lumStatusBadArgument fx or fy is 0
 * @return lumStatusOk
 */
LUM_API LumStatus lumiCreateMapCameraUndistort_32f_C1R(Lum32f* xMap, int xStep, Lum32f* yMap, int yStep,
                                                       LumSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx,
                                                       Lum32f cy, Lum32f k1, Lum32f k2, Lum32f p1, Lum32f p2,
                                                       Lum8u* buffer);

/**
 * @name Pixels along a line
 *
 * Copies the pixels of the straight line from point1 to point2, both included, into a row (Bresenham,
 * Algorithm for computer control of a digital plotter, IBM Systems Journal 4, 1965). The major axis is the
 * longer one, y where both are equally long. With major and minor the lengths along the two axes and e =
 * major at first: copy a pixel; subtract 2 x minor from e; where e is below 0 now, step along the minor axis
 * and add 2 x major to e; step along the major axis.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows
 * @param roiSize size of the region in pixels
 * @param dst the row: max(|x2 - x1|, |y2 - y1|) + 1 pixels
 * @param point1,point2 first and last pixel of the line; they may be the same
 * @retval lumStatusNullPointer src or dst is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError srcStep below the row's bytes
 * @retval lumStatusStepAlignmentError 16u, 32f: srcStep not a multiple of the element size
 * @retval lumStatusOutOfRange a point outside the region
 * @retval lumStatusBadValue the number of samples overflows a signed 32-bit value, which the points
 *         of no region make
 * @return lumStatusOk
 */
/**@{*/
LUM_API LumStatus lumiSampleLine_8u_C1R(const Lum8u* src, int srcStep, LumSize roiSize, Lum8u* dst,
                                        LumPoint point1, LumPoint point2);
LUM_API LumStatus lumiSampleLine_8u_C3R(const Lum8u* src, int srcStep, LumSize roiSize, Lum8u* dst,
                                        LumPoint point1, LumPoint point2);
LUM_API LumStatus lumiSampleLine_16u_C1R(const Lum16u* src, int srcStep, LumSize roiSize, Lum16u* dst,
                                         LumPoint point1, LumPoint point2);
LUM_API LumStatus lumiSampleLine_16u_C3R(const Lum16u* src, int srcStep, LumSize roiSize, Lum16u* dst,
                                         LumPoint point1, LumPoint point2);
LUM_API LumStatus lumiSampleLine_32f_C1R(const Lum32f* src, int srcStep, LumSize roiSize, Lum32f* dst,
                                         LumPoint point1, LumPoint point2);
LUM_API LumStatus lumiSampleLine_32f_C3R(const Lum32f* src, int srcStep, LumSize roiSize, Lum32f* dst,
                                         LumPoint point1, LumPoint point2);
/**@}*/

#ifdef __cplusplus
}
#endif

#endif
