// Text for a terminal, whatever it holds.
#pragma once

#include <string>
#include <string_view>

namespace tools {

/// The text without anything that a terminal would obey: control characters are spaces, and so are those beyond ASCII
/// and those that reorder a line; bytes that are not UTF-8 are question marks.
std::string forTerminal(std::string_view text);

} // namespace tools
