#include "integral/tilted_integral.h"

#include "frame/check.h"
#include "frame/image.h"
#include "kernels/tilted_integral.h"

namespace lum {
namespace {

/// Bytes of a result's row: it has two columns more than the source.
template <class T> std::int64_t bytesOfResultRow(LumSize roiSize) {
    return rowBytes<T>(std::int64_t{roiSize.width} + 2);
}

} // namespace

template <class Sum>
LumStatus tiltedIntegral(const Lum8u* src, int srcStep, Sum* dst, int dstStep, LumSize roiSize, Sum value) {
    if (auto s = firstFailure(
            nullPointer(src, dst), sizeBelowOne(roiSize), stepBelow(rowBytes<Lum8u>(roiSize.width), srcStep),
            stepBelow(bytesOfResultRow<Sum>(roiSize), dstStep), stepMisaligned<Sum>(dstStep)))
        return s;
    kernels::tiltedIntegral<Sum>({src, srcStep}, {dst, dstStep}, roiSize, value);
    return lumStatusOk;
}

template <class Sum, class Square>
LumStatus tiltedSqrIntegral(const Lum8u* src, int srcStep, Sum* dst, int dstStep, Square* sqr, int sqrStep,
                            LumSize roiSize, Sum value, Square sqrValue) {
    if (auto s = firstFailure(nullPointer(src, dst, sqr), sizeBelowOne(roiSize),
                              stepBelow(rowBytes<Lum8u>(roiSize.width), srcStep),
                              stepBelow(bytesOfResultRow<Sum>(roiSize), dstStep),
                              stepBelow(bytesOfResultRow<Square>(roiSize), sqrStep),
                              stepMisaligned<Sum>(dstStep), stepMisaligned<Square>(sqrStep)))
        return s;
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
