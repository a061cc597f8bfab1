// Stages of filters on floats, written once as an expression of taps: four results at a time, and one at a
// time.
#pragma once

#include <cstddef>

#include "frame/vector.h"

namespace lum::kernels {

/// out[x] = expression(tap), where tap(i) is source(i)[x], as one single or as four. All reads of a turn come
/// before its stores, so out may be the row that is read, from its start.
template <class Source, class Expression>
void singleStageScalar(Source source, float* out, std::ptrdiff_t count, Expression expression) {
    for (std::ptrdiff_t x = 0; x < count; ++x) out[x] = expression([&](int i) { return source(i)[x]; });
}

template <class Source, class Expression>
void singleStage(Source source, float* out, std::ptrdiff_t count, Expression expression) {
    std::ptrdiff_t x = 0;
    // 4 results a turn
    for (; x <= count - 4; x += 4)
        _mm_storeu_ps(out + x, expression([&](int i) { return _mm_loadu_ps(source(i) + x); }));
    // tail, one element a turn
    for (; x < count; ++x) out[x] = expression([&](int i) { return source(i)[x]; });
}

/// Taps along an extended row, whose first pixel is tap 0 of the first result.
inline auto alongRow(const float* extended) {
    return [extended](int i) { return extended + i; };
}

/// Taps down the rows of a ring.
inline auto downRows(const float* const* rows) {
    return [rows](int k) { return rows[k]; };
}

} // namespace lum::kernels
