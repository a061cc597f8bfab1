#include "kernels/distance/true_distance.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "frame/lanes_reduce.h"

namespace lum::kernels {
namespace {

constexpr int blockPixels = 16;
constexpr float farthest = std::numeric_limits<float>::max();

/// Indices become floats before they are squared, so that no size overflows.
float square(Lum32s index) {
    const auto value = static_cast<float>(index);
    return value * value;
}

/// Steps to the nearest 0 below, the pixel's own row included, kept as bits of the destination; the height or more
/// where there is none.
void countFromBelowScalar(Image<const Lum8u> src, Image<float> dst, LumSize size) {
    for (int x = 0; x < size.width; ++x) {
        Lum32s steps = size.height - 1;
        for (int y = size.height - 1; y >= 0; --y) {
            steps = src.row(y)[x] == 0 ? 0 : steps + 1;
            dst.row(y)[x] = std::bit_cast<float>(steps);
        }
    }
}

/// Squared distances along the columns from the steps below, and from those above, which become those of this row.
void squareRowScalar(const float* below, Lum32s* above, float* squared, int begin, LumSize size) {
    for (int x = begin; x < size.width; ++x) {
        above[x] = std::min(above[x] + 1, std::bit_cast<Lum32s>(below[x]));
        squared[x] = above[x] < size.height ? square(above[x]) : farthest;
    }
}

/// One row of the steps from below; `next` is that of the row below, null in the last row.
void countFromBelow(const Lum8u* src, const float* next, float* dst, LumSize size) {
    const auto ones = broadcast<blockPixels>(Lum32s{1});
    const auto rows = broadcast<blockPixels>(size.height);
    const auto block = [&](int x) {
        const auto measured = widen<Lum32s>(load<blockPixels>(src + x)) != zeros<Lum32s, blockPixels>();
        const auto steps = next == nullptr ? rows : bitsAs<Lum32s>(load<blockPixels>(next + x)) + ones;
        store(bitsAs<float>(steps & measured), dst + x);
    };
    int x = 0;
    for (; x <= size.width - blockPixels; x += blockPixels) block(x);
    // tail: scalar
    for (; x < size.width; ++x) {
        const Lum32s steps = next == nullptr ? size.height : std::bit_cast<Lum32s>(next[x]) + 1;
        dst[x] = std::bit_cast<float>(src[x] == 0 ? 0 : steps);
    }
}

void squareRow(const float* below, Lum32s* above, float* squared, LumSize size) {
    const auto ones = broadcast<blockPixels>(Lum32s{1});
    const auto rows = broadcast<blockPixels>(size.height);
    int x = 0;
    for (; x <= size.width - blockPixels; x += blockPixels) {
        const auto steps =
            min(load<blockPixels>(above + x) + ones, bitsAs<Lum32s>(load<blockPixels>(below + x)));
        store(steps, above + x);
        const auto distance = toFloat(steps);
        store(select(steps < rows, distance * distance, broadcast<blockPixels>(farthest)), squared + x);
    }
    // tail: scalar, since `above` is both read and written
    squareRowScalar(below, above, squared, x, size);
}

/// The lower envelope of the parabolas squared(p) + (x - p)^2; the number of its last one.
int envelope(const EnvelopeTables& tables, int width) {
    const auto [halfInverse, squared, vertex, bound, above] = tables;
    int last = 0;
    vertex[0] = 0;
    bound[0] = -farthest;
    for (int q = 1; q < width; ++q) {
        const float height = squared[q] + square(q);
        float start;
        for (;; --last) {
            const int p = vertex[last];
            start = (height - squared[p] - square(p)) * halfInverse[q - p];
            // The first parabola begins below every other one.
            if (start > bound[last]) break;
        }
        ++last;
        vertex[last] = q;
        bound[last] = start;
    }
    bound[last + 1] = farthest;
    return last;
}

void distanceRowScalar(const EnvelopeTables& tables, float* dst, int width) {
    envelope(tables, width);
    int k = 0;
    for (int x = 0; x < width; ++x) {
        while (static_cast<float>(x) > tables.bound[k + 1]) ++k;
        const int p = tables.vertex[k];
        dst[x] = std::sqrt(square(std::abs(x - p)) + tables.squared[p]);
    }
}

/// The largest distance that a search finds: it reads neighbours of up to the next multiple of its stride.
constexpr int searchReach = 105;
static_assert(searchReach + 3 <= searchMargin);

/// Of a block of a row the distances, by trying neighbours farther and farther away until none can be nearer than what
/// is found; false where that is too far.
bool nearestInBlock(const float* squared, float* dst) {
    constexpr int stride = 4;
    auto nearest = load<blockPixels>(squared);
    for (int reach = 1; reach <= searchReach; reach += stride) {
        if (!any(nearest > broadcast<blockPixels>(square(reach)))) {
            store(sqrt(nearest), dst);
            return true;
        }
        for (int i = reach; i < reach + stride; ++i) {
            const auto nearer = min(load<blockPixels>(squared - i), load<blockPixels>(squared + i));
            nearest = min(nearest, nearer + broadcast<blockPixels>(square(i)));
        }
    }
    return false;
}

bool nearestInRow(const float* squared, float* dst, int width) {
    for (int x = 0; x <= width - blockPixels; x += blockPixels)
        if (!nearestInBlock(squared + x, dst + x)) return false;
    // tail: overlapping last vector
    const int last = width - blockPixels;
    return nearestInBlock(squared + last, dst + last);
}

/// Whether every intermediate result of an envelope is a whole number that a float holds, and its bounds lie on the
/// right side of every pixel: they miss by less than 2 to the power of -23 of the width, and two parabolas that do
/// not meet at a pixel meet at least 1 / (2 width) beside it. The envelope is then the least of all parabolas.
bool envelopeIsExact(LumSize size) {
    constexpr int widest = 2047;
    constexpr std::int64_t wholeFloats = std::int64_t{1} << 24;
    const std::int64_t w = size.width;
    const std::int64_t h = size.height;
    return w <= widest && w * w + h * h <= wholeFloats;
}

/// Up to this square of a column's distance the same holds, in wider pictures, of a row whose every pixel has a 0 within
/// searchReach; below 0 where it never does. All intermediate results are whole numbers that a float holds as long as
/// squares along the row and down the column together are. A new parabola meets none that serves a pixel more than
/// searchReach to its left: there one within searchReach of the pixel is lower. So the columns of two parabolas that are
/// compared are at most 2 searchReach + 1 apart, and where they do not meet at a pixel they meet at least the inverse of
/// twice that beside it, which is more than bounds below 4096 miss by.
float highestOfWideRow(LumSize size) {
    constexpr int widest = 4095;
    constexpr int wholeFloats = 1 << 24;
    static_assert(widest * (2 * (2 * searchReach + 1)) < 1 << 23);
    return size.width > widest ? -1.0F : static_cast<float>(wholeFloats - size.width * size.width);
}

/// Columns without a 0 do not count: their parabolas serve no pixel.
bool isRowWithin(const float* squared, int width, float highest) {
    const auto isHigher = [&](int x) {
        const auto values = load<blockPixels>(squared + x);
        const auto counted =
            select(values < broadcast<blockPixels>(farthest), values, zeros<float, blockPixels>());
        return any(counted > broadcast<blockPixels>(highest));
    };
    for (int x = 0; x <= width - blockPixels; x += blockPixels)
        if (isHigher(x)) return false;
    // tail: overlapping last vector
    return !isHigher(width - blockPixels);
}

/// The rows of a picture, one after the other: by search, or by envelope where pixels are far from the nearest 0.
class DistanceRows {
  public:
    DistanceRows(const EnvelopeTables& tables, LumSize size)
        : tables_(tables),
          width_(size.width),
          highest_(envelopeIsExact(size) ? farthest : highestOfWideRow(size)),
          searches_(highest_ >= 0 && marginOf(size.width) > 0) {
        if (!searches_) return;
        for (int i = 1; i <= searchMargin; ++i)
            tables.squared[-i] = tables.squared[width_ - 1 + i] = farthest;
    }

    void next(float* dst) {
        if (searches_ && rowsToSkip_ == 0) {
            if (canSearch() && nearestInRow(tables_.squared, dst, width_)) return;
            rowsToSkip_ = 16;
        }
        if (rowsToSkip_ > 0) --rowsToSkip_;
        distanceRowScalar(tables_, dst, width_);
    }

  private:
    bool canSearch() const { return highest_ == farthest || isRowWithin(tables_.squared, width_, highest_); }

    EnvelopeTables tables_;
    int width_;
    /// Of the squares of a row that is searched.
    float highest_;
    bool searches_;
    /// Rows beside one with far pixels have far pixels, too.
    int rowsToSkip_ = 0;
};

void prepare(const EnvelopeTables& tables, LumSize size) {
    for (int x = 0; x < size.width; ++x) tables.above[x] = size.height - 1;
    for (int i = 1; i < size.width; ++i) tables.halfInverse[i] = 0.5F / static_cast<float>(i);
}

} // namespace

void trueDistanceScalar(Image<const Lum8u> src, Image<float> dst, LumSize size,
                        const EnvelopeTables& tables) {
    prepare(tables, size);
    countFromBelowScalar(src, dst, size);
    for (int y = 0; y < size.height; ++y) {
        squareRowScalar(dst.row(y), tables.above, tables.squared, 0, size);
        distanceRowScalar(tables, dst.row(y), size.width);
    }
}

void trueDistance(Image<const Lum8u> src, Image<float> dst, LumSize size, const EnvelopeTables& tables) {
    prepare(tables, size);
    for (int y = size.height - 1; y >= 0; --y)
        countFromBelow(src.row(y), y == size.height - 1 ? nullptr : dst.row(y + 1), dst.row(y), size);
    DistanceRows rows(tables, size);
    for (int y = 0; y < size.height; ++y) {
        squareRow(dst.row(y), tables.above, tables.squared, size);
        rows.next(dst.row(y));
    }
}

} // namespace lum::kernels
