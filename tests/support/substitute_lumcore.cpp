#include "support/substitute_lumcore.h"

#include <atomic>

namespace {
int32_t reportedBytes = 1 << 20;
LumStatus reportedStatus = lumStatusOk;
// Threads ask at once; the answer is set before they begin.
std::atomic<int> queries{0};
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
