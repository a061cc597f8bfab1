#include "integral/integral.h"

#include "frame/check.h"
#include "frame/image.h"
#include "kernels/integral.h"

namespace lum {
namespace {

/// Bytes of a result's row: it has a column more than the source.
template <class T> std::int64_t bytesOfResultRow(LumSize roiSize) {
    return rowBytes<T>(std::int64_t{roiSize.width} + 1);
}

} // namespace

template <class Sum>
LumStatus integral(const Lum8u* src, int srcStep, Sum* dst, int dstStep, LumSize roiSize, Sum value) {
    if (auto s = firstFailure(
            nullPointer(src, dst), sizeBelowOne(roiSize), stepBelow(rowBytes<Lum8u>(roiSize.width), srcStep),
            stepBelow(bytesOfResultRow<Sum>(roiSize), dstStep), stepMisaligned<Sum>(dstStep)))
        return s;
    kernels::integral<Sum>({src, srcStep}, {dst, dstStep}, roiSize, value);
    return lumStatusOk;
}

LumStatus integralOfSingles(const Lum32f* src, int srcStep, Lum32f* dst, int dstStep, LumSize roiSize) {
    if (auto s = firstFailure(
            nullPointer(src, dst), sizeBelowOne(roiSize), stepBelow(rowBytes<Lum32f>(roiSize.width), srcStep),
            stepBelow(bytesOfResultRow<Lum32f>(roiSize), dstStep), stepMisaligned<Lum32f>(srcStep, dstStep)))
        return s;
    kernels::integralOfSingles({src, srcStep}, {dst, dstStep}, roiSize);
    return lumStatusOk;
}

template <class Sum, class Square>
LumStatus sqrIntegral(const Lum8u* src, int srcStep, Sum* dst, int dstStep, Square* sqr, int sqrStep,
                      LumSize roiSize, Sum value, Square sqrValue) {
    if (auto s = firstFailure(nullPointer(src, dst, sqr), sizeBelowOne(roiSize),
                              stepBelow(rowBytes<Lum8u>(roiSize.width), srcStep),
                              stepBelow(bytesOfResultRow<Sum>(roiSize), dstStep),
                              stepBelow(bytesOfResultRow<Square>(roiSize), sqrStep),
                              stepMisaligned<Sum>(dstStep), stepMisaligned<Square>(sqrStep)))
        return s;
    kernels::sqrIntegral<Sum, Square>({src, srcStep}, {dst, dstStep}, {sqr, sqrStep}, roiSize, value,
                                      sqrValue);
    return lumStatusOk;
}

template decltype(integral<Lum32s>) integral<Lum32s>;
template decltype(integral<Lum32f>) integral<Lum32f>;
template decltype(sqrIntegral<Lum32s, Lum32s>) sqrIntegral<Lum32s, Lum32s>;
template decltype(sqrIntegral<Lum32s, Lum64f>) sqrIntegral<Lum32s, Lum64f>;
template decltype(sqrIntegral<Lum32f, Lum64f>) sqrIntegral<Lum32f, Lum64f>;

} // namespace lum
