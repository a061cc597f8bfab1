// An image that goes on outside its region.
#pragma once

#include <algorithm>
#include <cstddef>

#include "frame/image.h"

namespace lum::kernels {

/// Pixels beyond each side of a region that may be read.
struct ReadableMargins {
    std::ptrdiff_t top = 0;
    std::ptrdiff_t bottom = 0;
    std::ptrdiff_t left = 0;
    std::ptrdiff_t right = 0;
};

/// What lies beyond the readable pixels: the nearest of them, their reflection about the outermost one, which turns
/// back at the far end, or a value.
enum class Outside { repeat, reflect, fill };

/// A region of width x height pixels with what lies around it.
template <class T> struct ExtendedImage {
    Image<const T> src;
    std::ptrdiff_t width, height;
    int channels;
    ReadableMargins readable;
    Outside outside;
    /// One value a channel, for Outside::fill.
    const T* values;

    std::ptrdiff_t elements(std::ptrdiff_t pixels) const { return pixels * channels; }

    /// Writes pixels x .. x + count - 1 of row y, each inside or outside.
    void copyRow(std::ptrdiff_t y, std::ptrdiff_t x, std::ptrdiff_t count, T* out) const {
        const std::ptrdiff_t top = -readable.top;
        const std::ptrdiff_t bottom = height + readable.bottom;
        const std::ptrdiff_t left = -readable.left;
        const std::ptrdiff_t right = width + readable.right;
        const bool isOutside = y < top || y >= bottom;
        if (isOutside && outside == Outside::fill) return fill(out, count);
        const T* const row = src.row(isOutside ? inner(y, top, bottom) : y);
        const std::ptrdiff_t end = x + count;
        const std::ptrdiff_t first = std::clamp(left, x, end);
        const std::ptrdiff_t last = std::clamp(right, first, end);
        extend(row, x, first, out);
        std::copy_n(row + elements(first), elements(last - first), out + elements(first - x));
        extend(row, last, end, out + elements(last - x));
    }

  private:
    /// Pixels x .. end - 1 of a row, all of them outside.
    void extend(const T* row, std::ptrdiff_t x, std::ptrdiff_t end, T* out) const {
        if (outside == Outside::fill) return fill(out, end - x);
        for (; x < end; ++x, out += channels)
            std::copy_n(row + elements(inner(x, -readable.left, width + readable.right)), channels, out);
    }

    void fill(T* out, std::ptrdiff_t count) const {
        for (std::ptrdiff_t i = 0; i < count; ++i, out += channels) std::copy_n(values, channels, out);
    }

    /// The index in first .. last - 1 whose pixel lies at index i, outside.
    std::ptrdiff_t inner(std::ptrdiff_t i, std::ptrdiff_t first, std::ptrdiff_t last) const {
        const std::ptrdiff_t length = last - first;
        if (outside == Outside::repeat || length == 1) return i < first ? first : last - 1;
        const std::ptrdiff_t period = 2 * (length - 1);
        const std::ptrdiff_t distance = (i < first ? first - i : i - first) % period;
        return first + (distance < length ? distance : period - distance);
    }
};

} // namespace lum::kernels
