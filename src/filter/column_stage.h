// What all members of the column stage share: their arguments and their checker.
#pragma once

#include "filter/pipeline_kernel.h"
#include "frame/check.h"

namespace lum {

template <class S, class R, class K> struct ColumnArguments {
    const S* const* srcRows;
    R* dst;
    int dstStep;
    LumSize roiSize;
    const K* kernel;
    int kernelSize;
    int divisor;
    Lum8u* buffer;
};

/// The pointers that a call reads, in wrapping arithmetic: the kernel's length is tested after them, and a
/// count below 1 walks none.
constexpr int windowRows(int height, int kernelSize) {
    return static_cast<int>(static_cast<unsigned>(height) + static_cast<unsigned>(kernelSize) - 1U);
}

/// `bytesOfRow` is what the step is compared with. The buffer is asked for by members that use none of it, too.
template <class S, class R, class K>
LumStatus columnFailure(const ColumnArguments<S, R, K>& a, std::int64_t bytesOfRow) {
    if (auto s = firstFailure(checkNotNull(a.srcRows, a.dst, a.kernel), checkSize(a.roiSize))) return s;
    return firstFailure(nullRow(a.srcRows, windowRows(a.roiSize.height, a.kernelSize)),
                        checkCount(a.kernelSize), checkStep(bytesOfRow, a.dstStep),
                        checkStepAlignment<R>(a.dstStep), checkNotNull(a.buffer),
                        errorIf(a.divisor == 0, lumStatusBadArgument));
}

} // namespace lum
