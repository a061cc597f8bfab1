// The layer operators as their formulas read, on whole images without a border or a shortcut.
#pragma once

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "lumcv.h"
#include "support/guarded_image.h"

namespace reference {

/// A plane of floats, one channel of an image.
struct Plane {
    int width;
    int height;
    std::vector<float> values;

    Plane(int w, int h) : width(w), height(h), values(static_cast<std::size_t>(w) * h) {}
    float& at(int x, int y) { return values[static_cast<std::size_t>(y) * width + x]; }
    float at(int x, int y) const { return values[static_cast<std::size_t>(y) * width + x]; }
};

template <class T> Plane channelOf(const support::GuardedImage<T>& image, int channel) {
    Plane plane(image.size().width, image.size().height);
    for (int y = 0; y < plane.height; ++y)
        for (int x = 0; x < plane.width; ++x) plane.at(x, y) = image.at(x, y, channel);
    return plane;
}

/// Walks from the first element, one step at a time, and turns round at each end; both directions are alike.
inline int reflected(int i, int length) {
    if (length == 1) return 0;
    int position = 0;
    int direction = 1;
    for (int steps = std::abs(i); steps > 0; --steps) {
        if (position + direction < 0 || position + direction >= length) direction = -direction;
        position += direction;
    }
    return position;
}

/// A one-dimensional operation on every row, or on every column.
using LineOperation = std::function<std::vector<float>(const std::vector<float>&)>;

inline Plane alongRows(const Plane& plane, int width, const LineOperation& operation) {
    Plane result(width, plane.height);
    for (int y = 0; y < plane.height; ++y) {
        std::vector<float> line;
        for (int x = 0; x < plane.width; ++x) line.push_back(plane.at(x, y));
        line = operation(line);
        for (int x = 0; x < width; ++x) result.at(x, y) = line[x];
    }
    return result;
}
inline Plane alongColumns(const Plane& plane, int height, const LineOperation& operation) {
    Plane result(plane.width, height);
    for (int x = 0; x < plane.width; ++x) {
        std::vector<float> line;
        for (int y = 0; y < plane.height; ++y) line.push_back(plane.at(x, y));
        line = operation(line);
        for (int y = 0; y < height; ++y) result.at(x, y) = line[y];
    }
    return result;
}
inline Plane alongBoth(const Plane& plane, LumSize size, const std::function<LineOperation(int)>& operation) {
    return alongColumns(alongRows(plane, size.width, operation(size.width)), size.height,
                        operation(size.height));
}

/// The sum over pairs from the outside to the middle.
inline Plane smooth(const Plane& plane, const std::vector<float>& weights) {
    const int radius = static_cast<int>(weights.size()) / 2;
    return alongBoth(plane, {plane.width, plane.height}, [&](int length) {
        return [&weights, radius, length](const std::vector<float>& line) {
            std::vector<float> sums;
            for (int i = 0; i < length; ++i) {
                const auto at = [&](int offset) { return line[reflected(i + offset, length)]; };
                float sum = 0;
                for (int j = radius; j >= 1; --j) {
                    const float share = (at(-j) + at(j)) * weights[radius - j];
                    sum = j == radius ? share : sum + share;
                }
                sums.push_back(sum + at(0) * weights[radius]);
            }
            return sums;
        };
    });
}

/// Every rate-th element.
inline Plane reduce(const Plane& plane, LumSize size, float rate) {
    return alongBoth(plane, size, [&](int length) {
        return [rate, length](const std::vector<float>& line) {
            const int last = static_cast<int>(line.size()) - 1;
            std::vector<float> results;
            for (int i = 0; i < length; ++i) {
                if (rate > 1.99998F && rate < 2.00002F) {
                    results.push_back(line[std::min(2 * i, last)]);
                    continue;
                }
                const float p = static_cast<float>(i) * rate;
                const int j = static_cast<int>(p);
                const float f = p - static_cast<float>(j);
                results.push_back(j == last ? line[j] : line[j + 1] * f + (1 - f) * line[j]);
            }
            return results;
        };
    });
}

/// Between the elements, `rate` results for one.
inline Plane expand(const Plane& plane, LumSize size, float rate) {
    return alongBoth(plane, size, [&](int length) {
        return [rate, length](const std::vector<float>& line) {
            const int count = static_cast<int>(line.size());
            std::vector<float> results;
            for (int i = 0; i < length; ++i) {
                const float p = static_cast<float>(i) / rate;
                const int n = static_cast<int>(p + 100) - 100;
                const float f = p - static_cast<float>(n);
                const auto at = [&](int k) { return line[reflected(k, count)]; };
                results.push_back(std::fabs(f) <= 1e-5F ? at(n) : (1 - f) * at(n) + f * at(n + 1));
            }
            return results;
        };
    });
}

/// Two results for one, by the taps 1 6 1 and 4 4.
inline Plane expandTwofold(const Plane& plane, LumSize size) {
    return alongBoth(plane, size, [&](int length) {
        return [length](const std::vector<float>& line) {
            const int last = static_cast<int>(line.size()) - 1;
            std::vector<float> results;
            for (int i = 0; i <= last; ++i) {
                const bool isEnd = i == 0 || i == last;
                const float neighbour = last == 0 ? line[0] : i == 0 ? line[1] : line[i - 1];
                results.push_back(isEnd ? (6 * line[i] + 2 * neighbour) * 0.125F
                                        : (6 * line[i] + line[i - 1] + line[i + 1]) * 0.125F);
                results.push_back((line[i] + (i == last ? neighbour : line[i + 1])) * 4 * 0.125F);
            }
            results.resize(length);
            return results;
        };
    });
}

/// To the element type: ties to even and saturated.
template <class T> T converted(float value) {
    if constexpr (std::is_floating_point_v<T>)
        return value;
    else
        return static_cast<T>(
            std::fmin(std::fmax(std::nearbyint(value), 0.0F), float{std::numeric_limits<T>::max()}));
}

/// The whole kernel as floats, from its first half: in units of 1 / 4096 for integers going down.
template <class Tap> std::vector<float> weightsDown(const std::vector<Tap>& kernel) {
    const std::size_t middle = kernel.size() / 2;
    std::conditional_t<std::is_integral_v<Tap>, long long, float> sum = kernel[middle];
    for (std::size_t i = 0; i < middle; ++i) sum += 2 * kernel[i];
    std::vector<float> weights(kernel.size());
    for (std::size_t i = 0; i <= middle; ++i) {
        if constexpr (std::is_floating_point_v<Tap>)
            weights[i] = kernel[i] / sum;
        else
            weights[i] = static_cast<float>(sum == 0 ? kernel[i] : (kernel[i] * 16384) / sum >> 2) / 4096.0F;
        weights[kernel.size() - 1 - i] = weights[i];
    }
    return weights;
}
/// In single precision for all going up.
template <class Tap> std::vector<float> weightsUp(const std::vector<Tap>& kernel) {
    const std::size_t middle = kernel.size() / 2;
    auto sum = static_cast<float>(kernel[middle]);
    for (std::size_t i = 0; i < middle; ++i) sum += 2 * static_cast<float>(kernel[i]);
    std::vector<float> weights(kernel.size());
    for (std::size_t i = 0; i <= middle; ++i)
        weights[i] = weights[kernel.size() - 1 - i] =
            static_cast<float>(kernel[i]) / (sum == 0 && std::is_integral_v<Tap> ? 1.0F : sum);
    return weights;
}

/// The first element in which the image differs from the planes of its channels, or an empty text.
template <class T>
std::string differenceFrom(const support::GuardedImage<T>& image, const std::vector<Plane>& planes) {
    for (int y = 0; y < image.size().height; ++y)
        for (int x = 0; x < image.size().width; ++x)
            for (std::size_t c = 0; c < planes.size(); ++c) {
                const T expected = converted<T>(planes[c].at(x, y));
                const T actual = image.at(x, y, static_cast<int>(c));
                if (std::memcmp(&expected, &actual, sizeof(T)) != 0)
                    return "(" + std::to_string(x) + ", " + std::to_string(y) + ", " + std::to_string(c) +
                           ") is " + std::to_string(actual) + ", not " + std::to_string(expected);
            }
    return {};
}

} // namespace reference
