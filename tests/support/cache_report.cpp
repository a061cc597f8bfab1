#include "support/cache_report.h"

#include "support/substitute_lumcore.h"

namespace support {

CacheReport::CacheReport(int bytes, LumStatus status) { substituteReport(bytes, status); }
CacheReport::~CacheReport() { substituteReport(1 << 20, lumStatusOk); }
int CacheReport::queries() const { return substituteQueries(); }

} // namespace support
