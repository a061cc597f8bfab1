// The stages of a Gaussian filter on one row each: floats along the row, rows down the columns.
// Each stage in its scalar form and in the vector form with the same result.
//
// Weights are half a kernel, from the outermost to the centre: weights[0] is at the distance `radius` from it,
// weights[radius] is the centre. Counts are of elements, channels counted one by one.
#pragma once

#include <cstddef>
#include <type_traits>

#include "frame/lanes.h"
#include "frame/stores.h"
#include "lumcv/types.h"

namespace lum::kernels {

/// Elements of a block of the vector stages. The rows of a ring are whole blocks.
inline constexpr std::ptrdiff_t gaussianBlock = 16;

/// What a row stage reads: bytes as they are where vectors are long, and floats. Short vectors convert each element
/// once, with what that costs to store and load again, as fast as they convert every pair.
template <class T>
using GaussianSource = std::conditional_t<std::is_same_v<T, Lum8u> && (vectorBytes > 16), Lum8u, float>;

/// Where element i of a row of `count` elements T is in its slot. Bytes become floats, and sums of floats bytes, within
/// units of 16 bytes: where a vector has several, the quarters of all its units follow one another.
template <class T> constexpr std::ptrdiff_t gaussianPlace(std::ptrdiff_t i, std::ptrdiff_t count) {
    constexpr std::ptrdiff_t n = vectorBytes;
    if (!std::is_same_v<T, Lum8u> || i >= count / n * n) return i;
    const std::ptrdiff_t inVector = i % n;
    return i - inVector + inVector % 16 / 4 * (n / 4) + inVector / 16 * 4 + i % 4;
}

/// out[gaussianPlace(i)] = sum over j = radius .. 1 of (src[i - j * channels] + src[i + j * channels]) *
/// weights[radius - j], in that order, and src[i] * weights[radius] last. The sum of a pair is exact when the floats were
/// integers of 16 bits, so it is the sum of the integers as well. Lum8u and Lum32f.
template <class S>
void gaussianRowScalar(const S* src, std::ptrdiff_t count, int channels, const float* weights, int radius,
                       float* out);

/// A row stage in vectors, in whole blocks: it reads and writes as if `count` were rounded up to a block.
/// `out` is aligned to a vector.
template <class S>
using GaussianRow = void(const S* src, std::ptrdiff_t count, const float* weights, int radius, float* out);

/// The stage for one or three channels; 3, 5 and 7 taps have one of their own.
template <class S> GaussianRow<S>* gaussianRow(int radius, int channels);
template <> GaussianRow<Lum8u>* gaussianRow(int radius, int channels);
template <> GaussianRow<Lum32f>* gaussianRow(int radius, int channels);

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
/// row times weights[radius] last; element i of a row is at its gaussianPlace(). Integers are rounded to nearest even,
/// and saturate by value; NaN becomes the largest value.
template <class T>
void gaussianColumnScalar(const GaussianRing& ring, std::ptrdiff_t count, const float* weights, T* dst);

/// Rows of the images that are needed some rows later.
template <class T> struct GaussianRowsAhead {
    const T* src;
    const T* dst;
};

/// A column stage in vectors. It reads whole blocks of the ring, whose slots are aligned to a vector.
template <class T>
using GaussianColumn = void(const GaussianRing& ring, std::ptrdiff_t count, const float* weights, T* dst,
                            const GaussianRowsAhead<T>& ahead);

/// Whether a column stage asks for rows ahead: for those of the source, and where stores are ordinary for those of the
/// result.
enum class Looks { here, ahead };

/// The stage for a radius and rows that were filtered with the same weights; Lum8u, Lum16u, Lum16s, Lum32f. Where the weights
/// cannot give sums beyond integers of 32 bits, as those of a Gaussian never do, sums of bytes are not held in range before they
/// are converted. A stage with streaming stores takes rows of dst that can be streamed to, and leaves storeFence() to the caller.
template <class T>
GaussianColumn<T>* gaussianColumn(int radius, const float* weights, Stores stores, Looks looks);

} // namespace lum::kernels
