#include "kernels/integral/tilted_integral.h"

#include <algorithm>

#include "frame/vector.h"
#include "kernels/fill_row.h"

namespace lum::kernels {
namespace {

/// What is summed of a pixel: the pixel.
struct Pixel {
    static int of(Lum8u pixel) { return pixel; }
    /// Of four pairs of pixels, 8 bytes in the low half.
    static __m128i sumsOfFourPairs(__m128i pairs) {
        const __m128i sums = _mm_maddubs_epi16(pairs, _mm_set1_epi8(1));
        return _mm_unpacklo_epi16(sums, _mm_setzero_si128());
    }
};

/// What is summed of a pixel: its square.
struct SquaredPixel {
    static int of(Lum8u pixel) { return pixel * pixel; }
    static __m128i sumsOfFourPairs(__m128i pairs) {
        const __m128i words = _mm_unpacklo_epi8(pairs, _mm_setzero_si128());
        return _mm_madd_epi16(words, words);
    }
};

/// Arithmetic of a result. Integers wrap; the others round at each step.
template <class Out> struct Arithmetic {
    static Out sum(Out a, Out b) { return a + b; }
    static Out difference(Out a, Out b) { return a - b; }
};
template <> struct Arithmetic<Lum32s> {
    static Lum32s sum(Lum32s a, Lum32s b) {
        return static_cast<Lum32s>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
    }
    static Lum32s difference(Lum32s a, Lum32s b) {
        return static_cast<Lum32s>(static_cast<unsigned>(a) - static_cast<unsigned>(b));
    }
};

// c = sums + b[-1] - (a[0] - b[1]) for four neighbours.
void storeOnto(const Lum32s* a, const Lum32s* b, __m128i sums, Lum32s* c) {
    const __m128i removed =
        _mm_sub_epi32(loadVector<Access::unaligned>(a), loadVector<Access::unaligned>(b + 1));
    const __m128i added = _mm_add_epi32(sums, loadVector<Access::unaligned>(b - 1));
    storeVector<Access::unaligned>(c, _mm_sub_epi32(added, removed));
}

void storeOnto(const Lum32f* a, const Lum32f* b, __m128i sums, Lum32f* c) {
    const __m128 removed = _mm_sub_ps(loadFloats<Access::unaligned>(a), loadFloats<Access::unaligned>(b + 1));
    const __m128 added = _mm_add_ps(_mm_cvtepi32_ps(sums), loadFloats<Access::unaligned>(b - 1));
    storeFloats<Access::unaligned>(c, _mm_sub_ps(added, removed));
}

void storeOnto(const Lum64f* a, const Lum64f* b, __m128i sums, Lum64f* c) {
    const __m128i halves[2] = {sums, _mm_unpackhi_epi64(sums, sums)};
    for (int i = 0; i < 2; ++i) {
        const __m128d removed = _mm_sub_pd(_mm_loadu_pd(a + 2 * i), _mm_loadu_pd(b + 2 * i + 1));
        const __m128d added = _mm_add_pd(_mm_cvtepi32_pd(halves[i]), _mm_loadu_pd(b + 2 * i - 1));
        _mm_storeu_pd(c + 2 * i, _mm_sub_pd(added, removed));
    }
}

/// Three rows of one result: `c` is written from source row y and the two rows above.
template <class Out, class Value> struct Line {
    using Math = Arithmetic<Out>;

    const Out* a;
    const Out* b;
    Out* c;

    Line(Image<Out> dst, int y) : a(dst.row(y)), b(dst.row(y + 1)), c(dst.row(y + 2)) {}

    void first() const { c[0] = b[1]; }

    /// Column x, between the pixels x - 1 and x.
    void take(Lum8u left, Lum8u right, int x) const {
        const Out pixels = static_cast<Out>(Value::of(left) + Value::of(right));
        c[x] = Math::difference(Math::sum(pixels, b[x - 1]), Math::difference(a[x], b[x + 1]));
    }

    /// Columns x to x + 7, from their eight pairs of pixels.
    void takeEight(__m128i pairs, int x) const {
        const __m128i upper = _mm_unpackhi_epi64(pairs, pairs);
        storeOnto(a + x, b + x, Value::sumsOfFourPairs(pairs), c + x);
        storeOnto(a + x + 4, b + x + 4, Value::sumsOfFourPairs(upper), c + x + 4);
    }

    void last(Lum8u pixel, int width) const {
        const Out value = static_cast<Out>(Value::of(pixel));
        c[width] = Math::sum(Math::sum(value, b[width - 1]), Math::difference(b[width + 1], a[width]));
        c[width + 1] = b[width];
    }
};

template <class... Lines> void rowScalar(const Lum8u* pixels, int width, Lines... lines) {
    (lines.first(), ...);
    for (int x = 1; x < width; ++x) (lines.take(pixels[x - 1], pixels[x], x), ...);
    (lines.last(pixels[width - 1], width), ...);
}

template <class First, class... Lines>
void rowVector(const Lum8u* pixels, int width, First first, Lines... lines) {
    int x = 1;
    const auto takeSingly = [&](int end) {
        for (; x < end; ++x) {
            first.take(pixels[x - 1], pixels[x], x);
            (lines.take(pixels[x - 1], pixels[x], x), ...);
        }
    };
    first.first(), (lines.first(), ...);
    // to the boundary of the first result's stores
    takeSingly(std::min(width, 1 + elementsToBoundary(first.c + 1)));
    // 8 columns per iteration
    for (; x <= width - 8; x += 8) {
        const __m128i pairs = _mm_unpacklo_epi8(loadHalf(pixels + x - 1), loadHalf(pixels + x));
        first.takeEight(pairs, x), (lines.takeEight(pairs, x), ...);
    }
    // tail, one column at a time
    takeSingly(width);
    first.last(pixels[width - 1], width), (lines.last(pixels[width - 1], width), ...);
}

template <class T> void fillFirstRows(Image<T> dst, int width, T value) {
    fillRow(dst.row(0), width + 2, value);
    fillRow(dst.row(1), width + 2, value);
}

} // namespace

template <class Sum>
void tiltedIntegralScalar(Image<const Lum8u> src, Image<Sum> dst, LumSize size, Sum value) {
    fillFirstRows(dst, size.width, value);
    for (int y = 0; y < size.height; ++y) rowScalar(src.row(y), size.width, Line<Sum, Pixel>(dst, y));
}

template <class Sum> void tiltedIntegral(Image<const Lum8u> src, Image<Sum> dst, LumSize size, Sum value) {
    fillFirstRows(dst, size.width, value);
    for (int y = 0; y < size.height; ++y) rowVector(src.row(y), size.width, Line<Sum, Pixel>(dst, y));
}

template <class Sum, class Square>
void tiltedSqrIntegralScalar(Image<const Lum8u> src, Image<Sum> dst, Image<Square> sqr, LumSize size,
                             Sum value, Square sqrValue) {
    fillFirstRows(dst, size.width, value);
    fillFirstRows(sqr, size.width, sqrValue);
    for (int y = 0; y < size.height; ++y)
        rowScalar(src.row(y), size.width, Line<Sum, Pixel>(dst, y), Line<Square, SquaredPixel>(sqr, y));
}

template <class Sum, class Square>
void tiltedSqrIntegral(Image<const Lum8u> src, Image<Sum> dst, Image<Square> sqr, LumSize size, Sum value,
                       Square sqrValue) {
    fillFirstRows(dst, size.width, value);
    fillFirstRows(sqr, size.width, sqrValue);
    for (int y = 0; y < size.height; ++y)
        rowVector(src.row(y), size.width, Line<Sum, Pixel>(dst, y), Line<Square, SquaredPixel>(sqr, y));
}

template decltype(tiltedIntegralScalar<Lum32s>) tiltedIntegralScalar<Lum32s>;
template decltype(tiltedIntegralScalar<Lum32f>) tiltedIntegralScalar<Lum32f>;
template decltype(tiltedIntegral<Lum32s>) tiltedIntegral<Lum32s>;
template decltype(tiltedIntegral<Lum32f>) tiltedIntegral<Lum32f>;
template decltype(tiltedSqrIntegralScalar<Lum32s, Lum32s>) tiltedSqrIntegralScalar<Lum32s, Lum32s>;
template decltype(tiltedSqrIntegralScalar<Lum32s, Lum64f>) tiltedSqrIntegralScalar<Lum32s, Lum64f>;
template decltype(tiltedSqrIntegralScalar<Lum32f, Lum64f>) tiltedSqrIntegralScalar<Lum32f, Lum64f>;
template decltype(tiltedSqrIntegral<Lum32s, Lum32s>) tiltedSqrIntegral<Lum32s, Lum32s>;
template decltype(tiltedSqrIntegral<Lum32s, Lum64f>) tiltedSqrIntegral<Lum32s, Lum64f>;
template decltype(tiltedSqrIntegral<Lum32f, Lum64f>) tiltedSqrIntegral<Lum32f, Lum64f>;

} // namespace lum::kernels
