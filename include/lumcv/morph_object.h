/**
 * @file
 * Structuring elements of morphology: masks analysed into objects in the caller's memory.
 */
#ifndef LUMCV_MORPH_OBJECT_H
#define LUMCV_MORPH_OBJECT_H

#include "status.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup morph_object Morphology: structuring elements
 * Structuring elements of morphology: masks analysed into objects in the caller's memory.
 *
 * @code
 * Lum32s specSize, bufferSize;
 * lumiMorphologyBorderGetSize_8u_C1R(roiSize, maskSize, &specSize, &bufferSize);
 * LumMorphMaskRecord* spec = malloc(specSize);
 * Lum8u* buffer = malloc(bufferSize);
 * lumiMorphologyBorderInit_8u_C1R(roiSize, mask, maskSize, spec, buffer);
 * lumiDilateBorder_8u_C1R(src, srcStep, dst, dstStep, roiSize, lumBorderReplicate, 0, spec, buffer);
 * @endcode
 *
 * A mask is an array of bytes, row after row with no gap; a cell other than 0 belongs to the element. Each set cell
 * contributes the source pixel at its distance from the anchor (Serra, Image Analysis and Mathematical Morphology,
 * 1982). An object serves regions up to the size given to its Init; no block need be aligned. Objects point into
 * themselves, so a block is neither moved nor copied. Runs only read them.
 * @{
 */

/** A mask for erosion and dilation of 8u, 16u, 16s and 32f images, built by lumiMorphologyBorderInit_8u_C1R() and its
 * like. Its layout is given at the end of this group. */
typedef struct LumMorphMaskRecord LumMorphMaskRecord;

/** A mask for erosion and dilation of 1u images, built by lumiMorphologyBorderInit_1u_C1R(). */
typedef struct LumMorphBitState LumMorphBitState;

/** A mask for erosion and dilation of all images, for the functions with _L; built by lumiErodeInit_L(). */
typedef struct LumMorphLongState LumMorphLongState;

/** A mask and its point reflection, for the compound operators; built by lumiMorphAdvInit_8u_C1R() and its like, and
 * by lumiMorphInit_L(). */
typedef struct LumMorphPairState LumMorphPairState;

/** A mask of weights, for grey-weighted erosion and dilation; built by lumiMorphGrayInit_8u_C1R() and its like. */
typedef struct LumMorphGrayState LumMorphGrayState;

/** @name Erosion and dilation: memory */
/**@{*/
/**
 * The bytes of the object and of the work memory of runs; the formulas are in the group's layout section. Sums wrap
 * in 32 bits.
 *
 * @param roiSize the largest region in pixels
 * @param maskSize columns and rows of the mask
 * @param specSize receives the bytes of the object
 * @param bufferSize receives the bytes of the work memory
 * @retval lumStatusNullPointer specSize or bufferSize is null
 * @retval lumStatusSizeError a width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphologyBorderGetSize_8u_C1R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                                     Lum32s* bufferSize);
LUM_API LumStatus lumiMorphologyBorderGetSize_8u_C3R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                                     Lum32s* bufferSize);
LUM_API LumStatus lumiMorphologyBorderGetSize_8u_C4R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                                     Lum32s* bufferSize);
LUM_API LumStatus lumiMorphologyBorderGetSize_16u_C1R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                                      Lum32s* bufferSize);
LUM_API LumStatus lumiMorphologyBorderGetSize_16s_C1R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                                      Lum32s* bufferSize);
LUM_API LumStatus lumiMorphologyBorderGetSize_32f_C1R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                                      Lum32s* bufferSize);
LUM_API LumStatus lumiMorphologyBorderGetSize_32f_C3R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                                      Lum32s* bufferSize);
LUM_API LumStatus lumiMorphologyBorderGetSize_32f_C4R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                                      Lum32s* bufferSize);
LUM_API LumStatus lumiMorphologyBorderGetSize_1u_C1R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                                     Lum32s* bufferSize);
/**@}*/

/** @name Erosion and dilation: initialisers */
/**@{*/
/**
 * Analyse a mask. The anchor is the middle cell. A mask of even width or height is padded with an empty column on the
 * left or an empty row at the top, so that an even mask reaches one pixel further to the right and down; in a 1u
 * object it is kept as it is, with the anchor at the upper left of the middle cells, which gives the same window.
 *
 * @param roiSize the largest region in pixels
 * @param mask maskSize.width * maskSize.height bytes
 * @param maskSize columns and rows of the mask
 * @param spec memory of specSize bytes
 * @param buffer work memory of bufferSize bytes; left untouched
 * @retval lumStatusNullPointer mask, spec or buffer is null
 * @retval lumStatusSizeError a width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphologyBorderInit_8u_C1R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                                  LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphologyBorderInit_8u_C3R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                                  LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphologyBorderInit_8u_C4R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                                  LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphologyBorderInit_16u_C1R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                                   LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphologyBorderInit_16s_C1R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                                   LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphologyBorderInit_32f_C1R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                                   LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphologyBorderInit_32f_C3R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                                   LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphologyBorderInit_32f_C4R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                                   LumMorphMaskRecord* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphologyBorderInit_1u_C1R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                                  LumMorphBitState* spec, Lum8u* buffer);
/**@}*/

/** @name Erosion and dilation with pointer-wide sizes: memory of the object */
/**@{*/
/**
 * One object serves all element types. Both functions give the same.
 *
 * @param roiSize the largest region in pixels
 * @param maskSize columns and rows of the mask
 * @param specSize receives the bytes of the object
 * @retval lumStatusNullPointer specSize is null
 * @retval lumStatusSizeError a width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiErodeGetSpecSize_L(LumSizeL roiSize, LumSizeL maskSize, Lum32s* specSize);
LUM_API LumStatus lumiDilateGetSpecSize_L(LumSizeL roiSize, LumSizeL maskSize, Lum32s* specSize);
/**@}*/

/** @name Erosion and dilation with pointer-wide sizes: work memory */
/**@{*/
/**
 * Both functions give the same.
 *
 * @param roiSize the largest region in pixels
 * @param maskSize columns and rows of the mask
 * @param type lumType1u, lumType8u, lumType16u, lumType16s or lumType32f
 * @param numChannels 1, 3 or 4
 * @param bufferSize receives the bytes of the work memory
 * @retval lumStatusNullPointer bufferSize is null
 * @retval lumStatusSizeError a width or height below 1
 * @retval lumStatusDataTypeError another type
 * @retval lumStatusChannelCountError numChannels not 1, 3 or 4
 * @return lumStatusOk
 */
LUM_API LumStatus lumiErodeGetBufferSize_L(LumSizeL roiSize, LumSizeL maskSize, LumDataType type,
                                           int numChannels, Lum32s* bufferSize);
LUM_API LumStatus lumiDilateGetBufferSize_L(LumSizeL roiSize, LumSizeL maskSize, LumDataType type,
                                            int numChannels, Lum32s* bufferSize);
/**@}*/

/** @name Erosion and dilation with pointer-wide sizes: initialisers */
/**@{*/
/**
 * Build a #LumMorphMaskRecord and a #LumMorphBitState of the mask, as the initialisers above do.
 *
 * @param roiSize the largest region in pixels
 * @param mask maskSize.width * maskSize.height bytes
 * @param maskSize columns and rows of the mask
 * @param spec memory of specSize bytes
 * @retval lumStatusNullPointer mask or spec is null
 * @retval lumStatusSizeError a width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiErodeInit_L(LumSizeL roiSize, const Lum8u* mask, LumSizeL maskSize,
                                  LumMorphLongState* spec);
LUM_API LumStatus lumiDilateInit_L(LumSizeL roiSize, const Lum8u* mask, LumSizeL maskSize,
                                   LumMorphLongState* spec);
/**@}*/

/** @name Compound operators: memory */
/**@{*/
/**
 * The bytes of the object of a mask and its reflection, and of the work memory of opening, closing, top-hat,
 * black-hat and gradient, which holds an image between two stages.
 *
 * @param roiSize the largest region in pixels
 * @param maskSize columns and rows of the mask
 * @param specSize receives the bytes of the object
 * @param bufferSize receives the bytes of the work memory
 * @retval lumStatusNullPointer specSize or bufferSize is null
 * @retval lumStatusSizeError a width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphAdvGetSize_8u_C1R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                             Lum32s* bufferSize);
LUM_API LumStatus lumiMorphAdvGetSize_8u_C3R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                             Lum32s* bufferSize);
LUM_API LumStatus lumiMorphAdvGetSize_8u_C4R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                             Lum32s* bufferSize);
LUM_API LumStatus lumiMorphAdvGetSize_16u_C1R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                              Lum32s* bufferSize);
LUM_API LumStatus lumiMorphAdvGetSize_16s_C1R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                              Lum32s* bufferSize);
LUM_API LumStatus lumiMorphAdvGetSize_32f_C1R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                              Lum32s* bufferSize);
LUM_API LumStatus lumiMorphAdvGetSize_32f_C3R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                              Lum32s* bufferSize);
LUM_API LumStatus lumiMorphAdvGetSize_32f_C4R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                              Lum32s* bufferSize);
LUM_API LumStatus lumiMorphAdvGetSize_1u_C1R(LumSize roiSize, LumSize maskSize, Lum32s* specSize,
                                             Lum32s* bufferSize);
/**@}*/

/** @name Compound operators: initialisers */
/**@{*/
/**
 * The first element is the mask, as lumiMorphologyBorderInit_8u_C1R() and its like build it. The second is its point
 * reflection: element k of the array of N bytes changes places with element N - 1 - k. A reflected mask of even width
 * or height is padded on the right or at the bottom.
 *
 * N is maskSize.width * maskSize.height in 1u_C1R, 8u_C1R and 8u_C4R. In all other types it is the product of the two
 * sides rounded up to odd numbers, so that an even mask is read beyond its end: the array must have these N bytes,
 * and those after the mask become the first of the reflection.
 *
 * @param roiSize the largest region in pixels
 * @param mask the mask, N bytes
 * @param maskSize columns and rows of the mask
 * @param spec memory of specSize bytes
 * @param buffer work memory of bufferSize bytes; left untouched but for 1u, where its last part is cleared, and the
 *         object keeps a pointer to that part
 * @retval lumStatusNullPointer mask, spec or buffer is null
 * @retval lumStatusSizeError a width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphAdvInit_8u_C1R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                          LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphAdvInit_8u_C3R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                          LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphAdvInit_8u_C4R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                          LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphAdvInit_16u_C1R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                           LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphAdvInit_16s_C1R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                           LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphAdvInit_32f_C1R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                           LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphAdvInit_32f_C3R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                           LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphAdvInit_32f_C4R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                           LumMorphPairState* spec, Lum8u* buffer);
LUM_API LumStatus lumiMorphAdvInit_1u_C1R(LumSize roiSize, const Lum8u* mask, LumSize maskSize,
                                          LumMorphPairState* spec, Lum8u* buffer);
/**@}*/

/**
 * The bytes of the object of lumiMorphInit_L(); they do not depend on type and channels.
 *
 * @param roiSize the largest region in pixels
 * @param maskSize columns and rows of the mask
 * @param type lumType1u, lumType8u, lumType16u, lumType16s or lumType32f
 * @param numChannels 1, 3 or 4
 * @param specSize receives the bytes
 * @retval lumStatusNullPointer specSize is null
 * @retval lumStatusSizeError a width or height below 1
 * @retval lumStatusDataTypeError another type
 * @retval lumStatusChannelCountError numChannels not 1, 3 or 4
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphGetSpecSize_L(LumSizeL roiSize, LumSizeL maskSize, LumDataType type,
                                         int numChannels, Lum32s* specSize);

/**
 * The bytes of the work memory of compound operators with pointer-wide sizes.
 *
 * @param roiSize the largest region in pixels
 * @param maskSize columns and rows of the mask
 * @param type lumType1u, lumType8u, lumType16u, lumType16s or lumType32f
 * @param numChannels 1, 3 or 4
 * @param bufferSize receives the bytes
 * @retval lumStatusNullPointer bufferSize is null
 * @retval lumStatusSizeError a width or height below 1
 * @retval lumStatusDataTypeError another type
 * @retval lumStatusChannelCountError numChannels not 1, 3 or 4
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphGetBufferSize_L(LumSizeL roiSize, LumSizeL maskSize, LumDataType type,
                                           int numChannels, Lum32s* bufferSize);

/**
 * Builds the object of the compound operators with pointer-wide sizes; it serves all element types. The first element
 * is read as a mask whose sides are rounded up to odd numbers, and the second is the point reflection of the first
 * maskSize.width * maskSize.height bytes, so a mask is best given with odd sides.
 *
 * @param roiSize the largest region in pixels
 * @param mask the mask, (maskSize.width | 1) * (maskSize.height | 1) bytes
 * @param maskSize columns and rows of the mask
 * @param type lumType1u, lumType8u, lumType16u, lumType16s or lumType32f
 * @param numChannels 1, 3 or 4
 * @param spec memory of the size of lumiMorphGetSpecSize_L()
 * @retval lumStatusNullPointer mask or spec is null
 * @retval lumStatusSizeError a width or height below 1
 * @retval lumStatusDataTypeError another type
 * @retval lumStatusChannelCountError numChannels not 1, 3 or 4
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphInit_L(LumSizeL roiSize, const Lum8u* mask, LumSizeL maskSize, LumDataType type,
                                  int numChannels, LumMorphPairState* spec);

/** @name Compound operators: mode */
/**@{*/
/**
 * Changes an object between runs. Bit 0 clear (modes 0 and 4): the second stage uses the reflected mask, as after
 * Init. Bit 0 set (modes 1 and 5): it uses the mask as it was given. Bit 2 set (modes 4 and 5): top-hat and black-hat
 * of 16s and 32f, and the gradient of 16s, keep negative differences in their functions with _L.
 *
 * Both names are one function. The object is one of lumiMorphInit_L() or lumiMorphAdvInit_1u_C1R(): others do not
 * remember their reflected mask.
 *
 * @param mode 0, 1, 4 or 5
 * @param spec the object
 * @retval lumStatusNullPointer spec is null
 * @retval lumStatusModeError another mode
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphSetMode(int mode, LumMorphPairState* spec);
LUM_API LumStatus lumiMorphSetMode_L(int mode, LumMorphPairState* spec);
/**@}*/

/** @name Grey-weighted morphology: memory */
/**@{*/
/**
 * *specSize = 4 * maskSize.width * maskSize.height + 28, or + 32 where pointers have 64 bits; it wraps in 32 bits.
 *
 * @param roiSize the largest region in pixels
 * @param mask the weights, Lum32s for 8u and Lum32f for 32f; only tested
 * @param maskSize columns and rows of the mask
 * @param specSize receives bytes
 * @retval lumStatusNullPointer mask or specSize is null
 * @retval lumStatusSizeError a width or height below 1
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphGrayGetSize_8u_C1R(LumSize roiSize, const void* mask, LumSize maskSize,
                                              Lum32s* specSize);
LUM_API LumStatus lumiMorphGrayGetSize_32f_C1R(LumSize roiSize, const void* mask, LumSize maskSize,
                                               Lum32s* specSize);
/**@}*/

/** @name Grey-weighted morphology: initialisers */
/**@{*/
/**
 * Copy the weights. Both names are one function.
 *
 * @param spec memory of specSize bytes
 * @param roiSize the largest region in pixels; runs refuse larger ones
 * @param mask maskSize.width * maskSize.height weights, Lum32s for 8u and Lum32f for 32f
 * @param maskSize columns and rows of the mask
 * @param anchor the cell over the pixel itself
 * @retval lumStatusNullPointer mask or spec is null
 * @retval lumStatusSizeError a width or height below 1
 * @retval lumStatusAnchorError anchor outside the mask
 * @return lumStatusOk
 */
LUM_API LumStatus lumiMorphGrayInit_8u_C1R(LumMorphGrayState* spec, LumSize roiSize, const void* mask,
                                           LumSize maskSize, LumPoint anchor);
LUM_API LumStatus lumiMorphGrayInit_32f_C1R(LumMorphGrayState* spec, LumSize roiSize, const void* mask,
                                            LumSize maskSize, LumPoint anchor);
/**@}*/

/**
 * @page morph_object_layout Layout of the objects of morphology
 *
 * Fields follow one another without gaps, pointers in 4 bytes (8 where pointers have 64 bits), all others in 4 bytes
 * unless said otherwise. With w and h the sides of the mask, W = w | 1 and H = h | 1, rw and rh the sides of the
 * region, e the bytes of an element (1 for 1u), c the channels, and up(n, m) the first multiple of m at or above n:
 *
 * @par Layout of LumMorphMaskRecord
 * `cells` (pointer), `width`, `height` (W, H), `anchorX`, `anchorY` (w / 2, h / 2), `boxWidth`, `boxHeight` (W, H),
 * `rowLists` (pointer), `rowsAreRuns`, `rowRuns` (pointer), `shapeFlags`, `isCross`, `isKnownShape`; then, byte after
 * byte, what the pointers name:
 * - `cells`: W * H bytes, 255 for a set cell and 0 for others.
 * - `rowLists`: for each row W + 1 numbers of 16 bits, the count of its set cells and then their columns, rising.
 * - `rowRuns`: for each row two numbers of 16 bits, the count of set cells and the first of them (0xFFFF: none). Rows
 *   after the first that has a gap between set cells are not written. In a cross the first pair is (row, column).
 *
 * @par Shape flags
 * 0x002 all cells are set, 0x004 none is, 0x008 an outer row or column is empty, 0x010 no row has a gap, 0x020 a
 * cross, 0x100 the 3 by 3 cross, 0x300 the 5 by 5 diamond, 0x500 the 7 by 7 disc. A cross has one row with H set
 * cells, one column with W set cells, and no other with more than one: only square masks hold one.
 *
 * @par Layout of LumMorphBitState
 * `cells`, `cellsForRows`, `cellsForColumns` (pointers to the w * h bytes that follow, a copy of the mask), two
 * reserved pointers (null), `width`, `height` (w, h), `anchorX`, `anchorY`, `rightReach`, `bottomReach` (cells after
 * the anchor), `bufferRowBytes` (up(rw, 16)), `scratchBytes` (0), two reserved words (0 and 1), `roiWidth`, a
 * reserved word (-1), `kind` (0, or 3 for a mask with no set cell). Of an empty mask anchor and reaches are 0, the
 * second and third pointer are null, and the fifth names the copy. Runs return at once for any other kind.
 *
 * @par Layout of LumMorphLongState
 * `maskRecord` and `bitState` (pointers), then the mask record, and specSize of the mask record further on the bit
 * state.
 *
 * @par Layout of LumMorphPairState
 * `first`, `second` (pointers to the elements of the stages), `bitBuffer` (pointer), `bitBufferBytes`,
 * `bitScratchBytes`, `reflected` (pointer to the reflected element), `keepNegative`, a reserved word; then the two
 * elements, specSize of an element apart, and a copy of the reflected mask. The fields from `bitBuffer` to
 * `bitScratchBytes` are set for 1u only, `reflected` and `keepNegative` by lumiMorphAdvInit_1u_C1R() and
 * lumiMorphInit_L() only.
 *
 * @par Layout of LumMorphGrayState
 * `cells` (pointer to the w * h words that follow), `width`, `height`, `anchorX`, `anchorY`, `roiWidth`, `roiHeight`.
 *
 * @par Sizes of lumiMorphologyBorderGetSize
 * R = W * H + 96 + 2 * (2 * W + 2) * H is specSize. bufferSize is Bn = up(t * e * c, 32) + L + 64, with
 * - L = up(rw * c * e, 32) * H + up(W * c * e, 32) + s, s = 32 for elements of 2 bytes and 16 * e for others;
 * - t = (rw + W - 1) * (rh + H - 1); but where W < rw and H < rh, t is the larger of (rw + W - 1) * (H / 2 + H - 1),
 *   or 0 for H = 1, and (rh + H - 1) * (W + W / 2 - 1), or 0 for W = 1.
 *
 * 1u: specSize = up(w * h, 16) + 96, bufferSize = max(2 * h * up((rw + w) * 4, 16) + 16, S). S is the sum of
 * - max(up((rw + w - 1) * h, 32) + up(rw, 32) * h + up(w, 32) + 32, h * 20 + (h * h + 1) * (rw + 32) + 36)
 * - up(h * 24, 16) + up(w * h, 16) + ((h * 16 + 63) & ~15)
 *
 * @par Sizes of lumiErodeGetSpecSize_L and lumiErodeGetBufferSize_L
 * With P = max((((w + rw) * 8 + 30) & ~31) * h + 16, S): specSize = R + P + 8, bufferSize = max(Bn, P).
 *
 * @par Sizes of lumiMorphAdvGetSize
 * With E and B the specSize and bufferSize of lumiMorphologyBorderGetSize:
 * - specSize = 2 * E + 32 + W * H
 * - bufferSize = 2 * B + ((h & ~1) + rh) * up(((w & ~1) + rw) * e * c, 32)
 *
 * @par Sizes of lumiMorphGetSpecSize_L and lumiMorphGetBufferSize_L
 * With xw = rw + 2 * W - 2 and xh = rh + 2 * H - 2, and b the largest bufferSize of lumiErodeGetBufferSize_L for the
 * regions rw by rh, (rw + W - 1) by (rh + H - 1) and xw by xh:
 * - specSize = 2 * lumiErodeGetSpecSize_L(xw by xh, W by H) + 32 + W * H
 * - bufferSize = 2 * b + xh * up(xw * c * e, 32)
 */
/** @} */

#ifdef __cplusplus
}
#endif

#endif
