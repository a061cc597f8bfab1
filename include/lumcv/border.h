/**
 * @file
 * What lies outside a region.
 */
#ifndef LUMCV_BORDER_H
#define LUMCV_BORDER_H

#include <stdint.h>

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

#endif
