// The one place where every family meets: an export whose implementation does not have exactly the type of the
// public prototype does not compile.
#include "entry/entry_table.h"

#include <cstddef>

#include "difference/absdiff.h"
#include "distance/chamfer.h"
#include "distance/fast_marching.h"
#include "distance/inpaint.h"
#include "distance/true_distance.h"
#include "entry/version.h"
#include "feature/canny.h"
#include "feature/eigen.h"
#include "feature/fast.h"
#include "feature/harris.h"
#include "feature/hough.h"
#include "feature/hough_prob.h"
#include "feature/peak.h"
#include "filter/color_gradient.h"
#include "filter/column_pipeline.h"
#include "filter/gaussian.h"
#include "filter/gaussian_sizes.h"
#include "filter/gaussian_spec.h"
#include "filter/laplacian.h"
#include "filter/lowpass.h"
#include "filter/row_pipeline.h"
#include "filter/separable.h"
#include "filter/separable_spec.h"
#include "filter/sobel_cross.h"
#include "filter/sobel_kernel.h"
#include "geometry/sample_line.h"
#include "geometry/undistort.h"
#include "integral/haar_apply.h"
#include "integral/haar_features.h"
#include "integral/haar_init.h"
#include "integral/haar_mixed.h"
#include "integral/integral.h"
#include "integral/rect_std_dev.h"
#include "integral/tilted_integral.h"
#include "morph/bit_compound.h"
#include "morph/bit_dilate_erode.h"
#include "morph/compound.h"
#include "morph/dilate_erode.h"
#include "morph/gray_dilate_erode.h"
#include "morph/gray_init.h"
#include "morph/pair_init.h"
#include "morph/reconstruct.h"
#include "morph/single_init.h"
#include "motion/background.h"
#include "motion/flow_state.h"
#include "motion/motion_history.h"
#include "motion/optical_flow.h"
#include "motion/subpix.h"
#include "pyramid/layer_down.h"
#include "pyramid/layer_up.h"
#include "pyramid/level_sizes.h"
#include "pyramid/pyramid.h"
#include "segment/flood_fill.h"
#include "segment/label.h"
#include "segment/segment_gradient.h"
#include "segment/watershed.h"
#include "stats/accumulate.h"
#include "stats/extreme.h"
#include "stats/mean.h"
#include "stats/norm.h"

namespace lum {

#define LUM_EXPORT(ordinal, name, ...)                                                                       \
    static_assert(offsetof(EntryTable, name) == ((ordinal)-1) * sizeof(void*));
#include "entry/exports.inc"
#undef LUM_EXPORT

} // namespace lum

using namespace lum;
using kernels::MorphOp;

constinit const EntryTable lumEntryTable = {
#define LUM_EXPORT(ordinal, name, ...) .name = &__VA_ARGS__,
#include "entry/exports.inc"
#undef LUM_EXPORT
};
