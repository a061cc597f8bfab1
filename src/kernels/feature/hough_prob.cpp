#include "kernels/feature/hough_prob.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "frame/convert.h"
#include "frame/instances.h"
#include "frame/lanes_reduce.h"

namespace lum::kernels {
namespace {

constexpr int bytesOfDirection = sizeof(LumPoint32f);
static_assert(bytesOfDirection == 8, "a cosine and a sine");

/// In single precision, every product and sum rounded.
float rhoOf(LumPoint32f direction, float x, float y) { return direction.x * x + direction.y * y; }

/// visit(theta, cell) for each vote that the plane holds.
template <class Cell, class Visit>
void forEachVoteScalar(const LinePlane& plane, Cell* cells, LumPoint point, const Visit& visit) {
    const auto x = static_cast<float>(point.x);
    const auto y = static_cast<float>(point.y);
    const std::int64_t cellCount = std::int64_t{plane.rhoCount} * plane.thetaCount;
    std::int64_t row = plane.halfRho;
    for (Lum32s theta = 0; theta < plane.thetaCount; ++theta) {
        const std::int64_t place = row + truncatedIndex(rhoOf(directionOf(plane, theta), x, y));
        if (place >= 0 && place < cellCount) visit(theta, cells + static_cast<std::ptrdiff_t>(place));
        row += plane.rhoCount;
    }
}

template <class Cell, class Visit>
LUM_LANE void forEachVote(const LinePlane& plane, Cell* cells, LumPoint point, const Visit& visit) {
    constexpr int group = 16;
    const auto x = static_cast<float>(point.x);
    const auto y = static_cast<float>(point.y);
    const Lum32s thetaCount = plane.thetaCount;
    Lum32s places[group];
    for (int i = 0; i < group; ++i) places[i] = plane.halfRho + i * plane.rhoCount;
    auto rows = load<group>(places);
    const auto nextRows = broadcast<group>(group * plane.rhoCount);
    Lum32s theta = 0;
    // 16 angles per iteration
    for (; theta <= thetaCount - group; theta += group) {
        const auto directions = bitsAs<float>(load<bytesOfDirection * group>(
            plane.directions + bytesOfDirection * static_cast<std::ptrdiff_t>(theta)));
        const auto rho =
            evenElements(directions) * broadcast<group>(x) + oddElements(directions) * broadcast<group>(y);
        store(truncated(rho) + rows, places);
        rows = rows + nextRows;
#pragma GCC unroll 16
        for (int i = 0; i < group; ++i) visit(theta + i, cells + places[i]);
    }
    // tail: scalar, one angle at a time
    for (; theta < thetaCount; ++theta) {
        const Lum32s row = plane.halfRho + theta * plane.rhoCount;
        visit(theta, cells + row + truncatedIndex(rhoOf(directionOf(plane, theta), x, y)));
    }
}

struct KeepBest {
    BestVote& best;

    template <class Cell> LUM_LANE void operator()(Lum32s theta, Cell* cell) const {
        const Lum32s votes = ++*cell;
        if (votes > best.votes) [[unlikely]]
            best = {votes, theta};
    }
};

struct Take {
    template <class Cell> LUM_LANE void operator()(Lum32s, Cell* cell) const { --*cell; }
};

} // namespace

LumPoint32f directionOf(const LinePlane& plane, Lum32s theta) {
    LumPoint32f direction;
    std::memcpy(&direction, plane.directions + bytesOfDirection * static_cast<std::ptrdiff_t>(theta),
                sizeof direction);
    return direction;
}

bool votesStayInRows(const LinePlane& plane, LumSize size) {
    // Rounding keeps the order of sums, so the corners hold the extremes.
    for (Lum32s theta = 0; theta < plane.thetaCount; ++theta)
        for (float x : {0.0F, static_cast<float>(size.width - 1)})
            for (float y : {0.0F, static_cast<float>(size.height - 1)}) {
                const float rho = rhoOf(directionOf(plane, theta), x, y);
                if (!(std::fabs(rho) < 0x1p30F)) return false;
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

LUM_INSTANCES(addVotesScalar, (Lum16s), (Lum32s));
LUM_INSTANCES(addVotes, (Lum16s), (Lum32s));
LUM_INSTANCES(takeVotesScalar, (Lum16s), (Lum32s));
LUM_INSTANCES(takeVotes, (Lum16s), (Lum32s));

int collectBitsScalar(const Lum8u* row, int width, Lum8u* bits, std::uint32_t first,
                      std::uint32_t* positions) {
    int count = 0;
    std::memset(bits, 0, static_cast<std::size_t>(bytesOfBits(width)));
    for (int x = 0; x < width; ++x) {
        if (row[x] == 0) continue;
        bits[x / 8] = static_cast<Lum8u>(bits[x / 8] | 1 << x % 8);
        positions[count++] = first + static_cast<std::uint32_t>(x);
    }
    return count;
}

int collectBits(const Lum8u* row, int width, Lum8u* bits, std::uint32_t first, std::uint32_t* positions) {
    constexpr int pixels = 64;
    int count = 0;
    const auto collect = [&](Block<Lum8u, pixels> block, int x, int bytes) {
        std::uint64_t set = signBits(block != zeros<Lum8u, pixels>());
        std::memcpy(bits + x / 8, &set, static_cast<std::size_t>(bytes));
        for (; set != 0; set &= set - 1)
            positions[count++] = first + static_cast<std::uint32_t>(x + std::countr_zero(set));
    };
    int x = 0;
    for (; x <= width - pixels; x += pixels) collect(load<pixels>(row + x), x, pixels / 8);
    // tail: staged copy
    if (x < width) collect(loadPartial<pixels>(row + x, width - x), x, bytesOfBits(width - x));
    return count;
}

} // namespace lum::kernels
