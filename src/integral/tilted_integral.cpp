#include "integral/tilted_integral.h"

#include "frame/instances.h"
#include "integral/integral_checks.h"
#include "kernels/integral/tilted_integral.h"

namespace lum {

template <class Sum>
LumStatus tiltedIntegral(const Lum8u* src, int srcStep, Sum* dst, int dstStep, LumSize roiSize, Sum value) {
    if (auto s = checkIntegral<2>(src, srcStep, dst, dstStep, roiSize)) return s;
    kernels::tiltedIntegral<Sum>({src, srcStep}, {dst, dstStep}, roiSize, value);
    return lumStatusOk;
}

template <class Sum, class Square>
LumStatus tiltedSqrIntegral(const Lum8u* src, int srcStep, Sum* dst, int dstStep, Square* sqr, int sqrStep,
                            LumSize roiSize, Sum value, Square sqrValue) {
    if (auto s = checkSqrIntegral<2>(src, srcStep, dst, dstStep, sqr, sqrStep, roiSize)) return s;
    kernels::tiltedSqrIntegral<Sum, Square>({src, srcStep}, {dst, dstStep}, {sqr, sqrStep}, roiSize, value,
                                            sqrValue);
    return lumStatusOk;
}

LUM_INSTANCES(tiltedIntegral, (Lum32s), (Lum32f));
LUM_INSTANCES(tiltedSqrIntegral, (Lum32s, Lum32s), (Lum32s, Lum64f), (Lum32f, Lum64f));

} // namespace lum
