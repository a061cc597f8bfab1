// From one kind of picture to another: grey and colour, other elements, and 8 bits for the eye.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "picture.h"

namespace tools {

Picture greyOf(const Picture& picture);
Picture colourOf(const Picture& picture);

/// The picture moved to the right by dx and downward by dy; what comes in repeats the edge.
Picture shifted(const Picture& picture, int dx, int dy);

/// Red, green and blue of a place in a scale that runs from dark violet over teal to yellow.
std::array<Lum8u, 3> falseColour(Lum8u place);

/// A grey picture in false colours.
Picture falseColours(const Picture& grey);

/// The same values in other elements; they must fit.
template <class To, class From> Plane<To> converted(const Plane<From>& plane) {
    Plane<To> result(plane.width, plane.height, plane.channels);
    std::transform(plane.elements.begin(), plane.elements.end(), result.elements.begin(),
                   [](From value) { return static_cast<To>(value); });
    return result;
}

/// The least and the largest finite element; {0, 0} when there is none.
template <class T> std::pair<double, double> rangeOf(const Plane<T>& plane) {
    double least = std::numeric_limits<double>::infinity();
    double largest = -least;
    for (const T element : plane.elements) {
        const auto value = static_cast<double>(element);
        if (!std::isfinite(value)) continue;
        least = std::min(least, value);
        largest = std::max(largest, value);
    }
    return least <= largest ? std::pair{least, largest} : std::pair{0.0, 0.0};
}

/// Values from `least` to `largest` as 0 to 255, in proportion; beyond the ends they clamp. NaN is black, and so
/// is everything when the ends are equal.
template <class T> Picture scaled(const Plane<T>& plane, double least, double largest) {
    Picture result(plane.width, plane.height, plane.channels);
    const double factor = largest == least ? 0.0 : 255.0 / (largest - least);
    std::transform(plane.elements.begin(), plane.elements.end(), result.elements.begin(), [&](T value) {
        const double tone = (static_cast<double>(value) - least) * factor + 0.5;
        return static_cast<Lum8u>(tone >= 255.0 ? 255.0 : tone > 0.0 ? tone : 0.0);
    });
    return result;
}

/// All of the plane's range, from black to white.
template <class T> Picture scaled(const Plane<T>& plane) {
    const auto [least, largest] = rangeOf(plane);
    return scaled(plane, least, largest);
}

/// Signed values: 0 is middle grey, +reach white and -reach black.
template <class T> Picture scaledAboutZero(const Plane<T>& plane, double reach) {
    return scaled(plane, -reach, reach);
}

/// Signed values by their roots, so that small ones show and none is cut off: 0 is middle grey, the largest magnitude
/// black or white.
template <class T> Picture signedRoots(const Plane<T>& plane) {
    const auto [least, largest] = rangeOf(plane);
    Plane<double> roots(plane.width, plane.height, plane.channels);
    std::transform(plane.elements.begin(), plane.elements.end(), roots.elements.begin(), [](T value) {
        return std::copysign(std::sqrt(std::fabs(static_cast<double>(value))), static_cast<double>(value));
    });
    return scaledAboutZero(roots, std::sqrt(std::max(-least, largest)));
}

} // namespace tools
