// The vocabulary of the checkers. A checker is one expression, one line a test, in the order of the tests:
//
//     if (auto s = firstFailure(nullPointer(src, dst), sizeBelowOne(roiSize),
//                               stepBelow(rowBytes<T>(roiSize.width), srcStep, dstStep),
//                               stepMisaligned<T>(srcStep, dstStep)))
//         return s;
//
// The tests of one firstFailure() are all evaluated, so a test that reads through a pointer stands behind an
// earlier firstFailure() that has tested it.
#pragma once

#include <cstdint>

#include "lumcv.h"

namespace lum {

/// The first of the statuses that is not lumStatusOk.
template <class... Statuses> constexpr LumStatus firstFailure(LumStatus first, Statuses... rest) {
    if constexpr (sizeof...(rest) == 0)
        return first;
    else
        return first != lumStatusOk ? first : firstFailure(rest...);
}

/// The status where the condition holds, else lumStatusOk.
constexpr LumStatus when(bool failed, LumStatus status) { return failed ? status : LumStatus{lumStatusOk}; }

constexpr LumStatus nullPointer(const auto*... pointers) {
    return when(((pointers == nullptr) || ...), lumStatusNullPointer);
}

/// For counts of elements that are used as sizes.
constexpr LumStatus countBelowOne(auto... counts) { return when(((counts < 1) || ...), lumStatusSizeError); }

/// For LumSize and LumSizeL.
constexpr LumStatus sizeBelowOne(auto... sizes) {
    return when(((sizes.width < 1 || sizes.height < 1) || ...), lumStatusSizeError);
}

/// Bytes of a row, in arithmetic that cannot wrap.
template <class T> constexpr std::int64_t rowBytes(std::int64_t width, int channels = 1) {
    return width * channels * static_cast<std::int64_t>(sizeof(T));
}

/// Steps are signed: a negative one is below every row.
constexpr LumStatus stepBelow(std::int64_t bytesOfRow, auto... steps) {
    return when(((steps < bytesOfRow) || ...), lumStatusStepError);
}

/// Elements of one byte pass with any step.
template <class T> constexpr LumStatus stepMisaligned(auto... steps) {
    return when(((steps % static_cast<int>(sizeof(T)) != 0) || ...), lumStatusStepAlignmentError);
}

/// The channel of interest of three, counted from 1.
constexpr LumStatus channelOutsideThree(int coi) {
    return when(coi < 1 || coi > 3, lumStatusChannelOfInterestError);
}

} // namespace lum
