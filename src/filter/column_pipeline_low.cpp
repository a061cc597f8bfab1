#include "filter/column_pipeline.h"
#include "filter/column_stage.h"
#include "filter/pipeline_low.h"
#include "frame/vector.h"

namespace lum {
namespace {

using LowColumns = ColumnArguments<Lum16s, Lum16s, Lum16s>;

bool isFast(const LowColumns& a) {
    return isSymmetricOverSixteen(a.kernel, a.kernelSize, a.divisor) && a.roiSize.height >= 3;
}

Access accessOf(const LowColumns& a) {
    bool aligned = alignedForVectors(Image<Lum16s>{a.dst, a.dstStep});
    const int rows = windowRows(a.roiSize.height, a.kernelSize);
    for (int y = 0; aligned && y < rows; ++y) aligned = isVectorAligned(a.srcRows[y]);
    return aligned ? Access::aligned : Access::unaligned;
}

} // namespace

template <int channels>
LumStatus columnPipelineLow(const Lum16s* const* srcRows, Lum16s* dst, int dstStep, LumSize roiSize,
                            const Lum16s* kernel, int kernelSize, int divisor, Lum8u* buffer) {
    const LowColumns arguments{srcRows, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer};
    // Three channels are tested as one: rows of a step that is too small run into one another.
    if (auto s = columnFailure(arguments, rowBytes<Lum16s>(roiSize.width))) return s;

    const LumSize size{roiSize.width * channels, roiSize.height};
    const Image<Lum16s> result{dst, dstStep};
    if (isFast(arguments))
        kernels::symmetricColumns(srcRows, result, size, kernel, accessOf(arguments),
                                  storesOfFastColumns(roiSize));
    else
        kernels::lowColumns(srcRows, result, size, size.width / 8 * 8, kernel, kernelSize, lowScale(divisor));
    return lumStatusOk;
}

template decltype(columnPipelineLow<1>) columnPipelineLow<1>;
template decltype(columnPipelineLow<3>) columnPipelineLow<3>;

} // namespace lum
