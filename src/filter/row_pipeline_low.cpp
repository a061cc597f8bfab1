#include "filter/pipeline_low.h"
#include "filter/row_pipeline.h"
#include "filter/row_stage.h"
#include "frame/instances.h"

namespace lum {
namespace {

using LowRows = RowArguments<Lum16s, Lum16s, Lum16s>;

bool isFast(const LowRows& a) {
    return isSymmetricOverSixteen(a.kernel, a.kernelSize, a.divisor) && a.xAnchor == 2 &&
           a.border == lumBorderReplicate && a.roiSize.width >= 11;
}

void filterFast(const LowRows& a, int channels, Lum16s* extended) {
    const Stores stores = storesOfFastRows(a.roiSize);
    const auto edge = [&](const Lum16s* window, Lum16s* dst, int count) {
        kernels::symmetricRow(window, channels, dst, count, a.kernel, Stores::ordinary);
    };
    walkRows(a, channels, extended, edge, [&](const Lum16s* window, Lum16s* dst, int count) {
        kernels::symmetricRow(window, channels, dst, count, a.kernel, stores);
    });
    if (stores == Stores::streaming) storeFence();
}

/// Of the interior's elements, whole groups of eight from its start are sums of 16 bits, saturated when
/// divided; the rest, like the border stretches, are the low bits of sums of 32.
void filterRows(const LowRows& a, int channels, Lum16s* extended) {
    const kernels::LowKernel kernel{a.kernel, a.kernelSize, lowScale(a.divisor)};
    const auto rest = [&](const Lum16s* window, Lum16s* dst, int count) {
        kernels::lowRowRest(window, channels, dst, count, kernel);
    };
    walkRows(a, channels, extended, rest, [&](const Lum16s* window, Lum16s* dst, int count) {
        const int blocks = count / 8 * 8;
        kernels::lowRow(window, channels, dst, blocks, kernel);
        rest(window + blocks, dst + blocks, count - blocks);
    });
}

} // namespace

template <int channels>
LumStatus rowPipelineLow(const Lum16s* src, int srcStep, Lum16s* const* dstRows, LumSize roiSize,
                         const Lum16s* kernel, int kernelSize, int xAnchor, LumBorderType border,
                         BorderValue<Lum16s, channels> borderValue, int divisor, Lum8u* buffer) {
    const LowRows arguments{
        src,     srcStep, dstRows, roiSize, kernel, kernelSize, xAnchor, border, borderPointer(borderValue),
        divisor, buffer};
    constexpr RowTests tests{RowTests::Divisor::beforeBorder, channels == 3};
    if (auto s = checkArguments<channels, tests>(arguments)) return s;

    Lum16s* extended = RowWork<Lum16s>(buffer, kernelSize, channels).extended;
    if (isFast(arguments))
        filterFast(arguments, channels, extended);
    else
        filterRows(arguments, channels, extended);
    return lumStatusOk;
}

LUM_INSTANCES(rowPipelineLow, (1), (3));

} // namespace lum
