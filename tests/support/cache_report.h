// What the library is told about the machine's largest cache.
#pragma once

#include "lumcv.h"

namespace support {

/// While it lives, the cache size query answers as given; afterwards it answers with one mebibyte again.
class CacheReport {
  public:
    explicit CacheReport(int bytes, LumStatus status = lumStatusOk);
    ~CacheReport();
    CacheReport(const CacheReport&) = delete;
    CacheReport& operator=(const CacheReport&) = delete;

    /// How often the library has asked.
    int queries() const;
};

inline constexpr int tinyCache = 1;
inline constexpr int hugeCache = 0x7FFFFFFF;

} // namespace support
