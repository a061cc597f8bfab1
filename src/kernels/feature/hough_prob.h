// The votes of single points for the lines of all angles. Each has a scalar form and beside it a vector form with the
// same result.
#pragma once

#include <cstddef>
#include <cstdint>

#include "lumcv/types.h"

namespace lum::kernels {

/// Rows of rhoCount cells, one for each angle. A point votes for cell trunc(cosine x + sine y) + halfRho of each row.
struct LinePlane {
    /// Cosine and sine of each angle, over the step of rho; at any address.
    const unsigned char* directions;
    Lum32s thetaCount;
    Lum32s rhoCount;
    Lum32s halfRho;
};

LumPoint32f directionOf(const LinePlane& plane, Lum32s theta);

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

/// Bytes of a row of bits, bit x % 8 of byte x / 8 for column x.
constexpr int bytesOfBits(int width) { return width / 8 + (width % 8 != 0); }

/// Which pixels of a row are not 0, as bits; bits beyond the width are 0. Writes the position of each of them, that of
/// the first column added, and returns their number.
int collectBitsScalar(const Lum8u* row, int width, Lum8u* bits, std::uint32_t first,
                      std::uint32_t* positions);
int collectBits(const Lum8u* row, int width, Lum8u* bits, std::uint32_t first, std::uint32_t* positions);

} // namespace lum::kernels
