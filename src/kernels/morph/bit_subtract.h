// Differences of two bit images, of which one is the destination itself.
#pragma once

#include <cstddef>

#include "kernels/morph/bit_image.h"

namespace lum::kernels {

/// What the other image is to the destination.
enum class OtherOperand { minuend, subtrahend };

/// A bit of dst is set where the minuend is set and the subtrahend is not. Bits beside the region are kept, and of the other
/// image only bytes that hold pixels of the region are read.
void subtractBits(BitImage<const Lum8u> other, OtherOperand role, BitImage<Lum8u> dst, std::ptrdiff_t width,
                  std::ptrdiff_t height);
void subtractBitsScalar(BitImage<const Lum8u> other, OtherOperand role, BitImage<Lum8u> dst,
                        std::ptrdiff_t width, std::ptrdiff_t height);

} // namespace lum::kernels
