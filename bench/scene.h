#pragma once

#include <string>

#include "rows.h"

namespace bench {

/// Replaces the built-in picture by a binary PGM file of 1920 x 1080, brought to the size of the run as that is;
/// ends the program when it cannot.
void readScene(const std::string& path);
/// The same for the picture of edges.
void readEdges(const std::string& path);

} // namespace bench
