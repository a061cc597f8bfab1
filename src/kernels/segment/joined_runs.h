// Runs of pixels that have been found to be of one region (Galler and Fischer, An improved equivalence algorithm,
// Communications of the ACM 7, 1964).
#pragma once

#include <bit>
#include <cstdint>

namespace lum::kernels {

/// Runs are numbered in raster order, in 32 bits, which more than 2^32 pixels have room in.
using RunNumber = std::uint32_t;

/// How many bits are set.
inline std::uint32_t onesOf(std::uint32_t bits) {
#ifdef __POPCNT__
    return static_cast<std::uint32_t>(std::popcount(bits));
#else
    // Sums of neighbouring bits, pairs and fours; the product adds the bytes.
    bits -= bits >> 1 & 0x55555555U;
    bits = (bits & 0x33333333U) + (bits >> 2 & 0x33333333U);
    return ((bits + (bits >> 4)) & 0x0F0F0F0FU) * 0x01010101U >> 24;
#endif
}

/// A bit for each of up to 32 neighbouring pixels of a row, the first lowest.
struct RunBits {
    /// Pixels that begin a run, in the row and in the one above it.
    std::uint32_t starts;
    std::uint32_t startsAbove;
    /// Where the last run that has begun up to here, in each of the two rows, is of one region with the other.
    std::uint32_t contacts;
};

/// The runs of an image, row by row and from left to right. A run's parent is itself or an earlier run, so that the first
/// run of a region is its root.
class JoinedRuns {
  public:
    /// `parents` has room for every run.
    explicit JoinedRuns(RunNumber* parents) : parents_(parents) {}

    RunNumber count() const { return count_; }
    RunNumber* parents() { return parents_; }

    void beginRow() {
        nextAbove_ = firstOfRow_;
        firstOfRow_ = count_;
    }

    void add(const RunBits& bits) {
        const RunNumber next = count_;
        count_ += onesOf(bits.starts);
        for (RunNumber run = next; run < count_; ++run) parents_[run] = run;
        for (std::uint32_t rest = bits.contacts; rest != 0; rest &= rest - 1) {
            const std::uint32_t upTo = rest ^ (rest - 1);
            join(nextAbove_ + onesOf(bits.startsAbove & upTo) - 1, next + onesOf(bits.starts & upTo) - 1);
        }
        nextAbove_ += onesOf(bits.startsAbove);
    }

  private:
    /// The way to the root is halved for later calls.
    RunNumber rootOf(RunNumber run) {
        while (parents_[run] != run) {
            parents_[run] = parents_[parents_[run]];
            run = parents_[run];
        }
        return run;
    }

    /// Makes one region of those of two runs, the first of which is in the row above.
    void join(RunNumber above, RunNumber run) {
        above = rootOf(above);
        run = rootOf(run);
        if (above < run)
            parents_[run] = above;
        else
            parents_[above] = run;
    }

    RunNumber* parents_;
    RunNumber count_ = 0;
    RunNumber firstOfRow_ = 0;
    /// Of the row above, the first run that begins in the pixels to come.
    RunNumber nextAbove_ = 0;
};

} // namespace lum::kernels
