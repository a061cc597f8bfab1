// The runs of pixels other than 0 in a row, and their contacts with those of the row above.
#pragma once

#include <bit>
#include <cstdint>

#include "frame/lanes_reduce.h"
#include "kernels/segment/joined_runs.h"
#include "lumcv/types.h"

namespace lum::kernels {

/// Calls emit(left, end) for each run, from left to right; one pixel at a time.
template <class T, class Emit> inline void scalarRuns(const T* row, int width, Emit emit) {
    for (int x = 0; x < width; ++x) {
        if (row[x] == 0) continue;
        const int left = x;
        while (x < width && row[x] != 0) ++x;
        emit(left, x);
    }
}

/// A bit for each of 32 pixels, set where it is not 0.
template <class T> inline std::uint32_t setBits(const T* row) {
    return ~signBits(load<32>(row) == zeros<T, 32>());
}

/// The same for fewer than 32 pixels.
template <class T> inline std::uint32_t setBits(const T* row, int count) {
    std::uint32_t bits = 0;
    for (int i = 0; i < count; ++i) bits |= (row[i] != 0 ? 1U : 0U) << i;
    return bits;
}

/// Calls block(bits, x) for the pixels of a row, 32 at a time, the last of them with zeros after the row's end.
template <class T, class Block> inline void forEachBlock(const T* row, int width, Block block) {
    int x = 0;
    // whole blocks
    for (; x <= width - 32; x += 32) block(setBits(row + x), x);
    // tail: masked last vector, without the pixels that are known
    if (const int left = width - x; left > 0)
        block(width >= 32 ? setBits(row + width - 32) >> (32 - left) : setBits(row, left), x);
}

/// As scalarRuns(), a block at a time; Lum8u and Lum16u.
template <class T, class Emit> inline void vectorRuns(const T* row, int width, Emit emit) {
    int left = -1; // of the run that is open
    std::uint32_t last = 0;
    forEachBlock(row, width, [&](std::uint32_t bits, int x) {
        std::uint32_t changes = bits ^ (bits << 1 | last);
        last = bits >> 31;
        for (; changes != 0; changes &= changes - 1) {
            const int place = x + std::countr_zero(changes);
            if (left < 0) {
                left = place;
            } else {
                emit(left, place);
                left = -1;
            }
        }
    });
    if (left >= 0) emit(left, width);
}

/// The contacts of runs in two rows, from left to right. Runs touch by their edges, or by their corners as well.
class RunContacts {
  public:
    explicit RunContacts(bool corners) : corners_(corners) {}

    /// The next 32 pixels of a row and of the one above, set where they are not 0.
    RunBits of(std::uint32_t row, std::uint32_t above) {
        const std::uint32_t rowBefore = row << 1 | lastOfRow_;
        const std::uint32_t aboveBefore = above << 1 | lastAbove_;
        lastOfRow_ = row >> 31;
        lastAbove_ = above >> 31;
        // Two runs have pixels in common in one piece at most.
        std::uint32_t contacts = row & above & ~(rowBefore & aboveBefore);
        // Where one begins right after the other has ended they touch by a corner.
        if (corners_)
            contacts |= (row & ~rowBefore & ~above & aboveBefore) | (~row & rowBefore & above & ~aboveBefore);
        return {row & ~rowBefore, above & ~aboveBefore, contacts};
    }

  private:
    bool corners_;
    std::uint32_t lastOfRow_ = 0;
    std::uint32_t lastAbove_ = 0;
};

} // namespace lum::kernels
