// Runs of similar pixels in a row, and their contacts with those of the row above, as bits of 32 pixels.
#pragma once

#include <cstdint>

#include "kernels/segment/joined_runs.h"
#include "kernels/segment/similar_pixels.h"

namespace lum::kernels {

/// Runs of similar neighbours, and of pixels that belong to no region. Contacts leave out what the pixels to the left
/// of them say already.
struct SimilarRunBits : RunBits {
    /// Pixels that belong to a region.
    std::uint32_t belonging;
};

/// Walks along a row and the one above it, if any. Pixels are asked for from left to right.
template <class T> class SimilarRuns {
  public:
    SimilarRuns(const SimilarPixels<T>& rule, const T* row, const T* above)
        : rule_(rule), row_(row), above_(above) {}

    /// The pixels x .. x + count - 1, one at a time; count is at most 32.
    SimilarRunBits scalarBits(int x, int count) {
        SimilarRunBits bits{};
        for (int i = 0; i < count; ++i) {
            const std::uint32_t bit = 1U << i;
            const bool isStart = startsRun(row_, x + i);
            const bool isStartAbove = above_ != nullptr && startsRun(above_, x + i);
            const bool touches = above_ != nullptr && rule_.belongs(row_[x + i]) &&
                                 rule_.belongs(above_[x + i]) && rule_.similar(row_[x + i], above_[x + i]);
            if (isStart) bits.starts |= bit;
            if (isStartAbove) bits.startsAbove |= bit;
            if (rule_.belongs(row_[x + i])) bits.belonging |= bit;
            if (touches && (isStart || isStartAbove || !touchedBefore_)) bits.contacts |= bit;
            touchedBefore_ = touches;
        }
        return bits;
    }

    /// The same for 32 pixels, of which the first is not the row's; the last `count` of them are new.
    SimilarRunBits vectorBits(int x, int count) {
        const int known = 32 - count;
        SimilarRunBits bits{};
        bits.belonging = rule_.belonging(row_ + x);
        bits.starts = startBits(row_, x, bits.belonging) >> known;
        if (above_ != nullptr) {
            const std::uint32_t belongingAbove = rule_.belonging(above_ + x);
            bits.startsAbove = startBits(above_, x, belongingAbove) >> known;
            const std::uint32_t touching =
                (bits.belonging & belongingAbove & rule_.similarTo(row_ + x, above_ + x)) >> known;
            const std::uint32_t before = touching << 1 | (touchedBefore_ ? 1U : 0U);
            bits.contacts = touching & (bits.starts | bits.startsAbove | ~before);
            touchedBefore_ = (touching >> (count - 1) & 1U) != 0;
        }
        bits.belonging >>= known;
        return bits;
    }

  private:
    bool startsRun(const T* row, int x) const {
        if (x == 0) return true;
        const bool belongs = rule_.belongs(row[x]);
        return belongs != rule_.belongs(row[x - 1]) || (belongs && !rule_.similar(row[x], row[x - 1]));
    }

    std::uint32_t startBits(const T* row, int x, std::uint32_t belonging) const {
        const std::uint32_t before = belonging << 1 | (rule_.belongs(row[x - 1]) ? 1U : 0U);
        return (belonging ^ before) | (belonging & ~rule_.similarTo(row + x, row + x - 1));
    }

    SimilarPixels<T> rule_;
    const T* row_;
    const T* above_;
    bool touchedBefore_ = false;
};

} // namespace lum::kernels
