// The votes of single points for the lines of all angles, in an accumulator at any address. Each has a scalar form
// and beside it a vector form with the same result.
#pragma once

#include <cstddef>

#include "lumcv/types.h"

namespace lum::kernels {

/// Rows of rhoCount cells, one for each angle. A point votes for cell trunc(cosine x + sine y) + halfRho of each row.
struct LinePlane {
    /// Cosine and sine of each angle, over the step of rho.
    const float* directions;
    Lum32s thetaCount;
    Lum32s rhoCount;
    Lum32s halfRho;
};

/// Whether all points of a region vote within the rows.
bool votesStayInRows(const LinePlane& plane, LumSize size);

/// The cell with the most votes, if they exceed those given; of equal ones that of the lowest angle.
struct BestVote {
    Lum32s votes;
    Lum32s theta;
};

/// Adds the point's votes and looks at the cells that have received them. Votes that leave their row go on in the
/// neighbouring one, and those that leave the plane are none.
template <class Cell>
void addVotesScalar(const LinePlane& plane, Cell* cells, LumPoint point, BestVote& best);
/// The same where votes stay in their rows. Cell: Lum16s, Lum32s.
template <class Cell> void addVotes(const LinePlane& plane, Cell* cells, LumPoint point, BestVote& best);

/// Takes a vote from each cell that the point votes for.
template <class Cell> void takeVotesScalar(const LinePlane& plane, Cell* cells, LumPoint point);
template <class Cell> void takeVotes(const LinePlane& plane, Cell* cells, LumPoint point);

/// A mask of 1 where a pixel is not 0, else 0; returns the number of ones.
int makeMaskScalar(const Lum8u* row, Lum8u* mask, int width);
int makeMask(const Lum8u* row, Lum8u* mask, int width);

} // namespace lum::kernels
