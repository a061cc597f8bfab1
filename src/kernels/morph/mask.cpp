#include "kernels/morph/mask.h"

#include <algorithm>
#include <cstdint>

#include "frame/arena.h"
#include "kernels/morph/blocks.h"
#include "kernels/morph/mask_plan.h"

namespace lum::kernels {
namespace {

/// Where a tap reads: a mask row, and the bytes from the start of the lines that belong to the source row under it.
struct Tap {
    std::ptrdiff_t row;
    std::ptrdiff_t distance;
};

template <MorphOp op, class T> class Runner {
  public:
    explicit Runner(const MaskRun<T>& run)
        : run_(run), mask_(run.mask), reachX_((mask_.width - 1) / 2), reachY_((mask_.height - 1) / 2) {
        divideWork();
    }

    void run() {
        for (std::ptrdiff_t x = 0; x < run_.src.width; x += stripWidth_)
            runStrip(x, std::min(stripWidth_, run_.src.width - x));
    }

  private:
    static constexpr int mostClasses = 8;
    static constexpr int mostTaps = 192;

    std::ptrdiff_t elements(std::ptrdiff_t pixels) const { return run_.src.elements(pixels); }

    /// As many classes as pay, as long as strips are wide against the columns that neighbouring strips share.
    void divideWork() {
        const std::ptrdiff_t width = run_.src.width;
        for (classes_ = bestClasses(mask_, mostClasses);; --classes_) {
            const auto elementsOfLine = static_cast<std::ptrdiff_t>(
                run_.workBytes / (static_cast<std::size_t>(classes_) * mask_.height * sizeof(T)));
            stripWidth_ = std::min(width, elementsOfLine / run_.src.channels - (mask_.width - 1));
            if (classes_ == 1 || stripWidth_ >= std::min(width, 4 * mask_.width)) break;
        }
        lineElements_ = elements(stripWidth_ + mask_.width - 1);
    }

    T* line(std::ptrdiff_t slot, int k) const {
        return static_cast<T*>(run_.work) + (slot * classes_ + k) * lineElements_;
    }

    void runStrip(std::ptrdiff_t x, std::ptrdiff_t width) {
        for (std::ptrdiff_t i = 0; i < mask_.height - 1; ++i) prepareRow(i - reachY_, i, x, width);
        const bool fits = tapsOfMask(mask_, classes_) <= mostTaps;
        if (fits) {
            tapCount_ = 0;
            forEachTap([&](Tap tap) { taps_[tapCount_++] = tap; });
        }
        // The slot of the mask's first row; source rows go round.
        std::ptrdiff_t slot = 0;
        for (std::ptrdiff_t y = 0; y < run_.src.height; ++y) {
            const std::ptrdiff_t lastSlot = slot == 0 ? mask_.height - 1 : slot - 1;
            prepareRow(y + reachY_, lastSlot, x, width);
            T* const dst = run_.dst.row(y) + elements(x);
            if (fits)
                takeTaps(slot, dst, elements(width), false);
            else
                takeInBatches(slot, dst, elements(width));
            slot = slot == mask_.height - 1 ? 0 : slot + 1;
        }
    }

    /// The lines of a source row for the strip at x.
    void prepareRow(std::ptrdiff_t y, std::ptrdiff_t slot, std::ptrdiff_t x, std::ptrdiff_t width) {
        std::ptrdiff_t count = width + mask_.width - 1;
        run_.src.copyRow(y, x - reachX_, count, line(slot, 0));
        if constexpr (std::is_floating_point_v<T>) {
            T* const row = line(slot, 0);
            forEachBlock<T>(elements(count), [=]<int N>(std::ptrdiff_t i) LUM_BLOCK_BODY {
                put(stronger<op>(spread<N>(weakestFinite<op, T>), take<N>(row + i)), row + i);
            });
        }
        for (int k = 1; k < classes_; ++k) {
            const std::ptrdiff_t half = std::ptrdiff_t{1} << (k - 1);
            count -= half;
            if (count <= 0) return;
            const T* const from = line(slot, k - 1);
            const T* const ahead = from + elements(half);
            T* const to = line(slot, k);
            forEachBlock<T>(elements(count), [=]<int N>(std::ptrdiff_t i) LUM_BLOCK_BODY {
                put(stronger<op>(take<N>(from + i), take<N>(ahead + i)), to + i);
            });
        }
    }

    template <class Visit> void forEachTap(Visit visit) const {
        forEachRun(mask_, [&](std::ptrdiff_t row, std::ptrdiff_t column, std::ptrdiff_t length) {
            const int k = classOfRun(length, classes_);
            const std::ptrdiff_t window = std::ptrdiff_t{1} << k;
            for (std::ptrdiff_t i = 0; i < length; i += window) {
                const std::ptrdiff_t first = column + std::min(i, length - window);
                visit(Tap{row, k * lineElements_ + elements(first)});
            }
        });
    }

    /// A mask of more taps than are kept is taken in parts, each joined with what the destination holds.
    void takeInBatches(std::ptrdiff_t slot, T* dst, std::ptrdiff_t count) {
        tapCount_ = 0;
        bool isLater = false;
        forEachTap([&](Tap tap) {
            if (tapCount_ == mostTaps) {
                takeTaps(slot, dst, count, isLater);
                isLater = true;
                tapCount_ = 0;
            }
            taps_[tapCount_++] = tap;
        });
        takeTaps(slot, dst, count, isLater);
    }

    void takeTaps(std::ptrdiff_t slot, T* dst, std::ptrdiff_t count, bool joinsDestination) const {
        const T* places[mostTaps];
        for (int i = 0; i < tapCount_; ++i) {
            std::ptrdiff_t place = slot + taps_[i].row;
            if (place >= mask_.height) place -= mask_.height;
            places[i] = line(place, 0) + taps_[i].distance;
        }
        forEachBlock<T>(count, [&]<int N>(std::ptrdiff_t x) LUM_BLOCK_BODY {
            auto value = spread<N>(weakestFinite<op, T>);
            if (joinsDestination) value = take<N>(dst + x);
            for (int i = 0; i < tapCount_; ++i) value = stronger<op>(value, take<N>(places[i] + x));
            put(value, dst + x);
        });
    }

    const MaskRun<T>& run_;
    const Mask mask_;
    const std::ptrdiff_t reachX_, reachY_;
    int classes_ = 1;
    std::ptrdiff_t stripWidth_ = 0;
    std::ptrdiff_t lineElements_ = 0;
    Tap taps_[mostTaps];
    int tapCount_ = 0;
};

} // namespace

template <MorphOp op, class T> void strongestOfMask(const MaskRun<T>& run) { Runner<op, T>(run).run(); }

template void strongestOfMask<MorphOp::dilate>(const MaskRun<Lum8u>&);
template void strongestOfMask<MorphOp::dilate>(const MaskRun<Lum16u>&);
template void strongestOfMask<MorphOp::dilate>(const MaskRun<Lum16s>&);
template void strongestOfMask<MorphOp::dilate>(const MaskRun<Lum32f>&);
template void strongestOfMask<MorphOp::erode>(const MaskRun<Lum8u>&);
template void strongestOfMask<MorphOp::erode>(const MaskRun<Lum16u>&);
template void strongestOfMask<MorphOp::erode>(const MaskRun<Lum16s>&);
template void strongestOfMask<MorphOp::erode>(const MaskRun<Lum32f>&);

} // namespace lum::kernels
