// What all members of the row stage share: their arguments, their checker, and the walk over the rows in three
// stretches.
#pragma once

#include "filter/bordered_row.h"
#include "filter/pipeline_kernel.h"
#include "frame/arena.h"
#include "frame/check.h"
#include "frame/image.h"

namespace lum {

/// The arguments of a member. The border's value is a pointer here, whatever it is in the call.
template <class S, class R, class K> struct RowArguments {
    const S* src;
    int srcStep;
    R* const* dstRows;
    LumSize roiSize;
    const K* kernel;
    int kernelSize;
    int xAnchor;
    LumBorderType border;
    const S* borderValue;
    int divisor;
    Lum8u* buffer;
};

template <class T> const T* borderPointer(const T& value) { return &value; }
template <class T> const T* borderPointer(const T* const& value) { return value; }

/// Where a member tests its divisor, and where it tests the pointer to the border's value: a constant border
/// needs the value in every member, the others need it in most.
struct RowTests {
    enum class Divisor { none, beforeBorder, afterBorder } divisor;
    bool valueForEveryBorder;
};

constexpr LumStatus anchorOutside(int anchor, int kernelSize) {
    return errorIf(anchor < 0 || anchor >= kernelSize, lumStatusAnchorError);
}

/// A kernel without negative coefficients has no negative divisor.
template <class K> constexpr LumStatus divisorRefused(int divisor) {
    return errorIf(std::is_unsigned_v<K> ? divisor < 1 : divisor == 0, lumStatusBadArgument);
}

template <int channels, RowTests tests, class S, class R, class K>
LumStatus checkArguments(const RowArguments<S, R, K>& a) {
    using enum RowTests::Divisor;
    if (auto s = firstFailure(checkNotNull(a.src, a.dstRows, a.kernel, a.buffer), checkSize(a.roiSize)))
        return s;
    return firstFailure(nullRow(a.dstRows, a.roiSize.height),
                        tests.valueForEveryBorder ? checkNotNull(a.borderValue) : LumStatus{lumStatusOk},
                        checkCount(a.kernelSize), anchorOutside(a.xAnchor, a.kernelSize),
                        checkStep(rowBytes<S>(a.roiSize.width, channels), a.srcStep),
                        checkStepAlignment<S>(a.srcStep),
                        tests.divisor == beforeBorder ? divisorRefused<K>(a.divisor) : LumStatus{lumStatusOk},
                        linearBorder(a.border), borderValueMissing(a.border, a.borderValue),
                        tests.divisor == afterBorder ? divisorRefused<K>(a.divisor) : LumStatus{lumStatusOk});
}

/// The work memory: a weight of each tap, and the windows of either border stretch, or those of a whole row that is
/// narrower than the kernel.
template <class S> struct RowWork {
    Lum32f* weights;
    S* extended;

    RowWork(Lum8u* buffer, int kernelSize, int channels) {
        Arena arena(buffer);
        weights = arena.align(16).allocate<Lum32f>(kernelSize);
        extended = arena.allocate<S>(static_cast<std::size_t>(2) * (kernelSize - 1) * channels);
    }
};

/// Walks the rows. edge(window, dst, count) makes the results whose windows reach over an end of the row, all
/// of a row that is narrower than the kernel; interior(window, dst, count) makes the others, straight from the
/// source. Counts are elements; a window is the first element of the first result's taps. Beside a side in
/// memory a window is the source itself, elsewhere what it reaches is put together in the work memory.
template <class S, class R, class K, class Edge, class Interior>
void walkRows(const RowArguments<S, R, K>& a, int channels, S* extended, Edge edge, Interior interior) {
    const Image<const S> src{a.src, a.srcStep};
    const int width = a.roiSize.width;
    const int reach = a.kernelSize - 1;
    const int right = reach - a.xAnchor;
    const BorderedRow<S> bordered({width, 0, width, a.xAnchor, right}, channels, horizontalBorder(a.border),
                                  a.borderValue);

    if (width <= reach) {
        for (int y = 0; y < a.roiSize.height; ++y) {
            bordered.write(src.row(y), -a.xAnchor, width + right, extended);
            edge(extended, a.dstRows[y], width * channels);
        }
        return;
    }
    const int inner = (width - reach) * channels;
    for (int y = 0; y < a.roiSize.height; ++y) {
        const S* row = src.row(y);
        R* dst = a.dstRows[y];
        if (a.xAnchor > 0) {
            const S* window = row - a.xAnchor * channels;
            if (bordered.begin() == 0) {
                bordered.write(row, -a.xAnchor, reach, extended);
                window = extended;
            }
            edge(window, dst, a.xAnchor * channels);
        }
        dst += a.xAnchor * channels;
        interior(row, dst, inner);
        if (right > 0) {
            const S* window = row + inner;
            if (bordered.end() == width) {
                bordered.write(row, width - reach, width + right, extended);
                window = extended;
            }
            edge(window, dst + inner, right * channels);
        }
    }
}

} // namespace lum
