/**
 * @file
 * Compound operators of morphology: opening, closing, top-hat, black-hat, gradient.
 */
#ifndef LUMCV_MORPH_COMPOUND_H
#define LUMCV_MORPH_COMPOUND_H

#include "border.h"
#include "morph_object.h"
#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup morph_compound Morphology: compound operators
 * Opening, closing, top-hat, black-hat and gradient by a flat mask: two runs of erosion and dilation, the second by
 * the point reflection of the mask (Serra, Image Analysis and Mathematical Morphology, 1982; Soille, Morphological
 * Image Analysis, 2003).
 *
 * @code
 * Lum32s specSize, bufferSize;
 * lumiMorphAdvGetSize_8u_C1R(roiSize, maskSize, &specSize, &bufferSize);
 * LumMorphPairState* spec = malloc(specSize);
 * Lum8u* buffer = malloc(bufferSize);
 * lumiMorphAdvInit_8u_C1R(roiSize, mask, maskSize, spec, buffer);
 * lumiMorphOpenBorder_8u_C1R(src, srcStep, dst, dstStep, roiSize, lumBorderReplicate, 0, spec, buffer);
 * @endcode
 *
 * With D and E the dilation and the erosion by the mask, and D' and E' those by its reflection, each with its own
 * border:
 *
 * | operator  | result              |
 * |-----------|---------------------|
 * | opening   | D'(E(src))          |
 * | closing   | E'(D(src))          |
 * | top-hat   | src - D'(E(src))    |
 * | black-hat | E'(D(src)) - src    |
 * | gradient  | D(src) - E(src); with _L D(src) - E'(src) |
 *
 * Differences of integers saturate. Differences of 32f below 0 become 0 without _L; with _L the gradient keeps them,
 * and top-hat and black-hat do so in modes 4 and 5 of lumiMorphSetMode() only. Differences of 16s below 0 stay
 * without _L; with _L they become 0 but in these modes.
 *
 * Opening and closing also work in place.
 * @{
 */

/** @name Opening and closing */
/**@{*/
/**
 * The first stage runs with `border`, which may name sides in memory, and first-stage flags if it is the dilation of
 * a closing. The second stage runs with the kind of `border` on every side of the first result; for lumBorderInMemory
 * alone, with lumBorderDefaultValue.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dst first pixel of the result
 * @param dstStep bytes between rows of `dst`
 * @param roiSize size of the region in pixels, at most that given to the Init
 * @param border what lies outside the region
 * @param borderValue for lumBorderConstant; with three and four channels one element a channel, which may be null for
 *         other kinds
 * @param spec the object of lumiMorphAdvInit of the same type
 * @param buffer work memory of bufferSize bytes
 * @retval lumStatusNullPointer src, dst, spec or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError a step that is not a multiple of the element size
 * @retval lumStatusBorderError border negative or above 4095, or neither lumBorderInMemory nor a kind of
 *         lumBorderReplicate, lumBorderMirror, lumBorderDefaultValue and lumBorderConstant; operators that dilate
 *         first take lumBorderInMemory with any flags of the first stage too
 * @retval lumStatusNullPointer three and four channels: lumBorderConstant, and borderValue is null
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphOpenBorder_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                             LumSize roiSize, LumBorderType border, Lum8u borderValue,
                                             const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphOpenBorder_8u_C3R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                             LumSize roiSize, LumBorderType border, const Lum8u* borderValue,
                                             const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphOpenBorder_8u_C4R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                             LumSize roiSize, LumBorderType border, const Lum8u* borderValue,
                                             const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphOpenBorder_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border, Lum16u borderValue,
                                              const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphOpenBorder_16s_C1R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border, Lum16s borderValue,
                                              const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphOpenBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border, Lum32f borderValue,
                                              const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphOpenBorder_32f_C3R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border,
                                              const Lum32f* borderValue, const LumMorphPairState* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiMorphOpenBorder_32f_C4R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border,
                                              const Lum32f* borderValue, const LumMorphPairState* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiMorphCloseBorder_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border, Lum8u borderValue,
                                              const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphCloseBorder_8u_C3R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border, const Lum8u* borderValue,
                                              const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphCloseBorder_8u_C4R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border, const Lum8u* borderValue,
                                              const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphCloseBorder_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                               LumSize roiSize, LumBorderType border, Lum16u borderValue,
                                               const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphCloseBorder_16s_C1R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                               LumSize roiSize, LumBorderType border, Lum16s borderValue,
                                               const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphCloseBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                               LumSize roiSize, LumBorderType border, Lum32f borderValue,
                                               const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphCloseBorder_32f_C3R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                               LumSize roiSize, LumBorderType border,
                                               const Lum32f* borderValue, const LumMorphPairState* spec,
                                               Lum8u* buffer);
LUM_API LumStatus lumiMorphCloseBorder_32f_C4R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                               LumSize roiSize, LumBorderType border,
                                               const Lum32f* borderValue, const LumMorphPairState* spec,
                                               Lum8u* buffer);
/**@}*/

/** @name Opening and closing of bit images */
/**@{*/
/**
 * As lumiMorphOpenBorder_8u_C1R(), of bit images. Bits of dst beside the region are kept.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param srcBitOffset bits from `src` to the first pixel, 0 or more
 * @param dst first pixel of the result
 * @param dstStep bytes between rows of `dst`
 * @param dstBitOffset bits from `dst` to the first pixel, 0 or more
 * @param roiSize size of the region in pixels, at most that given to the Init
 * @param border what lies outside the region
 * @param borderValue for lumBorderConstant: set if other than 0
 * @param spec the object of lumiMorphAdvInit_1u_C1R()
 * @param buffer work memory of bufferSize bytes
 * @retval lumStatusNullPointer src, dst, spec or buffer is null
 * @retval lumStatusSizeError width or height below 1, or a negative bit offset
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusBorderError border negative or above 4095, or neither lumBorderInMemory nor a kind of
 *         lumBorderReplicate, lumBorderDefaultValue and lumBorderConstant; operators that dilate first take
 *         lumBorderInMemory with any flags of the first stage too
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphOpenBorder_1u_C1R(const Lum8u* src, int srcStep, int srcBitOffset, Lum8u* dst,
                                             int dstStep, int dstBitOffset, LumSize roiSize,
                                             LumBorderType border, Lum8u borderValue,
                                             const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphCloseBorder_1u_C1R(const Lum8u* src, int srcStep, int srcBitOffset, Lum8u* dst,
                                              int dstStep, int dstBitOffset, LumSize roiSize,
                                              LumBorderType border, Lum8u borderValue,
                                              const LumMorphPairState* spec, Lum8u* buffer);
/**@}*/

/** @name Top-hat and black-hat */
/**@{*/
/**
 * The opening of lumiMorphOpenBorder_8u_C1R() taken from the source, and the source taken from the closing. dst is
 * not src: there the difference would be 0.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dst first pixel of the result
 * @param dstStep bytes between rows of `dst`
 * @param roiSize size of the region in pixels, at most that given to the Init
 * @param border what lies outside the region
 * @param borderValue for lumBorderConstant; with three and four channels one element a channel, which may be null for
 *         other kinds
 * @param spec the object of lumiMorphAdvInit of the same type
 * @param buffer work memory of bufferSize bytes
 * @retval lumStatusNullPointer src, dst, spec or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError a step that is not a multiple of the element size
 * @retval lumStatusBorderError border negative or above 4095, or neither lumBorderInMemory nor a kind of
 *         lumBorderReplicate, lumBorderMirror, lumBorderDefaultValue and lumBorderConstant; operators that dilate
 *         first take lumBorderInMemory with any flags of the first stage too
 * @retval lumStatusNullPointer three and four channels: lumBorderConstant, and borderValue is null
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphTophatBorder_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                               LumSize roiSize, LumBorderType border, Lum8u borderValue,
                                               const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphTophatBorder_8u_C3R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                               LumSize roiSize, LumBorderType border,
                                               const Lum8u* borderValue, const LumMorphPairState* spec,
                                               Lum8u* buffer);
LUM_API LumStatus lumiMorphTophatBorder_8u_C4R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                               LumSize roiSize, LumBorderType border,
                                               const Lum8u* borderValue, const LumMorphPairState* spec,
                                               Lum8u* buffer);
LUM_API LumStatus lumiMorphTophatBorder_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                                LumSize roiSize, LumBorderType border, Lum16u borderValue,
                                                const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphTophatBorder_16s_C1R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                                LumSize roiSize, LumBorderType border, Lum16s borderValue,
                                                const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphTophatBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                LumSize roiSize, LumBorderType border, Lum32f borderValue,
                                                const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphTophatBorder_32f_C3R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                LumSize roiSize, LumBorderType border,
                                                const Lum32f* borderValue, const LumMorphPairState* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiMorphTophatBorder_32f_C4R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                LumSize roiSize, LumBorderType border,
                                                const Lum32f* borderValue, const LumMorphPairState* spec,
                                                Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhatBorder_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                                 LumSize roiSize, LumBorderType border, Lum8u borderValue,
                                                 const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhatBorder_8u_C3R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                                 LumSize roiSize, LumBorderType border,
                                                 const Lum8u* borderValue, const LumMorphPairState* spec,
                                                 Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhatBorder_8u_C4R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                                 LumSize roiSize, LumBorderType border,
                                                 const Lum8u* borderValue, const LumMorphPairState* spec,
                                                 Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhatBorder_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                                  LumSize roiSize, LumBorderType border, Lum16u borderValue,
                                                  const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhatBorder_16s_C1R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                                  LumSize roiSize, LumBorderType border, Lum16s borderValue,
                                                  const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhatBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                  LumSize roiSize, LumBorderType border, Lum32f borderValue,
                                                  const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhatBorder_32f_C3R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                  LumSize roiSize, LumBorderType border,
                                                  const Lum32f* borderValue, const LumMorphPairState* spec,
                                                  Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhatBorder_32f_C4R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                  LumSize roiSize, LumBorderType border,
                                                  const Lum32f* borderValue, const LumMorphPairState* spec,
                                                  Lum8u* buffer);
/**@}*/

/** @name Top-hat and black-hat of bit images */
/**@{*/
/**
 * As lumiMorphTophatBorder_8u_C1R(), of bit images: a difference is a bit that is set in the first operand and not in
 * the second. Bits of dst beside the region are kept.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param srcBitOffset bits from `src` to the first pixel, 0 or more
 * @param dst first pixel of the result
 * @param dstStep bytes between rows of `dst`
 * @param dstBitOffset bits from `dst` to the first pixel, 0 or more
 * @param roiSize size of the region in pixels, at most that given to the Init
 * @param border what lies outside the region
 * @param borderValue for lumBorderConstant: set if other than 0
 * @param spec the object of lumiMorphAdvInit_1u_C1R()
 * @param buffer work memory of bufferSize bytes
 * @retval lumStatusNullPointer src, dst, spec or buffer is null
 * @retval lumStatusSizeError width or height below 1, or a negative bit offset
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusBorderError border negative or above 4095, or neither lumBorderInMemory nor a kind of
 *         lumBorderReplicate, lumBorderDefaultValue and lumBorderConstant; operators that dilate first take
 *         lumBorderInMemory with any flags of the first stage too
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphTophatBorder_1u_C1R(const Lum8u* src, int srcStep, int srcBitOffset, Lum8u* dst,
                                               int dstStep, int dstBitOffset, LumSize roiSize,
                                               LumBorderType border, Lum8u borderValue,
                                               const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhatBorder_1u_C1R(const Lum8u* src, int srcStep, int srcBitOffset, Lum8u* dst,
                                                 int dstStep, int dstBitOffset, LumSize roiSize,
                                                 LumBorderType border, Lum8u borderValue,
                                                 const LumMorphPairState* spec, Lum8u* buffer);
/**@}*/

/** @name Gradient */
/**@{*/
/**
 * The erosion taken from the dilation, both of the source by the mask as it was given and with the same border; dst
 * is not src.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dst first pixel of the result
 * @param dstStep bytes between rows of `dst`
 * @param roiSize size of the region in pixels, at most that given to the Init
 * @param border what lies outside the region
 * @param borderValue for lumBorderConstant; with three and four channels one element a channel, which may be null for
 *         other kinds
 * @param spec the object of lumiMorphAdvInit of the same type
 * @param buffer work memory of bufferSize bytes
 * @retval lumStatusNullPointer src, dst, spec or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError a step that is not a multiple of the element size
 * @retval lumStatusBorderError border negative or above 255, or neither lumBorderInMemory nor a kind of
 *         lumBorderReplicate, lumBorderMirror and lumBorderConstant
 * @retval lumStatusNullPointer three and four channels: lumBorderConstant, and borderValue is null
 * @retval lumStatusInPlaceNotSupported 16s: dst is src
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphGradientBorder_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                                 LumSize roiSize, LumBorderType border, Lum8u borderValue,
                                                 const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphGradientBorder_8u_C3R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                                 LumSize roiSize, LumBorderType border,
                                                 const Lum8u* borderValue, const LumMorphPairState* spec,
                                                 Lum8u* buffer);
LUM_API LumStatus lumiMorphGradientBorder_8u_C4R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                                 LumSize roiSize, LumBorderType border,
                                                 const Lum8u* borderValue, const LumMorphPairState* spec,
                                                 Lum8u* buffer);
LUM_API LumStatus lumiMorphGradientBorder_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                                  LumSize roiSize, LumBorderType border, Lum16u borderValue,
                                                  const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphGradientBorder_16s_C1R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                                  LumSize roiSize, LumBorderType border, Lum16s borderValue,
                                                  const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphGradientBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                  LumSize roiSize, LumBorderType border, Lum32f borderValue,
                                                  const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphGradientBorder_32f_C3R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                  LumSize roiSize, LumBorderType border,
                                                  const Lum32f* borderValue, const LumMorphPairState* spec,
                                                  Lum8u* buffer);
LUM_API LumStatus lumiMorphGradientBorder_32f_C4R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                                  LumSize roiSize, LumBorderType border,
                                                  const Lum32f* borderValue, const LumMorphPairState* spec,
                                                  Lum8u* buffer);
/**@}*/

/** @name Gradient of bit images */
/**@{*/
/**
 * As lumiMorphGradientBorder_8u_C1R(), of bit images: a difference is a bit that is set in the first operand and not
 * in the second. Bits of dst beside the region are kept.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param srcBitOffset bits from `src` to the first pixel, 0 or more
 * @param dst first pixel of the result
 * @param dstStep bytes between rows of `dst`
 * @param dstBitOffset bits from `dst` to the first pixel, 0 or more
 * @param roiSize size of the region in pixels, at most that given to the Init
 * @param border what lies outside the region
 * @param borderValue for lumBorderConstant: set if other than 0
 * @param spec the object of lumiMorphAdvInit_1u_C1R()
 * @param buffer work memory of bufferSize bytes
 * @retval lumStatusNullPointer src, dst, spec or buffer is null
 * @retval lumStatusSizeError width or height below 1, or a negative bit offset
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusBorderError border negative or above 255, or neither lumBorderInMemory nor a kind of
 *         lumBorderReplicate and lumBorderConstant
 * @retval lumStatusInPlaceNotSupported dst is src
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphGradientBorder_1u_C1R(const Lum8u* src, int srcStep, int srcBitOffset, Lum8u* dst,
                                                 int dstStep, int dstBitOffset, LumSize roiSize,
                                                 LumBorderType border, Lum8u borderValue,
                                                 const LumMorphPairState* spec, Lum8u* buffer);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
