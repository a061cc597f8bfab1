#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "frame/entry_table.h"
#include "library/shared_object.h"
#include "support/cache_report.h"

using support::readSharedObject;

namespace {

struct ListedName {
    int ordinal;
    std::string name;
    bool exported;
};

const std::vector<ListedName>& list() {
    static const std::vector<ListedName> names = {
#define LUM_EXPORT(ordinal, name, ...) {ordinal, #name, true},
#define LUM_RESERVED(ordinal, name) {ordinal, #name, false},
#include "frame/exports.inc"
#undef LUM_EXPORT
#undef LUM_RESERVED
    };
    return names;
}

std::set<std::string> exportedNames() {
    std::set<std::string> names;
    for (const ListedName& entry : list())
        if (entry.exported) names.insert(entry.name);
    return names;
}

/// Calls an export with nothing: every argument word is 0. The caller takes its words off the stack itself, so a
/// function that takes fewer of them does not mind.
LumStatus callWithNothing(lum::ReservedSlot function) {
    using Words =
        LumStatus (*)(void*, void*, void*, void*, void*, void*, void*, void*, void*, void*, void*, void*,
                      void*, void*, void*, void*, void*, void*, void*, void*, void*, void*, void*, void*);
    void* const no = nullptr;
    return reinterpret_cast<Words>(function)(no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, no,
                                             no, no, no, no, no, no, no, no);
}

} // namespace

TEST(Exports, OrdinalsFollowTheByteOrderOfTheNames) {
    ASSERT_EQ(680U, list().size());
    for (std::size_t i = 0; i < list().size(); ++i) {
        EXPECT_EQ(static_cast<int>(i) + 1, list()[i].ordinal);
        if (i > 0) {
            EXPECT_LT(std::strcmp(list()[i - 1].name.c_str(), list()[i].name.c_str()), 0) << list()[i].name;
        }
    }
}

TEST(Exports, TheSharedObjectDefinesTheListedNamesAndNothingElse) {
    std::set<std::string> defined;
    for (const auto& symbol : readSharedObject(LUMCV_LIBRARY).symbols)
        if (symbol.defined) {
            defined.insert(symbol.name);
            EXPECT_TRUE(symbol.function) << symbol.name;
        }
    EXPECT_EQ(exportedNames(), defined);
}

TEST(Exports, EveryExportRefusesACallWithNothing) {
    // These test sizes before pointers.
    const std::set<std::string> sizesFirst = {"lumiFilterSeparableGetBufferSize_L",
                                              "lumiFilterSeparableGetSpecSize_L"};
    lum::ReservedSlot slots[lum::slotCount];
    static_assert(sizeof(slots) == sizeof(lumEntryTable));
    std::memcpy(slots, &lumEntryTable, sizeof(slots));
    for (const ListedName& entry : list()) {
        if (!entry.exported || entry.name == "lumcvGetLibVersion") continue;
        const LumStatus expected =
            sizesFirst.count(entry.name) != 0 ? lumStatusSizeError : lumStatusNullPointer;
        EXPECT_EQ(expected, callWithNothing(slots[entry.ordinal - 1])) << entry.name;
    }
}

#ifndef LUMCV_SANITIZED // what a sanitizer adds to a library is not the library's

TEST(SharedObject, ImportsTheCacheQueryAndTheLanguageLibraryOnly) {
    const std::set<std::string> allowed = {
        "lumGetMaxCacheSizeB", "memcpy", "memset", "memmove", "memcmp", "exp", "sqrt", "sqrtf"};
    for (const auto& symbol : readSharedObject(LUMCV_LIBRARY).symbols)
        if (!symbol.defined) {
            EXPECT_EQ(1U, allowed.count(symbol.name)) << symbol.name;
        }
}

TEST(SharedObject, NeedsItsCompanionAndTheLanguageLibraryOnly) {
    const std::set<std::string> allowed = {"liblumcore.so", "libc.so.6", "libm.so.6"};
    const auto needed = readSharedObject(LUMCV_LIBRARY).needed;
    EXPECT_EQ(1, std::count(needed.begin(), needed.end(), "liblumcore.so"));
    for (const std::string& name : needed) EXPECT_EQ(1U, allowed.count(name)) << name;
}

TEST(SharedObject, HasNoWritableDataOnceLoaded) {
    const auto object = readSharedObject(LUMCV_LIBRARY);
    EXPECT_FALSE(object.textRelocations);
    EXPECT_TRUE(object.bindsAtLoad);
    for (const auto& section : object.sections)
        if (section.writable && section.bytes > 0) {
            EXPECT_GE(section.address, object.readOnlyAfterLoad) << section.name;
            EXPECT_LE(section.address + section.bytes,
                      object.readOnlyAfterLoad + object.readOnlyAfterLoadBytes)
                << section.name;
        }
}

TEST(SharedObject, RunsNothingWhenLoaded) {
    for (const auto& section : readSharedObject(LUMCV_LIBRARY).sections) {
        EXPECT_NE(".init_array", section.name);
        EXPECT_NE(".init", section.name);
    }
}

TEST(Companion, ExportsItsOneFunction) {
    std::set<std::string> defined;
    for (const auto& symbol : readSharedObject(LUMCORE_LIBRARY).symbols)
        if (symbol.defined) defined.insert(symbol.name);
    EXPECT_EQ(std::set<std::string>{"lumGetMaxCacheSizeB"}, defined);
}

#endif
