// The vocabulary of the checkers. A checker is one expression, one line a test, in the order of the tests:
//
//     if (auto s = firstFailure(checkNotNull(src, dst), checkSize(roiSize),
//                               checkStep(rowBytes<T>(roiSize.width), srcStep, dstStep),
//                               checkStepAlignment<T>(srcStep, dstStep)))
//         return s;
//
// The tests of one firstFailure() are all evaluated, so a test that reads through a pointer lies after an
// earlier firstFailure() that has tested it.
#pragma once

#include <cstdint>

#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// The first of the statuses that is not lumStatusOk.
template <class... Statuses> constexpr LumStatus firstFailure(LumStatus first, Statuses... rest) {
    if constexpr (sizeof...(rest) == 0)
        return first;
    else
        return first != lumStatusOk ? first : firstFailure(rest...);
}

/// The status where the condition holds, else lumStatusOk.
constexpr LumStatus errorIf(bool failed, LumStatus status) {
    return failed ? status : LumStatus{lumStatusOk};
}

constexpr LumStatus checkNotNull(const auto*... pointers) {
    return errorIf(((pointers == nullptr) || ...), lumStatusNullPointer);
}

/// For counts of elements that are used as sizes.
constexpr LumStatus checkCount(auto... counts) { return errorIf(((counts < 1) || ...), lumStatusSizeError); }

/// For LumSize and LumSizeL.
constexpr LumStatus checkSize(auto... sizes) {
    return errorIf(((sizes.width < 1 || sizes.height < 1) || ...), lumStatusSizeError);
}

/// Bytes of a row, in arithmetic that cannot wrap: of a width of 64 bits, no more than the least and the most that 64 bits
/// hold.
template <class T> constexpr std::int64_t rowBytes(auto width, int channels = 1) {
    const std::int64_t pixelBytes = channels * static_cast<std::int64_t>(sizeof(T));
    std::int64_t bytes = 0;
    if constexpr (sizeof width < sizeof bytes)
        bytes = width * pixelBytes;
    else if (__builtin_mul_overflow(width, pixelBytes, &bytes))
        bytes = width < 0 ? INT64_MIN : INT64_MAX;
    return bytes;
}

/// Steps are signed: a negative one is below every row.
constexpr LumStatus checkStep(std::int64_t bytesOfRow, auto... steps) {
    return errorIf(((steps < bytesOfRow) || ...), lumStatusStepError);
}

/// Elements of one byte pass with any step.
template <class T> constexpr LumStatus checkStepAlignment(auto... steps) {
    return errorIf(((steps % static_cast<int>(sizeof(T)) != 0) || ...), lumStatusStepAlignmentError);
}

/// The channel of interest of three, counted from 1.
constexpr LumStatus checkChannelOfInterest(int coi) {
    return errorIf(coi < 1 || coi > 3, lumStatusChannelOfInterestError);
}

} // namespace lum
