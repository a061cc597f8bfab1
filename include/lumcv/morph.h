/**
 * @file
 * Erosion and dilation.
 */
#ifndef LUMCV_MORPH_H
#define LUMCV_MORPH_H

#include <stdint.h>

#include "border.h"
#include "morph_object.h"
#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup morph Erosion and dilation
 * Dilation gives each pixel the largest, erosion the smallest, of the pixels under the set cells of a mask.
 *
 * @code
 * Lum8u disc[] = {0, 1, 0, 1, 1, 1, 0, 1, 0};
 * lumiMorphologyBorderGetSize_8u_C1R(roi, mask, &specSize, &bufferSize);
 * LumMorphMaskRecord* spec = malloc(specSize);
 * Lum8u* buffer = malloc(bufferSize);
 * lumiMorphologyBorderInit_8u_C1R(roi, disc, mask, spec, buffer);
 * lumiDilateBorder_8u_C1R(src, srcStep, dst, dstStep, roi, lumBorderReplicate, 0, spec, buffer);
 * @endcode
 *
 * The masks are analysed once, by the functions of @ref morph_object, into objects that any number of runs read. Runs
 * keep no state, so several threads may share an object if each has a buffer of its own.
 *
 * The method is that of mathematical morphology (Serra, Image Analysis and Mathematical Morphology, 1982); windows of
 * rectangles are shared as by van Herk (Pattern Recognition Letters 13, 1992) and Gil and Werman (IEEE PAMI 15, 1993), runs of general masks
 * as by Urbach and Wilkinson (IEEE Transactions on Image Processing 17, 2008).
 * @{
 */

/** @name Erosion and dilation */
/**@{*/
/**
 * dst(x, y) is the largest (Erode: the smallest) of src(x + i - cx, y + j - cy) over the set cells (i, j) of the mask, each channel
 * by itself. The mask is applied as it is, not reflected. (cx, cy) is the middle of the mask with its sides rounded up to
 * odd; an even mask has its empty column at the left and its empty row on top. A mask of one cell and a mask
 * with no set cell copy the region, whatever the border.
 *
 * Outside the region, side by side: a side with its in-memory flag is read from memory, as far as the mask reaches; else
 * lumBorderReplicate repeats the outermost pixel, lumBorderMirror reflects about it without repeating it (and back
 * again where the margin is wider than the image), lumBorderConstant takes borderValue, and lumBorderDefaultValue
 * takes the value that loses against every other: 0, -32768 or -FLT_MAX in a dilation, 255, 65535, 32767 or FLT_MAX in an
 * erosion.
 *
 * In 32f a NaN is passed over. Under a mask with an empty cell, and with lumBorderDefaultValue where the window leaves
 * what is readable, the window also holds -FLT_MAX (Erode: FLT_MAX), which is above (below) an infinity. Elsewhere a window
 * of NaNs alone gives -infinity (Erode: infinity). Of zeros of both signs either may be the result.
 *
 * @param src source and the bytes between its rows
 * @param srcStep source and the bytes between its rows
 * @param dst destination and the bytes between its rows
 * @param dstStep destination and the bytes between its rows
 * @param roiSize size of both in pixels
 * @param border a kind with the flags of the sides that exist in memory, or lumBorderInMemory alone (0xF0). Dilation also takes the flags of the
 *        first stage (0x100 to 0x800), as those of the sides; erosion passes them over
 * @param borderValue the value outside, by channel in C3 and C4; read for lumBorderConstant only
 * @param spec the mask, from lumiMorphologyBorderInit of the same type for a region at least as large
 * @param buffer work memory of the size that lumiMorphologyBorderGetSize reports; its contents are lost
 * @retval lumStatusNullPointer src, dst, spec or buffer is null; C3, C4: borderValue is null with lumBorderConstant
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the bytes of a row
 * @retval lumStatusStepAlignmentError 16u, 16s, 32f: a step that is no multiple of the element size
 * @retval lumStatusBorderError border negative or above 4095, or another kind and not exactly
 *         lumBorderInMemory (where the flags of the first stage count, after they are added)
 * @retval lumStatusInPlaceNotSupported src equals dst: 16s, and erosion of 16u. In the other types src equal to dst is
 *         not refused and the result is undefined
 * @return lumStatusOk
 */
LUM_API LumStatus lumiDilateBorder_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                          LumSize roiSize, LumBorderType border, Lum8u borderValue,
                                          const LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiDilateBorder_8u_C3R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                          LumSize roiSize, LumBorderType border, const Lum8u* borderValue,
                                          const LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiDilateBorder_8u_C4R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                          LumSize roiSize, LumBorderType border, const Lum8u* borderValue,
                                          const LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiDilateBorder_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                           LumSize roiSize, LumBorderType border, Lum16u borderValue,
                                           const LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiDilateBorder_16s_C1R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                           LumSize roiSize, LumBorderType border, Lum16s borderValue,
                                           const LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiDilateBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                           LumSize roiSize, LumBorderType border, Lum32f borderValue,
                                           const LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiDilateBorder_32f_C3R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                           LumSize roiSize, LumBorderType border, const Lum32f* borderValue,
                                           const LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiDilateBorder_32f_C4R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                           LumSize roiSize, LumBorderType border, const Lum32f* borderValue,
                                           const LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiErodeBorder_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                         LumSize roiSize, LumBorderType border, Lum8u borderValue,
                                         const LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiErodeBorder_8u_C3R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                         LumSize roiSize, LumBorderType border, const Lum8u* borderValue,
                                         const LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiErodeBorder_8u_C4R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                         LumSize roiSize, LumBorderType border, const Lum8u* borderValue,
                                         const LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiErodeBorder_16u_C1R(const Lum16u* src, int srcStep, Lum16u* dst, int dstStep,
                                          LumSize roiSize, LumBorderType border, Lum16u borderValue,
                                          const LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiErodeBorder_16s_C1R(const Lum16s* src, int srcStep, Lum16s* dst, int dstStep,
                                          LumSize roiSize, LumBorderType border, Lum16s borderValue,
                                          const LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiErodeBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                          LumSize roiSize, LumBorderType border, Lum32f borderValue,
                                          const LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiErodeBorder_32f_C3R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                          LumSize roiSize, LumBorderType border, const Lum32f* borderValue,
                                          const LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiErodeBorder_32f_C4R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                          LumSize roiSize, LumBorderType border, const Lum32f* borderValue,
                                          const LumMorphMaskRecord* spec, Lum8u* buffer);
/**@}*/

/** @name Erosion and dilation, long sizes */
/**@{*/
/**
 * The same with pointer-wide sizes and steps, and one object for all types: see lumiDilateBorder_8u_C1R().
 *
 * @param src source and the bytes between its rows
 * @param srcStep source and the bytes between its rows
 * @param dst destination and the bytes between its rows
 * @param dstStep destination and the bytes between its rows
 * @param roiSize size of both in pixels
 * @param border a kind with the flags of the sides that exist in memory, or lumBorderInMemory alone (0xF0). The
 *        flags of the first stage (0x100 to 0x800) are taken as those of the sides
 * @param borderValue an element a channel; read for lumBorderConstant only
 * @param spec the mask, from lumiDilateInit_L() or lumiErodeInit_L() for a region at least as large
 * @param buffer work memory of the size that lumiDilateGetBufferSize_L() reports; its contents are lost
 * @retval lumStatusNullPointer src, dst, spec or buffer is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the bytes of a row
 * @retval lumStatusStepAlignmentError 16u, 16s, 32f: a step that is no multiple of the element size
 * @retval lumStatusBorderError border negative or above 4095, or another kind and not exactly
 *         lumBorderInMemory (where the flags of the first stage count, after they are added)
 * @retval lumStatusNullPointer borderValue is null with lumBorderConstant
 * @retval lumStatusSizeError 8u_C1: width or height of 0x7FFFFFFF or above
 * @retval lumStatusSizeOverflow the others: width or height of 0x7FFFFFFF or above
 * @retval lumStatusStepError a step of 0x7FFFFFFF or above
 * @retval lumStatusInPlaceNotSupported src equals dst: 16s, and erosion of 16u. In the other types src equal to dst is
 *         not refused and the result is undefined
 * @return lumStatusOk
 */
LUM_API LumStatus lumiDilate_8u_C1R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                      LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                      const LumMorphLongState* spec, Lum8u* buffer);
LUM_API LumStatus lumiDilate_8u_C3R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                      LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                      const LumMorphLongState* spec, Lum8u* buffer);
LUM_API LumStatus lumiDilate_8u_C4R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                      LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                      const LumMorphLongState* spec, Lum8u* buffer);
LUM_API LumStatus lumiDilate_16u_C1R_L(const Lum16u* src, intptr_t srcStep, Lum16u* dst, intptr_t dstStep,
                                       LumSizeL roiSize, LumBorderType border, const Lum16u* borderValue,
                                       const LumMorphLongState* spec, Lum8u* buffer);
LUM_API LumStatus lumiDilate_16s_C1R_L(const Lum16s* src, intptr_t srcStep, Lum16s* dst, intptr_t dstStep,
                                       LumSizeL roiSize, LumBorderType border, const Lum16s* borderValue,
                                       const LumMorphLongState* spec, Lum8u* buffer);
LUM_API LumStatus lumiDilate_32f_C1R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst, intptr_t dstStep,
                                       LumSizeL roiSize, LumBorderType border, const Lum32f* borderValue,
                                       const LumMorphLongState* spec, Lum8u* buffer);
LUM_API LumStatus lumiDilate_32f_C3R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst, intptr_t dstStep,
                                       LumSizeL roiSize, LumBorderType border, const Lum32f* borderValue,
                                       const LumMorphLongState* spec, Lum8u* buffer);
LUM_API LumStatus lumiDilate_32f_C4R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst, intptr_t dstStep,
                                       LumSizeL roiSize, LumBorderType border, const Lum32f* borderValue,
                                       const LumMorphLongState* spec, Lum8u* buffer);
LUM_API LumStatus lumiErode_8u_C1R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                     LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                     const LumMorphLongState* spec, Lum8u* buffer);
LUM_API LumStatus lumiErode_8u_C3R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                     LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                     const LumMorphLongState* spec, Lum8u* buffer);
LUM_API LumStatus lumiErode_8u_C4R_L(const Lum8u* src, intptr_t srcStep, Lum8u* dst, intptr_t dstStep,
                                     LumSizeL roiSize, LumBorderType border, const Lum8u* borderValue,
                                     const LumMorphLongState* spec, Lum8u* buffer);
LUM_API LumStatus lumiErode_16u_C1R_L(const Lum16u* src, intptr_t srcStep, Lum16u* dst, intptr_t dstStep,
                                      LumSizeL roiSize, LumBorderType border, const Lum16u* borderValue,
                                      const LumMorphLongState* spec, Lum8u* buffer);
LUM_API LumStatus lumiErode_16s_C1R_L(const Lum16s* src, intptr_t srcStep, Lum16s* dst, intptr_t dstStep,
                                      LumSizeL roiSize, LumBorderType border, const Lum16s* borderValue,
                                      const LumMorphLongState* spec, Lum8u* buffer);
LUM_API LumStatus lumiErode_32f_C1R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst, intptr_t dstStep,
                                      LumSizeL roiSize, LumBorderType border, const Lum32f* borderValue,
                                      const LumMorphLongState* spec, Lum8u* buffer);
LUM_API LumStatus lumiErode_32f_C3R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst, intptr_t dstStep,
                                      LumSizeL roiSize, LumBorderType border, const Lum32f* borderValue,
                                      const LumMorphLongState* spec, Lum8u* buffer);
LUM_API LumStatus lumiErode_32f_C4R_L(const Lum32f* src, intptr_t srcStep, Lum32f* dst, intptr_t dstStep,
                                      LumSizeL roiSize, LumBorderType border, const Lum32f* borderValue,
                                      const LumMorphLongState* spec, Lum8u* buffer);
/**@}*/

/** @name Erosion and dilation of bit images */
/**@{*/
/**
 * A dilated bit is set where a set cell of the mask lies over a set bit, an eroded bit where no set cell lies over a clear
 * one. Bit 0 of a byte is the first of its eight pixels. The centre is the cell ((maskW - 1) / 2, (maskH - 1) / 2) of the mask as it was given.
 * A mask of one cell and a mask with no set cell copy the region. Bits of the destination outside the
 * region are kept.
 *
 * Outside the region as in lumiDilateBorder_8u_C1R(), without reflection; lumBorderDefaultValue is a clear bit in a
 * dilation and a set bit in an erosion.
 *
 * @param src source and the bytes between its rows
 * @param srcStep source and the bytes between its rows
 * @param srcBitOffset bits from src to the first pixel of a row, 0 or more; above 7 they pass whole bytes
 * @param dst destination and the bytes between its rows
 * @param dstStep destination and the bytes between its rows
 * @param dstBitOffset bits from dst to the first pixel of a row, 0 or more
 * @param roiSize size of both in pixels
 * @param border lumBorderReplicate, lumBorderDefaultValue or lumBorderConstant with the flags of the sides that exist
 *        in memory, or lumBorderInMemory alone (0xF0). All but lumiErodeBorder_1u_C1R() also take the flags of the first stage
 *        (0x100 to 0x800), as those of the sides
 * @param borderValue a set bit if not 0; read for lumBorderConstant only
 * @param spec the mask, from lumiMorphologyBorderInit_1u_C1R(), with _L from lumiDilateInit_L() or lumiErodeInit_L(),
 *        for a region at least as large
 * @param buffer work memory of the size that the query of the same form reports; its contents are lost
 * @retval lumStatusNullPointer src, dst, spec or buffer is null
 * @retval lumStatusSizeError width or height below 1, or a negative bit offset
 * @retval lumStatusStepError a step below (width + 7) / 8
 * @retval lumStatusBorderError border negative or above 4095, or another kind and not exactly
 *         lumBorderInMemory (where the flags of the first stage count, after they are added)
 * @retval lumStatusNullPointer _L: borderValue is null with lumBorderConstant
 * @retval lumStatusSizeOverflow _L: width or height of 0x7FFFFFFF or above
 * @retval lumStatusStepError _L: a step of 0x7FFFFFFF or above
 * @retval lumStatusInPlaceNotSupported src equals dst
 * @return lumStatusOk
 */
LUM_API LumStatus lumiDilateBorder_1u_C1R(const Lum8u* src, int srcStep, int srcBitOffset, Lum8u* dst,
                                          int dstStep, int dstBitOffset, LumSize roiSize,
                                          LumBorderType border, Lum8u borderValue,
                                          const LumMorphBitState* spec, Lum8u* buffer);
LUM_API LumStatus lumiDilate_1u_C1R_L(const Lum8u* src, intptr_t srcStep, intptr_t srcBitOffset, Lum8u* dst,
                                      intptr_t dstStep, intptr_t dstBitOffset, LumSizeL roiSize,
                                      LumBorderType border, const Lum8u* borderValue,
                                      const LumMorphLongState* spec, Lum8u* buffer);
LUM_API LumStatus lumiErodeBorder_1u_C1R(const Lum8u* src, int srcStep, int srcBitOffset, Lum8u* dst,
                                         int dstStep, int dstBitOffset, LumSize roiSize, LumBorderType border,
                                         Lum8u borderValue, const LumMorphBitState* spec, Lum8u* buffer);
LUM_API LumStatus lumiErode_1u_C1R_L(const Lum8u* src, intptr_t srcStep, intptr_t srcBitOffset, Lum8u* dst,
                                     intptr_t dstStep, intptr_t dstBitOffset, LumSizeL roiSize,
                                     LumBorderType border, const Lum8u* borderValue,
                                     const LumMorphLongState* spec, Lum8u* buffer);
/**@}*/

/** @name Grey-weighted erosion and dilation */
/**@{*/
/**
 * dst(x, y) is the largest (Erode: the smallest) of weight(i, j) + src(x + i - anchorX, y + j - anchorY) over all cells
 * (i, j) of the mask. Erosion adds the weights too. Outside the region the outermost pixels repeat.
 *
 * 8u: sums of 32-bit integers, which wrap; a dilation starts from 0, an erosion from 255, and the result is clamped to 0 .. 255.
 * 32f: a dilation starts from -FLT_MAX, an erosion from FLT_MAX; a sum that is a NaN is passed over. There is
 * no work memory. src equal to dst is not refused; the result is then undefined.
 *
 * @param src source and the bytes between its rows
 * @param srcStep source and the bytes between its rows
 * @param dst destination and the bytes between its rows
 * @param dstStep destination and the bytes between its rows
 * @param roiSize size of both in pixels
 * @param border lumBorderReplicate
 * @param spec the weights, from lumiMorphGrayInit_8u_C1R() or lumiMorphGrayInit_32f_C1R()
 * @retval lumStatusNullPointer src, dst or spec is null
 * @retval lumStatusSizeError width or height below 1
 * @retval lumStatusStepError a step below the bytes of a row
 * @retval lumStatusStepAlignmentError 32f: a step that is no multiple of the element size
 * @retval lumStatusBadArgument another border
 * @retval lumStatusSizeError a region wider or higher than that of the object
 * @return lumStatusOk
 */
LUM_API LumStatus lumiGrayDilateBorder_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border,
                                              const LumMorphGrayState* spec);
LUM_API LumStatus lumiGrayDilateBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                               LumSize roiSize, LumBorderType border,
                                               const LumMorphGrayState* spec);
LUM_API LumStatus lumiGrayErodeBorder_8u_C1R(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep,
                                             LumSize roiSize, LumBorderType border,
                                             const LumMorphGrayState* spec);
LUM_API LumStatus lumiGrayErodeBorder_32f_C1R(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep,
                                              LumSize roiSize, LumBorderType border,
                                              const LumMorphGrayState* spec);
/**@}*/

/** @} */

#ifdef __cplusplus
}
#endif

#endif
