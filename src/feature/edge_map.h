// From rows of gradient magnitudes to edges: suppression row by row over a ring of three rows, then the following of
// edges from the strong ones.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/arena.h"
#include "frame/image.h"
#include "kernels/feature/canny.h"

namespace lum {

/// M is the type of the magnitudes.
template <class M> class EdgeMap {
  public:
    EdgeMap(LumSizeL size, Arena& arena)
        : size_(size),
          mapWidth_(size.width + 2),
          map_(arena.align(32).allocate<Lum8u>(mapWidth_ * (size.height + 2))) {
        for (M*& line : lines_) line = arena.align(sizeof(M)).template allocate<M>(mapWidth_) + 1;
        for (Lum8u*& row : directions_) row = arena.allocate<Lum8u>(size.width);
        stack_ = arena.align(sizeof(std::uint32_t)).allocate<std::uint32_t>(size.width * size.height);
    }

    /// enter(y, magnitudes, directions) computes row y.
    template <class Enter> void detect(Image<Lum8u> dst, M high, Enter enter) {
        std::fill_n(map_, mapWidth_, kernels::mapNothing);
        std::fill_n(mapRow(size_.height) - 1, mapWidth_, kernels::mapNothing);
        for (M* line : lines_) std::fill_n(line - 1, mapWidth_, M{0});

        std::uint32_t* top = stack_;
        const auto join = [&](std::intptr_t y) {
            Lum8u* row = mapRow(y);
            top = kernels::joinRow(row, mapWidth_, size_.width, static_cast<std::uint32_t>(row - map_), top);
        };
        enter(0, line(0), directions_[0]);
        for (std::intptr_t y = 0; y < size_.height; ++y) {
            if (y + 1 < size_.height)
                enter(y + 1, line(y + 1), directions_[(y + 1) % 2]);
            else
                std::fill_n(line(y + 1), size_.width, M{0});
            Lum8u* row = mapRow(y);
            row[-1] = kernels::mapNothing;
            row[size_.width] = kernels::mapNothing;
            kernels::suppressRow<M>({line(y - 1), line(y), line(y + 1)}, directions_[y % 2], size_.width,
                                    high, row);
            if (y > 0) join(y - 1);
        }
        join(size_.height - 1);

        kernels::followEdges(map_, mapWidth_, stack_, top);
        for (std::intptr_t y = 0; y < size_.height; ++y) kernels::edgeRow(mapRow(y), size_.width, dst.row(y));
    }

  private:
    /// The first pixel of row y, after the margin.
    Lum8u* mapRow(std::intptr_t y) const { return map_ + (y + 1) * mapWidth_ + 1; }
    M* line(std::intptr_t y) const { return lines_[(y + 3) % 3]; }

    LumSizeL size_;
    std::ptrdiff_t mapWidth_;
    Lum8u* map_;
    M* lines_[3];
    Lum8u* directions_[2];
    std::uint32_t* stack_;
};

} // namespace lum
