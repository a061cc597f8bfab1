// The root of a double that the tests' references take. The cross compiler's own is that of 64 bits of x87 arithmetic,
// rounded once more to a double, which in rare cases is another number.
#include <emmintrin.h>

extern "C" double sqrt(double x) {
    const __m128d value = _mm_set_sd(x);
    return _mm_cvtsd_f64(_mm_sqrt_sd(value, value));
}
