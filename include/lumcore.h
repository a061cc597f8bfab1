/**
 * @file
 * The companion core library of lumCV: what the library asks of the machine.
 */
#ifndef LUMCORE_H
#define LUMCORE_H

#include "lumcv.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * The size of the largest data cache, as the processor describes it, clamped to 2147483647.
 *
 * @param bytes receives the size in bytes; written on success only
 * @retval lumStatusNullPointer bytes is null
 * @retval lumStatusOutOfRange the processor describes no data cache
 * @return lumStatusOk
 */
LUM_API LumStatus lumGetMaxCacheSizeB(int32_t* bytes);

#ifdef __cplusplus
}
#endif

#endif
