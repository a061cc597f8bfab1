// The identity record.
#pragma once

#include "lumcv/types.h"
#include "lumcv/version.h"

namespace lum {

const LumLibraryVersion* getLibVersion();

} // namespace lum
