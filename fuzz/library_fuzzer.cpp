// Calls of every export, legal and illegal, that the bytes of an input decide. `--family=morph` takes the exports of one
// folder, `--show` tells each call before it is carried out.
//
// A row of the digests is the frame: it makes pictures of a size, objects and buffers from their queries, and calls its
// export. All of that lies against unreadable pages, and every call passes through here. Arguments, lists and contents of
// pictures become others, and trial calls of any kind are slipped in. What must hold:
//
//     - nothing is touched outside of regions, objects and buffers (pages; in a build with the address sanitizer, poison),
//     - a refused call gives a status that its contract names, and changes nothing,
//     - nothing is written outside of a region, such as between its rows,
//     - the same once more gives the same, whatever lay in memory before.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>

#include "choices.h"
#include "digest/digest.h"
#include "freedom.h"
#include "fuzzed_call.h"
#include "library/contract/checks.h"
#include "library/contract/snapshot.h"
#include "poison.h"

namespace fuzz {
namespace {

using contract::Call;
using contract::Export;
using contract::Type;
using digest::Surroundings;

/// The folders of the library, and the lists of digests that hold their exports.
const std::map<std::string, std::set<std::string>> folders = {
    {"difference", {"difference"}},
    {"stats", {"accumulate", "extreme", "mean", "norm"}},
    {"integral", {"integral", "haar"}},
    {"filter", {"fixed_filter", "gaussian", "pipeline", "separable"}},
    {"morph", {"morph", "morph_compound", "morph_object"}},
    {"feature", {"edges_corners", "fast", "hough"}},
    {"pyramid", {"pyramid"}},
    {"motion", {"motion"}},
    {"distance", {"distance"}},
    {"segment", {"segment"}},
    {"geometry", {"geometry"}},
};

/// Queries may ask for more than a row is to allocate.
constexpr Lum32s largestBlock = 1 << 24;

std::string family;
bool isShown = false;

struct Row {
    std::string name;
    const digest::Run* run;
};

const std::vector<Row>& rows() {
    static const std::vector<Row> all = [] {
        std::vector<Row> found;
        for (const auto& [folder, lists] : folders)
            if (family.empty() || folder == family)
                for (const digest::Family& one : digest::families())
                    if (lists.count(one.name) != 0)
                        for (const auto& [name, run] : one.rows) found.push_back({name, &run});
        return found;
    }();
    return all;
}

std::string textOf(const Call& call) {
    std::string text = call.callee->name + "(";
    char number[40];
    for (std::size_t i = 0; i < call.arguments.size(); ++i) {
        text += (i == 0 ? "" : ", ") + call.callee->arguments[i] + "=";
        if (call.callee->types[i].isPointer()) {
            std::snprintf(number, sizeof number, "%p", call.arguments[i].pointer());
            text += number;
            continue;
        }
        for (const contract::Field& field : call.callee->types[i].fields) {
            std::snprintf(number, sizeof number, field.offset == 0 ? "%.9g" : "/%.9g",
                          call.arguments[i].number(field));
            text += number;
        }
    }
    return text + ")";
}

[[noreturn]] void fail(const Call& call, const std::string& what) {
    std::fprintf(stderr, "%s\n%s\n", textOf(call).c_str(), what.c_str());
    std::abort();
}

struct ContractStatuses {
    std::set<LumStatus> refusals;
    std::vector<std::string> writtenWhenRefused;
};

const ContractStatuses& statusesOf(const Export& callee) {
    static std::map<const Export*, ContractStatuses> all;
    const auto [place, isNew] = all.try_emplace(&callee);
    if (isNew)
        if (const contract::Contract* contract = contract::contractOf(callee.name))
            for (const contract::Check& check : contract->checks) {
                if (check.status < 0) place->second.refusals.insert(check.status);
                for (const std::string& name : check.written)
                    place->second.writtenWhenRefused.push_back(name);
            }
    return place->second;
}

void expectRefusal(const Call& call, LumStatus status, const contract::Snapshot& before) {
    const ContractStatuses& statuses = statusesOf(*call.callee);
    if (statuses.refusals.count(status) == 0)
        fail(call, "status " + std::to_string(status) + " is not of its contract");
    std::vector<const void*> written;
    for (const std::string& name : statuses.writtenWhenRefused)
        if (const int index = call.callee->indexOf(name); index >= 0)
            written.push_back(call.arguments[index].pointer());
    if (!before.isAsItWas(written)) fail(call, "refused, but memory was written");
}

/// What a call has written.
struct Output {
    Call call;
    LumStatus status;
    std::vector<std::vector<unsigned char>> results;
};

std::vector<std::vector<unsigned char>> resultsOf(const Call& call) {
    std::vector<std::vector<unsigned char>> results;
    for (std::size_t i = 0; i < call.arguments.size(); ++i) {
        const Type& type = call.callee->types[i];
        if (!type.isPointer() || type.isConstPointer || isScratch(*call.callee, i)) continue;
        const auto* place = static_cast<const unsigned char*>(call.arguments[i].pointer());
        if (place == nullptr) continue;
        if (const digest::Block* inside = contract::blockOf(place))
            results.emplace_back(inside->data(), inside->data() + inside->size());
        else
            results.emplace_back(place, place + type.pointee);
    }
    return results;
}

/// The row's sequence of calls ends here: what follows would rely on a call that was refused.
struct Ended {};

/// One pass of an input.
struct Pass {
    Choices choices;
    Sequence sequence{choices};
    std::vector<Output> outputs;
    bool isAltered = false;

    Pass(const Choices& from) : choices(from) {}
    LumStatus carryOut(const Call& original);
    void tryOut(const Call& original);
};

LumStatus invoke(const Call& call) {
    if (isShown) std::fprintf(stderr, "%s", textOf(call).c_str());
    LumStatus status = lumStatusOk;
    {
        const Poison poison(call);
        status = call();
    }
    if (isShown) std::fprintf(stderr, " -> %d\n", status);
    return status;
}

/// A call beside the sequence, of which nothing remains.
void Pass::tryOut(const Call& original) {
    Call call = original;
    const contract::Snapshot before(original);
    for (std::size_t count = 1 + choices.below(3); count > 0; --count) changeAny(call, choices);
    if (choices.below(4) == 1) replaceContents(call, choices);
    const contract::Snapshot unrefused(original);
    const LumStatus status = invoke(call);
    if (status < 0) expectRefusal(call, status, unrefused);
    outputs.push_back({call, status, resultsOf(call)});
    before.restore();
}

LumStatus Pass::carryOut(const Call& original) {
    Call call = original;
    const bool isShared = sequence.share(call);
    isAltered |= isShared;
    const unsigned control = choices.byte();
    if ((control & 1) != 0) replaceContents(call, choices);
    if ((control & 2) != 0) {
        sequence.replaceLists(call);
        isAltered = true;
    }
    for (unsigned trial = 0; trial < (control >> 2 & 3); ++trial) tryOut(call);
    if ((control & 16) != 0 && !call.arguments.empty() && !isQuery(*call.callee))
        isAltered |= changeFreely(call, choices);
    const contract::Snapshot before(call);
    const LumStatus status = invoke(call);
    if (status < 0) {
        expectRefusal(call, status, before);
        if (isAltered) throw Ended{};
    }
    outputs.push_back({call, status, {}});
    if (isQuery(*call.callee))
        for (std::size_t i = 0; i < call.arguments.size(); ++i)
            if (call.callee->types[i].pointee == 4 && call.arguments[i].as<Lum32s*>() != nullptr &&
                *call.arguments[i].as<Lum32s*>() > largestBlock)
                throw Ended{};
    return status;
}

Pass* running = nullptr;

struct Outcome {
    std::vector<Output> outputs;
    std::uint64_t digest;
    bool isEnded;
    bool isAltered;
};

Outcome passOf(const Row& row, const digest::Case& region, const Choices& choices,
               const Surroundings& surroundings) {
    digest::surroundings() = surroundings;
    const int strays = digest::strayWrites();
    digest::Digest digest;
    bool isEnded = false;
    bool isAltered = false;
    std::vector<Output> outputs;
    {
        Pass pass(choices);
        running = &pass;
        try {
            (*row.run)(digest, region);
        } catch (const Ended&) {
            isEnded = true;
        }
        outputs = std::move(pass.outputs);
        isAltered = pass.isAltered;
        running = nullptr;
    }
    if (digest::strayWrites() != strays) {
        std::fprintf(stderr, "row of %s: written outside of regions\n", row.name.c_str());
        std::abort();
    }
    return {std::move(outputs), digest.value(), isEnded, isAltered};
}

/// Whether bytes are the same, but for those that nobody has written.
bool isSame(const std::vector<unsigned char>& a, unsigned char garbageA, const std::vector<unsigned char>& b,
            unsigned char garbageB) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i] && (a[i] != garbageA || b[i] != garbageB)) return false;
    return true;
}

void expectSame(const Row& row, const Outcome& a, unsigned char garbageA, const Outcome& b,
                unsigned char garbageB) {
    const auto differs = [&](const std::string& where) {
        std::fprintf(stderr, "row of %s: two runs differ, at %s\n", row.name.c_str(), where.c_str());
        std::abort();
    };
    for (std::size_t i = 0; i < std::min(a.outputs.size(), b.outputs.size()); ++i) {
        const Output& one = a.outputs[i];
        const Output& other = b.outputs[i];
        if (one.status != other.status || one.results.size() != other.results.size())
            differs(textOf(one.call) + " -> " + std::to_string(one.status) + ", " + textOf(other.call) +
                    " -> " + std::to_string(other.status));
        for (std::size_t r = 0; r < one.results.size(); ++r)
            if (!isSame(one.results[r], garbageA, other.results[r], garbageB))
                differs(textOf(one.call) + ", result " + std::to_string(r));
    }
    if (a.outputs.size() != b.outputs.size() || a.isEnded != b.isEnded) differs("the number of calls");
    // The row of an Init reads its object, of which other arguments than the row's may leave bytes unwritten.
    const bool isOfObject = row.name.find("Init") != std::string::npos;
    if (!a.isEnded && !(isOfObject && a.isAltered) && a.digest != b.digest) differs("the digest of the row");
}

} // namespace
} // namespace fuzz

// The signature is that of the fuzzer's runtime.
// cppcheck-suppress constParameter
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    for (int i = 1; i < *argc; ++i) {
        const std::string argument = (*argv)[i];
        if (argument.rfind("--family=", 0) == 0) fuzz::family = argument.substr(9);
        if (argument == "--show") fuzz::isShown = true;
    }
    if (fuzz::rows().empty()) {
        std::fprintf(stderr, "no family %s\n", fuzz::family.c_str());
        std::exit(2);
    }
    contract::observe([](const contract::Call& call) { return fuzz::running->carryOut(call); });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using digest::Surroundings;
    fuzz::Choices choices(data, size);
    const fuzz::Row& row = fuzz::rows()[choices.bytes(2) % fuzz::rows().size()];
    // Mostly small pictures, some wide or high.
    const unsigned shape = choices.byte();
    LumSize region{static_cast<int>(1 + choices.below(40)), static_cast<int>(1 + choices.below(24))};
    if ((shape & 7) == 1) region = {region.width * 6, 1 + region.height / 6};
    if ((shape & 7) == 2) region = {1 + region.width / 6, region.height * 6};
    const digest::Case chosen{region, 0, choices.byte()};
    const unsigned place = choices.byte();
    const auto shift = static_cast<int>(place >> 1 & 7);
    const auto padding = static_cast<int>(8 * (place >> 4 & 3));
    // The same alignment in both, as some exports state that it decides over the sign of a zero.
    const auto guard = (place & 1) != 0 ? Surroundings::Guard::after : Surroundings::Guard::before;
    constexpr unsigned char garbage[] = {0xA5, 0x00, 0xFF, 0x3C};
    const unsigned char first = garbage[shape >> 6];
    const unsigned char second = 0x7F;
    const fuzz::Outcome one = fuzz::passOf(row, chosen, choices, {guard, shift, padding, first});
    const fuzz::Outcome other = fuzz::passOf(row, chosen, choices, {guard, shift, padding, second});
    fuzz::expectSame(row, one, first, other, second);
    return 0;
}
