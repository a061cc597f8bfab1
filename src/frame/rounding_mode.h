// Rounding to nearest even while a call works, whatever mode the caller has set.
#pragma once

#include <xmmintrin.h>

namespace lum {

/// Sets the mode when it is another one, and puts it back at the end. A compiler does not know that arithmetic
/// depends on the mode, so what is to round by it belongs in a function that is not inlined.
class NearestRounding {
  public:
    NearestRounding() : found_(_MM_GET_ROUNDING_MODE()) {
        if (found_ != _MM_ROUND_NEAREST) _MM_SET_ROUNDING_MODE(_MM_ROUND_NEAREST);
    }
    ~NearestRounding() {
        if (found_ != _MM_ROUND_NEAREST) _MM_SET_ROUNDING_MODE(found_);
    }
    NearestRounding(const NearestRounding&) = delete;
    NearestRounding& operator=(const NearestRounding&) = delete;

  private:
    unsigned found_;
};

} // namespace lum
