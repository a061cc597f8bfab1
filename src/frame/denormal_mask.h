// The denormal-operand exception of the SSE control word, kept from the caller while a filter works.
#pragma once

#include <xmmintrin.h>

namespace lum {

/// Sets the exception's mask when it is clear. At the end it puts the whole word back if the mask, or the flag
/// that a denormal operand raises, is no longer as it was.
class DenormalMask {
  public:
    DenormalMask() : found_(_mm_getcsr()) {
        if ((found_ & mask) == 0) _mm_setcsr(found_ | mask);
    }
    ~DenormalMask() {
        if (((_mm_getcsr() ^ found_) & (mask | flag)) != 0) _mm_setcsr(found_);
    }
    DenormalMask(const DenormalMask&) = delete;
    DenormalMask& operator=(const DenormalMask&) = delete;

  private:
    static constexpr unsigned flag = 0x0002;
    static constexpr unsigned mask = 0x0100;

    unsigned found_;
};

} // namespace lum
