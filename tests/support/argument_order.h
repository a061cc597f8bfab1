// Argument checks in their order: each fault alone, and each pair of faults, of which the earlier one is reported.
#pragma once

#include <gtest/gtest.h>
#include <vector>

#include "lumcv/status.h"

namespace support {

/// One wrong argument. Faults of one rank are tested together and share their status.
template <class Arguments> struct Fault {
    const char* name;
    int rank;
    LumStatus status;
    void (*make)(Arguments&);
};

/// Runs the call with each fault and with each pair of faults of different ranks; `call` says whether anything that must
/// stay untouched was written.
template <class Arguments, class Call>
void expectStatusesInOrder(const Arguments& good, const std::vector<Fault<Arguments>>& faults, Call call) {
    for (const auto& first : faults) {
        Arguments alone = good;
        first.make(alone);
        EXPECT_EQ(first.status, call(alone)) << first.name;
        for (const auto& second : faults) {
            if (second.rank <= first.rank) continue;
            Arguments both = good;
            second.make(both);
            first.make(both);
            EXPECT_EQ(first.status, call(both)) << first.name << " and " << second.name;
        }
    }
    Arguments none = good;
    EXPECT_EQ(static_cast<LumStatus>(lumStatusOk), call(none));
}

} // namespace support
