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

#ifdef __cplusplus
}
#endif

#endif
