#include "filter/separable.h"

#include <type_traits>

#include "filter/bordered_row.h"
#include "filter/rows_ahead.h"
#include "filter/separable_spec.h"
#include "filter/slide_window.h"
#include "frame/denormal_mask.h"
#include "frame/image.h"
#include "frame/instances.h"
#include "kernels/filter/separable.h"

namespace lum {
namespace {

/// Integer kernels for 8u, 8u16s and 16s; the type of the run decides, not the spec.
template <class T>
using KernelElement =
    std::conditional_t<std::is_same_v<T, Lum8u> || std::is_same_v<T, Lum16s>, Lum16s, Lum32f>;

/// One run: the image, the kernels, and the ring of filtered rows in the work buffer.
template <class T, class D, int channels> class SeparableRun {
  public:
    SeparableRun(Image<const T> src, Image<D> dst, LumSize size, LumBorderType border, const T* borderValue,
                 const SeparableSpec& spec, Lum8u* buffer)
        : src_(src),
          dst_(dst),
          width_(size.width),
          height_(size.height),
          vertical_(verticalBorder(border)),
          borderValue_(borderValue),
          scale_(1.0F / static_cast<float>(spec.divisor)),
          rowTaps_{static_cast<const K*>(spec.rowKernel), spec.kernelWidth, scale_},
          columnTaps_{static_cast<const K*>(spec.columnKernel), spec.kernelHeight, scale_},
          before_((spec.kernelWidth - 1) >> 1),
          after_(spec.kernelWidth - 1 - before_),
          above_((spec.kernelHeight - 1) >> 1),
          bordered_({width_, 0, width_, before_, after_}, channels, horizontalBorder(border), borderValue),
          slotElements_((static_cast<std::ptrdiff_t>(width_) + spec.kernelWidth - 1) * channels),
          slotPitch_(pitchThatFits()) {
        Arena arena(buffer);
        rows_ = arena.align(sizeof(float*)).template allocate<const float*>(columnTaps_.count);
        ring_ = arena.align(64).template allocate<float>(0);
        if constexpr (hasExactRows) exactRows_ = kernels::rowSumsAreExact<T>(rowTaps_);
    }

    void run() {
        slideWindow(
            height_, above_, columnTaps_.count - 1 - above_, [this](int y) { loadRow(y); },
            [this](int y) {
                for (int k = 0; k < columnTaps_.count; ++k) rows_[k] = slotOf(y + k - above_);
                filterColumns(y);
            });
    }

  private:
    using K = KernelElement<T>;
    static constexpr bool hasExactRows = std::is_same_v<K, Lum16s>;

    static std::ptrdiff_t elements(int pixels) { return static_cast<std::ptrdiff_t>(pixels) * channels; }

    void filterColumns(int y) {
        if constexpr (std::is_same_v<T, Lum32f>) {
            constexpr int rowsAhead = 4;
            if (areBeyondCaches<T>({width_, height_}, channels)) {
                const int lastRow = y + columnTaps_.count - 1 - above_;
                kernels::separableColumnAhead(
                    rows_, columnTaps_, dst_.row(y), elements(width_),
                    {rowAhead(src_, lastRow, rowsAhead, height_), rowAhead(dst_, y, rowsAhead, height_)});
                return;
            }
        }
        kernels::separableColumn(rows_, columnTaps_, dst_.row(y), elements(width_));
    }

    /// Slots begin on cache lines, or at least on multiples of 16 bytes, where the part of the memory that its size counts
    /// for the kernel is enough.
    std::ptrdiff_t pitchThatFits() const {
        const std::ptrdiff_t ofKernel = static_cast<std::ptrdiff_t>(sizeof(K)) * rowTaps_.count * channels;
        for (const std::ptrdiff_t floats : {16, 4}) {
            const std::ptrdiff_t pitch = roundedUp(slotElements_, floats);
            if ((pitch - slotElements_) * columnTaps_.count <= ofKernel) return pitch;
        }
        return slotElements_;
    }

    /// The slot of a source row; rows above the region have negative indices.
    float* slotOf(int row) const {
        return ring_ + static_cast<std::ptrdiff_t>((row + above_) % columnTaps_.count) * slotPitch_;
    }

    /// Puts the filtered row into its slot, the place of the row that is no longer needed.
    void loadRow(int row) {
        float* slot = slotOf(row);
        const int y = borderIndex(row, height_, vertical_);
        if (y == outsideConstant)
            fillConstant(slot);
        else
            filterRow(src_.row(y), slot);
    }

    /// A row outside the region that is constant has one value a channel, with no border of its own.
    void fillConstant(float* slot) const {
        float sum = static_cast<float>(rowTaps_.coefficients[0]);
        for (int i = 1; i < rowTaps_.count; ++i) sum += static_cast<float>(rowTaps_.coefficients[i]);
        for (int c = 0; c < channels; ++c) {
            const float value = static_cast<float>(borderValue_[c]) * sum * scale_;
            for (std::ptrdiff_t x = c; x < elements(width_); x += channels) slot[x] = value;
        }
    }

    /// The row stage works in the slot: its sums take the place of the extended row, which is always read ahead of where it
    /// is written. Rows that become floats begin where the slot does, others end where it does. Sums of floats whose taps are
    /// all in memory need no copy.
    void filterRow(const T* row, float* slot) const {
        if constexpr (hasExactRows) {
            if (exactRows_) {
                T* extended = reinterpret_cast<T*>(slot + slotElements_) - slotElements_;
                bordered_.write(row, -before_, width_ + after_, extended);
                kernels::separableRowExact(extended, rowTaps_, channels, slot, elements(width_));
                return;
            }
        }
        if constexpr (std::is_same_v<T, Lum32f>) {
            constexpr int pixelsOfVectors = 16;
            const int first = roundedUp(bordered_.begin() + before_, pixelsOfVectors);
            const int end = bordered_.end() - after_;
            if (first < end) {
                filterExtended(row, 0, first, slot);
                kernels::separableRow(row + elements(first - before_), rowTaps_, channels,
                                      slot + elements(first), elements(end - first));
                filterExtended(row, end, width_, slot);
                return;
            }
        }
        filterExtended(row, 0, width_, slot);
    }

    /// Results `first` to `end` - 1 from a copy.
    void filterExtended(const T* row, int first, int end, float* slot) const {
        if (first == end) return;
        float* extended = slot + elements(first);
        bordered_.write(row, first - before_, end + after_, extended);
        kernels::separableRow(extended, rowTaps_, channels, extended, elements(end - first));
    }

    Image<const T> src_;
    Image<D> dst_;
    int width_;
    int height_;
    AxisBorder vertical_;
    const T* borderValue_;
    float scale_;
    kernels::Taps<K> rowTaps_;
    kernels::Taps<K> columnTaps_;
    /// Pixels before and after a result, and rows above it, that its taps reach.
    int before_;
    int after_;
    int above_;
    BorderedRow<T> bordered_;
    std::ptrdiff_t slotElements_;
    std::ptrdiff_t slotPitch_;
    const float** rows_;
    float* ring_;
    bool exactRows_ = false;
};

} // namespace

template <class T, class D, int channels>
LumStatus separableL(const T* src, std::intptr_t srcStep, D* dst, std::intptr_t dstStep, LumSizeL roiSize,
                     LumBorderType border, BorderValue<T, channels> borderValue,
                     const LumFilterSeparableSpec* spec, Lum8u* buffer) {
    const T* values;
    if constexpr (channels == 1)
        values = &borderValue;
    else
        values = borderValue;
    if (auto s = firstFailure(
            checkNotNull(src, dst, spec, buffer), checkSize(roiSize), sizeAboveIndices(roiSize),
            checkNotNull(values), checkStep(rowBytes<T>(roiSize.width, channels), srcStep),
            checkStep(rowBytes<D>(roiSize.width, channels), dstStep), checkStepAlignment<T>(srcStep),
            checkStepAlignment<D>(dstStep), linearBorder(border)))
        return s;
    const DenormalMask mask;
    SeparableRun<T, D, channels>({src, srcStep}, {dst, dstStep}, narrowed(roiSize), border, values,
                                 separableSpecIn(spec), buffer)
        .run();
    return lumStatusOk;
}

template <class T, class D, int channels>
LumStatus separable(const T* src, int srcStep, D* dst, int dstStep, LumSize roiSize, LumBorderType border,
                    BorderValue<T, channels> borderValue, const LumFilterSeparableSpec* spec, Lum8u* buffer) {
    return separableL<T, D, channels>(src, srcStep, dst, dstStep, widened(roiSize), border, borderValue, spec,
                                      buffer);
}

LUM_INSTANCES(separable, (Lum8u, Lum8u, 1), (Lum8u, Lum8u, 3), (Lum8u, Lum8u, 4), (Lum8u, Lum16s, 1),
              (Lum8u, Lum16s, 3), (Lum8u, Lum16s, 4), (Lum16s, Lum16s, 1), (Lum16s, Lum16s, 3),
              (Lum16s, Lum16s, 4), (Lum16u, Lum16u, 1), (Lum16u, Lum16u, 3), (Lum16u, Lum16u, 4),
              (Lum32f, Lum32f, 1), (Lum32f, Lum32f, 3), (Lum32f, Lum32f, 4));
LUM_INSTANCES(separableL, (Lum8u, Lum8u, 1), (Lum8u, Lum8u, 3), (Lum8u, Lum8u, 4), (Lum8u, Lum16s, 1),
              (Lum8u, Lum16s, 3), (Lum8u, Lum16s, 4), (Lum16s, Lum16s, 1), (Lum16s, Lum16s, 3),
              (Lum16s, Lum16s, 4), (Lum16u, Lum16u, 1), (Lum16u, Lum16u, 3), (Lum16u, Lum16u, 4),
              (Lum32f, Lum32f, 1), (Lum32f, Lum32f, 3), (Lum32f, Lum32f, 4));

} // namespace lum
