// The plain formats: PGM and PPM, binary (P5, P6) and in digits (P2, P3).
#pragma once

#include <string_view>

#include "picture.h"

namespace tools {

/// Whether the bytes begin as a PGM or PPM file does.
bool looksLikePnm(std::string_view bytes);

/// The size and channels that the header gives; elements stay empty. A Failure says what is wrong.
Picture pnmHeader(std::string_view bytes);

/// The picture, its values brought from 0..maximum to 0..255. All samples must be there.
Picture readPnm(std::string_view bytes);

/// A binary PGM file of a grey picture, a binary PPM file of a colour picture.
std::string pnmBytes(const Picture& picture);

} // namespace tools
