// Every export on pictures whose rows lie so far apart that a region spans more than 2^32 bytes, of which little is touched:
// offsets are as wide as pointers.
#include "library/contract/rows.h"

using namespace contract;
using digest::Surroundings;

namespace {

class LargePictures : public FamilyTest {};

} // namespace

TEST_P(LargePictures, OfManyBytesGiveTheSame) {
    if (sizeof(void*) == 4) GTEST_SKIP() << "32 bits do not address such a picture";
    const std::vector<digest::Case> regions = {{{33, 18}, 0, 4}};
    for (const auto& [name, run] : family().rows) {
        digest::surroundings() = {};
        const std::uint64_t expected = digestOf(run, regions);
        digest::surroundings() = {Surroundings::Guard::sparse, 0, 1 << 28, 0};
        EXPECT_EQ(expected, digestOf(run, regions)) << name;
    }
}

FOR_EVERY_FAMILY(LargePictures);
