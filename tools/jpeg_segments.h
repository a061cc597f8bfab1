// The segments of a JPEG file, looked at before it is decoded.
#pragma once

#include <string_view>

namespace tools {

/// A Failure unless the file runs up to its end marker and its tables of codes are of legal size. The decoder
/// takes a file that is cut short for a whole one and makes up the rest, and it trusts the sizes of the tables.
void expectSoundJpeg(std::string_view bytes);

} // namespace tools
