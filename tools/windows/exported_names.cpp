#include "exported_names.h"

#include <algorithm>
#include <cstdint>
#include <windows.h>

#include "failure.h"

namespace tools {

std::vector<std::string> exportedNames() {
    const auto* start = reinterpret_cast<const char*>(GetModuleHandleA("lumcv.dll"));
    if (start == nullptr) throw Failure("the library's table of exports cannot be found");
    const auto* dosHeader = reinterpret_cast<const IMAGE_DOS_HEADER*>(start);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(start + dosHeader->e_lfanew);
    const auto& place = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    if (place.Size == 0) throw Failure("the library's table of exports cannot be found");
    const auto* exports = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(start + place.VirtualAddress);
    const auto* offsets = reinterpret_cast<const std::uint32_t*>(start + exports->AddressOfNames);

    std::vector<std::string> names;
    for (DWORD i = 0; i < exports->NumberOfNames; ++i) names.emplace_back(start + offsets[i]);
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace tools
