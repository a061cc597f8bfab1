#include "kernels/filter/color_gradient.h"

#include <type_traits>

#include "frame/convert.h"
#include "frame/vector.h"

namespace lum::kernels {
namespace {

/// Pixels of one block, a vector a channel.
struct Channels {
    __m128i r, g, b;
};

/// Where the bytes of one channel's elements lie in one of the three vectors that hold the pixels; 0x80 for
/// elements of the other two vectors.
template <int elementBytes, int channel, int part> __m128i places() {
    alignas(16) static constexpr auto bytes = [] {
        struct {
            signed char at[16];
        } table{};
        for (int i = 0; i < 16; ++i) {
            const int source = (i / elementBytes * 3 + channel) * elementBytes + i % elementBytes - 16 * part;
            table.at[i] = static_cast<signed char>(source >= 0 && source < 16 ? source : -128);
        }
        return table;
    }();
    return _mm_load_si128(reinterpret_cast<const __m128i*>(bytes.at));
}

template <int elementBytes, int channel> __m128i channelOf(__m128i first, __m128i second, __m128i third) {
    return _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(first, places<elementBytes, channel, 0>()),
                                     _mm_shuffle_epi8(second, places<elementBytes, channel, 1>())),
                        _mm_shuffle_epi8(third, places<elementBytes, channel, 2>()));
}

template <class T> Channels channelsAt(const T* pixels) {
    constexpr int bytes = sizeof(T);
    const auto* vectors = reinterpret_cast<const Lum8u*>(pixels);
    const __m128i first = loadVector<Access::unaligned>(vectors);
    const __m128i second = loadVector<Access::unaligned>(vectors + 16);
    const __m128i third = loadVector<Access::unaligned>(vectors + 32);
    return {channelOf<bytes, 0>(first, second, third), channelOf<bytes, 1>(first, second, third),
            channelOf<bytes, 2>(first, second, third)};
}

__m128i lowBytes(__m128i bytes) { return _mm_unpacklo_epi8(bytes, _mm_setzero_si128()); }
__m128i highBytes(__m128i bytes) { return _mm_unpackhi_epi8(bytes, _mm_setzero_si128()); }
__m128i lowWords(__m128i words) { return _mm_unpacklo_epi16(words, _mm_setzero_si128()); }
__m128i highWords(__m128i words) { return _mm_unpackhi_epi16(words, _mm_setzero_si128()); }

/// Largest channel: its value, and 16 bytes of values at once.
struct Largest {
    template <class T> static T one(T r, T g, T b) {
        const T larger = r > g ? r : g;
        return larger > b ? larger : b;
    }
    static __m128i vector(Lum8u, Channels c) { return _mm_max_epu8(_mm_max_epu8(c.r, c.g), c.b); }
    static __m128i vector(Lum16u, Channels c) { return larger(larger(c.r, c.g), c.b); }
    static __m128i vector(Lum32f, Channels c) {
        return _mm_castps_si128(
            _mm_max_ps(_mm_max_ps(_mm_castsi128_ps(c.r), _mm_castsi128_ps(c.g)), _mm_castsi128_ps(c.b)));
    }

  private:
    static __m128i larger(__m128i a, __m128i b) { return _mm_add_epi16(_mm_subs_epu16(a, b), b); }
};

struct Mean {
    static Lum8u one(Lum8u r, Lum8u g, Lum8u b) {
        return static_cast<Lum8u>(((r + g + b) * 1365 + 2048) >> 12);
    }
    static Lum16u one(Lum16u r, Lum16u g, Lum16u b) { return static_cast<Lum16u>((r + g + b + 1) / 3); }
    static Lum32f one(Lum32f r, Lum32f g, Lum32f b) { return (r + g + b) * (1.0F / 3.0F); }

    static __m128i vector(Lum8u, Channels c) {
        return _mm_packus_epi16(
            ofSums(_mm_add_epi16(_mm_add_epi16(lowBytes(c.r), lowBytes(c.g)), lowBytes(c.b))),
            ofSums(_mm_add_epi16(_mm_add_epi16(highBytes(c.r), highBytes(c.g)), highBytes(c.b))));
    }
    static __m128i vector(Lum16u, Channels c) {
        return packedWordsUnsigned(third(lowWords(c.r), lowWords(c.g), lowWords(c.b)),
                                   third(highWords(c.r), highWords(c.g), highWords(c.b)));
    }
    static __m128i vector(Lum32f, Channels c) {
        const __m128 sum =
            _mm_add_ps(_mm_add_ps(_mm_castsi128_ps(c.r), _mm_castsi128_ps(c.g)), _mm_castsi128_ps(c.b));
        return _mm_castps_si128(_mm_mul_ps(sum, _mm_set1_ps(1.0F / 3.0F)));
    }

  private:
    /// Pairs (sum, 1) times (1365, 2048).
    static __m128i ofSums(__m128i sums) {
        const __m128i ones = _mm_set1_epi16(1);
        const __m128i factors = _mm_set1_epi32(2048 << 16 | 1365);
        return _mm_packs_epi32(_mm_srli_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(sums, ones), factors), 12),
                               _mm_srli_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(sums, ones), factors), 12));
    }
    /// A third by a product of 64 bits: exact for all sums of 32 bits.
    static __m128i third(__m128i r, __m128i g, __m128i b) {
        const __m128i sum = _mm_add_epi32(_mm_add_epi32(r, g), _mm_add_epi32(b, _mm_set1_epi32(1)));
        const __m128i factor = _mm_set1_epi32(static_cast<int>(0xAAAAAAABU));
        const __m128i even = _mm_srli_epi64(_mm_mul_epu32(sum, factor), 33);
        const __m128i odd = _mm_srli_epi64(_mm_mul_epu32(_mm_srli_epi64(sum, 32), factor), 33);
        return _mm_or_si128(even, _mm_slli_epi64(odd, 32));
    }
};

/// The square root of a third: of integers, which are rounded, white stays white.
constexpr float rootOfThird = 0.57735026F;

struct Root {
    template <class T> static T one(T r, T g, T b) {
        const auto x = static_cast<float>(r);
        const auto y = static_cast<float>(g);
        const auto z = static_cast<float>(b);
        const float root = _mm_cvtss_f32(_mm_sqrt_ss(_mm_set_ss(x * x + y * y + z * z))) * rootOfThird;
        if constexpr (std::is_integral_v<T>)
            return nearestEven<T>(root);
        else
            return root;
    }

    static __m128i vector(Lum8u, Channels c) {
        return _mm_packus_epi16(ofBytes(lowBytes(c.r), lowBytes(c.g), lowBytes(c.b)),
                                ofBytes(highBytes(c.r), highBytes(c.g), highBytes(c.b)));
    }
    static __m128i vector(Lum16u, Channels c) {
        return packedWordsUnsigned(ofWords(lowWords(c.r), lowWords(c.g), lowWords(c.b)),
                                   ofWords(highWords(c.r), highWords(c.g), highWords(c.b)));
    }
    static __m128i vector(Lum32f, Channels c) {
        return _mm_castps_si128(
            ofFloats(_mm_castsi128_ps(c.r), _mm_castsi128_ps(c.g), _mm_castsi128_ps(c.b)));
    }

  private:
    static __m128 scaled(__m128 sums) { return _mm_mul_ps(_mm_sqrt_ps(sums), _mm_set1_ps(rootOfThird)); }
    static __m128 ofFloats(__m128 r, __m128 g, __m128 b) {
        return scaled(_mm_add_ps(_mm_add_ps(_mm_mul_ps(r, r), _mm_mul_ps(g, g)), _mm_mul_ps(b, b)));
    }
    /// Squares of bytes and their sums are exact in integers and in single precision alike.
    static __m128i ofBytes(__m128i r, __m128i g, __m128i b) {
        const __m128i zero = _mm_setzero_si128();
        const auto sums = [](__m128i firstTwo, __m128i last) {
            return _mm_cvtepi32_ps(
                _mm_add_epi32(_mm_madd_epi16(firstTwo, firstTwo), _mm_madd_epi16(last, last)));
        };
        return _mm_packs_epi32(
            nearestEvenLanes(scaled(sums(_mm_unpacklo_epi16(r, g), _mm_unpacklo_epi16(b, zero)))),
            nearestEvenLanes(scaled(sums(_mm_unpackhi_epi16(r, g), _mm_unpackhi_epi16(b, zero)))));
    }
    /// The limit comes before the conversion, as everywhere.
    static __m128i ofWords(__m128i r, __m128i g, __m128i b) {
        const __m128 roots = ofFloats(_mm_cvtepi32_ps(r), _mm_cvtepi32_ps(g), _mm_cvtepi32_ps(b));
        return nearestEvenLanes(_mm_min_ps(roots, _mm_set1_ps(65535.0F)));
    }
};

template <class Reduction, class T>
void reduceRow(const T* pixels, T* result, std::ptrdiff_t first, std::ptrdiff_t last) {
    for (std::ptrdiff_t x = first; x < last; ++x)
        result[x] = Reduction::one(pixels[3 * x], pixels[3 * x + 1], pixels[3 * x + 2]);
}

template <class Reduction, class T> void reduceScalar(Image<const T> src, Image<T> dst, LumSize size) {
    for (int y = 0; y < size.height; ++y) reduceRow<Reduction>(src.row(y), dst.row(y), 0, size.width);
}

template <class Reduction, class T> void reduce(Image<const T> src, Image<T> dst, LumSize size) {
    constexpr int lanes = 16 / sizeof(T);
    for (int y = 0; y < size.height; ++y) {
        const T* pixels = src.row(y);
        T* result = dst.row(y);
        std::ptrdiff_t x = 0;
        // 16 bytes of results per iteration
        for (; x <= size.width - lanes; x += lanes)
            storeVector<Access::unaligned>(result + x, Reduction::vector(T{}, channelsAt(pixels + 3 * x)));
        // tail, one pixel at a time
        reduceRow<Reduction>(pixels, result, x, size.width);
    }
}

} // namespace

template <class T> void largestOfThreeScalar(Image<const T> src, Image<T> dst, LumSize size) {
    reduceScalar<Largest>(src, dst, size);
}
template <class T> void largestOfThree(Image<const T> src, Image<T> dst, LumSize size) {
    reduce<Largest>(src, dst, size);
}
template <class T> void meanOfThreeScalar(Image<const T> src, Image<T> dst, LumSize size) {
    reduceScalar<Mean>(src, dst, size);
}
template <class T> void meanOfThree(Image<const T> src, Image<T> dst, LumSize size) {
    reduce<Mean>(src, dst, size);
}
template <class T> void rootOfSquaresScalar(Image<const T> src, Image<T> dst, LumSize size) {
    reduceScalar<Root>(src, dst, size);
}
template <class T> void rootOfSquares(Image<const T> src, Image<T> dst, LumSize size) {
    reduce<Root>(src, dst, size);
}

template decltype(largestOfThreeScalar<Lum8u>) largestOfThreeScalar<Lum8u>;
template decltype(largestOfThreeScalar<Lum16u>) largestOfThreeScalar<Lum16u>;
template decltype(largestOfThreeScalar<Lum32f>) largestOfThreeScalar<Lum32f>;
template decltype(largestOfThree<Lum8u>) largestOfThree<Lum8u>;
template decltype(largestOfThree<Lum16u>) largestOfThree<Lum16u>;
template decltype(largestOfThree<Lum32f>) largestOfThree<Lum32f>;
template decltype(meanOfThreeScalar<Lum8u>) meanOfThreeScalar<Lum8u>;
template decltype(meanOfThreeScalar<Lum16u>) meanOfThreeScalar<Lum16u>;
template decltype(meanOfThreeScalar<Lum32f>) meanOfThreeScalar<Lum32f>;
template decltype(meanOfThree<Lum8u>) meanOfThree<Lum8u>;
template decltype(meanOfThree<Lum16u>) meanOfThree<Lum16u>;
template decltype(meanOfThree<Lum32f>) meanOfThree<Lum32f>;
template decltype(rootOfSquaresScalar<Lum8u>) rootOfSquaresScalar<Lum8u>;
template decltype(rootOfSquaresScalar<Lum16u>) rootOfSquaresScalar<Lum16u>;
template decltype(rootOfSquaresScalar<Lum32f>) rootOfSquaresScalar<Lum32f>;
template decltype(rootOfSquares<Lum8u>) rootOfSquares<Lum8u>;
template decltype(rootOfSquares<Lum16u>) rootOfSquares<Lum16u>;
template decltype(rootOfSquares<Lum32f>) rootOfSquares<Lum32f>;

} // namespace lum::kernels
