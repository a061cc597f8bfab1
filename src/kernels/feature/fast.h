// The segment test on rows of pixels: marks and scores, their suppression, and the orientation of a corner. Each has
// a scalar form and beside it a vector form with the same result.
#pragma once

#include <cstddef>

#include "kernels/feature/fast_circle.h"
#include "lumcv/types.h"

namespace lum::kernels {

inline constexpr Lum8u darkMark = 128;
inline constexpr Lum8u brightMark = 64;
/// The bits of a mark that hold the orientation bin.
inline constexpr Lum8u binBits = 63;

/// What a pixel must pass: a contiguous arc of the circle, above half of it, whose pixels all differ from the centre
/// by more than the threshold, and all in one direction.
struct SegmentTest {
    /// From the centre to the pixels of the circle, in bytes.
    std::ptrdiff_t circle[longestPerimeter];
    int perimeter;
    int arcLength;
    /// 0 to 255; none but what is below 255 is ever exceeded.
    int threshold;

    SegmentTest(int radius, std::ptrdiff_t step, int arc, int difference);
};

/// Marks and, where scores is not null, scores of a row of pixels, 0 where there is no corner. The circles of all of
/// them lie in the image. Returns the number of corners.
using SegmentRow = int (*)(const SegmentTest& test, const Lum8u* src, Lum8u* marks, Lum8u* scores, int count);
int segmentRowScalar(const SegmentTest& test, const Lum8u* src, Lum8u* marks, Lum8u* scores, int count);
/// For a perimeter of 8, 12, 16, 28, 40 or 52.
template <int perimeter>
int segmentRow(const SegmentTest& test, const Lum8u* src, Lum8u* marks, Lum8u* scores, int count);

/// Three rows of scores, each with an element before the first and after the last.
struct ScoreRows {
    const Lum8u* above;
    const Lum8u* row;
    const Lum8u* below;
};

/// The marks and scores of a row where no neighbour has a higher score, 0 elsewhere. Returns the number of corners.
int suppressRowScalar(ScoreRows scores, const Lum8u* marks, Lum8u* dstMarks, Lum8u* dstScores, int count);
int suppressRow(ScoreRows scores, const Lum8u* marks, Lum8u* dstMarks, Lum8u* dstScores, int count);

/// The directions of a circle's positions.
struct CircleDirections {
    float sines[longestPerimeter];
    float cosines[longestPerimeter];
    /// Bins in 2 pi, and bins in a radian.
    int bins;
    float binScale;
};

/// The bin of the gradient around a corner.
Lum8u orientationBin(const SegmentTest& test, const CircleDirections& directions, const Lum8u* centre);

} // namespace lum::kernels
