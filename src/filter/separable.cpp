#include "filter/separable.h"

#include <cstring>

#include "filter/denormal_mask.h"
#include "filter/extended_row.h"
#include "filter/separable_spec.h"
#include "frame/image.h"
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
          size_(size),
          horizontal_(horizontalBorder(border)),
          vertical_(verticalBorder(border)),
          borderValue_(borderValue),
          scale_(1.0F / static_cast<float>(spec.divisor)),
          rowTaps_{static_cast<const K*>(spec.rowKernel), spec.kernelWidth, scale_},
          columnTaps_{static_cast<const K*>(spec.columnKernel), spec.kernelHeight, scale_},
          rowAnchor_((spec.kernelWidth - 1) >> 1),
          columnAnchor_((spec.kernelHeight - 1) >> 1),
          elements_(static_cast<std::ptrdiff_t>(size.width) * channels),
          slotElements_((static_cast<std::ptrdiff_t>(size.width) + spec.kernelWidth - 1) * channels) {
        // The slack of the buffer pays for the alignment of the ring to cache lines, and the part after the
        // ring, where it is long enough, for whole vectors in each slot, so that all slots are aligned.
        const std::ptrdiff_t scratch = static_cast<std::ptrdiff_t>(sizeof(K)) * spec.kernelWidth * channels;
        const std::ptrdiff_t wholeVectors = roundedUp<std::ptrdiff_t>(slotElements_, 4);
        const bool vectorsFit = (wholeVectors - slotElements_) * spec.kernelHeight <= scratch;
        slotPitch_ = vectorsFit ? wholeVectors : slotElements_;
        Arena arena(buffer);
        rows_ = arena.align(sizeof(float*)).template allocate<const float*>(columnTaps_.count);
        ring_ = arena.align(64).template allocate<float>(0);
        if constexpr (hasExactRows) exactRows_ = kernels::rowSumsAreExact<T>(rowTaps_);
    }

    void run() {
        for (int k = 0; k < columnTaps_.count; ++k) loadRow(k - columnAnchor_);
        for (int y = 0; y < size_.height; ++y) {
            if (y > 0) loadRow(y + columnTaps_.count - 1 - columnAnchor_);
            for (int k = 0; k < columnTaps_.count; ++k) rows_[k] = slotOf(y + k - columnAnchor_);
            kernels::separableColumn(rows_, columnTaps_, dst_.row(y), elements_);
        }
    }

  private:
    using K = KernelElement<T>;
    static constexpr bool hasExactRows = std::is_same_v<K, Lum16s>;

    /// The slot of a source row; rows above the region have negative indices.
    float* slotOf(int row) const {
        return ring_ + static_cast<std::ptrdiff_t>((row + columnAnchor_) % columnTaps_.count) * slotPitch_;
    }

    /// Puts the filtered row into its slot, the place of the row that is no longer needed.
    void loadRow(int row) {
        float* slot = slotOf(row);
        const int y = borderIndex(row, size_.height, vertical_);
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
            for (std::ptrdiff_t x = c; x < elements_; x += channels) slot[x] = value;
        }
    }

    /// The row stage works in the slot: its sums take the place of the extended row, which lies at the end of
    /// the slot and is always read ahead of where it is written.
    void filterRow(const T* row, float* slot) const {
        if constexpr (hasExactRows) {
            if (exactRows_) {
                T* extended = reinterpret_cast<T*>(slot + slotElements_) - slotElements_;
                extend(row, extended);
                kernels::separableRowExact(extended, rowTaps_, channels, slot, elements_);
                return;
            }
        }
        extend(row, slot);
        kernels::separableRow(slot, rowTaps_, channels, slot, elements_);
    }

    /// The row and its border, from the first pixel that the leftmost result needs; in its own elements or as
    /// floats.
    template <class E> void extend(const T* row, E* extended) const {
        extendRow(row, size_.width, channels, horizontal_, borderValue_, rowAnchor_,
                  rowTaps_.count - 1 - rowAnchor_, extended, [](const T* from, E* to, std::ptrdiff_t count) {
                      if constexpr (std::is_same_v<E, T>)
                          std::memcpy(to, from, static_cast<std::size_t>(count) * sizeof(T));
                      else
                          kernels::toFloats(from, to, count);
                  });
    }

    Image<const T> src_;
    Image<D> dst_;
    LumSize size_;
    AxisBorder horizontal_;
    AxisBorder vertical_;
    const T* borderValue_;
    float scale_;
    kernels::Taps<K> rowTaps_;
    kernels::Taps<K> columnTaps_;
    int rowAnchor_;
    int columnAnchor_;
    std::ptrdiff_t elements_;
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

template decltype(separable<Lum8u, Lum8u, 1>) separable<Lum8u, Lum8u, 1>;
template decltype(separable<Lum8u, Lum8u, 3>) separable<Lum8u, Lum8u, 3>;
template decltype(separable<Lum8u, Lum8u, 4>) separable<Lum8u, Lum8u, 4>;
template decltype(separable<Lum8u, Lum16s, 1>) separable<Lum8u, Lum16s, 1>;
template decltype(separable<Lum8u, Lum16s, 3>) separable<Lum8u, Lum16s, 3>;
template decltype(separable<Lum8u, Lum16s, 4>) separable<Lum8u, Lum16s, 4>;
template decltype(separable<Lum16s, Lum16s, 1>) separable<Lum16s, Lum16s, 1>;
template decltype(separable<Lum16s, Lum16s, 3>) separable<Lum16s, Lum16s, 3>;
template decltype(separable<Lum16s, Lum16s, 4>) separable<Lum16s, Lum16s, 4>;
template decltype(separable<Lum16u, Lum16u, 1>) separable<Lum16u, Lum16u, 1>;
template decltype(separable<Lum16u, Lum16u, 3>) separable<Lum16u, Lum16u, 3>;
template decltype(separable<Lum16u, Lum16u, 4>) separable<Lum16u, Lum16u, 4>;
template decltype(separable<Lum32f, Lum32f, 1>) separable<Lum32f, Lum32f, 1>;
template decltype(separable<Lum32f, Lum32f, 3>) separable<Lum32f, Lum32f, 3>;
template decltype(separable<Lum32f, Lum32f, 4>) separable<Lum32f, Lum32f, 4>;
template decltype(separableL<Lum8u, Lum8u, 1>) separableL<Lum8u, Lum8u, 1>;
template decltype(separableL<Lum8u, Lum8u, 3>) separableL<Lum8u, Lum8u, 3>;
template decltype(separableL<Lum8u, Lum8u, 4>) separableL<Lum8u, Lum8u, 4>;
template decltype(separableL<Lum8u, Lum16s, 1>) separableL<Lum8u, Lum16s, 1>;
template decltype(separableL<Lum8u, Lum16s, 3>) separableL<Lum8u, Lum16s, 3>;
template decltype(separableL<Lum8u, Lum16s, 4>) separableL<Lum8u, Lum16s, 4>;
template decltype(separableL<Lum16s, Lum16s, 1>) separableL<Lum16s, Lum16s, 1>;
template decltype(separableL<Lum16s, Lum16s, 3>) separableL<Lum16s, Lum16s, 3>;
template decltype(separableL<Lum16s, Lum16s, 4>) separableL<Lum16s, Lum16s, 4>;
template decltype(separableL<Lum16u, Lum16u, 1>) separableL<Lum16u, Lum16u, 1>;
template decltype(separableL<Lum16u, Lum16u, 3>) separableL<Lum16u, Lum16u, 3>;
template decltype(separableL<Lum16u, Lum16u, 4>) separableL<Lum16u, Lum16u, 4>;
template decltype(separableL<Lum32f, Lum32f, 1>) separableL<Lum32f, Lum32f, 1>;
template decltype(separableL<Lum32f, Lum32f, 3>) separableL<Lum32f, Lum32f, 3>;
template decltype(separableL<Lum32f, Lum32f, 4>) separableL<Lum32f, Lum32f, 4>;

} // namespace lum
