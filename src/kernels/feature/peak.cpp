#include "kernels/feature/peak.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <type_traits>

#include "frame/instances.h"
#include "frame/lanes_reduce.h"

namespace lum::kernels {
namespace {

constexpr float smallestNormal = std::numeric_limits<float>::min();

/// Every magnitude is above -1; from there on the threshold can be negated.
template <class T> T usableThreshold(T threshold) { return std::max(threshold, static_cast<T>(-1)); }

/// The threshold is usable.
template <class T> bool isCandidate(T value, T threshold) { return value > threshold || value < -threshold; }

template <class T> bool isExtreme(T value, T extreme) {
    if constexpr (std::is_same_v<T, Lum32f>)
        return std::fabs(value - extreme) <= smallestNormal;
    else
        return value == extreme;
}

/// The extreme that starts from the value itself: better(neighbour, extreme) says which of two stays.
template <bool eightNeighbours, class T, class At, class Better>
LUM_LANE auto extremeOf(T value, const auto& rows, At at, Better better) {
    auto extreme = better(at(rows.current - 1), value);
    extreme = better(at(rows.current + 1), extreme);
    extreme = better(at(rows.above), extreme);
    extreme = better(at(rows.below), extreme);
    if constexpr (eightNeighbours) {
        extreme = better(at(rows.above - 1), extreme);
        extreme = better(at(rows.above + 1), extreme);
        extreme = better(at(rows.below - 1), extreme);
        extreme = better(at(rows.below + 1), extreme);
    }
    return extreme;
}

} // namespace

template <class T, bool eightNeighbours>
std::ptrdiff_t findPeaksInRowScalar(const PeakRows<T>& rows, std::ptrdiff_t count, T threshold,
                                    LumPoint first, LumPoint* peaks, std::ptrdiff_t room) {
    const T usable = usableThreshold(threshold);
    std::ptrdiff_t found = 0;
    for (std::ptrdiff_t x = 0; x < count && found < room; ++x) {
        const T value = rows.current[x];
        if (!isCandidate(value, usable)) continue;
        const auto at = [x](const T* place) { return place[x]; };
        const T extreme =
            value > 0 ? extremeOf<eightNeighbours>(value, rows, at, [](T a, T b) { return a > b ? a : b; })
                      : extremeOf<eightNeighbours>(value, rows, at, [](T a, T b) { return a < b ? a : b; });
        if (isExtreme(value, extreme)) peaks[found++] = {first.x + static_cast<Lum32s>(x), first.y};
    }
    return found;
}

template <class T, bool eightNeighbours>
std::ptrdiff_t findPeaksInRow(const PeakRows<T>& rows, std::ptrdiff_t count, T threshold, LumPoint first,
                              LumPoint* peaks, std::ptrdiff_t room) {
    const T usable = usableThreshold(threshold);
    const auto above = broadcast<8>(usable);
    const auto below = broadcast<8>(static_cast<T>(-usable));
    std::ptrdiff_t found = 0;
    std::ptrdiff_t x = 0;
    // 8 pixels per iteration
    for (; x <= count - 8; x += 8) {
        const auto value = load<8>(rows.current + x);
        const auto candidate = (value > above) | (value < below);
        if (!any(candidate)) continue;
        const auto at = [x](const T* place) { return load<8>(place + x); };
        const auto largest =
            extremeOf<eightNeighbours>(value, rows, at, [](auto a, auto b) { return max(a, b); });
        const auto smallest =
            extremeOf<eightNeighbours>(value, rows, at, [](auto a, auto b) { return min(a, b); });
        const auto extreme = select(value > zeros<T, 8>(), largest, smallest);
        auto peak = candidate;
        if constexpr (std::is_same_v<T, Lum32f>)
            peak = peak & (abs(value - extreme) <= broadcast<8>(smallestNormal));
        else
            peak = peak & (value == extreme);
        for (std::uint32_t left = signBits(peak); left != 0; left &= left - 1) {
            if (found == room) return found;
            peaks[found++] = {first.x + static_cast<Lum32s>(x) + std::countr_zero(left), first.y};
        }
    }
    // tail: scalar, one element at a time
    const PeakRows<T> rest{rows.above + x, rows.current + x, rows.below + x};
    return found + findPeaksInRowScalar<T, eightNeighbours>(rest, count - x, threshold,
                                                            {first.x + static_cast<Lum32s>(x), first.y},
                                                            peaks + found, room - found);
}

LUM_INSTANCES(findPeaksInRowScalar, (Lum32f, false), (Lum32f, true), (Lum32s, false), (Lum32s, true));
LUM_INSTANCES(findPeaksInRow, (Lum32f, false), (Lum32f, true), (Lum32s, false), (Lum32s, true));

} // namespace lum::kernels
