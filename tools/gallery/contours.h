// Planes that change slowly, made legible.
#pragma once

#include "tones.h"

namespace tools {

/// How many levels of a plane's range get a line.
inline constexpr int contourLevels = 24;

/// The plane in false colours, with a dark line wherever it passes one of the levels.
template <class T> Picture withContours(const Plane<T>& plane) {
    Picture picture = falseColours(scaled(plane));
    const std::pair<double, double> range = rangeOf(plane);
    const double height = range.second > range.first ? (range.second - range.first) / contourLevels : 1.0;
    const auto level = [&](int x, int y) {
        return static_cast<int>((plane.at(x, y) - range.first) / height);
    };
    for (int y = 0; y + 1 < plane.height; ++y)
        for (int x = 0; x + 1 < plane.width; ++x) {
            if (level(x, y) == level(x + 1, y) && level(x, y) == level(x, y + 1)) continue;
            for (int c = 0; c < 3; ++c) picture.at(x, y, c) = static_cast<Lum8u>(picture.at(x, y, c) * 2 / 5);
        }
    return picture;
}

} // namespace tools
