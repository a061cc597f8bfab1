// Smaller pictures.
#pragma once

#include "picture.h"

namespace tools {

/// The picture in fewer columns and rows (at least one, at most as many as it has): each pixel is the mean of the
/// area that it covers, parts of pixels included.
Picture shrunk(const Picture& picture, LumSize size);

} // namespace tools
