#include "kernels/filter/separable.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "frame/convert.h"
#include "frame/vector.h"

namespace lum::kernels {
namespace {

/// Float16 elements as four vectors of floats.
struct Float16 {
    __m128 part[4];
};

__m128i lowWordsSigned(__m128i words) { return _mm_srai_epi32(_mm_unpacklo_epi16(words, words), 16); }
__m128i highWordsSigned(__m128i words) { return _mm_srai_epi32(_mm_unpackhi_epi16(words, words), 16); }
__m128i lowWords(__m128i words) { return _mm_unpacklo_epi16(words, _mm_setzero_si128()); }
__m128i highWords(__m128i words) { return _mm_unpackhi_epi16(words, _mm_setzero_si128()); }

Float16 sixteenAt(const Lum8u* src) {
    const __m128i bytes = loadVector<Access::unaligned>(src);
    const __m128i low = _mm_unpacklo_epi8(bytes, _mm_setzero_si128());
    const __m128i high = _mm_unpackhi_epi8(bytes, _mm_setzero_si128());
    return {{_mm_cvtepi32_ps(lowWords(low)), _mm_cvtepi32_ps(highWords(low)), _mm_cvtepi32_ps(lowWords(high)),
             _mm_cvtepi32_ps(highWords(high))}};
}

Float16 sixteenAt(const Lum16u* src) {
    const __m128i low = loadVector<Access::unaligned>(src);
    const __m128i high = loadVector<Access::unaligned>(src + 8);
    return {{_mm_cvtepi32_ps(lowWords(low)), _mm_cvtepi32_ps(highWords(low)), _mm_cvtepi32_ps(lowWords(high)),
             _mm_cvtepi32_ps(highWords(high))}};
}

Float16 sixteenAt(const Lum16s* src) {
    const __m128i low = loadVector<Access::unaligned>(src);
    const __m128i high = loadVector<Access::unaligned>(src + 8);
    return {{_mm_cvtepi32_ps(lowWordsSigned(low)), _mm_cvtepi32_ps(highWordsSigned(low)),
             _mm_cvtepi32_ps(lowWordsSigned(high)), _mm_cvtepi32_ps(highWordsSigned(high))}};
}

/// Kernels of exactly three and exactly five taps have paths of their own. Of the others, those of up to 32
/// taps are spread over lanes once a row, as these are; the rest when they are needed, which is once for a
/// block's results.
constexpr int maxCachedTaps = 32;
constexpr int anyTaps = 0;

/// The number of taps, which the compiler knows of three and five.
template <int path> int tapsOnPath(int count) { return path == 3 || path == 5 ? path : count; }

template <int path, class K> struct Coefficients {
    __m128 lanes[path];

    explicit Coefficients(Taps<K> taps) {
        for (int k = 0; k < tapsOnPath<path>(taps.count); ++k)
            lanes[k] = _mm_set1_ps(static_cast<float>(taps.coefficients[k]));
    }
    __m128 at(int k) const { return lanes[k]; }
};

template <class K> struct Coefficients<anyTaps, K> {
    Taps<K> taps;

    explicit Coefficients(Taps<K> all) : taps(all) {}
    __m128 at(int k) const { return _mm_set1_ps(static_cast<float>(taps.coefficients[k])); }
};

/// Where the taps of a stage read: along one row, or down the rows of the ring.
struct AlongRow {
    const float* extended;
    std::ptrdiff_t stride;
    const float* at(int k) const { return extended + k * stride; }
};
struct DownRows {
    const float* const* rows;
    const float* at(int k) const { return rows[k]; }
};

/// The reciprocal of the divisor; kernels of 32f have none.
template <class K> struct Scale {
    float value;
    __m128 lanes;

    explicit Scale(float scale) : value(scale), lanes(_mm_set1_ps(scale)) {}
    float of(float sum) const { return std::is_same_v<K, Lum32f> ? sum : sum * value; }
    __m128 of(__m128 sums) const { return std::is_same_v<K, Lum32f> ? sums : _mm_mul_ps(sums, lanes); }
};

template <class D> D resultOf(float value) {
    if constexpr (std::is_same_v<D, Lum32f>)
        return value;
    else
        return truncated<D>(value);
}

inline void storeFour(Lum32f* out, __m128 values) { storeFloats<Access::unaligned>(out, values); }
inline void storeFour(Lum8u* out, __m128 values) {
    const __m128i words = _mm_packs_epi32(truncatedLanes<Lum8u>(values), _mm_setzero_si128());
    const int bytes = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
    std::memcpy(out, &bytes, sizeof bytes);
}
inline void storeFour(Lum16s* out, __m128 values) {
    storeHalf(out, _mm_packs_epi32(truncatedLanes<Lum16s>(values), _mm_setzero_si128()));
}
inline void storeFour(Lum16u* out, __m128 values) {
    const __m128i lanes = truncatedLanes<Lum16u>(values);
    storeHalf(out, packedWordsUnsigned(lanes, lanes));
}

inline void storeSixteen(Lum32f* out, const Float16& values) {
    storeFour(out, values.part[0]);
    storeFour(out + 4, values.part[1]);
    storeFour(out + 8, values.part[2]);
    storeFour(out + 12, values.part[3]);
}
inline void storeSixteen(Lum8u* out, const Float16& values) {
    const __m128i low =
        _mm_packs_epi32(truncatedLanes<Lum8u>(values.part[0]), truncatedLanes<Lum8u>(values.part[1]));
    const __m128i high =
        _mm_packs_epi32(truncatedLanes<Lum8u>(values.part[2]), truncatedLanes<Lum8u>(values.part[3]));
    storeVector<Access::unaligned>(out, _mm_packus_epi16(low, high));
}
inline void storeSixteen(Lum16s* out, const Float16& values) {
    storeVector<Access::unaligned>(
        out, _mm_packs_epi32(truncatedLanes<Lum16s>(values.part[0]), truncatedLanes<Lum16s>(values.part[1])));
    storeVector<Access::unaligned>(out + 8, _mm_packs_epi32(truncatedLanes<Lum16s>(values.part[2]),
                                                            truncatedLanes<Lum16s>(values.part[3])));
}
inline void storeSixteen(Lum16u* out, const Float16& values) {
    storeVector<Access::unaligned>(out, packedWordsUnsigned(truncatedLanes<Lum16u>(values.part[0]),
                                                            truncatedLanes<Lum16u>(values.part[1])));
    storeVector<Access::unaligned>(out + 8, packedWordsUnsigned(truncatedLanes<Lum16u>(values.part[2]),
                                                                truncatedLanes<Lum16u>(values.part[3])));
}

/// Inline without fail: a single that returns from a call passes through the x87 unit in a 32-bit build.
template <class K, class D, class Sources>
[[gnu::always_inline]] inline D singleResult(const Sources& sources, Taps<K> taps, Scale<K> scale,
                                             std::ptrdiff_t x) {
    float sum = static_cast<float>(taps.coefficients[0]) * sources.at(0)[x];
    for (int k = 1; k < taps.count; ++k) sum += static_cast<float>(taps.coefficients[k]) * sources.at(k)[x];
    return resultOf<D>(scale.of(sum));
}

template <class K, class D, class Sources>
void stageScalar(const Sources& sources, Taps<K> taps, D* out, std::ptrdiff_t count) {
    const Scale<K> scale(taps.scale);
    for (std::ptrdiff_t x = 0; x < count; ++x) out[x] = singleResult<K, D>(sources, taps, scale, x);
}

/// All reads of an iteration come before its stores: the row stage works in place.
template <int path, class K, class D, class Sources>
void stage(const Sources& sources, Taps<K> taps, D* out, std::ptrdiff_t count) {
    const Coefficients<path, K> coefficients(taps);
    const Scale<K> scale(taps.scale);
    const int tapCount = tapsOnPath<path>(taps.count);
    std::ptrdiff_t x = 0;
    // 16 results per iteration: four sums share a coefficient, and hide the latency of an addition
    for (; x <= count - 16; x += 16) {
        const float* source = sources.at(0) + x;
        __m128 coefficient = coefficients.at(0);
        __m128 a = _mm_mul_ps(coefficient, _mm_loadu_ps(source));
        __m128 b = _mm_mul_ps(coefficient, _mm_loadu_ps(source + 4));
        __m128 c = _mm_mul_ps(coefficient, _mm_loadu_ps(source + 8));
        __m128 d = _mm_mul_ps(coefficient, _mm_loadu_ps(source + 12));
#pragma GCC unroll 4
        for (int k = 1; k < tapCount; ++k) {
            source = sources.at(k) + x;
            coefficient = coefficients.at(k);
            a = _mm_add_ps(a, _mm_mul_ps(coefficient, _mm_loadu_ps(source)));
            b = _mm_add_ps(b, _mm_mul_ps(coefficient, _mm_loadu_ps(source + 4)));
            c = _mm_add_ps(c, _mm_mul_ps(coefficient, _mm_loadu_ps(source + 8)));
            d = _mm_add_ps(d, _mm_mul_ps(coefficient, _mm_loadu_ps(source + 12)));
        }
        storeSixteen(out + x, {{scale.of(a), scale.of(b), scale.of(c), scale.of(d)}});
    }
    // 4 results per iteration
    for (; x <= count - 4; x += 4) {
        __m128 sum = _mm_mul_ps(coefficients.at(0), _mm_loadu_ps(sources.at(0) + x));
        for (int k = 1; k < tapCount; ++k)
            sum = _mm_add_ps(sum, _mm_mul_ps(coefficients.at(k), _mm_loadu_ps(sources.at(k) + x)));
        storeFour(out + x, scale.of(sum));
    }
    // tail, one element at a time
    for (; x < count; ++x) out[x] = singleResult<K, D>(sources, taps, scale, x);
}

template <class K, class D, class Sources>
void chosenStage(const Sources& sources, Taps<K> taps, D* out, std::ptrdiff_t count) {
    if (taps.count == 3)
        stage<3>(sources, taps, out, count);
    else if (taps.count == 5)
        stage<5>(sources, taps, out, count);
    else if (taps.count <= maxCachedTaps)
        stage<maxCachedTaps>(sources, taps, out, count);
    else
        stage<anyTaps>(sources, taps, out, count);
}

int sumOfMagnitudes(Taps<Lum16s> taps, int enough) {
    int sum = 0;
    for (int i = 0; i < taps.count && sum <= enough; ++i)
        sum += std::abs(static_cast<int>(taps.coefficients[i]));
    return sum;
}

/// Two neighbouring coefficients as one pair in every lane of 32 bits; a pair beyond an odd kernel ends in 0.
__m128i pairOfWords(Taps<Lum16s> taps, int i) {
    const auto first = static_cast<unsigned short>(taps.coefficients[i]);
    const unsigned second = i + 1 < taps.count ? static_cast<unsigned short>(taps.coefficients[i + 1]) : 0U;
    return _mm_set1_epi32(static_cast<int>(first | second << 16));
}

/// The same as a pair of signed bytes in every lane of 16 bits.
__m128i pairOfBytes(Taps<Lum16s> taps, int i) {
    const auto first = static_cast<unsigned char>(taps.coefficients[i]);
    const unsigned second = i + 1 < taps.count ? static_cast<unsigned char>(taps.coefficients[i + 1]) : 0U;
    return _mm_set1_epi16(static_cast<short>(first | second << 8));
}

/// How pairs of taps are multiplied. Bytes where all sums stay within 16 bits, words else.
enum class Pairs { ofBytes, ofWords };
constexpr int largestSumForBytes = 127;

template <Pairs pairs> __m128i pairOfTaps(Taps<Lum16s> taps, int i) {
    return pairs == Pairs::ofBytes ? pairOfBytes(taps, i) : pairOfWords(taps, i);
}

/// Pairs on the paths of the coefficients.
template <int path, Pairs pairs> struct PairsOfTaps {
    __m128i lanes[(path + 1) / 2];

    explicit PairsOfTaps(Taps<Lum16s> taps) {
        for (int i = 0; i < tapsOnPath<path>(taps.count); i += 2) lanes[i / 2] = pairOfTaps<pairs>(taps, i);
    }
    __m128i at(int i) const { return lanes[i / 2]; }
};
template <Pairs pairs> struct PairsOfTaps<anyTaps, pairs> {
    Taps<Lum16s> all;

    explicit PairsOfTaps(Taps<Lum16s> taps) : all(taps) {}
    __m128i at(int i) const { return pairOfTaps<pairs>(all, i); }
};

/// Sums of 16 neighbours in 16 bits, as floats.
struct SumsOfBytes {
    static constexpr int results = 16;
    __m128i low = _mm_setzero_si128();
    __m128i high = _mm_setzero_si128();

    void add(__m128i first, __m128i second, __m128i pair) {
        low = _mm_add_epi16(low, _mm_maddubs_epi16(_mm_unpacklo_epi8(first, second), pair));
        high = _mm_add_epi16(high, _mm_maddubs_epi16(_mm_unpackhi_epi8(first, second), pair));
    }
    void store(float* out, __m128 scale) const {
        storeFour(out, _mm_mul_ps(_mm_cvtepi32_ps(lowWordsSigned(low)), scale));
        storeFour(out + 4, _mm_mul_ps(_mm_cvtepi32_ps(highWordsSigned(low)), scale));
        storeFour(out + 8, _mm_mul_ps(_mm_cvtepi32_ps(lowWordsSigned(high)), scale));
        storeFour(out + 12, _mm_mul_ps(_mm_cvtepi32_ps(highWordsSigned(high)), scale));
    }
    static __m128i load(const Lum8u* src) { return loadVector<Access::unaligned>(src); }
};

/// Sums of 8 neighbours in 32 bits, as floats.
template <class T> struct SumsOfWords {
    static constexpr int results = 8;
    __m128i low = _mm_setzero_si128();
    __m128i high = _mm_setzero_si128();

    void add(__m128i first, __m128i second, __m128i pair) {
        __m128i lowPairs = _mm_unpacklo_epi16(first, second);
        __m128i highPairs = _mm_unpackhi_epi16(first, second);
        if constexpr (sizeof(T) == 1) {
            const __m128i bytes = _mm_unpacklo_epi8(first, second);
            lowPairs = _mm_unpacklo_epi8(bytes, _mm_setzero_si128());
            highPairs = _mm_unpackhi_epi8(bytes, _mm_setzero_si128());
        }
        low = _mm_add_epi32(low, _mm_madd_epi16(lowPairs, pair));
        high = _mm_add_epi32(high, _mm_madd_epi16(highPairs, pair));
    }
    void store(float* out, __m128 scale) const {
        storeFour(out, _mm_mul_ps(_mm_cvtepi32_ps(low), scale));
        storeFour(out + 4, _mm_mul_ps(_mm_cvtepi32_ps(high), scale));
    }
    static __m128i load(const Lum8u* src) { return loadHalf(src); }
    static __m128i load(const Lum16s* src) { return loadVector<Access::unaligned>(src); }
};

/// All reads of an iteration come before its stores, which never reach what later iterations read.
template <int path, Pairs pairs, class T>
void exactRow(const T* extended, Taps<Lum16s> taps, std::ptrdiff_t stride, float* out, std::ptrdiff_t count) {
    using Sums = std::conditional_t<pairs == Pairs::ofBytes, SumsOfBytes, SumsOfWords<T>>;
    const PairsOfTaps<path, pairs> pairsOfTaps(taps);
    const __m128 scale = _mm_set1_ps(taps.scale);
    const int tapCount = tapsOnPath<path>(taps.count);
    std::ptrdiff_t x = 0;
    // 16 or 8 results per iteration
    for (; x <= count - Sums::results; x += Sums::results) {
        const T* source = extended + x;
        Sums sums;
#pragma GCC unroll 3
        for (int i = 0; i < tapCount - 1; i += 2, source += 2 * stride)
            sums.add(Sums::load(source), Sums::load(source + stride), pairsOfTaps.at(i));
        if (tapCount % 2 != 0)
            sums.add(Sums::load(source), _mm_setzero_si128(), pairsOfTaps.at(tapCount - 1));
        sums.store(out + x, scale);
    }
    // tail, one element at a time
    for (; x < count; ++x) {
        int sum = 0;
        for (int i = 0; i < taps.count; ++i) sum += taps.coefficients[i] * extended[x + i * stride];
        out[x] = static_cast<float>(sum) * taps.scale;
    }
}

template <Pairs pairs, class T>
void chosenExactRow(const T* extended, Taps<Lum16s> taps, int channels, float* out, std::ptrdiff_t count) {
    if (taps.count == 3)
        exactRow<3, pairs>(extended, taps, channels, out, count);
    else if (taps.count == 5)
        exactRow<5, pairs>(extended, taps, channels, out, count);
    else if (taps.count <= maxCachedTaps)
        exactRow<maxCachedTaps, pairs>(extended, taps, channels, out, count);
    else
        exactRow<anyTaps, pairs>(extended, taps, channels, out, count);
}

} // namespace

template <class T> void toFloatsScalar(const T* src, float* out, std::ptrdiff_t count) {
    for (std::ptrdiff_t x = 0; x < count; ++x) out[x] = static_cast<float>(src[x]);
}

template <class T> void toFloats(const T* src, float* out, std::ptrdiff_t count) {
    std::ptrdiff_t x = 0;
    // 16 elements per iteration
    for (; x <= count - 16; x += 16) storeSixteen(out + x, sixteenAt(src + x));
    // tail, one element at a time
    for (; x < count; ++x) out[x] = static_cast<float>(src[x]);
}

template <class K>
void separableRowScalar(const float* extended, Taps<K> taps, int channels, float* out, std::ptrdiff_t count) {
    stageScalar(AlongRow{extended, channels}, taps, out, count);
}

template <class K>
void separableRow(const float* extended, Taps<K> taps, int channels, float* out, std::ptrdiff_t count) {
    chosenStage(AlongRow{extended, channels}, taps, out, count);
}

template <class T> bool rowSumsAreExact(Taps<Lum16s> taps) {
    constexpr int largestElement = std::is_same_v<T, Lum8u> ? 255 : 32768;
    constexpr int largestSum = (1 << 24) / largestElement;
    return sumOfMagnitudes(taps, largestSum) <= largestSum;
}

template <class T>
void separableRowExact(const T* extended, Taps<Lum16s> taps, int channels, float* out, std::ptrdiff_t count) {
    if constexpr (std::is_same_v<T, Lum8u>) {
        if (sumOfMagnitudes(taps, largestSumForBytes) <= largestSumForBytes) {
            chosenExactRow<Pairs::ofBytes>(extended, taps, channels, out, count);
            return;
        }
    }
    chosenExactRow<Pairs::ofWords>(extended, taps, channels, out, count);
}

template <class K, class D>
void separableColumnScalar(const float* const* rows, Taps<K> taps, D* dst, std::ptrdiff_t count) {
    stageScalar(DownRows{rows}, taps, dst, count);
}

template <class K, class D>
void separableColumn(const float* const* rows, Taps<K> taps, D* dst, std::ptrdiff_t count) {
    chosenStage(DownRows{rows}, taps, dst, count);
}

template decltype(toFloatsScalar<Lum8u>) toFloatsScalar<Lum8u>;
template decltype(toFloatsScalar<Lum16s>) toFloatsScalar<Lum16s>;
template decltype(toFloatsScalar<Lum16u>) toFloatsScalar<Lum16u>;
template decltype(toFloats<Lum8u>) toFloats<Lum8u>;
template decltype(toFloats<Lum16s>) toFloats<Lum16s>;
template decltype(toFloats<Lum16u>) toFloats<Lum16u>;
template decltype(separableRowScalar<Lum16s>) separableRowScalar<Lum16s>;
template decltype(separableRowScalar<Lum32f>) separableRowScalar<Lum32f>;
template decltype(separableRow<Lum16s>) separableRow<Lum16s>;
template decltype(separableRow<Lum32f>) separableRow<Lum32f>;
template decltype(rowSumsAreExact<Lum8u>) rowSumsAreExact<Lum8u>;
template decltype(rowSumsAreExact<Lum16s>) rowSumsAreExact<Lum16s>;
template decltype(separableRowExact<Lum8u>) separableRowExact<Lum8u>;
template decltype(separableRowExact<Lum16s>) separableRowExact<Lum16s>;
template decltype(separableColumnScalar<Lum16s, Lum8u>) separableColumnScalar<Lum16s, Lum8u>;
template decltype(separableColumnScalar<Lum16s, Lum16s>) separableColumnScalar<Lum16s, Lum16s>;
template decltype(separableColumnScalar<Lum32f, Lum16u>) separableColumnScalar<Lum32f, Lum16u>;
template decltype(separableColumnScalar<Lum32f, Lum32f>) separableColumnScalar<Lum32f, Lum32f>;
template decltype(separableColumn<Lum16s, Lum8u>) separableColumn<Lum16s, Lum8u>;
template decltype(separableColumn<Lum16s, Lum16s>) separableColumn<Lum16s, Lum16s>;
template decltype(separableColumn<Lum32f, Lum16u>) separableColumn<Lum32f, Lum16u>;
template decltype(separableColumn<Lum32f, Lum32f>) separableColumn<Lum32f, Lum32f>;

} // namespace lum::kernels
