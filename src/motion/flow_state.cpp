#include "motion/flow_state.h"

#include <cstdint>

#include "frame/check.h"

namespace lum {
namespace {

static_assert(sizeof(void*) != 4 ||
              (sizeof(LumOpticalFlowState) == 32 && offsetof(LumOpticalFlowState, dataType) == 12 &&
               offsetof(LumOpticalFlowState, hint) == 20 && offsetof(LumOpticalFlowState, winSize) == 24 &&
               offsetof(LumOpticalFlowState, work) == 28));

LumStatus checkSizes(int winSize, LumSize roiSize) {
    return firstFailure(checkCount(winSize), checkSize(roiSize));
}

} // namespace

LumStatus opticalFlowSize(int winSize, LumSize roiSize, LumDataType dataType, LumHint, Lum32s* size) {
    const bool known = dataType == lumType8u || dataType == lumType16u || dataType == lumType32f;
    if (auto s = firstFailure(checkSizes(winSize, roiSize), errorIf(!known, lumStatusDataTypeError),
                              checkNotNull(size)))
        return s;
    const auto side = static_cast<std::uint32_t>(winSize);
    const std::uint32_t w = static_cast<std::uint32_t>(roiSize.width) + 5;
    const std::uint32_t h = static_cast<std::uint32_t>(roiSize.height) + 5;
    // Two rows of a level with an element more on either side, for the derivatives.
    const std::uint32_t rows = 2 * w;
    std::uint32_t bytes;
    if (dataType == lumType8u)
        bytes = (40 * side + 120) * (side + 3) + 2 * (rows + 2 * w * h) + 90;
    else
        bytes = 4 * (rows + (dataType == lumType16u ? 3 : 2) * w * h + (12 * side + 36) * (side + 3)) + 84;
    *size = static_cast<Lum32s>(bytes);
    return lumStatusOk;
}

template <LumDataType dataType>
LumStatus opticalFlowInit(LumOpticalFlowState** state, LumSize roiSize, int winSize, LumHint hint,
                          Lum8u* memory) {
    if (auto s = firstFailure(checkSizes(winSize, roiSize), checkNotNull(state, memory))) return s;
    Arena arena(memory);
    auto* head = arena.align(16).allocate<LumOpticalFlowState>();
    head->width = roiSize.width;
    head->height = roiSize.height;
    head->lanes = 1;
    head->dataType = dataType;
    head->hint = hint;
    head->winSize = winSize;
    head->work = arena.align(16).allocate<Lum8u>(0);
    *state = head;
    return lumStatusOk;
}

template LumStatus opticalFlowInit<lumType8u>(LumOpticalFlowState**, LumSize, int, LumHint, Lum8u*);
template LumStatus opticalFlowInit<lumType16u>(LumOpticalFlowState**, LumSize, int, LumHint, Lum8u*);
template LumStatus opticalFlowInit<lumType32f>(LumOpticalFlowState**, LumSize, int, LumHint, Lum8u*);

} // namespace lum
