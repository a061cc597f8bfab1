// The checks that upright and tilted integral images share.
#pragma once

#include "frame/check.h"

namespace lum {

/// Bytes of a result's row, which has `extraColumns` more than the source's.
template <class T, int extraColumns> std::int64_t bytesOfResultRow(LumSize roiSize) {
    return rowBytes<T>(std::int64_t{roiSize.width} + extraColumns);
}

/// All steps come before all alignments.
template <int extraColumns, class Source, class Sum>
LumStatus checkIntegral(const Source* src, int srcStep, const Sum* dst, int dstStep, LumSize roiSize) {
    return firstFailure(checkNotNull(src, dst), checkSize(roiSize),
                        checkStep(rowBytes<Source>(roiSize.width), srcStep),
                        checkStep(bytesOfResultRow<Sum, extraColumns>(roiSize), dstStep),
                        checkStepAlignment<Sum>(dstStep), checkStepAlignment<Source>(srcStep));
}

template <int extraColumns, class Sum, class Square>
LumStatus checkSqrIntegral(const Lum8u* src, int srcStep, const Sum* dst, int dstStep, const Square* sqr,
                           int sqrStep, LumSize roiSize) {
    return firstFailure(checkNotNull(src, dst, sqr), checkSize(roiSize),
                        checkStep(rowBytes<Lum8u>(roiSize.width), srcStep),
                        checkStep(bytesOfResultRow<Sum, extraColumns>(roiSize), dstStep),
                        checkStep(bytesOfResultRow<Square, extraColumns>(roiSize), sqrStep),
                        checkStepAlignment<Sum>(dstStep), checkStepAlignment<Square>(sqrStep));
}

} // namespace lum
