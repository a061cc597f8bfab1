// What the library that this program runs with exports.
#pragma once

#include <string>
#include <vector>

namespace tools {

/// The names of the functions in the loaded library's own dynamic symbol table, sorted.
std::vector<std::string> exportedNames();

} // namespace tools
