// What the processor has and what the library was built for.
#pragma once

#include <string>

namespace tools {

/// The level of x86-64 whose vectors the processor has: "x86-64-v3 (vectors of 32 bytes)".
std::string vectorLevelOfProcessor();

/// The build that the loaded library tells of: "x64-v3 (vectors of 32 bytes)"; "unknown" when it tells none.
std::string buildOfLibrary();

/// The file that the library was loaded from.
std::string fileOfLibrary();

/// The revision of the sources that this program was built from, and when: "4d44bf2a1b3c, 2026-11-22".
std::string ownBuild();

} // namespace tools
