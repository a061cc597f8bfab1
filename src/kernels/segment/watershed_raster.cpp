#include "kernels/segment/watershed_raster.h"

#include "frame/instances.h"
#include "kernels/segment/raster_sweeps.h"

namespace lum::kernels {

template std::size_t rasterBytes<IntegerCost>(LumSize);
template std::size_t rasterBytes<FloatCost>(LumSize);

LUM_INSTANCES(rasterWatershed, (IntegerCost, Lum8u), (IntegerCost, Lum16u), (FloatCost, Lum16u));

} // namespace lum::kernels
