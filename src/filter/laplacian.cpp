#include "filter/laplacian.h"

#include "kernels/filter/laplacian.h"

namespace lum {

LumStatus laplacian8u(const Lum8u* src, int srcStep, Lum16s* dst, int dstStep, LumSize roiSize,
                      LumMaskSize maskSize, LumBorderType border, Lum8u borderValue, Lum8u* buffer) {
    return fixedFilter<OnBytes<kernels::laplacian<3>>, OnBytes<kernels::laplacian<5>>>(
        src, srcStep, dst, dstStep, roiSize, maskSize, border, borderValue, buffer);
}

LumStatus laplacian32f(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize,
                       LumMaskSize maskSize, LumBorderType border, Lum32f borderValue, Lum8u* buffer) {
    using OfThree = OnPairsOfFloats<kernels::laplacianAlong<3>, kernels::laplacianDown<3>>;
    using OfFive = OnPairsOfFloats<kernels::laplacianAlong<5>, kernels::laplacianDown<5>>;
    return fixedFilter<OfThree, OfFive>(src, srcStep, dst, dstStep, roiSize, maskSize, border, borderValue,
                                        buffer);
}

} // namespace lum
