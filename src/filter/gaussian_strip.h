// A strip of columns on its way through the Gaussian filter: the source rows as the ring takes them, in floats,
// filtered along x, with rows and columns outside the region as the border has them.
#pragma once

#include <algorithm>
#include <type_traits>

#include "filter/border.h"
#include "filter/gaussian_spec.h"
#include "frame/image.h"
#include "kernels/filter/gaussian.h"

namespace lum {

/// What the strips of a run share.
template <class T> struct GaussianRun {
    Image<const T> src;
    LumSize size;
    LumBorderType border;
    /// Read for a constant border only.
    const T* borderValue;
    const LumFilterGaussianSpecL* spec;
    Lum8u* buffer;
};

/// The columns that a strip takes of a region: as many as leave its ring and one extended row in a first-level cache of
/// 48 KiB, but not so few that the ends of the strips count. Strips are alike, and begin on vectors of the result
/// where its rows do.
inline int gaussianStripWidth(int width, int channels, int kernelSize) {
    constexpr int floatsInCache = 48 * 1024 / sizeof(float);
    constexpr int fewestElements = 512;
    constexpr int pixelsOfVectors = 16;
    const int most = std::max(floatsInCache / (kernelSize + 1), fewestElements) / channels;
    const int strips = (width - 1) / most + 1;
    return roundedUp((width - 1) / strips + 1, pixelsOfVectors);
}

/// The work memory holds, from its first 64-byte boundary, kernelSize slots of rows in whole blocks, then one extended
/// row. The column sums never leave the registers, so the extended row takes the slot that was counted for them,
/// and of the 12 * kernelSize bytes after it what both its ends need, 12 * (kernelSize - 1) at most, and 12 to
/// begin on a vector.
template <class T, int channels> class GaussianStrip {
  public:
    /// The strip's first column and its width.
    GaussianStrip(const GaussianRun<T>& run, int first, int width)
        : src_(run.src.shifted(static_cast<std::ptrdiff_t>(first) * channels)),
          size_(run.size),
          first_(first),
          kernelSize_(run.spec->kernelSize),
          radius_(run.spec->kernelSize >> 1),
          reach_(static_cast<std::ptrdiff_t>(radius_) * channels),
          count_(static_cast<std::ptrdiff_t>(width) * channels),
          weights_(gaussianHalfKernel(run.spec)),
          rowStage_(kernels::gaussianRow(radius_, channels)),
          horizontal_(horizontalBorder(run.border)),
          vertical_(verticalBorder(run.border)),
          begin_(horizontal_.memoryBefore ? -radius_ : std::max(-radius_, -first)),
          end_(horizontal_.memoryAfter ? width + radius_
                                       : width + std::min(radius_, size_.width - first - width)),
          endWithBorder_(width + radius_),
          slotLength_(roundedUp(count_, kernels::gaussianBlock)),
          slots_(alignedUp(reinterpret_cast<float*>(run.buffer), 64)),
          floats_(slots_ + kernelSize_ * slotLength_ + roundedUp(reach_, std::ptrdiff_t{4})) {
        std::fill(floats_ + count_ + reach_, floats_ + slotLength_ + reach_, 0.0F);
        const bool isConstant = horizontal_.kind == lumBorderConstant && !allSidesInMemory(run.border);
        for (int c = 0; c < channels; ++c) constant_[c] = isConstant ? run.borderValue[c] : T{};
        // Rows of floats need no copy where a block and its taps are all in them.
        if (std::is_same_v<T, Lum32f>) {
            const std::ptrdiff_t start = roundedUp(begin_ * channels + reach_, kernels::gaussianBlock);
            const std::ptrdiff_t blocks = (end_ * channels - reach_ - start) / kernels::gaussianBlock;
            if (blocks > 0) fromSource_ = {start, start + blocks * kernels::gaussianBlock};
        }
    }

    /// Filters row y, which may lie outside the region, into its slot of the ring.
    void loadRow(int y) {
        const int sourceRow = borderIndex(y, size_.height, vertical_);
        float* slot = slots_ + slotOf(y) * slotLength_;
        if (sourceRow == outsideConstant) {
            fillWithConstant(slot);
            return;
        }
        const T* row = src_.row(sourceRow);
        copyFloats(row);
        extendFloats(row, -radius_, begin_);
        extendFloats(row, end_, endWithBorder_);
        filterStretch(floats_, 0, fromSource_.first, slot);
        if constexpr (std::is_same_v<T, Lum32f>) filterStretch(row, fromSource_.first, fromSource_.end, slot);
        filterStretch(floats_, fromSource_.end, count_, slot);
    }

    /// The rows around row y of the region, all of them filled.
    kernels::GaussianRing around(int y) const { return {slots_, slotLength_, radius_, slotOf(y - radius_)}; }

    int radius() const { return radius_; }
    std::ptrdiff_t count() const { return count_; }
    const float* weights() const { return weights_; }

  private:
    /// Row -radius, the first of a run, is in slot 0.
    int slotOf(int y) const { return (y + radius_) % kernelSize_; }

    /// No filter runs along a constant row, since the kernel's sum is 1.
    void fillWithConstant(float* slot) const {
        float* const end = slot + slotLength_;
        for (const float* rowEnd = slot + count_; slot < rowEnd;)
            for (int c = 0; c < channels; ++c) *slot++ = constant_[c];
        std::fill(slot, end, 0.0F);
    }

    /// Converts the pixels of the region and of sides in memory, but for those that the row stage reads where they are.
    void copyFloats(const T* row) {
        std::ptrdiff_t rest = begin_ * channels;
        if (fromSource_.end > 0) {
            kernels::gaussianFloats(row + rest, fromSource_.first + reach_ - rest, floats_ + rest);
            rest = fromSource_.end - reach_;
        }
        kernels::gaussianFloats(row + rest, end_ * channels - rest, floats_ + rest);
    }

    /// Makes the pixels of sides that are not in memory.
    void extendFloats(const T* row, std::ptrdiff_t begin, std::ptrdiff_t end) {
        for (std::ptrdiff_t i = begin; i < end; ++i) {
            const int x = borderIndex(first_ + static_cast<int>(i), size_.width, horizontal_);
            float* out = floats_ + i * channels;
            if (x == outsideConstant) {
                std::copy_n(constant_, channels, out);
            } else {
                const T* pixel = row + (static_cast<std::ptrdiff_t>(x) - first_) * channels;
                for (int c = 0; c < channels; ++c) out[c] = pixel[c];
            }
        }
    }

    /// The stretch begins with a block; where it does not end with one, its row and the slot do.
    void filterStretch(const float* row, std::ptrdiff_t begin, std::ptrdiff_t end, float* slot) const {
        rowStage_(row + begin, end - begin, weights_, radius_, slot + begin);
    }

    /// Elements of a row, the strip's first at 0.
    struct Stretch {
        std::ptrdiff_t first = 0;
        std::ptrdiff_t end = 0;
    };

    Image<const T> src_;
    LumSize size_;
    int first_;
    int kernelSize_;
    int radius_;
    std::ptrdiff_t reach_;
    std::ptrdiff_t count_;
    const float* weights_;
    kernels::GaussianRow* rowStage_;
    AxisBorder horizontal_;
    AxisBorder vertical_;
    /// Pixels that are in memory, the strip's first at 0, as far as the strip's taps reach.
    std::ptrdiff_t begin_;
    std::ptrdiff_t end_;
    std::ptrdiff_t endWithBorder_;
    std::ptrdiff_t slotLength_;
    Stretch fromSource_;
    float* slots_;
    float* floats_;
    float constant_[channels];
};

} // namespace lum
