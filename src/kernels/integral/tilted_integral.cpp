#include "kernels/integral/tilted_integral.h"

#include <algorithm>

#include "frame/instances.h"
#include "frame/lanes_parts.h"
#include "frame/lanes_products.h"
#include "kernels/fill_row.h"
#include "kernels/integral/summed.h"

namespace lum::kernels {
namespace {

/// Of N pixels and their right neighbours.
template <SumOf of, int N> LUM_LANE Block<Lum32s, N> pairSums(const Lum8u* pixels) {
    const auto pairs = interleave(load<N>(pixels), load<N>(pixels + 1));
    if constexpr (of == SumOf::bytes) {
        return widen<Lum32s>(bitsAs<Lum16u>(multiplyAddPairs(pairs, broadcast<2 * N>(std::int8_t{1}))));
    } else {
        const auto words = widen<Lum16s>(pairs);
        return multiplyAddPairs(words, words);
    }
}

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

/// Three rows of one result: `c` is written from source row y and the two rows above.
template <class Out, SumOf of> struct Row {
    using Math = Arithmetic<Out>;

    const Out* a;
    const Out* b;
    Out* c;

    Row(Image<Out> dst, int y) : a(dst.row(y)), b(dst.row(y + 1)), c(dst.row(y + 2)) {}

    void first() const { c[0] = b[1]; }

    /// Column x, between the pixels x - 1 and x.
    void take(Lum8u left, Lum8u right, int x) const {
        const Out pixels = static_cast<Out>(summand<of>(left) + summand<of>(right));
        c[x] = Math::difference(Math::sum(pixels, b[x - 1]), Math::difference(a[x], b[x + 1]));
    }

    /// N columns from x on.
    template <int N> LUM_LANE void takeBlock(const Lum8u* pixels, int x) const {
        // in 16-byte vectors eight sums of pairs at a time
        forVectors<Lum16s, N>([&]<int n>(int start) LUM_INLINED {
            const auto sums = pairSums<of, n>(pixels + x + start - 1);
            forVectors<Lum32s, n>([&]<int m>(int first) LUM_INLINED {
                const int i = x + start + first;
                const auto added = converted<Out>(part<m>(sums, first)) + load<m>(b + i - 1);
                store(added - (load<m>(a + i) - load<m>(b + i + 1)), c + i);
            });
        });
    }

    void last(Lum8u pixel, int width) const {
        const Out value = static_cast<Out>(summand<of>(pixel));
        c[width] = Math::sum(Math::sum(value, b[width - 1]), Math::difference(b[width + 1], a[width]));
        c[width + 1] = b[width];
    }
};

template <class... Rows> void rowScalar(const Lum8u* pixels, int width, Rows... rows) {
    (rows.first(), ...);
    for (int x = 1; x < width; ++x) (rows.take(pixels[x - 1], pixels[x], x), ...);
    (rows.last(pixels[width - 1], width), ...);
}

template <class First, class... Rows>
void rowVector(const Lum8u* pixels, int width, First first, Rows... rows) {
    first.first(), (rows.first(), ...);
    int x = 1;
    const auto takeSingly = [&](int end) LUM_INLINED {
        for (; x < end; ++x) {
            first.take(pixels[x - 1], pixels[x], x);
            (rows.take(pixels[x - 1], pixels[x], x), ...);
        }
    };
    // to the boundary of the first result's stores
    takeSingly(std::min(width, 1 + elementsToBoundary(first.c + 1)));
    // 16, then 8 columns per iteration
    for (; x <= width - 16; x += 16)
        first.template takeBlock<16>(pixels, x), (rows.template takeBlock<16>(pixels, x), ...);
    for (; x <= width - 8; x += 8)
        first.template takeBlock<8>(pixels, x), (rows.template takeBlock<8>(pixels, x), ...);
    // tail: scalar, one column at a time
    takeSingly(width);
    first.last(pixels[width - 1], width), (rows.last(pixels[width - 1], width), ...);
}

template <class T> void fillFirstRows(Image<T> dst, int width, T value) {
    fillRow(dst.row(0), width + 2, value);
    fillRow(dst.row(1), width + 2, value);
}

} // namespace

template <class Sum>
void tiltedIntegralScalar(Image<const Lum8u> src, Image<Sum> dst, LumSize size, Sum value) {
    fillFirstRows(dst, size.width, value);
    for (int y = 0; y < size.height; ++y) rowScalar(src.row(y), size.width, Row<Sum, SumOf::bytes>(dst, y));
}

template <class Sum> void tiltedIntegral(Image<const Lum8u> src, Image<Sum> dst, LumSize size, Sum value) {
    fillFirstRows(dst, size.width, value);
    for (int y = 0; y < size.height; ++y) rowVector(src.row(y), size.width, Row<Sum, SumOf::bytes>(dst, y));
}

template <class Sum, class Square>
void tiltedSqrIntegralScalar(Image<const Lum8u> src, Image<Sum> dst, Image<Square> sqr, LumSize size,
                             Sum value, Square sqrValue) {
    fillFirstRows(dst, size.width, value);
    fillFirstRows(sqr, size.width, sqrValue);
    for (int y = 0; y < size.height; ++y)
        rowScalar(src.row(y), size.width, Row<Sum, SumOf::bytes>(dst, y),
                  Row<Square, SumOf::squares>(sqr, y));
}

template <class Sum, class Square>
void tiltedSqrIntegral(Image<const Lum8u> src, Image<Sum> dst, Image<Square> sqr, LumSize size, Sum value,
                       Square sqrValue) {
    fillFirstRows(dst, size.width, value);
    fillFirstRows(sqr, size.width, sqrValue);
    for (int y = 0; y < size.height; ++y)
        rowVector(src.row(y), size.width, Row<Sum, SumOf::bytes>(dst, y),
                  Row<Square, SumOf::squares>(sqr, y));
}

LUM_INSTANCES(tiltedIntegralScalar, (Lum32s), (Lum32f));
LUM_INSTANCES(tiltedIntegral, (Lum32s), (Lum32f));
LUM_INSTANCES(tiltedSqrIntegralScalar, (Lum32s, Lum32s), (Lum32s, Lum64f), (Lum32f, Lum64f));
LUM_INSTANCES(tiltedSqrIntegral, (Lum32s, Lum32s), (Lum32s, Lum64f), (Lum32f, Lum64f));

} // namespace lum::kernels
