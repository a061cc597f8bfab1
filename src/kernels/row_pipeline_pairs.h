// The row stage in pairs of 16-bit products, whose sums are exact.
#pragma once

#include "kernels/pipeline_lanes.h"

namespace lum::kernels {

/// The coefficients two by two, each pair in four lanes, on a multiple of 16 bytes. The last of an odd number stands
/// twice: in front of a zero, and behind one.
struct PairWeights {
    const Lum16s* lanes;
    int count;

    __m128i pair(int j) const { return _mm_load_si128(reinterpret_cast<const __m128i*>(lanes + 8 * j)); }
};

constexpr int pairVectors(int count) { return count / 2 + 2 * (count % 2); }
void spreadPairs(const Lum16s* kernel, int count, Lum16s* lanes);

/// dst[i] = (the sum over k of kernel[k] x src[i + k x spacing], exact in 32 bits) x scale, in single precision, to
/// nearest even; `src` is the first element of the first result's window. The sum of |kernel[k]| times the largest
/// magnitude of an element stays below 2^31, and the count is a multiple of 8. Lum8u and Lum16s.
template <class S>
void pairRowScalar(const S* src, int spacing, Lum16s* dst, int count, PairWeights weights, float scale);
template <class S>
void pairRow(const S* src, int spacing, Lum16s* dst, int count, PairWeights weights, float scale);

} // namespace lum::kernels
