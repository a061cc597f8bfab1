/**
 * @file
 * Compound operators of morphology with pointer-wide sizes.
 */
#ifndef LUMCV_MORPH_COMPOUND_LONG_H
#define LUMCV_MORPH_COMPOUND_LONG_H

#include "border.h"
#include "morph_object.h"
#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @addtogroup morph_compound
 * @{
 */

/** @name Opening and closing with pointer-wide sizes */
/**@{*/
/**
 * A side with its in-memory flag is read for the whole operator: the first stage also gives what the second reads
 * beyond the region, so memory is read up to twice as far as the mask reaches, and no value is made up on that side.
 * A side with only its first-stage flag is read by the first stage, and the second stage has the kind of `border`
 * there. The four in-memory flags need no kind.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dst first pixel of the result
 * @param dstStep bytes between rows of `dst`
 * @param roiSize size of the region in pixels, at most that given to the Init
 * @param border what lies outside the region
 * @param borderValue one element a channel for lumBorderConstant; may be null otherwise
 * @param spec the object of lumiMorphInit_L()
 * @param buffer work memory of bufferSize bytes
 * @retval lumStatusNullPointer src, dst, spec or buffer is null, or borderValue for lumBorderConstant
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError a step that is not a multiple of the element size
 * @retval lumStatusBorderError border negative or above 4095, or a kind other than lumBorderReplicate,
 *         lumBorderMirror, lumBorderDefaultValue and lumBorderConstant, unless all four flags of the second stage are
 *         set
 * @retval lumStatusSizeOverflow a width or height of 0x7FFFFFFF or above
 * @retval lumStatusStepError a step of 0x7FFFFFFF or above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphOpen_8u_C1R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                         LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                         const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphOpen_8u_C3R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                         LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                         const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphOpen_8u_C4R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                         LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                         const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphOpen_16u_C1R_L(const Lum16u* src, intptr_t srcStep, Lum16u* dst, intptr_t dstStep,
                                          LumSizeL roiSize, LumBorderType border, const Lum16u* borderValue,
                                          const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphOpen_16s_C1R_L(const Lum16s* src, intptr_t srcStep, Lum16s* dst, intptr_t dstStep,
                                          LumSizeL roiSize, LumBorderType border, const Lum16s* borderValue,
                                          const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphOpen_32f_C1R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst, intptr_t dstStep,
                                          LumSizeL roiSize, LumBorderType border, const Lum32f* borderValue,
                                          const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphOpen_32f_C3R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst, intptr_t dstStep,
                                          LumSizeL roiSize, LumBorderType border, const Lum32f* borderValue,
                                          const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphOpen_32f_C4R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst, intptr_t dstStep,
                                          LumSizeL roiSize, LumBorderType border, const Lum32f* borderValue,
                                          const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphClose_8u_C1R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                          LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                          const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphClose_8u_C3R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                          LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                          const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphClose_8u_C4R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                          LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                          const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphClose_16u_C1R_L(const Lum16u* src, intptr_t srcStep, Lum16u* dst, intptr_t dstStep,
                                           LumSizeL roiSize, LumBorderType border, const Lum16u* borderValue,
                                           const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphClose_16s_C1R_L(const Lum16s* src, intptr_t srcStep, Lum16s* dst, intptr_t dstStep,
                                           LumSizeL roiSize, LumBorderType border, const Lum16s* borderValue,
                                           const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphClose_32f_C1R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst, intptr_t dstStep,
                                           LumSizeL roiSize, LumBorderType border, const Lum32f* borderValue,
                                           const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphClose_32f_C3R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst, intptr_t dstStep,
                                           LumSizeL roiSize, LumBorderType border, const Lum32f* borderValue,
                                           const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphClose_32f_C4R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst, intptr_t dstStep,
                                           LumSizeL roiSize, LumBorderType border, const Lum32f* borderValue,
                                           const LumMorphPairState* spec, Lum8u* buffer);
/**@}*/

/** @name Opening and closing with pointer-wide sizes of bit images */
/**@{*/
/**
 * As lumiMorphOpen_8u_C1R_L(), of bit images. Bits of dst beside the region are kept.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param srcBitOffset bits from `src` to the first pixel, 0 or more
 * @param dst first pixel of the result
 * @param dstStep bytes between rows of `dst`
 * @param dstBitOffset bits from `dst` to the first pixel, 0 or more
 * @param roiSize size of the region in pixels, at most that given to the Init
 * @param border what lies outside the region
 * @param borderValue for lumBorderConstant: points to a byte, set if other than 0; may be null otherwise
 * @param spec the object of lumiMorphInit_L()
 * @param buffer work memory of bufferSize bytes
 * @retval lumStatusNullPointer src, dst, spec or buffer is null, or borderValue for lumBorderConstant
 * @retval lumStatusSizeError width or height below 1, or a negative bit offset
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusBorderError border negative or above 4095, or the kind lumBorderMirror, or another kind than
 *         lumBorderReplicate, lumBorderDefaultValue and lumBorderConstant, unless all four flags of the second stage
 *         are set
 * @retval lumStatusSizeOverflow a width or height of 0x7FFFFFFF or above
 * @retval lumStatusStepError a step of 0x7FFFFFFF or above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphOpen_1u_C1R_L(const Lum8u* src, intptr_t srcStep, intptr_t srcBitOffset,
                                         Lum8u* dst, intptr_t dstStep, intptr_t dstBitOffset,
                                         LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                         const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphClose_1u_C1R_L(const Lum8u* src, intptr_t srcStep, intptr_t srcBitOffset,
                                          Lum8u* dst, intptr_t dstStep, intptr_t dstBitOffset,
                                          LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                          const LumMorphPairState* spec, Lum8u* buffer);
/**@}*/

/** @name Top-hat and black-hat with pointer-wide sizes */
/**@{*/
/**
 * The opening of lumiMorphOpen_8u_C1R_L() taken from the source, and the source taken from the closing. dst is not
 * src.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dst first pixel of the result
 * @param dstStep bytes between rows of `dst`
 * @param roiSize size of the region in pixels, at most that given to the Init
 * @param border what lies outside the region
 * @param borderValue one element a channel for lumBorderConstant; may be null otherwise
 * @param spec the object of lumiMorphInit_L()
 * @param buffer work memory of bufferSize bytes
 * @retval lumStatusSizeOverflow a width or height of 0x7FFFFFFF or above
 * @retval lumStatusNullPointer src, dst, spec or buffer is null, or borderValue for lumBorderConstant
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError a step that is not a multiple of the element size
 * @retval lumStatusBorderError border negative or above 4095, or a kind other than lumBorderReplicate,
 *         lumBorderMirror, lumBorderDefaultValue and lumBorderConstant, unless all four flags of the second stage are
 *         set
 * @retval lumStatusStepError a step of 0x7FFFFFFF or above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphTophat_8u_C1R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                           LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                           const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphTophat_8u_C3R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                           LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                           const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphTophat_8u_C4R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                           LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                           const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphTophat_16u_C1R_L(const Lum16u* src, intptr_t srcStep, Lum16u* dst,
                                            intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                            const Lum16u* borderValue, const LumMorphPairState* spec,
                                            Lum8u* buffer);
LUM_API LumStatus lumiMorphTophat_16s_C1R_L(const Lum16s* src, intptr_t srcStep, Lum16s* dst,
                                            intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                            const Lum16s* borderValue, const LumMorphPairState* spec,
                                            Lum8u* buffer);
LUM_API LumStatus lumiMorphTophat_32f_C1R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                            intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                            const Lum32f* borderValue, const LumMorphPairState* spec,
                                            Lum8u* buffer);
LUM_API LumStatus lumiMorphTophat_32f_C3R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                            intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                            const Lum32f* borderValue, const LumMorphPairState* spec,
                                            Lum8u* buffer);
LUM_API LumStatus lumiMorphTophat_32f_C4R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                            intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                            const Lum32f* borderValue, const LumMorphPairState* spec,
                                            Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhat_8u_C1R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                             LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                             const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhat_8u_C3R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                             LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                             const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhat_8u_C4R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                             LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                             const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhat_16u_C1R_L(const Lum16u* src, intptr_t srcStep, Lum16u* dst,
                                              intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                              const Lum16u* borderValue, const LumMorphPairState* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhat_16s_C1R_L(const Lum16s* src, intptr_t srcStep, Lum16s* dst,
                                              intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                              const Lum16s* borderValue, const LumMorphPairState* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhat_32f_C1R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                              intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                              const Lum32f* borderValue, const LumMorphPairState* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhat_32f_C3R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                              intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                              const Lum32f* borderValue, const LumMorphPairState* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhat_32f_C4R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                              intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                              const Lum32f* borderValue, const LumMorphPairState* spec,
                                              Lum8u* buffer);
/**@}*/

/** @name Top-hat and black-hat with pointer-wide sizes of bit images */
/**@{*/
/**
 * As lumiMorphTophat_8u_C1R_L(), of bit images: a difference is a bit that is set in the first operand and not in the
 * second. Bits of dst beside the region are kept.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param srcBitOffset bits from `src` to the first pixel, 0 or more
 * @param dst first pixel of the result
 * @param dstStep bytes between rows of `dst`
 * @param dstBitOffset bits from `dst` to the first pixel, 0 or more
 * @param roiSize size of the region in pixels, at most that given to the Init
 * @param border what lies outside the region
 * @param borderValue for lumBorderConstant: points to a byte, set if other than 0; may be null otherwise
 * @param spec the object of lumiMorphInit_L()
 * @param buffer work memory of bufferSize bytes
 * @retval lumStatusSizeOverflow a width or height of 0x7FFFFFFF or above
 * @retval lumStatusNullPointer src, dst, spec or buffer is null, or borderValue for lumBorderConstant
 * @retval lumStatusSizeError width or height below 1, or a negative bit offset
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusBorderError border negative or above 4095, or the kind lumBorderMirror, or another kind than
 *         lumBorderReplicate, lumBorderDefaultValue and lumBorderConstant, unless all four flags of the second stage
 *         are set
 * @retval lumStatusStepError a step of 0x7FFFFFFF or above
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphTophat_1u_C1R_L(const Lum8u* src, intptr_t srcStep, intptr_t srcBitOffset,
                                           Lum8u* dst, intptr_t dstStep, intptr_t dstBitOffset,
                                           LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                           const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphBlackhat_1u_C1R_L(const Lum8u* src, intptr_t srcStep, intptr_t srcBitOffset,
                                             Lum8u* dst, intptr_t dstStep, intptr_t dstBitOffset,
                                             LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                             const LumMorphPairState* spec, Lum8u* buffer);
/**@}*/

/** @name Gradient with pointer-wide sizes */
/**@{*/
/**
 * The erosion by the reflected mask taken from the dilation by the mask, both of the source with the same border.
 * First-stage flags have no effect. dst is not src.
 *
 * @param src first pixel of the source region
 * @param srcStep bytes between rows of `src`
 * @param dst first pixel of the result
 * @param dstStep bytes between rows of `dst`
 * @param roiSize size of the region in pixels, at most that given to the Init
 * @param border what lies outside the region
 * @param borderValue one element a channel for lumBorderConstant; may be null otherwise
 * @param spec the object of lumiMorphInit_L()
 * @param buffer work memory of bufferSize bytes
 * @retval lumStatusSizeOverflow a width or height of 0x7FFFFFFF or above
 * @retval lumStatusNullPointer src, dst, spec or buffer is null, or borderValue for lumBorderConstant
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusStepAlignmentError a step that is not a multiple of the element size
 * @retval lumStatusBorderError border negative or above 4095, or a kind other than lumBorderReplicate,
 *         lumBorderMirror, lumBorderDefaultValue and lumBorderConstant, unless all four flags of the second stage are
 *         set
 * @retval lumStatusStepError a step of 0x7FFFFFFF or above
 * @retval lumStatusInPlaceNotSupported 16s: dst is src
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphGradient_8u_C1R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                             LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                             const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphGradient_8u_C3R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                             LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                             const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphGradient_8u_C4R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                             LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                             const LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphGradient_16u_C1R_L(const Lum16u* src, intptr_t srcStep, Lum16u* dst,
                                              intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                              const Lum16u* borderValue, const LumMorphPairState* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiMorphGradient_16s_C1R_L(const Lum16s* src, intptr_t srcStep, Lum16s* dst,
                                              intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                              const Lum16s* borderValue, const LumMorphPairState* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiMorphGradient_32f_C1R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                              intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                              const Lum32f* borderValue, const LumMorphPairState* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiMorphGradient_32f_C3R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                              intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                              const Lum32f* borderValue, const LumMorphPairState* spec,
                                              Lum8u* buffer);
LUM_API LumStatus lumiMorphGradient_32f_C4R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst,
                                              intptr_t dstStep, LumSizeL roiSize, LumBorderType border,
                                              const Lum32f* borderValue, const LumMorphPairState* spec,
                                              Lum8u* buffer);
/**@}*/

/** @name Gradient with pointer-wide sizes of bit images */
/**@{*/
/**
 * As lumiMorphGradient_8u_C1R_L(), of bit images: a difference is a bit that is set in the first operand and not in
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
 * @param borderValue for lumBorderConstant: points to a byte, set if other than 0; may be null otherwise
 * @param spec the object of lumiMorphInit_L()
 * @param buffer work memory of bufferSize bytes
 * @retval lumStatusSizeOverflow a width or height of 0x7FFFFFFF or above
 * @retval lumStatusNullPointer src, dst, spec or buffer is null, or borderValue for lumBorderConstant
 * @retval lumStatusSizeError width or height below 1, or a negative bit offset
 * @retval lumStatusStepError a step below the row's bytes
 * @retval lumStatusBorderError border negative or above 4095, or the kind lumBorderMirror, or another kind than
 *         lumBorderReplicate, lumBorderDefaultValue and lumBorderConstant, unless all four flags of the second stage
 *         are set
 * @retval lumStatusStepError a step of 0x7FFFFFFF or above
 * @retval lumStatusInPlaceNotSupported dst is src
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphGradient_1u_C1R_L(const Lum8u* src, intptr_t srcStep, intptr_t srcBitOffset,
                                             Lum8u* dst, intptr_t dstStep, intptr_t dstBitOffset,
                                             LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                             const LumMorphPairState* spec, Lum8u* buffer);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
