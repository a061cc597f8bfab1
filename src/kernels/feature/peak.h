// Local extremes along a row.
#pragma once

#include <cstddef>

#include "lumcv/types.h"

namespace lum::kernels {

/// Three rows, from the column of the first pixel that is looked at; a pixel before and one after exist too.
template <class T> struct PeakRows {
    const T* above;
    const T* current;
    const T* below;
};

/// Appends the places (firstX + i, y), i = 0 .. count - 1, of pixels whose magnitude is above the threshold and which
/// equal the largest (positive pixels) or the smallest (others) of their eight or four neighbours and themselves; at
/// most `room` of them. Floats are equal where they differ by no more than the smallest normal number; a neighbour that
/// is a NaN does not count. Returns how many were appended. Lum32f, Lum32s.
template <class T, bool eightNeighbours>
std::ptrdiff_t findPeaksInRowScalar(const PeakRows<T>& rows, std::ptrdiff_t count, T threshold,
                                    LumPoint first, LumPoint* peaks, std::ptrdiff_t room);
template <class T, bool eightNeighbours>
std::ptrdiff_t findPeaksInRow(const PeakRows<T>& rows, std::ptrdiff_t count, T threshold, LumPoint first,
                              LumPoint* peaks, std::ptrdiff_t room);

} // namespace lum::kernels
