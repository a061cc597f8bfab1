// Rows of the corner measures: products of derivatives, their sums over a window, and what the measures make of the
// means.
#pragma once

#include <cstddef>

#include "kernels/feature/derivative.h"

namespace lum::kernels {

/// Rows of the three products dx * dx, dx * dy and dy * dy.
struct ProductRows {
    float* xx;
    float* xy;
    float* yy;
};

/// The products in single precision, from a column stage (Lum16s from bytes, Lum32f) whose rows begin with the first
/// tap of the first pixel. dy is below minus above; dx is right minus left for scharr3 and central3, left minus right
/// for sobel3 and sobel5.
template <Derivative kind, class Stage>
void productRowScalar(const Stage* smooth, const Stage* difference, std::ptrdiff_t count,
                      const ProductRows& products);
template <Derivative kind, class Stage>
void productRow(const Stage* smooth, const Stage* difference, std::ptrdiff_t count,
                const ProductRows& products);

/// Sums of `taps` neighbours from each element on, in order. `sums` is not the row that is read.
void windowSumsAlongScalar(const float* row, std::ptrdiff_t count, int taps, float* sums);
void windowSumsAlong(const float* row, std::ptrdiff_t count, int taps, float* sums);

/// `taps` rows of window sums of each product, from the topmost on. The means are their sums down the columns, in
/// order, times 1 / (taps * taps) in single precision.
struct WindowRows {
    const float* const* xx;
    const float* const* xy;
    const float* const* yy;
    int taps;
};

/// Of means a, b, c of xx, xy, yy: ((a + c) - sqrt((a - c) * (a - c) + 4 * (b * b))) * scale.
void smallerEigenvalueRowScalar(const WindowRows& window, std::ptrdiff_t count, float scale, float* dst);
void smallerEigenvalueRow(const WindowRows& window, std::ptrdiff_t count, float scale, float* dst);

/// Both eigenvalues and eigenvectors of the means times `scale`, six floats per pixel: the values, larger first, and
/// the vectors of each. `sign` times b is what the vectors are made of.
void eigenSystemRowScalar(const WindowRows& window, std::ptrdiff_t count, float scale, float sign,
                          float* dst);
void eigenSystemRow(const WindowRows& window, std::ptrdiff_t count, float scale, float sign, float* dst);

/// ((a * c - b * b) - (a + c) * (k * (a + c))) * scale.
void harrisRowScalar(const WindowRows& window, std::ptrdiff_t count, float k, float scale, float* dst);
void harrisRow(const WindowRows& window, std::ptrdiff_t count, float k, float scale, float* dst);

} // namespace lum::kernels
