// Derivative kernels of any length and order.
#pragma once

#include "lumcv/status.h"
#include "lumcv/types.h"

namespace lum {

/// Lum16s, which wraps beyond 16 bits, and Lum32f.
template <class T> LumStatus genSobelKernel(T* kernel, int kernelSize, int derivativeOrder, int sign);

} // namespace lum
