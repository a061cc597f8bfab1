#include "integral/tilted_integral.h"

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

template decltype(tiltedIntegral<Lum32s>) tiltedIntegral<Lum32s>;
template decltype(tiltedIntegral<Lum32f>) tiltedIntegral<Lum32f>;
template decltype(tiltedSqrIntegral<Lum32s, Lum32s>) tiltedSqrIntegral<Lum32s, Lum32s>;
template decltype(tiltedSqrIntegral<Lum32s, Lum64f>) tiltedSqrIntegral<Lum32s, Lum64f>;
template decltype(tiltedSqrIntegral<Lum32f, Lum64f>) tiltedSqrIntegral<Lum32f, Lum64f>;

} // namespace lum
