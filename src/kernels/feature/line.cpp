#include "kernels/feature/line.h"

#include "frame/instances.h"
#include "frame/lanes_convert.h"

namespace lum::kernels {

template <Derivative kind>
void addProductRowScalar(const Lum16s* smooth, const Lum16s* difference, std::ptrdiff_t count, double weight,
                         const CovarianceSums& sums) {
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        const double dx = differenced<kind>([&](int i) { return int{smooth[x + i]}; });
        const double dy = smoothed<kind>([&](int i) { return int{difference[x + i]}; });
        const double weighted = dx * weight;
        sums.xx[x] += weighted * dx;
        sums.xy[x] += weighted * dy;
        sums.yy[x] += dy * weight * dy;
    }
}

template <Derivative kind>
void addProductRow(const Lum16s* smooth, const Lum16s* difference, std::ptrdiff_t count, double weight,
                   const CovarianceSums& sums) {
    const auto weights = broadcast<4>(weight);
    std::ptrdiff_t x = 0;
    // 4 pixels per iteration
    for (; x <= count - 4; x += 4) {
        const auto asDoubles = [](auto words) { return toDouble(widen<Lum32s>(words)); };
        const auto dx = asDoubles(differenced<kind>([&](int i) { return load<4>(smooth + x + i); }));
        const auto dy = asDoubles(smoothed<kind>([&](int i) { return load<4>(difference + x + i); }));
        const auto weighted = dx * weights;
        store(load<4>(sums.xx + x) + weighted * dx, sums.xx + x);
        store(load<4>(sums.xy + x) + weighted * dy, sums.xy + x);
        store(load<4>(sums.yy + x) + dy * weights * dy, sums.yy + x);
    }
    // tail: scalar, one element at a time
    addProductRowScalar<kind>(smooth + x, difference + x, count - x, weight,
                              {sums.xx + x, sums.xy + x, sums.yy + x});
}

void suppressLinesRow(const CovarianceSums& sums, std::ptrdiff_t count, int taps, Lum8u threshold,
                      const Lum8u* feature, Lum8u* dst) {
    const double whole = 255.0 + threshold;
    const double leastShare = 255.0 * threshold;
    double a = 0;
    double b = 0;
    double c = 0;
    for (int i = 0; i < taps - 1; ++i) {
        a += sums.xx[i];
        b += sums.xy[i];
        c += sums.yy[i];
    }
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        a += sums.xx[x + taps - 1];
        b += sums.xy[x + taps - 1];
        c += sums.yy[x + taps - 1];
        const double trace = a + c;
        const bool kept = (a * c - b * b) * (whole * whole) >= leastShare * (trace * trace);
        dst[x] = kept ? feature[x] : 0;
        a -= sums.xx[x];
        b -= sums.xy[x];
        c -= sums.yy[x];
    }
}

LUM_INSTANCES(addProductRowScalar, (Derivative::sobel3), (Derivative::sobel5), (Derivative::scharr3),
              (Derivative::central3));
LUM_INSTANCES(addProductRow, (Derivative::sobel3), (Derivative::sobel5), (Derivative::scharr3),
              (Derivative::central3));

} // namespace lum::kernels
