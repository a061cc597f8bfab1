// Blocks at addresses that are multiples of a vector's size.
#pragma once

#include "frame/lanes.h"

namespace lum {

/// load() from a multiple of the size of a vector of the target, or of the block where that is smaller. Short vectors
/// are operands in memory of what is computed from them there, which takes neither an instruction nor a register.
template <int N, class T> LUM_LANE Block<std::remove_const_t<T>, N> loadAligned(T* place) {
    using U = std::remove_const_t<T>;
    if constexpr (!isOneVector<U, N>)
        return {loadAligned<N / 2>(place), loadAligned<N / 2>(place + N / 2)};
    else if constexpr (Block<U, N>::bytes == 16)
        return blockOf<U, N>(_mm_load_si128(reinterpret_cast<const __m128i*>(place)));
    else if constexpr (Block<U, N>::bytes == 32)
        return blockOf<U, N>(_mm256_load_si256(reinterpret_cast<const __m256i*>(place)));
    else
        return blockOf<U, N>(_mm512_load_si512(place));
}

/// load() from a multiple of 16 bytes, whatever the target's vectors: an operand in memory for short ones alone.
template <int N, class T> LUM_LANE Block<std::remove_const_t<T>, N> loadFromMultipleOf16(T* place) {
    if constexpr (vectorBytes == 16)
        return loadAligned<N>(place);
    else
        return load<N>(place);
}

} // namespace lum
