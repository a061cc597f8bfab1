// The DLLs as a Windows host finds them: by name, by ordinal, at any address.
#include <array>
#include <cstring>
#include <string>
#include <windows.h>

#include "lumcore.h"

namespace {

struct Export {
    int ordinal;
    const char* name;
};

constexpr Export exports[] = {
#define LUM_EXPORT(ordinal, name, ...) {ordinal, #name},
#include "entry/exports.inc"
#undef LUM_EXPORT
};

/// A DLL that stays loaded while this lives. CMake writes paths with slashes, which the loader does not take.
class LoadedDll {
  public:
    explicit LoadedDll(std::string path) {
        for (char& c : path)
            if (c == '/') c = '\\';
        module_ = LoadLibraryA(path.c_str());
    }
    ~LoadedDll() {
        if (module_ != nullptr) FreeLibrary(module_);
    }
    LoadedDll(const LoadedDll&) = delete;
    LoadedDll& operator=(const LoadedDll&) = delete;

    HMODULE module() const { return module_; }
    FARPROC byName(const char* name) const { return GetProcAddress(module_, name); }
    FARPROC byOrdinal(int ordinal) const {
        return GetProcAddress(module_, MAKEINTRESOURCEA(static_cast<WORD>(ordinal)));
    }

    /// Where the loader enters it.
    FARPROC entryPoint() const {
        const auto* start = reinterpret_cast<const unsigned char*>(module_);
        const auto* dosHeader = reinterpret_cast<const IMAGE_DOS_HEADER*>(start);
        const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(start + dosHeader->e_lfanew);
        return reinterpret_cast<FARPROC>(
            reinterpret_cast<INT_PTR>(start + headers->OptionalHeader.AddressOfEntryPoint));
    }

  private:
    HMODULE module_;
};

using AbsDiffC = decltype(&lumiAbsDiffC_8u_C1R);
using CacheQuery = decltype(&lumGetMaxCacheSizeB);

template <class Function> Function as(FARPROC found) {
    return reinterpret_cast<Function>(reinterpret_cast<INT_PTR>(found));
}

void expectDistances(FARPROC found) {
    const std::array<Lum8u, 4> row = {90, 100, 110, 255};
    std::array<Lum8u, 4> distances = {};
    const auto absDiffC = as<AbsDiffC>(found);
    ASSERT_NE(nullptr, absDiffC);
    EXPECT_EQ(lumStatusOk, absDiffC(row.data(), 4, distances.data(), 4, {4, 1}, 100));
    EXPECT_EQ((std::array<Lum8u, 4>{10, 0, 10, 155}), distances);
}

/// A path in the directory of temporary files.
std::string temporary(const std::string& name) {
    std::array<char, MAX_PATH + 1> directory = {};
    GetTempPathA(static_cast<DWORD>(directory.size()), directory.data());
    return directory.data() + name;
}

} // namespace

TEST(Loading, EveryNameIsFoundAtItsOrdinal) {
    const LoadedDll dll(LUMCV_LIBRARY);
    ASSERT_NE(nullptr, dll.module());
    for (const Export& entry : exports) {
        EXPECT_NE(nullptr, dll.byName(entry.name)) << entry.name;
        EXPECT_EQ(dll.byName(entry.name), dll.byOrdinal(entry.ordinal)) << entry.name;
    }
}

TEST(Loading, OrdinalsBesideTheListAreNotFound) {
    const LoadedDll dll(LUMCV_LIBRARY);
    ASSERT_NE(nullptr, dll.module());
    EXPECT_EQ(nullptr, dll.byOrdinal(static_cast<int>(std::size(exports)) + 1));
    EXPECT_EQ(nullptr, dll.byName("lumLoadEntry"));
}

TEST(Loading, FunctionsFoundBothWaysWork) {
    const LoadedDll dll(LUMCV_LIBRARY);
    ASSERT_NE(nullptr, dll.module());
    expectDistances(dll.byName("lumiAbsDiffC_8u_C1R"));
    expectDistances(dll.byOrdinal(4));
}

TEST(Loading, ACopyIsRelocatedAndWorks) {
    const LoadedDll first(LUMCV_LIBRARY);
    const std::string path = temporary("lumcv-copy.dll");
    ASSERT_TRUE(CopyFileA(LUMCV_LIBRARY, path.c_str(), FALSE));
    {
        const LoadedDll copy(path);
        ASSERT_NE(nullptr, copy.module());
        EXPECT_NE(first.module(), copy.module());
        expectDistances(copy.byName("lumiAbsDiffC_8u_C1R"));
    }
    EXPECT_TRUE(DeleteFileA(path.c_str()));
}

TEST(Loading, TheEntryPointReturnsTrueForEveryReason) {
    using EntryPoint = BOOL(WINAPI*)(HINSTANCE, DWORD, LPVOID);
    for (const char* path : {LUMCV_LIBRARY, LUMCORE_LIBRARY}) {
        const LoadedDll dll(path);
        ASSERT_NE(nullptr, dll.module()) << path;
        const auto entry = as<EntryPoint>(dll.entryPoint());
        for (const DWORD reason :
             {DLL_PROCESS_ATTACH, DLL_THREAD_ATTACH, DLL_THREAD_DETACH, DLL_PROCESS_DETACH})
            EXPECT_EQ(TRUE, entry(dll.module(), reason, nullptr)) << reason;
        EXPECT_EQ(TRUE, entry(nullptr, 77, nullptr));
    }
}

TEST(Loading, TheCompanionAnswersTheSameOnEveryCall) {
    const LoadedDll dll(LUMCORE_LIBRARY);
    ASSERT_NE(nullptr, dll.module());
    // Every other call of this program goes to the substitute of that name.
    EXPECT_EQ(nullptr, dll.byName("substituteReport"));
    const auto query = as<CacheQuery>(dll.byName("lumGetMaxCacheSizeB"));
    ASSERT_NE(nullptr, query);
    EXPECT_EQ(query, as<CacheQuery>(dll.byOrdinal(1)));
    EXPECT_EQ(lumStatusNullPointer, query(nullptr));
    int32_t first = -1;
    int32_t second = -1;
    const LumStatus status = query(&first);
    EXPECT_EQ(status, query(&second));
    EXPECT_EQ(first, second);
    if (status == lumStatusOk) {
        EXPECT_GT(first, 0);
    } else {
        EXPECT_EQ(-1, first);
    }
}
