// Pictures in the program's own memory.
#pragma once

#include <cstddef>
#include <vector>

#include "lumcv.h"

namespace tools {

/// Rows of elements T one after the other, channels interleaved, without padding.
template <class T> struct Plane {
    int width = 0;
    int height = 0;
    int channels = 1;
    std::vector<T> elements;

    Plane() = default;
    Plane(int columns, int rows, int channelCount = 1, T value = {})
        : width(columns),
          height(rows),
          channels(channelCount),
          elements(static_cast<std::size_t>(columns) * rows * channelCount, value) {}

    /// The arguments of a call: first pixel, bytes between rows, size of the region.
    T* data() { return elements.data(); }
    const T* data() const { return elements.data(); }
    int step() const { return static_cast<int>(width * channels * sizeof(T)); }
    LumSize size() const { return {width, height}; }

    T* row(int y) { return data() + static_cast<std::size_t>(y) * width * channels; }
    const T* row(int y) const { return data() + static_cast<std::size_t>(y) * width * channels; }
    T& at(int x, int y, int channel = 0) { return row(y)[x * channels + channel]; }
    const T& at(int x, int y, int channel = 0) const { return row(y)[x * channels + channel]; }

    bool operator==(const Plane&) const = default;
};

/// A picture for the eye: grey (one channel), or red, green and blue (three).
using Picture = Plane<Lum8u>;

} // namespace tools
