// Many threads in the library at once: each result is that of a thread alone, also where threads share what a call only
// reads.
#include <algorithm>
#include <thread>

#include "library/contract/calls.h"
#include "library/contract/rows.h"
#include "library/contract/snapshot.h"

using namespace contract;

namespace {

const std::vector<digest::Case> regions = {{{33, 18}, 8, 4}};

struct Result {
    const digest::Run* run;
    std::uint64_t alone;
};

/// Whether the call only reads what an argument points to.
bool isRead(const Call& call, std::size_t argument) { return call.callee->types[argument].isConstPointer; }

/// What an argument points to may be copied: numbers, of which a picture, a list or a buffer is made.
bool isOfNumbers(const Type& type) {
    return !type.pointeeFields.empty() && type.pointeeFields[0].kind != Kind::pointer;
}

/// Whether all that the call changes is in blocks of numbers.
bool canRunTwice(const Call& call) {
    for (std::size_t i = 0; i < call.arguments.size(); ++i) {
        const Type& type = call.callee->types[i];
        if (type.isPointer() && !isRead(call, i) && !isOfNumbers(type)) return false;
        if (call.callee->arguments[i] == "dstRows") return false;
    }
    return true;
}

/// A call with copies of what it changes; it shares what it only reads.
struct Twin {
    Call call;
    std::vector<std::pair<const digest::Block*, std::vector<unsigned char>>> copies;
    std::vector<std::vector<unsigned char>> outputs;
    LumStatus status = lumStatusOk;

    explicit Twin(const Call& original) : call(original) {
        for (std::size_t i = 0; i < call.arguments.size(); ++i) {
            const Type& type = call.callee->types[i];
            auto* place =
                static_cast<unsigned char*>(type.isPointer() ? call.arguments[i].pointer() : nullptr);
            if (place == nullptr) continue;
            const digest::Block* block = blockOf(place);
            // Within a picture that is changed in place, constant pointers follow.
            if (isRead(original, i) && !changes(original, block)) continue;
            call.arguments[i] =
                Argument::of(block == nullptr ? outsideCopy(place, bytesOutside(i)) : copyOf(block, place));
        }
    }

  private:
    static bool changes(const Call& original, const digest::Block* block) {
        for (std::size_t i = 0; i < original.arguments.size(); ++i) {
            const Type& type = original.callee->types[i];
            if (type.isPointer() && !isRead(original, i) && block != nullptr &&
                block->contains(original.arguments[i].pointer()))
                return true;
        }
        return false;
    }
    unsigned char* copyOf(const digest::Block* block, const unsigned char* place) {
        for (auto& [copied, bytes] : copies)
            if (copied == block) return bytes.data() + (place - block->data());
        copies.push_back({block, {block->data(), block->data() + block->size()}});
        return copies.back().second.data() + (place - block->data());
    }
    /// A range is given as its two ends, which the call may move.
    std::size_t bytesOutside(std::size_t argument) const {
        const std::size_t count = call.callee->arguments[argument] == "dstRange" ? 2 : 1;
        return count * call.callee->types[argument].pointee;
    }
    /// Room for what a caller keeps outside of blocks: a number, or a short list.
    unsigned char* outsideCopy(const unsigned char* place, std::size_t bytes) {
        outputs.emplace_back(4096);
        std::memcpy(outputs.back().data(), place, bytes);
        return outputs.back().data();
    }
};

int different = 0;
std::string current;

/// Runs a call of the row's export, and four twins of it at once.
LumStatus callWithTwins(const Call& call) {
    if (call.callee->name != current || !canRunTwice(call)) return call();
    std::vector<Twin> twins;
    for (int i = 0; i < 4; ++i) twins.emplace_back(call);
    std::vector<std::thread> threads;
    for (Twin& twin : twins) threads.emplace_back([&] { twin.status = twin.call(); });
    for (std::thread& thread : threads) thread.join();
    const LumStatus status = call();
    for (const Twin& twin : twins) {
        if (twin.status != status) ++different;
        for (const auto& [block, bytes] : twin.copies) {
            const bool isScratch = [&] {
                const int buffer = call.callee->indexOf("buffer");
                return buffer >= 0 && block->contains(call.arguments[buffer].pointer());
            }();
            if (!isScratch && !std::equal(bytes.begin(), bytes.end(), block->data())) ++different;
        }
    }
    return status;
}

class Sharing : public FamilyTest {};

} // namespace

TEST(Threads, WorkInAllFamiliesAtOnce) {
    constexpr int threadCount = 64;
    std::vector<Result> results;
    for (const digest::Family& family : digest::families())
        for (const auto& [name, run] : family.rows) results.push_back({&run, digestOf(run, regions)});
    std::vector<int> differing(threadCount, 0);
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i)
        threads.emplace_back([&, i] {
            for (std::size_t r = 0; r < results.size(); ++r) {
                // Each thread begins elsewhere.
                const Result& result = results[(r + i * results.size() / threadCount) % results.size()];
                if (digestOf(*result.run, regions) != result.alone) ++differing[i];
            }
        });
    for (std::thread& thread : threads) thread.join();
    for (int i = 0; i < threadCount; ++i) EXPECT_EQ(0, differing[i]) << "thread " << i;
}

TEST_P(Sharing, OfWhatACallOnlyReadsChangesNoResult) {
    observe(callWithTwins);
    for (const auto& [name, run] : family().rows) {
        current = name;
        different = 0;
        digestOf(run, regions);
        EXPECT_EQ(0, different) << name;
    }
    observe(nullptr);
}

FOR_EVERY_FAMILY(Sharing);
