#include "kernels/feature/corner.h"

#include <cmath>
#include <limits>

#include "frame/instances.h"
#include "frame/lanes_reduce.h"
#include "kernels/feature/blocks.h"

namespace lum::kernels {
namespace {

template <Derivative kind> LUM_LANE auto alongX(auto tap) {
    if constexpr (kind == Derivative::sobel3 || kind == Derivative::sobel5)
        return differencedBackward<kind>(tap);
    else
        return differenced<kind>(tap);
}

/// A sum as a float: of integers of 16 bits it is exact.
template <class Stage> LUM_LANE auto asFloats(Block<Stage, 8> sums) {
    if constexpr (std::is_same_v<Stage, Lum16s>)
        return toFloat(sums);
    else
        return sums;
}

/// Eight columns, or the column itself.
struct Means {
    const WindowRows& window;
    float share = 1.0F / (static_cast<float>(window.taps) * static_cast<float>(window.taps));

    explicit Means(const WindowRows& rows) : window(rows) {}

    float one(const float* const* rows, std::ptrdiff_t x) const {
        float sum = rows[0][x];
        for (int k = 1; k < window.taps; ++k) sum = sum + rows[k][x];
        return sum * share;
    }

    /// `taps` is that of the window, or 0 where it is not known when the kernel is compiled.
    template <int taps> LUM_LANE Block<float, 8> eight(const float* const* rows, std::ptrdiff_t x) const {
        const int count = taps != 0 ? taps : window.taps;
        auto sum = load<8>(rows[0] + x);
        for (int k = 1; k < count; ++k) sum = sum + load<8>(rows[k] + x);
        return sum * broadcast<8>(share);
    }
};

/// Calls body(a, b, c, x) with the means of eight pixels. Tail, as in all rows here: overlapping last vector, and the
/// scalar form for rows below a block.
template <int taps, class Body> void onMeans(const WindowRows& window, std::ptrdiff_t count, Body body) {
    const Means means(window);
    forBlocks<8>(count, [&](std::ptrdiff_t x) {
        const auto a = means.eight<taps>(window.xx, x);
        const auto b = means.eight<taps>(window.xy, x);
        const auto c = means.eight<taps>(window.yy, x);
        body(a, b, c, x);
    });
}

template <class Body> void onMeansOfAnyWindow(const WindowRows& window, std::ptrdiff_t count, Body body) {
    switch (window.taps) {
    case 3:
        return onMeans<3>(window, count, body);
    case 5:
        return onMeans<5>(window, count, body);
    default:
        return onMeans<0>(window, count, body);
    }
}

template <int taps> void sumsAlong(const float* row, std::ptrdiff_t count, int anyTaps, float* sums) {
    const int last = taps != 0 ? taps : anyTaps;
    forBlocks<8>(count, [&](std::ptrdiff_t x) {
        auto sum = load<8>(row + x);
        for (int i = 1; i < last; ++i) sum = sum + load<8>(row + x + i);
        store(sum, sums + x);
    });
}

constexpr float determinantShare = 0.001F;
constexpr float epsilon = std::numeric_limits<float>::epsilon();

} // namespace

template <Derivative kind, class Stage>
void productRowScalar(const Stage* smooth, const Stage* difference, std::ptrdiff_t count,
                      const ProductRows& products) {
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        using Wide = std::conditional_t<std::is_same_v<Stage, Lum16s>, int, float>;
        const auto dx = static_cast<float>(alongX<kind>([&](int i) { return Wide{smooth[x + i]}; }));
        const auto dy = static_cast<float>(smoothed<kind>([&](int i) { return Wide{difference[x + i]}; }));
        products.xx[x] = dx * dx;
        products.xy[x] = dx * dy;
        products.yy[x] = dy * dy;
    }
}

template <Derivative kind, class Stage>
void productRow(const Stage* smooth, const Stage* difference, std::ptrdiff_t count,
                const ProductRows& products) {
    if (count < 8) return productRowScalar<kind>(smooth, difference, count, products);
    // 8 pixels per iteration
    forBlocks<8>(count, [&](std::ptrdiff_t x) {
        const auto dx = asFloats(alongX<kind>([&](int i) { return load<8>(smooth + x + i); }));
        const auto dy = asFloats(smoothed<kind>([&](int i) { return load<8>(difference + x + i); }));
        store(dx * dx, products.xx + x);
        store(dx * dy, products.xy + x);
        store(dy * dy, products.yy + x);
    });
}

void windowSumsAlongScalar(const float* row, std::ptrdiff_t count, int taps, float* sums) {
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        float sum = row[x];
        for (int i = 1; i < taps; ++i) sum = sum + row[x + i];
        sums[x] = sum;
    }
}

void windowSumsAlong(const float* row, std::ptrdiff_t count, int taps, float* sums) {
    if (count < 8) return windowSumsAlongScalar(row, count, taps, sums);
    switch (taps) {
    case 3:
        return sumsAlong<3>(row, count, taps, sums);
    case 5:
        return sumsAlong<5>(row, count, taps, sums);
    default:
        return sumsAlong<0>(row, count, taps, sums);
    }
}

void smallerEigenvalueRowScalar(const WindowRows& window, std::ptrdiff_t count, float scale, float* dst) {
    const Means means(window);
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        const float a = means.one(window.xx, x);
        const float b = means.one(window.xy, x);
        const float c = means.one(window.yy, x);
        dst[x] = ((a + c) - std::sqrt((a - c) * (a - c) + 4.0F * (b * b))) * scale;
    }
}

void smallerEigenvalueRow(const WindowRows& window, std::ptrdiff_t count, float scale, float* dst) {
    if (count < 8) return smallerEigenvalueRowScalar(window, count, scale, dst);
    const auto scales = broadcast<8>(scale);
    const auto four = broadcast<8>(4.0F);
    onMeansOfAnyWindow(window, count, [&](auto a, auto b, auto c, std::ptrdiff_t x) {
        store(((a + c) - sqrt((a - c) * (a - c) + four * (b * b))) * scales, dst + x);
    });
}

void eigenSystemRowScalar(const WindowRows& window, std::ptrdiff_t count, float scale, float sign,
                          float* dst) {
    const Means means(window);
    for (std::ptrdiff_t x = 0; x < count; ++x, dst += 6) {
        const float a = means.one(window.xx, x) * scale;
        const float b = means.one(window.xy, x) * scale;
        const float c = means.one(window.yy, x) * scale;
        const float t = a + c;
        const float d = a - c;
        const float r = std::sqrt(4.0F * b * b + d * d);
        const float larger = (t + r) * 0.5F;
        const float smaller = (t - r) * 0.5F;
        const float least = a < c ? a : c;
        const float e = (a > c ? a : c) * determinantShare;
        if (e > least || e > a * c - b * b) {
            for (int i = 0; i < 6; ++i) dst[i] = 0;
            continue;
        }
        dst[0] = larger;
        dst[1] = smaller;
        if (e > std::fabs(b)) {
            dst[2] = 0;
            dst[3] = 1;
            dst[4] = 1;
            dst[5] = 0;
            continue;
        }
        const float p = b * sign;
        const float q1 = larger - a;
        const float q2 = smaller - a;
        const float n1 = 1.0F / (std::sqrt(q1 * q1 + p * p) + epsilon);
        const float n2 = 1.0F / (std::sqrt(q2 * q2 + p * p) + epsilon);
        dst[2] = p * n1;
        dst[3] = q1 * n1;
        dst[4] = p * n2;
        dst[5] = q2 * n2;
    }
}

void eigenSystemRow(const WindowRows& window, std::ptrdiff_t count, float scale, float sign, float* dst) {
    if (count < 8) return eigenSystemRowScalar(window, count, scale, sign, dst);
    const auto scales = broadcast<8>(scale);
    const auto one = broadcast<8>(1.0F);
    const auto half = broadcast<8>(0.5F);
    // Inlined: the arguments of a call would be left in wide registers.
    onMeansOfAnyWindow(window, count, [&](auto meanA, auto meanB, auto meanC, std::ptrdiff_t x) LUM_INLINED {
        const auto a = meanA * scales;
        const auto b = meanB * scales;
        const auto c = meanC * scales;
        float* place = dst + 6 * x;
        const auto e = max(a, c) * broadcast<8>(determinantShare);
        const auto isLine = (e > min(a, c)) | (e > a * c - b * b);
        // along edges and in flat regions, which are most of a picture, all is 0
        if (!any(~isLine)) {
            for (int i = 0; i < 48; i += 8) store(zeros<float, 8>(), place + i);
            return;
        }
        const auto corner = bitsAs<float>(~isLine);
        const auto isDiagonal = e > abs(b);
        const auto t = a + c;
        const auto d = a - c;
        const auto r = sqrt(broadcast<8>(4.0F) * b * b + d * d);
        const auto larger = (t + r) * half;
        const auto smaller = (t - r) * half;
        const auto p = b * broadcast<8>(sign);
        const auto q1 = larger - a;
        const auto q2 = smaller - a;
        const auto n1 = one / (sqrt(q1 * q1 + p * p) + broadcast<8>(epsilon));
        const auto n2 = one / (sqrt(q2 * q2 + p * p) + broadcast<8>(epsilon));
        const auto diagonal = bitsAs<float>(isDiagonal);
        const auto x1 = andNot(diagonal, p * n1) & corner;
        const auto y1 = select(isDiagonal, one, q1 * n1) & corner;
        const auto x2 = select(isDiagonal, one, p * n2) & corner;
        const auto y2 = andNot(diagonal, q2 * n2) & corner;
        storeInterleaved(bitsAs<std::uint64_t>(interleave(larger & corner, smaller & corner)),
                         bitsAs<std::uint64_t>(interleave(x1, y1)), bitsAs<std::uint64_t>(interleave(x2, y2)),
                         place);
    });
}

void harrisRowScalar(const WindowRows& window, std::ptrdiff_t count, float k, float scale, float* dst) {
    const Means means(window);
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        const float a = means.one(window.xx, x);
        const float b = means.one(window.xy, x);
        const float c = means.one(window.yy, x);
        const float t = a + c;
        dst[x] = ((a * c - b * b) - t * (k * t)) * scale;
    }
}

void harrisRow(const WindowRows& window, std::ptrdiff_t count, float k, float scale, float* dst) {
    if (count < 8) return harrisRowScalar(window, count, k, scale, dst);
    const auto factor = broadcast<8>(k);
    const auto scales = broadcast<8>(scale);
    onMeansOfAnyWindow(window, count, [&](auto a, auto b, auto c, std::ptrdiff_t x) {
        const auto t = a + c;
        store(((a * c - b * b) - t * (factor * t)) * scales, dst + x);
    });
}

LUM_INSTANCES(productRowScalar, (Derivative::sobel3, Lum16s), (Derivative::sobel3, Lum32f),
              (Derivative::sobel5, Lum16s), (Derivative::sobel5, Lum32f), (Derivative::scharr3, Lum16s),
              (Derivative::scharr3, Lum32f), (Derivative::central3, Lum16s), (Derivative::central3, Lum32f));
LUM_INSTANCES(productRow, (Derivative::sobel3, Lum16s), (Derivative::sobel3, Lum32f),
              (Derivative::sobel5, Lum16s), (Derivative::sobel5, Lum32f), (Derivative::scharr3, Lum16s),
              (Derivative::scharr3, Lum32f), (Derivative::central3, Lum16s), (Derivative::central3, Lum32f));

} // namespace lum::kernels
