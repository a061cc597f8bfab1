// Every export on guarded memory: pictures with steps of exactly a row or more, at any alignment, objects and buffers of
// exactly the queried size in memory full of garbage, each against an unreadable page. Nothing outside a region is read or
// written, nothing that a call gets as constant changes, and whatever the garbage the results are the same.
#include <csignal>
#include <cstdio>
#include <unistd.h>

#include "library/contract/calls.h"
#include "library/contract/rows.h"

using namespace contract;
using digest::Surroundings;

namespace {

std::string current;
bool failed = false;

void sayWhatCrashed(int) {
    std::fprintf(stderr, "crashed: row of %s\n", current.c_str());
    _exit(1);
}

/// Whether a call may write to a block: one of its pointers that are not constant leads there.
bool mayWrite(const Call& call, const digest::Block& block) {
    for (std::size_t i = 0; i < call.arguments.size(); ++i) {
        const Type& type = call.callee->types[i];
        if (!type.isPointer() || call.arguments[i].pointer() == nullptr) continue;
        if (!type.isConstPointer && block.contains(call.arguments[i].pointer())) return true;
        // Rows of a destination.
        if (call.callee->arguments[i] == "dstRows" &&
            block.contains(*static_cast<void**>(call.arguments[i].pointer())))
            return true;
    }
    return false;
}

/// Carries the call out and looks at what it must not have changed.
LumStatus watchConstants(const Call& call) {
    std::vector<std::pair<const digest::Block*, std::vector<unsigned char>>> constants;
    for (const digest::Block* block : digest::Block::living())
        if (block->size() > 0 && !mayWrite(call, *block))
            constants.push_back({block, {block->data(), block->data() + block->size()}});
    const LumStatus status = call();
    for (const auto& [block, before] : constants)
        if (std::memcmp(block->data(), before.data(), before.size()) != 0 && !failed) {
            ADD_FAILURE() << call.callee->name << " has written to what it gets as constant";
            failed = true;
        }
    return status;
}

class Regions : public FamilyTest {};

} // namespace

TEST(Blocks, TellOfBytesThatAreWrittenOutside) {
    for (const auto guard :
         {Surroundings::Guard::none, Surroundings::Guard::after, Surroundings::Guard::before}) {
        digest::surroundings() = {guard, 5, 0, 0x3C};
        const int before = digest::strayWrites();
        { digest::Picture<Lum8u>({3, 2}, 1, 0, 1).fill(1).row(0)[0] = 7; }
        EXPECT_EQ(before, digest::strayWrites());
        { digest::Picture<Lum8u>({3, 2}, 1, 0, 1).fill(1).row(0)[3] ^= 1; }
        EXPECT_EQ(before + 1, digest::strayWrites());
        { ++digest::Block(9, 0).data()[guard == Surroundings::Guard::before ? -1 : 9]; }
        EXPECT_EQ(before + 2, digest::strayWrites());
    }
}

TEST_P(Regions, AreAllThatIsReadOrWritten) {
    constexpr Surroundings all[] = {
        {Surroundings::Guard::after, 0, 0, 0xFF},
        {Surroundings::Guard::after, 1, 8, 0x3C},
        {Surroundings::Guard::before, 0, 0, 0x81},
        {Surroundings::Guard::before, 7, 24, 0x00},
    };
    std::signal(SIGSEGV, sayWhatCrashed);
    for (const auto& [name, run] : family().rows) {
        current = name;
        failed = false;
        digest::surroundings() = {};
        observe(watchConstants);
        const std::uint64_t expected = digestOf(run, digest::cases());
        observe(nullptr);
        for (const Surroundings& surroundings : all) {
            digest::surroundings() = surroundings;
            const int straysBefore = digest::strayWrites();
            EXPECT_EQ(expected, digestOf(run, digest::cases()))
                << name << " amid bytes of " << int{surroundings.garbage};
            EXPECT_EQ(straysBefore, digest::strayWrites()) << name << " wrote outside";
        }
    }
}

FOR_EVERY_FAMILY(Regions);
