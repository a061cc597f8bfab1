/**
 * @file
 * Gaussian filters of any odd kernel size over whole images.
 */
#ifndef LUMCV_GAUSSIAN_H
#define LUMCV_GAUSSIAN_H

#include "border.h"
#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup gaussian Gaussian filter
 * Gaussian filters of any odd kernel size over whole images.
 *
 * @code
 * Lum32s specBytes, initBytes, bufferBytes;
 * lumiFilterGaussianGetSpecSize_L(5, lumType8u, 1, &specBytes, &initBytes);
 * lumiFilterGaussianGetBufferSize_L(size, 5, lumType8u, lumBorderReplicate, 1, &bufferBytes);
 * lumiFilterGaussianInit_L(size, 5, 1.2F, lumBorderReplicate, lumType8u, 1, spec, initBuffer);
 * lumiFilterGaussian_8u_C1R_L(src, srcStep, dst, dstStep, size, lumBorderReplicate, 0, spec, buffer);
 * @endcode
 * @{
 */

/**
 * Half the kernel of a Gaussian filter, laid into memory of the caller's by lumiFilterGaussianInit_L(). Five 32-bit
 * fields: kernelSize, kernelOffset (64), dataType, one that is not written, shift (0). The (kernelSize + 1) / 2
 * weights follow as Lum32f from the first 64-byte boundary at or after the 20th byte, the outermost first, the
 * centre last. Runs only read it. It is found by rounding its address, so a block is neither moved nor copied.
 */
typedef struct LumFilterGaussianSpecL LumFilterGaussianSpecL;

/**
 * The Gaussian filter of the functions without _L, laid by lumiFilterGaussianInit(). Five 32-bit fields:
 * kernelSize, kernelOffset (20), dataType, border, shift (12 for 8u, 15 for 16u and 16s, 0 for 32f). The kernelSize
 * weights of the whole kernel follow from the first 16-byte boundary at or after the 20th byte: Lum16s for 8u and
 * 16s, Lum16u for 16u, with `shift` bits after the binary point, Lum32f for 32f. Runs do not read them; they read
 * the #LumFilterGaussianSpecL that follows directly, at byte 36 + 8 * ((kernelSize + 3) >> 2), in 32f at byte
 * 32 + 16 * ((kernelSize + 3) >> 2).
 */
typedef struct LumFilterGaussianSpec LumFilterGaussianSpec;

/** @name Gaussian filter: memory */
/**@{*/
/**
 * **The size that lumiFilterGaussianGetSpecSize() reports is too small for lumiFilterGaussianInit(): that object needs the
 * specSize of lumiFilterGaussianGetBufferSize(). In a block of the smaller size Init writes past its end.**
 *
 * With K = kernelSize and R = 4 * numChannels * width rounded up to a multiple of 64:
 *
 * - GetSpecSize, in both forms: *specSize = 4 * ((K + 1) >> 1) + 128, the bytes of a #LumFilterGaussianSpecL, and
 *   *initBufferSize = 64.
 * - GetBufferSize_L: *bufferSize = 12 * K + (K + 1) * R + 64, the work memory of runs.
 * - GetBufferSize: *specSize receives the bytes of a #LumFilterGaussianSpec with the #LumFilterGaussianSpecL after
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
 * @param kernelSize taps in each direction, odd, 3 or more
 * @param dataType lumType8u, lumType16u, lumType16s or lumType32f
 * @param numChannels 1 or 3
 * @param specSize receive bytes
 * @param initBufferSize receive bytes
 * @retval lumStatusNullPointer a result pointer is null
 * @retval lumStatusBadArgument kernelSize below 3 or even
 * @retval lumStatusDataTypeError another data type
 * @retval lumStatusChannelCountError numChannels not 1 or 3
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterGaussianGetSpecSize_L(int kernelSize, LumDataType dataType, int numChannels,
                                                  Lum32s* specSize, Lum32s* initBufferSize);
LUM_API LumStatus lumiFilterGaussianGetSpecSize(int kernelSize, LumDataType dataType, int numChannels,
                                                Lum32s* specSize, Lum32s* initBufferSize);
/**@}*/

/** @name Gaussian filter: work buffer */
/**@{*/
/**
 * As lumiFilterGaussianGetSpecSize_L(), with `roiSize`, `border` and `bufferSize`, without `specSize` and `initBufferSize`.
 *
 * @param roiSize the largest region in pixels
 * @param kernelSize taps in each direction, odd, 3 or more
 * @param dataType lumType8u, lumType16u, lumType16s or lumType32f
 * @param border as that of the runs
 * @param numChannels 1 or 3
 * @param bufferSize receive bytes
 * @retval lumStatusNullPointer a result pointer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusBadArgument kernelSize below 3 or even
 * @retval lumStatusDataTypeError another data type
 * @retval lumStatusChannelCountError numChannels not 1 or 3
 * @retval lumStatusBorderError border negative or above 255, or not all four sides in memory and a kind other than
 *         lumBorderConstant, lumBorderReplicate and lumBorderMirror
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterGaussianGetBufferSize_L(LumSizeL roiSize, int kernelSize, LumDataType dataType,
                                                    LumBorderType border, int numChannels,
                                                    Lum32s* bufferSize);
/**@}*/

/** @name Gaussian filter: spec and work buffer of the functions without _L */
/**@{*/
/**
 * As lumiFilterGaussianGetSpecSize_L(), with `roiSize` and `bufferSize`, without `initBufferSize`.
 *
 * @param roiSize the largest region in pixels
 * @param kernelSize taps in each direction, odd, 3 or more
 * @param dataType lumType8u, lumType16u, lumType16s or lumType32f
 * @param numChannels 1 or 3
 * @param specSize receive bytes
 * @param bufferSize receive bytes
 * @retval lumStatusNullPointer a result pointer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusBadArgument kernelSize below 3 or even
 * @retval lumStatusDataTypeError another data type
 * @retval lumStatusChannelCountError numChannels not 1 or 3
 * @return lumStatusOk
 */
LUM_API LumStatus lumiFilterGaussianGetBufferSize(LumSize roiSize, int kernelSize, LumDataType dataType,
                                                  int numChannels, Lum32s* specSize, Lum32s* bufferSize);
/**@}*/

/** @name Gaussian filter: initialisers */
/**@{*/
/**
 * **lumiFilterGaussianInit() needs a block of the specSize that lumiFilterGaussianGetBufferSize() reports; what
 * lumiFilterGaussianGetSpecSize() reports is too small, and Init would write past its end.** lumiFilterGaussianInit_L()
 * needs what lumiFilterGaussianGetSpecSize_L() reports.
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
 * @param spec memory of the specSize of lumiFilterGaussianGetSpecSize_L() (Init_L) or of
 *        lumiFilterGaussianGetBufferSize() (Init)
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
LUM_API LumStatus lumiFilterGaussianInit_L(LumSizeL roiSize, int kernelSize, Lum32f sigma,
                                           LumBorderType border, LumDataType dataType, int numChannels,
                                           LumFilterGaussianSpecL* spec, Lum8u* buffer);
LUM_API LumStatus lumiFilterGaussianInit(LumSize roiSize, int kernelSize, Lum32f sigma, LumBorderType border,
                                         LumDataType dataType, int numChannels, LumFilterGaussianSpec* spec,
                                         Lum8u* buffer);
/**@}*/

/** @name Gaussian filter */
/**@{*/
/**
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
 * From 0x80000 bytes of floats on, 4 * channels * width * height in wrapping 32-bit arithmetic, a run asks for the
 * size of the largest cache; where it is not larger than these bytes, rows of dst that are all aligned to a vector
 * (16 bytes in 32-bit builds) are written past the cache. dst may be src itself (same pointer and step) unless the
 * border mirrors at the bottom; other overlap is not supported.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
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

/** @name Gaussian filter with the border of its object */
/**@{*/
/**
 * The function without Border in its name, with the border that was given to lumiFilterGaussianInit(). borderValue is
 * one value with one channel, and points to three with three channels.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dstStep bytes between rows of `dst`
 * @param dst first pixel of the result
 * @param roiSize size of the region in pixels
 * @param borderValue used for lumBorderConstant only; with three channels, may be null otherwise
 * @param spec the object of lumiFilterGaussianInit()
 * @param buffer work memory of the size that lumiFilterGaussianGetBufferSize() reports
 * @return as the function without Border in its name
 */
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

/** @} */

#ifdef __cplusplus
}
#endif

#endif
