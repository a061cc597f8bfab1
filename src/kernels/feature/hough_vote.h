// The votes of a picture's points for the lines of one angle, and the peaks among them. Each has a scalar form and
// beside it a vector form with the same result.
#pragma once

#include <cstddef>
#include <cstdint>

#include "lumcv/types.h"

namespace lum::kernels {

/// The columns of the pixels of a row that are not 0, in order, as floats. Returns their number.
int collectColumnsScalar(const Lum8u* row, int width, float* columns);
int collectColumns(const Lum8u* row, int width, float* columns);

/// The points of a picture, a record for each row: their number, then their columns. Each record begins at the first
/// multiple of 32 bytes after the one before it.
struct PointRows {
    const unsigned char* first;
    int height;
};
inline constexpr std::size_t pointRowAlignment = 32;
constexpr std::size_t pointRowBytes(std::size_t points) {
    return (sizeof(Lum32s) + points * sizeof(float) + pointRowAlignment - 1) & ~(pointRowAlignment - 1);
}

/// The lines of one angle: a point lies on that of index ((x cosine + y sine + 512) >> 10) + half.
struct LineFan {
    float cosine;
    float sine;
    Lum32s half;
};

/// Cells beside each end of a row.
inline constexpr int houghMargin = 2;

/// Whether all points of a region vote for cells from -houghMargin to rhoCount + houghMargin - 1.
bool votesStayInRow(const LineFan& fan, LumSize size, Lum32s rhoCount);

/// Adds the votes of all points; those beyond the margins go to their outermost cells.
void voteScalar(const LineFan& fan, const PointRows& points, Lum32s* cells, Lum32s rhoCount);
/// The same where all votes stay in the row.
void vote(const LineFan& fan, const PointRows& points, Lum32s* cells);

/// The cells of an angle with those of the angles before and after it.
struct AngleRows {
    const Lum32s* before;
    const Lum32s* row;
    const Lum32s* after;
};

/// The first peak from an index on, or the end: above the threshold, above the cell to the left and that of the angle
/// before, and not below the two others.
Lum32s nextPeakScalar(const AngleRows& rows, Lum32s index, Lum32s end, Lum32s threshold);
Lum32s nextPeak(const AngleRows& rows, Lum32s index, Lum32s end, Lum32s threshold);

} // namespace lum::kernels
