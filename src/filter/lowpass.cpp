#include "filter/lowpass.h"

#include <algorithm>
#include <cstdint>

#include "kernels/filter/lowpass.h"

namespace lum {
namespace {

/// The filter of bytes. Rows are read where they are, and two rows of results are made at once.
template <int taps> class LowpassRun {
  public:
    /// The work memory is for a row outside the region that is constant.
    LowpassRun(Image<const Lum8u> src, Image<Lum8u> dst, LumSize size, LumBorderType border,
               Lum8u borderValue, Lum8u* buffer)
        : src_(src),
          dst_(dst),
          size_(size),
          vertical_(verticalBorder(border)),
          borderValue_(borderValue),
          bordered_({size.width, 0, size.width, anchor, anchor}, 1, horizontalBorder(border), &borderValue_),
          constantRow_(buffer) {
        if (vertical_.kind == lumBorderConstant) std::fill_n(constantRow_, size.width, borderValue);
    }

    void run() {
        kernels::RowOfBytes rows[taps + 1];
        for (int k = 0; k < taps - 1; ++k) rows[k] = row(k - anchor);
        const auto twice = [](std::ptrdiff_t step) { return 2 * static_cast<std::uintptr_t>(step); };
        const kernels::BytesAhead nextRows{twice(src_.step), twice(dst_.step)};
        int y = 0;
        for (; y <= size_.height - 2; y += 2) {
            rows[taps - 1] = row(y + anchor);
            rows[taps] = row(y + 1 + anchor);
            kernels::lowpassTwoRows<taps>(rows, dst_.row(y), dst_.row(y + 1), size_.width, nextRows);
            std::copy(rows + 2, rows + taps + 1, rows);
        }
        if (y == size_.height) return;
        rows[taps - 1] = row(y + anchor);
        kernels::lowpass<taps>(rows, dst_.row(y), size_.width);
    }

  private:
    static constexpr int anchor = taps / 2;

    /// Row y, which may lie outside the region.
    kernels::RowOfBytes row(int y) const {
        kernels::RowOfBytes row;
        const int sourceRow = borderIndex(y, size_.height, vertical_);
        if (sourceRow == outsideConstant) {
            row.pixels = constantRow_;
            std::fill_n(row.before, anchor, borderValue_);
            std::fill_n(row.after, anchor, borderValue_);
        } else {
            row.pixels = src_.row(sourceRow);
            bordered_.write(row.pixels, -anchor, 0, row.before);
            bordered_.write(row.pixels, size_.width, size_.width + anchor, row.after);
        }
        return row;
    }

    Image<const Lum8u> src_;
    Image<Lum8u> dst_;
    LumSize size_;
    AxisBorder vertical_;
    Lum8u borderValue_;
    BorderedRow<Lum8u> bordered_;
    Lum8u* constantRow_;
};

} // namespace

LumStatus lowpass8u(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumSize roiSize,
                    LumMaskSize maskSize, LumBorderType border, Lum8u borderValue, Lum8u* buffer) {
    if (auto s = fixedFilterFailure(src, srcStep, dst, dstStep, roiSize, maskSize, border, buffer)) return s;
    if (maskSize == lumMask3x3)
        LowpassRun<3>({src, srcStep}, {dst, dstStep}, roiSize, border, borderValue, buffer).run();
    else
        LowpassRun<5>({src, srcStep}, {dst, dstStep}, roiSize, border, borderValue, buffer).run();
    return lumStatusOk;
}

LumStatus lowpass32f(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize,
                     LumMaskSize maskSize, LumBorderType border, Lum32f borderValue, Lum8u* buffer) {
    using OfThree = OnFloats<kernels::lowpassAlong<3>, kernels::lowpassDown<3>>;
    using OfFive = OnFloats<kernels::lowpassAlong<5>, kernels::lowpassDown<5>>;
    return fixedFilter<OfThree, OfFive>(src, srcStep, dst, dstStep, roiSize, maskSize, border, borderValue,
                                        buffer);
}

} // namespace lum
