// Controls of the substitute liblumcore.so.
#pragma once

#include "lumcore.h"

extern "C" {
/// What lumGetMaxCacheSizeB() answers from now on; the count of queries starts again at 0.
LUM_API void substituteReport(int32_t bytes, LumStatus status);
/// Queries since the last report was set.
LUM_API int substituteQueries();
}
