// Thin names for the 16-byte loads and stores whose kind is a template parameter of a kernel.
#pragma once

#include <cstdint>
#include <tmmintrin.h>

#include "frame/stores.h"

namespace lum {

enum class Access { unaligned, aligned };

template <Access access> inline __m128i loadVector(const void* place) {
    const auto* vector = static_cast<const __m128i*>(place);
    if constexpr (access == Access::aligned)
        return _mm_load_si128(vector);
    else
        return _mm_loadu_si128(vector);
}

template <Access access> inline __m128 loadFloats(const float* place) {
    if constexpr (access == Access::aligned)
        return _mm_load_ps(place);
    else
        return _mm_loadu_ps(place);
}

/// Only aligned stores are streamed; a kernel that may have issued one ends with storeFence().
template <Access access, Stores stores = Stores::ordinary>
inline void storeVector(void* place, __m128i value) {
    auto* vector = static_cast<__m128i*>(place);
    if constexpr (access == Access::unaligned)
        _mm_storeu_si128(vector, value);
    else if constexpr (stores == Stores::streaming)
        _mm_stream_si128(vector, value);
    else
        _mm_store_si128(vector, value);
}

template <Access access, Stores stores = Stores::ordinary>
inline void storeFloats(float* place, __m128 value) {
    if constexpr (access == Access::unaligned)
        _mm_storeu_ps(place, value);
    else if constexpr (stores == Stores::streaming)
        _mm_stream_ps(place, value);
    else
        _mm_store_ps(place, value);
}

/// Half a vector.
inline __m128i loadHalf(const void* place) { return _mm_loadl_epi64(static_cast<const __m128i*>(place)); }
inline void storeHalf(void* place, __m128i value) { _mm_storel_epi64(static_cast<__m128i*>(place), value); }

/// Whether an address is a multiple of 16.
inline bool isVectorAligned(const void* place) { return reinterpret_cast<std::uintptr_t>(place) % 16 == 0; }

} // namespace lum
