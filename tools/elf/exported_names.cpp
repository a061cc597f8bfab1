#include "exported_names.h"

#include <algorithm>
#include <cstdint>
#include <dlfcn.h>
#include <elf.h>
#include <link.h>

#include "failure.h"

namespace tools {
namespace {

/// The tables that the dynamic section of a loaded object points at.
struct Tables {
    const ElfW(Sym) * symbols = nullptr;
    const char* names = nullptr;
    const std::uint32_t* hash = nullptr;
    const std::uint32_t* gnuHash = nullptr;
};

Tables tablesOf(const link_map& object) {
    Tables tables;
    for (const ElfW(Dyn)* entry = object.l_ld; entry->d_tag != DT_NULL; ++entry) {
        // The loader has already turned these offsets into addresses.
        const auto address = static_cast<std::uintptr_t>(entry->d_un.d_ptr);
        switch (entry->d_tag) {
        case DT_SYMTAB:
            tables.symbols = reinterpret_cast<const ElfW(Sym)*>(address);
            break;
        case DT_STRTAB:
            tables.names = reinterpret_cast<const char*>(address);
            break;
        case DT_HASH:
            tables.hash = reinterpret_cast<const std::uint32_t*>(address);
            break;
        case DT_GNU_HASH:
            tables.gnuHash = reinterpret_cast<const std::uint32_t*>(address);
            break;
        default:
            break;
        }
    }
    return tables;
}

/// The symbol table holds no count of its own. The old hash table has one; in the other, the chain of the bucket
/// that begins last ends with the last symbol.
std::uint32_t countOf(const Tables& tables) {
    if (tables.hash != nullptr) return tables.hash[1];
    const std::uint32_t bucketCount = tables.gnuHash[0];
    const std::uint32_t firstHashed = tables.gnuHash[1];
    const std::uint32_t filterWords = tables.gnuHash[2];
    const std::uint32_t* buckets = tables.gnuHash + 4 + filterWords * (sizeof(ElfW(Addr)) / 4);
    const std::uint32_t* chains = buckets + bucketCount;
    std::uint32_t last = *std::max_element(buckets, buckets + bucketCount);
    if (last < firstHashed) return firstHashed;
    while ((chains[last - firstHashed] & 1) == 0) ++last;
    return last + 1;
}

} // namespace

std::vector<std::string> exportedNames() {
    void* function = dlsym(RTLD_DEFAULT, "lumcvGetLibVersion");
    Dl_info place{};
    link_map* object = nullptr;
    if (function == nullptr ||
        dladdr1(function, &place, reinterpret_cast<void**>(&object), RTLD_DL_LINKMAP) == 0 ||
        object == nullptr)
        throw Failure("the library's symbol table cannot be found");
    const Tables tables = tablesOf(*object);
    if (tables.symbols == nullptr || tables.names == nullptr ||
        (tables.hash == nullptr && tables.gnuHash == nullptr))
        throw Failure("the library's symbol table cannot be found");

    std::vector<std::string> names;
    const std::uint32_t count = countOf(tables);
    for (std::uint32_t i = 0; i < count; ++i) {
        const ElfW(Sym)& symbol = tables.symbols[i];
        const bool isFunction = ELF32_ST_TYPE(symbol.st_info) == STT_FUNC;
        if (isFunction && symbol.st_shndx != SHN_UNDEF && ELF32_ST_BIND(symbol.st_info) == STB_GLOBAL)
            names.emplace_back(tables.names + symbol.st_name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace tools
