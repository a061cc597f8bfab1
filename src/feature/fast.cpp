#include "feature/fast.h"

#include <algorithm>
#include <cstring>

#include "frame/arena.h"
#include "frame/check.h"
#include "frame/image.h"
#include "kernels/feature/set_pixels.h"

namespace lum {
namespace {

using kernels::CircleDirections;
using kernels::SegmentRow;
using kernels::SegmentTest;

/// A rectangle of pixels, in coordinates that no tile can overflow.
struct Span {
    std::int64_t left, top, right, bottom;

    bool isEmpty() const { return left >= right || top >= bottom; }
    int width() const { return static_cast<int>(right - left); }
    Span cutTo(const Span& other) const {
        return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                std::min(bottom, other.bottom)};
    }
    bool operator==(const Span&) const = default;
};

/// Bytes only. The place need not exist, and the image may be none, so no pointer moves.
template <class T> Image<T> shifted(Image<T> image, std::int64_t x, std::int64_t y) {
    const T* row = image.row(static_cast<std::ptrdiff_t>(y));
    return {reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(row) + static_cast<std::uintptr_t>(x)),
            image.step};
}

SegmentRow segmentRowOf(int perimeter) {
    switch (perimeter) {
    case 8:
        return kernels::segmentRow<8>;
    case 12:
        return kernels::segmentRow<12>;
    case 16:
        return kernels::segmentRow<16>;
    case 28:
        return kernels::segmentRow<28>;
    case 40:
        return kernels::segmentRow<40>;
    default:
        return kernels::segmentRow<52>;
    }
}

/// Three rows of marks and of scores in a work buffer, used in turn, with a zero before and after each row.
class RollingRows {
  public:
    RollingRows(Lum8u* buffer, std::size_t tileWidth, int count) : count_(count) {
        Arena arena(buffer);
        for (int i = 0; i < rows; ++i) {
            marks_[i] = arena.allocate<Lum8u>(tileWidth + 2) + 1;
            scores_[i] = arena.allocate<Lum8u>(tileWidth + 2) + 1;
            clear(i);
        }
    }

    Lum8u* marks(int y) const { return marks_[y % rows]; }
    Lum8u* scores(int y) const { return scores_[y % rows]; }
    void clear(int y) {
        std::memset(marks(y) - 1, 0, static_cast<std::size_t>(count_) + 2);
        std::memset(scores(y) - 1, 0, static_cast<std::size_t>(count_) + 2);
    }
    /// Row y, of which the rows above and below have been filled or cleared.
    int suppress(int y, Lum8u* dstMarks, Lum8u* dstScores) const {
        return kernels::suppressRow({scores(y + rows - 1), scores(y), scores(y + 1)}, marks(y), dstMarks,
                                    dstScores, count_);
    }

  private:
    static constexpr int rows = 3;
    Lum8u* marks_[rows];
    Lum8u* scores_[rows];
    int count_;
};

/// The search in the pixels that are far enough inside the image; each image begins at the first of them.
class TileSearch {
  public:
    TileSearch(const FastObject& object, Image<const Lum8u> src, Image<Lum8u> corners, Image<Lum8u> scores,
               LumSize size)
        : object_(object),
          test_(object.record().circleRadius, src.step, object.record().arcLength,
                object.record().intThreshold),
          segmentRow_(segmentRowOf(test_.perimeter)),
          src_(src),
          corners_(corners),
          scores_(scores),
          size_(size) {}

    /// Every corner.
    int all() const {
        int count = 0;
        for (int y = 0; y < size_.height; ++y)
            count += segmentRow_(test_, src_.row(y), corners_.row(y), scoresRow(y), size_.width);
        return count;
    }

    /// The corners that no neighbour exceeds. Below the last row there is none of a higher score, or else the row is
    /// a neighbour only.
    int localMaxima(RollingRows& rows, bool lastRowIsNeighbour) const {
        int count = 0;
        for (int y = 0; y < size_.height; ++y) {
            segmentRow_(test_, src_.row(y), rows.marks(y), rows.scores(y), size_.width);
            if (y > 0) count += rows.suppress(y - 1, corners_.row(y - 1), scores_.row(y - 1));
        }
        if (lastRowIsNeighbour) return count;
        rows.clear(size_.height);
        const int last = size_.height - 1;
        return count + rows.suppress(last, corners_.row(last), scores_.row(last));
    }

    /// Adds the orientation bins to the marks.
    void orient(int rowCount) const {
        const CircleDirections directions = object_.directions();
        for (int y = 0; y < rowCount; ++y) {
            Lum8u* marks = corners_.row(y);
            for (int x = kernels::nextSetPixel(marks, 0, size_.width); x < size_.width;
                 x = kernels::nextSetPixel(marks, x + 1, size_.width))
                marks[x] |= kernels::orientationBin(test_, directions, src_.row(y) + x);
        }
    }

  private:
    Lum8u* scoresRow(int y) const { return object_.has(lumFastNScore) ? scores_.row(y) : nullptr; }

    const FastObject& object_;
    SegmentTest test_;
    SegmentRow segmentRow_;
    Image<const Lum8u> src_;
    Image<Lum8u> corners_;
    Image<Lum8u> scores_;
    LumSize size_;
};

void clear(Image<Lum8u> image, const Span& tile) {
    for (std::int64_t y = tile.top; y < tile.bottom; ++y)
        std::memset(image.row(static_cast<std::ptrdiff_t>(y)) + tile.left, 0,
                    static_cast<std::size_t>(tile.width()));
}

} // namespace

LumStatus fastNGetBufferSize(const LumFastNSpec* spec, LumSize dstRoiSize, Lum32s* size) {
    if (auto s = firstFailure(checkNotNull(spec, size), checkSize(dstRoiSize))) return s;
    *size = static_cast<Lum32s>((static_cast<unsigned>(dstRoiSize.width) + 2) * 6 + 624);
    return lumStatusOk;
}

LumStatus fastN(const Lum8u* src, int srcStep, Lum8u* corners, int cornersStep, Lum8u* scores, int scoresStep,
                Lum32s* cornerCount, LumPoint srcRoiOffset, LumSize dstRoiSize, const LumFastNSpec* spec,
                Lum8u* buffer) {
    if (auto s = firstFailure(checkNotNull(src, corners, spec, buffer, cornerCount), checkSize(dstRoiSize)))
        return s;
    const FastObject object(spec);
    if (auto s = object.check(scores)) return s;

    const FastRecord& record = object.record();
    const std::int64_t x = srcRoiOffset.x;
    const std::int64_t y = srcRoiOffset.y;
    const Span given{x, y, x + dstRoiSize.width, y + dstRoiSize.height};
    const Span image{0, 0, record.width, record.height};
    const Span tile = given.cutTo(image);
    if (tile.isEmpty()) return lumStatusRegionClipped;
    const LumStatus status = tile == given ? lumStatusOk : lumStatusRegionClipped;

    // Results seen from the image's first pixel, so that all places are those of the image.
    const Image<Lum8u> allCorners = shifted(Image<Lum8u>(corners, cornersStep), -x, -y);
    const Image<Lum8u> allScores = shifted(Image<Lum8u>(scores, scoresStep), -x, -y);
    clear(allCorners, tile);
    if (object.has(lumFastNScore)) clear(allScores, tile);

    const std::int64_t radius = record.circleRadius;
    const Span inner = tile.cutTo({radius, radius, record.width - radius, record.height - radius});
    *cornerCount = 0;
    if (inner.isEmpty()) return status;
    const LumSize innerSize{inner.width(), static_cast<int>(inner.bottom - inner.top)};
    const TileSearch search(object, shifted(Image<const Lum8u>(src, srcStep), inner.left, inner.top),
                            shifted(allCorners, inner.left, inner.top),
                            shifted(allScores, inner.left, inner.top), innerSize);
    // The last row of the tile itself; the rows at the image's edge have no corners anyway.
    const bool lastRowIsNeighbour = tile.bottom == inner.bottom;
    const bool suppresses = object.has(lumFastNSuppression);
    if (suppresses) {
        RollingRows rows(buffer, static_cast<std::size_t>(dstRoiSize.width), innerSize.width);
        *cornerCount = search.localMaxima(rows, lastRowIsNeighbour);
    } else {
        *cornerCount = search.all();
    }
    if (object.has(lumFastNOrientation))
        search.orient(suppresses && lastRowIsNeighbour ? innerSize.height - 1 : innerSize.height);
    return status;
}

LumStatus fastN2DToVec(const Lum8u* corners, int cornersStep, const Lum8u* scores, int scoresStep,
                       LumFastNCorner* list, LumSize dstRoiSize, int maxCount, Lum32s* cornerCount,
                       const LumFastNSpec* spec) {
    if (auto s = firstFailure(checkNotNull(corners, list, cornerCount, spec), checkSize(dstRoiSize),
                              errorIf(maxCount < 0, lumStatusSizeError)))
        return s;
    const FastObject object(spec);
    if (auto s = object.check(scores)) return s;
    const Image<const Lum8u> marks(corners, cornersStep);
    const Image<const Lum8u> allScores(scores, scoresStep);
    const bool isOriented = object.has(lumFastNOrientation);
    const int bins = object.record().orientationBins;
    int count = 0;
    for (int y = 0; y < dstRoiSize.height; ++y) {
        const Lum8u* row = marks.row(y);
        for (int x = kernels::nextSetPixel(row, 0, dstRoiSize.width); x < dstRoiSize.width;
             x = kernels::nextSetPixel(row, x + 1, dstRoiSize.width)) {
            if (count < maxCount) {
                LumFastNCorner& corner = list[count];
                corner.x = x;
                corner.y = y;
                corner.type = row[x] >> 7;
                corner.bin = isOriented ? row[x] & kernels::binBits : -1;
                corner.angle =
                    isOriented ? static_cast<float>(corner.bin * 360) / static_cast<float>(bins) : -1.0F;
                corner.score = object.has(lumFastNScore) ? static_cast<float>(allScores.row(y)[x]) : -1.0F;
            }
            ++count;
        }
    }
    *cornerCount = count;
    return lumStatusOk;
}

} // namespace lum
