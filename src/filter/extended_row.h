// A whole row with its border at both ends, in a buffer.
#pragma once

#include <cstddef>

#include "filter/border.h"

namespace lum {

/// Writes the pixels -before .. width + after - 1 of a row, as elements E. What is to be read from memory,
/// inside the region and beside it, goes through copy(source, destination, elements); the rest of the border
/// one pixel at a time.
template <class T, class E, class Copy>
void extendRow(const T* row, int width, int channels, AxisBorder border, const T* borderValue, int before,
               int after, E* extended, Copy copy) {
    const auto elements = [channels](int pixelCount) {
        return static_cast<std::ptrdiff_t>(pixelCount) * channels;
    };
    E* const atFirst = extended + elements(before);
    const int first = border.memoryBefore ? -before : 0;
    const int last = border.memoryAfter ? width + after : width;
    const auto extendPixel = [&](int x) {
        const int inner = borderIndex(x, width, border);
        const T* pixel = inner == outsideConstant ? borderValue : row + elements(inner);
        for (int c = 0; c < channels; ++c) atFirst[elements(x) + c] = static_cast<E>(pixel[c]);
    };
    copy(row + elements(first), atFirst + elements(first), elements(last - first));
    for (int x = -before; x < first; ++x) extendPixel(x);
    for (int x = last; x < width + after; ++x) extendPixel(x);
}

} // namespace lum
