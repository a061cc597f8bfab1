// Where a row of bytes is not 0: the scalar form and the vector form with the same result.
#pragma once

#include "lumcv/types.h"

namespace lum::kernels {

/// The first element that is not 0 from an element on, or the row's end.
int nextSetPixelScalar(const Lum8u* row, int x, int count);
int nextSetPixel(const Lum8u* row, int x, int count);

} // namespace lum::kernels
