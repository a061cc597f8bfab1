// The two raster passes of a chamfer metric.
#pragma once

#include <algorithm>
#include <limits>
#include <type_traits>

#include "frame/image.h"
#include "lumcv.h"

namespace lum::kernels {

/// The steps of a pass, back to pixels that it has already handled; those of the second pass are mirrored.
enum class ChamferSteps {
    axial,  // to the left and above
    eight,  // and to both diagonals above
    knight, // and to the four knight's moves above
    window, // and two pixels straight or diagonally away: the whole half of a window of 5 by 5
};

/// The lengths of the steps. Those of integer distances are limited to the largest distance, which changes no result.
template <class T> struct ChamferMetric {
    ChamferSteps steps;
    T axial;
    T diagonal;
    T knight = 0;
    /// No longer than two axial steps.
    T doubleAxial = 0;
    T doubleDiagonal = 0;
    /// In the last row, steps two pixels to the side count as well, at doubleAxial.
    bool doubleStepsInLastRow = false;
};

/// The distance of a pixel that no chain reaches.
template <class T> inline constexpr T farthest = std::numeric_limits<T>::max();

/// A chain and one more step; integers saturate. A float above the farthest is left to the minimum with another chain.
template <class T> T chained(T distance, T step) {
    if constexpr (std::is_integral_v<T>)
        return static_cast<T>(std::min<int>(distance + step, farthest<T>));
    else
        return distance + step;
}

/// Distances of every pixel from the pixels that are 0, after one pass in each direction. dst may be src.
template <class T>
void chamferScalar(Image<const Lum8u> src, Image<T> dst, LumSize size, const ChamferMetric<T>& metric);
template <class T>
void chamfer(Image<const Lum8u> src, Image<T> dst, LumSize size, const ChamferMetric<T>& metric);

/// The same with both passes repeated until no pixel changes.
template <class T>
void chamferRelaxed(Image<const Lum8u> src, Image<T> dst, LumSize size, const ChamferMetric<T>& metric);

} // namespace lum::kernels
