// Sizes as the queries of pyramids report them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "lumcv/types.h"

namespace lum {

/// A size that exceeds 32 bits ends at their largest value: a sum that wrapped could be less than what a call uses.
constexpr Lum32s reportedBytes(std::int64_t bytes) {
    return static_cast<Lum32s>(std::min<std::int64_t>(bytes, std::numeric_limits<Lum32s>::max()));
}

} // namespace lum
