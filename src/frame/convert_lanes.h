// Elements as blocks of floats and blocks of floats as elements: the conversions of convert.h, a block at a time.
#pragma once

#include <limits>
#include <type_traits>

#include "frame/convert.h"
#include "frame/lanes_reduce.h"
#include "lumcv/types.h"

namespace lum {

/// What becomes of a float: nearestEven<T>() or truncated<T>() of it. Floats stay as they are.
enum class Rounding { nearestEven, truncated };

template <class T, Rounding rounding> inline T toElement(float value) {
    if constexpr (std::is_floating_point_v<T>)
        return value;
    else if constexpr (rounding == Rounding::nearestEven)
        return nearestEven<T>(value);
    else
        return truncated<T>(value);
}

/// N elements as floats, which is exact: integers of at most 16 bits, and floats.
template <int N, class T> LUM_LANE Block<float, N> loadFloats(const T* place) {
    if constexpr (std::is_floating_point_v<T>)
        return load<N>(place);
    else
        return toFloat(load<N>(place));
}

/// Values that may lie beyond all integers of 32 bits, and values that do not.
enum class Range { any, of32Bits };

/// Integers that narrowElements() completes to elements T; floats as they are. A value below all integers of 32 bits
/// converts to the lowest of them, and so becomes the lowest T by itself; one above does not, and is held before it is
/// converted. Of a minimum or a maximum with a NaN the second operand is the result: to nearest even, NaN becomes the
/// largest T.
template <class T, Rounding rounding, Range range = Range::any, int N>
LUM_LANE auto toIntegers(Block<float, N> values) {
    if constexpr (std::is_floating_point_v<T>) {
        return values;
    } else {
        constexpr bool isWord = std::is_same_v<T, Lum16u>;
        constexpr bool nearest = rounding == Rounding::nearestEven;
        const auto highest = broadcast<N>(static_cast<float>(std::numeric_limits<T>::max()));
        if constexpr (isWord && nearest)
            values = min(max(zeros<float, N>(), values), highest);
        else if constexpr (isWord)
            values = min(max(values, zeros<float, N>()), highest);
        else if constexpr (range == Range::any && nearest)
            values = min(values, highest);
        else if constexpr (range == Range::any)
            values = min(highest, values);
        if constexpr (nearest)
            return nearestEven(values);
        else
            return truncated(values);
    }
}

/// What toIntegers() gave, as elements.
template <class T, class I, int N> LUM_LANE Block<T, N> narrowElements(Block<I, N> integers) {
    if constexpr (std::is_floating_point_v<T>)
        return integers;
    else if constexpr (sizeof(T) == 2)
        return narrowInRange<T>(integers);
    else
        return narrowSaturated<T>(integers);
}

/// The values as elements.
template <class T, Rounding rounding, Range range = Range::any, int N>
LUM_LANE Block<T, N> toElements(Block<float, N> values) {
    return narrowElements<T>(toIntegers<T, rounding, range>(values));
}

/// The same of halves of units, in order.
template <class T, Rounding rounding, Range range = Range::any, int N>
LUM_LANE Block<T, 2 * N> toElements(UnitHalves<float, N> values) {
    const auto low = toIntegers<T, rounding, range>(values.low);
    const auto high = toIntegers<T, rounding, range>(values.high);
    if constexpr (std::is_floating_point_v<T>)
        return joinUnits(low, high);
    else if constexpr (sizeof(T) == 2)
        return narrowUnits<T>(low, high);
    else
        return narrowSaturated<T>(narrowUnits<Lum16s>(low, high));
}

} // namespace lum
