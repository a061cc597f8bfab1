// The vector lanes in which the pixels of a region add up, 16 pixels per iteration, and how a block is loaded.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

#include "frame/vector.h"
#include "kernels/pixels.h"
#include "kernels/stats/mean.h"

namespace lum::kernels {

inline constexpr int pixelsOfBlock = 16;

/// Turns after which the lanes carry over into their totals: a byte counts that many masked-out pixels, and
/// no 32-bit lane overflows by then.
inline constexpr int blocksOfStretch = 255;

/// Three vectors in a row hold the 16 / sizeof(T) elements of one channel, each in a lane of its own, as the
/// lanes of a vector are no multiple of 3. The vector that has an element of the channel in the lane:
template <class T> constexpr int vectorOfLane(int lane) {
    int vector = 0;
    while ((lanesOf<T> * vector + lane) % 3 != 0) ++vector;
    return vector;
}

/// The pixel, counted within a vector, whose element is in the lane.
template <class T, int channels> constexpr int pixelOfLane(int lane) {
    return channels == 1 ? lane : (lanesOf<T> * vectorOfLane<T>(lane) + lane) / 3;
}

using VectorBytes = std::array<unsigned char, 16>;

/// All bits set in the lanes that the vector gives to a channel of three.
template <class T> constexpr VectorBytes lanesFrom(int vector) {
    VectorBytes bytes{};
    for (int b = 0; b < 16; ++b)
        bytes[b] = vectorOfLane<T>(b / static_cast<int>(sizeof(T))) == vector ? 0xFF : 0;
    return bytes;
}

/// The shuffle that brings one byte a pixel of a block to the lanes of one of its vectors.
template <class T, int channels> constexpr VectorBytes bytesToLanes(int vector) {
    VectorBytes places{};
    for (int b = 0; b < 16; ++b) {
        const int lane = b / static_cast<int>(sizeof(T));
        places[b] = static_cast<unsigned char>(vector * lanesOf<T> + pixelOfLane<T, channels>(lane));
    }
    return places;
}

template <class T, int vector> struct LanesFrom {
    alignas(16) static constexpr VectorBytes bytes = lanesFrom<T>(vector);
};
template <class T, int channels, int vector> struct BytesToLanes {
    alignas(16) static constexpr VectorBytes bytes = bytesToLanes<T, channels>(vector);
};

/// 16 pixels of a row: sizeof(T) vectors, of three channels in an order of their own.
template <class T, int channels, bool masked> struct PixelBlock {
    /// The element of the first pixel.
    const T* first;
    /// All bits of a byte set where the mask excludes the pixel.
    __m128i excluded;

    template <int vector> __m128i elements() const {
        const T* place = first + vector * lanesOf<T> * channels;
        if constexpr (channels == 1)
            return loadVector<Access::unaligned>(place);
        else
            return _mm_or_si128(_mm_or_si128(from<0>(place), from<1>(place)), from<2>(place));
    }

    /// The lanes of masked-out pixels cleared.
    template <int vector> __m128i selected(__m128i lanes) const {
        if constexpr (!masked)
            return lanes;
        else if constexpr (channels == 1 && sizeof(T) == 1)
            return _mm_andnot_si128(excluded, lanes);
        else
            return _mm_andnot_si128(
                _mm_shuffle_epi8(excluded,
                                 loadVector<Access::aligned>(&BytesToLanes<T, channels, vector>::bytes)),
                lanes);
    }

  private:
    template <int third> static __m128i from(const T* place) {
        return _mm_and_si128(loadVector<Access::unaligned>(place + third * lanesOf<T>),
                             loadVector<Access::aligned>(&LanesFrom<T, third>::bytes));
    }
};

/// Float4 unsigned 32-bit lanes added up to two 64-bit ones.
inline __m128i wideLanes(__m128i lanes) {
    const __m128i zero = _mm_setzero_si128();
    return _mm_add_epi64(_mm_unpacklo_epi32(lanes, zero), _mm_unpackhi_epi32(lanes, zero));
}
inline __m128i wideSignedLanes(__m128i lanes) {
    const __m128i signs = _mm_srai_epi32(lanes, 31);
    return _mm_add_epi64(_mm_unpacklo_epi32(lanes, signs), _mm_unpackhi_epi32(lanes, signs));
}
inline __m128d wideLanes(__m128 lanes) {
    return _mm_add_pd(_mm_cvtps_pd(lanes), _mm_cvtps_pd(_mm_movehl_ps(lanes, lanes)));
}

// The lanes of a stretch. They add a block, or one pixel (`kept` has all bits set, or none where it is masked
// out), and widen what they hold to two lanes of 64 bits.

template <class T, bool squared> class SumLanes;

template <bool squared> class SumLanes<Lum8u, squared> {
  public:
    template <class BlockOf> void add(const BlockOf& block) {
        const __m128i zero = _mm_setzero_si128();
        const __m128i p = block.template selected<0>(block.template elements<0>());
        sums_ = _mm_add_epi64(sums_, _mm_sad_epu8(p, zero));
        if constexpr (squared) {
            const __m128i low = _mm_unpacklo_epi8(p, zero);
            const __m128i high = _mm_unpackhi_epi8(p, zero);
            squares_ =
                _mm_add_epi32(squares_, _mm_add_epi32(_mm_madd_epi16(low, low), _mm_madd_epi16(high, high)));
        }
    }
    void add(Lum8u element, unsigned kept) {
        const int p = static_cast<int>(element & kept);
        sums_ = _mm_add_epi64(sums_, _mm_cvtsi32_si128(p));
        if constexpr (squared) squares_ = _mm_add_epi32(squares_, _mm_cvtsi32_si128(p * p));
    }
    __m128i wideSums() const { return sums_; }
    __m128i wideSquares() const { return wideLanes(squares_); }

  private:
    __m128i sums_ = _mm_setzero_si128();
    __m128i squares_ = _mm_setzero_si128();
};

/// Pixels less 32768, which fit the signed products.
template <bool squared> class SumLanes<Lum16u, squared> {
  public:
    template <class BlockOf> void add(const BlockOf& block) {
        addVector(block.template selected<0>(signedWords(block.template elements<0>())));
        addVector(block.template selected<1>(signedWords(block.template elements<1>())));
    }
    void add(Lum16u element, unsigned kept) {
        const int p = static_cast<int>(static_cast<unsigned>(element - middleOf16u) & kept);
        sums_ = _mm_add_epi32(sums_, _mm_cvtsi32_si128(p));
        if constexpr (squared) squares_ = _mm_add_epi64(squares_, _mm_cvtsi32_si128(p * p));
    }
    __m128i wideSums() const { return wideSignedLanes(sums_); }
    __m128i wideSquares() const { return squares_; }

  private:
    static __m128i signedWords(__m128i p) { return _mm_xor_si128(p, _mm_set1_epi16(-0x8000)); }

    void addVector(__m128i p) {
        sums_ = _mm_add_epi32(sums_, _mm_madd_epi16(p, _mm_set1_epi16(1)));
        // A pair of squares reaches 2^31 at most, which is not negative as an unsigned lane.
        if constexpr (squared) squares_ = _mm_add_epi64(squares_, wideLanes(_mm_madd_epi16(p, p)));
    }

    __m128i sums_ = _mm_setzero_si128();
    __m128i squares_ = _mm_setzero_si128();
};

/// The four vectors of a block add up among themselves first, so that one addition per block waits for the one
/// before.
inline __m128 sumOfFour(__m128 a, __m128 b, __m128 c, __m128 d) {
    return _mm_add_ps(_mm_add_ps(a, b), _mm_add_ps(c, d));
}

inline Lum32f keptBits(Lum32f value, unsigned kept) {
    return std::bit_cast<Lum32f>(std::bit_cast<unsigned>(value) & kept);
}

template <bool squared> class SumLanes<Lum32f, squared> {
  public:
    template <class BlockOf> void add(const BlockOf& block) {
        const __m128 p0 = pixels<0>(block);
        const __m128 p1 = pixels<1>(block);
        const __m128 p2 = pixels<2>(block);
        const __m128 p3 = pixels<3>(block);
        sums_ = _mm_add_ps(sums_, sumOfFour(p0, p1, p2, p3));
        if constexpr (squared)
            squares_ = _mm_add_ps(squares_, sumOfFour(_mm_mul_ps(p0, p0), _mm_mul_ps(p1, p1),
                                                      _mm_mul_ps(p2, p2), _mm_mul_ps(p3, p3)));
    }
    void add(Lum32f element, unsigned kept) {
        const __m128 p = _mm_set_ss(keptBits(element, kept));
        sums_ = _mm_add_ss(sums_, p);
        if constexpr (squared) squares_ = _mm_add_ss(squares_, _mm_mul_ss(p, p));
    }
    __m128d wideSums() const { return wideLanes(sums_); }
    __m128d wideSquares() const { return wideLanes(squares_); }

  private:
    template <int vector, class BlockOf> static __m128 pixels(const BlockOf& block) {
        return _mm_castsi128_ps(block.template selected<vector>(block.template elements<vector>()));
    }

    __m128 sums_ = _mm_setzero_ps();
    __m128 squares_ = _mm_setzero_ps();
};

/// Squares of the distances to a centre; no sums.
class DeviationLanes {
  public:
    explicit DeviationLanes(Lum32f centre) : centre_(centre), centres_(_mm_set1_ps(centre)) {}

    template <class BlockOf> void add(const BlockOf& block) {
        squares_ = _mm_add_ps(squares_, sumOfFour(squaresOf<0>(block), squaresOf<1>(block),
                                                  squaresOf<2>(block), squaresOf<3>(block)));
    }
    void add(Lum32f element, unsigned kept) {
        const Lum32f deviation = keptBits(element - centre_, kept);
        squares_ = _mm_add_ss(squares_, _mm_set_ss(deviation * deviation));
    }
    __m128d wideSums() const { return _mm_setzero_pd(); }
    __m128d wideSquares() const { return wideLanes(squares_); }

  private:
    template <int vector, class BlockOf> __m128 squaresOf(const BlockOf& block) const {
        const __m128 deviations = _mm_castsi128_ps(block.template selected<vector>(
            _mm_castps_si128(_mm_sub_ps(_mm_castsi128_ps(block.template elements<vector>()), centres_))));
        return _mm_mul_ps(deviations, deviations);
    }

    Lum32f centre_;
    __m128 centres_;
    __m128 squares_ = _mm_setzero_ps();
};

/// Two lanes of 64 bits in which stretches add up: integers or doubles, begun at 0 either way.
class WideLanes {
  public:
    void add(__m128i integers) { lanes_ = _mm_add_epi64(lanes_, integers); }
    void add(__m128d doubles) { lanes_ = _mm_castpd_si128(_mm_add_pd(_mm_castsi128_pd(lanes_), doubles)); }
    template <class TotalOf> TotalOf sum() const {
        alignas(16) TotalOf parts[2];
        _mm_store_si128(reinterpret_cast<__m128i*>(parts), lanes_);
        return parts[0] + parts[1];
    }

  private:
    __m128i lanes_ = _mm_setzero_si128();
};

} // namespace lum::kernels
