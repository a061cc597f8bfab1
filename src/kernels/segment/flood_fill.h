// Filling of the connected pixels that satisfy a rule: the exact and the fixed-range fill.
#pragma once

#include <cstdint>

#include "frame/image.h"
#include "kernels/segment/row_rules.h"
#include "kernels/segment/run_stack.h"

namespace lum::kernels {

/// Pixels that touch, or those at the corners too.
enum class Connected { four, eight };

/// What a fill has filled.
struct FilledRegion {
    std::int64_t area;
    LumRect box;
};

/// When a fill that may meet its own pixels again gives up.
struct CutOff {
    /// Runs on the stack at which all of them are dropped; 0 for no limit.
    std::int64_t pending = 0;
    /// Runs found at which they are dropped; 0 for no limit.
    std::int64_t found = 0;
};

/// Writes newVal over the region around the seed. EqualTo<T, channels>: Lum8u, Lum16u and Lum32f with one and three
/// channels, Lum32s with one; Between<T, channels>: the same without Lum32s.
template <Connected connected, class Rule>
FilledRegion fillRegion(const Rule& rule, Image<typename Rule::Element> image, LumSize size, LumPoint seed,
                        const Pixel<typename Rule::Element, Rule::channelCount>& newVal, RunStack& stack,
                        CutOff cutOff);

} // namespace lum::kernels
