// The built-in picture.
#pragma once

#include "picture.h"

namespace tools {

/// An evening at a river, drawn by code: bright discs of several sizes in a dark sky, a bridge of straight lines,
/// hills, rippled water, a chequered quay with a few things on it, and grain over all. It is the same on every
/// machine: nothing but single operations that round exactly goes into it.
Picture builtInScene();

} // namespace tools
