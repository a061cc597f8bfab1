#include "motion/background.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "frame/arena.h"
#include "frame/check.h"
#include "frame/convert.h"
#include "frame/image.h"
#include "kernels/motion/mixture.h"
#include "kernels/to_floats.h"

namespace lum {

using kernels::MixtureRow;
using kernels::MixtureRules;
using kernels::ModeMean;
using kernels::ModeWeight;

} // namespace lum

/// The head of the block; the arrays follow at byte 96.
struct LumFGMMState {
    uint32_t frameCount;
    Lum32f* rowBuffer;
    lum::ModeMean* means;
    lum::ModeWeight* weights;
    Lum8u* modeCounts;
    uint32_t history;
    Lum32f varInit;
    Lum32f varMin;
    Lum32f varMax;
    Lum32f matchBackground;
    Lum32f backgroundRatio;
    Lum32f matchGenerate;
    Lum32f complexityPrior;
    Lum32s mixtures;
    Lum8u shadowValue;
    Lum8u shadowEnabled;
    Lum32f shadowRatio;
    Lum32s maxMixtures;
};

namespace lum {
namespace {

constexpr std::size_t bytesOfHead = 96;

static_assert(sizeof(LumFGMMState) <= bytesOfHead);
static_assert(sizeof(ModeMean) == 12 && sizeof(ModeWeight) == 8);
static_assert(sizeof(void*) != 4 ||
              (offsetof(LumFGMMState, rowBuffer) == 4 && offsetof(LumFGMMState, modeCounts) == 16 &&
               offsetof(LumFGMMState, history) == 20 && offsetof(LumFGMMState, complexityPrior) == 48 &&
               offsetof(LumFGMMState, mixtures) == 52 && offsetof(LumFGMMState, shadowValue) == 56 &&
               offsetof(LumFGMMState, shadowEnabled) == 57 && offsetof(LumFGMMState, shadowRatio) == 60 &&
               offsetof(LumFGMMState, maxMixtures) == 64));

LumFGMMState* headOf(LumFGMMState* block) { return alignedUp(block, 32); }

/// In the arithmetic of the type: the size query wraps in 32 bits, Init counts what there is.
template <class Integer> Integer bytesOf(LumSize roiSize, Lum32s maxMixtures) {
    const auto w = static_cast<Integer>(roiSize.width);
    const auto pixels = w * static_cast<Integer>(roiSize.height);
    const auto n = static_cast<Integer>(maxMixtures);
    constexpr Integer line = 32;
    return roundedUp(pixels, line) + 128 + roundedUp(12 * w * n, line) + roundedUp(12 * pixels * n, line) +
           roundedUp(8 * pixels * n, line) + 256;
}

/// All of the record but the number of modes.
void takeParameters(LumFGMMState& state, const LumFGMMParams& params) {
    state.history = params.history;
    state.varInit = params.varInit;
    state.varMin = params.varMin;
    state.varMax = params.varMax;
    state.matchBackground = params.matchBackground;
    state.backgroundRatio = params.backgroundRatio;
    state.matchGenerate = params.matchGenerate;
    state.complexityPrior = params.complexityPrior;
    state.shadowValue = params.shadowValue;
    state.shadowEnabled = params.shadowEnabled;
    state.shadowRatio = params.shadowRatio;
}

/// The automatic rate falls as frames arrive, down to one in the length of the window.
double learningRateOf(const LumFGMMState& state, double asked) {
    const bool automatic = asked < 0 || state.frameCount <= 1;
    return automatic ? 1.0 / std::max(1U, std::min(2 * state.frameCount, state.history)) : asked;
}

MixtureRules rulesOf(const LumFGMMState& state, double learningRate) {
    const float rate = nearestFloat(learningRateOf(state, learningRate));
    return {.rate = rate,
            .decay = nearestFloat(static_cast<double>(rate) * static_cast<double>(state.complexityPrior)),
            .mixtures = std::min(state.mixtures, 255),
            .varInit = state.varInit,
            .varMin = state.varMin,
            .varMax = state.varMax,
            .matchBackground = state.matchBackground,
            .backgroundRatio = state.backgroundRatio,
            .matchGenerate = state.matchGenerate,
            .shadowRatio = state.shadowRatio,
            .shadowValue = state.shadowValue,
            .shadows = state.shadowEnabled != 0};
}

MixtureRow rowOf(const LumFGMMState& state, int width, int y) {
    const std::ptrdiff_t pixel = std::ptrdiff_t{width} * y;
    const std::ptrdiff_t mode = pixel * state.maxMixtures;
    return {state.means + mode, state.weights + mode, state.modeCounts + pixel, state.maxMixtures};
}

} // namespace

LumStatus backgroundSize(LumSize roiSize, Lum32s maxMixtures, Lum32s* size) {
    if (auto s = firstFailure(checkNotNull(size), checkSize(roiSize),
                              errorIf(maxMixtures < 1, lumStatusBadArgument)))
        return s;
    *size = static_cast<Lum32s>(bytesOf<uint32_t>(roiSize, maxMixtures));
    return lumStatusOk;
}

LumStatus backgroundInit(LumSize roiSize, Lum32s maxMixtures, const LumFGMMParams* params,
                         LumFGMMState* state) {
    if (auto s = firstFailure(checkNotNull(params, state), checkSize(roiSize),
                              errorIf(maxMixtures < 1, lumStatusBadArgument)))
        return s;
    std::memset(static_cast<void*>(state), 0, bytesOf<std::size_t>(roiSize, maxMixtures));

    LumFGMMState& head = *headOf(state);
    const std::size_t width = roiSize.width;
    const std::size_t pixels = width * roiSize.height;
    const std::size_t modes = maxMixtures;
    Arena arena(&head);
    arena.skip(bytesOfHead);
    head.rowBuffer = arena.allocate<Lum32f>(3 * width * modes);
    head.means = arena.align(32).allocate<ModeMean>(pixels * modes);
    head.weights = arena.align(32).allocate<ModeWeight>(pixels * modes);
    head.modeCounts = arena.align(32).allocate<Lum8u>(pixels);
    takeParameters(head, *params);
    head.mixtures = maxMixtures;
    head.maxMixtures = maxMixtures;
    return lumStatusOk;
}

LumStatus backgroundForeground(const Lum8u* src, int srcStep, Lum8u* dst, int dstStep, LumSize roiSize,
                               LumFGMMState* state, const LumFGMMParams* params, Lum64f learningRate) {
    if (auto s = firstFailure(checkNotNull(src, dst, state),
                              errorIf(srcStep < 1 || dstStep < 1, lumStatusStepError), checkSize(roiSize)))
        return s;
    LumFGMMState& head = *headOf(state);
    if (params != nullptr) {
        if (params->mixtures < 1 || params->mixtures > head.maxMixtures) return lumStatusBadArgument;
        takeParameters(head, *params);
        head.mixtures = params->mixtures;
    }
    ++head.frameCount;
    const MixtureRules rules = rulesOf(head, learningRate);
    const Image<const Lum8u> source{src, srcStep};
    const Image<Lum8u> result{dst, dstStep};
    for (int y = 0; y < roiSize.height; ++y) {
        kernels::toFloats(source.row(y), 3 * std::ptrdiff_t{roiSize.width}, head.rowBuffer);
        kernels::updateMixtures(head.rowBuffer, result.row(y), roiSize.width, rowOf(head, roiSize.width, y),
                                rules);
    }
    return lumStatusOk;
}

LumStatus backgroundPicture(Lum8u* dst, int dstStep, LumSize roiSize, LumFGMMState* state) {
    if (auto s = firstFailure(checkNotNull(dst, state), errorIf(dstStep < 1, lumStatusStepError),
                              checkSize(roiSize)))
        return s;
    const LumFGMMState& head = *headOf(state);
    const Image<Lum8u> result{dst, dstStep};
    for (int y = 0; y < roiSize.height; ++y)
        kernels::drawBackground(result.row(y), roiSize.width, rowOf(head, roiSize.width, y),
                                head.backgroundRatio);
    return lumStatusOk;
}

} // namespace lum
