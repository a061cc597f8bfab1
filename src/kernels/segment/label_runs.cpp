#include "kernels/segment/label_runs.h"

#include <algorithm>
#include <utility>

#include "frame/arena.h"
#include "kernels/segment/joined_runs.h"
#include "kernels/segment/row_runs.h"
#include "kernels/segment/write_run.h"

namespace lum::kernels {
namespace {

struct RowRun {
    std::int32_t left;
    std::int32_t end;
};

/// The regions of an image, from its runs row by row; in the end, the label of each run.
class Regions {
  public:
    Regions(unsigned char* block, LumSize size, Connected connected)
        : reach_(connected == Connected::eight ? 1 : 0) {
        Arena arena(block);
        place(arena, size);
    }

    static std::size_t bytes(LumSize size) {
        Regions regions;
        Arena arena(nullptr);
        regions.place(arena, size);
        return alignof(RowRun) - 1 + arena.used();
    }

    template <class T> void addRow(const T* row, int width) {
        const RunNumber first = count_;
        RowRun* above = above_;
        vectorRuns(row, width, [&](int left, int end) {
            const RunNumber run = count_++;
            row_[run - first] = {left, end};
            parents_[run] = run;
            // A run above that ends before this one touches none after it.
            while (above != aboveEnd_ && above->end <= left - reach_) ++above;
            for (const RowRun* other = above; other != aboveEnd_ && other->left - reach_ < end; ++other)
                join(parents_, aboveFirst_ + static_cast<RunNumber>(other - above_), run);
        });
        // Of a single row nothing is above.
        if (otherRow_ == nullptr) return;
        aboveFirst_ = first;
        above_ = row_;
        aboveEnd_ = row_ + (count_ - first);
        std::swap(row_, otherRow_);
    }

    /// Turns parents into labels; gives the number of regions.
    std::size_t label(Labels labels) {
        std::size_t regions = 0;
        for (RunNumber run = 0; run < count_; ++run) {
            const RunNumber parent = parents_[run];
            if (parent == run) {
                parents_[run] = static_cast<RunNumber>(labels.next());
                ++regions;
            } else {
                parents_[run] = parents_[parent];
            }
        }
        return regions;
    }

    /// After label(): those of the runs, in raster order.
    const RunNumber* labels() const { return parents_; }

  private:
    Regions() = default;

    /// A row has at most (width + 1) / 2 runs.
    void place(Arena& arena, LumSize size) {
        const std::size_t runsOfRow = (static_cast<std::size_t>(size.width) + 1) / 2;
        arena.align(alignof(RowRun));
        row_ = arena.allocate<RowRun>(runsOfRow);
        otherRow_ = size.height > 1 ? arena.allocate<RowRun>(runsOfRow) : nullptr;
        parents_ = arena.allocate<RunNumber>(runsOfRow * static_cast<std::size_t>(size.height));
    }

    int reach_ = 0;
    RowRun* row_ = nullptr;
    RowRun* otherRow_ = nullptr;
    RunNumber* parents_ = nullptr;
    RunNumber count_ = 0;
    RunNumber aboveFirst_ = 0;
    RowRun* above_ = nullptr;
    RowRun* aboveEnd_ = nullptr;
};

} // namespace

std::size_t labelRunsBytes(LumSize size) { return Regions::bytes(size); }

template <class Src, class Dst>
std::size_t labelRuns(Image<const Src> src, Image<Dst> dst, LumSize size, Connected connected, Labels labels,
                      unsigned char* block) {
    Regions regions(block, size, connected);
    for (int y = 0; y < size.height; ++y) regions.addRow(src.row(y), size.width);
    const std::size_t count = regions.label(labels);
    const RunNumber* label = regions.labels();
    for (int y = 0; y < size.height; ++y) {
        Dst* row = dst.row(y);
        int written = 0;
        // In place, a run is written once it has been read to its end, and with no zeros.
        vectorRuns(src.row(y), size.width, [&](int left, int end) {
            writeRun(row + written, left - written, Dst{0});
            writeRun(row + left, end - left, static_cast<Dst>(*label++));
            written = end;
        });
        writeRun(row + written, size.width - written, Dst{0});
    }
    return count;
}

template std::size_t labelRuns(Image<const Lum8u>, Image<Lum8u>, LumSize, Connected, Labels, unsigned char*);
template std::size_t labelRuns(Image<const Lum16u>, Image<Lum16u>, LumSize, Connected, Labels,
                               unsigned char*);
template std::size_t labelRuns(Image<const Lum8u>, Image<Lum32s>, LumSize, Connected, Labels, unsigned char*);

} // namespace lum::kernels
