// The library's file, as the loader of ELF files knows it.
#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <string_view>

#include "machine.h"

namespace tools {
namespace {

void* functionOfLibrary() { return dlsym(RTLD_DEFAULT, "lumcvGetLibVersion"); }

std::size_t paddedToWords(std::size_t bytes) { return (bytes + 3) / 4 * 4; }

/// The text of the library's note among those of a segment.
std::string_view textOfNote(const char* notes, std::size_t bytes) {
    while (bytes >= sizeof(ElfW(Nhdr))) {
        ElfW(Nhdr) header;
        std::memcpy(&header, notes, sizeof header);
        const char* name = notes + sizeof header;
        const char* text = name + paddedToWords(header.n_namesz);
        if (header.n_type == 1 && std::string_view(name, header.n_namesz) == std::string_view("lumcv\0", 6))
            return {text, strnlen(text, header.n_descsz)};
        const std::size_t length =
            sizeof header + paddedToWords(header.n_namesz) + paddedToWords(header.n_descsz);
        if (length >= bytes) break;
        notes += length;
        bytes -= length;
    }
    return {};
}

struct Search {
    std::uintptr_t function;
    std::string_view found;
};

/// Looks through the notes of the object that the function is in.
int lookIn(dl_phdr_info* object, std::size_t, void* data) {
    auto& search = *static_cast<Search*>(data);
    bool isLibrary = false;
    for (int i = 0; i < object->dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = object->dlpi_phdr[i];
        const std::uintptr_t start = object->dlpi_addr + segment.p_vaddr;
        isLibrary = isLibrary || (segment.p_type == PT_LOAD && search.function >= start &&
                                  search.function - start < segment.p_memsz);
    }
    if (!isLibrary) return 0;
    for (int i = 0; i < object->dlpi_phnum && search.found.empty(); ++i) {
        const ElfW(Phdr)& segment = object->dlpi_phdr[i];
        if (segment.p_type == PT_NOTE)
            search.found = textOfNote(reinterpret_cast<const char*>(object->dlpi_addr + segment.p_vaddr),
                                      segment.p_memsz);
    }
    return 1;
}

} // namespace

std::string buildOfLibrary() {
    Search search{reinterpret_cast<std::uintptr_t>(functionOfLibrary()), {}};
    dl_iterate_phdr(lookIn, &search);
    if (search.found.empty()) return "unknown";
    const bool isWide = search.found == "x64-v4";
    const char* bytes = isWide ? "64" : search.found == "x64-v3" ? "32" : "16";
    return std::string(search.found) + " (vectors of " + bytes + " bytes)";
}

std::string fileOfLibrary() {
    Dl_info place{};
    if (dladdr(functionOfLibrary(), &place) == 0 || place.dli_fname == nullptr) return "unknown";
    return place.dli_fname;
}

} // namespace tools
