// Files that are read.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tools {

/// The bytes of an ordinary file, or of standard input where the path is "-". What is neither, is empty, or has more
/// than `largest` bytes is a Failure; its text is to follow the file's name. `look` sees the beginning before the rest
/// is read, and may throw.
std::string readFile(const std::string& path, std::size_t largest,
                     const std::function<void(std::string_view)>& look = {});

/// The file as messages name it.
std::string nameOfInput(const std::string& path);

} // namespace tools
