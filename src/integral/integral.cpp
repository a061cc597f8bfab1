#include "integral/integral.h"

#include "frame/instances.h"
#include "integral/integral_checks.h"
#include "kernels/integral/integral.h"

namespace lum {

template <class Sum>
LumStatus integral(const Lum8u* src, int srcStep, Sum* dst, int dstStep, LumSize roiSize, Sum value) {
    if (auto s = checkIntegral<1>(src, srcStep, dst, dstStep, roiSize)) return s;
    kernels::integral<Sum>({src, srcStep}, {dst, dstStep}, roiSize, value);
    return lumStatusOk;
}

LumStatus integralOfFloats(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize) {
    if (auto s = checkIntegral<1>(src, srcStep, dst, dstStep, roiSize)) return s;
    kernels::integralOfFloats({src, srcStep}, {dst, dstStep}, roiSize);
    return lumStatusOk;
}

template <class Sum, class Square>
LumStatus sqrIntegral(const Lum8u* src, int srcStep, Sum* dst, int dstStep, Square* sqr, int sqrStep,
                      LumSize roiSize, Sum value, Square sqrValue) {
    if (auto s = checkSqrIntegral<1>(src, srcStep, dst, dstStep, sqr, sqrStep, roiSize)) return s;
    kernels::sqrIntegral<Sum, Square>({src, srcStep}, {dst, dstStep}, {sqr, sqrStep}, roiSize, value,
                                      sqrValue);
    return lumStatusOk;
}

LUM_INSTANCES(integral, (Lum32s), (Lum32f));
LUM_INSTANCES(sqrIntegral, (Lum32s, Lum32s), (Lum32s, Lum64f), (Lum32f, Lum64f));

} // namespace lum
