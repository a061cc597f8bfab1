/**
 * @file
 * The identity of the library.
 */
#ifndef LUMCV_VERSION_H
#define LUMCV_VERSION_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @name The version of this project, of its packages and of the shared library's name */
/**@{*/
#define LUMCV_VERSION_MAJOR 1 /**< raised when a host must be compiled anew */
#define LUMCV_VERSION_MINOR 0 /**< raised when something is added */
#define LUMCV_VERSION_PATCH 0 /**< raised with every other change */
/** One number that grows with the version, for `#if LUMCV_VERSION_NUMBER >= LUMCV_VERSION_OF(1, 2, 0)`. */
#define LUMCV_VERSION_NUMBER LUMCV_VERSION_OF(LUMCV_VERSION_MAJOR, LUMCV_VERSION_MINOR, LUMCV_VERSION_PATCH)
#define LUMCV_VERSION_OF(major, minor, patch)                                                                \
    ((major)*1000000 + (minor)*1000 + (patch)) /**< a version's number */
/**@}*/

/** The identity of the library: texts and numbers that never change, unlike the version of this project. */
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

#ifdef __cplusplus
}
#endif

#endif
