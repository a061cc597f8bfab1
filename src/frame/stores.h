// Stores that bypass the cache: when a call's images are as large as the largest cache, what it writes would
// only push out what it reads.
#pragma once

#include "lumcv/types.h"

namespace lum {

enum class Stores { ordinary, streaming };

/// What a failing size query selects. Streams over images take it for a cache of no size.
enum class OnUnknownCache { stream, storeOrdinarily };

/// bytesPerPixel x width x height in wrapping signed 32-bit arithmetic; a negative figure is below every cache.
constexpr Lum32s wrappedBytes(int bytesPerPixel, LumSize roiSize) {
    return static_cast<Lum32s>(static_cast<unsigned>(bytesPerPixel) * static_cast<unsigned>(roiSize.width) *
                               static_cast<unsigned>(roiSize.height));
}

/// Bypassing where the figure is equal to the size of the largest cache or above it.
Stores storesForBytes(Lum32s figure, OnUnknownCache onUnknownCache = OnUnknownCache::stream);

} // namespace lum
