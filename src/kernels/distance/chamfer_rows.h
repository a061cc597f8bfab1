// What both vector forms of a chamfer pass share: blocks of distances before the chains along their own row.
#pragma once

#include "frame/lanes_convert.h"
#include "kernels/distance/chamfer.h"

namespace lum::kernels {

/// How far to the side the steps of a pass reach; that many pixels at each end of a row need tests of its bounds.
inline constexpr int chamferReach = 2;

/// The rows that a pass has handled before a row; null where the region has none.
template <class T> struct RowsBefore {
    const T* one;
    const T* two;
};

/// A direction of 1 is that of the first pass, downward, -1 that of the second.
template <class T> RowsBefore<T> rowsBefore(Image<T> dst, int height, int y, int direction) {
    const auto rowOrNull = [&](int distance) {
        const bool inside = direction == 1 ? y >= distance : y < height - distance;
        return inside ? dst.row(y - direction * distance) : nullptr;
    };
    return {rowOrNull(1), rowOrNull(2)};
}

/// 0 for the pixels that are 0, and the farthest distance for all others.
template <class T, int N> LUM_LANE Block<T, N> startingDistances(const Lum8u* src) {
    const auto pixels = widen<UnsignedOf<sizeof(T)>>(load<N>(src));
    const auto measured = pixels != zeros<UnsignedOf<sizeof(T)>, N>();
    return bitsAs<T>(measured) & broadcast<N>(farthest<T>);
}

template <class T, int N> LUM_LANE Block<T, N> chained(Block<T, N> distances, Block<T, N> step) {
    if constexpr (std::is_integral_v<T>)
        return addSaturated(distances, step);
    else
        return distances + step;
}

/// The lengths of the steps in every element of a block, made once: distances of 8 bits may lie anywhere, so what is
/// kept in memory would be read anew after every store.
template <class T, int N> struct ChamferLengths {
    Block<T, N> axial, diagonal, knight, doubleAxial, doubleDiagonal;

    explicit ChamferLengths(const ChamferMetric<T>& metric)
        : axial(broadcast<N>(metric.axial)),
          diagonal(broadcast<N>(metric.diagonal)),
          knight(broadcast<N>(metric.knight)),
          doubleAxial(broadcast<N>(metric.doubleAxial)),
          doubleDiagonal(broadcast<N>(metric.doubleDiagonal)) {}
};

/// The shorter of the distances of N pixels from x on and their chains over the rows before.
template <ChamferSteps steps, class T, int N>
LUM_LANE Block<T, N> overRowsBefore(Block<T, N> distances, RowsBefore<T> rows, int x,
                                    const ChamferLengths<T, N>& lengths) {
    const auto take = [&](const T* row, int dx, Block<T, N> length) {
        distances = min(chained(load<N>(row + x + dx), length), distances);
    };
    // Two neighbours at one distance: the shorter one is chosen before the step.
    const auto takeBoth = [&](const T* row, int dx, Block<T, N> length) {
        const auto shorter = min(load<N>(row + x - dx), load<N>(row + x + dx));
        distances = min(chained(shorter, length), distances);
    };
    if (rows.one == nullptr) return distances;
    take(rows.one, 0, lengths.axial);
    if constexpr (steps == ChamferSteps::axial) return distances;
    takeBoth(rows.one, 1, lengths.diagonal);
    if constexpr (steps == ChamferSteps::eight) return distances;
    takeBoth(rows.one, 2, lengths.knight);
    if (rows.two == nullptr) return distances;
    takeBoth(rows.two, 1, lengths.knight);
    if constexpr (steps == ChamferSteps::knight) return distances;
    take(rows.two, 0, lengths.doubleAxial);
    takeBoth(rows.two, 2, lengths.doubleDiagonal);
    return distances;
}

} // namespace lum::kernels
