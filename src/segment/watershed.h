// Watersheds grown from markers over a relief.
#pragma once

#include "lumcv/watershed.h"

namespace lum {

/// Of Lum8u relief, by the type of the markers: Lum8u, Lum16u.
template <class Marker> LumStatus watershedBufferSize(LumSize roiSize, Lum32s* size);
LumStatus watershedFloatBufferSize(LumSize roiSize, Lum32s* size);

template <class Marker>
LumStatus watershed(const Lum8u* src, int srcStep, Marker* markers, int markersStep, LumSize roiSize,
                    Lum32s norm, Lum32s flags, Lum8u* buffer);
LumStatus watershedFloat(const Lum32f* src, int srcStep, Lum16u* markers, int markersStep, LumSize roiSize,
                         Lum32s norm, Lum32s flags, Lum8u* buffer);

} // namespace lum
