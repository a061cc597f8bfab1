// Every rounding and saturation of the library has a name here; no kernel casts a float by itself.
// They saturate the value, whatever its size: a sum beyond the range of a 32-bit conversion clamps to the limit of the
// result type. nearestFloat(), truncatedIndex(), the two that give plain lanes and those named wrapping do not.
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

/// The same of four values, as integers of 32 bits.
template <class T> inline __m128i halfUpTruncated(__m128 values) {
    static_assert(sizeof(T) <= 2, "the limits must be exact in single precision");
    const __m128 sums = _mm_add_ps(values, _mm_set1_ps(0.5F));
    const __m128 lowest = _mm_set1_ps(std::numeric_limits<T>::min());
    const __m128 highest = _mm_set1_ps(std::numeric_limits<T>::max());
    return _mm_cvttps_epi32(_mm_min_ps(_mm_max_ps(sums, lowest), highest));
}

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

/// Clamped to the range of 32-bit unsigned integers, then truncated toward zero.
inline std::uint32_t truncatedTo32u(double value) {
    constexpr double middle = 2147483648.0;
    const double clamped = std::min(std::max(value, 0.0), 4294967295.0);
    if (clamped < middle) return static_cast<std::uint32_t>(_mm_cvttsd_si32(_mm_set_sd(clamped)));
    return static_cast<std::uint32_t>(_mm_cvttsd_si32(_mm_set_sd(clamped - middle))) + 0x80000000U;
}

/// Truncated toward zero; the value lies in the range of an int.
inline int truncatedIndex(float value) { return _mm_cvttss_si32(_mm_set_ss(value)); }
inline __m128i truncatedIndex(__m128 values) { return _mm_cvttps_epi32(values); }

/// Rounded to nearest even. What 32 bits cannot hold gives the lowest of them, as in the lanes of a vector.
inline int nearestIndex(float value) { return _mm_cvtss_si32(_mm_set_ss(value)); }

/// Float4 floats as integers of 32 bits, to nearest even or toward zero. One that none of them can hold gives the
/// lowest of them, so that packing completes the clamp at the lower limit; the upper one is the caller's.
inline __m128i nearestEvenLanes(__m128 values) { return _mm_cvtps_epi32(values); }
inline __m128i truncatedLanes(__m128 values) { return _mm_cvttps_epi32(values); }

/// A double rounded to the nearest single, ties to even.
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

/// Float4 floats, each as truncated<T>(), in lanes of 32 bits. Lanes that a conversion cannot hold lie below the
/// range of T and stay below it, except for Lum16u, whose lanes are all in range: packing with signed
/// saturation, as _mm_packs_epi32 does, completes the clamp of the others.
template <class T> inline __m128i truncatedLanes(__m128 values) {
    // The limit is the first operand: of a NaN the second operand is the result, as in the clamp of one value.
    constexpr float highest = std::numeric_limits<T>::max();
    __m128 clamped = _mm_min_ps(_mm_set1_ps(highest), values);
    if constexpr (std::is_same_v<T, Lum16u>) clamped = _mm_max_ps(clamped, _mm_setzero_ps());
    return _mm_cvttps_epi32(clamped);
}

/// Eight lanes of 32 bits, each in 0..65535, as words. There is no such packing, so they move to the signed
/// range.
inline __m128i packedWordsUnsigned(__m128i low, __m128i high) {
    const __m128i middle = _mm_set1_epi32(32768);
    const __m128i words = _mm_packs_epi32(_mm_sub_epi32(low, middle), _mm_sub_epi32(high, middle));
    return _mm_xor_si128(words, _mm_set1_epi16(-32768));
}

} // namespace lum
