#include "library/shared_object.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace support {
namespace {

using Header = ElfW(Ehdr);
using SectionHeader = ElfW(Shdr);
using ProgramHeader = ElfW(Phdr);
using Symbol = ElfW(Sym);
using Dynamic = ElfW(Dyn);

unsigned char symbolType(const Symbol& symbol) { return symbol.st_info & 0xF; }
unsigned char symbolBinding(const Symbol& symbol) { return symbol.st_info >> 4; }

} // namespace

SharedObject readSharedObject(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    if (bytes.size() < sizeof(Header)) throw std::runtime_error("no shared object: " + path);
    const auto* header = reinterpret_cast<const Header*>(bytes.data());
    const auto* sections = reinterpret_cast<const SectionHeader*>(bytes.data() + header->e_shoff);
    const auto* segments = reinterpret_cast<const ProgramHeader*>(bytes.data() + header->e_phoff);
    const char* sectionNames = bytes.data() + sections[header->e_shstrndx].sh_offset;

    SharedObject object;
    for (int i = 0; i < header->e_phnum; ++i)
        if (segments[i].p_type == PT_GNU_RELRO) {
            object.readOnlyAfterLoad = segments[i].p_vaddr;
            object.readOnlyAfterLoadBytes = segments[i].p_memsz;
        }
    for (int i = 0; i < header->e_shnum; ++i) {
        const SectionHeader& section = sections[i];
        const char* content = bytes.data() + section.sh_offset;
        const char* strings =
            section.sh_link < header->e_shnum ? bytes.data() + sections[section.sh_link].sh_offset : nullptr;
        if ((section.sh_flags & SHF_ALLOC) != 0)
            object.sections.push_back({sectionNames + section.sh_name, (section.sh_flags & SHF_WRITE) != 0,
                                       section.sh_addr, section.sh_size});
        if (section.sh_type == SHT_DYNSYM) {
            const auto* symbols = reinterpret_cast<const Symbol*>(content);
            for (std::size_t s = 1; s < section.sh_size / sizeof(Symbol); ++s)
                object.symbols.push_back({strings + symbols[s].st_name, symbols[s].st_shndx != SHN_UNDEF,
                                          symbolType(symbols[s]) == STT_FUNC,
                                          symbolBinding(symbols[s]) == STB_WEAK});
        }
        if (section.sh_type == SHT_DYNAMIC) {
            const auto* entries = reinterpret_cast<const Dynamic*>(content);
            for (const Dynamic* entry = entries; entry->d_tag != DT_NULL; ++entry) {
                if (entry->d_tag == DT_SONAME) object.soname = strings + entry->d_un.d_val;
                if (entry->d_tag == DT_NEEDED) object.needed.push_back(strings + entry->d_un.d_val);
                if (entry->d_tag == DT_TEXTREL) object.textRelocations = true;
                if (entry->d_tag == DT_FLAGS && (entry->d_un.d_val & DF_BIND_NOW) != 0)
                    object.bindsAtLoad = true;
            }
        }
    }
    return object;
}

} // namespace support
