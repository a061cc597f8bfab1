// Boundaries of one pixel between the regions of a watershed, drawn in raster order by the costs of the pixels.
#pragma once

#include <cstddef>
#include <limits>

#include "frame/image.h"
#include "kernels/segment/watershed_raster.h"

namespace lum::kernels {

/// `costs` holds `costStep` of them a row. What is drawn takes part in the comparisons that follow.
template <class Cost, class Marker> class BoundaryPass {
    static constexpr Marker boundary = std::numeric_limits<Marker>::max();

  public:
    BoundaryPass(Image<Marker> markers, const Cost* costs, std::size_t costStep, LumSize size)
        : markers_(markers), costs_(costs), costStep_(costStep), size_(size) {}

    void draw(RasterBoundaries rule) const {
        bool isDrawn = false;
        for (int x = 0; x < size_.width - 1; ++x) isDrawn = !isDrawn && testRight(0, x);
        for (int y = 1; y < size_.height; ++y) {
            isDrawn = false;
            for (int x = 0; x < size_.width; ++x) {
                const bool replaced = testAbove(y, x, x);
                isDrawn = rule == RasterBoundaries::four && !replaced && !isDrawn && x < size_.width - 1 &&
                          testRight(y, x);
            }
            if (rule == RasterBoundaries::four) continue;
            for (int x = 0; x < size_.width; ++x) {
                if (x > 0) testAbove(y, x, x - 1);
                if (x < size_.width - 1) testAbove(y, x, x + 1);
            }
        }
    }

  private:
    Cost costAt(int y, int x) const { return costs_[static_cast<std::size_t>(y) * costStep_ + x]; }

    /// Whether the right neighbour became the boundary of the two, so that it is no left one in turn.
    bool testRight(int y, int x) const {
        Marker* row = markers_.row(y);
        if (row[x] == row[x + 1]) return false;
        const bool isRight = costAt(y, x) <= costAt(y, x + 1);
        row[isRight ? x + 1 : x] = boundary;
        return isRight;
    }

    /// Whether the pixel, not the one in the row above, became the boundary of the two.
    bool testAbove(int y, int x, int xAbove) const {
        Marker& pixel = markers_.row(y)[x];
        Marker& above = markers_.row(y - 1)[xAbove];
        if (above == boundary || above == pixel) return false;
        const bool isPixel = !(costAt(y, x) < costAt(y - 1, xAbove));
        (isPixel ? pixel : above) = boundary;
        return isPixel;
    }

    Image<Marker> markers_;
    const Cost* costs_;
    std::size_t costStep_;
    LumSize size_;
};

} // namespace lum::kernels
