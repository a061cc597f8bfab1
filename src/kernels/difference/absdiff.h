// Rows of absolute differences: the scalar form of each kernel and the vector form with the same result.
#pragma once

#include "frame/image.h"
#include "frame/stores.h"

namespace lum::kernels {

/// dst = |src1 - src2| an element; Lum8u, Lum16u, Lum32f. Width counts elements.
template <class T> void absDiffScalar(Image<const T> src1, Image<const T> src2, Image<T> dst, LumSize size);
template <class T>
void absDiff(Image<const T> src1, Image<const T> src2, Image<T> dst, LumSize size, Stores stores);

/// dst = |src - constant| an element; Lum8u, Lum16u, Lum32f.
template <class T> void absDiffCScalar(Image<const T> src, T constant, Image<T> dst, LumSize size);
template <class T> void absDiffC(Image<const T> src, T constant, Image<T> dst, LumSize size, Stores stores);

} // namespace lum::kernels
