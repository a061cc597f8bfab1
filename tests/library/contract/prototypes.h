// The names of arguments, read from the public headers.
#pragma once

#include <string>
#include <vector>

namespace contract {

/// The names of an export's arguments as its header declares them.
std::vector<std::string> argumentNames(const std::string& name);

} // namespace contract
