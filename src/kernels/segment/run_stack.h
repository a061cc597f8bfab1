// The runs of a flood fill whose neighbouring rows are still to be searched: last in, first out, in a block of
// fixed size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "frame/arena.h"

namespace lum::kernels {

/// A run of neighbouring pixels of a row, and the run that found it: its parent, whose row is y + dir.
struct Run {
    std::int32_t y;
    std::int32_t left;
    std::int32_t right;
    std::int32_t parentLeft;
    std::int32_t parentRight;
    std::int32_t dir;
};
static_assert(sizeof(Run) == 24);

/// Where the pixels next to a run lie, as search(y, begin, end, dir) for the columns begin .. end - 1 of a row: the row away from
/// the parent first, then the parent's row where the parent did not cover it. dir leads back from a run found there.
template <bool corners, class Search> void searchAround(const Run& run, int width, Search search) {
    const int from = corners && run.left > 0 ? run.left - 1 : run.left;
    const int end = corners && run.right + 1 < width ? run.right + 2 : run.right + 1;
    search(run.y - run.dir, from, end, run.dir);
    search(run.y + run.dir, from, run.parentLeft, -run.dir);
    search(run.y + run.dir, run.parentRight + 1, end, -run.dir);
}

/// A run whose parent covers no column.
constexpr Run runWithoutParent(int y, int left, int right, int dir) {
    return {y, left, right, right + 1, right, dir};
}

/// Records of six words while they fit. Where the next one would not, those that wait are shortened to three words:
/// a run that comes back without its parent searches the parent's columns too, all of which are filled, and so finds
/// the same runs in the same order.
///
/// Three words are enough. A floating-range fill has 16 bytes a pixel, and no pixel is in two runs. An exact fill has
/// 6 bytes a pixel, which is w / 2 runs a row, and only a row of odd width that holds (w + 1) / 2 waiting runs, all
/// single pixels, needs more. Such a full row was found by popped runs in the rows next to it, which are not full
/// themselves: a popped run takes the place of at least one waiting run and finds at most two pixels of a full row
/// where it is one pixel wide, one more than the waiting runs it replaces where it is wider. So of two rows that
/// meet, both full, each has a row at its other side that pays for it, and the average over the image stays at or
/// below w / 2 runs a row, with two runs to spare in the bytes that are no row's.
class RunStack {
  public:
    /// Records begin at the block's first multiple of 8 bytes.
    RunStack(unsigned char* block, std::size_t bytes)
        : start_(alignedUp(block, 8)), shortEnd_(start_), end_(start_), limit_(block + bytes) {}

    bool empty() const { return end_ == start_; }
    void clear() { end_ = shortEnd_ = start_; }

    /// The bytes that no record takes until the next push.
    std::span<unsigned char> unused() const { return {end_, limit_}; }

    void push(const Run& run) {
        if (left() < sizeof(Run)) shorten();
        if (left() < sizeof(Run)) {
            const ShortRun record = shortened(run);
            std::memcpy(end_, &record, sizeof record);
            shortEnd_ = end_ += sizeof record;
            return;
        }
        std::memcpy(end_, &run, sizeof run);
        end_ += sizeof run;
    }

    /// The last run pushed; the stack is not empty.
    Run pop() {
        if (end_ == shortEnd_) {
            ShortRun record;
            shortEnd_ = end_ -= sizeof record;
            std::memcpy(&record, end_, sizeof record);
            return record.y < 0 ? runWithoutParent(~record.y, record.left, record.right, -1)
                                : runWithoutParent(record.y, record.left, record.right, 1);
        }
        Run run;
        end_ -= sizeof run;
        std::memcpy(&run, end_, sizeof run);
        return run;
    }

  private:
    /// y is complemented where dir is -1.
    struct ShortRun {
        std::int32_t y;
        std::int32_t left;
        std::int32_t right;
    };

    static ShortRun shortened(const Run& run) { return {run.dir < 0 ? ~run.y : run.y, run.left, run.right}; }

    std::size_t left() const { return static_cast<std::size_t>(limit_ - end_); }

    /// Leaves room for about half as many bytes of records again, so that shortening costs little however often.
    void shorten() {
        for (const unsigned char* place = shortEnd_; place != end_; place += sizeof(Run)) {
            Run run;
            std::memcpy(&run, place, sizeof run);
            const ShortRun record = shortened(run);
            std::memcpy(shortEnd_, &record, sizeof record);
            shortEnd_ += sizeof record;
        }
        end_ = shortEnd_;
    }

    unsigned char* start_;
    /// Short records lie before this place, full ones after it.
    unsigned char* shortEnd_;
    unsigned char* end_;
    unsigned char* limit_;
};

} // namespace lum::kernels
