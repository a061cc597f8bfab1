// The plain formats: PBM, PGM and PPM, binary (P4, P5, P6) and in digits (P1, P2, P3), and PAM (P7).
#pragma once

#include <string>
#include <string_view>

#include "codecs/header.h"
#include "picture.h"

namespace tools {

/// Whether the bytes begin as such a file does.
bool looksLikePnm(std::string_view bytes);

/// What the header tells.
PictureHeader pnmHeader(std::string_view bytes);

/// The picture, its values brought from 0..maximum to 0..255. All samples must be there.
Picture readPnm(std::string_view bytes);

/// A binary PGM file of a grey picture, a binary PPM file of a colour picture.
std::string pnmBytes(const Picture& picture);

/// A PAM file.
std::string pamBytes(const Picture& picture);

} // namespace tools
