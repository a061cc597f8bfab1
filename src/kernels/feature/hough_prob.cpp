#include "kernels/feature/hough_prob.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "frame/convert.h"
#include "frame/lanes_reduce.h"

namespace lum::kernels {
namespace {

struct Direction {
    float cosine;
    float sine;

    Direction(const LinePlane& plane, Lum32s theta) {
        std::memcpy(this,
                    reinterpret_cast<const unsigned char*>(plane.directions) + theta * sizeof(Direction),
                    sizeof(Direction));
    }
    /// In single precision, every product and sum rounded.
    float rho(float x, float y) const { return cosine * x + sine * y; }
};

/// A cell that need not be aligned, changed by one; its votes afterwards.
template <Lum32s change, class Cell> LUM_LANE Lum32s changed(Cell* cell) {
    Cell votes;
    std::memcpy(&votes, cell, sizeof votes);
    votes = static_cast<Cell>(votes + change);
    std::memcpy(cell, &votes, sizeof votes);
    return votes;
}

/// visit(theta, cell) for each vote that the plane holds.
template <class Cell, class Visit>
void forEachVoteScalar(const LinePlane& plane, Cell* cells, LumPoint point, const Visit& visit) {
    const auto x = static_cast<float>(point.x);
    const auto y = static_cast<float>(point.y);
    const std::int64_t cellCount = std::int64_t{plane.rhoCount} * plane.thetaCount;
    std::int64_t row = plane.halfRho;
    for (Lum32s theta = 0; theta < plane.thetaCount; ++theta) {
        const std::int64_t place = row + truncatedIndex(Direction(plane, theta).rho(x, y));
        if (place >= 0 && place < cellCount) visit(theta, cells + static_cast<std::ptrdiff_t>(place));
        row += plane.rhoCount;
    }
}

template <class Cell, class Visit>
LUM_LANE void forEachVote(const LinePlane& plane, Cell* cells, LumPoint point, const Visit& visit) {
    constexpr int group = 16;
    const auto x = static_cast<float>(point.x);
    const auto y = static_cast<float>(point.y);
    Cell* middle = cells + plane.halfRho;
    Lum32s theta = 0;
    // 16 angles per iteration
    for (; theta <= plane.thetaCount - group; theta += group) {
        const auto directions = load<2 * group>(plane.directions + 2 * static_cast<std::ptrdiff_t>(theta));
        const auto rho =
            evenElements(directions) * broadcast<group>(x) + oddElements(directions) * broadcast<group>(y);
        Lum32s indices[group];
        store(truncated(rho), indices);
        for (int i = 0; i < group; ++i) {
            visit(theta + i, middle + indices[i]);
            middle += plane.rhoCount;
        }
    }
    // tail, one angle at a time
    for (; theta < plane.thetaCount; ++theta) {
        visit(theta, middle + truncatedIndex(Direction(plane, theta).rho(x, y)));
        middle += plane.rhoCount;
    }
}

struct KeepBest {
    BestVote& best;

    template <class Cell> LUM_LANE void operator()(Lum32s theta, Cell* cell) const {
        const Lum32s votes = changed<1>(cell);
        if (votes > best.votes) best = {votes, theta};
    }
};

struct Take {
    template <class Cell> LUM_LANE void operator()(Lum32s, Cell* cell) const { changed<-1>(cell); }
};

} // namespace

bool votesStayInRows(const LinePlane& plane, LumSize size) {
    // Rounding keeps the order of sums, so the corners hold the extremes.
    for (Lum32s theta = 0; theta < plane.thetaCount; ++theta)
        for (float x : {0.0F, static_cast<float>(size.width - 1)})
            for (float y : {0.0F, static_cast<float>(size.height - 1)}) {
                const float rho = Direction(plane, theta).rho(x, y);
                if (!(std::fabs(rho) < 1 << 30)) return false;
                const Lum32s index = truncatedIndex(rho) + plane.halfRho;
                if (index < 0 || index >= plane.rhoCount) return false;
            }
    return true;
}

template <class Cell>
void addVotesScalar(const LinePlane& plane, Cell* cells, LumPoint point, BestVote& best) {
    forEachVoteScalar(plane, cells, point, KeepBest{best});
}
template <class Cell> void addVotes(const LinePlane& plane, Cell* cells, LumPoint point, BestVote& best) {
    BestVote found = best;
    forEachVote(plane, cells, point, KeepBest{found});
    best = found;
}
template <class Cell> void takeVotesScalar(const LinePlane& plane, Cell* cells, LumPoint point) {
    forEachVoteScalar(plane, cells, point, Take{});
}
template <class Cell> void takeVotes(const LinePlane& plane, Cell* cells, LumPoint point) {
    forEachVote(plane, cells, point, Take{});
}

template void addVotesScalar(const LinePlane&, Lum16s*, LumPoint, BestVote&);
template void addVotesScalar(const LinePlane&, Lum32s*, LumPoint, BestVote&);
template void addVotes(const LinePlane&, Lum16s*, LumPoint, BestVote&);
template void addVotes(const LinePlane&, Lum32s*, LumPoint, BestVote&);
template void takeVotesScalar(const LinePlane&, Lum16s*, LumPoint);
template void takeVotesScalar(const LinePlane&, Lum32s*, LumPoint);
template void takeVotes(const LinePlane&, Lum16s*, LumPoint);
template void takeVotes(const LinePlane&, Lum32s*, LumPoint);

int makeMaskScalar(const Lum8u* row, Lum8u* mask, int width) {
    int ones = 0;
    for (int x = 0; x < width; ++x) {
        mask[x] = row[x] != 0;
        ones += mask[x];
    }
    return ones;
}

int makeMask(const Lum8u* row, Lum8u* mask, int width) {
    constexpr int pixels = 64;
    int ones = 0;
    const auto maskOf = [&](Block<Lum8u, pixels> block) {
        const auto isSet = block != zeros<Lum8u, pixels>();
        ones += std::popcount(signBits(isSet));
        return bitsAs<Lum8u>(isSet) & broadcast<pixels>(Lum8u{1});
    };
    int x = 0;
    for (; x <= width - pixels; x += pixels) store(maskOf(load<pixels>(row + x)), mask + x);
    if (x < width) storePartial(maskOf(loadPartial<pixels>(row + x, width - x)), mask + x, width - x);
    return ones;
}

} // namespace lum::kernels
