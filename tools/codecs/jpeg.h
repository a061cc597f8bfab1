// JPEG, by libjpeg-turbo.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "codecs/header.h"
#include "picture.h"

namespace tools {

inline bool looksLikeJpeg(std::string_view bytes) { return bytes.substr(0, 2) == "\xFF\xD8"; }

/// What the frame tells; none when the bytes end before it.
std::optional<PictureHeader> jpegHeader(std::string_view bytes);
Picture readJpeg(std::string_view bytes);
std::string jpegBytes(const Picture& picture);

} // namespace tools
