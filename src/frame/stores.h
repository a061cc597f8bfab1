// Kinds of stores. Streaming stores are streamed: when a call's images are as large as the largest cache, what it
// writes would only push out what it reads.
#pragma once

#include <xmmintrin.h>

#include "lumcv/types.h"

namespace lum {

enum class Stores { ordinary, streaming };

/// What a failing size query selects. Calls that stream over images treat it as a cache of no size.
enum class OnUnknownCache { stream, storeOrdinarily };

/// bytesPerPixel x width x height in wrapping signed 32-bit arithmetic; a negative size is below every cache.
constexpr Lum32s wrappedBytes(int bytesPerPixel, LumSize roiSize) {
    return static_cast<Lum32s>(static_cast<unsigned>(bytesPerPixel) * static_cast<unsigned>(roiSize.width) *
                               static_cast<unsigned>(roiSize.height));
}

/// Streaming where the size is equal to that of the largest cache or above it.
Stores storesForBytes(Lum32s bytes, OnUnknownCache onUnknownCache = OnUnknownCache::stream);

/// Orders streaming stores before whatever the caller does next.
inline void storeFence() { _mm_sfence(); }

} // namespace lum
