// Differences of the picture that make its gradients, and of a pixel after its neighbours became known.
#pragma once

#include <cstdlib>

#include "kernels/distance/inpaint.h"

namespace lum::kernels {

/// One derivative from the pixel before, the pixel itself and the one after.
template <InpaintMethod method> struct InpaintDifference {
    static Lum16s oneSided(int from, int to) {
        const int difference = to - from;
        return static_cast<Lum16s>(method == InpaintMethod::front ? difference : 2 * std::abs(difference));
    }
    static Lum16s central(int before, int own, int after) {
        return static_cast<Lum16s>(method == InpaintMethod::front
                                       ? 2 * (after - before)
                                       : std::abs(after - own) + std::abs(own - before));
    }
};

/// A pixel's derivatives along one axis.
template <InpaintMethod method, int channels> class InpaintAxis {
    using Difference = InpaintDifference<method>;

  public:
    /// The pixel's elements, and the bytes from a pixel to the next along the axis. `gradient` is the pair's element.
    InpaintAxis(const Lum8u* pixel, std::ptrdiff_t next, Lum16s* gradient)
        : pixel_(pixel), next_(next), gradient_(gradient) {}

    void fromBoth() const {
        each([&](int c) { return Difference::central(pixel_[c - next_], pixel_[c], pixel_[c + next_]); });
    }
    void fromBefore() const {
        each([&](int c) { return Difference::oneSided(pixel_[c - next_], pixel_[c]); });
    }
    void fromAfter() const {
        each([&](int c) { return Difference::oneSided(pixel_[c], pixel_[c + next_]); });
    }
    void none() const {
        each([](int) { return Lum16s{0}; });
    }

    /// From the sides that may be used; where there are none, nothing changes.
    void from(bool before, bool after) const {
        if (before && after)
            fromBoth();
        else if (before)
            fromBefore();
        else if (after)
            fromAfter();
    }

  private:
    template <class Value> void each(Value value) const {
        for (int c = 0; c < channels; ++c) gradient_[2 * c] = value(c);
    }

    const Lum8u* pixel_;
    std::ptrdiff_t next_;
    Lum16s* gradient_;
};

/// The two axes of a pixel.
template <InpaintMethod method, int channels>
InpaintAxis<method, channels> inpaintAxisX(const InpaintRegion& region, int x, int y) {
    return {region.image.row(y) + static_cast<std::ptrdiff_t>(x) * channels, channels,
            region.imageGradient.row(y) + static_cast<std::ptrdiff_t>(x) * channels * 2};
}
template <InpaintMethod method, int channels>
InpaintAxis<method, channels> inpaintAxisY(const InpaintRegion& region, int x, int y) {
    return {region.image.row(y) + static_cast<std::ptrdiff_t>(x) * channels, region.image.step,
            region.imageGradient.row(y) + static_cast<std::ptrdiff_t>(x) * channels * 2 + 1};
}

} // namespace lum::kernels
