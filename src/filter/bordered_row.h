// A stretch of a row with what a filter reads beside it: what is in memory is copied or converted, the rest of the border is
// computed.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>

#include "filter/border.h"
#include "kernels/to_floats.h"

namespace lum {

/// Columns first .. first + width - 1 of rows of `rowWidth` pixels, and the pixels that are read beside them.
struct RowStretch {
    int rowWidth;
    int first;
    int width;
    int before;
    int after;
};

/// `count` elements in their own type, or as floats.
template <class T, class E> void copyElements(const T* src, std::ptrdiff_t count, E* out) {
    if constexpr (std::is_same_v<E, T>)
        std::memcpy(out, src, static_cast<std::size_t>(count) * sizeof(T));
    else
        kernels::toFloats(src, count, out);
}

template <class T> class BorderedRow {
  public:
    /// `borderValue`, an element a channel, is read for a constant border only.
    BorderedRow(const RowStretch& stretch, int channels, AxisBorder border, const T* borderValue)
        : rowWidth_(stretch.rowWidth),
          first_(stretch.first),
          channels_(channels),
          border_(border),
          borderValue_(borderValue),
          begin_(border.memoryBefore ? -stretch.before : std::max(-stretch.before, -stretch.first)),
          end_(border.memoryAfter ? stretch.width + stretch.after
                                  : stretch.width + std::min(stretch.after, stretch.rowWidth - stretch.first -
                                                                                stretch.width)) {}

    /// The pixels that are in memory, as far as they are read; the first of the stretch is pixel 0.
    int begin() const { return begin_; }
    int end() const { return end_; }

    /// Writes pixels `from` to `to` - 1; `row` is pixel 0.
    template <class E> void write(const T* row, int from, int to, E* out) const {
        const int inner = std::clamp(begin_, from, to);
        const int innerEnd = std::clamp(end_, inner, to);
        compute(row, from, inner, out);
        copyElements(row + elements(inner), elements(innerEnd - inner), out + elements(inner - from));
        compute(row, innerEnd, to, out + elements(innerEnd - from));
    }

  private:
    std::ptrdiff_t elements(int pixels) const { return static_cast<std::ptrdiff_t>(pixels) * channels_; }

    template <class E> void compute(const T* row, int from, int to, E* out) const {
        for (int i = from; i < to; ++i, out += channels_) {
            const int x = borderIndex(first_ + i, rowWidth_, border_);
            const T* pixel = x == outsideConstant ? borderValue_ : row + elements(x - first_);
            for (int c = 0; c < channels_; ++c) out[c] = static_cast<E>(pixel[c]);
        }
    }

    int rowWidth_;
    int first_;
    int channels_;
    AxisBorder border_;
    const T* borderValue_;
    int begin_;
    int end_;
};

} // namespace lum
