// Stages of filters on floats, written once as an expression of taps: sixteen results at a time, and one at a time.
#pragma once

#include <cstddef>

#include "frame/lanes.h"

namespace lum::kernels {

/// out[x] = expression(tap), where tap(i) is source(i)[x], as one float or as a block of them. All reads of an iteration
/// come before its stores, so out may be the row that is read, from its start.
template <class Source, class Expression>
void floatStageScalar(Source source, float* out, std::ptrdiff_t count, Expression expression) {
    for (std::ptrdiff_t x = 0; x < count; ++x) out[x] = expression([&](int i) { return source(i)[x]; });
}

template <class Source, class Expression>
void floatStage(Source source, float* out, std::ptrdiff_t count, Expression expression) {
    std::ptrdiff_t x = 0;
    // 16 results per iteration
    for (; x <= count - 16; x += 16)
        store(expression([&](int i) { return load<16>(source(i) + x); }), out + x);
    // 4 results per iteration
    for (; x <= count - 4; x += 4) store(expression([&](int i) { return load<4>(source(i) + x); }), out + x);
    // tail: scalar, one element at a time
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
