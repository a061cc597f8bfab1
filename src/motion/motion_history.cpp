#include "motion/motion_history.h"

#include "frame/check.h"
#include "kernels/motion/motion_history.h"

namespace lum {

template <class T>
LumStatus updateMotionHistory(const T* silhouette, int silhouetteStep, Lum32f* mhi, int mhiStep,
                              LumSize roiSize, Lum32f timestamp, Lum32f duration) {
    if (auto s = firstFailure(checkNotNull(silhouette, mhi), checkSize(roiSize),
                              checkStep(rowBytes<T>(roiSize.width), silhouetteStep),
                              checkStep(rowBytes<Lum32f>(roiSize.width), mhiStep),
                              checkStepAlignment<Lum32f>(mhiStep), checkStepAlignment<T>(silhouetteStep),
                              errorIf(duration < 0, lumStatusOutOfRange)))
        return s;
    kernels::updateMotionHistory<T>({silhouette, silhouetteStep}, {mhi, mhiStep}, roiSize, timestamp,
                                    timestamp - duration);
    return lumStatusOk;
}

template LumStatus updateMotionHistory(const Lum8u*, int, Lum32f*, int, LumSize, Lum32f, Lum32f);
template LumStatus updateMotionHistory(const Lum16u*, int, Lum32f*, int, LumSize, Lum32f, Lum32f);
template LumStatus updateMotionHistory(const Lum32f*, int, Lum32f*, int, LumSize, Lum32f, Lum32f);

} // namespace lum
