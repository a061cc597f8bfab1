// The column stage of a derivative over a region whose outside is given by a border: one row at a time, extended at
// both ends.
#pragma once

#include <algorithm>

#include "filter/border.h"
#include "frame/arena.h"
#include "frame/image.h"
#include "kernels/feature/derivative.h"

namespace lum {

/// What lies outside a region of elements T.
template <class T> struct RegionBorder {
    AxisBorder horizontal;
    AxisBorder vertical;
    T value;

    RegionBorder(LumBorderType border, T borderValue)
        : horizontal(horizontalBorder(border)), vertical(verticalBorder(border)), value(borderValue) {}
};

/// Columns on which a result is needed beyond the region's own.
struct ColumnReach {
    int before = 0;
    int after = 0;
};

template <class T> class DerivativeRows {
  public:
    using Stage = kernels::StageElement<T>;
    using ColumnStage = void (*)(const T* const* rows, std::ptrdiff_t count, Stage* smooth,
                                 Stage* difference);

    /// `reach` is that of the mask; memory comes from the arena.
    DerivativeRows(Image<const T> src, LumSize size, const RegionBorder<T>& border, ColumnStage stage,
                   int reach, ColumnReach columns, Arena& arena)
        : src_(src),
          size_(size),
          border_(border),
          stage_(stage),
          reach_(reach),
          first_(-columns.before - reach),
          last_(static_cast<std::ptrdiff_t>(size.width) + columns.after + reach) {
        const std::ptrdiff_t count = last_ - first_;
        smooth_ = arena.align(sizeof(Stage)).template allocate<Stage>(count);
        difference_ = arena.allocate<Stage>(count);
        outside_ = arena.align(sizeof(T)).template allocate<T>(count);
    }

    /// To be called once before the first row; a constant border is a row of its own.
    void prepare() { std::fill(outside_, outside_ + (last_ - first_), border_.value); }

    /// Computes row y, which may lie outside the region.
    void enter(std::ptrdiff_t y) {
        const T* rows[kernels::largestDerivativeTaps];
        for (int k = 0; k <= 2 * reach_; ++k) {
            const int row = borderIndex(static_cast<int>(y) - reach_ + k, size_.height, border_.vertical);
            rows[k] = row == outsideConstant ? outside_ - first_ : src_.row(row);
        }
        const std::ptrdiff_t from = border_.horizontal.memoryBefore ? first_ : 0;
        const std::ptrdiff_t to = border_.horizontal.memoryAfter ? last_ : size_.width;
        const T* columns[kernels::largestDerivativeTaps];
        // The same k as above.
        // cppcheck-suppress uninitvar
        for (int k = 0; k <= 2 * reach_; ++k) columns[k] = rows[k] + from;
        stage_(columns, to - from, smooth_ + (from - first_), difference_ + (from - first_));
        extend(first_, from);
        extend(to, last_);
    }

    /// The row entered last, from the first tap of its first result.
    const Stage* smooth() const { return smooth_; }
    const Stage* difference() const { return difference_; }

  private:
    /// Columns outside are those inside that the border names, since it extends every row alike.
    void extend(std::ptrdiff_t from, std::ptrdiff_t to) {
        for (std::ptrdiff_t x = from; x < to; ++x) {
            const int column = borderIndex(static_cast<int>(x), size_.width, border_.horizontal);
            if (column == outsideConstant) {
                const T* rows[kernels::largestDerivativeTaps];
                for (int k = 0; k <= 2 * reach_; ++k) rows[k] = outside_;
                stage_(rows, 1, smooth_ + (x - first_), difference_ + (x - first_));
            } else {
                smooth_[x - first_] = smooth_[column - first_];
                difference_[x - first_] = difference_[column - first_];
            }
        }
    }

    Image<const T> src_;
    LumSize size_;
    RegionBorder<T> border_;
    ColumnStage stage_;
    int reach_;
    std::ptrdiff_t first_;
    std::ptrdiff_t last_;
    Stage* smooth_;
    Stage* difference_;
    T* outside_;
};

} // namespace lum
