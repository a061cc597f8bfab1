#include "support/substitute_lumcore.h"

namespace {
int32_t reportedBytes = 1 << 20;
LumStatus reportedStatus = lumStatusOk;
int queries = 0;
} // namespace

LumStatus lumGetMaxCacheSizeB(int32_t* bytes) {
    ++queries;
    if (reportedStatus == lumStatusOk) *bytes = reportedBytes;
    return reportedStatus;
}

void substituteReport(int32_t bytes, LumStatus status) {
    reportedBytes = bytes;
    reportedStatus = status;
    queries = 0;
}

int substituteQueries() { return queries; }
