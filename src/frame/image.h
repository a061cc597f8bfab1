// An image inside the library: the first pixel of a region and the bytes between its rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "lumcv/types.h"

namespace lum {

/// A region of elements T. Elements of a row lie one after the other, channels interleaved.
template <class T> struct Image {
    T* first;
    std::ptrdiff_t step;

    Image(T* firstPixel, std::ptrdiff_t stepInBytes) : first(firstPixel), step(stepInBytes) {}

    /// A writable image is readable.
    template <class U>
    requires std::is_same_v<const U, T> Image(Image<U> other) : first(other.first), step(other.step) {}

    /// Row y; rows outside the region are the caller's to know of. Addresses are unsigned, since a region may span more
    /// than half of those of 32 bits.
    T* row(std::ptrdiff_t y) const {
        const std::uintptr_t distance = static_cast<std::uintptr_t>(y) * static_cast<std::uintptr_t>(step);
        return reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(first) + distance);
    }

    /// The same rows, seen from an element further right.
    Image<T> shifted(std::ptrdiff_t elements) const { return {first + elements, step}; }
};

} // namespace lum
