#include "kernels/feature/derivative.h"

#include "frame/instances.h"
#include "frame/lanes_convert.h"
#include "kernels/feature/blocks.h"

namespace lum::kernels {
namespace {

/// Source elements in the type that the column stage computes in.
template <class T> auto wideTap(T value) {
    if constexpr (std::is_same_v<T, Lum8u>)
        return int{value};
    else
        return value;
}

template <int columns, class T> LUM_LANE auto wideTaps(const T* place) {
    if constexpr (std::is_same_v<T, Lum8u>)
        return widen<Lum16s>(load<columns>(place));
    else
        return load<columns>(place);
}

} // namespace

template <Derivative kind, class T>
void derivativeDownScalar(const T* const* rows, std::ptrdiff_t count, StageElement<T>* smooth,
                          StageElement<T>* difference) {
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        const auto tap = [&](int k) { return wideTap(rows[k][x]); };
        smooth[x] = static_cast<StageElement<T>>(smoothed<kind>(tap));
        difference[x] = static_cast<StageElement<T>>(differenced<kind>(tap));
    }
}

template <Derivative kind, class T>
void derivativeDown(const T* const* rows, std::ptrdiff_t count, StageElement<T>* smooth,
                    StageElement<T>* difference) {
    // 32 bytes of each result per block: two registers of the narrowest build for each value of the formula; tail:
    // overlapping last vector, and the scalar form for rows below a block
    constexpr int columns = 32 / sizeof(StageElement<T>);
    if (count < columns) return derivativeDownScalar<kind>(rows, count, smooth, difference);
    forBlocks<columns>(count, [&](std::ptrdiff_t x) {
        const auto tap = [&](int k) { return wideTaps<columns>(rows[k] + x); };
        store(smoothed<kind>(tap), smooth + x);
        store(differenced<kind>(tap), difference + x);
    });
}

LUM_INSTANCES(derivativeDownScalar, (Derivative::sobel3, Lum8u), (Derivative::sobel5, Lum8u),
              (Derivative::scharr3, Lum8u), (Derivative::central3, Lum8u), (Derivative::sobel3, Lum32f),
              (Derivative::sobel5, Lum32f), (Derivative::scharr3, Lum32f), (Derivative::central3, Lum32f));
LUM_INSTANCES(derivativeDown, (Derivative::sobel3, Lum8u), (Derivative::sobel5, Lum8u),
              (Derivative::scharr3, Lum8u), (Derivative::central3, Lum8u), (Derivative::sobel3, Lum32f),
              (Derivative::sobel5, Lum32f), (Derivative::scharr3, Lum32f), (Derivative::central3, Lum32f));

} // namespace lum::kernels
