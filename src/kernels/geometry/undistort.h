// Correction of a lens: the coordinates that a model gives, as maps or sampled at once. The scalar form of
// each kernel and the vector form with the same result.
#pragma once

#include "frame/image.h"
#include "frame/stores.h"
#include "kernels/geometry/lens_model.h"

namespace lum::kernels {

/// xMap and yMap are the place of each pixel. RadialModel, TangentialModel, with columns computed or
/// prepared.
template <class Model>
void mapScalar(const Model& model, Image<Lum32f> xMap, Image<Lum32f> yMap, LumSize size);
template <class Model, class Columns>
void map(const Model& model, const Columns& columns, Image<Lum32f> xMap, Image<Lum32f> yMap, LumSize size,
         Stores stores);

/// dst is src sampled between four pixels at the place of each pixel; where one of the four lies outside, dst
/// stays. Lum8u, Lum16u, Lum32f with 1 or 3 channels.
template <class T, int channels>
void undistortScalar(const RadialModel& model, Image<const T> src, Image<T> dst, LumSize size);
template <class T, int channels, class Columns>
void undistort(const RadialModel& model, const Columns& columns, Image<const T> src, Image<T> dst,
               LumSize size);

} // namespace lum::kernels
