// Rows of the suppression of features along lines.
#pragma once

#include <cstddef>

#include "kernels/feature/derivative.h"

namespace lum::kernels {

/// Sums of dx * dx, dx * dy and dy * dy, column by column.
struct CovarianceSums {
    double* xx;
    double* xy;
    double* yy;
};

/// Adds `weight`, 1 or -1, times the products of a row, from a column stage of bytes whose rows begin with the first tap
/// of the first pixel. Exact.
template <Derivative kind>
void addProductRowScalar(const Lum16s* smooth, const Lum16s* difference, std::ptrdiff_t count, double weight,
                         const CovarianceSums& sums);
template <Derivative kind>
void addProductRow(const Lum16s* smooth, const Lum16s* difference, std::ptrdiff_t count, double weight,
                   const CovarianceSums& sums);

/// With a, b, c the sums of `taps` columns from each pixel's own on: the feature where
/// (a * c - b * b) * (255 + threshold)^2 >= 255 * threshold * (a + c)^2, else 0. One pixel at a time, since the sums run
/// along the row.
void suppressLinesRow(const CovarianceSums& sums, std::ptrdiff_t count, int taps, Lum8u threshold,
                      const Lum8u* feature, Lum8u* dst);

} // namespace lum::kernels
