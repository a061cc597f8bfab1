#include "filter/gaussian.h"

#include <algorithm>
#include <type_traits>

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
/// column sums never leave the registers, so the extended row takes the slot that was reckoned for them, and of the
/// 12 * kernelSize bytes behind it what both its ends need, 12 * (kernelSize - 1) at most, and 12 to begin on a
/// vector.
template <class T, int channels> class FilteredRows {
  public:
    FilteredRows(Image<const T> src, LumSize size, LumBorderType border, const T* borderValue,
                 const LumFilterGaussianSpecL* spec, Lum8u* buffer)
        : src_(src),
          size_(size),
          count_(static_cast<std::ptrdiff_t>(size.width) * channels),
          kernelSize_(spec->kernelSize),
          radius_(spec->kernelSize >> 1),
          reach_(static_cast<std::ptrdiff_t>(radius_) * channels),
          weights_(gaussianHalfKernel(spec)),
          rowStage_(kernels::gaussianRow(radius_, channels)),
          horizontal_(horizontalBorder(border)),
          vertical_(verticalBorder(border)),
          slotLength_(roundedUp(count_, gaussianTurn)),
          fromSource_(stretchFromSource(count_, reach_)),
          slots_(alignedUp(reinterpret_cast<float*>(buffer), 64)),
          singles_(slots_ + kernelSize_ * slotLength_ + roundedUp(reach_, std::ptrdiff_t{4})) {
        std::fill(singles_ + count_ + reach_, singles_ + slotLength_ + reach_, 0.0F);
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
        const T* row = src_.row(sourceRow);
        copySingles(row);
        extendSingles();
        filterStretch(singles_, 0, fromSource_.first, slot);
        if constexpr (std::is_same_v<T, Lum32f>) filterStretch(row, fromSource_.first, fromSource_.end, slot);
        filterStretch(singles_, fromSource_.end, count_, slot);
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

    /// The elements whose taps are all singles inside the row, in whole turns: they need no copy. None where the
    /// source is of integers.
    struct Stretch {
        std::ptrdiff_t first;
        std::ptrdiff_t end;
    };
    static Stretch stretchFromSource(std::ptrdiff_t count, std::ptrdiff_t reach) {
        const std::ptrdiff_t first = roundedUp(reach, gaussianTurn);
        const std::ptrdiff_t elements = count - reach - first;
        if (!std::is_same_v<T, Lum32f> || elements < gaussianTurn) return {0, 0};
        return {first, first + elements / gaussianTurn * gaussianTurn};
    }

    /// Converts what the row stage does not read from the source, and the sides in memory with it.
    void copySingles(const T* row) {
        const std::ptrdiff_t left = horizontal_.memoryBefore ? reach_ : 0;
        const std::ptrdiff_t right = horizontal_.memoryAfter ? reach_ : 0;
        std::ptrdiff_t rest = -left;
        if (fromSource_.end > 0) {
            kernels::gaussianSingles(row - left, left + fromSource_.first + reach_, singles_ - left);
            rest = fromSource_.end - reach_;
        }
        kernels::gaussianSingles(row + rest, count_ + right - rest, singles_ + rest);
    }

    /// Makes the sides that are not in memory, of the singles that are there.
    void extendSingles() {
        if (!horizontal_.memoryBefore)
            copyExtended(singles_, size_.width, channels, horizontal_, constant_, -radius_, radius_,
                         singles_ - reach_);
        if (!horizontal_.memoryAfter)
            copyExtended(singles_, size_.width, channels, horizontal_, constant_, size_.width, radius_,
                         singles_ + count_);
    }

    /// The stretch begins with a turn; where it does not end with one, its row and the slot do.
    void filterStretch(const float* row, std::ptrdiff_t first, std::ptrdiff_t end, float* slot) const {
        rowStage_(row + first, end - first, weights_, radius_, slot + first);
    }

    Image<const T> src_;
    LumSize size_;
    std::ptrdiff_t count_;
    int kernelSize_;
    int radius_;
    std::ptrdiff_t reach_;
    const float* weights_;
    kernels::GaussianRow* rowStage_;
    AxisBorder horizontal_;
    AxisBorder vertical_;
    std::ptrdiff_t slotLength_;
    Stretch fromSource_;
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
    const Stores wanted = chosenStores(size, channels);
    const Stores stores = alignedForVectors(result) ? wanted : Stores::ordinary;
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
