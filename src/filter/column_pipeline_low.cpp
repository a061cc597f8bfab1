#include "filter/column_pipeline.h"
#include "filter/column_stage.h"
#include "filter/pipeline_low.h"
#include "frame/instances.h"
#include "frame/lanes.h"

namespace lum {
namespace {

using LowColumns = ColumnArguments<Lum16s, Lum16s, Lum16s>;

bool isFast(const LowColumns& a) {
    return isSymmetricOverSixteen(a.kernel, a.kernelSize, a.divisor) && a.roiSize.height >= 3;
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
        kernels::symmetricColumns(srcRows, result, size, kernel,
                                  isStreamable(result) ? storesOfFastColumns(roiSize) : Stores::ordinary);
    else
        kernels::lowColumns(srcRows, result, size, size.width / 8 * 8,
                            {kernel, kernelSize, lowScale(divisor)});
    return lumStatusOk;
}

LUM_INSTANCES(columnPipelineLow, (1), (3));

} // namespace lum
