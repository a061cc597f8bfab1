// A strip of columns on its way through the Gaussian filter: the source rows as the ring takes them, in floats
// filtered along x, with rows and columns outside the region as the border has them.
#pragma once

#include <algorithm>
#include <type_traits>

#include "filter/bordered_row.h"
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

/// The columns that a strip takes of a region: as many as leave its ring and one extended row in a first-level cache,
/// but not so few that the ends of the strips count. Strips are alike, and begin on vectors of the result where its
/// rows do. Bytes are filtered so fast that a ring in 32 KiB pays, which all such caches have; others take 48.
template <class T> int gaussianStripWidth(int width, int channels, int kernelSize) {
    constexpr int kibibytes = std::is_same_v<kernels::GaussianSource<T>, Lum8u> ? 32 : 48;
    constexpr int floatsInCache = kibibytes * 1024 / sizeof(float);
    constexpr int fewestElements = 512;
    constexpr int pixelsOfVectors = 64;
    const int most = std::max(floatsInCache / (kernelSize + 1), fewestElements) / channels;
    const int strips = (width - 1) / most + 1;
    return roundedUp((width - 1) / strips + 1, pixelsOfVectors);
}

/// The work memory holds, from its first 64-byte boundary, kernelSize slots of rows in whole blocks, then one extended
/// row. The column sums never leave the registers, so the extended row takes the slot that was counted for them,
/// and of the 12 * kernelSize bytes after it what both its ends need, 12 * (kernelSize - 1) at most, and 12 to
/// begin on a vector.
template <class T, int channels> class GaussianStrip {
    using Source = kernels::GaussianSource<T>;

  public:
    /// The strip's first column and its width.
    GaussianStrip(const GaussianRun<T>& run, int first, int width)
        : src_(run.src.shifted(static_cast<std::ptrdiff_t>(first) * channels)),
          height_(run.size.height),
          kernelSize_(run.spec->kernelSize),
          radius_(run.spec->kernelSize >> 1),
          reach_(static_cast<std::ptrdiff_t>(radius_) * channels),
          count_(static_cast<std::ptrdiff_t>(width) * channels),
          weights_(gaussianHalfKernel(run.spec)),
          rowStage_(kernels::gaussianRow<Source>(radius_, channels)),
          vertical_(verticalBorder(run.border)),
          constant_(run.borderValue),
          bordered_({run.size.width, first, width, radius_, radius_}, channels, horizontalBorder(run.border),
                    run.borderValue),
          width_(width),
          slotLength_(roundedUp(count_, kernels::gaussianBlock)),
          slots_(alignedUp(reinterpret_cast<float*>(run.buffer), 64)),
          extended_(reinterpret_cast<Source*>(slots_ + kernelSize_ * slotLength_) +
                    roundedUp(reach_, static_cast<std::ptrdiff_t>(16 / sizeof(Source)))) {
        std::fill(extended_ + count_ + reach_, extended_ + slotLength_ + reach_, Source{0});
        // Rows of what the stage reads need no copy where blocks and all their taps are in them.
        if (std::is_same_v<T, Source>) {
            const int start = roundedUp(bordered_.begin() + radius_, pixelsOfBlocks);
            const int blocks = (bordered_.end() - radius_ - start) / pixelsOfBlocks;
            if (blocks > 0) fromSource_ = {start, start + blocks * pixelsOfBlocks};
        }
    }

    /// Filters row y, which may lie outside the region, into its slot of the ring.
    void loadRow(int y) {
        const int sourceRow = borderIndex(y, height_, vertical_);
        float* slot = slots_ + slotOf(y) * slotLength_;
        if (sourceRow == outsideConstant) {
            fillWithConstant(slot);
            return;
        }
        const T* row = src_.row(sourceRow);
        filterCopied(row, 0, fromSource_.first, slot);
        if constexpr (std::is_same_v<T, Source>) filterStretch(row, fromSource_.first, fromSource_.end, slot);
        filterCopied(row, fromSource_.end, width_, slot);
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
        for (std::ptrdiff_t i = 0; i < count_; ++i)
            slot[kernels::gaussianPlace<T>(i, count_)] = constant_[i % channels];
        std::fill(slot + count_, slot + slotLength_, 0.0F);
    }

    /// Filters pixels `first` to `end` - 1 from a copy of what they and their taps are.
    void filterCopied(const T* row, int first, int end, float* slot) {
        if (first == end) return;
        bordered_.write(row, first - radius_, end + radius_, extended_ + (first - radius_) * channels);
        filterStretch(extended_, first, end, slot);
    }

    /// The stretch begins with a block; where it does not end with one, its row and the slot do.
    void filterStretch(const Source* row, int first, int end, float* slot) const {
        rowStage_(row + first * channels, (end - first) * channels, weights_, radius_,
                  slot + first * channels);
    }

    /// As many pixels are whole blocks of any number of channels, placed alike whatever the length of the row.
    static constexpr int pixelsOfBlocks = std::max<int>(kernels::gaussianBlock, vectorBytes / sizeof(Source));

    /// Pixels of a row, the strip's first at 0.
    struct Stretch {
        int first = 0;
        int end = 0;
    };

    Image<const T> src_;
    int height_;
    int kernelSize_;
    int radius_;
    std::ptrdiff_t reach_;
    std::ptrdiff_t count_;
    const float* weights_;
    kernels::GaussianRow<Source>* rowStage_;
    AxisBorder vertical_;
    const T* constant_;
    BorderedRow<T> bordered_;
    int width_;
    std::ptrdiff_t slotLength_;
    Stretch fromSource_;
    float* slots_;
    Source* extended_;
};

} // namespace lum
