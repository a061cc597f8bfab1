// The sweeps of a raster watershed: every pixel takes what the neighbours before it in the sweep offer, over and over,
// until no sweep changes anything.
#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "frame/arena.h"
#include "kernels/segment/raster_boundary.h"

namespace lum::kernels {

/// The neighbour from which a pixel has its label.
enum From : Lum8u { seed, right, upRight, up, upLeft, left, downLeft, down, downRight, nowhere };

template <class Cost> struct RasterMaps {
    std::size_t step;
    Cost* costs;
    /// A From, and a bit that says whether the pixel is active: to be looked at by the next sweep.
    Lum8u* from;
    /// Rows that may hold active pixels, with one row more at each end.
    Lum8u* activeRows;

    RasterMaps(Arena& arena, LumSize size) : step(static_cast<std::size_t>(size.width)) {
        const auto height = static_cast<std::size_t>(size.height);
        costs = arena.align(alignof(Cost)).template allocate<Cost>(step * height);
        from = arena.allocate<Lum8u>(step * height);
        activeRows = arena.allocate<Lum8u>(height + 2);
    }
};

template <class Cost, class Marker, Hops hops> class Sweeps {
    using Relief = typename Cost::Relief;
    static constexpr Marker boundary = std::numeric_limits<Marker>::max();
    static constexpr bool corners = hops == Hops::eight || hops == Hops::chamfer;
    static constexpr int axial = hops == Hops::chamfer ? 10 : hops == Hops::eikonal ? Cost::eikonalAddend : 0;
    static constexpr int diagonal = hops == Hops::chamfer ? 14 : 0;

  public:
    Sweeps(Arena& arena, Image<const Relief> relief, Image<Marker> markers, LumSize size)
        : relief_(relief), markers_(markers), size_(size), maps_(arena, size) {}

    void run(RasterBoundaries boundaries) {
        initialise();
        sweepRow<Way::toRight, Take::always, OtherRow::none>(0);
        sweepRow<Way::toLeft, Take::ifLower, OtherRow::none>(0);
        for (int y = 1; y < size_.height; ++y) {
            sweepRow<Way::toRight, Take::always, OtherRow::above>(y);
            sweepRow<Way::toLeft, Take::ifLower, OtherRow::above>(y);
        }
        for (int y = size_.height - 2; y >= 0; --y) {
            sweepRow<Way::toRight, Take::ifChanged, OtherRow::below>(y);
            sweepRow<Way::toLeft, Take::ifChanged, OtherRow::below>(y);
        }
        while (sweepDown() && sweepUp()) {
        }
        if (boundaries != RasterBoundaries::none)
            BoundaryPass<Cost, Marker>(markers_, maps_.costs, maps_.step, size_).draw(boundaries);
    }

  private:
    enum class Way { toRight, toLeft };
    enum class OtherRow { none, above, below };
    /// When a pixel takes what it is offered, and which pixels are asked.
    enum class Take { always, ifLower, ifChanged, ifChangedAndActive };

    static constexpr Lum8u activeBit = 0x80;

    struct Offer {
        Cost cost;
        Marker label;
        From from = nowhere;

        explicit operator bool() const { return from != nowhere; }
    };

    void initialise() {
        meetsBoundary_ = false;
        for (int y = 0; y < size_.height; ++y) {
            const Marker* labels = markers_.row(y);
            const Relief* levels = relief_.row(y);
            Cost* costs = costsOf(y);
            Lum8u* from = fromOf(y);
            for (int x = 0; x < size_.width; ++x) {
                const bool isSeed = labels[x] != 0;
                costs[x] = isSeed ? Cost::ofSeed(levels[x]) : Cost::unreached();
                from[x] = isSeed ? seed : nowhere;
                meetsBoundary_ |= labels[x] == boundary;
            }
        }
        std::memset(maps_.activeRows, 1, static_cast<std::size_t>(size_.height) + 2);
    }

    bool sweepDown() {
        bool changed = false;
        for (int y = 1; y < size_.height; ++y) changed |= sweepActiveRow<OtherRow::above>(y);
        return changed;
    }
    bool sweepUp() {
        bool changed = false;
        for (int y = size_.height - 2; y >= 0; --y) changed |= sweepActiveRow<OtherRow::below>(y);
        return changed;
    }

    template <OtherRow otherRow> bool sweepActiveRow(int y) {
        Lum8u& isActive = maps_.activeRows[y + 1];
        if (isActive == 0) return false;
        // A pixel that changes, and so stays active, raises the flag again.
        isActive = 0;
        const bool changed = sweepRow<Way::toRight, Take::ifChangedAndActive, otherRow>(y);
        return sweepRow<Way::toLeft, Take::ifChangedAndActive, otherRow>(y) || changed;
    }

    /// Whether a pixel of the row has changed; told by Take::ifChanged and Take::ifChangedAndActive only.
    template <Way way, Take take, OtherRow otherRow> bool sweepRow(int y) {
        const Row row(*this, y,
                      otherRow == OtherRow::above   ? y - 1
                      : otherRow == OtherRow::below ? y + 1
                                                    : y);
        bool changed = false;
        for (int i = 0; i < size_.width; ++i) {
            const int x = way == Way::toRight ? i : size_.width - 1 - i;
            if constexpr (take == Take::ifChangedAndActive) {
                if (noneActive(row.from + (way == Way::toRight ? x : x - 7), i)) {
                    i += 7;
                    continue;
                }
                if ((row.from[x] & activeBit) == 0) continue;
            }
            if ((row.from[x] & ~activeBit) == seed) continue;
            const Offer offer = bestOffer<way, otherRow>(row, x);
            const bool isLower =
                offer && (take == Take::always || offer.cost.at(row.relief[x]) < row.costs[x]);
            if (isLower) {
                row.labels[x] = offer.label;
                row.costs[x] = offer.cost.at(row.relief[x]);
                row.from[x] = static_cast<Lum8u>((row.from[x] & activeBit) | offer.from);
            }
            if constexpr (take == Take::ifChanged || take == Take::ifChangedAndActive) {
                if (isLower || followsItsNeighbour(row, x, y)) {
                    wakeNeighbours(x, y);
                    changed = true;
                } else {
                    row.from[x] &= static_cast<Lum8u>(~activeBit);
                }
            }
        }
        return changed;
    }

    /// A row, and the one next to it that has a say.
    struct Row {
        const Relief* relief;
        Marker* labels;
        Cost* costs;
        Lum8u* from;
        const Marker* otherLabels;
        const Cost* otherCosts;

        Row(const Sweeps& sweeps, int y, int other)
            : relief(sweeps.relief_.row(y)),
              labels(sweeps.markers_.row(y)),
              costs(sweeps.costsOf(y)),
              from(sweeps.fromOf(y)),
              otherLabels(sweeps.markers_.row(other)),
              otherCosts(sweeps.costsOf(other)) {}
    };

    /// The first of the lowest; on the way to the right, corners have a say too.
    template <Way way, OtherRow otherRow> Offer bestOffer(const Row& row, int x) const {
        constexpr bool isAbove = otherRow == OtherRow::above;
        const int beside = way == Way::toRight ? x - 1 : x + 1;
        Offer best;
        if (way == Way::toRight ? x > 0 : x < size_.width - 1)
            best = offerOf(row.costs[beside], row.labels[beside], axial, way == Way::toRight ? left : right);
        if constexpr (otherRow == OtherRow::none) return best;
        const Offer opposite = offerOf(row.otherCosts[x], row.otherLabels[x], axial, isAbove ? up : down);
        if constexpr (hops == Hops::eikonal) {
            if (!best || !opposite) return best ? best : opposite;
            const bool isOpposite = opposite.cost < best.cost;
            const Cost higher = isOpposite ? best.cost : opposite.cost;
            if (isOpposite) best = opposite;
            best.cost = best.cost.withOther(higher);
            return best;
        }
        if (corners && way == Way::toRight && x > 0)
            takeLower(best, offerOf(row.otherCosts[x - 1], row.otherLabels[x - 1], diagonal,
                                    isAbove ? upLeft : downLeft));
        takeLower(best, opposite);
        if (corners && way == Way::toRight && x < size_.width - 1)
            takeLower(best, offerOf(row.otherCosts[x + 1], row.otherLabels[x + 1], diagonal,
                                    isAbove ? upRight : downRight));
        return best;
    }

    /// Of a boundary that was there before there is none.
    Offer offerOf(const Cost& cost, Marker label, int addend, From from) const {
        if (meetsBoundary_ && label == boundary) return {};
        return {cost.plus(addend), label, from};
    }

    static void takeLower(Offer& best, const Offer& offer) {
        if (offer && (!best || offer.cost < best.cost)) best = offer;
    }

    /// Whether the neighbour that gave a pixel its label has another one now, which the pixel takes.
    bool followsItsNeighbour(const Row& row, int x, int y) {
        static constexpr std::array<int, 10> dx{0, 1, 1, 0, -1, -1, -1, 0, 1, 0};
        static constexpr std::array<int, 10> dy{0, 0, -1, -1, -1, 0, 1, 1, 1, 0};
        const int from = row.from[x] & ~activeBit;
        const Marker label = markers_.row(y + dy[from])[x + dx[from]];
        if (label == row.labels[x]) return false;
        row.labels[x] = label;
        return true;
    }

    /// Makes the eight neighbours active; seeds never change.
    void wakeNeighbours(int x, int y) {
        const int first = std::max(x - 1, 0);
        const int last = std::min(x + 1, size_.width - 1);
        for (int row = std::max(y - 1, 0); row <= std::min(y + 1, size_.height - 1); ++row) {
            Lum8u* from = fromOf(row);
            for (int column = first; column <= last; ++column)
                if (from[column] != seed && (column != x || row != y)) from[column] |= activeBit;
        }
        std::memset(maps_.activeRows + y, 1, 3);
    }

    /// Whether eight pixels that are still to come hold none.
    bool noneActive(const Lum8u* from, int done) const {
        if (done > size_.width - 8) return false;
        std::uint64_t eight;
        std::memcpy(&eight, from, sizeof eight);
        return (eight & 0x8080808080808080U) == 0;
    }

    Cost* costsOf(int y) const { return maps_.costs + static_cast<std::size_t>(y) * maps_.step; }
    Lum8u* fromOf(int y) const { return maps_.from + static_cast<std::size_t>(y) * maps_.step; }

    Image<const Relief> relief_;
    Image<Marker> markers_;
    LumSize size_;
    RasterMaps<Cost> maps_;
    /// Whether a marker is a boundary from the beginning.
    bool meetsBoundary_ = false;
};

template <class Cost, class Marker>
void rasterWatershed(Image<const typename Cost::Relief> relief, Image<Marker> markers, LumSize size,
                     Hops hops, RasterBoundaries boundaries, unsigned char* block) {
    Arena arena(block);
    switch (hops) {
    case Hops::eight:
        return Sweeps<Cost, Marker, Hops::eight>(arena, relief, markers, size).run(boundaries);
    case Hops::four:
        return Sweeps<Cost, Marker, Hops::four>(arena, relief, markers, size).run(boundaries);
    case Hops::chamfer:
        return Sweeps<Cost, Marker, Hops::chamfer>(arena, relief, markers, size).run(boundaries);
    case Hops::eikonal:
        return Sweeps<Cost, Marker, Hops::eikonal>(arena, relief, markers, size).run(boundaries);
    }
}

template <class Cost> std::size_t rasterBytes(LumSize size) {
    Arena arena(nullptr);
    RasterMaps<Cost>(arena, size);
    return arena.used();
}

} // namespace lum::kernels
