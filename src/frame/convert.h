// Every rounding and saturation of the library has a name here; no kernel casts a float by itself.
// They saturate the value, whatever its size: a sum beyond the range of a 32-bit conversion clamps to the limit of the
// result type. nearestFloat(), the indices and those named wrapping do not. Blocks: convert_lanes.h.
// Rounding to nearest is that of the caller's rounding mode, which is nearest even unless the caller changed it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <emmintrin.h>
#include <limits>
#include <type_traits>

#include "lumcv/types.h"

namespace lum {

/// The value clamped to the range of an integer type of at most 16 bits, as a float.
template <class T> inline float clampedTo(float value) {
    static_assert(sizeof(T) <= 2, "the limits must be exact in single precision");
    constexpr float lowest = std::numeric_limits<T>::min();
    constexpr float highest = std::numeric_limits<T>::max();
    return std::min(std::max(value, lowest), highest);
}

/// Clamped, then rounded to nearest, ties to even.
template <class T> inline T nearestEven(float value) {
    return static_cast<T>(_mm_cvtss_si32(_mm_set_ss(clampedTo<T>(value))));
}

/// Clamped, then truncated toward zero.
template <class T> inline T truncated(float value) {
    return static_cast<T>(_mm_cvttss_si32(_mm_set_ss(clampedTo<T>(value))));
}

/// A half added in single precision, clamped, then truncated toward zero.
template <class T> inline T halfUpTruncated(float value) { return truncated<T>(value + 0.5F); }

/// Clamped to the range of Lum32s, then truncated toward zero.
inline Lum32s truncatedTo32s(double value) {
    const __m128d lowest = _mm_set_sd(std::numeric_limits<Lum32s>::min());
    const __m128d highest = _mm_set_sd(std::numeric_limits<Lum32s>::max());
    return _mm_cvttsd_si32(_mm_min_sd(_mm_max_sd(_mm_set_sd(value), lowest), highest));
}

/// Clamped to the range of 32-bit unsigned integers, then truncated toward zero.
inline std::uint32_t truncatedTo32u(double value) {
    constexpr double middle = 2147483648.0;
    const double clamped = std::min(std::max(value, 0.0), 4294967295.0);
    if (clamped < middle) return static_cast<std::uint32_t>(_mm_cvttsd_si32(_mm_set_sd(clamped)));
    return static_cast<std::uint32_t>(_mm_cvttsd_si32(_mm_set_sd(clamped - middle))) + 0x80000000U;
}

/// Truncated toward zero; the value lies in the range of an int.
inline int truncatedIndex(float value) { return _mm_cvttss_si32(_mm_set_ss(value)); }

/// Rounded to nearest even. What 32 bits cannot hold gives the lowest of them, as in the lanes of a vector.
inline int nearestIndex(float value) { return _mm_cvtss_si32(_mm_set_ss(value)); }

/// A double rounded to the nearest float, ties to even.
inline float nearestFloat(double value) { return static_cast<float>(value); }

/// A half added in double precision, truncated toward zero to 32 bits, of which the low ones stay: no saturation.
template <class T> inline T halfUpTruncatedWrapping(double value) {
    return static_cast<T>(_mm_cvttsd_si32(_mm_set_sd(value + 0.5)));
}

/// An integer clamped to the range of a narrower type.
template <class T> constexpr T saturated(int value) {
    return static_cast<T>(
        std::clamp<int>(value, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

} // namespace lum
