#include "filter/gaussian.h"

#include <algorithm>

#include "filter/border.h"
#include "filter/gaussian_spec.h"
#include "frame/cache.h"
#include "frame/image.h"
#include "frame/vector.h"
#include "kernels/gaussian.h"

namespace lum {
namespace {

using kernels::gaussianTurn;

/// From this many bytes of singles on a run asks for the size of the cache.
constexpr Lum32s bytesWorthAsking = 0x80000;

Stores chosenStores(LumSize roiSize, int channels) {
    const Lum32s figure = wrappedFigure(4 * channels, roiSize);
    if (figure < bytesWorthAsking) return Stores::ordinary;
    return storesForFigure(figure, OnUnknownCache::storeOrdinarily);
}

/// Pointer-wide sizes may pass 32 bits, in which no query could report the work memory.
LumStatus sizeBeyond32Bits(LumSizeL roiSize) {
    return when(static_cast<Lum32s>(roiSize.width) != roiSize.width ||
                    static_cast<Lum32s>(roiSize.height) != roiSize.height,
                lumStatusSizeError);
}

/// The source rows of a run as the ring takes them: in singles, filtered along x, with rows and columns outside the
/// region as the border has them.
///
/// Work memory, from its first 64-byte boundary: kernelSize slots of rows in whole turns, then one extended row. The
/// column sums never leave the registers, so the extended row takes the slot behind the ring and what lies behind
/// that; together they hold the longest extended row, of three channels, with its first pixel on a vector.
template <class T, int channels> class FilteredRows {
  public:
    FilteredRows(Image<const T> src, LumSize size, LumBorderType border, const T* borderValue,
                 const LumFilterGaussianSpecL* spec, Lum8u* buffer)
        : src_(src),
          size_(size),
          count_(static_cast<std::ptrdiff_t>(size.width) * channels),
          kernelSize_(spec->kernelSize),
          radius_(spec->kernelSize >> 1),
          weights_(gaussianHalfKernel(spec)),
          rowStage_(kernels::gaussianRow(radius_, channels)),
          horizontal_(horizontalBorder(border)),
          vertical_(verticalBorder(border)),
          slotLength_(roundedUp(count_, gaussianTurn)),
          slots_(alignedUp(reinterpret_cast<float*>(buffer), 64)) {
        const std::ptrdiff_t reach = static_cast<std::ptrdiff_t>(radius_) * channels;
        singles_ = slots_ + kernelSize_ * slotLength_ + roundedUp(reach, std::ptrdiff_t{4});
        std::fill(singles_ + count_ + reach, singles_ + slotLength_ + reach, 0.0F);
        const bool isConstant = horizontal_.kind == lumBorderConstant && !allSidesInMemory(border);
        for (int c = 0; c < channels; ++c) constant_[c] = isConstant ? borderValue[c] : T{};
    }

    /// Filters row y, which may lie outside the region, into the slot that is its turn.
    void fillSlot(int y) {
        const int sourceRow = elementAt(y, size_.height, vertical_);
        float* slot = slots_ + slotOf(y) * slotLength_;
        if (sourceRow == constantElement) {
            fillWithConstant(slot);
            return;
        }
        extendRow(src_.row(sourceRow));
        rowStage_(singles_, count_, weights_, radius_, slot);
    }

    /// The rows around row y of the region, all of them filled.
    kernels::GaussianRing around(int y) const { return {slots_, slotLength_, radius_, slotOf(y - radius_)}; }

    int radius() const { return radius_; }
    std::ptrdiff_t count() const { return count_; }
    const float* weights() const { return weights_; }

  private:
    /// Row -radius, the first of a run, stands in slot 0.
    int slotOf(int y) const { return (y + radius_) % kernelSize_; }

    /// No filter runs along a constant row, since the kernel's sum is 1.
    void fillWithConstant(float* slot) const {
        float* const end = slot + slotLength_;
        for (int x = 0; x < size_.width; ++x)
            for (int c = 0; c < channels; ++c) *slot++ = constant_[c];
        std::fill(slot, end, 0.0F);
    }

    /// A side in memory is converted with the row, any other is made of the singles.
    void extendRow(const T* row) {
        const int left = horizontal_.memoryBefore ? radius_ : 0;
        const int right = horizontal_.memoryAfter ? radius_ : 0;
        const std::ptrdiff_t first = static_cast<std::ptrdiff_t>(left) * channels;
        kernels::gaussianSingles(row - first, count_ + first + static_cast<std::ptrdiff_t>(right) * channels,
                                 singles_ - first);
        copyExtended(singles_, size_.width, channels, horizontal_, constant_, -radius_, radius_ - left,
                     singles_ - static_cast<std::ptrdiff_t>(radius_) * channels);
        copyExtended(singles_, size_.width, channels, horizontal_, constant_, size_.width, radius_ - right,
                     singles_ + count_);
    }

    Image<const T> src_;
    LumSize size_;
    std::ptrdiff_t count_;
    int kernelSize_;
    int radius_;
    const float* weights_;
    kernels::GaussianRow* rowStage_;
    AxisBorder horizontal_;
    AxisBorder vertical_;
    std::ptrdiff_t slotLength_;
    float* slots_;
    float* singles_;
    float constant_[channels];
};

} // namespace

template <class T, int channels>
LumStatus gaussianL(const T* src, intptr_t srcStep, T* dst, intptr_t dstStep, LumSizeL roiSize,
                    LumBorderType border, const T* borderValue, const LumFilterGaussianSpecL* spec,
                    Lum8u* buffer) {
    if (auto s = firstFailure(nullPointer(src, dst, buffer, spec), sizeBeyond32Bits(roiSize))) return s;
    if (auto s = firstFailure(stepBelow(rowBytes<T>(roiSize.width, channels), srcStep, dstStep),
                              sizeBelowOne(roiSize), stepMisaligned<T>(srcStep, dstStep),
                              when(border < 0 || border > 255, lumStatusBorderError)))
        return s;
    if (!allSidesInMemory(border)) {
        if (auto s = firstFailure(borderValueMissing(border, borderValue), linearBorder(border))) return s;
    }
    if (auto s = gaussianKernelSize(spec->kernelSize)) return s;

    const LumSize size{static_cast<Lum32s>(roiSize.width), static_cast<Lum32s>(roiSize.height)};
    const Image<T> result(dst, dstStep);
    FilteredRows<T, channels> rows({src, srcStep}, size, border, borderValue, spec, buffer);
    const Stores stores = alignedForVectors(result) ? chosenStores(size, channels) : Stores::ordinary;
    kernels::GaussianColumn<T>* columnStage = kernels::gaussianColumn<T>(rows.radius(), stores);

    for (int y = -rows.radius(); y < rows.radius(); ++y) rows.fillSlot(y);
    for (int y = 0; y < size.height; ++y) {
        rows.fillSlot(y + rows.radius());
        columnStage(rows.around(y), rows.count(), rows.weights(), result.row(y));
    }
    if (stores == Stores::bypassing) closeBypass();
    return lumStatusOk;
}

template <class T, int channels>
LumStatus gaussian(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize, LumBorderType border,
                   const T* borderValue, const LumFilterGaussianSpec* spec, Lum8u* buffer) {
    if (auto s = firstFailure(nullPointer(src, dst, buffer, spec), stepBelow(1, srcStep, dstStep),
                              sizeBelowOne(roiSize)))
        return s;
    if (auto s = gaussianParameters(spec->kernelSize, spec->dataType, channels)) return s;
    return gaussianL<T, channels>(src, srcStep, dst, dstStep, {roiSize.width, roiSize.height}, border,
                                  borderValue, gaussianCoreSpec(spec), buffer);
}

template <class T>
LumStatus gaussianBorder(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize, T borderValue,
                         const LumFilterGaussianSpec* spec, Lum8u* buffer) {
    if (auto s = nullPointer(spec)) return s;
    return gaussian<T, 1>(src, srcStep, dst, dstStep, roiSize, spec->border, &borderValue, spec, buffer);
}

template <class T>
LumStatus gaussianBorderThree(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                              const T* borderValue, const LumFilterGaussianSpec* spec, Lum8u* buffer) {
    if (auto s = nullPointer(spec)) return s;
    return gaussian<T, 3>(src, srcStep, dst, dstStep, roiSize, spec->border, borderValue, spec, buffer);
}

template decltype(gaussianL<Lum8u, 1>) gaussianL<Lum8u, 1>;
template decltype(gaussianL<Lum8u, 3>) gaussianL<Lum8u, 3>;
template decltype(gaussianL<Lum16u, 1>) gaussianL<Lum16u, 1>;
template decltype(gaussianL<Lum16u, 3>) gaussianL<Lum16u, 3>;
template decltype(gaussianL<Lum16s, 1>) gaussianL<Lum16s, 1>;
template decltype(gaussianL<Lum16s, 3>) gaussianL<Lum16s, 3>;
template decltype(gaussianL<Lum32f, 1>) gaussianL<Lum32f, 1>;
template decltype(gaussianL<Lum32f, 3>) gaussianL<Lum32f, 3>;
template decltype(gaussian<Lum8u, 1>) gaussian<Lum8u, 1>;
template decltype(gaussian<Lum8u, 3>) gaussian<Lum8u, 3>;
template decltype(gaussian<Lum16u, 1>) gaussian<Lum16u, 1>;
template decltype(gaussian<Lum16u, 3>) gaussian<Lum16u, 3>;
template decltype(gaussian<Lum16s, 1>) gaussian<Lum16s, 1>;
template decltype(gaussian<Lum16s, 3>) gaussian<Lum16s, 3>;
template decltype(gaussian<Lum32f, 1>) gaussian<Lum32f, 1>;
template decltype(gaussian<Lum32f, 3>) gaussian<Lum32f, 3>;
template decltype(gaussianBorder<Lum8u>) gaussianBorder<Lum8u>;
template decltype(gaussianBorder<Lum16u>) gaussianBorder<Lum16u>;
template decltype(gaussianBorder<Lum16s>) gaussianBorder<Lum16s>;
template decltype(gaussianBorder<Lum32f>) gaussianBorder<Lum32f>;
template decltype(gaussianBorderThree<Lum8u>) gaussianBorderThree<Lum8u>;
template decltype(gaussianBorderThree<Lum16u>) gaussianBorderThree<Lum16u>;
template decltype(gaussianBorderThree<Lum16s>) gaussianBorderThree<Lum16s>;
template decltype(gaussianBorderThree<Lum32f>) gaussianBorderThree<Lum32f>;

} // namespace lum
