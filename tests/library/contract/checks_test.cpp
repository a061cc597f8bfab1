// Argument checks of every export in their order: each fault alone, and each pair of faults of two checks, of which the
// earlier one is reported. A refused call leaves all memory as it was.
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <unistd.h>

#include "library/contract/checks.h"
#include "library/contract/rows.h"
#include "library/contract/snapshot.h"

using namespace contract;

namespace {

/// What is tried at the moment, for a message should the library crash.
std::string attempt;

void sayWhatCrashed(int) {
    std::fprintf(stderr, "crashed: %s\n", attempt.c_str());
    _exit(1);
}

/// The call with faults; what arguments point to is put back afterwards.
LumStatus callWith(const Call& good, std::initializer_list<const Fault*> faults) {
    Call call = good;
    std::vector<std::pair<unsigned char*, std::vector<unsigned char>>> poked;
    attempt = good.callee->name + " with";
    for (const Fault* fault : faults) {
        attempt += " " + fault->text;
        for (const Setting& setting : fault->settings) {
            if (setting.offset >= 0) {
                auto* place = static_cast<unsigned char*>(good.arguments[setting.argument].pointer()) +
                              setting.offset + setting.field.offset;
                poked.push_back({place, {place, place + setting.field.bytes}});
                Argument element{};
                element.set({"", setting.field.kind, 0, setting.field.bytes}, setting.value);
                std::memcpy(place, element.bytes, setting.field.bytes);
            } else if (setting.pointerFrom >= 0) {
                call.arguments[setting.argument] = good.arguments[setting.pointerFrom];
            } else {
                call.arguments[setting.argument].set(setting.field, setting.value);
            }
        }
    }
    const LumStatus status = call();
    for (auto entry = poked.rbegin(); entry != poked.rend(); ++entry)
        std::memcpy(entry->first, entry->second.data(), entry->second.size());
    return status;
}

/// Whether the fault remains one when another is added: it sets other places, and no argument that its limit is
/// worked out from.
bool remainsWith(const Export& callee, const Fault& fault, const Fault& other) {
    for (const Setting& added : other.settings) {
        for (const Setting& own : fault.settings)
            if (own.place == added.place) return false;
        if (fault.limit.find(callee.arguments[added.argument]) != std::string::npos) return false;
    }
    return true;
}

struct RankedFault {
    const Check* check;
    Fault fault;
};

void expectRefused(const Call& call, const Check& check, const Snapshot& before,
                   std::initializer_list<const Fault*> faults) {
    const LumStatus status = callWith(call, faults);
    EXPECT_EQ(check.status, status) << attempt << ": not " << check.statusName;
    std::vector<const void*> written;
    for (const std::string& name : check.written)
        written.push_back(call.arguments.at(call.callee->indexOf(name)).pointer());
    if (!before.isAsItWas(written)) {
        ADD_FAILURE() << attempt << ": memory was written";
        before.restore();
    }
}

/// Everything that the contract of the callee says, tried on a call that succeeds.
void expectContract(const Call& call) {
    const Contract& contract = *contractOf(call.callee->name);
    std::vector<RankedFault> faults;
    std::vector<Fault> accepted;
    for (const Check& check : contract.checks)
        for (const std::string& token : check.faults) {
            std::vector<Fault> found = faultsOf(call, check, token, accepted);
            for (Fault& fault : found)
                if (check.status == lumStatusOk)
                    accepted.push_back(fault);
                else
                    faults.push_back({&check, fault});
        }
    const Snapshot before(call);
    for (const RankedFault& first : faults) {
        expectRefused(call, *first.check, before, {&first.fault});
        for (const RankedFault& second : faults)
            if (second.check > first.check && remainsWith(*call.callee, first.fault, second.fault))
                expectRefused(call, *first.check, before, {&second.fault, &first.fault});
    }
    for (const Fault& fault : accepted) EXPECT_LE(lumStatusOk, callWith(call, {&fault})) << attempt;
}

std::string current;
std::set<std::string> held;

/// Holds the first successful call of the export whose row runs to its contract.
LumStatus holdToContract(const Call& call) {
    const LumStatus status = call();
    if (status >= 0 && call.callee->name == current && held.insert(current).second) expectContract(call);
    return status;
}

class Checks : public FamilyTest {};

} // namespace

TEST(CheckTable, HoldsEveryExportOnce) {
    for (const Export& callee : exports()) {
        if (callee.types.empty()) continue;
        int count = 0;
        for (const Contract& contract : contracts()) count += contract.isOf(callee.name) ? 1 : 0;
        EXPECT_EQ(1, count) << callee.name;
    }
}

TEST(CheckTable, NamesEveryArgument) {
    for (const Export& callee : exports()) {
        const Contract* contract = contractOf(callee.name);
        if (contract == nullptr) continue;
        EXPECT_EQ(callee.types.size(), callee.arguments.size()) << callee.name;
        std::set<std::string> named;
        for (const Check& check : contract->checks)
            for (const std::string& fault : check.faults)
                for (const std::string& argument : argumentsIn(fault)) named.insert(argument);
        for (const std::string& argument : callee.arguments)
            EXPECT_EQ(1U, named.erase(argument)) << callee.name << " " << argument << " " << contract->place;
    }
}

TEST_P(Checks, ComeInTheirOrder) {
    std::signal(SIGSEGV, sayWhatCrashed);
    digest::surroundings().guard = digest::Surroundings::Guard::after;
    observe(holdToContract);
    for (const auto& [name, run] : family().rows) {
        if (contractOf(name) == nullptr) continue;
        current = name;
        digest::Digest digest;
        run(digest, {{33, 18}, 0, 4});
        EXPECT_EQ(1U, held.count(name)) << "no successful call of " << name;
    }
    observe(nullptr);
}

FOR_EVERY_FAMILY(Checks);
