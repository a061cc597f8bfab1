// The dynamic side of a shared object, read from its file.
#pragma once

#include <elf.h>
#include <link.h>
#include <string>
#include <vector>

namespace support {

struct DynamicSymbol {
    std::string name;
    bool defined;
    bool function;
    bool weak;
};

struct Section {
    std::string name;
    bool writable;
    std::size_t address;
    std::size_t bytes;
};

struct SharedObject {
    std::vector<DynamicSymbol> symbols;
    std::vector<Section> sections;
    std::string soname;
    std::vector<std::string> needed;
    bool textRelocations = false;
    bool bindsAtLoad = false;
    /// What the loader makes read-only after relocation.
    std::size_t readOnlyAfterLoad = 0;
    std::size_t readOnlyAfterLoadBytes = 0;
};

SharedObject readSharedObject(const std::string& path);

} // namespace support
