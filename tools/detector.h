// Finding what a cascade knows, at every place and size of a picture.
#pragma once

#include <vector>

#include "cascade.h"
#include "picture.h"

namespace tools {

/// A place where the cascade's windows agree.
struct Detection {
    LumRect box;
    /// Windows that were accepted there.
    int hits;
};

/// Detections in a grey picture, from the top downward. The picture is scaled down step by step, so what is smaller
/// than the cascade's window is not found.
std::vector<Detection> detect(const Picture& grey, const Cascade& cascade);

} // namespace tools
