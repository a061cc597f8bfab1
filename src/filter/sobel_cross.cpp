#include "filter/sobel_cross.h"

#include "kernels/sobel_cross.h"

namespace lum {
namespace {

/// The whole mask at once, from extended rows.
template <int taps> struct OnBytes {
    static constexpr int planes = 1;
    static void along(Lum8u* const*, std::ptrdiff_t) {}
    static void down(const Lum8u* const* rows, Lum16s* dst, std::ptrdiff_t count) {
        kernels::sobelCross<taps>(rows, dst, count);
    }
};

template <int taps> struct OnSingles {
    static constexpr int planes = 1;
    static void along(Lum32f* const* rows, std::ptrdiff_t count) {
        kernels::sobelCrossAlong<taps>(rows[0], rows[0], count);
    }
    static void down(const Lum32f* const* rows, Lum32f* dst, std::ptrdiff_t count) {
        kernels::sobelCrossDown<taps>(rows, dst, count);
    }
};

} // namespace

LumStatus sobelCross8u(const Lum8u* src, int srcStep, Lum16s* dst, int dstStep, LumSize roiSize,
                       LumMaskSize maskSize, LumBorderType border, Lum8u borderValue, Lum8u* buffer) {
    return fixedFilter<OnBytes<3>, OnBytes<5>>(src, srcStep, dst, dstStep, roiSize, maskSize, border,
                                               borderValue, buffer);
}

LumStatus sobelCross32f(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize,
                        LumMaskSize maskSize, LumBorderType border, Lum32f borderValue, Lum8u* buffer) {
    return fixedFilter<OnSingles<3>, OnSingles<5>>(src, srcStep, dst, dstStep, roiSize, maskSize, border,
                                                   borderValue, buffer);
}

} // namespace lum
