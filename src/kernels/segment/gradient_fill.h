// Filling of the pixels that are reached by steps between similar neighbours: the floating-range fill.
#pragma once

#include <cmath>
#include <cstdint>
#include <type_traits>

#include "frame/image.h"
#include "kernels/segment/flood_fill.h"

namespace lum::kernels {

/// How far a pixel may lie below and above the neighbour that it joins.
template <class T, int channels> class Within {
  public:
    using Element = T;
    static constexpr int channelCount = channels;

    Within(const Pixel<T, channels>& below, const Pixel<T, channels>& above) {
        for (int c = 0; c < channels; ++c) {
            if constexpr (std::is_floating_point_v<T>) {
                shift_[c] = (below[c] - above[c]) * 0.5F;
                span_[c] = (below[c] + above[c]) * 0.5F;
            } else {
                shift_[c] = below[c];
                span_[c] = std::uint32_t{below[c]} + above[c];
            }
        }
    }

    /// Whether a candidate may join a pixel of the region.
    bool accepts(const T* candidate, const T* reference) const {
        for (int c = 0; c < channels; ++c) {
            if constexpr (std::is_floating_point_v<T>) {
                // Of NaN, in a pixel or in a limit, no comparison holds.
                if (!(std::fabs(candidate[c] + shift_[c] - reference[c]) <= span_[c])) return false;
            } else {
                if (candidate[c] + shift_[c] - reference[c] > span_[c]) return false;
            }
        }
        return true;
    }

  private:
    using Number = std::conditional_t<std::is_floating_point_v<T>, T, std::uint32_t>;
    std::array<Number, channels> shift_;
    std::array<Number, channels> span_;
};

/// Bytes of the map of taken pixels.
constexpr std::size_t takenMapBytes(LumSize size) {
    return (static_cast<std::size_t>(size.width) + 2) * (static_cast<std::size_t>(size.height) + 2);
}

/// Writes newVal over the region around the seed. Within<T, channels>: Lum8u, Lum16u, Lum32f with one and three
/// channels.
template <Connected connected, class Rule>
FilledRegion fillSteps(const Rule& rule, Image<typename Rule::Element> image, LumSize size, LumPoint seed,
                       const Pixel<typename Rule::Element, Rule::channelCount>& newVal, Lum8u* takenMap,
                       RunStack& stack);

} // namespace lum::kernels
