// Every rounding and saturation of the library has a name here; no kernel casts a float by itself.
// All of them saturate the value, whatever its size: a sum beyond the range of a 32-bit conversion clamps to
// the limit of the result type. Rounding to nearest is that of the caller's rounding mode, which is nearest even
// unless the caller changed it.
#pragma once

#include <algorithm>
#include <emmintrin.h>
#include <limits>

#include "lumcv.h"

namespace lum {

/// The value clamped to the range of an integer type of at most 16 bits, as a single.
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

/// The same of two values; the results are the low half of the vector.
inline __m128i truncatedTo32s(__m128d values) {
    const __m128d lowest = _mm_set1_pd(std::numeric_limits<Lum32s>::min());
    const __m128d highest = _mm_set1_pd(std::numeric_limits<Lum32s>::max());
    return _mm_cvttpd_epi32(_mm_min_pd(_mm_max_pd(values, lowest), highest));
}

/// An integer clamped to the range of a narrower type.
template <class T> constexpr T saturated(int value) {
    return static_cast<T>(
        std::clamp<int>(value, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

} // namespace lum
