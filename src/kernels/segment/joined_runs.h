// Runs of pixels that have been found to be of one region (Galler and Fischer, An improved equivalence algorithm,
// Communications of the ACM 7, 1964).
#pragma once

#include <algorithm>
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
    /// `parents` has room for `most` runs, no fewer than there are.
    JoinedRuns(RunNumber* parents, std::uint64_t most)
        : parents_(parents), most_(static_cast<RunNumber>(std::min<std::uint64_t>(most, UINT32_MAX))) {}

    RunNumber count() const { return count_; }
    RunNumber* parents() { return parents_; }

    void beginRow() {
        nextAbove_ = firstOfRow_;
        firstOfRow_ = count_;
    }

    void add(const RunBits& bits) {
        const RunNumber next = count_;
        count_ += onesOf(bits.starts);
        // Many at once, as a branch on how many runs begin here could not be predicted.
        if (count_ > ready_) {
            const RunNumber first = ready_;
            ready_ = most_ - count_ > 64 ? count_ + 64 : most_;
            for (RunNumber run = first; run < ready_; ++run) parents_[run] = run;
        }
        const RunNumber nextAbove = nextAbove_;
        Contact last = last_;
        for (std::uint32_t rest = bits.contacts; rest != 0; rest &= rest - 1) {
            const std::uint32_t upTo = rest ^ (rest - 1);
            const RunNumber run = next + onesOf(bits.starts & upTo) - 1;
            const RunNumber above = rootOf(nextAbove + onesOf(bits.startsAbove & upTo) - 1);
            // The contacts of a run follow one another; before the first one it is its own root.
            const RunNumber own = run == last.run ? last.root : run;
            last = {run, std::min(above, own)};
            parents_[std::max(above, own)] = last.root;
        }
        last_ = last;
        nextAbove_ += onesOf(bits.startsAbove);
    }

  private:
    /// The way to the root is halved for later calls. Most runs are roots, or next to one.
    RunNumber rootOf(RunNumber run) {
        RunNumber parent = parents_[run];
        for (RunNumber next = parents_[parent]; next != parent; next = parents_[parent]) {
            parents_[run] = next;
            run = next;
            parent = parents_[run];
        }
        return parent;
    }

    /// The last run that has touched one above, and its root.
    struct Contact {
        RunNumber run;
        RunNumber root;
    };

    RunNumber* parents_;
    RunNumber most_;
    RunNumber count_ = 0;
    /// Runs that are their own parents so far, or have been.
    RunNumber ready_ = 0;
    RunNumber firstOfRow_ = 0;
    Contact last_ = {UINT32_MAX, UINT32_MAX};
    /// Of the row above, the first run that begins in the pixels to come.
    RunNumber nextAbove_ = 0;
};

} // namespace lum::kernels
