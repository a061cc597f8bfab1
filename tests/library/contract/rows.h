// The rows of the digests as tests: one test a family, and what each row gives.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "digest/digest.h"

namespace contract {

inline std::vector<std::string> familyNames() {
    std::vector<std::string> names;
    for (const digest::Family& family : digest::families()) names.push_back(family.name);
    return names;
}

/// A test that runs for each family.
class FamilyTest : public testing::TestWithParam<std::string> {
  protected:
    static const digest::Family& family() {
        for (const digest::Family& one : digest::families())
            if (one.name == GetParam()) return one;
        return digest::families().front();
    }
};

/// The digest of a row over some regions.
inline std::uint64_t digestOf(const digest::Run& run, const std::vector<digest::Case>& regions) {
    digest::Digest digest;
    for (const digest::Case& region : regions) run(digest, region);
    return digest.value();
}

} // namespace contract

#define FOR_EVERY_FAMILY(suite)                                                                              \
    INSTANTIATE_TEST_SUITE_P(EveryFamily, suite, testing::ValuesIn(contract::familyNames()),                 \
                             [](const auto& family) { return family.param; })
