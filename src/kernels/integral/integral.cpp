#include "kernels/integral/integral.h"

#include <algorithm>
#include <limits>

#include "frame/instances.h"
#include "frame/lanes_transpose.h"
#include "kernels/fill_row.h"
#include "kernels/integral/summed.h"

namespace lum::kernels {
namespace {

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

/// Row y + 1 of one result, one pixel after the other. Column 0 is the start value.
template <class Out, SumOf of> struct ScalarRow {
    const Out* above;
    Out* below;
    RowSum<Out> sum;

    ScalarRow(Image<Out> dst, int y, Out start) : above(dst.row(y)), below(dst.row(y + 1)) {
        below[0] = start;
    }
    void add(Lum8u pixel, int x) {
        sum.add(static_cast<unsigned>(summand<of>(pixel)));
        below[x + 1] = sum.onto(above[x + 1]);
    }
};

/// The same row in vectors. The sum so far is a signed integer of 32 bits.
template <class Out, SumOf of> struct VectorRow {
    const Out* above;
    Out* below;
    decltype(runningSumsFrom<of>(nullptr)) sums;

    /// The widest row whose sums stay below 2 to the 31, so that they convert as they are.
    static constexpr int highest = of == SumOf::bytes ? 255 : 255 * 255;
    static constexpr int widest =
        std::is_integral_v<Out> ? std::numeric_limits<int>::max() : std::numeric_limits<int>::max() / highest;

    VectorRow(Image<Out> dst, int y, Out start, const Lum8u* pixels)
        : above(dst.row(y)), below(dst.row(y + 1)), sums(runningSumsFrom<of>(pixels + 1)) {
        below[0] = start;
    }

    /// Columns x to x + 31, which have the sums before their pixels.
    LUM_LANE void add32(const Lum8u* pixels, int x) { sums.template next<32>(pixels + x, storeFrom(x)); }

    /// The columns from x to the last one, `width`.
    LUM_LANE void finish(const Lum8u* pixels, int x, int width) {
        RunningSums<of> rest(sums.before());
        // 16, then 8 columns per iteration
        for (; x <= width - 15; x += 16) rest.template next<16>(pixels + x, storeFrom(x));
        for (; x <= width - 7; x += 8) rest.template next<8>(pixels + x, storeFrom(x));
        // tail: scalar, one column at a time
        auto sum = static_cast<unsigned>(rest.before());
        for (; x <= width; ++x) {
            sum += static_cast<unsigned>(summand<of>(pixels[x - 1]));
            RowSum<Out> whole;
            whole.add(sum);
            below[x] = whole.onto(above[x]);
        }
    }

  private:
    LUM_LANE auto storeFrom(int x) const {
        return [from = above + x, to = below + x]<int N>(Block<Lum32s, N> before, int i)
                   LUM_INLINED { store(load<N>(from + i) + converted<Out>(before), to + i); };
    }
};

template <class... Rows> void scanScalar(const Lum8u* pixels, int width, Rows... rows) {
    for (int x = 0; x < width; ++x) (rows.add(pixels[x], x), ...);
}

template <class... Rows> LUM_LANE void scanVector(const Lum8u* pixels, int width, Rows... rows) {
    int x = 1;
    // 32 columns per iteration
    for (; x <= width - 32; x += 32) (rows.add32(pixels, x), ...);
    (rows.finish(pixels, x, width), ...);
}

/// Four floats of each of n rows, of which four are in each unit: row k + 4 u in unit u.
template <int n> LUM_LANE Block<float, n> loadRows(Image<const Lum32f> src, int y, int x) {
    if constexpr (n == 4)
        return load<4>(src.row(y) + x);
    else
        return join(loadRows<n / 2>(src, y, x), loadRows<n / 2>(src, y + n / 2, x));
}

/// Adds the sums of n rows to the row above them, one after the other, and stores them: a, b, c and d have those of four
/// rows in their first unit, of the next four in the next.
template <int n>
LUM_LANE Float4 storeRows(Float4 above, Block<float, n> a, Block<float, n> b, Block<float, n> c,
                          Block<float, n> d, Image<Lum32f> below, int y, int x) {
    if constexpr (n == 4) {
        above = above + a;
        store(above, below.row(y) + x);
        above = above + b;
        store(above, below.row(y + 1) + x);
        above = above + c;
        store(above, below.row(y + 2) + x);
        above = above + d;
        store(above, below.row(y + 3) + x);
        return above;
    } else {
        above = storeRows(above, lowHalf(a), lowHalf(b), lowHalf(c), lowHalf(d), below, y, x);
        return storeRows(above, highHalf(a), highHalf(b), highHalf(c), highHalf(d), below, y + n / 2, x);
    }
}

// Several rows at once, one to an element: each row's sum rounds at each pixel, so that its additions are a chain that
// only other rows can fill.
template <int rows> void rowsOfFloats(Image<const Lum32f> src, Image<Lum32f> dst, int y, int width) {
    for (int i = 1; i <= rows; ++i) dst.row(y + i)[0] = 0;
    const Image<Lum32f> below(dst.row(1) + 1, dst.step);
    const float* above = dst.row(y) + 1;
    alignas(64) float sums[rows] = {};
    auto soFar = zeros<float, rows>();
    int x = 0;
    // 4 columns per iteration
    for (; x <= width - 4; x += 4) {
        auto row = load<4>(above + x);
        soFar = mapVectors(soFar, [&]<int n>(Block<float, n> sum, int i) LUM_INLINED {
            auto a = loadRows<n>(src, y + i, x);
            auto b = loadRows<n>(src, y + i + 1, x);
            auto c = loadRows<n>(src, y + i + 2, x);
            auto d = loadRows<n>(src, y + i + 3, x);
            transposeUnits(a, b, c, d);
            a = sum + a;
            b = a + b;
            c = b + c;
            d = c + d;
            sum = d;
            transposeUnits(a, b, c, d);
            row = storeRows(row, a, b, c, d, below, y + i, x);
            return sum;
        });
    }
    // tail: scalar, one column at a time
    store(soFar, sums);
    for (; x < width; ++x) {
        float value = above[x];
        for (int i = 0; i < rows; ++i) {
            sums[i] += src.row(y + i)[x];
            value += sums[i];
            below.row(y + i)[x] = value;
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
        scanScalar(src.row(y), size.width, ScalarRow<Sum, SumOf::bytes>(dst, y, value));
}

template <class Sum> void integral(Image<const Lum8u> src, Image<Sum> dst, LumSize size, Sum value) {
    using Row = VectorRow<Sum, SumOf::bytes>;
    if (size.width > Row::widest) return integralScalar(src, dst, size, value);
    fillRow(dst.row(0), size.width + 1, value);
    for (int y = 0; y < size.height; ++y) scanVector(src.row(y), size.width, Row(dst, y, value, src.row(y)));
}

template <class Sum, class Square>
void sqrIntegralScalar(Image<const Lum8u> src, Image<Sum> dst, Image<Square> sqr, LumSize size, Sum value,
                       Square sqrValue) {
    fillRow(dst.row(0), size.width + 1, value);
    fillRow(sqr.row(0), size.width + 1, sqrValue);
    for (int y = 0; y < size.height; ++y)
        scanScalar(src.row(y), size.width, ScalarRow<Sum, SumOf::bytes>(dst, y, value),
                   ScalarRow<Square, SumOf::squares>(sqr, y, sqrValue));
}

template <class Sum, class Square>
void sqrIntegral(Image<const Lum8u> src, Image<Sum> dst, Image<Square> sqr, LumSize size, Sum value,
                 Square sqrValue) {
    using Sums = VectorRow<Sum, SumOf::bytes>;
    using Squares = VectorRow<Square, SumOf::squares>;
    if (size.width > std::min(Sums::widest, Squares::widest))
        return sqrIntegralScalar(src, dst, sqr, size, value, sqrValue);
    fillRow(dst.row(0), size.width + 1, value);
    fillRow(sqr.row(0), size.width + 1, sqrValue);
    for (int y = 0; y < size.height; ++y)
        scanVector(src.row(y), size.width, Sums(dst, y, value, src.row(y)),
                   Squares(sqr, y, sqrValue, src.row(y)));
}

void integralOfFloatsScalar(Image<const Lum32f> src, Image<Lum32f> dst, LumSize size) {
    fillRow(dst.row(0), size.width + 1, 0.0F);
    for (int y = 0; y < size.height; ++y) rowOfFloats(src, dst, y, size.width);
}

void integralOfFloats(Image<const Lum32f> src, Image<Lum32f> dst, LumSize size) {
    fillRow(dst.row(0), size.width + 1, 0.0F);
    int y = 0;
    // 8, then 4 rows per iteration
    for (; y <= size.height - 8; y += 8) rowsOfFloats<8>(src, dst, y, size.width);
    for (; y <= size.height - 4; y += 4) rowsOfFloats<4>(src, dst, y, size.width);
    // tail: scalar, one row at a time
    for (; y < size.height; ++y) rowOfFloats(src, dst, y, size.width);
}

LUM_INSTANCES(integralScalar, (Lum32s), (Lum32f));
LUM_INSTANCES(integral, (Lum32s), (Lum32f));
LUM_INSTANCES(sqrIntegralScalar, (Lum32s, Lum32s), (Lum32s, Lum64f), (Lum32f, Lum64f));
LUM_INSTANCES(sqrIntegral, (Lum32s, Lum32s), (Lum32s, Lum64f), (Lum32f, Lum64f));

} // namespace lum::kernels
