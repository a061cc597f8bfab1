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

/** A mask for erosion and dilation of 8u, 16u, 16s and 32f images. */
typedef struct LumMorphMaskRecord LumMorphMaskRecord;

/** A mask for erosion and dilation of 1u images. */
typedef struct LumMorphBitState LumMorphBitState;

/** A mask for erosion and dilation of all images, for the functions with _L. */
typedef struct LumMorphLongState LumMorphLongState;

/** A mask and its point reflection, for the compound operators. */
typedef struct LumMorphPairState LumMorphPairState;

/** A mask of weights, for grey-weighted erosion and dilation. */
typedef struct LumMorphGrayState LumMorphGrayState;

#ifdef __cplusplus
}
#endif

#endif
