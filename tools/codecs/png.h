// PNG, by libpng.
#pragma once

#include <string>
#include <string_view>

#include "codecs/header.h"
#include "picture.h"

namespace tools {

inline bool looksLikePng(std::string_view bytes) { return bytes.substr(0, 8) == "\x89PNG\r\n\x1A\n"; }

/// What the first chunk tells.
PictureHeader pngHeader(std::string_view bytes);
Picture readPng(std::string_view bytes);
std::string pngBytes(const Picture& picture);

} // namespace tools
