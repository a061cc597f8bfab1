#include "kernels/morph/mask.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "frame/arena.h"
#include "frame/instances.h"
#include "kernels/morph/blocks.h"
#include "kernels/morph/mask_plan.h"

namespace lum::kernels {
namespace {

/// Where a tap reads: a row, and the elements from the start of what belongs to it.
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
        const ExtendedImage<T>& src = run_.src;
        const std::ptrdiff_t cells = tapsOfMask(mask_, 1);
        const bool isSmall =
            cells <= mostTaps && cells <= tapsOfMask(mask_, classes_) + costOfLines * classes_;
        // Where no window leaves what can be read.
        const std::ptrdiff_t top = src.readable.top > 0 ? 0 : reachY_;
        const std::ptrdiff_t bottom = src.readable.bottom > 0 ? src.height : src.height - reachY_;
        const std::ptrdiff_t left = src.readable.left > 0 ? 0 : reachX_;
        const std::ptrdiff_t right = src.readable.right > 0 ? src.width : src.width - reachX_;
        if (!isSmall || top >= bottom || left >= right) return runRows(0, src.height);
        runRows(0, top);
        runDirectly(left, top, right, bottom);
        for (std::ptrdiff_t x = 0; x < src.width; x = x + 1 == left ? right : x + 1)
            if (x < left || x >= right) runColumn(x, top, bottom);
        runRows(bottom, src.height);
    }

  private:
    static constexpr int mostClasses = 8;
    static constexpr int mostChannels = 4;
    static constexpr int mostTaps = 192;
    /// What a class of lines costs, in taps.
    static constexpr int costOfLines = 3;

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

    /// Destination rows first .. last - 1, through lines of the source rows.
    void runRows(std::ptrdiff_t first, std::ptrdiff_t last) {
        if (first == last) return;
        for (std::ptrdiff_t x = 0; x < run_.src.width; x += stripWidth_)
            runStrip(x, std::min(stripWidth_, run_.src.width - x), first, last);
    }

    void runStrip(std::ptrdiff_t x, std::ptrdiff_t width, std::ptrdiff_t first, std::ptrdiff_t last) {
        for (std::ptrdiff_t i = 0; i < mask_.height - 1; ++i) prepareRow(first + i - reachY_, i, x, width);
        const bool fits = tapsOfMask(mask_, classes_) <= mostTaps;
        if (fits) {
            tapCount_ = 0;
            forEachTap([&](Tap tap) { taps_[tapCount_++] = tap; });
        }
        // The slot of the mask's first row; source rows go round.
        std::ptrdiff_t slot = 0;
        for (std::ptrdiff_t y = first; y < last; ++y) {
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
        takePlaces(places, dst, count, joinsDestination);
    }

    void takePlaces(const T* const* places, T* dst, std::ptrdiff_t count, bool joinsDestination) const {
        forEachBlock<T>(count, [=, this]<int N>(std::ptrdiff_t x) LUM_BLOCK_BODY {
            auto value = spread<N>(weakestFinite<op, T>);
            if (joinsDestination) value = take<N>(dst + x);
            for (int i = 0; i < tapCount_; ++i) value = stronger<op>(value, take<N>(places[i] + x));
            put(value, dst + x);
        });
    }

    /// A few places, in a loop without another one inside.
    template <int taps> static void takeFew(const T* const* places, T* dst, std::ptrdiff_t count) {
        const T* few[taps];
        std::copy_n(places, taps, few);
        forEachBlock<T>(count, [=]<int N>(std::ptrdiff_t x) LUM_BLOCK_BODY {
            auto value = take<N>(few[0] + x);
            if constexpr (std::is_floating_point_v<T>)
                value = stronger<op>(spread<N>(weakestFinite<op, T>), value);
#pragma GCC unroll 8
            for (int i = 1; i < taps; ++i) value = stronger<op>(value, take<N>(few[i] + x));
            put(value, dst + x);
        });
    }
    void takeDirect(const T* const* places, T* dst, std::ptrdiff_t count) const {
        switch (tapCount_) {
        case 2:
            return takeFew<2>(places, dst, count);
        case 3:
            return takeFew<3>(places, dst, count);
        case 4:
            return takeFew<4>(places, dst, count);
        case 5:
            return takeFew<5>(places, dst, count);
        case 6:
            return takeFew<6>(places, dst, count);
        default:
            return takePlaces(places, dst, count, false);
        }
    }

    /// The cells of the mask as taps into the source itself.
    template <class Visit> void forEachCell(Visit visit) const {
        for (std::ptrdiff_t row = 0; row < mask_.height; ++row)
            for (std::ptrdiff_t column = 0; column < mask_.width; ++column)
                if (mask_.cells[row * mask_.width + column] != 0) visit(row - reachY_, column - reachX_);
    }

    /// Pixels whose windows can be read as they lie.
    void runDirectly(std::ptrdiff_t left, std::ptrdiff_t top, std::ptrdiff_t right, std::ptrdiff_t bottom) {
        for (std::ptrdiff_t y = top; y < bottom; ++y) {
            const T* places[mostTaps];
            tapCount_ = 0;
            forEachCell([&](std::ptrdiff_t dy, std::ptrdiff_t dx) {
                places[tapCount_++] = run_.src.src.row(y + dy) + elements(left + dx);
            });
            takeDirect(places, run_.dst.row(y) + elements(left), elements(right - left));
        }
    }

    /// A column whose windows leave the readable columns, but not the rows.
    void runColumn(std::ptrdiff_t x, std::ptrdiff_t top, std::ptrdiff_t bottom) {
        T start[mostChannels];
        std::fill_n(start, mostChannels, weakestFinite<op, T>);
        tapCount_ = 0;
        forEachCell([&](std::ptrdiff_t dy, std::ptrdiff_t dx) {
            const std::ptrdiff_t column = run_.src.columnAt(x + dx);
            if (column != ExtendedImage<T>::noColumn)
                taps_[tapCount_++] = {dy, elements(column)};
            else
                for (int c = 0; c < run_.src.channels; ++c)
                    start[c] = stronger<op>(start[c], run_.src.values[c]);
        });
        for (std::ptrdiff_t y = top; y < bottom; ++y) {
            const T* const row = run_.src.src.row(y);
            T* const dst = run_.dst.row(y) + elements(x);
            for (int c = 0; c < run_.src.channels; ++c) {
                T value = start[c];
                for (int i = 0; i < tapCount_; ++i)
                    value = stronger<op>(value, Image<const T>{row, run_.src.src.step}.row(
                                                    taps_[i].row)[taps_[i].distance + c]);
                dst[c] = value;
            }
        }
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

LUM_INSTANCES(strongestOfMask, (MorphOp::dilate, Lum8u), (MorphOp::dilate, Lum16u), (MorphOp::dilate, Lum16s),
              (MorphOp::dilate, Lum32f), (MorphOp::erode, Lum8u), (MorphOp::erode, Lum16u),
              (MorphOp::erode, Lum16s), (MorphOp::erode, Lum32f));

} // namespace lum::kernels
