/**
 * @file
 * Elements, plain records, selectors, and how functions are exported.
 */
#ifndef LUMCV_TYPES_H
#define LUMCV_TYPES_H

#include <stdint.h>

#ifndef LUM_API
#    if defined(__GNUC__) && !defined(_WIN32)
#        define LUM_API __attribute__((visibility("default")))
#    else
#        define LUM_API
#    endif
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

#endif
