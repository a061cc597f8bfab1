#include "kernels/segment/watershed_raster.h"

#include "kernels/segment/raster_sweeps.h"

namespace lum::kernels {

template std::size_t rasterBytes<IntegerCost>(LumSize);
template std::size_t rasterBytes<FloatCost>(LumSize);

template decltype(rasterWatershed<IntegerCost, Lum8u>) rasterWatershed<IntegerCost, Lum8u>;
template decltype(rasterWatershed<IntegerCost, Lum16u>) rasterWatershed<IntegerCost, Lum16u>;
template decltype(rasterWatershed<FloatCost, Lum16u>) rasterWatershed<FloatCost, Lum16u>;

} // namespace lum::kernels
