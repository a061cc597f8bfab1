// The library's file, as Windows knows it.
#include <array>
#include <windows.h>

#include "lumcv.h"
#include "machine.h"

namespace tools {

std::string buildOfLibrary() {
    return std::string(lumcvGetLibVersion()->targetCpu) + " (vectors of 16 bytes)";
}

std::string fileOfLibrary() {
    std::array<char, MAX_PATH + 1> path{};
    if (GetModuleFileNameA(GetModuleHandleA("lumcv.dll"), path.data(), MAX_PATH) == 0) return "unknown";
    return path.data();
}

} // namespace tools
