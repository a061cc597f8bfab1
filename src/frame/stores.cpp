#include "frame/stores.h"

#include "lumcore.h"

namespace lum {

Stores storesForBytes(Lum32s bytes, OnUnknownCache onUnknownCache) {
    int32_t cacheBytes = 0;
    const LumStatus status = lumGetMaxCacheSizeB(&cacheBytes);
    if (status != lumStatusOk && onUnknownCache == OnUnknownCache::storeOrdinarily) return Stores::ordinary;
    return bytes < cacheBytes ? Stores::ordinary : Stores::streaming;
}

} // namespace lum
