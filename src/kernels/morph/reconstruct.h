// Reconstruction of a marker under its limit, a row at a time. An element of the marker is raised (in an erosion,
// lowered) to the strongest of its neighbours, but never beyond its limit. A NaN is no stronger than anything.
#pragma once

#include <cstddef>

#include "kernels/morph/operation.h"

namespace lum::kernels {

enum class Neighbours { eight, four };

/// Rows of Lum8u, Lum16u, Lum32f, Lum64f.
template <MorphOp op, class T> struct ReconstructRow {
    /// Takes back what lies beyond the limit, and a NaN.
    static void clip(T* marker, const T* limit, std::ptrdiff_t count);

    /// Raises to the elements of a neighbouring row: the nearest one, or the nearest three. Returns whether an element changed.
    static bool mergeNearest(T* marker, const T* neighbour, const T* limit, std::ptrdiff_t count);
    static bool mergeThree(T* marker, const T* neighbour, const T* limit, std::ptrdiff_t count);

    /// Raises to the elements of the row itself, from the left and then from the right; the row is then stable.
    static void spread(T* marker, const T* limit, std::ptrdiff_t count);
};

/// The same, one element at a time.
template <MorphOp op, class T> struct ReconstructRowScalar {
    static void clip(T* marker, const T* limit, std::ptrdiff_t count);
    static bool mergeNearest(T* marker, const T* neighbour, const T* limit, std::ptrdiff_t count);
    static bool mergeThree(T* marker, const T* neighbour, const T* limit, std::ptrdiff_t count);
    static void spread(T* marker, const T* limit, std::ptrdiff_t count);
};

} // namespace lum::kernels
