// Products of derivatives summed along a window, over a ring of as many rows as the window has: what all corner
// measures are made of, one row of results at a time.
#pragma once

#include <algorithm>
#include <optional>

#include "feature/derivative_rows.h"
#include "kernels/feature/corner.h"

namespace lum {

/// The stages of one derivative on elements T.
template <class T> struct DerivativeStages {
    using Stage = kernels::StageElement<T>;

    int reach;
    typename DerivativeRows<T>::ColumnStage down;
    void (*products)(const Stage* smooth, const Stage* difference, std::ptrdiff_t count,
                     const kernels::ProductRows& products);
};

template <kernels::Derivative kind, class T>
inline constexpr DerivativeStages<T> stagesOf{kernels::reachOf(kind), kernels::derivativeDown<kind, T>,
                                              kernels::productRow<kind, kernels::StageElement<T>>};

/// A square of `taps` pixels a side around each pixel.
struct Window {
    int taps;

    /// An even window reaches further up and to the left.
    int before() const { return taps / 2; }
    int after() const { return taps - 1 - taps / 2; }
};

template <class T> class CovarianceRows {
  public:
    /// Where `planeKind` is given, products outside the region are those inside that a border of this kind names, with
    /// 0 for a constant. Otherwise they are formed of what lies outside by the region's own border.
    CovarianceRows(Image<const T> src, LumSize size, const RegionBorder<T>& border,
                   const DerivativeStages<T>& stages, Window window, std::optional<LumBorderType> planeKind,
                   Arena& arena)
        : size_(size),
          window_(window),
          planeKind_(planeKind),
          products_(stages.products),
          derivatives_(src, size, border, stages.down, stages.reach,
                       planeKind ? ColumnReach{} : ColumnReach{window.before(), window.after()}, arena) {
        const std::size_t extended = static_cast<std::size_t>(size.width) + window.taps - 1;
        extended_.xx = arena.align(64).template allocate<float>(extended);
        extended_.xy = arena.align(64).template allocate<float>(extended);
        extended_.yy = arena.align(64).template allocate<float>(extended);
        sumsPerRow_ = roundedUp<std::size_t>(size.width, 16);
        ring_ = arena.align(64).template allocate<float>(sumsPerRow_ * planes * window.taps);
        const std::size_t pointers = std::size_t{planes} * window.taps;
        rowPointers_ = arena.align(8).template allocate<const float*>(pointers);
        arena.skip((8 - sizeof(float*)) * pointers); // so that the size is the same in every build
    }

    /// Calls row(window, y) for each row of the region, with the rows of sums around it.
    template <class Row> void run(Row row) {
        derivatives_.prepare();
        for (int y = -window_.before(); y < window_.after(); ++y) enter(y);
        for (int y = 0; y < size_.height; ++y) {
            enter(y + window_.after());
            row(rowsFrom(y - window_.before()), y);
        }
    }

  private:
    static constexpr int planes = 3;

    AxisBorder planeBorder() const { return {*planeKind_, false, false}; }

    float* slot(int row, int plane) const {
        const std::size_t index = static_cast<std::size_t>(row + window_.before()) % window_.taps;
        return ring_ + (index * planes + plane) * sumsPerRow_;
    }

    kernels::WindowRows rowsFrom(int first) {
        const float** pointers = rowPointers_;
        for (int plane = 0; plane < planes; ++plane)
            for (int k = 0; k < window_.taps; ++k) *pointers++ = slot(first + k, plane);
        return {rowPointers_, rowPointers_ + window_.taps, rowPointers_ + 2 * window_.taps, window_.taps};
    }

    void enter(int row) {
        if (planeKind_) {
            const int inside = borderIndex(row, size_.height, planeBorder());
            if (inside == outsideConstant) {
                std::fill_n(slot(row, 0), planes * sumsPerRow_, 0.0F);
                return;
            }
            derivatives_.enter(inside);
            const int before = window_.before();
            products_(derivatives_.smooth(), derivatives_.difference(), size_.width,
                      {extended_.xx + before, extended_.xy + before, extended_.yy + before});
            for (float* plane : {extended_.xx, extended_.xy, extended_.yy}) extend(plane);
        } else {
            derivatives_.enter(row);
            products_(derivatives_.smooth(), derivatives_.difference(),
                      static_cast<std::ptrdiff_t>(size_.width) + window_.taps - 1, extended_);
        }
        kernels::windowSumsAlong(extended_.xx, size_.width, window_.taps, slot(row, 0));
        kernels::windowSumsAlong(extended_.xy, size_.width, window_.taps, slot(row, 1));
        kernels::windowSumsAlong(extended_.yy, size_.width, window_.taps, slot(row, 2));
    }

    /// Both ends of a row of products.
    void extend(float* extended) const {
        float* row = extended + window_.before();
        const auto set = [&](int x) {
            const int inside = borderIndex(x, size_.width, planeBorder());
            row[x] = inside == outsideConstant ? 0.0F : row[inside];
        };
        for (int x = -window_.before(); x < 0; ++x) set(x);
        for (int x = 0; x < window_.after(); ++x) set(size_.width + x);
    }

    LumSize size_;
    Window window_;
    std::optional<LumBorderType> planeKind_;
    decltype(DerivativeStages<T>::products) products_;
    DerivativeRows<T> derivatives_;
    kernels::ProductRows extended_;
    std::size_t sumsPerRow_;
    float* ring_;
    const float** rowPointers_;
};

} // namespace lum
