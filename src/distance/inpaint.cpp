#include "distance/inpaint.h"

#include <cstring>

#include "distance/inpaint_state.h"
#include "frame/check.h"
#include "morph/dilate_erode.h"

namespace lum {
namespace {

using kernels::InpaintMethod;
using kernels::InpaintRegion;

void copyImage(Image<const Lum8u> src, Image<Lum8u> dst, std::size_t bytesOfRow, int height) {
    if (src.first == dst.first && src.step == dst.step) return;
    for (int y = 0; y < height; ++y) std::memmove(dst.row(y), src.row(y), bytesOfRow);
}

/// The known pixels that an element reaches from the hole, into bandMask.
LumStatus markRing(const LumInpaintState& state, const LumMorphMaskRecord* element, Lum8u* buffer) {
    using Dilation = SingleChannelMorphology<kernels::MorphOp::dilate, Lum8u>;
    if (auto s = Dilation::border(state.workMask, state.maskStride, state.bandMask, state.maskStride,
                                  {state.width, state.height}, lumBorderReplicate, 0, element, buffer))
        return s;
    const Image<const Lum8u> work{state.workMask, state.maskStride};
    const Image<Lum8u> band{state.bandMask, state.maskStride};
    for (int y = 0; y < state.height; ++y)
        for (int x = 0; x < state.width; ++x) band.row(y)[x] &= static_cast<Lum8u>(~work.row(y)[x]);
    return lumStatusOk;
}

template <InpaintMethod method, int channels>
LumStatus repair(const LumInpaintState& state, InpaintRegion& region, Lum8u* buffer) {
    const Image<const Lum8u> band{state.bandMask, state.maskStride};
    if (auto s = markRing(state, state.specDisc, buffer)) return s;
    kernels::inpaintGradients<method, channels>(region, band);
    if (auto s = markRing(state, state.specCross, buffer)) return s;
    kernels::inpaintGradientsAtHole<method, channels>(region, band);
    if constexpr (method == InpaintMethod::front) kernels::inpaintDistanceGradients(region);
    const std::size_t maskBytes =
        static_cast<std::size_t>(state.maskStride) * static_cast<std::size_t>(state.height);
    std::memcpy(state.bandMask, state.workMask, maskBytes);
    region.mask = {state.bandMask, state.maskStride};
    kernels::inpaintPixels<method, channels>(region, state.order, state.pixelCount);
    return lumStatusOk;
}

/// The places of the neighbours in the picture, which each run may lay out anew.
void placeNeighbours(const LumInpaintState& state, int dstStep) {
    for (int i = 0; i < state.neighbourCount; ++i) {
        kernels::InpaintNeighbour& n = state.neighbourTable[i];
        n.inImage = -(static_cast<std::intptr_t>(n.towardY) * dstStep +
                      static_cast<std::intptr_t>(n.towardX) * state.channels);
    }
}

} // namespace

template <int channels>
LumStatus inpaint(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumSize roiSize,
                  LumInpaintState* state, Lum8u* buffer) {
    if (auto s = checkNotNull(src, dst, state)) return s;
    const bool otherSize = roiSize.width != state->imageWidth || roiSize.height != state->imageHeight;
    if (auto s = firstFailure(checkSize(roiSize), errorIf(otherSize, lumStatusSizeError),
                              checkStep(rowBytes<Lum8u>(roiSize.width, channels), srcStep, dstStep),
                              errorIf(state->pixelCount > 0 && buffer == nullptr, lumStatusNullPointer),
                              errorIf(state->channels != channels, lumStatusBadArgument)))
        return s;
    const Image<Lum8u> result{dst, dstStep};
    copyImage({src, srcStep}, result, static_cast<std::size_t>(roiSize.width) * channels, roiSize.height);
    if (state->pixelCount < 1) return lumStatusOk;

    placeNeighbours(*state, dstStep);
    const auto rows = static_cast<std::size_t>(state->height);
    std::memset(state->imageGradient, 0, static_cast<std::size_t>(state->imageGradientStride) * rows);
    if (state->method == lumInpaintFront)
        std::memset(state->distanceGradient, 0,
                    static_cast<std::size_t>(state->distanceGradientStride) * rows);
    InpaintRegion region{
        .size = {state->width, state->height},
        .image = {result.row(state->y) + static_cast<std::ptrdiff_t>(state->x) * channels, dstStep},
        .mask = {state->workMask, state->maskStride},
        .distances = {state->distanceCopy, state->distanceStride},
        .imageGradient = {state->imageGradient, state->imageGradientStride},
        .distanceGradient = {state->distanceGradient, state->distanceGradientStride},
        .neighbours = state->neighbourTable,
        .neighbourCount = state->neighbourCount,
        .reach = reachOf(state->radius)};
    if (state->method == lumInpaintFront)
        return repair<InpaintMethod::front, channels>(*state, region, buffer);
    return repair<InpaintMethod::isophote, channels>(*state, region, buffer);
}

template LumStatus inpaint<1>(const Lum8u*, int, Lum8u*, int, LumSize, LumInpaintState*, Lum8u*);
template LumStatus inpaint<3>(const Lum8u*, int, Lum8u*, int, LumSize, LumInpaintState*, Lum8u*);

} // namespace lum
