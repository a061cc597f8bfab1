#include "kernels/integral/integral.h"

#include <algorithm>
#include <limits>

#include "frame/vector.h"
#include "kernels/fill_row.h"

namespace lum::kernels {
namespace {

/// What is summed of a pixel: the pixel.
struct Pixel {
    static constexpr unsigned highest = 255;

    static unsigned of(Lum8u pixel) { return pixel; }

    /// Sums of the first one, two, three and four of four pixels of the eight in the low half; `group` is 0
    /// or 1.
    template <int group> static __m128i sumsOfFour(__m128i pixels) {
        constexpr char p = 4 * group;
        constexpr char none = -1;
        const __m128i spread = _mm_setr_epi8(p, none, none, none, p, p + 1, none, none, p, p + 1, p + 2, none,
                                             p, p + 1, p + 2, p + 3);
        const __m128i pairs = _mm_maddubs_epi16(_mm_shuffle_epi8(pixels, spread), _mm_set1_epi8(1));
        return _mm_madd_epi16(pairs, _mm_set1_epi16(1));
    }
};

/// What is summed of a pixel: its square.
struct SquaredPixel {
    static constexpr unsigned highest = 255 * 255;

    static unsigned of(Lum8u pixel) { return static_cast<unsigned>(pixel) * pixel; }

    template <int group> static __m128i sumsOfFour(__m128i pixels) {
        constexpr char p = 4 * group;
        constexpr char none = -1;
        const __m128i spread = _mm_setr_epi8(p, none, none, none, p, none, p + 1, none, p + 2, none, none,
                                             none, p + 2, none, p + 3, none);
        const __m128i firstPairToSecond =
            _mm_setr_epi8(none, none, none, none, none, none, none, none, 4, 5, 6, 7, 4, 5, 6, 7);
        const __m128i words = _mm_shuffle_epi8(pixels, spread);
        const __m128i pairs = _mm_madd_epi16(words, words);
        return _mm_add_epi32(pairs, _mm_shuffle_epi8(pairs, firstPairToSecond));
    }
};

/// The sum of a row's pixels so far, and its addition to the row above. Sums of a row are exact: modulo 2 to
/// the 32 where the result wraps, else in a double, which holds every sum of a row that fits into memory.
template <class Out> struct RowSum {
    double sum = 0;
    // A value is below 2 to the 31. As a signed integer it converts in one step, so that 0 is +0 in every rounding
    // mode, as it is in the vectors.
    void add(unsigned value) { sum += static_cast<int>(value); }
    Out onto(Out above) const { return above + static_cast<Out>(sum); }
};
template <> struct RowSum<Lum32s> {
    unsigned sum = 0;
    void add(unsigned value) { sum += value; }
    Lum32s onto(Lum32s above) const { return static_cast<Lum32s>(static_cast<unsigned>(above) + sum); }
};

/// Row y + 1 of one result, under scan one pixel after the other. Column 0 is the start value.
template <class Out, class Value> struct ScalarLine {
    const Out* above;
    Out* below;
    RowSum<Out> sum;

    ScalarLine(Image<Out> dst, int y, Out start) : above(dst.row(y) + 1), below(dst.row(y + 1) + 1) {
        below[-1] = start;
    }
    void take(Lum8u pixel, int x) {
        sum.add(Value::of(pixel));
        below[x] = sum.onto(above[x]);
    }
};

void storeOnto(const Lum32s* above, __m128i sums, Lum32s* below) {
    storeVector<Access::unaligned>(below, _mm_add_epi32(loadVector<Access::unaligned>(above), sums));
}

void storeOnto(const Lum32f* above, __m128i sums, Lum32f* below) {
    const __m128 floats = _mm_add_ps(loadFloats<Access::unaligned>(above), _mm_cvtepi32_ps(sums));
    storeFloats<Access::unaligned>(below, floats);
}

void storeOnto(const Lum64f* above, __m128i sums, Lum64f* below) {
    const __m128i upper = _mm_unpackhi_epi64(sums, sums);
    _mm_storeu_pd(below, _mm_add_pd(_mm_loadu_pd(above), _mm_cvtepi32_pd(sums)));
    _mm_storeu_pd(below + 2, _mm_add_pd(_mm_loadu_pd(above + 2), _mm_cvtepi32_pd(upper)));
}

/// The same row under scan in vectors: the sum so far is in all lanes, as a signed integer of 32 bits.
template <class Out, class Value> struct VectorLine {
    const Out* above;
    Out* below;
    __m128i sum = _mm_setzero_si128();

    /// The widest row whose sums stay below 2 to the 31, so that they convert as they are.
    static constexpr int widest = std::is_integral_v<Out>
                                      ? std::numeric_limits<int>::max()
                                      : static_cast<int>(std::numeric_limits<int>::max() / Value::highest);
    static_assert(std::is_integral_v<Out> ||
                  std::int64_t{widest} * Value::highest <= std::numeric_limits<int>::max());

    VectorLine(Image<Out> dst, int y, Out start) : above(dst.row(y) + 1), below(dst.row(y + 1) + 1) {
        below[-1] = start;
    }

    void take(Lum8u pixel, int x) {
        sum = _mm_add_epi32(sum, _mm_set1_epi32(static_cast<int>(Value::of(pixel))));
        RowSum<Out> whole;
        whole.add(static_cast<unsigned>(_mm_cvtsi128_si32(sum)));
        below[x] = whole.onto(above[x]);
    }

    // The sums within the eight pixels do not wait for the sum so far: the chain from iteration to iteration is one
    // addition and one broadcast.
    void takeEight(__m128i pixels, int x) {
        const __m128i first = Value::template sumsOfFour<0>(pixels);
        const __m128i second =
            _mm_add_epi32(Value::template sumsOfFour<1>(pixels), _mm_shuffle_epi32(first, 0xFF));
        const __m128i whole = _mm_add_epi32(second, sum);
        storeOnto(above + x, _mm_add_epi32(first, sum), below + x);
        storeOnto(above + x + 4, whole, below + x + 4);
        sum = _mm_shuffle_epi32(whole, 0xFF);
    }
};

template <class... Lines> void scanScalar(const Lum8u* pixels, int width, Lines... lines) {
    for (int x = 0; x < width; ++x) (lines.take(pixels[x], x), ...);
}

template <class First, class... Lines>
void scanVector(const Lum8u* pixels, int width, First first, Lines... lines) {
    int x = 0;
    const auto takeSingly = [&](int end) {
        for (; x < end; ++x) first.take(pixels[x], x), (lines.take(pixels[x], x), ...);
    };
    // to the boundary of the first result's stores
    takeSingly(std::min(width, elementsToBoundary(first.below)));
    // 8 pixels per iteration
    for (; x <= width - 8; x += 8) {
        const __m128i eight = loadHalf(pixels + x);
        first.takeEight(eight, x);
        (lines.takeEight(eight, x), ...);
    }
    // tail, one pixel at a time
    takeSingly(width);
}

// Float4 rows at once, one to a lane: each row's sum rounds at each pixel, so that its additions are a chain
// that only other rows can fill.
void fourRowsOfFloats(Image<const Lum32f> src, Image<Lum32f> dst, int y, int width) {
    const float* s[4];
    float* below[4];
    for (int i = 0; i < 4; ++i) {
        s[i] = src.row(y + i);
        below[i] = dst.row(y + i + 1) + 1;
        below[i][-1] = 0;
    }
    const float* above = dst.row(y) + 1;
    __m128 sums = _mm_setzero_ps();
    int x = 0;
    // 4 columns of 4 rows per iteration
    for (; x <= width - 4; x += 4) {
        __m128 a = _mm_loadu_ps(s[0] + x);
        __m128 b = _mm_loadu_ps(s[1] + x);
        __m128 c = _mm_loadu_ps(s[2] + x);
        __m128 d = _mm_loadu_ps(s[3] + x);
        _MM_TRANSPOSE4_PS(a, b, c, d);
        a = _mm_add_ps(sums, a);
        b = _mm_add_ps(a, b);
        c = _mm_add_ps(b, c);
        d = _mm_add_ps(c, d);
        sums = d;
        _MM_TRANSPOSE4_PS(a, b, c, d);
        a = _mm_add_ps(_mm_loadu_ps(above + x), a);
        _mm_storeu_ps(below[0] + x, a);
        b = _mm_add_ps(a, b);
        _mm_storeu_ps(below[1] + x, b);
        c = _mm_add_ps(b, c);
        _mm_storeu_ps(below[2] + x, c);
        _mm_storeu_ps(below[3] + x, _mm_add_ps(c, d));
    }
    // tail, one column at a time
    float sum[4];
    _mm_storeu_ps(sum, sums);
    for (; x < width; ++x) {
        float value = above[x];
        for (int i = 0; i < 4; ++i) {
            sum[i] += s[i][x];
            value += sum[i];
            below[i][x] = value;
        }
    }
}

void rowOfFloats(Image<const Lum32f> src, Image<Lum32f> dst, int y, int width) {
    const float* s = src.row(y);
    const float* above = dst.row(y) + 1;
    float* below = dst.row(y + 1) + 1;
    below[-1] = 0;
    float sum = 0;
    for (int x = 0; x < width; ++x) {
        sum += s[x];
        below[x] = above[x] + sum;
    }
}

} // namespace

template <class Sum> void integralScalar(Image<const Lum8u> src, Image<Sum> dst, LumSize size, Sum value) {
    fillRow(dst.row(0), size.width + 1, value);
    for (int y = 0; y < size.height; ++y)
        scanScalar(src.row(y), size.width, ScalarLine<Sum, Pixel>(dst, y, value));
}

template <class Sum> void integral(Image<const Lum8u> src, Image<Sum> dst, LumSize size, Sum value) {
    using Line = VectorLine<Sum, Pixel>;
    if (size.width > Line::widest) return integralScalar(src, dst, size, value);
    fillRow(dst.row(0), size.width + 1, value);
    for (int y = 0; y < size.height; ++y) scanVector(src.row(y), size.width, Line(dst, y, value));
}

template <class Sum, class Square>
void sqrIntegralScalar(Image<const Lum8u> src, Image<Sum> dst, Image<Square> sqr, LumSize size, Sum value,
                       Square sqrValue) {
    fillRow(dst.row(0), size.width + 1, value);
    fillRow(sqr.row(0), size.width + 1, sqrValue);
    for (int y = 0; y < size.height; ++y)
        scanScalar(src.row(y), size.width, ScalarLine<Sum, Pixel>(dst, y, value),
                   ScalarLine<Square, SquaredPixel>(sqr, y, sqrValue));
}

template <class Sum, class Square>
void sqrIntegral(Image<const Lum8u> src, Image<Sum> dst, Image<Square> sqr, LumSize size, Sum value,
                 Square sqrValue) {
    using Sums = VectorLine<Sum, Pixel>;
    using Squares = VectorLine<Square, SquaredPixel>;
    if (size.width > std::min(Sums::widest, Squares::widest))
        return sqrIntegralScalar(src, dst, sqr, size, value, sqrValue);
    fillRow(dst.row(0), size.width + 1, value);
    fillRow(sqr.row(0), size.width + 1, sqrValue);
    for (int y = 0; y < size.height; ++y)
        scanVector(src.row(y), size.width, Sums(dst, y, value), Squares(sqr, y, sqrValue));
}

void integralOfFloatsScalar(Image<const Lum32f> src, Image<Lum32f> dst, LumSize size) {
    fillRow(dst.row(0), size.width + 1, 0.0F);
    for (int y = 0; y < size.height; ++y) rowOfFloats(src, dst, y, size.width);
}

void integralOfFloats(Image<const Lum32f> src, Image<Lum32f> dst, LumSize size) {
    fillRow(dst.row(0), size.width + 1, 0.0F);
    int y = 0;
    // 4 rows per iteration
    for (; y <= size.height - 4; y += 4) fourRowsOfFloats(src, dst, y, size.width);
    // tail, one row at a time
    for (; y < size.height; ++y) rowOfFloats(src, dst, y, size.width);
}

template decltype(integralScalar<Lum32s>) integralScalar<Lum32s>;
template decltype(integralScalar<Lum32f>) integralScalar<Lum32f>;
template decltype(integral<Lum32s>) integral<Lum32s>;
template decltype(integral<Lum32f>) integral<Lum32f>;
template decltype(sqrIntegralScalar<Lum32s, Lum32s>) sqrIntegralScalar<Lum32s, Lum32s>;
template decltype(sqrIntegralScalar<Lum32s, Lum64f>) sqrIntegralScalar<Lum32s, Lum64f>;
template decltype(sqrIntegralScalar<Lum32f, Lum64f>) sqrIntegralScalar<Lum32f, Lum64f>;
template decltype(sqrIntegral<Lum32s, Lum32s>) sqrIntegral<Lum32s, Lum32s>;
template decltype(sqrIntegral<Lum32s, Lum64f>) sqrIntegral<Lum32s, Lum64f>;
template decltype(sqrIntegral<Lum32f, Lum64f>) sqrIntegral<Lum32f, Lum64f>;

} // namespace lum::kernels
