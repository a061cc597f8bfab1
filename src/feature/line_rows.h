// Sums of products of derivatives down the columns of a window, kept up from row to row: what entered is added, what
// left is taken away. All are whole numbers, so the sums are exact.
#pragma once

#include <algorithm>

#include "feature/covariance_rows.h"
#include "kernels/feature/line.h"

namespace lum {

/// The stages of one derivative on bytes.
struct LineStages {
    int reach;
    DerivativeRows<Lum8u>::ColumnStage down;
    void (*addProducts)(const Lum16s* smooth, const Lum16s* difference, std::ptrdiff_t count, double weight,
                        const kernels::CovarianceSums& sums);
};

template <kernels::Derivative kind>
inline constexpr LineStages lineStagesOf{kernels::reachOf(kind), kernels::derivativeDown<kind, Lum8u>,
                                         kernels::addProductRow<kind>};

class LineRows {
  public:
    LineRows(Image<const Lum8u> src, LumSize size, const RegionBorder<Lum8u>& border,
             const LineStages& stages, Window window, Arena& arena)
        : size_(size),
          window_(window),
          addProducts_(stages.addProducts),
          derivatives_(src, size, border, stages.down, stages.reach, {window.before(), window.after()},
                       arena),
          columns_(static_cast<std::ptrdiff_t>(size.width) + window.taps - 1) {
        sums_.xx = arena.align(64).allocate<double>(columns_);
        sums_.xy = arena.align(64).allocate<double>(columns_);
        sums_.yy = arena.align(64).allocate<double>(columns_);
    }

    /// Calls row(sums, y) for each row of the region; the window of column x is that of sums x .. x + taps - 1.
    template <class Row> void run(Row row) {
        derivatives_.prepare();
        for (double* sums : {sums_.xx, sums_.xy, sums_.yy}) std::fill_n(sums, columns_, 0.0);
        for (int y = -window_.before(); y < window_.after(); ++y) add(y, 1);
        for (int y = 0; y < size_.height; ++y) {
            add(y + window_.after(), 1);
            row(sums_, y);
            add(y - window_.before(), -1);
        }
    }

  private:
    void add(int y, double weight) {
        derivatives_.enter(y);
        addProducts_(derivatives_.smooth(), derivatives_.difference(), columns_, weight, sums_);
    }

    LumSize size_;
    Window window_;
    decltype(LineStages::addProducts) addProducts_;
    DerivativeRows<Lum8u> derivatives_;
    std::ptrdiff_t columns_;
    kernels::CovarianceSums sums_;
};

} // namespace lum
