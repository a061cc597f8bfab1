#include "kernels/feature/fast.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "frame/convert.h"
#include "frame/lanes_reduce.h"

namespace lum::kernels {
namespace {

// ---- one pixel

struct Corner {
    Lum8u mark = 0;
    Lum8u score = 0;
};

/// The segment test of one pixel, position by position.
class PixelTest {
  public:
    PixelTest(const SegmentTest& test, const Lum8u* centre) : test_(test), centre_(centre) {}

    Corner corner() const {
        const int quarter = test_.perimeter / 4;
        if (isNeutral(quarter) && isNeutral(3 * quarter)) return {};
        if (isNeutral(0) && isNeutral(2 * quarter)) return {};
        int direction = 0;
        int run = 0;
        // A run that reaches the last position goes on at the first.
        for (int k = 0; k < test_.perimeter + test_.arcLength - 1; ++k) {
            const int next = directionAt(k);
            run = next == direction ? run + 1 : 1;
            direction = next;
            if (direction != 0 && run >= test_.arcLength)
                return {direction < 0 ? darkMark : brightMark, score(direction)};
        }
        return {};
    }

  private:
    int difference(int k) const { return centre_[test_.circle[k % test_.perimeter]] - *centre_; }
    bool isNeutral(int k) const { return std::abs(difference(k)) <= test_.threshold; }

    /// 1 brighter than the centre, -1 darker, 0 neither.
    int directionAt(int k) const {
        const int d = difference(k);
        return d > test_.threshold ? 1 : d < -test_.threshold ? -1 : 0;
    }

    /// The largest of the smallest differences of the arcs.
    Lum8u score(int direction) const {
        int largest = test_.threshold;
        for (int start = 0; start < test_.perimeter; ++start) {
            int smallest = 255;
            for (int k = start; k < start + test_.arcLength && smallest > largest; ++k)
                smallest = std::min(smallest, direction * difference(k));
            largest = std::max(largest, smallest);
        }
        return static_cast<Lum8u>(largest);
    }

    const SegmentTest& test_;
    const Lum8u* centre_;
};

// ---- blocks of pixels

/// Pixels of a block: many, because in most pictures one that is left early is hard to predict.
constexpr int blockSize = 64;
using Bytes = Block<Lum8u, blockSize>;
/// A bit for each pixel.
using Corners = decltype(signBits(Bytes{}));

struct Lower {
    LUM_LANE static Bytes of(Bytes a, Bytes b) { return min(a, b); }
};
struct Higher {
    LUM_LANE static Bytes of(Bytes a, Bytes b) { return max(a, b); }
};

/// For bright corners, with Weakest the lower and Strongest the higher of two: over all arcs, the highest of the
/// lowest pixel of the arc. For dark ones the other way round.
///
/// Two arcs that begin at neighbouring positions share all pixels but one each, so the stronger of the two is the
/// weakest of the shared ones and the stronger of the others. The shared ones are put together from pairs by doubling.
template <class Weakest, class Strongest, int perimeter>
LUM_LANE Bytes strongestArc(const Bytes (&circle)[perimeter], int arcLength) {
    constexpr int half = perimeter / 2;
    const auto around = [](int position, int count) {
        return position < count ? position : position - count;
    };
    const int shared = arcLength - 1;
    const int pairs = shared / 2;
    Bytes windows[2][half];
#pragma GCC unroll 32
    for (int i = 0; i < half; ++i)
        windows[0][i] = Weakest::of(circle[2 * i + 1], circle[around(2 * i + 2, perimeter)]);
    int width = 1;
    int last = 0;
#pragma GCC unroll 8
    for (; 2 * width <= pairs; width *= 2) {
#pragma GCC unroll 32
        for (int i = 0; i < half; ++i)
            windows[1 - last][i] = Weakest::of(windows[last][i], windows[last][around(i + width, half)]);
        last = 1 - last;
    }
    Bytes strongest;
#pragma GCC unroll 32
    for (int i = 0; i < half; ++i) {
        Bytes weakest = windows[last][i];
        if (width < pairs) weakest = Weakest::of(weakest, windows[last][around(i + pairs - width, half)]);
        if (shared % 2 != 0) weakest = Weakest::of(weakest, circle[around(2 * i + shared, perimeter)]);
        weakest =
            Weakest::of(weakest, Strongest::of(circle[2 * i], circle[around(2 * i + arcLength, perimeter)]));
        strongest = i == 0 ? weakest : Strongest::of(strongest, weakest);
    }
    return strongest;
}

/// The tones that the pixels of a block must pass.
struct Limits {
    Bytes upper;
    Bytes lower;

    LUM_LANE Limits(Bytes centre, Bytes threshold)
        : upper(addSaturated(centre, threshold)), lower(subSaturated(centre, threshold)) {}
};

/// The tone that every arc of a bright corner exceeds somewhere, at most, and that every arc of a dark one falls
/// below: of each two opposite pixels every arc holds one.
struct Reach {
    Bytes high;
    Bytes low;

    LUM_LANE Reach(Bytes a, Bytes opposite) : high(max(a, opposite)), low(min(a, opposite)) {}
    LUM_LANE static Reach widest() {
        return {broadcast<blockSize>(Lum8u{255}), broadcast<blockSize>(Lum8u{0})};
    }
    LUM_LANE void narrow(Reach other) {
        high = min(high, other.high);
        low = max(low, other.low);
    }
    LUM_LANE Bytes bright(const Limits& limits) const { return subSaturated(high, limits.upper); }
    LUM_LANE Bytes dark(const Limits& limits) const { return subSaturated(limits.lower, low); }
};

LUM_LANE bool anyNonZero(Bytes bytes) { return any(bytes != zeros<Lum8u, blockSize>()); }
LUM_LANE auto nonZeroBits(Bytes bytes) { return signBits(bytes != zeros<Lum8u, blockSize>()); }

/// The marks of a block that may have corners; a bit for each that it has. The shortest arcs are the usual ones, and
/// have code of their own.
template <int perimeter, bool isShortestArc>
[[gnu::noinline]] Corners segmentBlock(const SegmentTest& test, const Lum8u* src, Lum8u* marks,
                                       Lum8u* scores) {
    constexpr int half = perimeter / 2;
    const int arcLength = isShortestArc ? half + 1 : test.arcLength;
    const Bytes centre = load<blockSize>(src);
    const Limits limits(centre, broadcast<blockSize>(static_cast<Lum8u>(test.threshold)));
    Bytes circle[perimeter];
    Reach reach = Reach::widest();
#pragma GCC unroll 32
    for (int k = 0; k < half; ++k) {
        circle[k] = load<blockSize>(src + test.circle[k]);
        circle[k + half] = load<blockSize>(src + test.circle[k + half]);
        reach.narrow(Reach(circle[k], circle[k + half]));
    }

    Bytes mark = zeros<Lum8u, blockSize>();
    Bytes score = mark;
    if (anyNonZero(reach.bright(limits))) {
        const Bytes strongest = strongestArc<Lower, Higher>(circle, arcLength);
        const Bytes isCorner = bitsAs<Lum8u>(strongest > limits.upper);
        mark = isCorner & broadcast<blockSize>(brightMark);
        score = isCorner & (strongest - centre);
    }
    if (anyNonZero(reach.dark(limits))) {
        const Bytes strongest = strongestArc<Higher, Lower>(circle, arcLength);
        const Bytes isCorner = bitsAs<Lum8u>(strongest < limits.lower);
        mark = mark | (isCorner & broadcast<blockSize>(darkMark));
        score = score | (isCorner & (centre - strongest));
    }
    store(mark, marks);
    if (scores != nullptr) store(score, scores);
    return nonZeroBits(mark);
}

} // namespace

SegmentTest::SegmentTest(int circleRadius, std::ptrdiff_t srcStep, int arc, int difference)
    : step(srcStep),
      radius(circleRadius),
      perimeter(perimeterOf(circleRadius)),
      arcLength(arc),
      threshold(std::clamp(difference, 0, 255)) {
    const LumPoint* points = circleOf(radius);
    for (int k = 0; k < perimeter; ++k) circle[k] = points[k].y * step + points[k].x;
}

int segmentRowScalar(const SegmentTest& test, const Lum8u* src, Lum8u* marks, Lum8u* scores, int count) {
    int corners = 0;
    for (int x = 0; x < count; ++x) {
        const Corner corner = PixelTest(test, src + x).corner();
        marks[x] = corner.mark;
        if (scores != nullptr) scores[x] = corner.score;
        corners += corner.mark != 0;
    }
    return corners;
}

/// A row of less than a block: a staged copy of the pixels and their circles, in a block's width.
template <int perimeter>
int segmentNarrowRow(const SegmentTest& test, const Lum8u* src, Lum8u* marks, Lum8u* scores, int count) {
    constexpr int longestRadius = 9;
    constexpr int stagedStep = blockSize + 2 * longestRadius;
    const int radius = test.radius;
    Lum8u staged[(2 * longestRadius + 1) * stagedStep] = {};
    for (int y = 0; y <= 2 * radius; ++y)
        std::memcpy(staged + y * stagedStep, src + (y - radius) * test.step - radius,
                    static_cast<std::size_t>(count) + 2 * radius);
    const SegmentTest stagedTest(radius, stagedStep, test.arcLength, test.threshold);
    Lum8u stagedMarks[blockSize];
    Lum8u stagedScores[blockSize];
    const Corners bits = segmentBlock<perimeter, false>(stagedTest, staged + radius * stagedStep + radius,
                                                        stagedMarks, stagedScores);
    std::memcpy(marks, stagedMarks, static_cast<std::size_t>(count));
    if (scores != nullptr) std::memcpy(scores, stagedScores, static_cast<std::size_t>(count));
    return std::popcount(bits << (blockSize - count));
}

template <int perimeter>
int segmentRow(const SegmentTest& test, const Lum8u* src, Lum8u* marks, Lum8u* scores, int count) {
    if (count < blockSize) return segmentNarrowRow<perimeter>(test, src, marks, scores, count);
    const auto block =
        test.arcLength == perimeter / 2 + 1 ? segmentBlock<perimeter, true> : segmentBlock<perimeter, false>;
    constexpr int half = perimeter / 2;
    constexpr int quarter = perimeter / 4;
    const Bytes threshold = broadcast<blockSize>(static_cast<Lum8u>(test.threshold));
    int corners = 0;
    int x = 0;
    while (x < count) {
        // Tail: overlapping last vector, whose corners are counted once.
        const int start = std::min(x, count - blockSize);
        const Limits limits(load<blockSize>(src + start), threshold);
        const auto circle = [&](int k) { return load<blockSize>(src + start + test.circle[k]); };
        Reach reach(circle(0), circle(half));
        reach.narrow(Reach(circle(quarter), circle(quarter + half)));
        if (anyNonZero(reach.bright(limits) | reach.dark(limits))) {
            const Corners bits =
                block(test, src + start, marks + start, scores == nullptr ? nullptr : scores + start);
            corners += std::popcount(bits >> (x - start));
        } else {
            store(zeros<Lum8u, blockSize>(), marks + start);
            if (scores != nullptr) store(zeros<Lum8u, blockSize>(), scores + start);
        }
        x = start + blockSize;
    }
    return corners;
}

template int segmentRow<8>(const SegmentTest&, const Lum8u*, Lum8u*, Lum8u*, int);
template int segmentRow<12>(const SegmentTest&, const Lum8u*, Lum8u*, Lum8u*, int);
template int segmentRow<16>(const SegmentTest&, const Lum8u*, Lum8u*, Lum8u*, int);
template int segmentRow<28>(const SegmentTest&, const Lum8u*, Lum8u*, Lum8u*, int);
template int segmentRow<40>(const SegmentTest&, const Lum8u*, Lum8u*, Lum8u*, int);
template int segmentRow<52>(const SegmentTest&, const Lum8u*, Lum8u*, Lum8u*, int);

// ---- suppression

int suppressRowScalar(ScoreRows scores, const Lum8u* marks, Lum8u* dstMarks, Lum8u* dstScores, int count) {
    int corners = 0;
    for (int x = 0; x < count; ++x) {
        int highest = std::max(scores.row[x - 1], scores.row[x + 1]);
        for (const Lum8u* row : {scores.above, scores.below})
            highest = std::max({highest, int{row[x - 1]}, int{row[x]}, int{row[x + 1]}});
        const bool stays = scores.row[x] >= highest;
        dstMarks[x] = stays ? marks[x] : Lum8u{0};
        dstScores[x] = stays ? scores.row[x] : Lum8u{0};
        corners += dstMarks[x] != 0;
    }
    return corners;
}

int suppressRow(ScoreRows scores, const Lum8u* marks, Lum8u* dstMarks, Lum8u* dstScores, int count) {
    if (count < blockSize) return suppressRowScalar(scores, marks, dstMarks, dstScores, count);
    int corners = 0;
    int x = 0;
    while (x < count) {
        const int start = std::min(x, count - blockSize);
        Bytes mark = load<blockSize>(marks + start);
        Bytes score = mark;
        Corners bits = 0;
        if (anyNonZero(mark)) {
            const auto rowAround = [&](const Lum8u* row, Bytes middle) {
                return max(max(load<blockSize>(row + start - 1), load<blockSize>(row + start + 1)), middle);
            };
            const auto fullRow = [&](const Lum8u* row) {
                return rowAround(row, load<blockSize>(row + start));
            };
            score = load<blockSize>(scores.row + start);
            const Bytes highest =
                max(rowAround(scores.row, score), max(fullRow(scores.above), fullRow(scores.below)));
            const Bytes stays = bitsAs<Lum8u>(score == highest);
            mark = mark & stays;
            score = score & stays;
            bits = nonZeroBits(mark);
        }
        store(mark, dstMarks + start);
        store(score, dstScores + start);
        corners += std::popcount(bits >> (x - start));
        x = start + blockSize;
    }
    return corners;
}

// ---- orientation

Lum8u orientationBin(const SegmentTest& test, const CircleDirections& directions, const Lum8u* centre) {
    constexpr float twoPi = 6.28318530717958647692F;
    const int half = test.perimeter / 2;
    // Opposite positions have opposite directions; in the circle of 16 they are subtracted first, in integers.
    const bool isPaired = test.perimeter == 16;
    float s1 = 0;
    float s2 = 0;
    for (int k = 0; k < (isPaired ? half : test.perimeter); ++k) {
        const int other = isPaired ? centre[test.circle[k + half]] : *centre;
        const auto difference = static_cast<float>(centre[test.circle[k]] - other);
        s1 += difference * directions.sines[k];
        s2 += difference * directions.cosines[k];
    }
    if (isPaired) s1 += 1e-6F;
    float angle = nearestFloat(std::atan2(static_cast<double>(s2), static_cast<double>(s1)));
    if (angle < 0) angle += twoPi;
    const int bin = truncatedIndex(angle * directions.binScale);
    return static_cast<Lum8u>((bin == directions.bins ? 0 : bin) & binBits);
}

} // namespace lum::kernels
