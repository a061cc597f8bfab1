// A region that grows in a map of bits, by whole rows: downwards, upwards and again, until nothing more is reached.
#pragma once

#include <cstddef>
#include <cstdint>

#include "lumcv/types.h"

namespace lum::kernels {

/// A bit for each of 64 neighbouring pixels of a row, the first lowest.
using PixelBits = std::uint64_t;

struct GrownRegion {
    std::int64_t area;
    /// Runs of pixels in its rows.
    std::int64_t runs;
    int top;
    int bottom;
    int left;
    int right;
};

/// Writes the words begin .. end - 1 of a row, a bit for each pixel, set for members; zeros after the row's end.
struct MemberRows {
    void (*read)(const void* image, int y, int begin, int end, PixelBits* words);
    const void* image;
};

/// Every sweep takes the rows that have grown since the last one, from the first to the last word that has. A region of
/// many branches, such as a spiral, takes as many sweeps as it changes direction, so growth may give up.
class RegionSweeps {
  public:
    /// Bytes of the block, whose address needs no alignment.
    static std::uint64_t bytes(LumSize size);

    RegionSweeps(unsigned char* block, LumSize size, bool corners, MemberRows members);

    /// A run that no member touches on its row; left to right, inclusive.
    void add(int y, int left, int right);

    /// Adds the members that the runs reach; false where that takes more than a few sweeps over the image.
    bool grow();

    /// After add().
    GrownRegion region() const;

    /// The pixels of a row: words for every pixel, and zeros after its end.
    PixelBits* row(std::ptrdiff_t y) const { return region_ + y * (words_ + 1); }

  private:
    /// Words of a row, the first and the end; empty where the first is not before the end.
    struct Range {
        std::int32_t begin;
        std::int32_t end;

        void widen(int otherBegin, int otherEnd) {
            begin = begin < otherBegin ? begin : otherBegin;
            end = end > otherEnd ? end : otherEnd;
        }
        bool empty() const { return begin >= end; }
    };
    struct RowState {
        /// What has grown since the row below, and the one above, was searched from here.
        Range toDown;
        Range toUp;
        /// Words of which the members are known.
        Range read;
    };

    const PixelBits* membersOf(int y, Range range);
    template <int step> bool sweep();
    template <bool corners> void search(int from, int to, Range range);
    void growAcrossWords(int y, Range& grown);
    void markGrown(int y, Range range);

    static constexpr Range none{INT32_MAX, 0};

    LumSize size_;
    bool corners_;
    MemberRows source_;
    /// Words of a row; whole vectors.
    std::ptrdiff_t words_;
    PixelBits* members_;
    /// Rows with a word of zeros before and after each.
    PixelBits* region_;
    /// What any row has in these columns.
    PixelBits* columns_;
    RowState* states_;
    /// Rows that have grown and are to be searched from.
    Range down_ = none;
    Range up_ = none;
    /// Rows and words that have grown ever.
    Range rows_ = none;
    Range used_ = none;
    std::int64_t allowed_;
};

} // namespace lum::kernels
