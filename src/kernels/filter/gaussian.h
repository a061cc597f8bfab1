// The stages of a Gaussian filter on one row each: floats along the row, rows down the columns.
// Each stage in its scalar form and in the vector form with the same result.
//
// Weights are half a kernel, from the outermost to the centre: weights[0] is at the distance `radius` from it,
// weights[radius] is the centre. Counts are of elements, channels counted one by one.
#pragma once

#include <cstddef>

#include "frame/stores.h"
#include "lumcv/types.h"

namespace lum::kernels {

/// Elements of a block of the vector stages. The rows of a ring are whole blocks.
inline constexpr std::ptrdiff_t gaussianBlock = 16;

/// out[i] = sum over j = radius .. 1 of (src[i - j * channels] + src[i + j * channels]) * weights[radius - j], in
/// that order, and src[i] * weights[radius] last. The sum of a pair is exact when the floats were integers of 16
/// bits, so it is the sum of the integers as well.
void gaussianRowScalar(const float* src, std::ptrdiff_t count, int channels, const float* weights, int radius,
                       float* out);

/// A row stage in vectors, in whole blocks: it reads as if `count` were rounded up to a block and writes that much.
/// `out` is aligned to a vector.
using GaussianRow = void(const float* src, std::ptrdiff_t count, const float* weights, int radius,
                         float* out);

/// The stage for one or three channels; 3, 5 and 7 taps have one of their own.
GaussianRow* gaussianRow(int radius, int channels);

/// The rows that a column stage reads: 2 * radius + 1 slots one after the other, the topmost row in slot `top` and the
/// others in the slots after it, around the ring.
struct GaussianRing {
    const float* slots;
    std::ptrdiff_t slotLength;
    int radius;
    int top;

    int rows() const { return 2 * radius + 1; }
    /// Row j from the top.
    const float* row(int j) const {
        const int slot = top + j < rows() ? top + j : top + j - rows();
        return slots + slot * slotLength;
    }
};

/// dst[i] = sum over j = 0 .. radius - 1 of (row j + row 2 * radius - j) * weights[j], in that order, and the middle
/// row times weights[radius] last. Integers are rounded to nearest even, and saturate by value; NaN becomes the
/// largest value.
template <class T>
void gaussianColumnScalar(const GaussianRing& ring, std::ptrdiff_t count, const float* weights, T* dst);

/// A column stage in vectors. It reads whole blocks of the ring, whose slots are aligned to a vector.
template <class T>
using GaussianColumn = void(const GaussianRing& ring, std::ptrdiff_t count, const float* weights, T* dst);

/// The stage for a radius; Lum8u, Lum16u, Lum16s, Lum32f. A stage with streaming stores takes rows of dst that can be
/// streamed to, and leaves storeFence() to the caller.
template <class T> GaussianColumn<T>* gaussianColumn(int radius, Stores stores);

} // namespace lum::kernels
