#include "difference/absdiff.h"

#include <type_traits>

#include "frame/check.h"
#include "frame/convert.h"
#include "frame/image.h"
#include "frame/instances.h"
#include "frame/stores.h"
#include "kernels/difference/absdiff.h"

namespace lum {
namespace {

template <int bytesPerPixel> Stores chosenStores(LumSize roiSize) {
    if constexpr (bytesPerPixel == 0)
        return Stores::ordinary;
    else
        return storesForBytes(wrappedBytes(bytesPerPixel, roiSize));
}

template <class T> T constantOf(typename AbsDiffConstant<T>::Type value) {
    if constexpr (std::is_integral_v<T>)
        return saturated<T>(value);
    else
        return value;
}

} // namespace

template <class T>
LumStatus absDiff(const T* src1, int src1Step, const T* src2, int src2Step, T* dst, int dstStep,
                  LumSize roiSize) {
    if (auto s = firstFailure(checkNotNull(src1, src2, dst), checkSize(roiSize),
                              checkStep(rowBytes<T>(roiSize.width), src1Step, src2Step, dstStep),
                              checkStepAlignment<T>(src1Step, src2Step, dstStep)))
        return s;
    kernels::absDiff<T>({src1, src1Step}, {src2, src2Step}, {dst, dstStep}, roiSize,
                        chosenStores<absDiffStreamedBytes<T>>(roiSize));
    return lumStatusOk;
}

LumStatus absDiffC3(const Lum8u* src1, int src1Step, const Lum8u* src2, int src2Step, Lum8u* dst, int dstStep,
                    LumSize roiSize) {
    const auto elements = static_cast<Lum32s>(3U * static_cast<unsigned>(roiSize.width));
    return absDiff(src1, src1Step, src2, src2Step, dst, dstStep, {elements, roiSize.height});
}

template <class T>
LumStatus absDiffC(const T* src, int srcStep, T* dst, int dstStep, LumSize roiSize,
                   typename AbsDiffConstant<T>::Type value) {
    if (auto s = firstFailure(checkNotNull(src, dst), checkSize(roiSize),
                              checkStep(rowBytes<T>(roiSize.width), srcStep, dstStep),
                              checkStepAlignment<T>(srcStep, dstStep)))
        return s;
    kernels::absDiffC<T>({src, srcStep}, constantOf<T>(value), {dst, dstStep}, roiSize,
                         chosenStores<absDiffCStreamedBytes<T>>(roiSize));
    return lumStatusOk;
}

LUM_INSTANCES(absDiff, (Lum8u), (Lum16u), (Lum32f));
LUM_INSTANCES(absDiffC, (Lum8u), (Lum16u), (Lum32f));

} // namespace lum
