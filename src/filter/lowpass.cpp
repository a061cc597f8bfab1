#include "filter/lowpass.h"

#include "kernels/filter/lowpass.h"

namespace lum {

LumStatus lowpass8u(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumSize roiSize,
                    LumMaskSize maskSize, LumBorderType border, Lum8u borderValue, Lum8u* buffer) {
    return fixedFilter<OnBytes<kernels::lowpass<3>>, OnBytes<kernels::lowpass<5>>>(
        src, srcStep, dst, dstStep, roiSize, maskSize, border, borderValue, buffer);
}

LumStatus lowpass32f(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize,
                     LumMaskSize maskSize, LumBorderType border, Lum32f borderValue, Lum8u* buffer) {
    using OfThree = OnFloats<kernels::lowpassAlong<3>, kernels::lowpassDown<3>>;
    using OfFive = OnFloats<kernels::lowpassAlong<5>, kernels::lowpassDown<5>>;
    return fixedFilter<OfThree, OfFive>(src, srcStep, dst, dstStep, roiSize, maskSize, border, borderValue,
                                        buffer);
}

} // namespace lum
