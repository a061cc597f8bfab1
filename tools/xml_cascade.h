// Cascades in the XML that the common trainers of boosted detectors write; docs/cascade-format.md says which of them.
#pragma once

#include <string>

#include "cascade.h"

namespace tools {

/// The cascade of an XML text; a Failure tells what is wrong with it, and where.
Cascade readXmlCascade(const std::string& text);

} // namespace tools
