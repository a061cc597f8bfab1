// Dilation and erosion as two values of one parameter: every kernel of morphology is written once, in terms of the
// stronger of two elements, which is the larger in a dilation and the smaller in an erosion.
#pragma once

#include <cstddef>
#include <limits>
#include <type_traits>

#include "frame/lanes.h"

namespace lum::kernels {

enum class MorphOp { dilate, erode };

/// The stronger of a running value and a newcomer. The running value stays where the two are equal or the newcomer is
/// a NaN, so a running value that is a number remains one.
template <MorphOp op, class T> constexpr T stronger(T running, T newcomer) {
    if constexpr (op == MorphOp::dilate)
        return newcomer > running ? newcomer : running;
    else
        return newcomer < running ? newcomer : running;
}
template <MorphOp op, class T, int N>
LUM_LANE Block<T, N> stronger(Block<T, N> running, Block<T, N> newcomer) {
    if constexpr (op == MorphOp::dilate)
        return max(newcomer, running);
    else
        return min(newcomer, running);
}

/// The weakest finite element: 0, -32768 and -FLT_MAX in a dilation; 255, 65535, 32767 and FLT_MAX in an erosion.
template <MorphOp op, class T>
inline constexpr T weakestFinite = op == MorphOp::dilate ? std::numeric_limits<T>::lowest()
                                                         : std::numeric_limits<T>::max();

/// The weakest element of all: for floats an infinity.
template <MorphOp op, class T>
inline constexpr T weakest = std::is_floating_point_v<T>
                                 ? (op == MorphOp::dilate ? -std::numeric_limits<T>::infinity()
                                                          : std::numeric_limits<T>::infinity())
                                 : weakestFinite<op, T>;

} // namespace lum::kernels
