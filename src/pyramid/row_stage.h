// What the runs of both layer operators share: the half kernel, pointers to the rows of a window, and work memory
// that is divided into rows of floats anew for each run.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "filter/border.h"
#include "frame/arena.h"

namespace lum {

/// The record in a layer state.
struct PyramidRowStage {
    /// The outermost tap first, the middle one last.
    float* weights;
    /// Of kernelSize rows.
    const float** rows;
    float* work;
    std::ptrdiff_t workFloats;
};

/// Elements of a row in the work memory: long rows begin on a vector.
constexpr std::int64_t workRow(std::int64_t elements) {
    return elements < 64 ? elements : roundedUp<std::int64_t>(elements, 16);
}

/// The most pixels of a strip of columns: its rows stay in the nearer caches.
inline constexpr int longestStrip = 4096;

inline constexpr AxisBorder mirroredAxis{lumBorderMirror, false, false};

/// Elements of a number of pixels.
template <int channels> constexpr std::ptrdiff_t elements(std::ptrdiff_t pixels) { return pixels * channels; }

/// Rows that were filtered along x, kept for the columns: row y lies in slot y modulo the number of slots.
template <class Element> class RowRing {
  public:
    RowRing(Element* slots, std::ptrdiff_t slotLength, int ringRows)
        : slots_(slots), slotLength_(slotLength), slotCount_(ringRows) {}

    Element* row(int y) const { return slots_ + y % slotCount_ * slotLength_; }

    /// Makes the rows of the window that are not in the ring yet. Windows move downward.
    template <class MakeRow> void require(int first, int last, MakeRow makeRow) {
        for (int y = std::max(next_, first); y <= last; ++y) makeRow(y, row(y));
        next_ = std::max(next_, last + 1);
    }

  private:
    Element* slots_;
    std::ptrdiff_t slotLength_;
    int slotCount_;
    int next_ = 0;
};

/// Makes the rows around row y, as far as they are inside an image of the given height.
template <class Element, class MakeRow>
void fillWindow(RowRing<Element>& ring, int y, int radius, int height, MakeRow makeRow) {
    ring.require(std::max(0, y - radius), std::min(height - 1, y + radius), makeRow);
}

/// Points at the rows y - radius .. y + radius in a ring that holds them; rows outside are reflections.
template <class Element>
void pointAtWindow(const RowRing<Element>& ring, int y, int radius, int height, const Element** rows) {
    for (int k = 0; k <= 2 * radius; ++k)
        rows[k] = ring.row(borderIndex(y - radius + k, height, mirroredAxis));
}

/// Rows that two neighbouring results share: the two that were asked for last are kept.
class KeptRows {
  public:
    KeptRows(float* first, float* second) : rows_{first, second} {}

    /// makeRow(y, out) makes a row that is not kept, in the place of the one that was not asked for last.
    template <class MakeRow> const float* row(int y, MakeRow makeRow) {
        if (kept_[last_] != y) last_ = 1 - last_;
        if (kept_[last_] != y) makeRow(y, rows_[last_]);
        kept_[last_] = y;
        return rows_[last_];
    }

  private:
    float* rows_[2];
    int kept_[2] = {-1, -1};
    int last_ = 0;
};

} // namespace lum
