// The files of the two libraries: what they export, what they import, and that the loaded library holds no state.
#include <algorithm>
#include <set>
#include <string>

#include "library/shared_object.h"
#include "lumcv.h"

using support::readSharedObject;

namespace {

const std::set<std::string>& exportedNames() {
    static const std::set<std::string> names = {
#define LUM_EXPORT(ordinal, name, ...) #name,
#include "entry/exports.inc"
#undef LUM_EXPORT
    };
    return names;
}

} // namespace

TEST(SharedObject, DefinesTheListedNamesAndNothingElse) {
    std::set<std::string> defined;
    for (const auto& symbol : readSharedObject(LUMCV_LIBRARY).symbols)
        if (symbol.defined) {
            defined.insert(symbol.name);
            EXPECT_TRUE(symbol.function) << symbol.name;
        }
    EXPECT_EQ(exportedNames(), defined);
}

#ifndef LUMCV_SANITIZED // what a sanitizer adds to a library is not the library's

TEST(SharedObject, ImportsTheCacheQueryAndTheLanguageLibraryOnly) {
    const std::set<std::string> allowed = {"lumGetMaxCacheSizeB",
                                           "memcpy",
                                           "memset",
                                           "memmove",
                                           "memcmp",
                                           "atan2",
                                           "exp",
                                           "sincos",
                                           "sqrt",
                                           "sqrtf"};
    for (const auto& symbol : readSharedObject(LUMCV_LIBRARY).symbols)
        if (!symbol.defined) {
            EXPECT_EQ(1U, allowed.count(symbol.name)) << symbol.name;
        }
}

TEST(SharedObject, NeedsItsCompanionAndTheLanguageLibraryOnly) {
    const std::string companion = "liblumcore.so." + std::to_string(LUMCV_VERSION_MAJOR);
    const std::set<std::string> allowed = {companion, "libc.so.6", "libm.so.6"};
    const auto needed = readSharedObject(LUMCV_LIBRARY).needed;
    EXPECT_EQ(1, std::count(needed.begin(), needed.end(), companion));
    for (const std::string& name : needed) EXPECT_EQ(1U, allowed.count(name)) << name;
}

TEST(SharedObject, TheNamesOfBothLibrariesHaveTheVersion) {
    const std::string version = ".so." + std::to_string(LUMCV_VERSION_MAJOR);
    EXPECT_EQ("liblumcv" + version, readSharedObject(LUMCV_LIBRARY).soname);
    EXPECT_EQ("liblumcore" + version, readSharedObject(LUMCORE_LIBRARY).soname);
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
