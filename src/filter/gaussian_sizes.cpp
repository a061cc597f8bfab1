#include "filter/gaussian_sizes.h"

#include <algorithm>

#include "filter/gaussian_spec.h"
#include "filter/pipeline_sizes.h"

namespace lum {
namespace {

constexpr Lum32s initBufferBytes = 64;

/// The work memory of runs, which gaussian_strip.h describes.
Lum32s ringBytes(Lum32s width, Lum32s kernelSize, Lum32s numChannels) {
    const auto taps = static_cast<unsigned>(kernelSize);
    const unsigned rowBytes = 4U * static_cast<unsigned>(numChannels) * static_cast<unsigned>(width);
    return static_cast<Lum32s>(12U * taps + (taps + 1U) * roundedUp(rowBytes, 64U) + 64U);
}

/// The row and the column stage that the front object's memory is counted for.
struct StageSizes {
    RowPipelineSize row;
    ColumnPipelineSize column;
};

StageSizes stageSizes(LumDataType dataType, Lum32s numChannels) {
    const bool one = numChannels == 1;
    const ColumnPipelineSize signedColumn = one ? columnPipeline16sC1 : columnPipeline16sC3;
    switch (dataType) {
    case lumType8u:
        return {one ? rowPipeline8u16sC1 : rowPipeline8u16sC3, signedColumn};
    case lumType16u:
        return {one ? rowPipeline16uC1 : rowPipeline16uC3, columnPipeline16u};
    case lumType16s:
        return {one ? rowPipeline16sC1 : rowPipeline16sC3, signedColumn};
    default:
        return {one ? rowPipeline32fC1 : rowPipeline32fC3, columnPipeline32f};
    }
}

/// Two rows, a stack of rows, the memory of both stages, and pointers to rows. The pointers are counted by the
/// region's height for integers and by at most the kernel's for floats: callers see the sum, so it stays.
Lum32s stagedBytes(LumSize roiSize, Lum32s kernelSize, LumDataType dataType, Lum32s numChannels) {
    const auto taps = static_cast<unsigned>(kernelSize);
    const auto rows = static_cast<unsigned>(std::min(kernelSize, roiSize.height));
    const unsigned length =
        roundedUp((taps + static_cast<unsigned>(roiSize.width)) * static_cast<unsigned>(numChannels), 8U);
    const StageSizes stages = stageSizes(dataType, numChannels);
    const auto rowSize = static_cast<unsigned>(stages.row.bytes(kernelSize));
    const auto columnSize = static_cast<unsigned>(stages.column.bytes(roiSize.width));
    const unsigned bothStages = (32U + rowSize) + (32U + columnSize);

    if (dataType == lumType32f) {
        const auto row = static_cast<unsigned>(static_cast<Lum32s>(length * 4U * taps) / 2);
        return static_cast<Lum32s>(2U * (16U + row) + (64U + 4U * length * (taps + rows)) + bothStages +
                                   (32U + 4U * (taps + rows)));
    }
    const unsigned row = 2U * length * (taps >> 1);
    return static_cast<Lum32s>(2U * (16U + row) + (64U + 2U * length * (taps + rows)) + bothStages +
                               (32U + 4U * (taps + static_cast<unsigned>(roiSize.height))));
}

} // namespace

LumStatus gaussianGetSpecSizeL(Lum32s kernelSize, LumDataType dataType, Lum32s numChannels, Lum32s* specSize,
                               Lum32s* initBufferSize) {
    if (auto s = firstFailure(checkNotNull(specSize, initBufferSize),
                              gaussianParameters(kernelSize, dataType, numChannels)))
        return s;
    *specSize = gaussianCoreSpecBytes(kernelSize);
    *initBufferSize = initBufferBytes;
    return lumStatusOk;
}

LumStatus gaussianGetSpecSize(Lum32s kernelSize, LumDataType dataType, Lum32s numChannels, Lum32s* specSize,
                              Lum32s* initBufferSize) {
    return gaussianGetSpecSizeL(kernelSize, dataType, numChannels, specSize, initBufferSize);
}

LumStatus gaussianGetBufferSizeL(LumSizeL roiSize, Lum32s kernelSize, LumDataType dataType,
                                 LumBorderType border, Lum32s numChannels, Lum32s* bufferSize) {
    if (auto s =
            firstFailure(checkNotNull(bufferSize), checkSize(roiSize),
                         gaussianParameters(kernelSize, dataType, numChannels), gaussianCoreBorder(border)))
        return s;
    *bufferSize = ringBytes(static_cast<Lum32s>(roiSize.width), kernelSize, numChannels);
    return lumStatusOk;
}

LumStatus gaussianGetBufferSize(LumSize roiSize, Lum32s kernelSize, LumDataType dataType, Lum32s numChannels,
                                Lum32s* specSize, Lum32s* bufferSize) {
    if (auto s = firstFailure(checkNotNull(specSize, bufferSize), checkSize(roiSize),
                              gaussianParameters(kernelSize, dataType, numChannels)))
        return s;
    *specSize = static_cast<Lum32s>(static_cast<unsigned>(gaussianFrontSpecBytes(kernelSize, dataType)) +
                                    static_cast<unsigned>(gaussianCoreSpecBytes(kernelSize)));
    *bufferSize = std::max({stagedBytes(roiSize, kernelSize, dataType, numChannels),
                            ringBytes(roiSize.width, kernelSize, numChannels), Lum32s{64}});
    return lumStatusOk;
}

} // namespace lum
