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
    return firstFailure(nullPointer(src, dst), sizeBelowOne(roiSize),
                        stepBelow(rowBytes<Source>(roiSize.width), srcStep),
                        stepBelow(bytesOfResultRow<Sum, extraColumns>(roiSize), dstStep),
                        stepMisaligned<Sum>(dstStep), stepMisaligned<Source>(srcStep));
}

template <int extraColumns, class Sum, class Square>
LumStatus checkSqrIntegral(const Lum8u* src, int srcStep, const Sum* dst, int dstStep, const Square* sqr,
                           int sqrStep, LumSize roiSize) {
    return firstFailure(nullPointer(src, dst, sqr), sizeBelowOne(roiSize),
                        stepBelow(rowBytes<Lum8u>(roiSize.width), srcStep),
                        stepBelow(bytesOfResultRow<Sum, extraColumns>(roiSize), dstStep),
                        stepBelow(bytesOfResultRow<Square, extraColumns>(roiSize), sqrStep),
                        stepMisaligned<Sum>(dstStep), stepMisaligned<Square>(sqrStep));
}

} // namespace lum
