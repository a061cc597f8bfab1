// The identity record.
#pragma once

#include "lumcv.h"

namespace lum {

const LumLibraryVersion* getLibVersion();

} // namespace lum
