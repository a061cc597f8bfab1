#include "filter/sobel_cross.h"

#include "kernels/filter/sobel_cross.h"

namespace lum {

LumStatus sobelCross8u(const Lum8u* src, int srcStep, Lum16s* dst, int dstStep, LumSize roiSize,
                       LumMaskSize maskSize, LumBorderType border, Lum8u borderValue, Lum8u* buffer) {
    return fixedFilter<OnBytes<kernels::sobelCross<3>>, OnBytes<kernels::sobelCross<5>>>(
        src, srcStep, dst, dstStep, roiSize, maskSize, border, borderValue, buffer);
}

LumStatus sobelCross32f(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize,
                        LumMaskSize maskSize, LumBorderType border, Lum32f borderValue, Lum8u* buffer) {
    using OfThree = OnFloats<kernels::sobelCrossAlong<3>, kernels::sobelCrossDown<3>>;
    using OfFive = OnFloats<kernels::sobelCrossAlong<5>, kernels::sobelCrossDown<5>>;
    return fixedFilter<OfThree, OfFive>(src, srcStep, dst, dstStep, roiSize, maskSize, border, borderValue,
                                        buffer);
}

} // namespace lum
