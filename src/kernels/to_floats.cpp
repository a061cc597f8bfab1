#include "kernels/to_floats.h"

#include <cstring>
#include <type_traits>

#include "frame/convert_lanes.h"
#include "frame/instances.h"

namespace lum::kernels {

template <class T> void toFloatsScalar(const T* src, std::ptrdiff_t count, float* out) {
    for (std::ptrdiff_t i = 0; i < count; ++i) out[i] = src[i];
}

template <class T> void toFloats(const T* src, std::ptrdiff_t count, float* out) {
    if constexpr (std::is_floating_point_v<T>) {
        std::memcpy(out, src, static_cast<std::size_t>(count) * sizeof(float));
    } else {
        std::ptrdiff_t i = 0;
        // 16 elements per iteration
        for (; i <= count - 16; i += 16) store(loadFloats<16>(src + i), out + i);
        // tail: scalar, one element at a time
        toFloatsScalar(src + i, count - i, out + i);
    }
}

LUM_INSTANCES(toFloatsScalar, (Lum8u), (Lum16u), (Lum16s), (Lum32f));
LUM_INSTANCES(toFloats, (Lum8u), (Lum16u), (Lum16s), (Lum32f));

} // namespace lum::kernels
