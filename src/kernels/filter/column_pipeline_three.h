// The column stage of three taps over words.
#pragma once

#include "kernels/filter/column_pipeline_float.h"

namespace lum::kernels {

/// Three scaled coefficients. Where the kernel is symmetric the two outer rows are added first.
struct ThreeWeights {
    float first;
    float middle;
    float last;
    bool symmetric;
    /// No sum can pass 2^31.
    bool small;
};

/// A row of the ring, in floats, a multiple of 16 bytes.
struct RingOfThree {
    float* rows;
    std::ptrdiff_t elements;

    float* row(int index) const { return rows + index % 3 * elements; }
};

/// dst(i, y) = first x srcRows[y][i] + middle x srcRows[y + 1][i] + last x srcRows[y + 2][i] in single precision; symmetric
/// kernels as (srcRows[y][i] + srcRows[y + 2][i]) x first + middle x srcRows[y + 1][i]. The results that are rounded to
/// nearest even are a multiple of 16. The ring keeps the latest three rows converted; the scalar form does without. Lum8s,
/// Lum8u, Lum16s.
template <class R>
void threeTapColumnsScalar(const Lum16s* const* srcRows, Image<R> dst, LumSize size, RowRounding rounded,
                           const ThreeWeights& weights, RingOfThree ring);
template <class R>
void threeTapColumns(const Lum16s* const* srcRows, Image<R> dst, LumSize size, RowRounding rounded,
                     const ThreeWeights& weights, RingOfThree ring);

} // namespace lum::kernels
