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

/// A ring of a few values.
template <class T> class ShortQueue {
  public:
    static constexpr unsigned capacity = 16;

    bool isEmpty() const { return first_ == end_; }
    bool isFull() const { return end_ - first_ == capacity; }
    void push(T value) { values_[end_++ % capacity] = value; }
    T pop() { return values_[first_++ % capacity]; }

  private:
    T values_[capacity];
    unsigned first_ = 0;
    unsigned end_ = 0;
};

/// The order in which points are drawn. It depends on their number alone, so it is looked ahead: each place of the
/// pool, and each point's bit, is on its way to the cache before it is needed.
class PointDraw {
  public:
    PointDraw(std::uint32_t* positions, std::uint32_t count, const Lum8u* bits)
        : positions_(positions), bits_(bits), unnumbered_(count), undrawn_(count) {}

    /// Draws a position; false where none is left.
    bool next(std::uint32_t& position) {
        while (unnumbered_ != 0 && !indices_.isFull()) {
            const std::uint32_t index = numbers_.next() % unnumbered_--;
            __builtin_prefetch(positions_ + index);
            indices_.push(index);
        }
        while (!indices_.isEmpty() && !drawn_.isFull()) {
            std::uint32_t& place = positions_[indices_.pop()];
            drawn_.push(place);
            __builtin_prefetch(bits_ + place / 8);
            place = positions_[--undrawn_];
        }
        if (drawn_.isEmpty()) return false;
        position = drawn_.pop();
        return true;
    }

  private:
    MultiplyWithCarry numbers_;
    std::uint32_t* positions_;
    const Lum8u* bits_;
    std::uint32_t unnumbered_;
    std::uint32_t undrawn_;
    ShortQueue<std::uint32_t> indices_;
    ShortQueue<std::uint32_t> drawn_;
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

/// The pixels that no segment has taken, as rows of bits.
class FreePixels {
  public:
    FreePixels(Lum8u* bits, LumSize size)
        : rows_(bits, kernels::bytesOfBits(size.width)),
          size_(size),
          bitsOfRow_(8 * static_cast<std::uint32_t>(rows_.step)) {}

    /// Takes over the pixels of a picture that are not 0, and writes their positions; returns their number.
    std::uint32_t collect(Image<const Lum8u> src, std::uint32_t* positions) const {
        std::uint32_t count = 0;
        for (int y = 0; y < size_.height; ++y)
            count += static_cast<std::uint32_t>(
                kernels::collectBits(src.row(y), size_.width, rows_.row(y),
                                     static_cast<std::uint32_t>(y) * bitsOfRow_, positions + count));
        return count;
    }
    const Lum8u* bits() const { return rows_.first; }

    bool has(std::uint32_t position) const { return (rows_.first[position / 8] >> position % 8 & 1) != 0; }
    LumPoint pointAt(std::uint32_t position) const {
        return {static_cast<Lum32s>(position % bitsOfRow_), static_cast<Lum32s>(position / bitsOfRow_)};
    }

    /// The last free pixel before more than `gap` others.
    LumPoint follow(Walk walk, LumPoint from, int gap) const {
        LumPoint end = from;
        int missing = 0;
        for (LumPoint pixel = walk.pixel(); contains(pixel); walk.step(), pixel = walk.pixel()) {
            if (has(pixel)) {
                missing = 0;
                end = pixel;
            } else if (++missing > gap) {
                break;
            }
        }
        return end;
    }

    /// Takes the free pixels up to the end of a walk, and calls for each of them.
    template <class Visit> void take(Walk walk, LumPoint end, const Visit& visit) const {
        for (LumPoint pixel = walk.pixel(); contains(pixel); walk.step(), pixel = walk.pixel()) {
            if (has(pixel)) {
                Lum8u& byte = byteOf(pixel);
                byte = static_cast<Lum8u>(byte & ~bitOf(pixel));
                visit(pixel);
            }
            if (pixel.x == end.x && pixel.y == end.y) break;
        }
    }

  private:
    bool contains(LumPoint pixel) const {
        return static_cast<unsigned>(pixel.x) < static_cast<unsigned>(size_.width) &&
               static_cast<unsigned>(pixel.y) < static_cast<unsigned>(size_.height);
    }
    Lum8u& byteOf(LumPoint pixel) const { return rows_.row(pixel.y)[pixel.x / 8]; }
    static unsigned bitOf(LumPoint pixel) { return 1U << pixel.x % 8; }
    bool has(LumPoint pixel) const { return (byteOf(pixel) & bitOf(pixel)) != 0; }

    Image<Lum8u> rows_;
    LumSize size_;
    std::uint32_t bitsOfRow_;
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
    SegmentSearch(const LinePlane& plane, Cell* cells, const FreePixels& free)
        : plane_(plane), cells_(cells), free_(free) {
        const std::size_t count =
            static_cast<std::size_t>(plane.rhoCount) * static_cast<std::size_t>(plane.thetaCount);
        std::memset(cells, 0, count * sizeof(Cell));
    }

    LumStatus run(PointDraw& points, const SegmentWish& wish, SegmentList& list) const {
        std::uint32_t position;
        while (points.next(position)) {
            if (!free_.has(position)) continue;
            const LumPoint point = free_.pointAt(position);
            BestVote best{wish.threshold - 1, 0};
            addVotes(point, best);
            if (best.votes < wish.threshold) continue;

            const LumPoint32f direction = kernels::directionOf(plane_, best.theta);
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
    const HoughPlane counts(roiSize, header.delta);
    const LinePlane plane{reinterpret_cast<const unsigned char*>(spec) + sizeof header, counts.thetaCount,
                          counts.rhoCount, counts.halfRho()};
    const bool votesStay = kernels::votesStayInRows(plane, roiSize);
    const bool hasShortCells = votesStay && countsFitShortCells(roiSize, header.delta.x, plane);

    // A byte of each pixel and half of what is given for its point would do, so there is room to align what needs it.
    const std::size_t pixels =
        static_cast<std::size_t>(roiSize.width) * static_cast<std::size_t>(roiSize.height);
    const std::size_t cellCount =
        static_cast<std::size_t>(plane.rhoCount) * static_cast<std::size_t>(plane.thetaCount);
    Arena arena(buffer);
    arena.align(alignof(Lum32s));
    auto* cells = arena.allocate<Lum32s>(cellCount);
    auto* positions = arena.allocate<std::uint32_t>(pixels);
    const FreePixels free(arena.allocate<Lum8u>(pixels), roiSize);
    PointDraw points(positions, free.collect({src, srcStep}, positions), free.bits());

    const SegmentWish wish{threshold, lineLength, lineGap};
    SegmentList list(lines, maxLineCount, lineCount);
    if (hasShortCells)
        return SegmentSearch<Lum16s, true>(plane, reinterpret_cast<Lum16s*>(cells), free)
            .run(points, wish, list);
    if (votesStay) return SegmentSearch<Lum32s, true>(plane, cells, free).run(points, wish, list);
    return SegmentSearch<Lum32s, false>(plane, cells, free).run(points, wish, list);
}

} // namespace lum
