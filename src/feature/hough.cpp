#include "feature/hough.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "feature/hough_plane.h"
#include "frame/arena.h"
#include "frame/image.h"
#include "kernels/feature/hough_vote.h"

namespace lum {
namespace {

using kernels::AngleRows;
using kernels::houghMargin;
using kernels::LineFan;
using kernels::PointRows;

constexpr std::uintptr_t bufferAlignment = 32;

LumStatus checkLineSearch(LumStatus pointers, int srcStep, LumSize roiSize, LumPoint32f delta, int threshold,
                          int maxLineCount) {
    const auto perimeterHalf = static_cast<float>(std::int64_t{roiSize.width} + roiSize.height);
    return firstFailure(
        pointers, errorIf(srcStep < 1, lumStatusStepError), checkSize(roiSize), checkCount(maxLineCount),
        checkHoughSteps(delta), errorIf(delta.x > perimeterHalf, lumStatusBadArgument),
        errorIf(delta.y > houghPi, lumStatusBadArgument), errorIf(threshold < 1, lumStatusBadArgument));
}

/// The indices from first to end.
struct IndexRange {
    Lum32s first;
    Lum32s end;

    bool isEmpty() const { return first >= end; }
};

/// The indices below count whose value, which does not fall with the index, lies from low to high.
template <class ValueOf>
IndexRange indicesWithin(float low, float high, Lum32s count, const ValueOf& valueOf) {
    // The first index for which what holds from some index on holds.
    const auto firstWhere = [&](const auto& holds) {
        Lum32s from = 0;
        Lum32s to = count;
        while (from < to) {
            const Lum32s middle = from + (to - from) / 2;
            if (holds(valueOf(middle)))
                to = middle;
            else
                from = middle + 1;
        }
        return from;
    };
    return {firstWhere([&](float value) { return value >= low; }),
            firstWhere([&](float value) { return !(value <= high); })};
}

/// The best lines, by decreasing votes; of equal ones the earlier is first.
class BestLines {
  public:
    struct Line {
        Lum32s rho;
        Lum32s theta;
        Lum32s votes;
    };

    BestLines(Line* lines, int capacity) : lines_(lines), capacity_(capacity) {}

    void insert(Line line) {
        if (count_ == capacity_) {
            isTruncated_ = true;
            if (lines_[count_ - 1].votes >= line.votes) return;
            --count_;
        }
        Line* end = lines_ + count_;
        Line* place = std::upper_bound(lines_, end, line.votes,
                                       [](Lum32s votes, const Line& other) { return votes > other.votes; });
        std::memmove(place + 1, place, static_cast<std::size_t>(end - place) * sizeof(Line));
        *place = line;
        ++count_;
    }

    int count() const { return count_; }
    const Line& operator[](int i) const { return lines_[i]; }
    /// Whether more lines than the list holds have qualified.
    bool isTruncated() const { return isTruncated_; }

  private:
    Line* lines_;
    int capacity_;
    int count_ = 0;
    bool isTruncated_ = false;
};

/// A search in a window of the plane.
class LineSearch {
  public:
    LineSearch(Image<const Lum8u> src, LumSize roiSize, LumPoint32f delta, int threshold, int maxLineCount,
               Lum8u* buffer)
        : size_(roiSize), delta_(delta), threshold_(threshold), plane_(roiSize, delta), best_(nullptr, 0) {
        Arena arena(buffer);
        arena.align(bufferAlignment);
        for (Lum32s*& row : rows_) row = arena.allocate<Lum32s>(cellsOfRow()) + houghMargin;
        cosines_ = arena.allocate<Lum32s>(plane_.thetaCount);
        sines_ = arena.allocate<Lum32s>(plane_.thetaCount);
        best_ = BestLines(arena.allocate<BestLines::Line>(maxLineCount), maxLineCount);
        points_ = {arena.align(kernels::pointRowAlignment).allocate<unsigned char>(0), roiSize.height};
        collectPoints(src);
        fillTables();
    }

    Lum32s halfRho() const { return plane_.halfRho(); }
    /// What an index of the plane is reported as.
    float rhoAt(Lum32s index) const { return static_cast<float>(index - halfRho()) * delta_.x; }
    float thetaAt(Lum32s index) const { return static_cast<float>(index) * delta_.y; }

    IndexRange allRhos() const { return {0, plane_.rhoCount}; }
    IndexRange allThetas() const { return {0, plane_.thetaCount}; }
    IndexRange rhosWithin(float low, float high) const {
        return indicesWithin(low, high, plane_.rhoCount, [&](Lum32s i) { return rhoAt(i); });
    }
    IndexRange thetasWithin(float low, float high) const {
        return indicesWithin(low, high, plane_.thetaCount, [&](Lum32s i) { return thetaAt(i); });
    }

    /// Collects the lines of the window and writes them.
    LumStatus run(IndexRange rhos, IndexRange thetas, LumPoint32f* lines, int* lineCount) {
        if (!rhos.isEmpty() && !thetas.isEmpty()) collectPeaks(rhos, thetas);
        for (int i = 0; i < best_.count(); ++i) lines[i] = {rhoAt(best_[i].rho), thetaAt(best_[i].theta)};
        *lineCount = best_.count();
        return best_.isTruncated() ? lumStatusResultTruncated : lumStatusOk;
    }

  private:
    std::size_t cellsOfRow() const { return static_cast<std::size_t>(plane_.rhoCount) + 2 * houghMargin; }

    void collectPoints(Image<const Lum8u> src) {
        auto* record = const_cast<unsigned char*>(points_.first);
        for (int y = 0; y < size_.height; ++y) {
            const Lum32s count = kernels::collectColumns(src.row(y), size_.width,
                                                         reinterpret_cast<float*>(record + sizeof(Lum32s)));
            std::memcpy(record, &count, sizeof count);
            record += kernels::pointRowBytes(count);
        }
    }

    void fillTables() {
        const double scale = 1 / static_cast<double>(delta_.x) * 1024;
        float angle = 0;
        for (Lum32s t = 0; t < plane_.thetaCount; ++t) {
            cosines_[t] = truncatedTo32s(std::cos(static_cast<double>(angle)) * scale);
            sines_[t] = truncatedTo32s(std::sin(static_cast<double>(angle)) * scale);
            angle += delta_.y;
        }
    }

    Lum32s* row(Lum32s t) const { return rows_[t & 3]; }
    void clear(Lum32s t) { std::memset(row(t) - houghMargin, 0, cellsOfRow() * sizeof(Lum32s)); }

    /// The votes of an angle for the lines of the window.
    void vote(Lum32s t, IndexRange rhos) {
        const LineFan fan{static_cast<float>(cosines_[t]), static_cast<float>(sines_[t]), halfRho()};
        if (kernels::votesStayInRow(fan, size_, plane_.rhoCount))
            kernels::vote(fan, points_, row(t));
        else
            kernels::voteScalar(fan, points_, row(t), plane_.rhoCount);
        if (rhos.first > 0) row(t)[rhos.first - 1] = 0;
        if (rhos.end < plane_.rhoCount) row(t)[rhos.end] = 0;
    }

    void collectPeaks(IndexRange rhos, IndexRange thetas) {
        clear(thetas.first - 1);
        for (Lum32s t = thetas.first; t <= thetas.end; ++t) {
            clear(t);
            if (t < thetas.end) vote(t, rhos);
            if (t > thetas.first) collectPeaksOf(t - 1, rhos);
        }
    }

    void collectPeaksOf(Lum32s t, IndexRange rhos) {
        const AngleRows rows{row(t - 1), row(t), row(t + 1)};
        for (Lum32s rho = kernels::nextPeak(rows, rhos.first, rhos.end, threshold_); rho < rhos.end;
             rho = kernels::nextPeak(rows, rho + 1, rhos.end, threshold_))
            best_.insert({rho, t, rows.row[rho]});
    }

    LumSize size_;
    LumPoint32f delta_;
    int threshold_;
    HoughPlane plane_;
    Lum32s* rows_[4];
    Lum32s* cosines_;
    Lum32s* sines_;
    BestLines best_;
    PointRows points_;
};

} // namespace

LumStatus houghLineGetSize(LumSize roiSize, LumPoint32f delta, int maxLineCount, Lum32s* size) {
    if (auto s = firstFailure(checkNotNull(size), checkSize(roiSize), checkHoughSteps(delta))) return s;
    const HoughPlane plane(roiSize, delta);
    const auto rhos = static_cast<unsigned>(plane.rhoCount);
    const auto thetas = static_cast<unsigned>(plane.thetaCount);
    const auto width = static_cast<unsigned>(roiSize.width);
    const auto height = static_cast<unsigned>(roiSize.height);
    *size = static_cast<Lum32s>(16 * rhos + 16 * static_cast<unsigned>(maxLineCount) + 256 + 8 * thetas +
                                (4 * width + 48) * height);
    const double need = (2.0 * plane.thetaCount + plane.rhoCount + 4) * 4 +
                        roiSize.height * ((roiSize.width + 8.0) * 4 + 16) + 96 + 16.0 * maxLineCount +
                        (4 * (plane.rhoCount + 4.0) + 32) * 3;
    return need > 2147483647.0 ? lumStatusBufferTooLarge : lumStatusOk;
}

LumStatus houghLine(const Lum8u* src, int srcStep, LumSize roiSize, LumPoint32f delta, int threshold,
                    LumPoint32f* lines, int maxLineCount, int* lineCount, Lum8u* buffer) {
    if (auto s = checkLineSearch(checkNotNull(src, lines, lineCount, buffer), srcStep, roiSize, delta,
                                 threshold, maxLineCount))
        return s;
    LineSearch search({src, srcStep}, roiSize, delta, threshold, maxLineCount, buffer);
    return search.run(search.allRhos(), search.allThetas(), lines, lineCount);
}

LumStatus houghLineRegion(const Lum8u* src, int srcStep, LumSize roiSize, LumPoint32f* lines,
                          LumPoint32f dstRange[2], int maxLineCount, int* lineCount, LumPoint32f delta,
                          int threshold, Lum8u* buffer) {
    if (auto s = checkLineSearch(checkNotNull(src, lines, dstRange, lineCount, buffer), srcStep, roiSize,
                                 delta, threshold, maxLineCount))
        return s;
    LumPoint32f& low = dstRange[0];
    LumPoint32f& high = dstRange[1];
    if (high.x < low.x || high.y < low.y) {
        *lineCount = 0;
        return lumStatusEmptyRange;
    }
    low.y = std::clamp(low.y, 0.0F, houghPi);
    high.y = std::clamp(high.y, 0.0F, houghPi);
    LineSearch search({src, srcStep}, roiSize, delta, threshold, maxLineCount, buffer);
    return search.run(search.rhosWithin(low.x, high.x), search.thetasWithin(low.y, high.y), lines, lineCount);
}

} // namespace lum
