// Derivatives the long way: whole masks over pixels that the border rule finds one by one.
#pragma once

#include <climits>
#include <vector>

#include "support/border_walk.h"
#include "support/guarded_image.h"

namespace support {

/// The smoothing and the differencing weights of a mask; its reach is half their number.
struct DerivativeMask {
    std::vector<int> smooth;
    std::vector<int> difference;
    int reach() const { return static_cast<int>(smooth.size()) / 2; }
};

inline const DerivativeMask sobel3{{1, 2, 1}, {-1, 0, 1}};
inline const DerivativeMask sobel5{{1, 4, 6, 4, 1}, {-1, -2, 0, 2, 1}};
inline const DerivativeMask scharr3{{3, 10, 3}, {-1, 0, 1}};
inline const DerivativeMask central3{{0, 1, 0}, {-1, 0, 1}};

/// The pixel at (x, y), which may lie outside.
template <class T>
double extendedPixel(const GuardedImage<T>& src, int x, int y, LumBorderType border, T value) {
    const auto [width, height] = src.size();
    const int row =
        borderWalk(y, height, border & 15, border & lumBorderInMemoryTop, border & lumBorderInMemoryBottom);
    const int column =
        borderWalk(x, width, border & 15, border & lumBorderInMemoryLeft, border & lumBorderInMemoryRight);
    return static_cast<double>(row == INT_MAX || column == INT_MAX ? value : src.at(column, row));
}

struct Gradient {
    double dx; ///< right minus left
    double dy; ///< below minus above
};

/// Exact on whole numbers.
template <class T>
Gradient gradientAt(const GuardedImage<T>& src, int x, int y, const DerivativeMask& mask,
                    LumBorderType border, T value) {
    const int reach = mask.reach();
    Gradient gradient{0, 0};
    for (int j = -reach; j <= reach; ++j)
        for (int i = -reach; i <= reach; ++i) {
            const double pixel = extendedPixel(src, x + i, y + j, border, value);
            gradient.dx += mask.smooth[j + reach] * mask.difference[i + reach] * pixel;
            gradient.dy += mask.difference[j + reach] * mask.smooth[i + reach] * pixel;
        }
    return gradient;
}

} // namespace support
