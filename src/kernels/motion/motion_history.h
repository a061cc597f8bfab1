// Motion history: pixels of a silhouette take the time, others are cleared when their motion lies too far back.
#pragma once

#include "frame/image.h"
#include "lumcv/types.h"

namespace lum::kernels {

/// Lum8u, Lum16u, Lum32f silhouettes; what lies before `oldest` is cleared.
template <class T>
void updateMotionHistoryScalar(Image<const T> silhouette, Image<Lum32f> history, LumSize size, float now,
                               float oldest);
template <class T>
void updateMotionHistory(Image<const T> silhouette, Image<Lum32f> history, LumSize size, float now,
                         float oldest);

} // namespace lum::kernels
