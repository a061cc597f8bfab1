// What the filters with built-in kernels share: the checks, the shape of their work memory, and the walk down the region with a
// ring of rows, which all but the low-pass filter of bytes take.
#pragma once

#include <algorithm>

#include "filter/bordered_row.h"
#include "filter/pipeline_sizes.h"
#include "filter/slide_window.h"
#include "frame/image.h"

namespace lum {

constexpr LumStatus maskOtherThanThreeOrFive(LumMaskSize maskSize) {
    return errorIf(maskSize != lumMask3x3 && maskSize != lumMask5x5, lumStatusMaskSizeError);
}

constexpr int tapsOf(LumMaskSize maskSize) { return maskSize == lumMask3x3 ? 3 : 5; }

/// Work memory of a filter: bytes per tile of 16 columns and row, bytes per tap, constant bytes, and
/// those of a row and a column pipeline. In wrapping 32-bit arithmetic.
struct FixedFilterSize {
    unsigned perTileRow;
    unsigned perTap;
    unsigned constantBytes;
    RowPipelineSize row;
    ColumnPipelineSize column;

    constexpr Lum32s bytes(LumSize roiSize, LumMaskSize maskSize) const {
        const auto taps = static_cast<unsigned>(tapsOf(maskSize));
        const unsigned tiles = (static_cast<unsigned>(roiSize.width) + 15) >> 4;
        const unsigned tileRows = taps == 3 ? 21 : 25;
        return static_cast<Lum32s>(perTileRow * tiles * tileRows + perTap * taps + constantBytes +
                                   static_cast<unsigned>(row.bytes(tapsOf(maskSize))) +
                                   static_cast<unsigned>(column.bytes(roiSize.width)));
    }
};

template <FixedFilterSize size>
LumStatus fixedFilterBufferSize(LumSize roiSize, LumMaskSize maskSize, Lum32s* bufferSize) {
    if (auto s =
            firstFailure(checkNotNull(bufferSize), checkSize(roiSize), maskOtherThanThreeOrFive(maskSize)))
        return s;
    *bufferSize = size.bytes(roiSize, maskSize);
    return lumStatusOk;
}

/// The stages of a filter on bytes: all taps at once, from extended rows.
template <auto convolveRow> struct OnBytes {
    static constexpr int planes = 1;
    static void along(Lum8u* const*, std::ptrdiff_t) {}
    template <class D> static void down(const Lum8u* const* rows, D* dst, std::ptrdiff_t count) {
        convolveRow(rows, dst, count);
    }
};

/// The stages of a filter on floats: a kernel along each extended row, in place, and one down the columns.
template <auto alongRow, auto downColumns> struct OnFloats {
    static constexpr int planes = 1;
    static void along(Lum32f* const* rows, std::ptrdiff_t count) { alongRow(rows[0], rows[0], count); }
    static void down(const Lum32f* const* rows, Lum32f* dst, std::ptrdiff_t count) {
        downColumns(rows, dst, count);
    }
};

/// The same where each row becomes two: the second kernel takes the first rows of all taps, then the second
/// rows.
template <auto alongRow, auto downColumns> struct OnPairsOfFloats {
    static constexpr int planes = 2;
    static void along(Lum32f* const* rows, std::ptrdiff_t count) {
        alongRow(rows[0], rows[0], rows[1], count);
    }
    static void down(const Lum32f* const* rows, Lum32f* dst, std::ptrdiff_t count) {
        downColumns(rows, dst, count);
    }
};

/// One run of a filter of `taps` rows and columns, over a ring of as many rows as it has taps.
template <class T, class D, int taps, class Stages> class FixedFilterRun {
  public:
    FixedFilterRun(Image<const T> src, Image<D> dst, LumSize size, LumBorderType border, T borderValue,
                   Lum8u* buffer)
        : src_(src),
          dst_(dst),
          size_(size),
          vertical_(verticalBorder(border)),
          borderValue_(borderValue),
          bordered_({size.width, 0, size.width, anchor, anchor}, 1, horizontalBorder(border), &borderValue_),
          extendedElements_(static_cast<std::ptrdiff_t>(size.width) + 2 * anchor) {
        Arena arena(buffer);
        for (auto& slot : ring_)
            for (T*& row : slot) row = arena.align(64).template allocate<T>(extendedElements_);
    }

    void run() {
        slideWindow(
            size_.height, anchor, anchor, [this](int y) { loadRow(y); },
            [this](int y) {
                const T* rows[planes * taps];
                for (int plane = 0; plane < planes; ++plane)
                    for (int k = 0; k < taps; ++k) rows[plane * taps + k] = slotOf(y - anchor + k)[plane];
                Stages::down(rows, dst_.row(y), size_.width);
            });
    }

  private:
    static constexpr int anchor = taps / 2;
    static constexpr int planes = Stages::planes;

    /// Rows above the region have negative indices.
    T* const* slotOf(int row) const { return ring_[(row + anchor) % taps]; }

    void loadRow(int row) {
        T* const* slot = slotOf(row);
        const int y = borderIndex(row, size_.height, vertical_);
        if (y == outsideConstant)
            std::fill_n(slot[0], extendedElements_, borderValue_);
        else
            bordered_.write(src_.row(y), -anchor, size_.width + anchor, slot[0]);
        Stages::along(slot, size_.width);
    }

    Image<const T> src_;
    Image<D> dst_;
    LumSize size_;
    AxisBorder vertical_;
    T borderValue_;
    BorderedRow<T> bordered_;
    std::ptrdiff_t extendedElements_;
    T* ring_[taps][planes];
};

/// What is wrong with the arguments of a call.
template <class T, class D>
LumStatus fixedFilterFailure(const T* src, int srcStep, const D* dst, int dstStep, LumSize roiSize,
                             LumMaskSize maskSize, LumBorderType border, const Lum8u* buffer) {
    return firstFailure(
        checkNotNull(src, dst, buffer), checkSize(roiSize), checkStep(rowBytes<T>(roiSize.width), srcStep),
        checkStep(rowBytes<D>(roiSize.width), dstStep), checkStepAlignment<T>(srcStep),
        checkStepAlignment<D>(dstStep), linearBorder(border), maskOtherThanThreeOrFive(maskSize));
}

/// Checks a call, and runs the stages of three or of five taps.
template <class OfThree, class OfFive, class T, class D>
LumStatus fixedFilter(const T* src, int srcStep, D* dst, int dstStep, LumSize roiSize, LumMaskSize maskSize,
                      LumBorderType border, T borderValue, Lum8u* buffer) {
    if (auto s = fixedFilterFailure(src, srcStep, dst, dstStep, roiSize, maskSize, border, buffer)) return s;
    const Image<const T> source(src, srcStep);
    const Image<D> result(dst, dstStep);
    if (maskSize == lumMask3x3)
        FixedFilterRun<T, D, 3, OfThree>(source, result, roiSize, border, borderValue, buffer).run();
    else
        FixedFilterRun<T, D, 5, OfFive>(source, result, roiSize, border, borderValue, buffer).run();
    return lumStatusOk;
}

} // namespace lum
