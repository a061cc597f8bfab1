#include "feature/hough_prob.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "feature/hough_plane.h"
#include "frame/arena.h"
#include "frame/image.h"
#include "kernels/feature/hough_prob.h"
#include "kernels/feature/set_pixels.h"

namespace lum {
namespace {

using kernels::BestVote;
using kernels::LinePlane;

/// The front of an object; the directions follow it.
struct ProbHeader {
    LumPoint32f delta;
    LumHint hint;
};
static_assert(sizeof(ProbHeader) == 12 && offsetof(ProbHeader, hint) == 8);
static_assert(sizeof(LumPoint32f) == 8, "a direction is a cosine and a sine");

/// Numbers that depend on nothing but how many have been drawn.
class MultiplyWithCarry {
  public:
    std::uint32_t next() {
        const std::uint64_t product = std::uint64_t{low_} * 4164903690U + high_;
        low_ = static_cast<std::uint32_t>(product);
        high_ = static_cast<std::uint32_t>(product >> 32);
        return low_;
    }

  private:
    std::uint32_t low_ = 0xFFFFFFFF;
    std::uint32_t high_ = 0xFFFFFFFF;
};

/// Points in raster order of which any is drawn; at any address.
class PointPool {
  public:
    explicit PointPool(unsigned char* points) : points_(points) {}

    void append(LumPoint point) { put(count_++, point); }
    bool isEmpty() const { return count_ == 0; }
    LumPoint draw(std::uint32_t number) {
        const auto index = static_cast<std::uint32_t>(number % count_);
        const LumPoint point = at(index);
        put(index, at(--count_));
        return point;
    }

  private:
    LumPoint at(std::size_t i) const {
        LumPoint point;
        std::memcpy(&point, points_ + i * sizeof point, sizeof point);
        return point;
    }
    void put(std::size_t i, LumPoint point) { std::memcpy(points_ + i * sizeof point, &point, sizeof point); }

    unsigned char* points_;
    std::size_t count_ = 0;
};

/// Pixels along a line, one for each pixel of its longer axis: coordinates with 16 bits after the binary point.
struct Walk {
    std::int64_t x, y, dx, dy;

    /// From a pixel, along the line with this cosine and sine of its normal.
    Walk(LumPoint from, float c, float s) : x(std::int64_t{from.x} * one), y(std::int64_t{from.y} * one) {
        if (std::fabs(s) > std::fabs(c)) {
            dx = -s > 0 ? one : -one;
            dy = truncatedTo32s(static_cast<double>(c * 65536.0F / std::fabs(s)));
            y |= half;
        } else {
            dx = truncatedTo32s(static_cast<double>(-s * 65536.0F / std::fabs(c)));
            dy = c > 0 ? one : -one;
            x |= half;
        }
    }
    Walk backward() const {
        Walk other = *this;
        other.dx = -dx;
        other.dy = -dy;
        return other;
    }
    LumPoint pixel() const { return {static_cast<Lum32s>(x >> 16), static_cast<Lum32s>(y >> 16)}; }
    void step() {
        x += dx;
        y += dy;
    }

  private:
    static constexpr std::int64_t one = 0x10000;
    static constexpr std::int64_t half = 0x8000;
};

/// The pixels that no segment has taken.
class FreePixels {
  public:
    FreePixels(Lum8u* mask, LumSize size) : mask_(mask, size.width), size_(size) {}

    Lum8u* row(int y) const { return mask_.row(y); }
    bool contains(const Walk& walk) const {
        return walk.x >= 0 && walk.y >= 0 && walk.x >> 16 < size_.width && walk.y >> 16 < size_.height;
    }
    Lum8u& at(LumPoint point) const { return mask_.row(point.y)[point.x]; }

    /// The last free pixel before more than `gap` others.
    LumPoint follow(Walk walk, LumPoint from, int gap) const {
        LumPoint end = from;
        for (int missing = 0; contains(walk); walk.step()) {
            if (at(walk.pixel()) != 0) {
                missing = 0;
                end = walk.pixel();
            } else if (++missing > gap) {
                break;
            }
        }
        return end;
    }

    /// Takes the free pixels up to the end of a walk, and calls for each of them.
    template <class Visit> void take(Walk walk, LumPoint end, const Visit& visit) const {
        for (; contains(walk); walk.step()) {
            const LumPoint pixel = walk.pixel();
            if (at(pixel) != 0) {
                at(pixel) = 0;
                visit(pixel);
            }
            if (pixel.x == end.x && pixel.y == end.y) break;
        }
    }

  private:
    Image<Lum8u> mask_;
    LumSize size_;
};

/// What a call looks for.
struct SegmentWish {
    int threshold;
    int lineLength;
    int lineGap;
};

/// The caller's list.
class SegmentList {
  public:
    SegmentList(Lum32s* lines, int capacity, int* count)
        : lines_(lines), capacity_(capacity), count_(count) {}

    bool isFull() const { return *count_ == capacity_; }
    void append(LumPoint from, LumPoint to) {
        const Lum32s segment[] = {from.x, from.y, to.x, to.y};
        std::memcpy(lines_ + 4 * static_cast<std::ptrdiff_t>(*count_), segment, sizeof segment);
        ++*count_;
    }

  private:
    Lum32s* lines_;
    int capacity_;
    int* count_;
};

/// The search with cells of one type. Where votes may leave their rows only the scalar forms know what becomes of them.
template <class Cell, bool votesStay> class SegmentSearch {
  public:
    SegmentSearch(const LinePlane& plane, const unsigned char* directions, Cell* cells,
                  const FreePixels& free)
        : plane_(plane), directions_(directions), cells_(cells), free_(free) {}

    LumStatus run(PointPool& points, const SegmentWish& wish, SegmentList& list) const {
        MultiplyWithCarry numbers;
        while (!points.isEmpty()) {
            const LumPoint point = points.draw(numbers.next());
            if (free_.at(point) == 0) continue;
            BestVote best{wish.threshold - 1, 0};
            addVotes(point, best);
            if (best.votes < wish.threshold) continue;

            LumPoint32f direction;
            std::memcpy(&direction, directions_ + best.theta * static_cast<std::ptrdiff_t>(sizeof direction),
                        sizeof direction);
            const Walk forward(point, direction.x, direction.y);
            const LumPoint from = free_.follow(forward, point, wish.lineGap);
            const LumPoint to = free_.follow(forward.backward(), point, wish.lineGap);
            const bool isGood =
                std::abs(to.x - from.x) >= wish.lineLength || std::abs(to.y - from.y) >= wish.lineLength;
            const auto take = [&](LumPoint pixel) {
                if (isGood) takeVotes(pixel);
            };
            free_.take(forward, from, take);
            free_.take(forward.backward(), to, take);
            if (!isGood) continue;
            if (list.isFull()) return lumStatusResultTruncated;
            list.append(from, to);
        }
        return lumStatusOk;
    }

  private:
    void addVotes(LumPoint point, BestVote& best) const {
        if constexpr (votesStay)
            kernels::addVotes(plane_, cells_, point, best);
        else
            kernels::addVotesScalar(plane_, cells_, point, best);
    }
    void takeVotes(LumPoint point) const {
        if constexpr (votesStay)
            kernels::takeVotes(plane_, cells_, point);
        else
            kernels::takeVotesScalar(plane_, cells_, point);
    }

    const LinePlane& plane_;
    const unsigned char* directions_;
    Cell* cells_;
    const FreePixels& free_;
};

/// Whether no cell can count beyond 16 bits: a pixel votes once and is taken back once, so the pixels of a cell bound
/// its votes. They lie in a strip two steps of rho wide, or less than three where rounding widens it, and each column
/// or row of the picture, whichever is the more across the strip, has no more than its width times the root of 2 and
/// one of them.
bool countsFitShortCells(LumSize size, float rho, const LinePlane& plane) {
    constexpr float widestStrip = 3 * 1.4143F;
    constexpr int largestExactRho = 1 << 20;
    const auto longest = static_cast<float>(std::max(size.width, size.height));
    return plane.rhoCount < largestExactRho && longest * (widestStrip * rho + 2) < 32767;
}

/// Fills the mask and the pool of points.
PointPool collectPoints(Image<const Lum8u> src, LumSize size, const FreePixels& free, unsigned char* points) {
    PointPool pool(points);
    for (int y = 0; y < size.height; ++y) {
        Lum8u* mask = free.row(y);
        if (kernels::makeMask(src.row(y), mask, size.width) == 0) continue;
        for (int x = kernels::nextSetPixel(mask, 0, size.width); x < size.width;
             x = kernels::nextSetPixel(mask, x + 1, size.width))
            pool.append({x, y});
    }
    return pool;
}

} // namespace

LumStatus houghProbLineGetSize(LumSize roiSize, LumPoint32f delta, Lum32s* specSize, Lum32s* bufferSize) {
    if (auto s = firstFailure(checkNotNull(specSize, bufferSize), checkSize(roiSize), checkHoughSteps(delta)))
        return s;
    const HoughPlane plane(roiSize, delta);
    const auto thetas = static_cast<unsigned>(plane.thetaCount);
    *specSize = static_cast<Lum32s>(8 * thetas + 12);
    *bufferSize =
        static_cast<Lum32s>(9 * static_cast<unsigned>(roiSize.width) * static_cast<unsigned>(roiSize.height) +
                            4 * static_cast<unsigned>(plane.rhoCount) * thetas);
    return lumStatusOk;
}

LumStatus houghProbLineInit(LumSize roiSize, LumPoint32f delta, LumHint hint, LumHoughProbSpec* spec) {
    if (auto s = firstFailure(checkNotNull(spec), checkSize(roiSize), checkHoughSteps(delta))) return s;
    auto* place = reinterpret_cast<unsigned char*>(spec);
    const ProbHeader header{delta, hint};
    std::memcpy(place, &header, sizeof header);
    place += sizeof header;
    const double scale = 1 / static_cast<double>(delta.x);
    float angle = 0;
    for (Lum32s t = HoughPlane(roiSize, delta).thetaCount; t > 0; --t) {
        const LumPoint32f direction{nearestFloat(std::cos(static_cast<double>(angle)) * scale),
                                    nearestFloat(std::sin(static_cast<double>(angle)) * scale)};
        std::memcpy(place, &direction, sizeof direction);
        place += sizeof direction;
        angle += delta.y;
    }
    return lumStatusOk;
}

LumStatus houghProbLine(const Lum8u* src, int srcStep, LumSize roiSize, int threshold, int lineLength,
                        int lineGap, Lum32s* lines, int maxLineCount, int* lineCount, Lum8u* buffer,
                        const LumHoughProbSpec* spec) {
    if (auto s = firstFailure(checkNotNull(src, lines, lineCount, buffer, spec), checkSize(roiSize),
                              checkCount(maxLineCount),
                              errorIf(threshold < 1 || lineLength < 0 || lineGap < 0, lumStatusBadArgument)))
        return s;
    *lineCount = 0;
    ProbHeader header;
    std::memcpy(&header, spec, sizeof header);
    const auto* directions = reinterpret_cast<const unsigned char*>(spec) + sizeof header;
    const HoughPlane counts(roiSize, header.delta);
    const LinePlane plane{reinterpret_cast<const float*>(directions), counts.thetaCount, counts.rhoCount,
                          counts.halfRho()};

    // The cells lie at the start of the buffer, wherever that is.
    Arena arena(buffer);
    const std::size_t pixels =
        static_cast<std::size_t>(roiSize.width) * static_cast<std::size_t>(roiSize.height);
    const std::size_t cellCount =
        static_cast<std::size_t>(plane.rhoCount) * static_cast<std::size_t>(plane.thetaCount);
    auto* cells = arena.allocate<Lum32s>(cellCount);
    const FreePixels free(arena.allocate<Lum8u>(pixels), roiSize);
    PointPool points = collectPoints({src, srcStep}, roiSize, free, arena.allocate<unsigned char>(0));
    const SegmentWish wish{threshold, lineLength, lineGap};
    SegmentList list(lines, maxLineCount, lineCount);
    const bool votesStay = kernels::votesStayInRows(plane, roiSize);
    if (votesStay && countsFitShortCells(roiSize, header.delta.x, plane)) {
        auto* shortCells = reinterpret_cast<Lum16s*>(cells);
        std::memset(shortCells, 0, cellCount * sizeof(Lum16s));
        return SegmentSearch<Lum16s, true>(plane, directions, shortCells, free).run(points, wish, list);
    }
    std::memset(cells, 0, cellCount * sizeof(Lum32s));
    if (votesStay) return SegmentSearch<Lum32s, true>(plane, directions, cells, free).run(points, wish, list);
    return SegmentSearch<Lum32s, false>(plane, directions, cells, free).run(points, wish, list);
}

} // namespace lum
