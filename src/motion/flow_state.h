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

/// The windows of one point, in the work area. Rows of the first three hold a multiple of kernels::flowColumns elements,
/// those of the fourth as many again.
struct FlowWork {
    Lum64f* values;
    Lum64f* dx;
    Lum64f* dy;
    Lum32f* moved;  ///< pixels of the second picture, of a column and a row more than the window
    Lum32f* around; ///< the window of the first picture and one more pixel on all sides
    Lum8u* levels;  ///< what lies after them: derivatives of a whole level

    FlowWork(Lum8u* work, int winSize) {
        const std::size_t side = winSize;
        constexpr std::size_t columns = kernels::flowColumns;
        const std::size_t pitch = roundedUp(side, columns);
        const std::size_t elements = side * pitch;
        Arena arena(work);
        values = arena.allocate<Lum64f>(elements);
        dx = arena.allocate<Lum64f>(elements);
        dy = arena.allocate<Lum64f>(elements);
        moved = arena.allocate<Lum32f>((side + 1) * (pitch + columns));
        around = arena.allocate<Lum32f>((side + 2) * (side + 2));
        levels = arena.allocate<Lum8u>(0);
    }
};

} // namespace lum
