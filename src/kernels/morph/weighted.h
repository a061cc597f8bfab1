// Dilation and erosion with weights that are added to the pixels under a mask. The edge pixels of the region repeat
// outside.
#pragma once

#include <cstddef>
#include <type_traits>

#include "frame/image.h"
#include "kernels/morph/operation.h"

namespace lum::kernels {

/// 32-bit weights for bytes, floats for floats; of any address.
template <class T> using WeightOf = std::conditional_t<std::is_same_v<T, Lum8u>, Lum32s, Lum32f>;

template <class T> struct Weights {
    const void* cells;
    std::ptrdiff_t width, height;
    std::ptrdiff_t anchorX, anchorY;
};

/// Lum8u: sums wrap in 32 bits, a dilation starts from 0 and an erosion from 255, and the result is clamped to
/// 0 .. 255. Lum32f: starts from the weakest finite float; a sum that is a NaN is passed over.
template <MorphOp op, class T>
void strongestWeighted(Image<const T> src, Image<T> dst, std::ptrdiff_t width, std::ptrdiff_t height,
                       const Weights<T>& weights);

/// The same, one pixel at a time.
template <MorphOp op, class T>
void strongestWeightedScalar(Image<const T> src, Image<T> dst, std::ptrdiff_t width, std::ptrdiff_t height,
                             const Weights<T>& weights);

} // namespace lum::kernels
