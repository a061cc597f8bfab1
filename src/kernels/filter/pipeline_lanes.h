// Eight elements of a row in vector lanes: from integers to floats and words, and back with a stated rounding.
#pragma once

#include <type_traits>

#include "frame/convert.h"
#include "frame/vector.h"

namespace lum::kernels {

/// What becomes of a sum in single precision. Both clamp the value to the result's type first; floats stay as
/// they are.
enum class Rounding { nearestEven, truncated };

template <class R, Rounding rounding> inline R resultOf(float sum) {
    if constexpr (std::is_floating_point_v<R>)
        return sum;
    else if constexpr (rounding == Rounding::nearestEven)
        return nearestEven<R>(sum);
    else
        return truncated<R>(sum);
}

/// Eight floats, in order.
struct Floats {
    __m128 low;
    __m128 high;
};

/// Eight 32-bit integers, in order.
struct Sums {
    __m128i low;
    __m128i high;
};

inline Floats floatsOf(Sums sums) { return {_mm_cvtepi32_ps(sums.low), _mm_cvtepi32_ps(sums.high)}; }

/// Eight elements as 16-bit words; bytes are widened.
inline __m128i wordsAt(const Lum8u* place) { return _mm_unpacklo_epi8(loadHalf(place), _mm_setzero_si128()); }
inline __m128i wordsAt(const Lum16s* place) { return loadVector<Access::unaligned>(place); }
inline __m128i wordsAt(const Lum16u* place) { return loadVector<Access::unaligned>(place); }

inline Sums unsignedWords(__m128i words) {
    const __m128i zero = _mm_setzero_si128();
    return {_mm_unpacklo_epi16(words, zero), _mm_unpackhi_epi16(words, zero)};
}

inline Sums signedWords(__m128i words) {
    return {_mm_srai_epi32(_mm_unpacklo_epi16(words, words), 16),
            _mm_srai_epi32(_mm_unpackhi_epi16(words, words), 16)};
}

inline Floats floatsAt(const Lum8u* place) { return floatsOf(unsignedWords(wordsAt(place))); }
inline Floats floatsAt(const Lum16u* place) { return floatsOf(unsignedWords(wordsAt(place))); }
inline Floats floatsAt(const Lum16s* place) { return floatsOf(signedWords(wordsAt(place))); }
inline Floats floatsAt(const Lum32f* place) {
    return {loadFloats<Access::unaligned>(place), loadFloats<Access::unaligned>(place + 4)};
}

template <Rounding rounding> inline __m128i integersOf(__m128 values) {
    if constexpr (rounding == Rounding::nearestEven)
        return nearestEvenLanes(values);
    else
        return truncatedLanes(values);
}

/// Eight results saturated to signed words. A value below every 32-bit integer converts to the lowest of them,
/// and so saturates by itself; one above does not, and is clamped before it is converted. Sums that stay below
/// 2^31 in magnitude need no clamp.
enum class Clamp { upper, none };

template <Rounding rounding, Clamp clamp = Clamp::upper> inline __m128i saturatedWords(Floats values) {
    if constexpr (clamp == Clamp::upper) {
        const __m128 highest = _mm_set1_ps(32767.0F);
        values = {_mm_min_ps(values.low, highest), _mm_min_ps(values.high, highest)};
    }
    return _mm_packs_epi32(integersOf<rounding>(values.low), integersOf<rounding>(values.high));
}

/// The same to unsigned words.
template <Rounding rounding> inline __m128i saturatedUnsignedWords(Floats values) {
    const __m128 zero = _mm_setzero_ps();
    const __m128 highest = _mm_set1_ps(65535.0F);
    return packedWordsUnsigned(integersOf<rounding>(_mm_min_ps(_mm_max_ps(values.low, zero), highest)),
                               integersOf<rounding>(_mm_min_ps(_mm_max_ps(values.high, zero), highest)));
}

template <Rounding rounding, Clamp clamp = Clamp::upper>
inline void storeEight(Lum16s* place, Floats values) {
    storeVector<Access::unaligned>(place, saturatedWords<rounding, clamp>(values));
}
template <Rounding rounding, Clamp clamp = Clamp::upper> inline void storeEight(Lum8s* place, Floats values) {
    const __m128i words = saturatedWords<rounding, clamp>(values);
    storeHalf(place, _mm_packs_epi16(words, words));
}
template <Rounding rounding, Clamp clamp = Clamp::upper> inline void storeEight(Lum8u* place, Floats values) {
    const __m128i words = saturatedWords<rounding, clamp>(values);
    storeHalf(place, _mm_packus_epi16(words, words));
}
template <Rounding rounding, Clamp = Clamp::upper> inline void storeEight(Lum16u* place, Floats values) {
    storeVector<Access::unaligned>(place, saturatedUnsignedWords<rounding>(values));
}
template <Rounding, Clamp = Clamp::upper> inline void storeEight(Lum32f* place, Floats values) {
    storeFloats<Access::unaligned>(place, values.low);
    storeFloats<Access::unaligned>(place + 4, values.high);
}

} // namespace lum::kernels
