// The state of the point tracker and what its work area holds.
#pragma once

#include <cstddef>

#include "frame/arena.h"
#include "kernels/motion/flow_sums.h"
#include "lumcv/optical_flow.h"
#include "lumcv/types.h"

struct LumOpticalFlowState {
    Lum32s width;
    Lum32s height;
    Lum32s lanes;
    LumDataType dataType;
    Lum32s unused;
    LumHint hint;
    Lum32s winSize;
    Lum8u* work;
};

namespace lum {

LumStatus opticalFlowSize(int winSize, LumSize roiSize, LumDataType dataType, LumHint hint, Lum32s* size);
template <LumDataType dataType>
LumStatus opticalFlowInit(LumOpticalFlowState** state, LumSize roiSize, int winSize, LumHint hint,
                          Lum8u* memory);

/// The windows of one point, in the work area, and the derivatives of a whole level after them.
struct FlowWork {
    Lum64f* values;
    Lum64f* dx;
    Lum64f* dy;
    Lum32f* moved;  ///< pixels of the second picture
    Lum32f* around; ///< the window of the first picture and one more pixel on all sides
    Lum8u* levels;

    FlowWork(Lum8u* work, int winSize) {
        const std::size_t side = winSize;
        const std::size_t pitch = kernels::flowPitch(winSize);
        Arena arena(work);
        values = arena.allocate<Lum64f>(side * pitch);
        dx = arena.allocate<Lum64f>(side * pitch);
        dy = arena.allocate<Lum64f>(side * pitch);
        moved = arena.allocate<Lum32f>(kernels::flowElements(kernels::flowPitch(winSize), winSize));
        around = arena.allocate<Lum32f>((side + 2) * (side + 2));
        levels = arena.allocate<Lum8u>(0);
    }
};

} // namespace lum
